"""The manual page and the completion for bash: made from what --help is made from."""
import re
import subprocess
import unittest

import toolcase
from toolcase import ToolCase

COMMANDS = ("query", "explain", "classes", "class", "instances", "validate", "match", "watch", "pages")


class Pages(ToolCase):
    def long_options(self, command):
        options = self.succeed(self.run_tool(command, "--help")).split("Options:\n")[1].split("\n\n")[0]
        names = re.findall(r"(?m)^  (-\S+)", options)
        return {name for one in names for name in one.split(",") if name.startswith("--")}

    def test_manual_has_every_command_and_option(self):
        text = self.succeed(self.run_tool("pages", "man")).replace("\\-", "-")
        self.assertTrue(text.startswith(".TH QORQL 1 "), text[:40])
        for command in COMMANDS:
            for option in self.long_options(command):
                self.assertIn("\\fB" + option + "\\fR", text, command)

    def test_manual_tells_the_options_of_all_commands_once(self):
        text = self.succeed(self.run_tool("pages", "man")).replace("\\-", "-")
        for option in ("--mof", "--namespace", "--no-live", "--help"):
            self.assertEqual(text.count("\\fB" + option + "\\fR"), 1, option)
        self.assertIn("qorql match\n[OPTIONS] [FILTER] [FILE...]\n", text)

    def test_manual_is_without_faults(self):
        path = self.write("qorql.1", self.succeed(self.run_tool("pages", "man")))
        done = subprocess.run(["groff", "-man", "-Tascii", "-ww", path], capture_output=True, timeout=60, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertIn(b"query CIM instances", done.stdout)

    def complete(self, *words):
        """What bash offers behind these words, the last of which is being typed."""
        script = self.write("completion.bash", self.succeed(self.run_tool("pages", "bash")))
        code = ('source "$1"; compopt() { :; }; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _qorql; '
                'printf "%s\\n" "${COMPREPLY[@]}"')
        done = subprocess.run(["bash", "-c", code, "bash", script, toolcase.TOOL, *words], capture_output=True, timeout=60,
                              cwd=self.folder, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        return done.stdout.decode().split()

    def test_completes_commands_and_options(self):
        self.assertEqual(self.complete("exp"), ["explain"])
        self.assertEqual(self.complete("--no-l"), ["--no-live"])
        self.assertEqual(self.complete("explain", "--st"), [])
        self.assertEqual(self.complete("query", "--st"), ["--stats", "--strict"])
        for command in COMMANDS:
            self.assertEqual(set(self.complete(command, "--")), self.long_options(command), command)

    def test_completes_behind_options(self):
        self.assertEqual(self.complete("--no-live", "expl"), ["explain"])
        self.assertEqual(self.complete("--no-live", "classes", "--lo"), ["--log", "--long"])
        self.assertEqual(self.complete("classes", "expl"), [])

    def test_completes_classes(self):
        self.assertEqual(self.complete("class", "Linux_Us"), ["Linux_User"])
        self.assertEqual(self.complete("instances", "CIM_Oper"), ["CIM_OperatingSystem"])
        self.assertEqual(self.complete("class", "--al"), ["--alone"])

    def test_completes_values(self):
        self.assertEqual(self.complete("-o", ""), ["csv", "html", "json", "jsonl", "mof", "table", "xml"])
        self.assertEqual(self.complete("--log", "t"), ["trace"])
        self.write("some.mof", "")
        self.assertEqual(self.complete("-m", "so"), ["some.mof"])
        self.assertEqual(self.complete("-n", ""), [])

    def test_wrong_usage(self):
        self.wrong_usage(self.run_tool("pages"), command="qorql pages")
        self.wrong_usage(self.run_tool("pages", "html"), "'html' is none of bash, man", command="qorql pages")
        self.wrong_usage(self.run_tool("pages", "man", "bash"), command="qorql pages")
        self.wrong_usage(self.run_tool("pages", "--frobnicate", "man"), command="qorql pages")


if __name__ == "__main__":
    toolcase.main()
