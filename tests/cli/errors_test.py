"""Errors with line and status, statements in a row, standard input, and a reader that goes away."""
# SPDX-License-Identifier: Apache-2.0
import os
import pty
import resource
import select
import signal
import subprocess
import time
import unittest

import toolcase
from toolcase import MODEL, ToolCase

ONE = "SELECT Id FROM Shop_Item WHERE Id = 1"
TWO = "SELECT Id FROM Shop_Item WHERE Id = 2"


class Errors(ToolCase):
    def run_on(self, arguments, path):
        """Status and standard error of the tool with the path opened as standard input."""
        source = os.open(path, os.O_RDONLY)
        try:
            done = subprocess.run([toolcase.TOOL, *arguments], stdin=source, capture_output=True, timeout=60, check=False)
        finally:
            os.close(source)
        return done.returncode, done.stderr.decode()

    def test_input_that_cannot_be_read_to_its_end(self):
        memory = "/proc/self/mem"  # opens, but nothing is mapped where reading begins
        schema = self.write("schema.mof", "[Indication] class C { string S; };")
        commands = {"query": ["--no-live"], "validate": ["validate"],
                    "match": ["match", "-m", schema, "SELECT * FROM C"]}
        for name, command in commands.items():
            with self.subTest(command=name):
                status, text = self.run_on(command, memory)
                self.assertEqual((status, text),
                                 (3, "qorql: error: standard input cannot be read: Input/output error\n"))
        for name in ("query", "validate"):
            with self.subTest(command=name, place="file"):
                self.refused(self.run_tool(*commands[name], "--file", memory), 3,
                             f"qorql: error: {memory} cannot be read: Input/output error")
        self.refused(self.run_tool("--no-live", "-m", memory, ONE), 3,
                     f"qorql: error: {memory}: cannot be read: reading it fails")
        self.assertEqual(self.run_on(["--no-live"], self.folder),
                         (3, "qorql: error: standard input cannot be read: Is a directory\n"))

    def limited(self, limit, size, *arguments, output=subprocess.PIPE):
        """The tool with a limit of the system on what it may use."""
        return subprocess.run([toolcase.TOOL, "--no-live", *arguments], stdout=output, stderr=subprocess.PIPE,
                              preexec_fn=lambda: resource.setrlimit(limit, (size, size)), timeout=60, check=False)

    @unittest.skipIf("QORQL_NEEDS_PROC" in os.environ, "sanitizers take more memory than any limit leaves")
    def test_without_memory(self):
        text = self.write("great", "")
        os.truncate(text, 300 << 20)
        done = self.limited(resource.RLIMIT_AS, 100 << 20, "--file", text)
        self.assertEqual((done.returncode, done.stderr), (3, b"qorql: error: there is not enough memory\n"))
        literal = self.write("literal", "SELECT Id FROM Shop_Item WHERE Name = '" + "x" * (40 << 20) + "'")
        done = self.limited(resource.RLIMIT_AS, 160 << 20, "-m", MODEL, "--file", literal)
        self.assertEqual((done.returncode, done.stderr), (1, b"qorql: error: there is not enough memory (CIM status 1)\n"))

    def test_files_that_may_not_grow(self):
        with open(self.write("result", ""), "wb") as result:
            done = self.limited(resource.RLIMIT_FSIZE, 8, "-m", MODEL, "SELECT * FROM Shop_Item", output=result)
        self.assertEqual((done.returncode, done.stderr), (1, b"qorql: error: cannot write the result: File too large\n"))
        cache = os.path.join(self.folder, "cache")
        done = self.limited(resource.RLIMIT_FSIZE, 64, "-m", MODEL, "--cache", cache, ONE)
        self.assertEqual((done.returncode, done.stderr), (0, b"qorql: warning: The cache is not kept: it cannot be written\n"))
        self.assertEqual([name for name in os.listdir(self.folder) if name.startswith("cache")], [])

    def test_input_without_an_end(self):
        self.refused(self.run_tool("--no-live", "--file", "/dev/zero"), 3,
                     "qorql: error: /dev/zero cannot be read: it is larger than 512 MB")
        great = self.write("great.mof", "")
        os.truncate(great, 1 << 33)
        self.refused(self.run_tool("--no-live", "-m", great, ONE), 3,
                     f"qorql: error: {great}: cannot be read: it is larger than 512 MB")

    def test_syntax_error_with_line_and_status(self):
        self.refused(self.model("SELECT Id FROM Shop_Item WHERE"), 1,
                     self.model("SELECT Id FROM Shop_Item WHERE").err.rstrip("\n"))
        self.assertRegex(self.model("SELECT Id FROM Shop_Item WHERE").err,
                         r"\Aqorql: error: .+ \(line 1, CIM status 16\)\n\Z")

    def test_missing_select(self):
        self.refused(self.model("Id FROM Shop_Item"), 1, "qorql: error: 'SELECT' expected (line 1, CIM status 16)")

    def test_blank_query(self):
        for query in ("", "  ", ";", "\n"):
            with self.subTest(query=query):
                result = self.model(query)
                self.assertEqual((result.status, result.out), (1, ""))
                self.assertRegex(result.err, r"\Aqorql: error: 'SELECT' expected \(line \d+, CIM status 16\)\n\Z")

    def test_the_line_counts_in_the_whole_text(self):
        result = self.model("-o", "csv", ONE + ";\n\n" + TWO + ";\n  SELECT Id\nFROM Shop_Item\nWHERE ,\n")
        self.assertEqual((result.status, result.out), (1, "Id\n1\n\nId\n2\n"))
        self.assertRegex(result.err, r"\(line 6, CIM status 16\)\n\Z")

    def test_mismatch_found_after_reading_has_no_line(self):
        self.refused(self.model("--quiet", "SELECT COUNT(Id) AS N, Name FROM Shop_Item"), 1,
                     "qorql: error: Combining Aggregate and NonAggregate expressions is not allowed. (CIM status 16)")

    def test_runtime_error(self):
        self.refused(self.model("SELECT MIN(Shop_Item.Name) AS M FROM Shop_Item"), 1,
                     "qorql: error: Property data type must be numeric for function MIN (CIM status 16)")

    def test_hints_of_what_a_run_finds(self):
        for query, error, hint in (
                ("SELECT Id FROM Shop_Item ORDER BY ^Wheels ASC", "Caught an exception while sorting the data. (CIM status 1)",
                 "Wheels is not a property of Shop_Item (line 1, column 35)"),
                ("SELECT Id FROM Shop_Item ORDER BY ^Nmae ASC", "Caught an exception while sorting the data. (CIM status 1)",
                 "Nmae is not a property of Shop_Item: did you mean Name? (line 1, column 35)"),
                ("SELECT SUM(Name) AS S FROM Shop_Item", "Property data type must be numeric for function SUM (CIM status 16)",
                 "")):
            with self.subTest(query=query):
                said = f"qorql: error: {error}\n" + (toolcase.hint(query, hint) if hint else "")
                self.refused(self.model(query.replace("^", "")), 1, said.rstrip("\n"))

    def test_unknown_class(self):
        result = self.model("--quiet", "SELECT Nowhere.Id FROM Nowhere")
        self.assertEqual((result.status, result.out), (1, ""))
        self.assertRegex(result.err, r"\Aqorql: error: .*(?i:nowhere).* \((line \d+, )?CIM status \d+\)\n\Z")

    def test_unknown_property(self):
        result = self.model("SELECT Colour FROM Shop_Item")
        self.assertEqual((result.status, result.out), (1, ""))
        self.assertRegex(result.err, r"\Aqorql: error: .*(?i:colour).* \((line \d+, )?CIM status \d+\)\n\Z")

    def test_division_by_zero(self):
        result = self.model("SELECT Id FROM Shop_Item WHERE Id / 0 = 1")
        self.assertEqual(result.status, 1)
        self.assertRegex(result.err, r"\Aqorql: error: .+ \(CIM status 1\)\n\Z")

    def test_error_is_one_line_whatever_the_query(self):
        result = self.model("SELECT Id FROM\n'a\x1b[31m'")
        self.assertEqual(result.status, 1)
        self.assertEqual(result.err.count("\n"), 1)
        self.assertNotIn("\x1b", result.err)

    def test_nothing_is_printed_for_a_statement_that_fails(self):
        for form in ("table", "csv", "json", "jsonl", "html", "xml", "mof"):
            with self.subTest(form=form):
                result = self.model("-o", form, "SELECT MIN(Shop_Item.Name) AS M FROM Shop_Item")
                self.assertEqual((result.status, result.out), (1, ""))

    def test_errors_are_shown_although_quiet(self):
        self.refused(self.model("--quiet", "x"), 1, "qorql: error: 'SELECT' expected (line 1, CIM status 16)")

    def test_very_long_and_very_deep_queries_end_in_order(self):
        deep = "SELECT Id FROM Shop_Item WHERE " + "(" * 50000 + "Id = 1" + ")" * 50000
        result = self.model("-f", self.write("deep.qql", deep))
        self.assertEqual(result.status, 1)
        self.assertRegex(result.err, r"\Aqorql: error: ")
        wide = "SELECT Id FROM Shop_Item WHERE Id = 1" + " AND Id = 1" * 20000
        self.assertEqual(self.succeed(self.model("-o", "csv", "-f", self.write("wide.qql", wide))), "Id\n1\n")


class Statements(ToolCase):
    def test_standard_input(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", stdin=ONE + ";\n" + TWO + ";\n")), "Id\n1\n\nId\n2\n")

    def test_last_semicolon_may_miss(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", stdin=ONE + ";\n" + TWO)), "Id\n1\n\nId\n2\n")

    def test_nothing_on_standard_input_is_nothing_to_do(self):
        self.assertEqual(self.succeed(self.model(stdin="")), "")
        self.assertEqual(self.succeed(self.model(stdin=" ;\n;; \n")), "")

    def test_semicolon_in_a_literal_does_not_count(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", "SELECT Id FROM Shop_Item WHERE Name <> 'a;b' AND Id = 1")),
                         "Id\n1\n")

    def test_quote_without_end_reaches_to_the_end_of_its_line(self):
        result = self.model("-o", "csv", stdin="SELECT Id FROM Shop_Item WHERE Name = 'a;b\n;" + ONE)
        self.assertEqual((result.status, result.out), (1, ""))
        self.assertEqual(result.err,
                         "qorql: warning: skipped: a string that is not closed on its line (line 1, column 39)\n"
                         "qorql: error: unexpected token '' found (line 3, CIM status 16)\n" +
                         toolcase.hint("SELECT Id FROM Shop_Item WHERE Name = ^'a;b",
                                       "the quote that opens here is not closed on its line"))

    def test_statements_stop_at_the_first_error(self):
        result = self.model("-o", "csv", ONE + "; SELECT; " + TWO)
        self.assertEqual((result.status, result.out), (1, "Id\n1\n"))

    def test_several_lines(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", stdin="SELECT Id\n  FROM Shop_Item\n WHERE Id = 2\n")),
                         "Id\n2\n")

    def test_line_ends_of_other_systems_and_byte_order_mark(self):
        text = b"\xef\xbb\xbfSELECT Id\r\nFROM Shop_Item\r\nWHERE Id = 2;\r\n"
        self.assertEqual(self.succeed(self.model("-o", "csv", stdin=text)), "Id\n2\n")
        self.assertEqual(self.succeed(self.model("-o", "csv", "-f", self.write("q.qql", text))), "Id\n2\n")


class PassedOver(ToolCase):
    """Characters that the language does not know, and strings without end: told, and never among the results."""
    OVER = "qorql: warning: skipped, since the language does not know it: "

    def test_each_is_named_with_its_place_in_every_form(self):
        for form in ("table", "csv", "json", "jsonl", "html", "xml", "mof"):
            with self.subTest(form=form):
                clean = self.succeed(self.model("-o", form, ONE))
                result = self.model("-o", form, "SELECT Id \u2019\rFROM Shop_Item\n@ WHERE Id = 1 \u4e2d$")
                self.assertEqual(result.err, self.OVER + "\u2019 (line 1, column 11), \\r (line 1, column 12), "
                                 "@ (line 2, column 1), \u4e2d (line 2, column 16), $ (line 2, column 17)\n")
                if form != "html":  # which shows the statement
                    self.assertEqual((result.status, result.out), (0, clean))
                self.assertFalse(result.out.startswith(("@", "\u2019")))

    def test_places_count_in_the_whole_text(self):
        result = self.model("-o", "csv", stdin=ONE + ";\n  " + TWO + " ; SELECT Id @\nFROM Shop_Item WHERE Id = 1 @")
        self.assertEqual((result.status, result.out), (0, "Id\n1\n\nId\n2\n\nId\n1\n"))
        self.assertEqual(result.err, self.OVER + "@ (line 2, column 53), @ (line 3, column 29)\n")

    def test_bytes_that_are_no_characters(self):
        result = self.model("-o", "csv", stdin=ONE.encode() + b" \0 \x92 \x1b \xc3(")
        self.assertEqual((result.status, result.out), (1, ""))
        self.assertEqual(result.err.splitlines()[0], self.OVER + "\\x00 (line 1, column 39), \\x92 (line 1, column 41), "
                         "\\x1B (line 1, column 43), \\xC3 (line 1, column 45)")

    def test_what_stands_in_a_literal_is_none(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", "SELECT Id FROM Shop_Item WHERE Name <> '@$\u2019' AND Id = 1")),
                         "Id\n1\n")

    def test_a_lone_quote_at_the_end(self):
        result = self.model("-o", "csv", ONE + " '")
        self.assertEqual((result.status, result.out, result.err), (0, "Id\n1\n", self.OVER + "' (line 1, column 39)\n"))

    def test_a_fault_stops_the_scanner(self):
        result = self.model("SELECT Id @ FROM , $ $ $")
        self.assertEqual((result.status, result.out), (1, ""))
        warning, error = result.err.splitlines()
        self.assertTrue(warning.startswith(self.OVER + "@ (line 1, column 11)"), warning)
        self.assertTrue(error.startswith("qorql: error: "), error)

    def test_many_are_counted(self):
        result = self.model("-o", "csv", ONE + "\u2265" * 1000)
        self.assertEqual(result.err.count("\u2265"), 20)
        self.assertTrue(result.err.endswith("(line 1, column 57) and 980 more\n"), result.err)

    def test_quiet_says_nothing(self):
        result = self.model("--quiet", "-o", "json", ONE + " @")
        self.assertEqual((result.status, result.out, result.err), (0, '[\n  {"Id": 1}\n]\n', ""))

    def test_explain(self):
        clean = self.succeed(self.model("explain", ONE))
        result = self.model("explain", ONE + " @")
        self.assertEqual((result.status, result.out, result.err), (0, clean, self.OVER + "@ (line 1, column 39)\n"))
        refused = self.model("explain", "SELECT @")
        self.assertEqual((refused.status, refused.out), (1, ""))
        self.assertEqual(refused.err.splitlines()[0], self.OVER + "@ (line 1, column 8)")


class EarlyEnd(ToolCase):
    """An error while rows are put together, which the library logs: the result would lack rows."""
    ERROR = "qorql: error: A non-existent property - 'Nam' was requested from class - 'i' (CIM status 4)\n"
    STATEMENT = "SELECT i.Nam FROM Shop_Item AS i"
    MODEL = """class Base { [Key] uint32 K; sint32 N; };
class Der : Base { string X; };
instance of Der { K = 1; N = 1; X = "x"; };
instance of Base { K = 2; N = 0; };
instance of Der { K = 3; N = 2; X = "y"; };
"""

    @staticmethod
    def hint(line, column, query=STATEMENT):
        return toolcase.hint(query.replace("Nam ", "^Nam "), "Nam is not a property of Shop_Item: did you mean Name? "
                                                            f"(line {line}, column {column})")

    def test_in_every_form(self):
        for form in ("table", "csv", "json", "jsonl", "html", "mof"):
            for query in ("SELECT i.Nam FROM Shop_Item AS i", "SELECT i.Nam FROM Shop_Item AS i ORDER BY Id ASC"):
                with self.subTest(form=form, query=query):
                    result = self.model("-o", form, query)
                    self.assertEqual((result.status, result.out), (1, ""))
                    self.assertEqual(result.err, self.ERROR + self.hint(1, 10, query))

    def test_the_engines_stream_stays_and_the_status_tells(self):
        result = self.model("-o", "xml", "SELECT i.Nam FROM Shop_Item AS i")
        self.assertEqual(result.status, 1)
        self.assertTrue(result.out.endswith("</TABLE>\n</IRETURNVALUE>\n"), result.out)
        self.assertEqual(result.err, self.ERROR + self.hint(1, 10))

    def test_rows_that_cannot_be_streamed(self):
        path = self.write("m.mof", self.MODEL)
        result = self.run_tool("--no-live", "-m", path, "-o", "xml", "SELECT K, 1 / N AS Q FROM Base")
        self.assertEqual((result.status, result.out.count("<TABLEROW>")), (1, 2))
        self.assertEqual(result.err, "qorql: error: Division by zero (CIM status 1)\n")

    def test_rows_before_the_error_are_no_result(self):
        path = self.write("m.mof", self.MODEL)
        result = self.run_tool("--no-live", "-m", path, "-o", "csv", "SELECT b.X FROM Base AS b")
        self.assertEqual((result.status, result.out), (1, ""))
        self.assertEqual(result.err,
                         "qorql: error: A non-existent property - 'X' was requested from class - 'b' (CIM status 4)\n"
                         + toolcase.hint("SELECT b.^X FROM Base AS b",
                                         "X is a property of Der, which not every Base is: ask for it FROM Der"))

    def test_a_name_that_two_classes_go_by(self):
        path = self.write("m.mof", self.MODEL + "class Other { [Key] uint8 J; };\ninstance of Other { J = 1; };\n")
        hint = "in FROM {0} names more than one class: give each a name of its own"
        for query, name in [("SELECT b.K FROM Base AS b, Other AS B", "b"),
                            ("SELECT Other.K FROM Base AS Other, Other", "Other")]:
            result = self.run_tool("--no-live", "-m", path, query)
            self.assertEqual((result.status, result.out), (1, ""))
            self.assertEqual(result.err, "qorql: error: A non-existent property - 'K' was requested from class - "
                                         f"'{name}' (CIM status 4)\n" +
                             toolcase.hint(query.replace(".K", ".^K"), hint.format(name)))

    def test_several_statements(self):
        result = self.model("-o", "csv", ONE + ";\n" + ONE + "; SELECT i.Nam FROM Shop_Item AS i; " + TWO)
        self.assertEqual((result.status, result.out), (1, "Id\n1\n\nId\n1\n"))
        self.assertEqual(result.err, self.ERROR + self.hint(2, 49))

    def test_quiet_keeps_the_error(self):
        self.refused(self.model("--quiet", "SELECT i.Nam FROM Shop_Item AS i"), 1, self.ERROR.rstrip("\n"))

    def test_no_row_no_error(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", "SELECT e.Nam FROM Shop_Empty AS e")), "Nam\n")

    def test_the_log_changes_nothing(self):
        result = self.model("--log", "error", "SELECT i.Nam FROM Shop_Item AS i")
        self.assertEqual((result.status, result.out), (1, ""))
        self.assertTrue(result.err.endswith(self.ERROR + self.hint(1, 10)), result.err)


class Output(ToolCase):
    def many_rows(self):
        rows = "".join(f'instance of Big {{ K = {i}; T = "{"x" * 60}"; }};\n' for i in range(20000))
        return self.write("big.mof", "Qualifier Key : boolean = false, Scope(property, reference), "
                                     "Flavor(DisableOverride, ToSubclass);\n"
                                     "class Big { [Key] uint32 K; string T; };\n" + rows)

    def test_reader_that_goes_away_ends_the_tool_quietly(self):
        path = self.many_rows()
        for form in ("table", "csv", "json", "jsonl", "html", "xml", "mof"):
            with self.subTest(form=form):
                with subprocess.Popen([toolcase.TOOL, "--no-live", "-m", path, "-o", form, "SELECT K, T FROM Big"],
                                      stdout=subprocess.PIPE, stderr=subprocess.PIPE) as tool:
                    self.assertEqual(len(tool.stdout.read(10)), 10)
                    tool.stdout.close()
                    self.assertEqual(tool.stderr.read(), b"")
                    self.assertEqual(tool.wait(timeout=60), 0)

    def test_reader_that_was_never_there(self):
        for handler in (signal.SIG_DFL, signal.SIG_IGN):
            reading, writing = os.pipe()
            os.close(reading)
            done = subprocess.run([toolcase.TOOL, "--no-live", "-m", MODEL, ONE], stdout=writing,
                                  stderr=subprocess.PIPE, check=False,
                                  preexec_fn=lambda handler=handler: signal.signal(signal.SIGPIPE, handler))
            os.close(writing)
            self.assertEqual((done.returncode, done.stderr), (0, b""))

    def test_full_device_is_an_error(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([toolcase.TOOL, "--no-live", "-m", MODEL, ONE], stdout=full, stderr=subprocess.PIPE,
                                  check=False)
        self.assertEqual(done.stderr, b"qorql: error: cannot write the result: No space left on device\n")
        self.assertEqual(done.returncode, 1)

    def test_every_row_of_a_large_result_arrives(self):
        text = self.succeed(self.run_tool("--no-live", "-m", self.many_rows(), "-o", "csv", "SELECT K FROM Big"))
        self.assertEqual(text, "K\n" + "".join(f"{i}\n" for i in range(20000)))

    def on_terminal(self, seconds, *arguments):
        """What a long query shows on standard error, a terminal, in that time."""
        ours, theirs = pty.openpty()
        long_query = "SELECT A.K FROM Big AS A, Pig AS B WHERE A.K + B.K = 0 - 1"
        path = self.many_rows()
        more = self.write("more.mof", "class Pig { [Key] uint32 K; };\n" +
                          "".join(f"instance of Pig {{ K = {i}; }};\n" for i in range(20000)))
        with subprocess.Popen([toolcase.TOOL, "--no-live", "-m", path, "-m", more, *arguments, long_query],
                              stdout=subprocess.DEVNULL, stderr=theirs) as tool:
            shown = b""
            until = time.monotonic() + seconds
            while b"joining and filtering ...\x1b[K" not in shown and time.monotonic() < until and tool.poll() is None:
                if select.select([ours], [], [], 0.1)[0]:
                    shown += os.read(ours, 1000)
            is_running = tool.poll() is None
            tool.kill()
        os.close(ours)
        os.close(theirs)
        self.assertTrue(is_running, shown)
        return shown

    @toolcase.at_terminal
    def test_progress_line_on_a_terminal(self):
        self.assertRegex(self.on_terminal(60), rb"\rqorql: \d+ s, joining and filtering \.\.\.\x1b\[K\Z")

    @toolcase.at_terminal
    def test_no_progress_line_when_quiet(self):
        self.assertEqual(self.on_terminal(4, "--quiet"), b"")

    def test_no_progress_line_without_a_terminal(self):
        result = self.run_tool("--no-live", "-m", self.many_rows(), "-o", "csv", "SELECT K FROM Big ORDER BY T ASC")
        self.assertEqual((result.status, result.err), (0, ""))


if __name__ == "__main__":
    toolcase.main()
