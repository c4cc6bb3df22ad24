"""What the tests of the tool that asks servers share: running it, and comparing what it prints with what it prints locally."""
# SPDX-License-Identifier: Apache-2.0
import os
import pty
import subprocess
import time

import faults
from remotecase import PLANT, RemoteCase
from terminal import converse

TOOL = os.environ.get("QORQL_TOOL", "qorql")


class Done:
    def __init__(self, done, seconds):
        self.status = done.returncode
        self.out = done.stdout.decode("utf-8", "surrogateescape")
        self.err = done.stderr.decode("utf-8", "surrogateescape")
        self.seconds = seconds


class ToolCase(RemoteCase):
    proxies = {}  # variables of the environment that name them

    def write(self, name, content):
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(content)
        return path

    def environment(self):
        """No profiles, passwords and proxies of whoever runs the tests."""
        kept = {name: value for name, value in os.environ.items() if not name.lower().endswith("_proxy")}
        return {**kept, **self.proxies, "HOME": self.folder, "XDG_CONFIG_HOME": os.path.join(self.folder, ".config")}

    def run_tool(self, *arguments, stdin=b""):
        began = time.monotonic()
        done = subprocess.run([TOOL, *arguments], input=stdin, capture_output=True, timeout=60, env=self.environment(),
                              check=False)
        return Done(done, time.monotonic() - began)

    def ask(self, server, *arguments):
        return self.run_tool("--server", server.url, *arguments)

    def local(self, *arguments):
        return self.run_tool("--no-live", "-m", PLANT, *arguments)

    def assert_done(self, done, out=None):
        self.assertEqual((done.status, done.err), (0, ""))
        if out is not None:
            self.assertEqual(done.out, out)

    def assert_fails(self, done, pattern, status=3):
        self.assertRegex(done.err, pattern)
        self.assertEqual((done.status, done.out), (status, ""))

    def assert_as_local(self, server, *arguments):
        remote, local = self.ask(server, *arguments), self.local(*arguments)
        self.assertEqual((remote.status, remote.out, remote.err), (local.status, local.out, local.err), arguments)
        return remote

    def fail_with(self, server, kind, operation=None, class_name=None, **more):
        server.faults = [faults.Fault(kind, operation, class_name, **more)]

    def at_terminal(self, *arguments, answer):
        """(exit status, all that the terminal shows) of the tool with a terminal, where a person answers a question."""
        pid, terminal = pty.fork()
        if pid == 0:
            os.execve(TOOL, [TOOL, *arguments], self.environment())
        shown = converse(terminal, [answer] if answer else [])
        os.close(terminal)
        return os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]), shown.decode("utf-8", "replace")
