"""The commands of the document about servers run as they stand there, with servers of the tests in place of those named."""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import shlex
import unittest

import remotecase
import toolcase
from toolcase import ToolCase

DOCUMENT = os.path.join(os.path.dirname(remotecase.TESTS), "docs", "remote.md")
STORAGE = os.path.join(os.path.dirname(remotecase.TESTS), "examples", "storage.mof")
INTEROP = '#pragma namespace ("interop")\nQualifier Key : boolean = false, Scope(property);\n' \
          'class CIM_Namespace { [Key] string Name; };\ninstance of CIM_Namespace { Name = "root/cimv2"; };\n'
OWNERS = "Qualifier Key : boolean = false, Scope(property);\nclass Example_Owner { [Key] string Volume; string Who; };\n"
COMMAND = re.compile(r"^ *(qorql .+)$", re.MULTILINE)
FENCED = re.compile(r"^ *```\w*\n(.*?)^ *```$", re.MULTILINE | re.DOTALL)


class Document(ToolCase):
    def commands(self):
        with open(DOCUMENT, encoding="utf-8") as document:
            text = document.read()
        return [command for block in FENCED.findall(text) for command in COMMAND.findall(block)]

    def test_commands(self):
        first = self.serve(STORAGE, self.write("interop.mof", INTEROP))
        second = self.serve(STORAGE)
        self.write("owners.mof", OWNERS)
        self.write("all.txt", f"one={first.url}\ntwo={second.url}  # the other one\n")
        self.write(".config/qorql/servers.ini", f"[array1]\nurl = {first.url}\nuser = monitor\npassword-file = p\n"
                   f"[array2]\nurl = {second.url}\n")
        self.write(".config/qorql/p", "secret\n")
        commands = self.commands()
        self.assertGreater(len(commands), 7)
        os.chdir(self.folder)
        for command in commands:
            words = shlex.split(command)[1:]
            words = [re.sub(r"https://(\w+@)?array1\.example\.org", first.url, word) for word in words]
            done = self.run_tool(*words)
            self.assertEqual((done.status, done.err), (0, ""), command)
            self.assertTrue(done.out, command)

    def test_options_are_those_of_the_tool(self):
        with open(DOCUMENT, encoding="utf-8") as document:
            named = set(re.findall(r"`(?:-\w`, `)?(--[a-z-]+)", document.read()))
        told = set(re.findall(r"--[a-z-]+", self.run_tool("--help").out))
        self.assertLessEqual(named, told)
        self.assertIn("--server", named)


if __name__ == "__main__":
    toolcase.TOOL = os.path.abspath(toolcase.TOOL)
    remotecase.main()
