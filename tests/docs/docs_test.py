"""Proves that the documentation's checks find what they look for."""
# SPDX-License-Identifier: Apache-2.0
import os
import pwd
import sys
import tempfile
import types
import unittest
from unittest import mock

import check_commands
import check_guide
import check_links
import check_linux
import check_rules
import check_warnings
import markdown
import run_commands
import run_examples


def write(folder, path, text):
    """Writes a file, with the folders that lead to it. Returns its place."""
    place = os.path.join(folder, path)
    os.makedirs(os.path.dirname(place), exist_ok=True)
    with open(place, "w", encoding="utf-8") as out:
        out.write(text)
    return place


DOCUMENT = "**[A-1]** One rule.\n\n| **[A-2]** | another, see [A-1] |\n"


class CheckRules(unittest.TestCase):
    def run_on(self, files):
        with tempfile.TemporaryDirectory() as root:
            for path, text in files.items():
                write(root, path, text)
            return list(check_rules.check(root))

    def test_cited_rules_pass(self):
        files = {"docs/language.md": DOCUMENT, "tests/queries/a.qtest": "rule: A-1\n", "tests/u/b.cpp": "  // rule: A-2\n"}
        self.assertEqual(self.run_on(files), [])

    def test_a_rule_without_test_is_found(self):
        found = self.run_on({"docs/language.md": DOCUMENT, "tests/queries/a.qtest": "rule: A-1\n"})
        self.assertEqual(len(found), 1)
        self.assertIn("docs/language.md:3: no test names A-2", found[0])

    def test_an_unknown_citation_is_found(self):
        found = self.run_on({"docs/language.md": DOCUMENT, "tests/queries/a.qtest": "rule: A-1, A-2, A-3\n"})
        self.assertEqual(found, ["tests/queries/a.qtest:1: A-3 is no rule of docs/language.md"])

    def test_an_unknown_mention_and_a_double_definition_are_found(self):
        text = DOCUMENT + "**[A-1]** again, see [B-1]\n"
        found = self.run_on({"docs/language.md": text, "tests/queries/a.qtest": "rule: A-1, A-2\n"})
        self.assertEqual(len(found), 2)
        self.assertIn("A-1 is defined twice", found[0])
        self.assertIn("B-1 is not defined", found[1])


def ran(status, out, err):
    return types.SimpleNamespace(returncode=status, stdout=out, stderr=err)


class RunExamples(unittest.TestCase):
    def block(self, kind, text):
        return markdown.Block(1, kind, [], text)

    def test_only_the_exact_result_passes(self):
        query, answer = self.block("query", "SELECT 1\n"), self.block("result", "a\n1\n")
        self.assertIsNone(run_examples.compare(query, answer, ran(0, b"a\n1\n", b"")))
        self.assertIn("expected", run_examples.compare(query, answer, ran(0, b"a\n2\n", b"")))
        self.assertIn("exit status 1", run_examples.compare(query, answer, ran(1, b"a\n1\n", b"no")))

    def test_an_error_needs_its_status_and_its_text(self):
        query, answer = self.block("query", "SELECT\n"), self.block("error", "no such\n")
        self.assertIsNone(run_examples.compare(query, answer, ran(1, b"", b"qorql: no such thing\n")))
        self.assertIn("expected", run_examples.compare(query, answer, ran(0, b"", b"no such\n")))
        self.assertIn("expected", run_examples.compare(query, answer, ran(1, b"", b"other\n")))

    def test_a_query_without_result_is_refused(self):
        with tempfile.TemporaryDirectory() as folder:
            path = write(folder, "a.md", "```query\nSELECT\n```\n```query\nSELECT\n```\n")
            with self.assertRaises(ValueError):
                list(run_examples.pairs(path))

    def test_only_commands_of_shell_blocks_are_taken(self):
        with tempfile.TemporaryDirectory() as folder:
            path = write(folder, "a.md", "./qorql no\n```sh\n./qorql 'a'\nls\n```\n```text\n./qorql no\n```\n")
            self.assertEqual(list(run_commands.commands(path)), [(3, "./qorql 'a'")])


class CheckWarnings(unittest.TestCase):
    def test_only_warnings_of_the_rule_that_is_shown_pass(self):
        about = ["one thing [A-1]"]
        self.assertEqual(check_warnings.unexpected(about, ["A-1", "A-2"]), [])
        self.assertEqual(check_warnings.unexpected(about, ["A-2"]), about)
        self.assertEqual(check_warnings.unexpected(["no tag"], ["A-2"]), ["no tag"])

    def test_an_example_stands_under_the_last_rule_before_it(self):
        with tempfile.TemporaryDirectory() as folder:
            path = write(folder, "a.md", "**[A-1]** x\ny\n**[A-2]** z\n\n")
            self.assertEqual(check_warnings.rules_by_line(path)[1:], [[], ["A-1"], ["A-1"], ["A-2"]])

    def test_queries_of_commands_are_found(self):
        with tempfile.TemporaryDirectory() as folder:
            path = write(folder, "a.md", "```sh\n./qorql -m a.mof 'SELECT x FROM y'\n./qorql match 'SELECT z FROM y'\n./qorql -V\n```\n")
            self.assertEqual(list(check_warnings.queries_of_commands(path)), [(2, ["-m", "a.mof"], "SELECT x FROM y")])


class CheckCommands(unittest.TestCase):
    def check(self, files):
        """What is said of the commands in these files, where the tool is a program that likes no option but --help."""
        with tempfile.TemporaryDirectory() as root:
            for path, text in files.items():
                os.chmod(write(root, path, text), 0o755 if text.startswith("#!") else 0o644)
            tool = write(root, "tool", '#!/bin/sh\ncase "$*" in explain\\ SELECT*|*--help) ;; *) exit 2 ;; esac\n')
            os.chmod(tool, 0o755)
            return [line.split(": ")[:2] for line in check_commands.check(tool, root)]

    def test_a_command_that_no_check_runs_is_found_wherever_it_stands(self):
        found = self.check({
            "docs/a.md": "See `scripts/long -n 5`.\n\n    scripts/long --wide  # all\n\n```sh\ncmake --none\n```\n"
                         "```\nmake -j\n```\n",
            "scripts/long": "#!/bin/bash\n# Takes long: scripts/long [-n N]\n#   [--wide]. No more.\nscripts/long --in-code\n",
            "examples/CMakeLists.txt": "# A project:\n# cmake -S examples\n"})
        self.assertEqual(sorted(found), [
            ["docs/a.md:1", "scripts/long -n 5"], ["docs/a.md:3", "scripts/long --wide"], ["docs/a.md:6", "cmake --none"],
            ["docs/a.md:9", "make -j"], ["examples/CMakeLists.txt:2", "cmake -S examples"],
            ["scripts/long:1", "scripts/long [-n N] [--wide]"]])

    def test_the_same_program_with_all_its_options_is_a_check(self):
        files = {"a.md": "`scripts/long -n 5 --wide`, `cmake -S x`\n", "scripts/long": "#!/bin/bash\n",
                 ".ci/run": "#!/bin/bash\nscripts/long -n 1\nscripts/long --wide || exit 1\ncmake -S x -B y && ls\n"}
        self.assertEqual(self.check(files), [])
        files[".ci/run"] = "#!/bin/bash\nscripts/long -n 1\n# scripts/long --wide\ncmake -S y\n"
        self.assertEqual(self.check(files), [["a.md:1", "scripts/long -n 5 --wide"], ["a.md:1", "cmake -S x"]])

    def test_commands_of_the_tool_are_tried(self):
        self.assertEqual(self.check({"a.md": "`./qorql explain QUERY`, `qorql match`, `qorql match --none`, `qorql`\n"}),
                         [["a.md:1", "qorql match --none"]])

    def test_files_and_words_are_no_commands(self):
        self.assertEqual(self.check({"a.md": "`scripts/part.sh` `test` `sort rows` `build/a.log`\n", "scripts/part.sh": "#\n"}), [])


class CheckLinks(unittest.TestCase):
    def test_links_to_missing_files_and_headings_are_found(self):
        with tempfile.TemporaryDirectory() as root:
            write(root, "a.md", "# One: two\n[x](b.md) [y](a.md#one-two) [z](#three) [u](https://example.org)\n")
            found = list(check_links.check(root))
        self.assertEqual(found, ["a.md: the link b.md leads to no file", "a.md: the link #three leads to no heading"])


class CheckGuide(unittest.TestCase):
    def check(self, text):
        with tempfile.TemporaryDirectory() as folder:
            return list(check_guide.check(write(folder, "guide.md", text), "int a;\nint b;\n", "done\n"))

    def test_the_programs_own_code_and_output_pass(self):
        self.assertEqual(self.check("```cpp\nint b;\n```\n```output\ndone\n```\n"), [])

    def test_other_code_and_other_output_are_found(self):
        found = self.check("```cpp\nint c;\n```\n```output\nfailed\n```\n")
        self.assertEqual(len(found), 2)
        self.assertIn("guide.md:1: this code does not stand in the program", found[0])
        self.assertIn("guide.md:4: the program prints:\ndone", found[1])


class CheckLinux(unittest.TestCase):
    def questions(self, text):
        with tempfile.TemporaryDirectory() as folder:
            return list(check_linux.questions(write(folder, "linux.md", text)))

    def tool(self, folder, script):
        path = write(folder, "tool", "#!/bin/sh\n" + script)
        os.chmod(path, 0o755)
        return path

    def check(self, script, columns):
        with tempfile.TemporaryDirectory() as folder:
            return list(check_linux.check(self.tool(folder, script), "SELECT", "threads", columns))

    def test_questions_are_found(self):
        found = self.questions("```query\nSELECT A\n```\n```columns threads\nA B\n```\n")
        self.assertEqual(found, [(1, "SELECT A", "threads", ["A", "B"])])

    def test_a_question_without_columns_is_refused(self):
        for text in ("```query\nSELECT A\n```\n", "```query\nx\n```\n```columns\nA\n```\n"):
            with self.assertRaises(ValueError):
                self.questions(text)

    def test_a_wrong_row_is_found(self):
        script = ('if [ "$2" = csv ]; then echo A,B; else '
                  'echo \'[{"Handle": "7", "ThreadCount": 12}, {"Handle": "8", "ThreadCount": %d}]\'; fi\n')
        with mock.patch.object(check_linux.Threads, "process", types.SimpleNamespace(pid=7)):
            self.assertEqual(self.check(script % 11, ["A", "B"]), [])
            self.assertEqual(len(self.check(script % 10, ["A", "B"])), 1)

    def complaints(self, judge, rows, **said):
        """What a judge says where the machine's tools say this: by the tool's name."""
        with mock.patch.object(check_linux, "output_of", lambda *command: said[command[0]]):
            return list(check_linux.JUDGES[judge](rows))

    def test_rows_that_are_missing_are_found(self):
        user = pwd.getpwuid(os.geteuid()).pw_name
        devices = '{"blockdevices": [{"kname": "sda", "type": "disk"}]}'
        addresses = '[{"ifname": "eth0", "addr_info": [{"local": "10.0.0.1", "prefixlen": 24}]}]'
        established = ("0 0 10.0.0.1:22 10.0.0.2:40000\n0 0 10.0.0.1:22 10.0.0.1:40000\n"
                       "0 0 [::ffff:10.0.0.1]:22 [::ffff:127.0.0.1]:40000\n0 0 [::1]:22 [::1]:40001\n")
        connection = {"RemoteAddress": "10.0.0.2", "RemotePort": 40000}
        for judge, row, said in (
                ("biggest", {"WorkingSetSize": 4096}, {"ps": "4\n"}),
                ("memory-by-user", {"Name": user, "ProcessCount": 1}, {"ps": user + "\n"}),
                ("connections", connection, {"ip": addresses, "ss": established}),
                ("block-devices", {"Name": "sda", "DeviceType": "disk"}, {"lsblk": devices}),
                ("login-shells", {"Name": "a"}, {"getent": "a:x:7:7:::/usr/bin/rsync-shell\ns:x:4:4:::/bin/sync\n"}),
                ("login-shells", {"Name": "a"}, {"getent": "a:x:7:7:::\nn:x:9:9:::/usr/sbin/nologin\n"})):
            with self.subTest(judge=judge):
                self.assertEqual(self.complaints(judge, [row], **said), [])
                self.assertNotEqual(self.complaints(judge, [], **said), [])

    def test_disks_that_are_full_and_missing_are_found(self):
        state = types.SimpleNamespace(f_flag=0, f_blocks=100, f_bfree=2, f_bavail=2)
        with mock.patch.object(os, "statvfs", lambda _: state), \
                mock.patch.object(check_linux, "content_of", lambda _: "/dev/sda / ext4 rw 0 0\n/dev/sdb /b ext4 ro 0 0\n"):
            self.assertEqual(list(check_linux.full_disks([{"Name": "/"}])), [])
            self.assertEqual(len(list(check_linux.full_disks([]))), 1)

    def test_writers_who_are_missing_are_found(self):
        with mock.patch.object(check_linux, "written_bytes", lambda: {str(i): i for i in range(1, 13)}):
            rows = [{"Handle": str(i), "BytesWritten": i} for i in range(12, 2, -1)]
            self.assertEqual(list(check_linux.writers(rows)), [])
            for wrong in ([], rows[1:], rows[1:] + [{"Handle": "2", "BytesWritten": 2}]):
                self.assertNotEqual(list(check_linux.writers(wrong)), [])

    def test_what_lscpu_does_not_know_is_left_out(self):
        with self.assertRaises(check_linux.LeftOut):
            self.complaints("processors", [{}], lscpu="Socket(s):  -\nCore(s) per socket:  4\n")

    def test_other_columns_and_failures_are_found(self):
        for script in ("echo A,C", "echo A,B; exit 1", "echo A,B; echo 'qorql: warning: odd' >&2"):
            with self.assertRaises(ValueError):
                self.check(script, ["A", "B"])

    def test_what_is_not_on_this_machine_is_left_out(self):
        with self.assertRaises(check_linux.LeftOut):
            self.check(f"echo '{check_linux.NO_SYSTEMD}' >&2; exit 3", ["A"])
        with self.assertRaises(check_linux.LeftOut):
            check_linux.output_of("no-such-tool-anywhere")


if __name__ == "__main__":
    sys.exit(unittest.main())
