"""The ./qorql command in a small tree of its own, with stand-ins for cmake and the package tools.

Run as front_door_test.py ROOT.
"""
import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = sys.argv.pop()

# Notes its call; configuring or building leaves a tool that prints its arguments.
CMAKE = """#!/bin/bash
echo "cmake $*" >>calls
[ ! -e broken ] || { echo "it is broken"; exit 1; }
mkdir -p build/release/tools/qorql
printf '#!/bin/bash\\necho "tool:$*"; exit 3\\n' >build/release/tools/qorql/qorql
chmod +x build/release/tools/qorql/qorql
"""
# Knows one package as installed.
DPKG_QUERY = "#!/bin/bash\necho 'installed there'\n"
APT_GET = '#!/bin/bash\necho "apt-get $*" >>calls\n[ ! -e no-network ]\n'
SUDO = '#!/bin/bash\nexec "$@"\n'


class FrontDoor(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.tree = os.path.join(self.folder.name, "tree")
        os.makedirs(os.path.join(self.tree, "scripts"))
        shutil.copy(os.path.join(ROOT, "qorql"), self.tree)
        shutil.copy(os.path.join(ROOT, "scripts", "front-door.sh"), os.path.join(self.tree, "scripts"))
        self.write("packages.txt", "there # always\n")
        self.write("Cimom/a.cpp", "")
        self.write("include/a.h", "")
        for name, text in [("cmake", CMAKE), ("dpkg-query", DPKG_QUERY), ("apt-get", APT_GET), ("sudo", SUDO)]:
            os.chmod(self.write(f"../bin/{name}", text), 0o755)

    def tearDown(self):
        self.folder.cleanup()

    def write(self, path, text):
        full = os.path.join(self.tree, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "w", encoding="utf-8") as out:
            out.write(text)
        return full

    def run_it(self, *arguments):
        """Runs ./qorql from elsewhere, with the stand-ins; returns the result and the calls since the last run."""
        path = os.path.join(self.folder.name, "bin") + ":" + os.environ["PATH"]
        ran = subprocess.run(
            [os.path.join(self.tree, "qorql"), *arguments],
            cwd=self.folder.name,
            env={**os.environ, "PATH": path},
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

    def test_only_missing_packages_are_installed(self):
        self.write("packages.txt", "there # always\nmissing # not yet\n")
        ran, calls = self.run_it()
        self.assertEqual(ran.returncode, 3)
        self.assertIn("qorql: installing packages: missing", ran.stderr)
        self.assertEqual(calls[-2:] if calls[0].startswith("cmake") else calls[:2],
                         ["apt-get -qq update", "apt-get -qq install -y --no-install-recommends missing"])

    def test_the_tool_installs_nothing_of_the_tests(self):
        self.write("packages.txt", "there # always\n\n# Tests, checks and benchmarks.\nmissing # not yet\n")
        _, calls = self.run_it()
        self.assertEqual([call for call in calls if call.startswith("apt-get")], [])

    def test_packages_that_cannot_be_installed_are_named(self):
        self.write("packages.txt", "missing # not yet\n")
        self.write("../no-network", "")
        ran, _ = self.run_it()
        self.assertEqual((ran.stdout, ran.returncode), ("", 1))
        self.assertEqual(ran.stderr.splitlines()[-1], "qorql: apt-get could not install these packages: missing ")


if __name__ == "__main__":
    sys.exit(unittest.main())
