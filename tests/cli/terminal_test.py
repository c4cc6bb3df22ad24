"""What a person sees at a terminal: boxes, cut values, carets, progress."""
# SPDX-License-Identifier: Apache-2.0
import fcntl
import os
import pty
import struct
import subprocess
import termios
import unicodedata
import unittest
from unittest import mock

import toolcase
from terminal import read_all, read_piece
from toolcase import MODEL, ToolCase, at_terminal


def columns_of(line):
    """How many columns of a terminal a line takes."""
    wide = sum(1 for c in line if unicodedata.east_asian_width(c) in "WF")
    return len(line) - sum(1 for c in line if unicodedata.combining(c)) + wide


@at_terminal
class Terminal(ToolCase):
    def show(self, *arguments, width=80, env=None, standard_error=True):
        """Runs over the model at a terminal of that width; gives the status and what it shows."""
        ours, theirs = pty.openpty()
        self.addCleanup(os.close, ours)
        fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 24, width, 0, 0))
        environment = {key: value for key, value in os.environ.items() if not key.startswith(("LC_", "LANG", "COLUMNS"))}
        environment.update(env or {"LANG": "C.UTF-8"})
        with subprocess.Popen([toolcase.TOOL, "--no-live", "-m", MODEL, *arguments], stdin=subprocess.DEVNULL,
                              stdout=theirs, stderr=theirs if standard_error else subprocess.PIPE,
                              env=environment) as tool:
            os.close(theirs)
            shown = read_all(ours)
            status = tool.wait(timeout=60)
        return status, shown.decode("utf-8").replace("\r\n", "\n")

    def test_an_end_that_is_told_too_early_loses_nothing(self):
        for end in (OSError(5, "Input/output error"), b""):
            with self.subTest(end=end), mock.patch("os.read", side_effect=[b"one\n", end, b"two\n", end, end]):
                self.assertEqual(read_all(0), b"one\ntwo\n")
            with self.subTest(end=end), mock.patch("os.read", side_effect=[end, end]):
                self.assertEqual(read_piece(0), b"")

    def table(self, *arguments, **options):
        status, shown = self.show(*arguments, **options)
        self.assertEqual(status, 0, shown)
        return shown

    def test_box_and_row_count(self):
        self.assertEqual(self.table("SELECT Id, Name FROM Shop_Item WHERE Id < 3"), (
            "┌────┬─────────────┐\n"
            "│ Id │ Name        │\n"
            "├────┼─────────────┤\n"
            "│  1 │ plain       │\n"
            "│  2 │ with, comma │\n"
            "└────┴─────────────┘\n"
            "2 rows\n"))

    def test_box_without_header(self):
        self.assertEqual(self.table("--no-header", "SELECT Id, Name FROM Shop_Item WHERE Id < 3"), (
            "┌───┬─────────────┐\n"
            "│ 1 │ plain       │\n"
            "│ 2 │ with, comma │\n"
            "└───┴─────────────┘\n"
            "2 rows\n"))
        cards = ("SELECT Id, Name, Size, Balance FROM Shop_Item WHERE Id = 1",)
        self.assertEqual(self.table("--no-header", *cards, width=30), self.table(*cards, width=30))

    def test_wide_characters_are_measured(self):
        shown = self.table("SELECT Id, Name FROM Shop_Item WHERE Id = 5")
        self.assertIn("│  5 │ größer 日本 │\n", shown)
        self.assertEqual(len({columns_of(line) for line in shown.splitlines()[:-1]}), 1, shown)
        self.assertTrue(shown.endswith("\n1 row\n"))

    def test_ascii_where_the_locale_is_no_utf8(self):
        for env in ({"LANG": "C"}, {"LC_ALL": "POSIX", "LANG": "de_DE.UTF-8"}, {"LC_CTYPE": "de_DE.ISO-8859-1"}):
            with self.subTest(env=env):
                self.assertEqual(self.table("SELECT Id FROM Shop_Item WHERE Id = 1", env=env),
                                 "+----+\n| Id |\n+----+\n|  1 |\n+----+\n1 row\n")

    def test_fits_the_width_and_cuts_texts_before_numbers(self):
        for width in (120, 80, 63, 45):
            with self.subTest(width=width):
                shown = self.table("SELECT Size, Balance, Name, Made FROM Shop_Item", width=width)
                for line in shown.splitlines():
                    self.assertLessEqual(columns_of(line), width, line)
                if width >= 63:
                    self.assertIn("18446744073709551615", shown)
        self.assertIn("…", shown)
        self.assertIn("a \"q…", self.table("SELECT Size, Balance, Name, Made FROM Shop_Item", width=63))

    def test_rows_are_cards_where_the_columns_do_not_fit(self):
        shown = self.table("SELECT Id, Name, Size, Balance FROM Shop_Item WHERE Id = 1", width=30)
        self.assertEqual(shown, (
            "─ 1 ──────────────────────────\n"
            "Id       1\n"
            "Name     plain\n"
            "Size     18446744073709551615\n"
            "Balance  -9223372036854775808\n"
            "1 row\n"))

    def test_cards_are_cut_to_the_width(self):
        path = self.write("wide.mof", "class W { [Key] uint8 K; string AVeryLongNameOfAProperty; string B; };\n"
                                      "instance of W { K = 1; AVeryLongNameOfAProperty = \"日本語日本語日本語\"; };\n")
        shown = self.table("-m", path, "SELECT * FROM W", width=20)
        self.assertEqual(shown, ("─ 1 ────────────────\n"
                                 "K           1\n"
                                 "AVeryLong…  日本語…\n"
                                 "1 row\n"))
        shown = self.table("-m", path, "SELECT * FROM W", width=20, env={"LANG": "C"})
        self.assertEqual(shown.splitlines()[0:2], ["- 1 ----------------", "K           1"])

    def test_cards_leave_out_what_is_null(self):
        shown = self.table("SELECT Id, Name, Size, Balance, Made FROM Shop_Item WHERE Id > 3 ORDER BY Id ASC", width=30)
        self.assertEqual(shown.splitlines()[1:4], ["Id       4", shown.splitlines()[2], "Id       5"])
        self.assertIn("\nSize     7\n", shown)
        self.assertNotIn("Made", shown)

    def test_references_are_cut_at_their_beginning(self):
        path = self.write("links.mof", "Qualifier Association : boolean = false, Scope(association);\n"
                          "class L_End { [Key] string Id; };\n"
                          "[Association] class L_Tie { [Key] L_End REF Outer; [Key] L_End REF Inner; };\n"
                          'instance of L_Tie { Outer = "L_End.Id=\\"one\\""; Inner = "L_End.Id=\\"日本語\\""; };\n')
        shown = self.table("-m", path, "SELECT Outer, Inner FROM L_Tie", width=40)
        self.assertIn('│ …:L_End.Id="one" │ …_End.Id="日本語" │', shown)
        for line in shown.splitlines():
            self.assertLessEqual(columns_of(line), 40, line)
        card = self.table("-m", path, "SELECT Outer, Inner, Outer AS a, Inner AS b FROM L_Tie", width=24).splitlines()
        self.assertEqual(card[1:3], ['Outer  …2:L_End.Id="one"', 'Inner  …_End.Id="日本語"'])

    def test_cards_of_no_rows(self):
        self.assertEqual(self.table("SELECT Id, Name, Size, Balance FROM Shop_Item WHERE Id = 77", width=20), "0 rows\n")

    def test_cuts_between_wide_characters(self):
        path = self.write("wide.mof", "class W { [Key] string T; };\ninstance of W { T = \"日本語日本語日本語日本語\"; };\n")
        shown = self.table("-m", path, "SELECT T FROM W", width=20)
        self.assertIn("│ 日本語日本語日…  │\n", shown)
        self.assertEqual({columns_of(line) for line in shown.splitlines()[:-1]}, {20})

    def test_nothing_is_cut_without_a_terminal(self):
        text = self.succeed(self.model("SELECT Size, Balance, Name, Tags, Made, Grade, Size, Balance, Name FROM Shop_Item"))
        self.assertNotIn("…", text)
        self.assertGreater(max(len(line) for line in text.splitlines()), 120)

    def test_other_forms_are_the_same_as_elsewhere(self):
        for form in ("csv", "json", "jsonl", "html", "mof"):
            query = "SELECT Id, Name FROM Shop_Item WHERE Id < 3"
            self.assertEqual(self.table("-o", form, query), self.model("-o", form, query).out)

    def test_control_characters_do_not_reach_the_terminal(self):
        path = self.write("e.mof", 'class E { [Key] string T; };\ninstance of E { T = "a\\x1B[31mb"; };\n')
        self.assertIn("│ a\\x1B[31mb │\n", self.table("-m", path, "SELECT T FROM E"))

    def test_error_with_the_line_and_a_caret(self):
        self.assertEqual(self.show("SELECT Id\nFROM Shop_Item\n  WHERE ,"), (1, (
            "qorql: error: unexpected token ',' found (line 3, CIM status 16)\n"
            "    WHERE ,\n"
            "          ^\n")))

    def test_caret_under_the_token_even_if_it_stands_there_twice(self):
        self.assertEqual(self.show("SELECT Id, Name Name FROM Shop_Item")[1].splitlines()[1:],
                         ["  SELECT Id, Name Name FROM Shop_Item", "                  ^",
                          "qorql: hint: a comma is missing: Name, Name; or AS: Name AS Name"])

    def test_caret_at_the_end_and_under_names(self):
        self.assertEqual(self.show("SELECT Id FROM Shop_Item WHERE")[1].splitlines()[1:],
                         ["  SELECT Id FROM Shop_Item WHERE", "                                ^"])
        self.assertEqual(self.show("SELECT Id, Wheels FROM Shop_Item")[1].splitlines()[1:],
                         ["  SELECT Id, Wheels FROM Shop_Item", "             ^"])

    def carets(self, marked, *arguments, count=1):
        """Runs a statement, in which a ^ stands before a word, and compares the last lines with carets with it."""
        shown = self.show(*arguments, "--warnings", marked.replace("^", ""), width=200)[1].splitlines()
        at = [i for i, line in enumerate(shown) if line.strip() == "^"]
        self.assertGreaterEqual(len(at), count, shown)
        line, before = next((line, line.index("^")) for line in marked.split("\n") if "^" in line)
        expected = ["  " + line.replace("^", "").replace("\t", " "),
                    " " * (2 + sum(2 if unicodedata.east_asian_width(c) in "WF" else
                                   0 if unicodedata.combining(c) else 1 for c in line[:before])) + "^"]
        for i in at:
            self.assertEqual(shown[i - 1:i + 1], expected, shown)

    def test_caret_under_the_word_at_fault_and_not_under_its_spelling(self):
        for marked in (
                "SELECT Name AS Wheels FROM Shop_Item WHERE ^Wheels = 1",
                "SELECT Name FROM Shop_Item WHERE Name = 'Wheels' AND ^Wheels = 1",
                "SELECT i.Name AS n FROM Shop_Item AS i WHERE i.Name = 'n' AND ^n = 1",
                "SELECT i.Name FROM Shop_Item AS i, Shop_Empty AS e WHERE i.Name = 'Id' AND ^Id = 1",
                "SELECT Name AS x, ^x.Id FROM Shop_Item",
                "SELECT i.Id AS Shop_Itm FROM Shop_Item AS i, ^Shop_Itm AS e WHERE i.Name = 'Shop_Itm'",
                "SELECT Id AS Wheels\nFROM Shop_Item\n\tWHERE\t^Wheels = 1",
                "SELECT Id FROM Shop_Item WHERE Name = '日本 Wheels größe' AND ^Wheels = 1",
                "SELECT Id FROM Shop_Item WHERE Name = 'e\u0301' AND ^Wheels = 1",
                "SELECT COUNT(Name) AS n, ^Id FROM Shop_Item",
                "SELECT Id, ^MAXIMUM(Id) AS m FROM Shop_Item",
                "SELECT Id FROM Shop_Item WHERE Name ISA ^5",
                "SELECT Id AS Name, Id + 1 AS n, ^Size * 2 FROM Shop_Item",
                "SELECT COUNT(Id) AS Name, SUM(^Name) AS S FROM Shop_Item",
                "SELECT AVG(^Shop_Item.Name) AS S FROM Shop_Item",
                "SELECT Id AS k, Name FROM Shop_Item WHERE Name <> 'Wheels' ORDER BY ^Wheels ASC",
                "SELECT Id FROM Shop_Item ORDER BY Id + ^Wheels DESC",
                "SELECT i.Id FROM Shop_Item AS i WHERE i.Id > 0 ORDER BY i.^Wheels DESC",
                "SELECT Id FROM Shop_Item WHERE Id > 1 AND Name = ^5",
                "SELECT Id FROM Shop_Item WHERE ^'5' <> Id"):
            with self.subTest(statement=marked):
                self.carets(marked)

    def test_caret_under_a_property_that_an_object_lacks(self):
        self.carets("SELECT i.Name AS Wheels FROM Shop_Item AS i WHERE i.Name <> 'Wheels' AND i.^Wheels = 1", count=2)
        self.carets("SELECT i.Name AS Emb, i.^Emb.Name FROM Shop_Item AS i", count=2)
        self.carets("SELECT i.Id FROM Shop_Item AS i ORDER BY i.^Emb.Name ASC")

    def test_caret_under_what_a_warning_is_about(self):
        for marked in (
                "SELECT Id FROM Shop_Item WHERE Name = ' OR ' OR Id = 1 ^OR Id = 2",
                "SELECT Id FROM Shop_Item WHERE Name = 'LIKE' AND Name ^LIKE 'a%'",
                "SELECT Id\nFROM Shop_Item\nWHERE Id = 10 ^- 3 - 2",
                "SELECT ^*, Id FROM Shop_Item",
                "SELECT a.Id FROM Shop_Item AS a, ^Shop_Item AS b WHERE b.Id IS NULL"):
            with self.subTest(statement=marked):
                self.carets(marked)

    def test_no_caret_of_a_warning_without_a_terminal(self):
        result = self.model("--warnings", "SELECT *, Id FROM Shop_Item")
        self.assertEqual(result.err.count("\n"), 1)

    def test_caret_behind_wide_characters_and_in_long_lines(self):
        self.assertEqual(self.show("SELECT Id FROM Shop_Item WHERE Name = '日本' ,")[1].splitlines()[2],
                         " " * 47 + "^")
        query = "SELECT Id FROM Shop_Item WHERE " + "Id = 1 AND " * 30 + ", AND " + "Id = 1 AND " * 30
        line, caret = self.show(query, width=60)[1].splitlines()[1:]
        self.assertLessEqual(len(line), 60)
        self.assertEqual(line[caret.index("^")], ",")
        self.assertTrue(line.startswith("  ...") and line.endswith("..."), line)

    def test_caret_of_mof_behind_tabs_and_wide_characters(self):
        path = self.write("bad.mof", "\tclass\tT { string 日本 = \"日本\" 5; };\n")
        self.assertEqual(self.show("-m", path, "SELECT Id FROM Shop_Item"), (3, (
            f"qorql: error: {path}:1:29: found \"5\", expected \";\"\n"
            "   class T { string 日本 = \"日本\" 5; };\n"
            "                                  ^\n")))

    def test_no_text_is_meant_by_a_property_behind_its_class(self):
        for wrong in ("i.Wheels = e.Id", "e.Id = i.Wheels"):
            with self.subTest(condition=wrong):
                shown = self.model("--warnings", "SELECT i.Name FROM Shop_Item AS i, Shop_Empty AS e "
                                                 f"WHERE {wrong} OR i.Id = 1").err
                self.assertIn("Wheels", shown)
                self.assertNotIn("'Wheels'?", shown)

    def test_hint_of_the_name_that_was_meant(self):
        for query, hint in (
                ("SELECT Nmae FROM Shop_Item", "Nmae is not a property of Shop_Item: did you mean Name? (line 1, column 8)"),
                ("SELECT Nmae FROM Shop_Item AS a, shop_item AS b",
                 "Nmae is not a property of Shop_Item: did you mean Name? (line 1, column 8)"),
                ("SELECT Id FROM Shop_Itm", "Shop_Itm is not a class of root/cimv2: did you mean Shop_Item? (line 1, column 16)"),
                ("SELECT * FROM Shop_Itm", "Shop_Itm is not a class of root/cimv2: did you mean Shop_Item? (line 1, column 15)"),
                ("SELECT Id FROM Shop_Item WHERE Name = plain",
                 "plain is not a property of Shop_Item: did you mean 'plain'? (line 1, column 39)"),
                ("SELECT Id FROM Shop_Item WHERE Name = \"plain\"", "text goes in single quotes: 'plain'"),
                ("SELECT Shop_Item.Id FROM Shop_Item, Shop_Empty WHERE Name = ''",
                 "Name is a property of more than one class: write Shop_Item.Name or Shop_Empty.Name (line 1, column 54)"),
                ("clases", "did you mean the command classes?")):
            with self.subTest(query=query):
                status, shown = self.show(query)
                self.assertEqual(status, 1)
                self.assertIn("\nqorql: hint: " + hint + "\n", shown)
                self.assertNotIn("hint", self.show("--quiet", query)[1])

    def test_hint_of_a_class_in_the_place_of_a_property(self):
        path = self.write("link.mof", "class Base { [Key] uint32 K; };\n"
                                      "[Association] class Link { [Key] Base REF A; [Key] Base REF B; };\n")
        for name, tail in (("Link", ": an association is written Link = a AND Link = b"), ("Shop_Empty", "")):
            shown = self.model("-m", path, "--warnings", f"SELECT K FROM Base WHERE {name} = q").err
            self.assertIn(f"qorql: hint: {name} is a class, not a property of Base{tail} (line 1, column 26)\n", shown)

    def test_hint_of_a_property_that_is_no_class(self):
        path = self.write("sub.mof", "class Holder { [Key] uint32 K; [EmbeddedObject] string Sub; };\n"
                                     "class Other { [Key] uint32 K; string Sub; };\n")
        for query, hint in (
                ("SELECT Sub.N FROM Holder", "Sub is a property of Holder and not a class of FROM: a query does not read the "
                                             "properties of embedded objects (line 1, column 8)"),
                ("SELECT h.K FROM Holder AS h WHERE Sub.N = 'x'",
                 "Sub is a property of h and not a class of FROM: a query does not read the properties of embedded objects "
                 "(line 1, column 35)"),
                ("SELECT h.K FROM Holder AS h, Other WHERE Sub.N = 'x'",
                 "Sub is a property of more than one class: write h.Sub or Other.Sub (line 1, column 42)")):
            with self.subTest(query=query):
                result = self.run_tool("--no-live", "-m", path, "--warnings", query)
                self.assertEqual((result.status, result.err.splitlines()[-3]), (1, "qorql: hint: " + hint))

    def test_hints_count_in_the_whole_text(self):
        result = self.model("--warnings", "SELECT Id FROM Shop_Empty; SELECT Nmae FROM Shop_Item")
        self.assertEqual(result.err.splitlines()[-3:],
                         ["qorql: hint: Nmae is not a property of Shop_Item: did you mean Name? (line 1, column 35)",
                          "  SELECT Nmae FROM Shop_Item", "         ^"])

    def test_a_result_that_ends_early(self):
        status, shown = self.show("SELECT i.Nam FROM Shop_Item AS i")
        self.assertEqual(status, 1)
        self.assertEqual(shown, "qorql: warning: Shop_Item has no property Nam: did you mean Name?\n"
                                "  SELECT i.Nam FROM Shop_Item AS i\n"
                                "           ^\n"
                                "qorql: error: A non-existent property - 'Nam' was requested from class - 'i' (CIM status 4)\n"
                                "  SELECT i.Nam FROM Shop_Item AS i\n"
                                "           ^\n"
                                "qorql: hint: Nam is not a property of Shop_Item: did you mean Name? (line 1, column 10)\n")

    def test_a_caret_is_shown_once(self):
        fault = "SELECT Id FROM Shop_Item LIMIT 3"
        self.assertEqual(self.show(fault)[1], "qorql: error: unexpected token 'LIMIT' found (line 1, CIM status 16)\n"
                                              f"  {fault}\n" + " " * 27 + "^\n"
                                              "qorql: hint: to see the first rows only, write SELECT FIRST n ...\n")
        other = "SELECT Id FROM Shop_Item WHERE Name = NULL"
        self.assertEqual(self.show(other)[1], "qorql: error: unexpected token 'NULL' found (line 1, CIM status 16)\n"
                                              f"  {other}\n" + " " * 40 + "^\n"
                                              "qorql: hint: test for NULL with IS: Name IS NULL\n"
                                              f"  {other}\n" + " " * 38 + "^\n")

    def test_no_hint_where_nothing_better_is_known(self):
        for query in ("SELECT", "SELECT Id FROM Shop_Item WHERE ,", "SELECT Id FROM Shop_Item WHERE Id / 0 = 1"):
            self.assertNotIn("hint", self.show(query)[1])

    def test_no_caret_for_faults_of_the_data(self):
        self.assertEqual(self.show("SELECT Id FROM Shop_Item WHERE Id / 0 = 1")[1].count("\n"), 1)


if __name__ == "__main__":
    toolcase.main()
