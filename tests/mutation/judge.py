"""Runs the tests of a build against libraries that have a fault, the quick tests first."""
# SPDX-License-Identifier: Apache-2.0
import json
import os
import re
import resource
import signal
import subprocess
import threading
import time

# Tests of the tree and of documents, of what was installed, and those that measure under valgrind.
LEFT_OUT = re.compile(r"layout\.(?!fake$)|docs\.(self|rules|links)|mutation\.|growth\.instructions|growth\.budgets")
# What is expected of a test that has not been timed yet, by the start of its name: tenths of a second.
USUAL = (("unit.Providers", 30), ("unit.", 8), ("queries.random", 60), ("queries.explained", 60), ("queries.", 2),
         ("fuzz.", 5), ("docs.", 20), ("cli.", 60))
UNKNOWN = 200
# How many times longer the unit tests of the fault's own folder may take and still come first.
QUICKER = 6
SLOW = 3
DETERMINATE = re.compile(r"unit\.(?!Providers)|queries\.|oracle|fuzz\.|faults\.")
MEMORY = 4 << 30


class Test:
    def __init__(self, entry):
        self.name, self.command = entry["name"], entry.get("command", [])
        values = {one["name"]: one["value"] for one in entry.get("properties", [])}
        self.folder = values.get("WORKING_DIRECTORY")
        self.environment = dict(line.split("=", 1) for line in values.get("ENVIRONMENT", []))
        self.expected = [re.compile(text) for text in values.get("PASS_REGULAR_EXPRESSION", [])]
        self.seconds = next((tenths for start, tenths in USUAL if self.name.startswith(start)), UNKNOWN) / 10
        self.passes = None  # without a fault; None: not tried

    def run(self, libraries, limit):
        """"passes", "fails" or "hangs"."""
        environment = {**os.environ, "GTEST_FAIL_FAST": "1", **self.environment}
        if libraries:
            environment["LD_LIBRARY_PATH"] = libraries
        with subprocess.Popen(self.command, cwd=self.folder, env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True,
                              preexec_fn=limited) as process:
            try:
                output = process.communicate(timeout=limit)[0].decode(errors="replace")
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                process.communicate()
                return "hangs"
        if self.expected:
            return "passes" if any(one.search(output) for one in self.expected) else "fails"
        return "passes" if process.returncode == 0 else "fails"


def own_tests(path):
    """The unit tests of the folder of a source."""
    return "unit." + path.split("/")[1]


def limited():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, resource.RLIM_INFINITY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class Judge:
    """The tests of a build. Several threads may ask at once."""

    def __init__(self, folder, patience):
        self.patience = patience
        listing = subprocess.run(["ctest", "--test-dir", folder, "--show-only=json-v1"], capture_output=True, check=True)
        entries = json.loads(listing.stdout)["tests"]
        self.tests = [Test(entry) for entry in entries if not LEFT_OUT.match(entry["name"])]
        self.lock = threading.Lock()

    def in_order(self, path):
        """The quick ones first, and those of the file's own folder before others that take as long."""
        own = own_tests(path)
        return sorted(self.tests, key=lambda test: test.seconds / (QUICKER if test.name == own else 1))

    def verdict(self, path, libraries, is_in_vain):
        """(test that fails, "fails" or "hangs"), or (None, "passes"). Before the slow tests it asks is_in_vain()."""
        asked = False
        for test in self.in_order(path):
            if test.passes is False or test.seconds > self.patience and test.name != own_tests(path):
                continue
            if test.seconds > SLOW and not asked:
                asked = True
                if is_in_vain():
                    break
            start = time.monotonic()
            outcome = test.run(libraries, 30 + 20 * test.seconds)
            if outcome == "passes":
                test.seconds = time.monotonic() - start
            elif self.is_sound(test) and self.is_lasting(test, outcome, libraries):
                return test.name, outcome
        return None, "passes"

    @staticmethod
    def is_lasting(test, outcome, libraries):
        """What depends on the time, or on the machine, has to fail again."""
        if outcome == "hangs" or DETERMINATE.match(test.name):
            return True
        return test.run(libraries, 30 + 20 * test.seconds) != "passes"

    def is_sound(self, test):
        """A failure tells nothing where the test fails without a fault too."""
        with self.lock:
            if test.passes is None:
                test.passes = test.run(None, 600) == "passes"
                if not test.passes:
                    print(f"left out, since it fails without any fault: {test.name}", flush=True)
            return test.passes
