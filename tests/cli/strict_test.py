"""--strict: what would be warned of is an error before anything is fetched, and nothing is printed."""
# SPDX-License-Identifier: Apache-2.0
import os
import unittest

import toolcase
from toolcase import ToolCase

GOOD = "SELECT Id FROM Shop_Item WHERE Id = 1"
OR = GOOD + " OR Id = 2"
OR_ERROR = ('OR keeps what its last operand keeps: only "Id = 2" decides. Run a query for each operand [WHERE-3]')
FORMS = ("table", "csv", "json", "jsonl", "html", "xml", "mof")
SCHEMA = os.path.join(toolcase.HERE, "filters.mof")
ALERT = "SELECT * FROM CIM_AlertIndication WHERE EventID = 'a'"
NEVER = "a filter that uses OR never matches (line {}, column 55)"


class Queries(ToolCase):
    def strict(self, *arguments, stdin=b""):
        return self.model("--strict", *arguments, stdin=stdin)

    def test_what_is_not_warned_of_runs(self):
        for form in FORMS:
            with self.subTest(form=form):
                self.assertEqual(self.succeed(self.strict("-o", form, GOOD)), self.succeed(self.model("-o", form, GOOD)))

    def test_a_surprise_is_refused_in_every_form(self):
        for form in FORMS:
            with self.subTest(form=form):
                result = self.strict("-o", form, OR)
                self.assertEqual((result.status, result.out), (1, ""))
                self.assertEqual(result.err, f"qorql: error: {OR_ERROR}\n")

    def test_every_warning_of_a_statement_is_an_error(self):
        for query in ("SELECT Id FROM Shop_Item WHERE Name LIKE 'a%'", "SELECT Id, Id - 1 - 1 AS X FROM Shop_Item",
                      "SELECT *, Id FROM Shop_Item", "SELECT i.Nam FROM Shop_Item AS i", GOOD + " @",
                      "SELECT Id FROM Shop_Item WHERE Nowhere = Shop_Item AND Nowhere = Shop_Item"):
            with self.subTest(query=query):
                warned = self.model("--warnings", query)
                expected = [line.replace("warning", "error", 1) for line in warned.err.splitlines()
                            if line.startswith("qorql: warning: ")]
                self.assertNotEqual(expected, [])
                for more in ((), ("--quiet",), ("--warnings",)):
                    result = self.strict(*more, query)
                    self.assertEqual((result.status, result.out), (1, ""))
                    self.assertEqual(result.err.splitlines(), expected)

    def test_rows_that_are_empty_in_xml(self):
        self.refused(self.strict("-o", "xml", "SELECT * FROM Shop_Item"), 1,
                     "qorql: error: In XML the rows of * are empty: name the columns [SEL-5]")
        self.assertEqual(self.strict("-o", "csv", "SELECT * FROM Shop_Item").status, 0)
        self.assertEqual(self.strict("SELECT * FROM Shop_Item FORMAT AS XML").status, 1)

    def test_characters_that_are_passed_over(self):
        self.refused(self.strict(GOOD + " @"), 1, "qorql: error: skipped, since the language does not know it: "
                                                  "@ (line 1, column 39)")

    def test_nothing_is_fetched(self):
        # Would fail in its first row, and says so only where it runs.
        query = "SELECT Id FROM Shop_Item WHERE Id / 0 = 1 OR Id = 2"
        self.assertIn("Division", self.model("--warnings", query).err)
        result = self.strict("--stats", "--log", "trace", query)
        self.assertEqual((result.status, result.out), (1, ""))
        for sign in ("Division", "enumerate", "stats"):
            self.assertNotIn(sign, result.err)

    def test_all_statements_are_looked_at_before_the_first_runs(self):
        result = self.strict("-o", "csv", stdin=f"{GOOD};\n{OR};\n{GOOD} @;\n")
        self.assertEqual((result.status, result.out), (1, ""))
        self.assertEqual(result.err, f"qorql: error: line 2: {OR_ERROR}\nqorql: error: line 3: skipped, since the "
                                     "language does not know it: @ (line 3, column 39)\n")
        self.assertEqual(self.succeed(self.strict("-o", "csv", stdin=f"{GOOD};\n{GOOD};\n")), "Id\n1\n\nId\n1\n")

    def test_a_statement_that_does_not_parse_is_found_before_the_first_runs(self):
        result = self.strict("-o", "csv", GOOD + "; SELECT @")
        self.assertEqual((result.status, result.out), (1, ""))
        warning, error = result.err.splitlines()
        self.assertIn("@ (line 1, column 47)", warning)
        self.assertTrue(error.startswith("qorql: error: "), error)

    def test_from_a_file(self):
        path = self.write("q.qql", OR)
        self.refused(self.strict("--file", path), 1, f"qorql: error: {OR_ERROR}")

    def test_it_takes_no_value(self):
        self.wrong_usage(self.model("--strict=yes", GOOD), "--strict takes no value")


class Explanations(ToolCase):
    def explain(self, *arguments):
        return self.run_tool("explain", "--no-live", "-m", toolcase.MODEL, *arguments)

    def test_what_is_not_warned_of_is_explained(self):
        for query in (GOOD, f"{GOOD}; {GOOD}"):
            self.assertEqual(self.succeed(self.explain("--strict", query)), self.succeed(self.explain(query)))

    def test_a_surprise_is_refused(self):
        self.assertIn(OR_ERROR, self.succeed(self.explain(OR)))
        for more in ((), ("--quiet",)):
            self.refused(self.explain("--strict", *more, OR), 1, f"qorql: error: {OR_ERROR}")

    def test_all_statements_are_looked_at_before_the_first_is_explained(self):
        result = self.explain("--strict", f"{GOOD};\n{OR};\n{GOOD} @")
        self.assertEqual((result.status, result.out), (1, ""))
        self.assertEqual(result.err, f"qorql: error: line 2: {OR_ERROR}\nqorql: error: line 3: skipped, since the "
                                     "language does not know it: @ (line 3, column 39)\n")

    def test_what_does_not_parse_is_told_as_without_it(self):
        plain, strict = (self.explain(*more, "SELECT Idd FROM Shop_Item") for more in ((), ("--strict",)))
        self.assertEqual((strict.status, strict.out, strict.err), (plain.status, plain.out, plain.err))
        self.assertEqual(strict.status, 1)


class Filters(ToolCase):
    def strict(self, command, *arguments, stdin=b""):
        return self.run_tool(command, "--strict", "--no-live", *arguments, stdin=stdin)

    def test_validate(self):
        self.assertEqual(self.succeed(self.strict("validate", ALERT)), "valid\tCIM_AlertIndication\t*\n")
        for more in ((), ("--quiet",)):
            self.refused(self.strict("validate", *more, ALERT + " OR EventID = 'b'"), 1, f"qorql: error: {NEVER.format(1)}")
        result = self.strict("validate", "SELECT Nope FROM CIM_AlertIndication")
        self.assertEqual((result.status, result.err), (1, ""))
        self.assertTrue(result.out.startswith("invalid\tNope is not a property of "), result.out)

    def test_validate_many(self):
        good = f"{ALERT}\nSELECT * FROM CIM_Nope\n\n{ALERT}\n"
        result = self.strict("validate", stdin=good)
        self.assertEqual((result.status, [line.split("\t")[0] for line in result.out.splitlines()]),
                         (1, ["valid", "invalid", "valid"]))
        result = self.strict("validate", stdin=good + ALERT + " OR EventID = 'b'\n")
        self.assertEqual((result.status, result.out), (1, ""))
        warning, summary, invalid = result.err.splitlines()
        self.assertEqual(summary, "qorql: 4 filters: 3 valid (1 with warnings), 1 invalid")
        self.assertEqual(warning, f"qorql: error: line 5: {NEVER.format(5)}")
        self.assertTrue(invalid.startswith("qorql: error: CIM_Nope is not a class of root/cimv2"), invalid)

    def test_validate_names_what_is_passed_over(self):
        self.refused(self.strict("validate", ALERT + " %"), 1, "qorql: error: skipped, since the language does not "
                                                               "know it: % (line 1, column 55)")

    def test_match(self):
        instance = 'instance of CIM_AlertIndication { EventID = "a"; };\n'
        path = "root/cimv2:CIM_AlertIndication#1\tmatch\n"
        self.assertEqual(self.succeed(self.strict("match", "-m", SCHEMA, ALERT.replace("EventID", "OwningEntity"),
                                                  stdin=instance.replace("EventID", "OwningEntity"))), path)
        missing = os.path.join(self.folder, "missing.mof")  # is not even opened
        self.refused(self.strict("match", ALERT + " OR EventID = 'b'", missing), 1, f"qorql: error: {NEVER.format(1)}")

    def test_watch(self):
        text = "SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA Linux_Group"
        ran = self.run_tool("watch", "--strict", "--count", "1", "--interval", "0.01", text)
        self.assertEqual(self.succeed(ran), "")
        self.refused(self.run_tool("watch", "--strict", text + " @"), 1,
                     "qorql: error: skipped, since the language does not know it: @ (line 1, column 69)")
        self.refused(self.run_tool("watch", "--strict", "SELECT * FROM CIM_AlertIndication"), 1,
                     "qorql: error: the filter asks for no indication of a change: nothing will be printed")


if __name__ == "__main__":
    toolcase.main()
