"""Tests that find less than they need pass by, with a reason, and none crashes: they run in a changed root that is no
mount, without terminals.

Run as surroundings_test.py ROOT TOOL STREAM PROVIDERS, the last three being programs of the build.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import subprocess
import sys
import tempfile
import unittest

ROOT, TOOL, STREAM, PROVIDERS = sys.argv[1:5]
SKIPPED = 77
IS_ROOT = os.geteuid() == 0
OWN_WORLD = ["unshare", "--mount"] if IS_ROOT else ["unshare", "--map-root-user", "--mount"]
# In a world that has no other users nothing can be tried as one of them.
PROVIDER_TESTS = [] if IS_ROOT else ["--gtest_filter=-LinuxProcess.GivesNullWherePermissionLacks"]

# Every folder of the root is mounted into $1, which itself is none, and the terminals are hidden there.
POOR_WORLD = """
for entry in /* /.[!.]*; do
  if [ -L "$entry" ]; then cp -P "$entry" "$1$entry"
  elif [ -d "$entry" ]; then mkdir "$1$entry" && mount --rbind "$entry" "$1$entry"
  fi
done
mount -t tmpfs none "$1/dev/pts" || exit 99
[ -L "$1/dev/ptmx" ] || mount --bind /dev/null "$1/dev/ptmx" || exit 99
root=$1
shift
exec chroot "$root" "$@"
"""


class PoorSurroundings(unittest.TestCase):
    def run_poorly(self, *command):
        """Runs a command there, in the folder of the tests of the tool."""
        with tempfile.TemporaryDirectory(prefix="qorql-poor-") as folder:
            os.chmod(folder, 0o755)  # it is everybody's root
            return subprocess.run(
                [*OWN_WORLD, "sh", "-c", POOR_WORLD, "sh", folder, *command],
                capture_output=True, text=True, timeout=600, cwd="/", check=False)

    def test_the_world_is_as_poor_as_said(self):
        look = "import os\ntry: os.openpty()\nexcept OSError: print('poor')\nprint(open('/proc/self/mounts').read())"
        ran = self.run_poorly(sys.executable, "-c", look)
        self.assertEqual((ran.returncode, ran.stdout.split("\n", 1)[0]), (0, "poor"), ran.stderr)
        self.assertNotIn(" / ", ran.stdout)

    def test_the_providers_pass_there(self):
        ran = self.run_poorly(PROVIDERS, *PROVIDER_TESTS)
        self.assertEqual(ran.returncode, 0, ran.stdout[-4000:] + ran.stderr)

    def test_the_tool_passes_there_and_says_what_was_left_out(self):
        folder = os.path.join(ROOT, "tests", "cli")
        for name in sorted(name for name in os.listdir(folder) if name.endswith("_test.py")):
            with open(os.path.join(folder, name), encoding="utf-8") as script:
                text = script.read()
            if "\nimport pty\n" not in text:
                continue
            with self.subTest(name=name):
                ran = self.run_poorly(sys.executable, "-B", os.path.join(folder, name), TOOL, STREAM)
                self.assertEqual(ran.returncode, SKIPPED, ran.stdout + ran.stderr)
                self.assertIn("skipped: this system gives out no terminals (", ran.stdout)

    def test_a_file_system_is_found_there(self):
        ran = self.run_poorly(sys.executable, "-B", os.path.join(ROOT, "tests", "cli", "live_test.py"), TOOL, STREAM,
                              "Live.test_a_file_system")
        self.assertEqual(ran.returncode, 0, ran.stderr)


def can_make_it():
    try:
        return subprocess.run([*OWN_WORLD, "mount", "-t", "tmpfs", "none", "/dev/pts"],
                              capture_output=True, check=False).returncode == 0
    except FileNotFoundError:
        return False


if __name__ == "__main__":
    del sys.argv[1:]
    if not can_make_it():
        print("skipped: this system does not let a test hide its terminals")
        sys.exit(SKIPPED)
    unittest.main()
