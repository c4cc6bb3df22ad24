"""qorql explain, and the warnings where the language surprises."""
# SPDX-License-Identifier: Apache-2.0
import os
import pty
import tempfile
import unittest

import toolcase
from terminal import read_all
from toolcase import MODEL, ToolCase

OR = "SELECT Id FROM Shop_Item WHERE Id = 1 OR Id = 2"
OR_WARNING = ('qorql: warning: OR keeps what its last operand keeps: only "Id = 2" decides. '
              "Run a query for each operand [WHERE-3]\n")


class Explain(ToolCase):
    def explain(self, *arguments):
        return self.run_tool("explain", "--no-live", "-m", MODEL, *arguments)

    def test_steps_in_the_order_of_execution(self):
        self.assertEqual(self.succeed(self.explain(
            "SELECT FIRST 1 i.Name FROM Shop_Item AS i, Shop_Empty AS e WHERE i.Id = e.Id AND Size > 5 "
            "ORDER BY Size DESC")), (
                " 1  fetch      Shop_Item AS I: Id, Name, Size\n"
                " 2  fetch      Shop_Empty AS E: Id\n"
                " 3  hash join  i.Id = e.Id\n"
                " 4  filter     Shop_Item.Size > 5\n"
                " 5  sort       Shop_Item.Size DESC\n"
                " 6  select     i.Name\n"
                " 7  first      1 row is shown; everything before is done in full\n"))

    def test_several_statements(self):
        self.assertEqual(self.succeed(self.explain("SELECT Id FROM Shop_Item; SELECT Name FROM Shop_Item")), (
            " 1  fetch      Shop_Item: Id\n 2  select     Id\n\n"
            " 1  fetch      Shop_Item: Name\n 2  select     Name\n"))

    def test_warnings_stand_below(self):
        text = self.succeed(self.explain(OR))
        self.assertIn(" 3  filter     Id = 1  (computed, but decides nothing)\n", text)
        self.assertTrue(text.endswith(OR_WARNING), text)

    def test_an_association_that_decides_nothing(self):
        model = ("class T_A { [Key] uint32 Id; }; class T_B { [Key] uint32 Id; };"
                 "[Association] class T_L { [Key] T_A REF Lft; [Key] T_B REF Rgt; };")
        with tempfile.NamedTemporaryFile("w", suffix=".mof") as file:
            file.write(model)
            file.flush()
            lines = self.succeed(self.run_tool(
                "explain", "--no-live", "-m", file.name,
                "SELECT a.Id, b.Id FROM T_A AS a, T_B AS b WHERE T_L = a AND T_L = b OR a.Id = 1")).splitlines()
        self.assertEqual(lines[3], " 4  associate  T_B AS B: Id  "
                                   "(one call for each T_A, through T_L; made, but decides nothing)")

    def test_a_role_that_is_left_open(self):
        model = ("class T_Base { [Key] uint32 Id; }; class T_A : T_Base { }; class T_B : T_Base { };"
                 "[Association] class T_L { [Key] T_Base REF Lft; [Key] T_A REF Mid; };"
                 "[Association] class T_M { [Key] T_A REF Lft; [Key] T_B REF Rgt; };")
        path = self.write("ends.mof", model)
        for association, source, target, note in (
                ("T_L", "a", "b", ""), ("T_L", "b", "a", ""), ("T_M", "a", "b", ""),
                ("T_L", "a", "c", "    note: T_L may have the T_A in more than one role; to ask for one: FROM T_L AS l "
                                  "... WHERE l.Lft = OBJECTPATH(A) AND l.Mid = OBJECTPATH(C) [ASSOC-7]\n")):
            text = self.succeed(self.run_tool(
                "explain", "--no-live", "-m", path, "SELECT a.Id FROM T_A AS a, T_B AS b, T_Base AS c "
                f"WHERE {association} = {source} AND {association} = {target}"))
            self.assertEqual("".join(line + "\n" for line in text.splitlines() if "note:" in line), note, text)

    def test_a_role_between_objects_of_one_class(self):
        path = self.write("ends.mof", "class T_A { [Key] uint32 Id; };"
                          "[Association] class T_L { [Key] T_A REF Lft; [Key] T_A REF Rgt; };"
                          'instance of T_A { Id = 1; }; instance of T_A { Id = 2; };'
                          'instance of T_L { Lft = "T_A.Id=1"; Rgt = "T_A.Id=2"; };')
        for sources, source in (("T_A AS a, T_A AS b", "T_A AS B"), ("T_A", "T_A")):
            text = self.succeed(self.run_tool("explain", "--no-live", "--quiet", "-m", path,
                                              f"SELECT Id FROM {sources} WHERE T_L = T_A AND T_L = T_A"
                                              if source == "T_A" else
                                              f"SELECT b.Id FROM {sources} WHERE T_L = a AND T_L = b"))
            query = (f"SELECT l.Rgt FROM T_L AS l, {source} WHERE l.Lft = OBJECTPATH({source.split()[-1]})")
            self.assertIn(f"to ask for one: {query} [ASSOC-7]\n", text)
            self.assertEqual(self.succeed(self.run_tool("--no-live", "-m", path, "-o", "csv", query)),
                             "Rgt\nroot/cimv2:T_A.Id=2\n")

    def test_properties_that_no_class_has(self):
        text = self.succeed(self.explain("SELECT i.Nam, i.Id FROM Shop_Item AS i WHERE i.Zzz = 1"))
        self.assertTrue(text.endswith(
            "qorql: warning: Shop_Item has no property Zzz\n"
            "qorql: warning: Shop_Item has no property Nam: did you mean Name?\n"), text)

    def test_a_property_of_a_subclass_is_none_of_them(self):
        model = ("class Sub_Base { [Key] uint32 Id; }; class Sub_Middle : Sub_Base { };"
                 "class Sub_Leaf : Sub_Middle { string Extra; };")
        with tempfile.NamedTemporaryFile("w", suffix=".mof") as file:
            file.write(model)
            file.flush()
            text = self.succeed(self.run_tool("explain", "--no-live", "-m", file.name,
                                              "SELECT b.Extra FROM Sub_Base AS b"))
        self.assertNotIn("warning", text)

    def test_nothing_is_asked_of_the_object_manager(self):
        result = self.explain("--log", "trace", "SELECT Id FROM Shop_Item")
        self.assertEqual((result.status, result.err), (0, ""))

    def test_live_classes(self):
        self.assertIn("Linux_Process: Handle", self.succeed(self.run_tool("explain", "SELECT Handle FROM Linux_Process")))

    def test_refused_query(self):
        self.refused(self.explain("SELECT FROM"), 1, self.model("SELECT FROM").err.rstrip("\n"))
        self.refused(self.explain(" "), 1, "qorql: error: 'SELECT' expected (line 1, CIM status 16)")

    def test_wrong_usage(self):
        for arguments in ((), ("SELECT Id FROM Shop_Item", "surplus"), ("--frobnicate", OR), ("-o", "csv", OR),
                          ("--stats", OR), ("-m",), ("--quiet=1", OR)):
            with self.subTest(arguments=arguments):
                self.wrong_usage(self.run_tool("explain", *arguments), command="qorql explain")

    def test_help(self):
        text = self.succeed(self.run_tool("explain", "--help"))
        for part in ("Usage: qorql explain [OPTIONS] QUERY", "--mof", "--namespace", "--no-live", "--config", "--help"):
            self.assertIn(part, text)

    def test_failed_platform(self):
        result = self.run_tool("explain", "-m", self.folder + "/none.mof", OR)
        self.assertEqual((result.status, result.out), (3, ""))


class Warnings(ToolCase):
    def test_scripts_are_warned_when_they_ask_for_it(self):
        plain = self.model("-o", "csv", OR)
        self.assertEqual((plain.status, plain.err), (0, ""))
        warned = self.model("-o", "csv", "--warnings", OR)
        self.assertEqual((warned.status, warned.out, warned.err), (0, plain.out, OR_WARNING))

    def test_scripts_learn_of_unknown_properties_too(self):
        ran = self.run_tool("--no-live", "-m", MODEL, "--warnings", "-o", "csv",
                            "SELECT i.Id FROM Shop_Item AS i WHERE i.Siz IS NULL")
        self.assertIn("qorql: warning: Shop_Item has no property Siz: did you mean Size?\n", ran.err)

    def test_quiet_wins(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", "--warnings", "--quiet", OR)), "Id\n2\n")

    def test_each_surprise_has_its_rule(self):
        for query, rule in (
                ("SELECT Id FROM Shop_Item WHERE Name LIKE 'p%'", "LIKE-1"),
                ("SELECT Id FROM Shop_Item WHERE ANY Codes < 2", "ARR-4"),
                ("SELECT Id - 1 - 1 AS X FROM Shop_Item", "ARITH-2"),
                ("SELECT AVG(Id) AS A, SUM(Id) AS S FROM Shop_Item", "AGG-4"),
                ("SELECT *, Id FROM Shop_Item", "SEL-6"),
                ("SELECT Id * 100 / Size AS P FROM Shop_Item", "ARITH-2"),
                ("SELECT Id FROM Shop_Item WHERE Codes = 1", "ARR-7"),
                ("SELECT Id FROM Shop_Item WHERE ANY Id = 1", "ARR-5"),
                ("SELECT -(Id + 1) AS X FROM Shop_Item WHERE Id < 0", "ARITH-6"),
                ("SELECT Id FROM Shop_Item WHERE Balance < -9223372036854775808", "LEX-6"),
                ("SELECT Id FROM Shop_Item WHERE Balance < 18446744073709551616", "LEX-6"),
                ("SELECT COUNT(Id > 1) AS X FROM Shop_Item", "AGG-2"),
                ("SELECT Id FROM Shop_Item WHERE Nowhere::Id = 1", "NAME-6"),
                ("SELECT Name.Id FROM Shop_Item AS Name", "NAME-7"),
                ("SELECT a.Name FROM Shop_Empty AS a, Shop_Item AS a", "FROM-10"),
                ("SELECT a.Id FROM Shop_Item AS a, Shop_Empty AS b WHERE OBJECTPATH(a) = OBJECTPATH(b) AND "
                 "OBJECTPATH(a) = OBJECTPATH(b)", "ASSOC-6"),
                ("SELECT a.Id FROM Shop_Item AS a, Shop_Item AS b", "FROM-5"),
                ("SELECT a.Id FROM Shop_Item AS a, Shop_Empty AS b WHERE a.Id *= b.Id", "JOIN-4")):
            with self.subTest(query=query):
                lines = self.model("-o", "csv", "--warnings", query).err.splitlines()
                warnings = [line for line in lines if line.startswith("qorql: warning: ") and line.endswith("]")]
                self.assertEqual([line.rsplit("[", 1)[1] for line in warnings], [rule + "]"])

    def test_a_join_class_that_does_not_exist_is_told_with_the_nearest(self):
        result = self.model("-o", "csv", "--warnings", "SELECT i.Id FROM Shop_Item AS i, Shop_Empty AS e "
                            "WHERE Shop_Itm = i AND Shop_Itm = e")
        self.assertEqual((result.status, result.out), (0, "Id\n"))
        self.assertEqual(result.err, 'qorql: warning: "Shop_Itm = i AND Shop_Itm = e" ties nothing: there is no class '
                                     "Shop_Itm; did you mean Shop_Item? [ASSOC-6]\n")

    def test_a_class_after_isa_that_does_not_exist_is_told_with_the_nearest(self):
        query = "SELECT i.Id FROM Shop_Item AS i WHERE i ISA Shop_Itm"
        told = '"i ISA Shop_Itm" is never true: there is no class Shop_Itm; did you mean Shop_Item? [ISA-1]\n'
        result = self.model("-o", "csv", "--warnings", query)
        self.assertEqual((result.status, result.out, result.err), (0, "Id\n", "qorql: warning: " + told))
        result = self.model("-o", "csv", "--strict", query)
        self.assertEqual((result.status, result.out, result.err), (1, "", "qorql: error: " + told))

    def test_explain_shows_that_a_product_divides_first(self):
        text = self.succeed(self.run_tool("explain", "--no-live", "-m", MODEL, "SELECT Id * 100 / Size AS P FROM Shop_Item"))
        self.assertEqual(text, " 1  fetch      Shop_Item: Id, Size\n 2  select     Id * (100 / Size) AS P\n"
                               'qorql: warning: Operators of one level group to the right: this is "Id * (100 / Size)" '
                               "[ARITH-2]\n")

    @toolcase.at_terminal
    def test_a_person_at_a_terminal_is_warned(self):
        ours, theirs = pty.openpty()
        self.addCleanup(os.close, ours)
        result = toolcase.subprocess.run([toolcase.TOOL, "--no-live", "-m", MODEL, "-o", "csv", OR], stderr=theirs,
                                         stdout=toolcase.subprocess.PIPE, check=False)
        os.close(theirs)
        self.assertEqual((result.returncode, result.stdout), (0, b"Id\n2\n"))
        self.assertEqual(read_all(ours).decode().replace("\r\n", "\n"),
                         OR_WARNING + "  " + OR + "\n" + " " * 40 + "^\n")


if __name__ == "__main__":
    toolcase.main()
