"""What the tests of the tool share: running it, and the model that they query."""
# SPDX-License-Identifier: Apache-2.0
import atexit
import os
import pty
import re
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(1, os.path.join(HERE, "..", "support"))  # terminal.py
MODEL = os.path.join(HERE, "model.mof")
TOOL = None
SKIPPED = 77  # the exit status by which ctest knows that something was left out
STREAM = None  # prints the library's own stream: STREAM MOF QUERY


def has_terminals():
    try:
        for end in pty.openpty():
            os.close(end)
    except OSError:
        return False
    return True


# For tests that need a terminal.
at_terminal = unittest.skipUnless(has_terminals(), "this system gives out no terminals")


def hint(marked, text, place=""):
    """What the tool prints as a hint about a statement in which a ^ stands where the caret is to point."""
    line = next(line for line in marked.split("\n") if "^" in line)
    return f"qorql: hint: {place}{text}\n  {line.replace('^', '', 1)}\n  {' ' * line.index('^')}^\n"


class Result:
    def __init__(self, done):
        self.status = done.returncode
        self.raw = done.stdout
        self.out = done.stdout.decode("utf-8", "surrogateescape")
        self.err = done.stderr.decode("utf-8", "surrogateescape")


# What the tool says where the caller may not see a part of a live class.
UNSEEN = re.compile(r"^qorql: warning: Cannot read \S+: (Permission denied|No such file or directory)(, and \d+ more)?\n",
                    re.MULTILINE)


class ToolCase(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qorql-cli-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def write(self, name, content):
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode("utf-8"))
        return path

    def run_tool(self, *arguments, stdin=b"", env=None):
        text = stdin if isinstance(stdin, bytes) else stdin.encode("utf-8")
        return Result(subprocess.run([TOOL, *arguments], input=text, capture_output=True, timeout=120, env=env,
                                     check=False))

    def passing_leaks_of(self, *libraries, env=None):
        """The environment in which a leak check passes over what these libraries of others never give back."""
        lost = self.write("lost.txt", "".join(f"leak:{name}.so\n" for name in libraries))
        return {**(os.environ if env is None else env), "LSAN_OPTIONS": f"suppressions={lost}:print_suppressions=0"}

    def model(self, *arguments, stdin=b""):
        """Runs over the test model alone."""
        return self.run_tool("--no-live", "-m", MODEL, *arguments, stdin=stdin)

    def option_names(self, command):
        """The options of a command, as its help tells them: -o, --output."""
        told = self.succeed(self.run_tool(command, "--help")).split("Options:\n")[1].split("\n\n")[0]
        return [name for names in re.findall(r"(?m)^  (-\S+)", told) for name in names.split(",")]

    def succeed(self, result):
        self.assertEqual((result.status, result.err), (0, ""))
        return result.out

    def refused(self, result, status, message):
        """Ends with the status and exactly this message; nothing but that on standard error."""
        self.assertEqual(result.err, message + "\n")
        self.assertEqual(result.status, status)

    def wrong_usage(self, result, *parts, command="qorql"):
        self.assertEqual(result.status, 2, result.err)
        self.assertEqual(result.out, "")
        lines = result.err.splitlines()
        self.assertTrue(lines[0].startswith("qorql: "), result.err)
        self.assertEqual(lines[-1], f"Try {command} --help.")
        for part in parts:
            self.assertIn(part, result.err)


def main():
    global TOOL, STREAM
    cache = tempfile.TemporaryDirectory(prefix="qorql-cli-cache-")
    atexit.register(cache.cleanup)
    os.environ["XDG_CACHE_HOME"] = cache.name
    os.environ["QORQL_PAGER"] = ""  # at terminals, too, the tests read what the tool itself prints
    TOOL = os.path.abspath(sys.argv[1])
    STREAM = os.path.abspath(sys.argv[2])
    ran = unittest.main(module="__main__", argv=[sys.argv[0], *sys.argv[3:]], exit=False).result
    reasons = [reason for _, reason in ran.skipped]
    for reason in sorted(set(reasons)):
        print(f"skipped: {reason} ({reasons.count(reason)} tests)")
    sys.exit(1 if not ran.wasSuccessful() else SKIPPED if ran.skipped else 0)
