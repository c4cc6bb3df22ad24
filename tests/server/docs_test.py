"""The document about the server: its commands run as they stand there, and its tables say what the tool says."""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import subprocess
import sys
import time

import servercase
from servercase import LISTENING, ServerCase

DOCUMENT = os.path.join(os.path.dirname(servercase.TESTS), "docs", "server.md")
sys.path.insert(1, os.path.join(servercase.TESTS, "docs"))

import markdown  # noqa: E402 (the folder is named above)

PASSWORD = "correct horse"


class DocsTest(ServerCase):
    def setUp(self):
        super().setUp()
        with open(DOCUMENT, encoding="utf-8") as document:
            self.text = document.read()
        os.mkdir(os.path.join(self.folder, "bin"))
        os.symlink(servercase.TOOL, os.path.join(self.folder, "bin", "qorql"))

    def blocks(self, kind):
        return [block.text for block in markdown.blocks(DOCUMENT) if block.kind == kind]

    def environment(self):
        kept = super().environment()
        return {**kept, "PATH": os.path.join(self.folder, "bin") + ":" + kept["PATH"]}

    def run_shell(self, script, stdin=b""):
        done = subprocess.run(["sh", "-e", "-c", script], cwd=self.folder, env=self.environment(), input=stdin,
                              capture_output=True, timeout=60, check=False)
        self.assertEqual((done.returncode, [line for line in done.stderr.splitlines() if b"error" in line]), (0, []), script)
        return done.stdout.decode()

    def test_five_minutes(self):
        prepare, serve, ask = self.blocks("shell")
        self.run_shell(prepare, PASSWORD.encode() + b"\n")
        self.assertIn("127.0.0.1:5989", serve)
        self.assertIn("localhost:5989", ask)
        log = open(os.path.join(self.folder, "log"), "w+", encoding="utf-8")
        self.addCleanup(log.close)
        server = subprocess.Popen(["sh", "-c", "exec " + serve.replace(":5989", ":0")], cwd=self.folder, stderr=log,
                                  env=self.environment(), stdout=subprocess.PIPE)
        self.addCleanup(server.stdout.close)
        self.addCleanup(server.wait)
        self.addCleanup(server.terminate)
        found = LISTENING.fullmatch(server.stdout.readline().decode())
        self.assertEqual((found.group(2), found.group(3)), ("https", "127.0.0.1"))
        self.assertIn(f"`listening on {found.group(1).replace(found.group(4), '5989')}`", self.text)
        self.write("password", PASSWORD + "\n")
        out = self.run_shell(ask.replace(":5989", ":" + found.group(4)).replace("--cacert", "--password-file password --cacert"))
        self.assertRegex(out, r"NAME|Name")
        self.assertEqual(len(out.splitlines()) > 1, True)
        end = time.monotonic() + 10
        while '"user":"anna"' not in open_text(log.name) and time.monotonic() < end:
            time.sleep(0.05)
        self.assertIn('"user":"anna"', open_text(log.name))

    def test_the_configuration_is_one(self):
        text, = self.blocks("ini")
        for name in ("server.pem", "server.key", "users"):
            text = text.replace("/etc/qorql/" + name, os.path.join(self.folder, name))
        os.mkdir(os.path.join(self.folder, "mof"))
        text = text.replace("/etc/qorql/mof", self.write("mof/a.mof", "class T_One { [Key] string Name; };\n"))
        self.run_shell(self.blocks("shell")[0], PASSWORD.encode() + b"\n")
        settings = self.write("server.ini", text)
        server = self.serve("--config", settings, "--no-live")
        self.assertEqual(server.scheme, "https")

    def test_keys_are_those_of_the_tool(self):
        done = self.run_tool("serve", "--set", "server.nonsense=1")
        known = set(re.search(r"there are (.*)\n", done.stderr.decode()).group(1).split(", "))
        section = self.text.split("## Configuration")[1].split("```")[0]
        limits = set(re.findall(r"^\| `([\w-]+)` \| \d", self.text.split("## Limits")[1], re.MULTILINE))
        self.assertEqual(set(re.findall(r"`([a-z-]+)`", section)) - {"--config"} | limits, known)

    def test_options_and_limits_are_those_of_the_tool(self):
        help_text = self.run_tool("serve", "--help").stdout.decode()
        known = set(re.findall(r"^ +(?:-\w,)?(--[a-z-]+)", help_text, re.MULTILINE)) | {"--delete", "--password-file"}
        named = set(re.findall(r"`(?:-\w`, `)?(?:[\w ]*? )?(--[a-z-]+)", self.text))
        self.assertEqual(named - known, set())
        shared = set(re.findall(r"^ +(?:-\w,)?(--[a-z-]+)", self.run_tool("get", "--help").stdout.decode(), re.MULTILINE))
        self.assertEqual(known - shared - named - {"--help"}, set())
        section = self.text.split("## Limits")[1].split("\n## ")[0]
        rows = dict(re.findall(r"^\| `([\w-]+)` \| (\d+M?) \|", section, re.MULTILINE))
        told = dict(re.findall(r"([\w-]+) \((?:[^()]*?, )?(\d+M?)\)", re.sub(r"\s+", " ", help_text)))
        self.assertEqual(rows, told)


def open_text(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


if __name__ == "__main__":
    servercase.main()
