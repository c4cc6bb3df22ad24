"""Hints: what may have been meant by what is refused or fails, on standard error with a caret, unless --quiet."""
# SPDX-License-Identifier: Apache-2.0
import time
import unittest

import toolcase
from toolcase import MODEL, ToolCase

FROM = " FROM Shop_Item"
WHERE = "SELECT Id FROM Shop_Item WHERE "
ROW = "root/cimv2:Shop_Item.Id="


class HintCase(ToolCase):
    def hinted(self, result, text, hint, place=""):
        """Says the hint, with a caret where ^ stands in the text; that result is of the text without it."""
        self.assertTrue(result.err.endswith(toolcase.hint(text, hint, place)), result.err)
        self.assertEqual(result.err.count("hint:"), 1)
        self.assertEqual(result.status, 1)


class Queries(HintCase):
    def hint(self, marked, hint, *arguments):
        query = marked.replace("^", "", 1)
        result = self.model(*arguments, query)
        self.hinted(result, marked, hint)
        quiet = self.model(*arguments, "--quiet", query)
        self.assertNotIn("hint", quiet.err)
        explained = self.model("explain", *arguments, query)
        if explained.status == 1:  # the text is at fault, and not a value
            self.hinted(explained, marked, hint)

    def test_values_that_are_missing(self):
        for marked, hint in (
                ("SELECT Id" + FROM + " ORDER BY ^Name ASC",
                 f"Name is NULL in {ROW}4: leave such rows out with WHERE Name IS NOT NULL"),
                ("SELECT i.Id FROM Shop_Item AS i WHERE i.Id > 2 ORDER BY ^i.Balance DESC",
                 f"i.Balance is NULL in {ROW}3: leave such rows out with AND i.Balance IS NOT NULL"),
                (WHERE + "^Name LIKE 'a'", f"Name is NULL in {ROW}4: put Name IS NOT NULL AND before it"),
                (WHERE + "^Codes[3] = 1", f"Codes has 3 elements in {ROW}1, and the first is [0]")):
            with self.subTest(query=marked):
                self.hint(marked, hint)

    def test_what_a_hint_says_to_write_does_work(self):
        for query in ("SELECT Id" + FROM + " WHERE Name IS NOT NULL ORDER BY Name ASC",
                      WHERE + "Id > 2 AND Balance IS NOT NULL ORDER BY Balance DESC",
                      WHERE + "Name IS NOT NULL AND Name LIKE 'a'", WHERE + "Made > '20230101000000.000000+000'",
                      WHERE + "NOT Id = 1 AND NOT Name = 'a'", WHERE + "Size + Id IS NULL", WHERE + "Id <> 1 AND Id <> 2",
                      WHERE + "NOT Shop_Item.Name IS NULL AND NOT Shop_Item.Name LIKE 'a'", "SELECT Size / 1024 AS Value" + FROM,
                      WHERE + "Weight > 1.0e-8", "SELECT FIRST 3 Id" + FROM):
            self.succeed(self.model(query))

    def test_quotes_and_blanks(self):
        for marked, hint in (
                (WHERE + "Name = ^'abc", "the quote that opens here is not closed on its line"),
                (WHERE + "Id = 1 AND\n  Name = ^'abc\n  AND Id = 2", "the quote that opens here is not closed on its line"),
                (WHERE + "Name = ^\u2018plain\u2019", "text goes in plain single quotes: 'plain'"),
                (WHERE + "Name = ^\"plain\"", "text goes in single quotes: 'plain'"),
                (WHERE + "Id = 1 ^ANDName = 'plain'", "a space is missing: AND Name")):
            with self.subTest(query=marked):
                self.hint(marked, hint)

    def test_parentheses(self):
        start = "only one comparison may stand in parentheses: "
        for marked, hint in (
                (WHERE + "(Id = 1 ^OR Id = 2)", "run one statement with Id = 1 and one with Id = 2"),
                (WHERE + "(Id = 1 ^AND Name = 'a')", "write Id = 1 AND Name = 'a'"),
                (WHERE + "NOT (Id = 1 ^AND Id = 2)", "run one statement with NOT Id = 1 and one with Id = 1 AND NOT Id = 2"),
                (WHERE + "NOT (Id = 1 ^OR Id = 2)", "write NOT Id = 1 AND NOT Id = 2")):
            with self.subTest(query=marked):
                self.hint(marked, start + hint)

    def test_what_other_languages_write_otherwise(self):
        for marked, hint in (
                (WHERE + "Name ^= NULL", "test for NULL with IS: Name IS NULL"),
                (WHERE + "Name ^!= NULL", "test for NULL with IS: Name IS NOT NULL"),
                (WHERE + "Name ^NOT LIKE 'a'", "NOT goes before the comparison: NOT Name LIKE 'a'"),
                (WHERE + "Id ^== 1", "equality is written with one ="),
                (WHERE + "^\"Name\" = 'a'", "names go without quotes: Name"),
                ("SELECT ^Size / 2 Half" + FROM, "give it a name with AS: Size / 2 AS Half"),
                ("SELECT Id ^Name" + FROM, "a comma is missing: Id, Name; or AS: Id AS Name"),
                ("SELECT i.Id FROM Shop_Item AS i WHERE i.^Name.x = 1", "a query does not read the properties of embedded objects"),
                ("SELECT i.Id FROM Shop_Item AS i ORDER BY i.^Name.x ASC",
                 "a query does not read the properties of embedded objects"),
                ("SELECT ^TOP 5 Id" + FROM, "to see the first rows only, write SELECT FIRST n ..."),
                ("SELECT Id" + FROM + " ^LIMIT 5", "to see the first rows only, write SELECT FIRST n ..."),
                ("SELECT Id" + FROM + " ORDER BY Id ASC^, Name ASC", "rows can be sorted by one key only"),
                ("SELECT Id" + FROM + " ORDER BY Id^, Name", "rows can be sorted by one key only"),
                (WHERE + "Size > ^1e8", "a number with an exponent needs a decimal point and takes no plus sign: 1.0e8"),
                ("SELECT ^UPPER(Name) AS n" + FROM,
                 "there is no function UPPER: the language has OBJECTPATH, MIN, MAX, COUNT, AVG, SUM, INSTANCEOF"),
                ("SELECT COUNT(^DISTINCT Name) AS n" + FROM,
                 "there is no DISTINCT: every row is shown. Another program leaves out equal ones: "
                 'qorql -o csv --no-header "SELECT Name FROM Shop_Item" | sort -u | wc -l'),
                ("SELECT COUNT(^*) AS n" + FROM, "an aggregate takes a property, as in COUNT(Name)"),
                ("SELECT Id AS ^Order" + FROM, "Order is a keyword, not a name: choose another one"),
                ("SELECT Id" + FROM + " FORMAT AS ^JSON",
                 "the formats of the language are QORIOBJECT, XML, HTML and CSV; qorql has more: qorql -o json"),
                ("^show tables",
                 "qorql classes lists the classes, and qorql contents those with instances; in the shell, .tables does"),
                (WHERE + "Id ^IN (1, 2)", "there is no IN: run one statement for each value, as with Id = 1"),
                (WHERE + "Id ^BETWEEN 1 AND 2", "there is no BETWEEN: write Id >= 1 AND Id <= 2"),
                ("SELECT Id" + FROM + " ^-- all", "the language has no comments: leave it out"),
                ("SELECT Id" + FROM + " ^LEFT JOIN Shop_Empty", "an outer join is written in WHERE, as A.x *= B.y"),
                ("SELECT i.Id FROM Shop_Item ^i", "an alias follows AS: Shop_Item AS i"),
                ("SELECT i.Id FROM Shop_Item AS i, Shop_Empty AS e WHERE ^OBJECTPATH(i) = OBJECTPATH(e)",
                 "OBJECTPATH(a) = OBJECTPATH(b) is read as half an association: compare the keys, as in a.Name = b.Name"),
                ("SELECT i.Id FROM Shop_Item AS i, Shop_Empty AS e WHERE Shop_Link = i AND ^i.Id = 1",
                 "write both ends of an association side by side: Link = a AND Link = b")):
            with self.subTest(query=marked):
                self.hint(marked, hint)

    def test_unequal_has_two_signs(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", WHERE + "Id != 1")),
                         self.succeed(self.model("-o", "csv", WHERE + "Id <> 1")))

    def test_groups(self):
        hint = ("there is no GROUP BY: an aggregate covers all rows. Another program groups the rows: "
                "qorql -o jsonl \"SELECT * FROM Shop_Item\" | jq -s \"group_by(.Name)\"")
        self.hint("SELECT COUNT(Id) AS n, ^Name" + FROM, hint)
        self.hint("SELECT COUNT(Id) AS n, ^Name" + FROM + " GROUP BY Name", hint)
        self.hint("SELECT Name" + FROM + " ^GROUP BY Name", hint)

    def test_a_column_before_an_aggregate_is_the_group(self):
        hint = ("there is no GROUP BY: an aggregate covers all rows. Another program groups the rows: "
                "qorql -o jsonl \"SELECT * FROM Shop_Item\" | jq -s \"group_by(.Name)\"")
        self.hint("SELECT ^Name, COUNT(Id)" + FROM, hint)
        self.hint("SELECT ^i.Name, COUNT(i.Id) FROM Shop_Item AS i GROUP BY i.Name", hint)

    def test_a_column_without_a_name(self):
        self.hint("SELECT Id, ^Size / 1024" + FROM, "give it a name with AS: Size / 1024 AS Value")

    def test_a_date(self):
        self.hint(WHERE + "Made > ^'2026-11-22'", "a datetime is written '20261122000000.000000+000'")
        today = {time.strftime("%Y%m%d", time.gmtime())}
        result = self.model(WHERE + "Made > 'yesterday'")
        today.add(time.strftime("%Y%m%d", time.gmtime()))
        self.assertIn(result.err.split("datetime is written '")[1][:8], today)
        self.hint(WHERE + "Name = ^5", "compare text with text in single quotes, and numbers with numbers")

    def test_names(self):
        path = self.write("m.mof", "class Base { [Key] uint32 K; };\nclass Der : Base { string Extra; };\n"
                                   "instance of Base { K = 1; };\ninstance of Base { K = 2; };\n")
        for marked, hint in (
                ("SELECT Id" + FROM + " ORDER BY ^Nmae ASC",
                 "Nmae is not a property of Shop_Item: did you mean Name? (line 1, column 35)"),
                ("SELECT Id" + FROM + " ORDER BY ^Wheels ASC", "Wheels is not a property of Shop_Item (line 1, column 35)"),
                ("SELECT i.Id FROM Shop_Item AS i ORDER BY i.^Wheels DESC",
                 "Wheels is not a property of Shop_Item (line 1, column 44)"),
                ("SELECT ^Extra FROM Base", "Extra is not a property of Base but of Der, a subclass (line 1, column 8)"),
                ("SELECT K FROM Base ORDER BY ^Extra ASC",
                 "Extra is not a property of Base but of Der, a subclass (line 1, column 29)"),
                ("SELECT b.K FROM Base AS b WHERE b.^Extra = 'x'",
                 "Extra is a property of Der, which not every Base is: ask for it FROM Der"),
                ("SELECT Id FROM ^Shop_Itm",
                 "Shop_Itm is not a class of root/cimv2: did you mean Shop_Item? (line 1, column 16)"),
                ("SELECT Id, ^Order" + FROM, "Order is a keyword: a property or class of that name cannot be referred to, "
                                              "but SELECT * shows it"),
                (WHERE + "^Format = 1", "Format is a keyword: a property or class of that name cannot be referred to, "
                                        "but SELECT * shows it")):
            with self.subTest(query=marked):
                self.hint(marked, hint, "-m", path)

    def test_keywords(self):
        for marked, hint in (("SELECT Id ^FORM Shop_Item", "did you mean FROM?"),
                             ("SELECT Id" + FROM + " ^WERE Id = 1", "did you mean WHERE?"),
                             ("SELECT Id" + FROM + " ^ODER BY Id ASC", "did you mean ORDER?"),
                             ("SELECT Id" + FROM + " ORDER BY Id^", "ASC or DESC follows the key: ORDER BY Id ASC"),
                             ("SELECT Id" + FROM + " ORDER BY Id ^DECS", "did you mean DESC?")):
            with self.subTest(query=marked):
                self.hint(marked, hint)

    def test_a_class_alone(self):
        self.hint("Q ^Shop_Item", "to see the objects of a class, write SELECT * FROM Shop_Item")
        self.hint("^shop_item", "to see the objects of a class, write SELECT * FROM Shop_Item")

    def test_places_count_in_the_statement_and_lines_in_the_text(self):
        result = self.model(stdin="SELECT Id FROM Shop_Empty;\n  SELECT Id\n  FROM Shop_Item\n  LIMIT 3;")
        self.assertTrue(result.err.endswith("SELECT FIRST n ...\n    LIMIT 3\n    ^\n"), result.err)

    def test_a_statement_without_a_fault_has_none(self):
        self.succeed(self.model("SELECT Id, Name" + FROM + " WHERE Name IS NOT NULL ORDER BY Name ASC"))


class Filters(HintCase):
    ALERT = "SELECT * FROM CIM_AlertIndication WHERE "
    MARKED = ALERT + "EventID = 'a' ^ANDMessageID = 'b'"

    def test_every_command_that_takes_filters(self):
        text = self.MARKED.replace("^", "")
        hint = "a space is missing: AND MessageID"
        for command in (["validate", text], ["match", text], ["watch", text]):
            with self.subTest(command=command[0]):
                self.hinted(self.run_tool(*command), self.MARKED, hint)
                self.assertNotIn("hint", self.run_tool(command[0], "--quiet", *command[1:]).err)

    def test_only_what_a_filter_knows_is_advised(self):
        for marked, hint in (
                (self.ALERT + "EventID ^= NULL", "a condition on NULL never matches in a filter: leave it out"),
                (self.ALERT + "EventID = 'a' ^LIMIT 3", "a filter has no LIMIT: leave it out"),
                ("SELECT MessageID, ^COUNT(EventID) FROM CIM_AlertIndication",
                 "a function has no value in a filter: select properties"),
                ("SELECT * FROM CIM_InstModification ^WITHIN 10 WHERE SourceInstance ISA CIM_Process",
                 "in CIM there is no WITHIN: leave it out")):
            with self.subTest(filter=marked):
                self.hinted(self.run_tool("validate", marked.replace("^", "")), marked, hint)

    def test_filters_of_a_file(self):
        path = self.write("filters.txt", self.ALERT + "EventID = 'a'\n" + self.MARKED.replace("^", "") + "\n")
        for command in (["match", "--filters", path], ["watch", "--filters", path]):
            with self.subTest(command=command[0]):
                self.hinted(self.run_tool(*command), self.MARKED, "a space is missing: AND MessageID", "line 2: ")
        self.assertIn("qorql: hint: line 2: a space is missing", self.run_tool("validate", "--file", path).err)

    def test_open_and_curly_quotes(self):
        for marked, hint in (
                (self.ALERT + "EventID = ^'a", "the quote that opens here is not closed on its line"),
                (self.ALERT + "EventID = ^\u2018SNIA\u2019", "text goes in plain single quotes: 'SNIA'")):
            self.hinted(self.run_tool("validate", marked.replace("^", "")), marked, hint)

    def test_a_schema_that_is_given_as_instances(self):
        hint = "qorql: hint: a schema is given by --mof FILE; the files after the filter hold instances\n"
        for schema in ("class XYZ_A { [Key] uint32 K; };\n", "[Association]\nclass XYZ_A { [Key] uint32 K; };\n"):
            path = self.write("schema.mof", schema)
            result = self.run_tool("match", self.ALERT + "EventID = 'a'", path)
            self.assertEqual(result.status, 3)
            self.assertTrue(result.err.endswith(hint), result.err)
            self.assertNotIn("hint", self.run_tool("match", "--quiet", self.ALERT + "EventID = 'a'", path).err)

    def test_a_schema_that_is_given_as_instances_to_a_filter_of_its_classes(self):
        hint = "qorql: hint: a schema is given by --mof FILE; the files after the filter hold instances\n"
        text = "class XYZ_A { [Key] uint32 K; };\n"
        schema = self.write("schema.mof", text)
        wide = self.write("wide.mof", text.encode("utf-16"))
        filters = self.write("filters.txt", "SELECT * FROM XYZ_A\n")
        for arguments in (["SELECT * FROM XYZ_A", schema], ["--filters", filters, schema], ["SELECT * FROM XYZ_A", wide]):
            result = self.run_tool("match", *arguments)
            self.assertEqual(result.status, 1)
            self.assertTrue(result.err.endswith(hint), result.err)
            self.assertNotIn("hint", self.run_tool("match", "--quiet", *arguments).err)
        instances = self.write("a.mof", "instance of CIM_AlertIndication { };\n")
        for arguments in (["SELECT * FROM XYZ_A", instances], ["SELECT * FROM XYZ_A"],
                          ["SELECT * FROM XYZ_A", self.folder + "/none.mof"], ["SELECT K FROM CIM_AlertIndication", schema]):
            self.assertNotIn("--mof", self.run_tool("match", *arguments).err, arguments)

    def test_a_schema_that_cannot_be_read(self):
        path = self.write("bad.mof", "instance of Nowhere { K = 1; };\n")
        self.assertNotIn("hint", self.run_tool("match", self.ALERT + "EventID = 'a'", path).err)


class CommandLine(ToolCase):
    def test_a_command_of_the_shell(self):
        told = self.model(stdin=".tables\n")
        self.assertEqual((told.status, told.err.splitlines()[1]), (
            1, "qorql: hint: commands with a dot are for the shell at a terminal; here qorql contents, qorql classes and "
               "qorql describe CLASS tell what there is"))
        self.assertNotIn("hint", self.model("--quiet", stdin=".tables\n").err)

    def test_options_and_commands(self):
        for arguments, hint in (
                (["--nolive", "SELECT"], "did you mean --no-live?"),
                (["match", "--nolive", "SELECT"], "did you mean --no-live?"),
                (["--ouput=csv", "SELECT"], "did you mean --output?"),
                (["Q", "Linux_Process"], 'a statement is one argument, in quotes: qorql "SELECT * FROM Linux_Process"'),
                (["Q", "select Name FROM Linux_User"],
                 'a statement is one argument, in quotes: qorql "select Name FROM Linux_User"'),
                (["SELECT", "FIRST", "2", "Name", "FROM", "Linux_User"],
                 'a statement is one argument, in quotes: qorql "SELECT FIRST 2 Name FROM Linux_User"'),
                (["select", MODEL, MODEL, "FROM", "Linux_User"],
                 'a statement is one argument, in quotes: qorql "select * FROM Linux_User"'),
                (["show", "tables"], "qorql contents tells what there is"),
                (["clases", "Linux_Process"], "did you mean the command classes?")):
            with self.subTest(arguments=arguments):
                result = self.run_tool(*arguments)
                self.assertEqual(result.status, 2)
                self.assertEqual(result.err.splitlines()[1], f"qorql: hint: {hint}")
        quiet = self.run_tool("--quiet", "Q", "Linux_Process")
        self.assertEqual(quiet.err.splitlines()[1:], ["Try qorql --help."])
        self.assertNotIn("hint", self.run_tool("--nonsense-of-mine", "SELECT").err)


if __name__ == "__main__":
    toolcase.main()
