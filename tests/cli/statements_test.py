"""How statements are read and run: comments in files and at the shell, the time that a statement may take, results without a header."""
# SPDX-License-Identifier: Apache-2.0
import csv
import io
import time
import unittest

import toolcase
from toolcase import ToolCase

TWO = "SELECT Id, Name FROM Shop_Item WHERE Id < 3 ORDER BY Id ASC"


class Comments(ToolCase):
    def ids(self, text, *arguments):
        """What the text gives from a file, and that it gives the same from standard input."""
        path = self.write("statements", text)
        from_file = self.succeed(self.model("-o", "csv", "--no-header", *arguments, "--file", path))
        self.assertEqual(self.succeed(self.model("-o", "csv", "--no-header", *arguments, stdin=text)), from_file)
        return from_file

    def test_to_the_end_of_the_line(self):
        self.assertEqual(self.ids("#!/usr/bin/qorql --file\n"
                                  "# a comment; with 'a quote and /* what opens nothing\n"
                                  "SELECT Id # the key, isn't it\n"
                                  "FROM Shop_Item#;\n"
                                  "WHERE Id = 2; # the end"), "2\n")

    def test_blocks(self):
        self.assertEqual(self.ids("/* one; 'line */ SELECT /**/Id/* größer\n * # and 'more\n; */FROM Shop_Item WHERE/**/Id = 2"),
                         "2\n")
        self.assertEqual(self.ids("SELECT Id FROM Shop_Item WHERE Id = 6/*/ 4 /*/ /3"), "2\n")

    def test_two_dashes_where_no_statement_has_begun(self):
        self.assertEqual(self.ids("-- it's the first;\n  -- of two\n"
                                  "SELECT Id FROM Shop_Item WHERE Id = 1; -- between; them\n"
                                  "/* and */ -- so on\n"
                                  "SELECT Id FROM Shop_Item WHERE Id = 2; --the end"), "1\n\n2\n")

    def test_two_dashes_within_a_statement_are_arithmetic(self):
        statement = "SELECT Id FROM Shop_Item WHERE Id = 1 --1\n"
        self.assertEqual(self.ids(statement), "2\n")
        self.assertEqual(self.ids(statement.replace("--", "\n--")), "2\n")

    def test_none_begins_in_a_literal(self):
        for text in ("a # b", "a -- b", "a /* b", "a */ b"):
            self.assertEqual(self.ids(f"SELECT COUNT(Id) AS N FROM Shop_Item WHERE Name <> '{text}'; -- '"), "4\n", text)

    def test_a_literal_without_end_holds_none_to_the_end_of_its_line(self):
        result = self.model("-o", "csv", stdin="SELECT Id FROM Shop_Item WHERE Id = 2 ' # ;\n# gone\n")
        self.assertEqual((result.status, result.out), (0, "Id\n2\n"))

    def test_comments_alone_are_no_statement(self):
        self.assertEqual(self.ids("# nothing\n-- at all;\n/* ; */ ; ;\n"), "")

    def test_places_stay_those_of_the_text(self):
        text = "# größer\n-- one\n/* 日本\n*/ SELECT Id /* größer */ FROM Shop_Item\n# more\nWHERE Nmae = 'x' /* y */;\n"
        result = self.model(stdin=text)
        self.assertEqual((result.status, result.err.splitlines()[-3:]),
                         (1, ["qorql: hint: Nmae is not a property of Shop_Item: did you mean Name? (line 6, column 7)",
                              "  WHERE Nmae = 'x'", "        ^"]))
        result = self.model(stdin="/* a\n日 */ SELECT /* größer */ Nmae FROM Shop_Item")
        self.assertEqual((result.status, result.err.splitlines()[-3:]),
                         (1, ["qorql: hint: Nmae is not a property of Shop_Item: did you mean Name? (line 2, column 26)",
                              "  SELECT              Nmae FROM Shop_Item", " " * 22 + "^"]))
        self.refused(self.model("--quiet", stdin="# one\nSELECT Id /*\n*/ FORM Shop_Item"), 1,
                     "qorql: error: 'FROM' expected (line 3, CIM status 16)")

    def test_a_comment_without_end_is_an_error(self):
        self.refused(self.model(stdin="SELECT Id FROM Shop_Item;\n# x\n  /* open;\nSELECT"), 3,
                     "qorql: error: the comment that begins in line 3 does not end")
        self.assertEqual(self.model(stdin="SELECT Id FROM Shop_Item;\n/*/").status, 3)

    def test_a_statement_on_the_command_line_has_none(self):
        refused = self.model("SELECT Id FROM Shop_Item # all")
        self.assertEqual((refused.status, refused.out), (1, ""))
        self.assertEqual(refused.err, "qorql: error: unexpected token '#' found (line 1, CIM status 16)\n" +
                         toolcase.hint("SELECT Id FROM Shop_Item ^# all", "the language has no comments: leave it out"))
        self.assertIn("qorql: hint: the language has no comments", self.model("SELECT Id FROM Shop_Item -- all").err)


class NoHeader(ToolCase):
    def test_csv_reads_back(self):
        text = self.succeed(self.model("-o", "csv", "--no-header", TWO))
        self.assertEqual(list(csv.reader(io.StringIO(text))), [["1", "plain"], ["2", "with, comma"]])

    def test_the_form_of_the_statement(self):
        self.assertEqual(self.succeed(self.model("--no-header", TWO + " FORMAT AS CSV")), "1,plain\n2,\"with, comma\"\n")

    def test_a_table_is_as_wide_as_its_values(self):
        self.assertEqual(self.succeed(self.model("--no-header", TWO)), "1  plain\n2  with, comma\n")
        self.assertEqual(self.succeed(self.model("--no-header", "SELECT Sold, Id FROM Shop_Item WHERE Id < 3 ORDER BY Id ASC")),
                         "TRUE   1\nFALSE  2\n")

    def test_no_rows_are_nothing(self):
        for form in ("csv", "table"):
            self.assertEqual(self.succeed(self.model("-o", form, "--no-header", "SELECT Id FROM Shop_Empty")), "")

    def test_results_are_an_empty_line_apart(self):
        for form in ("csv", "table"):
            one = "SELECT Id FROM Shop_Item WHERE Id = 2"
            self.assertEqual(self.succeed(self.model("-o", form, "--no-header", one + ";" + one)), "2\n\n2\n")

    def test_forms_that_need_their_names_keep_them(self):
        for form in ("json", "jsonl", "html", "xml", "mof"):
            self.assertEqual(self.model("-o", form, "--no-header", TWO).raw, self.model("-o", form, TWO).raw, form)

    def test_lists(self):
        for arguments in (("describe", "Shop_Empty", "-o", "csv"), ("contents", "-o", "csv"), ("contents",)):
            whole = self.succeed(self.model(*arguments)).split("\n\n")
            bare = self.succeed(self.model(*arguments, "--no-header"))
            above = 2 if arguments == ("contents",) else 1
            kept = [row.split() for one in whole for row in one.splitlines()[above:]]
            self.assertEqual([row.split() for row in bare.splitlines() if row], kept)
            self.assertTrue(kept)


class Timeout(ToolCase):
    def slow_model(self):
        rows = "".join(f"instance of Big {{ K = {i}; }};\ninstance of Pig {{ K = {i}; }};\n" for i in range(30000))
        return self.write("slow.mof", "class Big { [Key] uint32 K; };\nclass Pig { [Key] uint32 K; };\n" + rows)

    def stopped(self, statement, *arguments, seconds="0.2"):
        began = time.monotonic()
        result = self.model("-m", self.slow_model(), "--timeout", seconds, *arguments, statement)
        self.assertLess(time.monotonic() - began, 60)
        return result

    def test_stops_a_statement_and_tells_what_was_being_done(self):
        self.refused(self.stopped("SELECT A.K FROM Big AS A, Pig AS B WHERE A.K + B.K = 0 - 1"), 1,
                     "qorql: error: the statement was stopped after 0.2 seconds (--timeout), joining and filtering "
                     "(CIM status 1)")

    def test_stops_the_combination_of_all_rows(self):
        result = self.stopped("SELECT A.K FROM Big AS A, Pig AS B", "-o", "csv", seconds="1")
        self.assertEqual(result.status, 1, result.err)
        self.assertIn("the statement was stopped after 1 second (--timeout), ", result.err)

    def test_stops_the_engines_stream(self):
        result = self.stopped("SELECT A.K FROM Big AS A, Pig AS B", "-o", "xml", seconds="1")
        self.assertEqual(result.status, 1, result.err)
        self.assertIn("the statement was stopped after 1 second (--timeout), ", result.err)

    def test_a_step_that_nothing_stops_is_named_when_it_ends(self):
        self.refused(self.model("--timeout", "0.000001", "SELECT Id FROM Shop_Item"), 1,
                     "qorql: error: the statement was stopped after 1e-06 seconds (--timeout), running (CIM status 1)")
        result = self.run_tool("--timeout", "0.2", "SELECT CPUPercent FROM Linux_Process WHERE CPUPercent < 0")
        self.assertEqual((result.status, toolcase.UNSEEN.sub("", result.err).lower()),
                         (1, "qorql: error: the statement was stopped after 0.2 seconds (--timeout), "
                             "fetching linux_process (cim status 1)\n"))

    def test_the_statements_after_it_are_not_run(self):
        result = self.stopped("SELECT Id FROM Shop_Item WHERE Id = 2;"
                              "SELECT A.K FROM Big AS A, Pig AS B WHERE A.K + B.K = 0 - 1; SELECT Id FROM Shop_Item", "-o", "csv",
                              seconds="0.5")
        self.assertEqual((result.status, result.out), (1, "Id\n2\n"))

    def test_each_statement_has_the_whole_time_and_one_in_time_is_untouched(self):
        for seconds in ("100", "99.5", "1e9".replace("e9", "0" * 30)):
            self.assertEqual(self.succeed(self.model("-o", "csv", "--timeout", seconds, TWO)),
                             self.succeed(self.model("-o", "csv", TWO)))

    def test_what_is_no_time(self):
        for wrong in ("0", "0.0", "-1", "", "abc", "1s", "nan", "inf", "1,5", "0x10", " 1"):
            self.wrong_usage(self.model("--timeout=" + wrong, TWO), f"'{wrong}' is not a number of seconds above 0" if wrong else "--timeout")
        self.wrong_usage(self.model(TWO, "--timeout"), "--timeout")


if __name__ == "__main__":
    toolcase.main()
