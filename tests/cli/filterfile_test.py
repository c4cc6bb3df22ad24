"""Files of filters: comments, names and filters over several lines; what validate prints of them; WQL in filters."""
# SPDX-License-Identifier: Apache-2.0
import json
import unittest

import toolcase
from toolcase import ToolCase

ALERT = "SELECT * FROM CIM_AlertIndication"
STAR = "CIM_AlertIndication\t*"


class FileCase(ToolCase):
    def validate(self, text, *arguments):
        return self.run_tool("validate", "--no-live", *arguments, "-f", self.write("filters.txt", text))

    def lines(self, text):
        """The output's lines; the summary is left out."""
        return self.validate(text, "--quiet").out.splitlines()


class Layout(FileCase):
    def test_comments(self):
        self.assertEqual(self.lines(f"# one\n{ALERT}\n  # two\n#\n{ALERT}\n"),
                         [f"valid\t{STAR}\tline 2", f"valid\t{STAR}\tline 5"])
        self.assertEqual(self.lines("# SELECT\n\n   #x"), [])

    def test_an_indented_line_continues_a_filter(self):
        self.assertEqual(self.lines(f"{ALERT}\n  WHERE MessageID = 'x'\n\tAND EventID = 'y'\r\n{ALERT}\n"),
                         [f"valid\t{STAR}\tline 1", f"valid\t{STAR}\tline 4"])

    def test_places_in_a_later_line_count_comments_and_columns(self):
        self.assertEqual(self.lines(f"{ALERT}\n  WHERE EventID = 'y'\n# no\n# nor this\n    AND Nope = 1\n"),
                         ["invalid\tNope is not a property of CIM_AlertIndication (line 5, column 9)\tline 1"])
        result = self.validate(f"\n{ALERT}\n  WHERE EventID = 'y'\n    AND EventID = 5\n")
        self.assertEqual(result.err, "qorql: warning: line 2: EventID is a string and does not compare with a number: "
                                     "it never matches (line 4, column 9)\n")

    def test_what_ends_a_filter(self):
        for between in ("\n", "\n  ", "\n \n "):
            self.assertEqual(self.lines(f"  {ALERT}{between}{ALERT}"),
                             [f"valid\t{STAR}\tline {line}" for line in (1, 1 + between.count("\n"))], repr(between))
        self.assertEqual(self.lines(f"{ALERT}\n\n  WHERE EventID = 'x'")[1],
                         "invalid\t'SELECT' expected (line 3, column 3)\tline 3")
        self.assertEqual(self.lines(f"{ALERT}\nWHERE EventID = 'x'")[1],
                         "invalid\t'SELECT' expected (line 2, column 1)\tline 2")

    def test_a_word_that_only_begins_like_select_continues(self):
        self.assertEqual(len(self.lines(f"{ALERT} WHERE EventID =\n  Selected\n")), 1)

    def test_names(self):
        self.assertEqual(self.lines(f"fan.failed-2: {ALERT}\n größe:\t{ALERT}\nlow:\n\n  {ALERT}\nhigh:\n{ALERT}\n"
                                    "nothing:\n"),
                         [f"valid\t{STAR}\tline 1\tfan.failed-2", f"valid\t{STAR}\tline 2\tgröße",
                          "invalid\t'SELECT' expected (line 3, column 1, at the end)\tline 3\tlow",
                          f"valid\t{STAR}\tline 5", f"valid\t{STAR}\tline 6\thigh",
                          "invalid\t'SELECT' expected (line 8, column 1, at the end)\tline 8\tnothing"])

    def test_columns_after_a_name(self):
        self.assertEqual(self.lines("größe: SELECT Nope FROM CIM_AlertIndication\n"),
                         ["invalid\tNope is not a property of CIM_AlertIndication (line 1, column 15)\tline 1\tgröße"])

    def test_what_is_no_name(self):
        for text in (f"7: {ALERT}", f"two words: {ALERT}", f"a:b {ALERT}", f": {ALERT}", f"a,b: {ALERT}"):
            self.assertEqual([line.split("\t")[0] for line in self.lines(text)], ["invalid"], text)
            self.assertNotIn("\tline 1\t", self.lines(text)[0])

    def test_a_name_that_stands_twice(self):
        result = self.validate(f"a: {ALERT}\nb: {ALERT}\na: {ALERT}\n")
        self.assertEqual((result.status, result.err), (1, "qorql: 3 filters: 2 valid, 1 invalid\n"))
        self.assertEqual(result.out.splitlines()[2], "invalid\tthere is a filter a in line 1 already\tline 3\ta")
        told = json.loads(self.validate(f"a: {ALERT}\na: SELECT\n", "-o", "json", "--quiet").out)
        self.assertEqual([filter["valid"] for filter in told], [True, False])
        self.assertTrue(told[1]["reason"].startswith("there is a filter a in line 1 already; "), told)

    def test_lines_at_the_margin_that_go_on(self):
        hint = "qorql: hint: line {}: a filter goes on in lines that are indented under it\n"
        text = "SELECT *\nFROM CIM_AlertIndication\nWHERE EventID = 'a'\n\n" + ALERT + "\nWHERE EventID = 'a'\n"
        result = self.validate(text)
        self.assertEqual(result.err.count("indented"), 2)
        for line in (2, 6):
            self.assertIn(hint.format(line), result.err)
        self.assertIn(hint.format(2), self.run_tool("match", "--filters", self.write("f.txt", text)).err)
        for text in (ALERT + "\n\nWHERE\n", ALERT + "\n  WHERE\n", "WHERE\n", ALERT + "\nSELECT\n"):
            self.assertNotIn("indented", self.validate(text).err, text)
        self.assertNotIn("hint", self.validate("SELECT *\nFROM CIM_AlertIndication\n", "--quiet").err)

    def test_a_semicolon_behind_a_filter(self):
        for result in (self.validate(ALERT + ";\n"), self.run_tool("validate", ALERT + " ;")):
            self.assertEqual(result.status, 1)
            self.assertIn("a filter ends without a ;\n", result.err)
        self.assertNotIn("without a ;", self.validate(f"{ALERT}; {ALERT}\n").err)


class Summary(FileCase):
    def test_counts(self):
        self.assertEqual(self.validate(f"{ALERT}\nSELECT\n{ALERT} WHERE NOT EventID = 'a'\n").err.splitlines()[-1],
                         "qorql: 3 filters: 2 valid (1 with warnings), 1 invalid")
        self.assertEqual(self.validate(f"{ALERT}\n{ALERT}\n").err, "qorql: 2 filters: 2 valid, 0 invalid\n")

    def test_none_for_one_filter_and_with_quiet(self):
        self.assertEqual(self.validate(ALERT).err, "")
        self.assertEqual(self.validate(f"{ALERT}\n{ALERT}\n", "--quiet").err, "")


class Json(FileCase):
    def test_a_file(self):
        result = self.validate(f"a: {ALERT} WHERE NOT EventID = 'a'\nSELECT \"Nope\nSELECT MessageID, EventID FROM "
                               "CIM_AlertIndication", "-o", "json", "--quiet")
        self.assertEqual((result.status, result.err), (1, ""))
        first, second, third = json.loads(result.out)
        self.assertEqual(first, {"line": 1, "name": "a", "valid": True, "classes": ["CIM_AlertIndication"],
                                 "properties": ["*"],
                                 "warnings": ["a condition under NOT never matches (line 1, column 44)"]})
        self.assertEqual((second["line"], second["valid"], sorted(second)), (2, False, ["line", "reason", "valid"]))
        self.assertEqual((third["properties"], third["warnings"]), (["MessageID", "EventID"], []))

    def test_one_filter(self):
        out = self.succeed(self.run_tool("validate", "-o", "json", ALERT))
        self.assertEqual(json.loads(out), [{"valid": True, "classes": ["CIM_AlertIndication"], "properties": ["*"],
                                            "warnings": []}])

    def test_no_filter(self):
        self.assertEqual(json.loads(self.validate("", "-o", "json").out), [])

    def test_strict_prints_nothing_that_is_refused(self):
        result = self.validate(f"{ALERT}\n{ALERT} WHERE NOT EventID = 'a'\n", "--strict", "-o", "json")
        self.assertEqual((result.status, result.out), (1, ""))
        self.assertEqual(len(json.loads(self.validate(f"{ALERT}\n{ALERT}\n", "--strict", "-o", "json").out)), 2)


class Wql(ToolCase):
    def reason(self, text, *arguments):
        return self.run_tool("validate", *arguments, text).out

    def interval(self, marked, told, *arguments):
        """What is told of WITHIN is told once, as a hint."""
        result = self.run_tool("validate", *arguments, marked.replace("^", ""))
        self.assertEqual(result.out, f"invalid\tunexpected token 'WITHIN' found (line 1, column {marked.index('^') + 1})\n")
        self.assertEqual(result.err, toolcase.hint(marked, told))

    def test_events_and_their_properties(self):
        for arguments in ((), ("-q", "WQL")):
            self.interval("SELECT * FROM __instancemodificationevent ^WITHIN 5 WHERE TargetInstance ISA 'Linux_User'",
                          "in CIM write CIM_InstModification for __InstanceModificationEvent, SourceInstance for "
                          "TargetInstance, and leave out WITHIN", *arguments)

    def test_each_event_has_its_class(self):
        for event, cim in (("Creation", "CIM_InstCreation"), ("Modification", "CIM_InstModification"),
                           ("Deletion", "CIM_InstDeletion"), ("Operation", "CIM_InstIndication")):
            reason = self.reason(f"SELECT * FROM __Instance{event}Event")
            self.assertIn(f"; in CIM write {cim} for __Instance{event}Event\n", reason)
            self.assertTrue(self.reason(f"SELECT * FROM {cim}").startswith("valid\t"), cim)

    def test_the_interval_alone(self):
        self.interval("SELECT * FROM CIM_InstCreation ^WITHIN 5", "in CIM there is no WITHIN: leave it out")

    def test_a_condition_that_only_never_matches(self):
        result = self.run_tool("validate", "SELECT * FROM CIM_InstModification WHERE TargetInstance.Name = 'x'")
        self.assertEqual(result.err.splitlines()[-1], "qorql: warning: in CIM write SourceInstance for TargetInstance")

    def test_match_says_it_too(self):
        result = self.run_tool("match", "SELECT TargetInstance FROM CIM_InstDeletion")
        self.assertIn("; in CIM write SourceInstance for TargetInstance\n", result.err)

    def test_no_hint_for_what_is_no_word_of_wql(self):
        for text in ("SELECT * FROM CIM_InstCreation WHERE Nope = 'WITHIN'", "SELECT Nope FROM CIM_InstCreation"):
            self.assertNotIn("in CIM", self.reason(text))
        schema = self.write("own.mof", "class XYZ_Goal { [Key] string TargetInstance; };\n")
        for text in ("SELECT TargetInstance FROM XYZ_Goal", "SELECT TargetInstance, Nope FROM XYZ_Goal"):
            self.assertNotIn("in CIM", self.reason(text, "-m", schema))


if __name__ == "__main__":
    toolcase.main()
