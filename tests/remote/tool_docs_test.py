"""The commands of the document about servers run as they stand there, with servers of the tests in place of those named."""
# SPDX-License-Identifier: Apache-2.0
import json
import os
import re
import shlex
import subprocess
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
        profile = self.block("ini", "array1").replace("https://array1.example.org", first.url)
        profile = profile.replace("root/example", "root/cimv2")
        self.write(".config/qorql/servers.ini", f"{profile}[array2]\nurl = {second.url}\n")
        self.write(".config/qorql/array1.password", "secret\n")
        commands = self.commands()
        self.assertGreater(len(commands), 7)
        os.chdir(self.folder)
        for command in commands:
            words = shlex.split(command)[1:]
            words = [re.sub(r"https://(\w+@)?array1\.example\.org", first.url, word) for word in words]
            done = self.run_tool(*words)
            self.assertEqual((done.status, done.err), (0, ""), command)
            self.assertTrue(done.out, command)

    def block(self, language, contains):
        with open(DOCUMENT, encoding="utf-8") as document:
            found = re.findall(rf"^( *)```{language}\n(.*?)^ *```$", document.read(), re.MULTILINE | re.DOTALL)
        indent, text = next(one for one in found if contains in one[1])
        return re.sub(rf"^{indent}", "", text, flags=re.MULTILINE)

    def nightly(self):
        """The script of the fleet with what it needs, in a folder of the test; runs it when it is called."""
        def local(text):
            text = text.replace("/etc/qorql", self.folder).replace("/var/spool/qorql", os.path.join(self.folder, "spool"))
            for number, server in enumerate(self.fleet, 1):
                text = text.replace(f"https://monitor@array{number}.example.org", f"http://monitor@127.0.0.1:{server.port}")
            return text
        os.makedirs(os.path.join(self.folder, "spool"))
        os.makedirs(os.path.join(self.folder, "bin"))
        os.symlink(toolcase.TOOL, os.path.join(self.folder, "bin", "qorql"))
        self.write("servers.txt", local(self.block("servers", "array1")))
        self.write("nightly.txt", self.block("sql", "__SERVER"))
        self.write("password", "secret\n")
        os.chmod(self.write("nightly", local(self.block("shell", "--servers"))), 0o755)
        *when, user, command = self.block("crontab", "nightly").split(None, 6)
        self.assertTrue(all(re.fullmatch(r"\*|\d+", field) for field in when), when)
        self.assertEqual((len(when), user), (5, "qorql"))
        path = os.path.join(self.folder, "bin") + ":" + os.environ["PATH"]
        return lambda: subprocess.run(["sh", "-c", local(command)], capture_output=True, check=False, timeout=60,
                                      cwd=self.folder, env={**self.environment(), "PATH": path})

    def answers(self):
        spool = os.path.join(self.folder, "spool")
        self.assertFalse([name for name in os.listdir(spool) if name.endswith(".new")])
        lines = []
        for name in sorted(os.listdir(spool)):
            self.assertRegex(name, r"^\d{4}-\d\d-\d\d\.jsonl$")
            with open(os.path.join(spool, name), encoding="utf-8") as file:
                lines += [json.loads(line) for line in file]
        return lines

    def test_fleet(self):
        self.fleet = [self.serve(STORAGE, users={"monitor": "secret"}) for _ in range(2)]
        run = self.nightly()
        done = run()
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""))
        rows = self.answers()
        self.assertEqual({row["__SERVER"] for row in rows}, {"array1", "array2"})
        self.assertEqual(list(rows[0]), ["__SERVER", "Name", "BYTES", "ThinlyProvisioned"])
        self.judge_with_duckdb(rows)

    def judge_with_duckdb(self, rows):
        node = os.environ.get("QORQL_NODE", "")
        if not os.path.exists(os.path.join(node, "installed.json")):
            self.skipTest("the engines are not installed")
        script = os.path.join(node, "nightly.mjs")
        with open(script, "w", encoding="utf-8") as file:
            file.write(self.block("js", "DuckDBInstance"))
        done = subprocess.run(["node", script], cwd=os.path.join(self.folder, "spool"), capture_output=True, check=False,
                              timeout=120)
        wanted = ""
        for name in ("array1", "array2"):
            own = [row for row in rows if row["__SERVER"] == name]
            thin = sum(row["ThinlyProvisioned"] is True for row in own)
            wanted += f"{name}  {len(own)}  {sum(row['BYTES'] or 0 for row in own)}  {thin}\n"
        self.assertEqual((done.returncode, done.stderr.decode(), done.stdout.decode()), (0, "", wanted))

    def test_fleet_with_servers_that_fail(self):
        self.fleet = [self.serve(STORAGE), self.serve(STORAGE)]
        run = self.nightly()
        self.fail_with(self.fleet[1], "500")
        done = run()
        self.assertEqual((done.returncode, done.stderr.count(b"\n")), (3, 1))
        self.assertIn(b"error: array2: ", done.stderr)
        self.assertEqual({row["__SERVER"] for row in self.answers()}, {"array1"})
        os.remove(os.path.join(self.folder, "spool", os.listdir(os.path.join(self.folder, "spool"))[0]))
        self.fail_with(self.fleet[0], "500")
        self.assertEqual((run().returncode, self.answers()), (3, []))

    def test_line_of_a_call(self):
        """It has the form of those that the tool prints."""
        server = self.serve(STORAGE)
        done = self.run_tool("--server", f"array1={server.url}", "--stats", "SELECT Name FROM CIM_StorageVolume")
        told = re.findall(r"^qorql: call: array1 OpenEnumerateInstances .*$", done.err, re.MULTILINE)
        shown = self.block("calls", "qorql: call: ").splitlines()
        forms = [{re.sub(r"\d+", "N", line) for line in lines} for lines in (shown, told)]
        self.assertEqual(*forms)

    def test_options_are_those_of_the_tool(self):
        with open(DOCUMENT, encoding="utf-8") as document:
            named = set(re.findall(r"`(?:-\w`, `)?(--[a-z-]+)", document.read()))
        told = set(re.findall(r"--[a-z-]+", self.run_tool("--help").out))
        self.assertLessEqual(named, told)
        self.assertIn("--server", named)


if __name__ == "__main__":
    toolcase.TOOL = os.path.abspath(toolcase.TOOL)
    remotecase.main()
