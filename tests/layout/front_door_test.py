"""The ./qorql command in a small tree of its own, with stand-ins for cmake and the package tools; and that no
script of the tree fails without a word.

Run as front_door_test.py ROOT.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import tree

ROOT = sys.argv.pop()

# Notes its call; configuring or building leaves a tool that prints its arguments.
CMAKE = """#!/bin/bash
echo "cmake $*" >>calls
[ ! -e broken ] || { echo "it is broken"; exit 1; }
mkdir -p build/release/tools/qorql
printf '#!/bin/bash\\necho "tool:$*"; exit 3\\n' >build/release/tools/qorql/qorql
chmod +x build/release/tools/qorql/qorql
"""
# As the real one: one package is installed, one was; of others it says that it does not know them, and its
# status is then 1. A broken database is status 2.
DPKG_QUERY = """#!/bin/bash
shift 2
[ ! -e broken-dpkg ] || { echo "dpkg-query: error: the database is broken" >&2; exit 2; }
status=0
for package; do
  case $package in
    there) echo "installed there" ;;
    removed) echo "config-files removed" ;;
    *) echo "dpkg-query: no packages found matching $package" >&2; status=1 ;;
  esac
done
exit $status
"""
APT_GET = """#!/bin/bash
echo "apt-get $*" >>calls
case "$*" in *" update") [ ! -e no-lists ] ;; *) [ ! -e no-network ] ;; esac
"""
# Two tests, one of which is skipped; a third fails where that is asked for.
CTEST = """#!/bin/bash
mkdir -p "$2/Testing/Temporary"
printf '1/2 Test: one\\nfine\\n2/2 Test: two\\nskipped: it takes root\\n' >"$2/Testing/Temporary/LastTest.log"
printf '1/2 Test #1: one ... Passed\\n2/2 Test #2: two ...***Skipped\\n\\n'
[ ! -e failing ] || printf '50%% tests passed, 1 tests failed out of 2\\n\\nTotal Test time (real) = 1.00 sec\\n'
[ -e failing ] || printf '100%% tests passed, 0 tests failed out of 2\\n\\nTotal Test time (real) = 1.00 sec\\n'
printf '\\nThe following tests did not run:\\n\\t2 - two (Skipped)\\n'
[ ! -e failing ] || { echo "Errors while running CTest" >&2; exit 8; }
"""
SUDO = '#!/bin/bash\necho sudo >>calls\nexec "$@"\n'
# What a script may count on: the essential packages of Debian.
ESSENTIAL = ("bash cat chmod comm dirname env find flock id mkdir mv nproc printf readlink rm sed sort tail timeout touch "
             "tr").split()
APT = "apt-get -qq -o DPkg::Lock::Timeout=600 "


class FrontDoor(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.tree = os.path.join(self.folder.name, "a tree")
        os.makedirs(os.path.join(self.tree, "scripts"))
        for script in ("qorql", "test"):
            shutil.copy(os.path.join(ROOT, script), self.tree)
        shutil.copy(os.path.join(ROOT, "scripts", "front-door.sh"), os.path.join(self.tree, "scripts"))
        self.write("packages.txt", "there # always\n")
        self.write("Cimom/a.cpp", "")
        self.write("include/a.h", "")
        for name, text in [("cmake", CMAKE), ("dpkg-query", DPKG_QUERY), ("apt-get", APT_GET), ("sudo", SUDO),
                           ("ctest", CTEST)]:
            os.chmod(self.write(f"../bin/{name}", text), 0o755)

    def tearDown(self):
        self.folder.cleanup()

    def write(self, path, text):
        full = os.path.join(self.tree, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "w", encoding="utf-8") as out:
            out.write(text)
        return full

    def without(self, *commands):
        """The path to search on a system that lacks these commands."""
        folder = os.path.join(self.folder.name, "essential")
        os.makedirs(folder)
        for name in ESSENTIAL:
            if name not in commands:
                os.symlink(shutil.which(name), os.path.join(folder, name))
        for name in commands:
            if name not in ESSENTIAL:
                os.remove(os.path.join(self.folder.name, "bin", name))
        return folder

    def run_tests(self):
        """Runs ./test with the stand-ins; returns its status, and all that it prints, line by line."""
        ran = subprocess.run([os.path.join(self.tree, "test")], cwd=self.folder.name, check=False,
                             env={**os.environ, "PATH": os.path.join(self.folder.name, "bin") + ":" + os.environ["PATH"]},
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=60)
        return ran.returncode, ran.stdout.splitlines()

    def run_it(self, *arguments, path=os.environ["PATH"]):
        """Runs ./qorql from elsewhere, with the stand-ins; returns the result and the calls since the last run."""
        ran = subprocess.run(
            [os.path.join(self.tree, "qorql"), *arguments],
            cwd=self.folder.name,
            env={**os.environ, "PATH": os.path.join(self.folder.name, "bin") + ":" + path},
            capture_output=True,
            text=True,
            timeout=60,
        )
        calls = os.path.join(self.tree, "calls")
        made = []
        for place in (calls, os.path.join(self.folder.name, "calls")):
            if os.path.exists(place):
                with open(place, encoding="utf-8") as lines:
                    made += lines.read().splitlines()
                os.remove(place)
        return ran, made

    def test_the_first_run_builds_and_hands_over(self):
        ran, calls = self.run_it("a b", "c")
        self.assertEqual((ran.stdout, ran.returncode), ("tool:a b c\n", 3))
        self.assertIn("qorql: building the release preset", ran.stderr)
        self.assertEqual(len(calls), 2)
        self.assertIn("--preset release", calls[0])
        self.assertIn("--build build/release", calls[1])

    def test_what_serves_is_built_when_a_word_asks_for_it(self):
        self.assertIn("--target qorql_tool", self.run_it("SELECT Name FROM CIM_Process")[1][-1])
        for word in ("serve", "listen", "passwd"):
            with self.subTest(word=word):
                time.sleep(0.02)
                self.write("Cimom/a.cpp", word)
                self.assertNotIn("--target", self.run_it("--no-live", word)[1][-1])
                self.assertEqual(self.run_it("SELECT Name FROM CIM_Process")[1], [], "all of it will do")

    def test_what_asks_servers_is_built_when_an_option_asks_for_it(self):
        for option in (["--server", "https://a"], ["--server=https://a"], ["--servers", "a"], ["--servers=a"]):
            with self.subTest(option=option):
                time.sleep(0.02)
                self.write("Cimom/a.cpp", str(option))
                self.assertTrue(self.run_it("SELECT Name FROM CIM_Process")[1][-1].endswith("--target qorql_tool"))
                ran, calls = self.run_it(*option, "SELECT Name FROM CIM_Process")
                self.assertTrue(calls[-1].endswith("--target qorql_tool qorql_remote"), calls)
                self.assertIn("qorql: building what asks servers, half a minute at first (log in build/release.log)\n",
                              ran.stderr)
                self.assertEqual(self.run_it(*option)[1], [])
                self.assertEqual(self.run_it("SELECT Name FROM CIM_Process")[1], [])

    def test_who_asks_a_server_first_has_the_tool_too(self):
        ran, calls = self.run_it("--server", "https://a")
        self.assertIn("qorql: building the release preset, a few minutes", ran.stderr)
        self.assertTrue(calls[-1].endswith("--target qorql_tool qorql_remote"), calls)
        self.assertEqual(self.run_it("SELECT Name FROM CIM_Process")[1], [])
        ran, calls = self.run_it("serve")
        self.assertIn("qorql: building what serves, a minute or two at first", ran.stderr)
        self.assertNotIn("--target", calls[-1])
        self.assertEqual(self.run_it("--server", "https://a")[1], [])

    def test_the_second_run_is_silent_and_quick(self):
        self.run_it()
        start = time.monotonic()
        ran, calls = self.run_it("x")
        self.assertLess(time.monotonic() - start, 1.0)
        self.assertEqual((ran.stdout, ran.stderr, calls), ("tool:x\n", "", []))

    def test_the_tool_that_the_tests_built_will_do(self):
        self.write("build/test/tools/qorql/qorql", '#!/bin/bash\necho "theirs:$*"\n')
        os.chmod(os.path.join(self.tree, "build/test/tools/qorql/qorql"), 0o755)
        time.sleep(0.02)
        self.write("build/test/.built", "")
        ran, calls = self.run_it("x")
        self.assertEqual((ran.stdout, ran.stderr, calls), ("theirs:x\n", "", []))
        time.sleep(0.02)
        self.write("Cimom/a.cpp", "changed")
        self.assertEqual((self.run_it("x")[0].stdout, self.run_it("x")[0].stdout), ("tool:x\n", "tool:x\n"))

    def test_a_changed_new_or_removed_source_builds_again(self):
        self.run_it()
        for change in ("changed", "new", "removed"):
            time.sleep(0.02)
            if change == "removed":
                os.remove(os.path.join(self.tree, "Cimom/b.cpp"))
            else:
                self.write("Cimom/a.cpp" if change == "changed" else "Cimom/b.cpp", change)
            self.assertEqual(len(self.run_it()[1]), 2, change)
            self.assertEqual(len(self.run_it()[1]), 0, change)

    def test_a_failing_build_is_one_sentence_after_its_log_and_is_tried_again(self):
        self.write("broken", "")
        for _ in range(2):
            ran, _ = self.run_it()
            self.assertEqual((ran.stdout, ran.returncode), ("", 1))
            self.assertIn("it is broken", ran.stderr)
            self.assertIn("qorql: the release build failed", ran.stderr.splitlines()[-1])
        os.remove(os.path.join(self.tree, "broken"))
        self.assertEqual(self.run_it()[0].returncode, 3)

    def refused(self, ran, message):
        self.assertEqual((ran.stdout, ran.returncode), ("", 1))
        self.assertEqual(ran.stderr.splitlines()[-1], "qorql: " + message)

    def test_only_missing_packages_are_installed(self):
        self.write("packages.txt", "there # always\nremoved # once\nmissing # not yet\n")
        ran, calls = self.run_it()
        self.assertEqual(ran.returncode, 3, ran.stderr)
        self.assertIn("qorql: installing packages: missing removed\n", ran.stderr)
        self.assertEqual([call for call in calls if call.startswith("apt-get")],
                         [APT + "update", APT + "install -y --no-install-recommends missing removed"])

    def test_the_tool_installs_nothing_of_the_tests(self):
        self.write("packages.txt", "there # always\n\n# Tests, checks and benchmarks.\nmissing # not yet\n")
        _, calls = self.run_it()
        self.assertEqual([call for call in calls if call.startswith("apt-get")], [])

    def test_packages_that_cannot_be_installed_are_named(self):
        self.write("packages.txt", "missing # not yet\n")
        self.write("../no-network", "")
        self.refused(self.run_it()[0], "apt-get could not install these packages: missing")

    def test_lists_that_cannot_be_renewed_are_no_reason_to_give_up(self):
        self.write("packages.txt", "missing # not yet\n")
        self.write("../no-lists", "")
        ran, _ = self.run_it()
        self.assertEqual(ran.returncode, 3)
        self.assertIn("qorql: apt-get could not renew its lists", ran.stderr)

    def test_an_unreadable_database_of_packages_is_told(self):
        self.write("packages.txt", "missing # not yet\n")
        self.write("../broken-dpkg", "")
        self.refused(self.run_it()[0], "dpkg-query cannot tell what is installed: run it to see why")

    def test_an_ordinary_user_installs_with_sudo(self):
        self.write("packages.txt", "missing # not yet\n")
        os.chmod(self.write("../bin/id", "#!/bin/bash\necho 1000\n"), 0o755)
        ran, calls = self.run_it()
        self.assertEqual(ran.returncode, 3)
        self.assertEqual(calls.count("sudo"), 2)

    def test_without_sudo_it_says_what_root_is_to_do(self):
        self.write("packages.txt", "missing # not yet\n")
        os.chmod(self.write("../bin/id", "#!/bin/bash\necho 1000\n"), 0o755)
        self.refused(self.run_it(path=self.without("sudo"))[0],
                     "these packages are missing, run as root: apt-get install missing")

    def test_without_apt_it_names_what_is_missing(self):
        self.write("packages.txt", "missing # not yet\n")
        self.refused(self.run_it(path=self.without("apt-get"))[0],
                     "these packages are missing, and so is apt-get to install them: missing")

    def test_another_system_than_debian_builds_with_what_it_has(self):
        self.write("packages.txt", "missing # not yet\n")
        ran, calls = self.run_it(path=self.without("dpkg-query", "apt-get"))
        self.assertEqual((ran.returncode, len(calls)), (3, 2))
        self.assertIn("qorql: this is no Debian system", ran.stderr)

    def test_without_flock_it_builds_all_the_same_and_says_so(self):
        ran, _ = self.run_it(path=self.without("flock"))
        self.assertEqual(ran.returncode, 3)
        self.assertIn("qorql: there is no flock", ran.stderr)

    def test_a_folder_that_cannot_be_written_is_told(self):
        self.write("build", "a file is in its place")
        self.refused(self.run_it()[0],
                     f"the folder {self.tree}/build/release cannot be written: take a copy of the tree that is yours")

    def test_what_fails_unexpectedly_is_named_with_its_line(self):
        os.chmod(self.write("../bin/touch", "#!/bin/bash\nexit 7\n"), 0o755)
        ran, _ = self.run_it()
        self.assertEqual(ran.returncode, 7)
        self.assertRegex(ran.stderr, r'\nqorql: scripts/front-door\.sh line \d+: status 7 of: touch "\$folder/\.started"\n')

    def test_the_tests_close_with_their_sum_behind_what_was_skipped_and_why(self):
        status, lines = self.run_tests()
        self.assertEqual(status, 0)
        self.assertEqual(lines[-3:], ["test: two skipped: it takes root", "100% tests passed, 0 tests failed out of 2",
                                      "Total Test time (real) = 1.00 sec"])
        self.assertIn("1/2 Test #1: one ... Passed", lines)
        self.assertEqual(sum("tests passed" in line for line in lines), 1)

    def test_failing_tests_close_with_their_sum_too(self):
        self.write("../failing", "")
        status, lines = self.run_tests()
        self.assertEqual(status, 8)
        self.assertEqual(lines[-2:], ["50% tests passed, 1 tests failed out of 2", "Total Test time (real) = 1.00 sec"])
        self.assertIn("Errors while running CTest", lines)


class EveryScript(unittest.TestCase):
    """Each bash script of the tree with a failing command put in after its opening."""

    def scripts(self):
        for path in tree.files(ROOT):
            with open(os.path.join(ROOT, path), encoding="utf-8", errors="replace") as source:
                if source.readline().rstrip() in ("#!/bin/bash", "#!/bin/sh", "#!/usr/bin/env bash"):
                    yield path, "#!/bin/bash\n" + source.read()

    def test_names_the_line_and_the_command_that_fails(self):
        found = list(self.scripts())
        self.assertGreaterEqual({path for path, _ in found},
                                {"qorql", "test", ".ci/run", "bench/run", "scripts/bare", "scripts/coverage", "scripts/fuzz"})
        for path, text in found:
            with self.subTest(path=path), tempfile.TemporaryDirectory() as folder:
                opening, sourced, rest = text.partition('/scripts/front-door.sh"\n')
                self.assertTrue(sourced, "it does not source scripts/front-door.sh")
                os.makedirs(os.path.join(folder, "scripts"))
                shutil.copy(os.path.join(ROOT, "scripts", "front-door.sh"), os.path.join(folder, "scripts"))
                script = os.path.join(folder, path)
                os.makedirs(os.path.dirname(script), exist_ok=True)
                with open(script, "w", encoding="utf-8") as out:
                    out.write(opening + sourced + "bash -c 'exit 9'\n" + rest)
                ran = subprocess.run(["bash", script], capture_output=True, text=True, timeout=60)
                line = opening.count("\n") + 2
                self.assertEqual(ran.returncode, 9)
                self.assertIn(f"{path} line {line}: status 9 of: bash -c 'exit 9'\n", ran.stderr)


if __name__ == "__main__":
    sys.exit(unittest.main())
