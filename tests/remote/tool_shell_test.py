"""The shell asks a server: statements, commands, completion, and Ctrl-C in the middle of a call."""
# SPDX-License-Identifier: Apache-2.0
import os
import pty
import select
import time
import unittest

import remotecase
import toolcase
from toolcase import ToolCase


class Shell(ToolCase):
    def start(self, server, *arguments):
        self.start_with("--server", server.url, *arguments)

    def start_with(self, *arguments):
        pid, self.terminal = pty.fork()
        if pid == 0:
            os.execve(toolcase.TOOL, [toolcase.TOOL, "--no-pager", *arguments],
                      {**self.environment(), "TERM": "dumb"})
        self.pid = pid
        self.addCleanup(os.close, self.terminal)
        self.until("qorql> ")

    def until(self, wanted, seconds=20):
        """What the terminal shows until a text comes."""
        shown, end = "", time.monotonic() + seconds
        while wanted not in shown:
            self.assertLess(time.monotonic(), end, f"{wanted!r} did not come in {shown!r}")
            if select.select([self.terminal], [], [], 0.1)[0]:
                shown += os.read(self.terminal, 4096).decode("utf-8", "replace")
        return shown

    def type(self, text, wanted="qorql> "):
        os.write(self.terminal, text.encode())
        return self.until(wanted)

    def quit(self):
        os.write(self.terminal, b".quit\n")
        self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(self.pid, 0)[1]), 0)

    def test_statements_and_commands(self):
        server = self.serve()
        self.start(server)
        self.assertIn("500", self.type("SELECT Litres FROM P_Tank WHERE Name = 't1';\n", "row"))
        self.assertIn("P_Tank", self.type(".classes tank\n", "P_Tank\r\n"))
        self.assertIn("Litres", self.type(".describe P_Tank\n", "Litres"))
        self.type("SELECT Name FROM P_Ta\t", "P_Tank")
        self.type("; \n", "row")
        self.quit()

    def test_question_that_was_stopped_is_asked_again(self):
        server = self.serve(users={"ada": "secret"})
        self.start_with("--timeout", "1", "--server", f"http://ada@127.0.0.1:{server.port}")
        self.type("SELECT Litres FROM P_Tank;\n", "Password of ada")
        self.until("was stopped after 1 second (--timeout)")
        self.type("SELECT Litres FROM P_Tank WHERE Name = 't1';\n", "Password of ada")
        self.assertIn("500", self.type("secret\n", "row"))
        self.quit()

    def test_server_that_goes_away(self):
        server = self.serve()
        self.start(server)
        server.close()
        self.type("SELECT Name FROM P_Ta\t;\n", "GetClass of P_TA in root/cimv2")
        self.type(".classes\n", "EnumerateClassNames in root/cimv2")
        self.quit()

    def test_names_of_a_server_that_failed_are_there_later(self):
        other = self.serve(self.write("more.mof", "Qualifier Key : boolean = false, Scope(property);\n"
                                      "class V_More { [Key] string Id; };\n"))
        self.fail_with(other, "500", "EnumerateClassNames", times=1)
        self.start(self.serve(), "--server", f"other={other.url}")
        self.assertNotIn("V_More", self.type(".classes\n", "stands without this one"))
        self.type(".classes\n", "V_More")
        self.quit()

    def test_interrupt_ends_a_call(self):
        server = self.serve()
        self.fail_with(server, "silence", "OpenEnumerateInstances")
        self.start(server)
        os.write(self.terminal, b"SELECT Name FROM P_Tank;\n")
        end = time.monotonic() + 20
        while ("OpenEnumerateInstances", "P_Tank") not in server.told():
            self.assertLess(time.monotonic(), end)
            time.sleep(0.05)
        os.write(self.terminal, b"\x03")
        self.until("qorql: interrupted", 5)
        server.faults = []
        self.type("SELECT Name FROM P_Tank;\n", "t1")
        self.quit()


if __name__ == "__main__":
    remotecase.main()
