"""The completions for bash, fish and zsh, as these shells read them: all offer what --help tells.

A shell that is not installed is left out, with a reason.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import pty
import re
import select
import shlex
import shutil
import subprocess
import time
import unittest

import toolcase
from toolcase import ToolCase, at_terminal

COMMANDS = ("query", "classes", "class", "instances", "contents", "describe", "get", "validate", "match", "watch", "explain", "pages")
FORMS = ["arrow", "csv", "html", "json", "jsonl", "mof", "table", "xml"]
SECONDS = int(os.environ.get("QORQL_PATIENCE", "60"))


class Completion:
    """What every shell offers. A shell's class completes the last of the words, and gives what is offered, sorted."""

    def complete(self, *words):
        raise NotImplementedError

    def script(self, name):
        return self.write(name, self.succeed(self.run_tool("pages", self.shell)))

    def options(self, command):
        return set(self.option_names(command))

    def test_commands(self):
        self.assertEqual(self.complete("exp"), ["explain"])
        self.assertEqual(self.complete("clas"), ["class", "classes"])

    def test_options_of_each_command(self):
        for command in COMMANDS:
            long_names = {name for name in self.options(command) if name.startswith("--")}
            self.assertEqual(set(self.complete(command, "--")), long_names, command)
        self.assertEqual(self.complete("--no-l"), ["--no-live"])
        self.assertEqual(self.complete("explain", "--sta"), [])
        self.assertEqual(self.complete("explain", "--st"), ["--strict"])
        self.assertEqual(self.complete("query", "--st"), ["--stats", "--strict"])

    def test_a_command_behind_options(self):
        self.assertEqual(self.complete("--no-live", "expl"), ["explain"])
        self.assertEqual(self.complete("-n", "root/x", "expl"), ["explain"])
        self.assertEqual(self.complete("--set", "A.B=c", "expl"), ["explain"])
        self.assertEqual(self.complete("--no-live", "classes", "--lo"), ["--log", "--long"])

    def test_a_value_names_no_command(self):
        self.assertEqual(self.complete("-n", "classes", "--sta"), ["--stats"])

    def test_a_second_command_is_none(self):
        self.assertEqual(self.complete("classes", "expl"), [])
        self.assertEqual(self.complete("SELECT 1", "expl"), [])

    def test_classes(self):
        self.assertEqual(self.complete("class", "Linux_Us"), ["Linux_User"])
        self.assertEqual(self.complete("instances", "CIM_Oper"), ["CIM_OperatingSystem"])
        self.assertEqual(self.complete("class", "--al"), ["--alone"])
        self.assertEqual(self.complete("describe", "Linux_Us"), ["Linux_User"])

    def test_values_of_options(self):
        self.assertEqual(self.complete("-o", ""), FORMS)
        self.assertEqual(self.complete("classes", "--log", "t"), ["trace"])
        self.assertEqual(self.complete("validate", "-o", ""), ["json", "text"])
        self.assertEqual(self.complete("contents", "-o", ""), ["csv", "dot", "html", "json", "jsonl", "svg", "table"])
        self.assertEqual(self.complete("-n", ""), [])

    def test_pages(self):
        self.assertEqual(self.complete("pages", ""), ["bash", "fish", "man", "zsh"])

    def test_files(self):
        self.write("some.mof", "")
        self.write("some more.mof", "")
        self.assertEqual(self.complete("-m", "so"), ["some more.mof", "some.mof"])
        self.assertEqual(self.complete("match", "FILTER", "so"), ["some more.mof", "some.mof"])


@unittest.skipUnless(shutil.which("bash"), "there is no bash")
class Bash(Completion, ToolCase):
    shell = "bash"

    def complete(self, *words):
        code = ('source "$1"; compopt() { :; }; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _qorql; '
                '[ ${#COMPREPLY[@]} = 0 ] || printf "%s\\n" "${COMPREPLY[@]}"')
        parted = [part for word in words for part in re.split("(=)", word) if part or not word]
        done = subprocess.run(["bash", "-c", code, "bash", self.script("qorql.bash"), toolcase.TOOL, *parted],
                              capture_output=True, timeout=SECONDS, cwd=self.folder, check=False, text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return sorted(done.stdout.splitlines())

    def test_a_value_behind_an_equals_sign(self):
        self.assertEqual(self.complete("--output=j"), ["json", "jsonl"])
        self.assertEqual(self.complete("--output="), FORMS)

    @at_terminal
    def test_what_a_tab_makes_of_a_line(self):
        self.write("a file.mof", "")
        self.write("folder/some.mof", "")
        lines = {"--outp": "--output=", "--output=csv": "--output=csv ", "--output=cs": "--output=csv ", "-o cs": "-o csv ",
                 "--no-l": "--no-live ", "expl": "explain ", "class Linux_Us": "class Linux_User ", "--mof=a": "--mof=a\\ file.mof ",
                 "-m fol": "-m folder/", "classes --lo": "classes --lo", "watch --int": "watch --interval="}
        self.assertEqual({typed: self.line_after_tab(typed) for typed in lines}, lines)

    def line_after_tab(self, typed):
        """What stands behind the name of the tool after a tab, in a bash at a terminal."""
        tool = os.path.basename(toolcase.TOOL)
        settings = self.write("dot/bashrc", f"PATH={os.path.dirname(toolcase.TOOL)}:$PATH; PS1='ready> '; bind 'set bell-style none'\n"
                              f"source {self.script('qorql.bash')}\n"
                              "tell() { printf 'line<%s>\\n' \"$READLINE_LINE\"; }; bind -x '\"\\C-x\": tell'\n")
        ours, theirs = pty.openpty()
        with subprocess.Popen(["bash", "--noprofile", "--rcfile", settings, "-i"], stdin=theirs, stdout=theirs, stderr=theirs,
                              start_new_session=True, cwd=self.folder, env={**os.environ, "TERM": "dumb"}) as shell:
            os.close(theirs)
            self.addCleanup(os.close, ours)
            try:
                self.shown_until(ours, "ready> ")
                os.write(ours, f"{tool} {typed}\t\x18".encode())
                return self.shown_until(ours, ">\r\n").split("line<" + tool + " ")[1].split(">\r\n")[0]
            finally:
                shell.kill()

    def shown_until(self, terminal, end):
        shown, until = "", time.monotonic() + SECONDS
        while end not in shown:
            if time.monotonic() > until:
                self.fail(f"bash does not get to {end!r}, it shows: {shown!r}")
            if select.select([terminal], [], [], 0.2)[0]:
                shown += os.read(terminal, 4096).decode()
        return shown


@unittest.skipUnless(shutil.which("fish"), "there is no fish")
class Fish(Completion, ToolCase):
    shell = "fish"

    def complete(self, *words):
        line = " ".join([toolcase.TOOL, *map(shlex.quote, words[:-1]), words[-1]])
        code = 'source $argv[1]; complete --escape -C $argv[2]' if " " in words[-1] else 'source $argv[1]; complete -C $argv[2]'
        environment = {**os.environ, "HOME": self.folder, "XDG_CONFIG_HOME": self.folder, "XDG_DATA_HOME": self.folder}
        done = subprocess.run(["fish", "--no-config", "-c", code, self.script("qorql.fish"), line], env=environment,
                              capture_output=True, timeout=SECONDS, cwd=self.folder, check=False, text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return sorted(line.split("\t")[0] for line in done.stdout.splitlines())

    def test_each_is_described(self):
        done = subprocess.run(["fish", "--no-config", "-c", 'source $argv[1]; complete -C "qorql expl"', self.script("qorql.fish")],
                              capture_output=True, timeout=SECONDS, check=True, text=True)
        self.assertEqual(done.stdout, "explain\tSay what a query will do, without running it\n")


# Tells what is offered, and when no more will be.
ZSH_SETTINGS = """
PS1=; unsetopt beep auto_list auto_menu
fpath=($OFFERED_FROM $fpath)
autoload -Uz compinit && compinit -u -D
compadd() {
  [[ ${@[1,(i)(-|--)]} == *-[OAD]\\ * ]] || { local -a offered; builtin compadd -O offered "$@"; print -rl -- $offered >&3 }
  builtin compadd "$@"
}
complete-and-tell() { zle complete-word; print -r -- "end of offers" >&3 }
zle -N complete-and-tell && bindkey '^I' complete-and-tell
exec 3>>$OFFERS
print -r -- ready >&3
"""


@unittest.skipUnless(shutil.which("zsh"), "there is no zsh")
@at_terminal
class Zsh(Completion, ToolCase):
    shell = "zsh"

    def setUp(self):
        super().setUp()
        self.offers = self.write("dot/offers", "")
        self.write("dot/.zshrc", ZSH_SETTINGS)
        self.script("dot/_qorql")
        folder = os.path.dirname(self.offers)
        ours, theirs = pty.openpty()
        environment = {**os.environ, "ZDOTDIR": folder, "OFFERED_FROM": folder, "OFFERS": self.offers, "TERM": "dumb",
                       "HOME": folder}
        self.process = subprocess.Popen(["zsh", "--no-global-rcs", "-i"], stdin=theirs, stdout=theirs, stderr=theirs,
                                        start_new_session=True, cwd=self.folder, env=environment)
        os.close(theirs)
        self.terminal = ours
        self.addCleanup(self.end)
        self.await_offers("ready")

    def end(self):
        self.process.kill()
        self.process.wait()
        os.close(self.terminal)

    def await_offers(self, last):
        """The lines told until the last one; the screen is read, so that the shell can go on writing to it."""
        shown, until = b"", time.monotonic() + SECONDS
        while time.monotonic() < until:
            if select.select([self.terminal], [], [], 0.02)[0]:
                shown += os.read(self.terminal, 65536)
            with open(self.offers, encoding="utf-8") as told:
                lines = told.read().splitlines()
            if lines and lines[-1] == last:
                os.truncate(self.offers, 0)
                return lines[:-1]
        self.fail(f"zsh does not get to '{last}', it shows: {shown}")

    def complete(self, *words):
        line = " ".join([toolcase.TOOL, *map(shlex.quote, words[:-1]), words[-1]])
        os.write(self.terminal, b"\x15" + line.encode() + b"\t")
        return sorted({offer.replace("\\", "") for offer in self.await_offers("end of offers") if offer})

    def test_a_value_behind_an_equals_sign(self):
        self.assertEqual(self.complete("--output=j"), ["json", "jsonl"])

    def test_it_can_be_sourced(self):
        script = self.script("sourced.zsh")
        code = "autoload -Uz compinit && compinit -u -D && source $1 && print -r -- $_comps[qorql]"
        done = subprocess.run(["zsh", "-f", "-c", code, "zsh", script], capture_output=True, timeout=SECONDS, check=False, text=True)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "_qorql\n", ""))


if __name__ == "__main__":
    toolcase.main()
