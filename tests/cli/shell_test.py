"""The shell, as a person at a terminal uses it."""
# SPDX-License-Identifier: Apache-2.0
import fcntl
import os
import pty
import re
import select
import signal
import stat
import struct
import termios
import time
import unittest

import toolcase
from terminal import read_piece
from toolcase import MODEL, ToolCase, at_terminal

PROMPT = "qorql> "
MORE = "  ...> "
SECONDS = int(os.environ.get("QORQL_PATIENCE", "60"))   # a slow machine gets as long as that; nothing waits for it to pass
CONTROL = re.compile(r"\x1b\[([0-9]*)[0-9;?]*([A-Za-z@])|\x1b[=>]|\x1b\([AB0]")


def screen(text):
    """What a terminal shows after that text, as lines: as much of one as the line editor uses."""
    lines, line, column, place = [], [], 0, 0
    while place < len(text):
        control = CONTROL.match(text, place)
        place = control.end() if control else place + 1
        count = int(control.group(1) or 1) if control and control.group(2) else 1
        action = control.group(2) if control else text[place - 1]
        if action == "\n":
            lines.append("".join(line))
            line, column = [], 0
        elif action == "\r":
            column = 0
        elif action in ("\b", "D") and (control or action == "\b"):
            column = max(0, column - count)
        elif control and action == "C":
            column += count
        elif control and action == "G":
            column = count - 1
        elif control and action == "K":
            del line[column:]
        elif control and action == "P":
            del line[column:column + count]
        elif control and action == "@":
            line[column:column] = " " * count
        elif not control and action != "\a":
            line += " " * (column - len(line))
            line[column:column + 1] = action
            column += 1
    return "\n".join(lines + ["".join(line)])


class Person:
    """Types into the shell and waits for what it shows."""

    def __init__(self, case, *arguments, home=None, width=100, live=False):
        self.case = case
        home = home or case.folder
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("HHHH", 40, width, 0, 0))
            environment = {key: value for key, value in os.environ.items() if not key.startswith(("XDG_", "LC_"))}
            environment.update(HOME=home, LANG="C.UTF-8", TERM="xterm")
            base = [] if live else ["--no-live"]
            os.execve(toolcase.TOOL, ["qorql", *base, "-m", MODEL, *arguments], environment)
        case.addCleanup(self.close)
        self.raw = b""
        self.base = None
        self.status = None

    def close(self):
        if self.status is None:
            os.kill(self.process, signal.SIGKILL)
            os.waitpid(self.process, 0)
        os.close(self.terminal)

    def shown(self):
        return screen(self.raw.decode("utf-8", "replace"))

    def read(self, timeout):
        """False at the end."""
        if not select.select([self.terminal], [], [], timeout)[0]:
            return True
        part = read_piece(self.terminal)
        self.raw += part
        return bool(part)

    def until(self, text):
        """Waits for a text at the end of what is shown; gives what came since the last wait."""
        end = time.monotonic() + SECONDS
        while self.shown() == self.base or not self.shown().endswith(text):
            if not self.read(0.2) or time.monotonic() > end:
                self.case.fail(f"no {text!r} at the end of {self.shown()!r}")
        if text.endswith((PROMPT, MORE)):  # the editor takes over right behind its prompt
            while termios.tcgetattr(self.terminal)[3] & termios.ICANON:
                time.sleep(0.001)
        result = self.shown()
        self.base = text if text.endswith((PROMPT, MORE)) else ""
        self.base = self.base.rsplit("\n", 1)[-1]  # what stays on the line of the cursor
        self.raw = self.base.encode()
        return result

    def until_shown(self, text):
        end = time.monotonic() + SECONDS
        while text not in self.shown():
            if not self.read(0.2) or time.monotonic() > end:
                self.case.fail(f"no {text!r} in {self.shown()!r}")

    def type(self, text):
        os.write(self.terminal, text.encode())

    def ask(self, line, prompt=PROMPT):
        """Types a line; gives what is shown between it and the next prompt."""
        self.type(line + "\n")
        text = self.until(prompt)
        return text[text.index("\n") + 1:-len(prompt)]

    def leave(self, line=None):
        if line is not None:
            self.type(line)
        end = time.monotonic() + SECONDS
        while self.read(0.2):
            if time.monotonic() > end:
                self.case.fail(f"the shell stays: {self.shown()!r}")
        self.status = os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])
        return self.status


@at_terminal
class Shell(ToolCase):
    def person(self, *arguments, **options):
        one = Person(self, *arguments, **options)
        self.greeting = one.until(PROMPT)
        return one


class Statements(Shell):
    def test_greeting_and_ways_to_leave(self):
        for line in (".quit\n", "quit\n", "exit;\n", ".exit\n", "\x04"):
            with self.subTest(line=line):
                person = self.person()
                self.assertRegex(self.greeting, r"\Aqorql \d+\.\d+\.\d+.*\.help lists the commands\.\nqorql> \Z")
                self.assertEqual(person.leave(line), 0)

    def test_quiet_has_no_greeting(self):
        self.person("--quiet")
        self.assertEqual(self.greeting, PROMPT)

    def test_statement(self):
        shown = self.person().ask("SELECT Id, Name FROM Shop_Item WHERE Id = 5;")
        self.assertIn("│  5 │ größer 日本 │\n", shown)
        self.assertTrue(shown.endswith("1 row\n"), shown)

    def test_statement_over_several_lines_and_several_in_a_line(self):
        person = self.person("-o", "csv")
        person.ask("SELECT Id", MORE)
        person.ask("", MORE)
        self.assertEqual(person.ask("FROM Shop_Item WHERE Id = 2;"), "Id\n2\n")
        self.assertEqual(person.ask("SELECT Id FROM Shop_Item WHERE Id = 1; SELECT Id FROM Shop_Item WHERE Id = 3; SELECT Id",
                                    MORE), "Id\n1\nId\n3\n")
        self.assertEqual(person.ask("FROM Shop_Item WHERE Name = 'a;b';"), "Id\n")

    def test_comments(self):
        person = self.person("-o", "csv")
        for line in ("# it's one;", "-- another;", "/* and; one */"):
            self.assertEqual(person.ask(line), "", line)
        person.ask("/* over;", MORE)
        self.assertEqual(person.ask("lines; */ SELECT Id FROM Shop_Item WHERE Id = 2; # the end"), "Id\n2\n")
        person.ask("SELECT Id # the key; isn't it", MORE)
        self.assertEqual(person.ask("  FORM Shop_Item; -- x").splitlines(), [
            "qorql: error: 'FROM' expected (line 2, CIM status 16)", "    FORM Shop_Item", "    ^",
            "qorql: hint: did you mean FROM?"])

    def test_timeout(self):
        person = self.person("-o", "csv", "--timeout", "0.000001")
        for _ in range(2):
            self.assertEqual(person.ask("SELECT Id FROM Shop_Item;"), "qorql: error: the statement was stopped after "
                             "1e-06 seconds (--timeout), running (CIM status 1)\n")

    def test_a_result_that_ends_early_is_an_error_and_the_shell_goes_on(self):
        person = self.person("-o", "csv")
        lines = person.ask("SELECT i.Id, i.Nam FROM Shop_Item AS i;").splitlines()
        self.assertIn("qorql: error: A non-existent property - 'Nam' was requested from class - 'i' (CIM status 4)", lines)
        self.assertEqual(lines[-1], "qorql: hint: Nam is not a property of Shop_Item: did you mean Name? (line 1, column 16)")
        self.assertNotIn("Id,Nam", lines)
        self.assertEqual(person.ask("SELECT Id FROM Shop_Item WHERE Id = 2;"), "Id\n2\n")

    def test_characters_that_are_passed_over(self):
        over = "qorql: warning: skipped, since the language does not know it: "
        person = self.person("-o", "csv")
        self.assertEqual(person.ask("SELECT Id FROM Shop_Item @ WHERE Id = 2;"), over + "@ (line 1, column 26)\nId\n2\n")
        self.assertTrue(person.ask(".explain SELECT Id FROM Shop_Item @").startswith(over + "@ (line 1, column 26)\n"))

    def test_strict(self):
        person = self.person("-o", "csv", "--strict")
        self.assertEqual(person.ask("SELECT Id FROM Shop_Item WHERE Id = 1 OR Id = 2;"),
                         "qorql: error: OR keeps what its last operand keeps: only \"Id = 2\" decides. Run a query for each "
                         "operand [WHERE-3]\n"
                         "  SELECT Id FROM Shop_Item WHERE Id = 1 OR Id = 2\n" + " " * 40 + "^\n")
        self.assertEqual(person.ask("SELECT Id FROM Shop_Item WHERE Id = 2;"), "Id\n2\n")

    def test_an_error_shows_line_and_caret_and_the_shell_goes_on(self):
        person = self.person("-o", "csv")
        person.ask("SELECT Id", MORE)
        self.assertEqual(person.ask("  FORM Shop_Item;"), (
            "qorql: error: 'FROM' expected (line 2, CIM status 16)\n"
            "    FORM Shop_Item\n"
            "    ^\n"
            "qorql: hint: did you mean FROM?\n"))
        self.assertEqual(person.ask("SELECT Wheels FROM Shop_Item;").splitlines()[1:],
                         ["  SELECT Wheels FROM Shop_Item", "         ^"])
        self.assertEqual(person.ask("SELECT Id FROM Shop_Item WHERE Id = 1;"), "Id\n1\n")
        self.assertEqual(person.leave("\x04"), 0)

    def test_surprises_are_told(self):
        self.assertIn("[WHERE-3]", self.person().ask("SELECT Id FROM Shop_Item WHERE Id = 1 OR Id = 2;"))

    def test_editing(self):
        person = self.person("-o", "csv")
        person.type("SELECT Idx FROM Shop_Item WHERE Id = 1;")
        person.type("\x01" + "\x1b[C" * 9 + "\x1b[3~" + "\x05")  # to the front, right, delete, to the end
        self.assertTrue(person.ask("").endswith("Id\n1\n"))

    def test_without_terminal_for_output_statements_are_read(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", stdin="SELECT Id FROM Shop_Item WHERE Id = 1;\n")), "Id\n1\n")


class Interrupting(Shell):
    def slow_model(self):
        rows = "".join(f"instance of Big {{ K = {i}; }};\ninstance of Pig {{ K = {i}; }};\n" for i in range(30000))
        return self.write("slow.mof", "class Big { [Key] uint32 K; };\nclass Pig { [Key] uint32 K; };\n" + rows)

    def test_ctrl_c_drops_what_was_typed(self):
        person = self.person("-o", "csv")
        person.ask("SELECT Id", MORE)
        person.type("FROM Sho")
        person.until_shown("Sho")
        person.type("\x03")
        person.until("^C\n" + PROMPT)
        self.assertEqual(person.ask("SELECT Id FROM Shop_Item WHERE Id = 1;"), "Id\n1\n")

    def test_ctrl_c_is_never_lost_behind_a_character(self):
        person = self.person("-o", "csv")
        for _ in range(300):
            person.type("|")
            person.until_shown("|")
            person.type("\x03")
            person.until("^C\n" + PROMPT)

    def test_ctrl_c_stops_a_statement_and_keeps_the_shell(self):
        person = self.person("-o", "csv", "-m", self.slow_model())
        person.type("SELECT A.K FROM Big AS A, Pig AS B WHERE A.K + B.K = 0 - 1;\n")
        person.until_shown("joining and filtering")
        person.type("\x03")
        self.assertIn("qorql: interrupted\n", person.until(PROMPT))
        self.assertEqual(person.ask("SELECT Id FROM Shop_Item WHERE Id = 1;"), "Id\n1\n")

    def test_ctrl_c_stops_output(self):
        person = self.person("-o", "csv", "-m", self.slow_model())
        person.type("SELECT K, K, K, K, K, K, K, K FROM Big;\n")
        person.until_shown("\n100,")
        person.type("\x03")
        shown = person.until(PROMPT)
        self.assertIn("qorql: interrupted\n", shown[-200:])
        self.assertNotIn("\n29999,", shown)
        self.assertEqual(person.ask("SELECT Id FROM Shop_Item WHERE Id = 1;"), "Id\n1\n")


class Completion(Shell):
    def complete(self, typed, person=None):
        """What the line becomes after a tab."""
        person = person or self.person("-o", "csv")
        person.type(typed + "\t")
        person.type("|")  # shows where the completion ended
        person.until_shown("|")
        person.type("\x03")
        text = person.until("^C\n" + PROMPT)
        return text.splitlines()[-2].replace(PROMPT, "").replace(MORE, "").replace("^C", "")

    def test_one_word(self):
        person = self.person()
        for typed, expected in (("SEL", "SELECT |"), ("sel", "select |"), ("SELECT Id FR", "SELECT Id FROM |"),
                                ("SELECT Id FROM shop_i", "SELECT Id FROM Shop_Item|"),
                                ("SELECT Id FROM Shop_Item wh", "SELECT Id FROM Shop_Item where |"),
                                ("SELECT Id FROM Shop_Item WHERE bal", "SELECT Id FROM Shop_Item WHERE Balance|"),
                                ("SELECT a.wei", "SELECT a.wei|"),
                                ("SELECT Id FROM Shop_Item AS a WHERE a.wei", "SELECT Id FROM Shop_Item AS a WHERE a.Weight|"),
                                ("SELECT COU", "SELECT COUNT(|"),
                                ("SELECT Id FROM Shop_Item ORDER B", "SELECT Id FROM Shop_Item ORDER BY |"),
                                ("SELECT Id FROM Shop_Item FORMAT AS H", "SELECT Id FROM Shop_Item FORMAT AS HTML|"),
                                ("SELECT Id FROM Shop_Item WHERE Name = 'SEL", "SELECT Id FROM Shop_Item WHERE Name = 'SEL|")):
            with self.subTest(typed=typed):
                self.assertEqual(self.complete(typed, person), expected)

    def test_no_blank_where_a_sign_may_follow(self):
        person = self.person()
        for typed, expected in (("SELECT COUNT(bal", "SELECT COUNT(bal|"),
                                ("SELECT Shop_Em", "SELECT Shop_Em|"),
                                ("SELECT Id FROM Shop_Item AS a, shop_e", "SELECT Id FROM Shop_Item AS a, Shop_Empty|"),
                                ("SELECT Id FROM Shop_Item WHERE COUNT(bal", "SELECT Id FROM Shop_Item WHERE COUNT(Balance|"),
                                ("SELECT Id FROM Shop_Item WHERE Sold = tr", "SELECT Id FROM Shop_Item WHERE Sold = true|"),
                                ("SELECT Id FROM Shop_Item WHERE Name IS NU", "SELECT Id FROM Shop_Item WHERE Name IS NULL|"),
                                ("SELECT Id FROM Shop_Item ORDER BY Id des", "SELECT Id FROM Shop_Item ORDER BY Id desc|"),
                                ("SELECT Id FROM Shop_Item AS a WHERE Sold = TRUE a", "SELECT Id FROM Shop_Item AS a WHERE Sold = TRUE a|"),
                                ("SELECT Id FROM Shop_Item WHERE Name IS NO", "SELECT Id FROM Shop_Item WHERE Name IS NOT |"),
                                (".he", ".help|"), (".qu", ".quit|"), (".desc", ".describe |"), (".values of", ".values off|")):
            with self.subTest(typed=typed):
                self.assertEqual(self.complete(typed, person), expected)

    def test_no_second_blank_before_one(self):
        person = self.person("-o", "csv")
        person.type("SEL Id FROM Shop_Item WHERE Id = 2;\x01\x1b[C\x1b[C\x1b[C\t|")
        person.until_shown("SELECT| Id FROM")

    def test_several_words_have_their_beginning_written_and_are_listed(self):
        person = self.person()
        self.assertEqual(self.complete("SELECT Id FROM sh", person), "SELECT Id FROM Shop_|")
        person.type("SELECT Id FROM Shop_\t")
        person.until_shown("Shop_Empty  Shop_Item\n")

    def test_lines_before_count(self):
        person = self.person()
        person.ask("SELECT Id FROM Shop_Item", MORE)
        self.assertEqual(self.complete("WHERE wei", person), "WHERE Weight|")
        person.ask("SELECT Id # isn't it one, FROM Shop_Empty", MORE)
        person.ask("FROM Shop_Item", MORE)
        self.assertEqual(self.complete("WHERE wei", person), "WHERE Weight|")

    def test_commands_and_their_arguments(self):
        person = self.person()
        path = self.write("models/some.mof", "")
        for typed, expected in ((".na", ".namespace |"), (".output h", ".output html|"), (".class shop_i", ".class Shop_Item|"),
                                (".explain SEL", ".explain SELECT |"), (".namespace root/c", ".namespace root/cimv2|"),
                                (".mof " + path[:-5], ".mof " + path + "|")):
            with self.subTest(typed=typed):
                self.assertEqual(self.complete(typed, person), expected)


class History(Shell):
    def path(self):
        return os.path.join(self.folder, ".local", "state", "qorql", "history")

    def test_kept_between_runs_for_the_owner_alone(self):
        person = self.person("-o", "csv")
        person.ask("SELECT Id FROM Shop_Item", MORE)
        person.ask("WHERE Id = 1;")
        person.ask(".timer off")
        person.leave("\x04")
        with open(self.path(), encoding="utf-8") as file:
            self.assertEqual(file.read(), "SELECT Id FROM Shop_Item WHERE Id = 1;\n.timer off\n")
        self.assertEqual(stat.S_IMODE(os.stat(self.path()).st_mode), 0o600)
        self.assertEqual(stat.S_IMODE(os.stat(os.path.dirname(self.path())).st_mode), 0o700)
        person = self.person("-o", "csv")
        person.type("\x1b[A\x1b[A")
        self.assertTrue(person.ask("").endswith("Id\n1\n"))

    def test_long_history_is_shortened(self):
        os.makedirs(os.path.dirname(self.path()))
        with open(self.path(), "w", encoding="utf-8") as file:
            file.writelines(f"SELECT {i};\n" for i in range(2500))
        self.person().leave("\x04")
        with open(self.path(), encoding="utf-8") as file:
            self.assertEqual(file.read(), "".join(f"SELECT {i};\n" for i in range(1500, 2500)))

    def test_no_place_to_keep_it_is_no_error(self):
        person = self.person("-o", "csv", home="/nowhere/at/all")
        self.assertEqual(person.ask("SELECT Id FROM Shop_Item WHERE Id = 1;"), "Id\n1\n")


class Commands(Shell):
    def test_help_names_every_command(self):
        text = self.person().ask(".help")
        for name in (".help", ".classes", ".class", ".describe", ".tables", ".schema", ".mof", ".namespace", ".output", ".explain", ".stats", ".timer", ".quit"):
            self.assertIn("\n" + name + " ", "\n" + text)

    def test_classes_and_class(self):
        person = self.person()
        self.assertEqual(person.ask(".classes"), "Shop_Empty\nShop_Item\n")
        self.assertEqual(person.ask(".classes emp"), "Shop_Empty\n")
        self.assertEqual(person.ask(".classes x"), 'qorql: error: no class matches "x" in namespace root/cimv2\n')
        self.assertIn("class Shop_Empty {\n", person.ask(".class shop_empty"))
        self.assertEqual(person.ask(".class Nowhere"), "qorql: error: there is no class Nowhere in namespace root/cimv2\n")
        self.assertEqual(person.ask(".class"), "qorql: error: .class needs the name of a class\n")

    def test_mof(self):
        person = self.person("-o", "csv")
        path = self.write("more.mof", "class More { [Key] uint8 K; };\ninstance of More { K = 7; };\n")
        self.assertEqual(person.ask(".mof " + path), "")
        self.assertEqual(person.ask("SELECT K FROM More;"), "K\n7\n")
        bad = self.write("bad.mof", "class {")
        self.assertIn("bad.mof:1:7", person.ask(".mof " + bad))
        self.assertIn("none.mof", person.ask(".mof " + self.folder + "/none.mof"))
        self.assertEqual(person.ask(".mof"), "qorql: error: .mof needs a file or folder\n")

    def test_mof_that_leaves_no_room_for_the_short_schema_of_the_live_classes(self):
        person = self.person("-o", "csv", live=True)
        more = self.write("more.mof", "class More { [Key] uint8 K; };\ninstance of More { K = 7; };\n")
        self.assertEqual(person.ask(".mof " + more), "")
        full = self.write("full.mof", "class CIM_ManagedElement { string Fuller; };\n")
        self.assertEqual(person.ask(".mof " + full), "")
        self.assertIn("string Fuller;", person.ask(".class CIM_ManagedElement"))
        self.assertEqual(person.ask("SELECT K FROM More;"), "K\n7\n")
        self.assertEqual(person.ask("SELECT Id FROM Shop_Item WHERE Id = 1;"), "Id\n1\n")
        self.assertEqual(person.ask(f"SELECT Handle FROM Linux_Process WHERE Handle = '{person.process}';"),
                         f"Handle\n{person.process}\n")

    def test_mof_at_fault_leaves_everything_as_it_was(self):
        person = self.person("-o", "csv", live=True)
        bad = self.write("bad.mof", "class CIM_ManagedElement { string Fuller; };\nclass Mine : Linux_User { uint8 UserNumber; };\n")
        shown = person.ask(".mof " + bad)
        self.assertIn("bad.mof:1:7: class CIM_ManagedElement is declared already", shown)
        self.assertIn("bad.mof:2:33: class Mine: property UserNumber is redeclared", shown)
        self.assertNotIn("Fuller", person.ask(".class CIM_ManagedElement"))
        self.assertEqual(person.ask("SELECT Name FROM Linux_User WHERE UserNumber = 0;"), "Name\nroot\n")

    def test_lenient_mof_with_a_fault_is_loaded_without_it(self):
        person = self.person("-o", "csv", "--lenient", live=True)
        bad = self.write("bad.mof", "class More { [Key] uint8 K; };\ninstance of More { K = 7; };\n"
                                    "instance of More { K = 300; };\n")
        shown = person.ask(".mof " + bad)
        self.assertIn("qorql: warning: " + bad + ":3:24: 300 is out of the range of uint8", shown)
        self.assertIn("qorql: warning: MOF has 1 fault; what is at fault is left out", shown)
        self.assertEqual(person.ask("SELECT K FROM More;"), "K\n7\n")
        self.assertIn("none.mof", person.ask(".mof " + self.folder + "/none.mof"))
        full = self.write("full.mof", "class CIM_ManagedElement { string Fuller; };\n")
        self.assertEqual(person.ask(".mof " + full), "")
        self.assertIn("string Fuller;", person.ask(".class CIM_ManagedElement"))
        self.assertEqual(person.ask("SELECT K FROM More;"), "K\n7\n")

    def test_namespace(self):
        person = self.person("-o", "csv", "-m", self.write("n.mof", '#pragma namespace ("root/other")\n'
                                                                    "class There { [Key] uint8 K; };\n"))
        self.assertEqual(person.ask(".namespace"), "root/cimv2\n")
        self.assertEqual(person.ask(".namespace ROOT/other"), "")
        self.assertEqual(person.ask(".classes"), "There\n")
        self.assertEqual(person.ask(".namespace root/none"), "qorql: error: there is no namespace root/none\n")
        self.assertEqual(person.ask(".namespace"), "root/other\n")

    def test_output(self):
        person = self.person()
        self.assertEqual(person.ask(".output"), "table (of arrow, csv, html, json, jsonl, mof, table, xml)\n")
        self.assertEqual(person.ask(".output jsonl"), "")
        self.assertEqual(person.ask("SELECT Id FROM Shop_Item WHERE Id = 1;"), '{"Id": 1}\n')
        self.assertEqual(person.ask(".output yaml"),
                         "qorql: error: 'yaml' is not one of arrow, csv, html, json, jsonl, mof, table, xml\n")

    def test_explain(self):
        person = self.person()
        self.assertEqual(person.ask(".explain SELECT Id FROM Shop_Item;"),
                         " 1  fetch      Shop_Item: Id\n 2  select     Id\n")
        self.assertEqual(person.ask(".explain SELECT FROM").splitlines()[1:], ["  SELECT FROM", "         ^"])
        self.assertEqual(person.ask(".explain"), "qorql: error: .explain needs a statement\n")

    def test_stats_and_timer(self):
        person = self.person("-o", "csv")
        self.assertEqual(person.ask(".stats"), "statistics on\n")
        self.assertEqual(person.ask(".timer on"), "timer on\n")
        shown = person.ask("SELECT Id FROM Shop_Item WHERE Id = 1;")
        self.assertRegex(shown, r"\AId\n1\nqorql: stats: rows=1 .*\nTime: \d+\.\d{3} s\n\Z")
        self.assertEqual(person.ask(".stats off") + person.ask(".timer"), "statistics off\ntimer off\n")
        self.assertEqual(person.ask(".timer maybe"), "qorql: error: 'maybe' is not one of off, on\n")

    def test_command_without_its_dot(self):
        self.assertEqual(self.person().ask("classes;").splitlines()[-1], "qorql: hint: did you mean the command .classes?")

    def test_unknown_command(self):
        person = self.person()
        self.assertEqual(person.ask(".outptu"),
                         "qorql: error: there is no command .outptu, did you mean .output?; .help lists them\n")
        self.assertEqual(person.ask(".xyzzy"), "qorql: error: there is no command .xyzzy; .help lists them\n")


if __name__ == "__main__":
    toolcase.main()
