"""The manual page: made from what --help is made from."""
# SPDX-License-Identifier: Apache-2.0
import subprocess

import toolcase
from toolcase import ToolCase

COMMANDS = ("query", "explain", "classes", "class", "instances", "contents", "describe", "get", "validate", "match", "watch", "pages")


class Pages(ToolCase):
    def test_manual_has_every_command_and_option(self):
        text = self.succeed(self.run_tool("pages", "man")).replace("\\-", "-")
        self.assertTrue(text.startswith(".TH QORQL 1 "), text[:40])
        for command in COMMANDS:
            for option in self.option_names(command):
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

    def test_wrong_usage(self):
        self.wrong_usage(self.run_tool("pages"), command="qorql pages")
        self.wrong_usage(self.run_tool("pages", "html"), "'html' is not one of bash, fish, man, zsh", command="qorql pages")
        self.wrong_usage(self.run_tool("pages", "man", "bash"), command="qorql pages")
        self.wrong_usage(self.run_tool("pages", "--frobnicate", "man"), command="qorql pages")


if __name__ == "__main__":
    toolcase.main()
