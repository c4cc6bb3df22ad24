"""The pager: what is longer than the screen of a terminal goes through it, and nothing else does."""
# SPDX-License-Identifier: Apache-2.0
import fcntl
import os
import pty
import select
import shutil
import signal
import stat
import struct
import termios
import time
import unittest

import toolcase
from terminal import read_piece
from toolcase import MODEL, ToolCase, at_terminal

SECONDS = int(os.environ.get("QORQL_PATIENCE", "60"))
SHOP = "SELECT Id FROM Shop_Item WHERE Id < 3"   # six lines and a row count at a terminal


@at_terminal
class Pager(ToolCase):
    def setUp(self):
        super().setUp()
        self.paged = os.path.join(self.folder, "paged")
        self.record = {"QORQL_PAGER": f"cat >> {self.paged}"}
        rows = "".join(f"instance of Row {{ K = {i}; }};\n" for i in range(20000))
        self.rows = self.write("rows.mof", "class Row { [Key] uint32 K; };\n" + rows)

    def begin(self, *arguments, env=None, height=24, width=80):
        """Runs over the model with a terminal of its own."""
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("HHHH", height, width, 0, 0))
            kept = {key: value for key, value in os.environ.items()
                    if not key.startswith(("LC_", "LESS", "XDG_STATE")) and key not in ("PAGER", "QORQL_PAGER")}
            os.execve(toolcase.TOOL, ["qorql", "--no-live", "-m", MODEL, *arguments],
                      {**kept, "LANG": "C.UTF-8", "TERM": "xterm", "HOME": self.folder, **(env or {})})
        self.addCleanup(os.close, self.terminal)
        self.read = b""

    @property
    def shown(self):
        return self.read.decode("utf-8", "replace").replace("\r\n", "\n")

    def until(self, text=None):
        """Reads what is shown up to a text, or to the end."""
        until = time.monotonic() + SECONDS
        while text is None or text not in self.shown:
            if time.monotonic() > until:
                os.kill(self.process, signal.SIGKILL)
                self.fail(f"{text!r} does not come: {self.shown[-500:]!r}")
            if not select.select([self.terminal], [], [], 0.2)[0]:
                continue
            part = read_piece(self.terminal)
            if not part:
                self.assertIsNone(text, self.shown)
                break
            self.read += part

    def end(self):
        self.until()
        return os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])

    def show(self, *arguments, **options):
        """What the terminal and the pager get."""
        if os.path.exists(self.paged):
            os.remove(self.paged)
        self.begin(*arguments, **options)
        self.assertEqual(self.end(), 0, self.shown)
        if not os.path.exists(self.paged):
            return self.shown, None
        with open(self.paged, encoding="utf-8") as paged:
            return self.shown, paged.read()

    def test_what_the_screen_holds_stays_there(self):
        whole = self.show("--no-pager", SHOP, env=self.record)
        lines = whole[0].count("\n")
        self.assertEqual(whole[1], None)
        self.assertEqual(self.show(SHOP, env=self.record, height=lines + 1), whole)
        self.assertEqual(self.show(SHOP, env=self.record, height=lines), ("", whole[0]))

    def test_long_lines_take_several_of_the_screen(self):
        query = "SELECT Name, Name, Name, Name FROM Shop_Item WHERE Id = 2"
        self.assertEqual(self.show("-o", "jsonl", query, env=self.record, height=3, width=200)[1], None)
        paged = self.show("-o", "jsonl", query, env=self.record, height=3, width=40)
        self.assertEqual(paged, ("", self.model("-o", "jsonl", query).out))

    def test_every_form(self):
        for form in ("table", "csv", "json", "jsonl", "mof", "xml"):
            arguments = ("-m", self.rows, "-o", form, "SELECT K FROM Row")
            with self.subTest(form=form):
                shown, paged = self.show(*arguments, env=self.record)
                self.assertEqual(shown, "")
                self.assertEqual(paged, self.show("--no-pager", *arguments, env=self.record)[0])

    def test_each_result_for_itself(self):
        shown, paged = self.show("-o", "csv", "-m", self.rows, "SELECT K FROM Row; SELECT Id FROM Shop_Item WHERE Id = 2",
                                 env=self.record)
        self.assertEqual((shown, paged.count("\n")), ("\nId\n2\n", 20001))

    def test_never_without_a_terminal(self):
        result = self.run_tool("--no-live", "-m", self.rows, "-o", "csv", "SELECT K FROM Row",
                               env={**os.environ, **self.record, "TERM": "xterm"})
        self.assertEqual((result.status, result.out.count("\n"), os.path.exists(self.paged)), (0, 20001, False))

    def test_lists_of_other_commands(self):
        for arguments in (("classes",), ("class", "Shop_Item"), ("describe", "Shop_Item"), ("instances", "Shop_Item"),
                          ("instances",), ("contents",)):
            with self.subTest(arguments=arguments):
                plain, unpaged = self.show(*arguments, "--no-pager", env=self.record, height=2)
                self.assertEqual(unpaged, None)
                self.assertEqual(self.show(*arguments, env=self.record, height=2), ("", plain))

    def test_which_one(self):
        arguments = ("-m", self.rows, "-o", "csv", "SELECT K FROM Row")
        other = os.path.join(self.folder, "other")
        self.assertEqual(self.show(*arguments, env={"PAGER": f"cat > {self.paged}"})[0], "")
        shown, paged = self.show(*arguments, env={"QORQL_PAGER": f"cat > {self.paged}", "PAGER": f"cat > {other}"})
        self.assertEqual((shown, paged.count("\n"), os.path.exists(other)), ("", 20001, False))
        for none in ("", "cat", "no-such-pager-anywhere -x"):
            shown, paged = self.show(*arguments, env={"QORQL_PAGER": none, "PAGER": f"cat > {self.paged}"})
            self.assertEqual((shown.count("\n"), paged), (20001, None), none)
        for terminal in ("dumb", ""):
            self.assertEqual(self.show(*arguments, env={"TERM": terminal})[0].count("\n"), 20001)
        self.assertEqual(self.show(*arguments, env={"PATH": self.folder})[0].count("\n"), 20001)

    def test_a_pager_that_is_not_there_is_told(self):
        shown, _ = self.show("-m", self.rows, "-o", "csv", "SELECT K FROM Row", env={"QORQL_PAGER": "/no/such/pager"})
        self.assertTrue(shown.endswith("qorql: warning: the pager '/no/such/pager' is not there\n"), shown)

    def test_what_less_is_told(self):
        folder = os.path.join(self.folder, "bin")
        less = self.write("bin/less", f"#!/bin/sh\necho \"$LESS $LESSCHARSET $*\" > {self.paged}\n/bin/cat > /dev/null\n")
        os.chmod(less, os.stat(less).st_mode | stat.S_IXUSR)
        arguments = ("-m", self.rows, "-o", "csv", "SELECT K FROM Row")
        self.assertEqual(self.show(*arguments, env={"PATH": folder})[1], "FRX utf-8 -FRX\n")
        self.assertEqual(self.show(*arguments, env={"PATH": folder, "PAGER": "less -S"})[1], "FRX utf-8 -S\n")
        self.assertEqual(self.show(*arguments, env={"PATH": folder, "PAGER": "less", "LESS": "i", "LESSCHARSET": "latin1"})[1],
                         "i latin1 \n")

    def test_a_pager_that_ends_early_is_no_error(self):
        for form in ("csv", "table", "xml"):
            with self.subTest(form=form):
                shown, _ = self.show("-m", self.rows, "-o", form, "SELECT K FROM Row; SELECT Id FROM Shop_Item WHERE Id = 2",
                                     env={"QORQL_PAGER": "true"})
                self.assertIn("2", shown)
                self.assertNotIn("qorql:", shown)

    def test_ctrl_c_is_the_pagers(self):
        self.begin("-m", self.rows, "-o", "csv", "SELECT K FROM Row; SELECT Id FROM Shop_Item WHERE Id = 2",
                   env={"QORQL_PAGER": "sh -c 'trap \"echo caught; exit\" INT; echo waiting; while :; do sleep 0.1; done'"})
        self.until("waiting\n")
        os.write(self.terminal, b"\x03")
        self.until("caught\n")
        self.assertEqual(self.end(), 0, self.shown)
        self.assertTrue(self.shown.endswith("caught\n\nId\n2\n"), self.shown)

    def test_errors_come_after_the_pager(self):
        self.begin("-m", self.rows, "-o", "csv", "SELECT K FROM Row; SELECT K FORM Row",
                   env={"QORQL_PAGER": "sh -c 'cat > /dev/null; sleep 0.3; echo paged'"})
        self.assertEqual(self.end(), 1)
        self.assertTrue(self.shown.startswith("paged\nqorql: error: "), self.shown)

    def test_the_time_of_a_reader_does_not_count(self):
        for form in ("csv", "xml"):
            shown, _ = self.show("-m", self.rows, "-o", form, "--timeout", "5", "SELECT K, K AS A, K AS B, K AS C FROM Row",
                                 env={"QORQL_PAGER": f"sleep 6; cat > {self.paged}"})
            self.assertEqual(shown, "")

    def test_shell(self):
        self.begin("-m", self.rows, "-o", "csv", env=self.record)
        for line, before in (("SELECT K FROM Row;", ""), (".schema", "SELECT K FROM Row;\n"),
                             ("SELECT Id FROM Shop_Item WHERE Id = 2;", ".schema\n"), (".quit", "Id\n2\n")):
            self.until(before + "qorql> ")
            while termios.tcgetattr(self.terminal)[3] & termios.ICANON:  # the editor takes over right behind its prompt
                time.sleep(0.001)
            os.write(self.terminal, line.encode() + b"\n")
        self.assertEqual(self.end(), 0)
        with open(self.paged, encoding="utf-8") as paged:
            lines = paged.read().splitlines()
        self.assertEqual(lines[:3], ["K", "0", "1"])
        self.assertIn("class Shop_Item {", lines)
        self.assertNotIn("19999", self.shown)

    @unittest.skipUnless(shutil.which("less"), "there is no less")
    def test_less(self):
        self.begin("-m", self.rows, "SELECT K FROM Row; SELECT Id FROM Shop_Item WHERE Id = 2")
        self.until("│    19 │")
        self.assertNotIn("19999", self.shown)
        os.write(self.terminal, b"\x03")
        self.until("\a")  # less has taken it; a key that comes now may be dropped with it
        until = time.monotonic() + SECONDS
        while "20000 rows" not in self.shown and time.monotonic() < until:
            os.write(self.terminal, b"G")
            if select.select([self.terminal], [], [], 0.5)[0]:
                self.read += os.read(self.terminal, 65536)
        self.until("20000 rows")
        os.write(self.terminal, b"q")
        self.assertEqual(self.end(), 0)
        self.assertTrue(self.shown.endswith("│  2 │\n└────┘\n1 row\n"), self.shown[-300:])


if __name__ == "__main__":
    toolcase.main()
