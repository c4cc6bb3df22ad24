"""What systemd is told of the server: its unit, its user, and the example of its configuration."""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import shutil
import subprocess

import servercase
from servercase import ServerCase

FOLDER = os.path.join(os.path.dirname(servercase.TESTS), "tools", "qorql", "service")


def read(name):
    with open(os.path.join(FOLDER, name), encoding="utf-8") as file:
        return file.read()


class ServiceTest(ServerCase):
    def run_systemd(self, program, *arguments):
        if shutil.which(program) is None:
            self.skipTest(f"{program} is not installed")
        return subprocess.run([program, *arguments], capture_output=True, check=False, timeout=60)

    def unit(self):
        """The unit with the tool where it was built."""
        return self.write("qorql.service", read("qorql.service").replace("ExecStart=qorql", f"ExecStart={servercase.TOOL}"))

    def test_the_unit_is_one(self):
        done = self.run_systemd("systemd-analyze", "verify", "--man=no", self.unit())
        told = [line for line in done.stderr.decode().splitlines() if "qorql" in line and "User" not in line]
        self.assertEqual((done.returncode, told), (0, []))

    def test_the_unit_is_hardened(self):
        done = self.run_systemd("systemd-analyze", "security", "--offline=true", "--threshold=20", self.unit())
        self.assertEqual(done.returncode, 0, done.stdout.decode()[-2000:])

    def test_the_user_is_one(self):
        done = self.run_systemd("systemd-sysusers", "--dry-run", os.path.join(FOLDER, "qorql.sysusers"))
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertNotRegex(done.stderr.decode(), "(?i)unknown|fail|invalid|ignor")

    def test_files_that_a_group_may_read_are_taken_without_a_warning(self):
        """As root gives them to the user of the service."""
        users = os.path.join(self.folder, "users")
        self.run_tool("passwd", users, "anna", stdin=b"secret\n")
        os.chmod(users, 0o640)
        self.run_tool("passwd", users, "bert", stdin=b"secret\n")
        self.assertEqual(os.stat(users).st_mode & 0o777, 0o640)
        self.assertEqual(self.serve("--no-live", "--users", users).log(), [])
        os.chmod(users, 0o644)
        self.assertIn("everybody may read", self.serve("--no-live", "--users", users).log(1)[0]["problem"])

    def test_the_example_serves_as_it_is(self):
        server = self.serve("--config", os.path.join(FOLDER, "server.ini"), "--no-live")
        self.assertEqual(server.stop(), 0)

    def test_the_example_says_what_holds_without_it(self):
        """Each limit with its default, and each key that there is."""
        text = read("server.ini")
        commented = dict(re.findall(r"^;([\w-]+) = (.*)$", text, re.MULTILINE))
        every = re.findall(r"^;?([\w-]+) =", text, re.MULTILINE)
        keys = set(every)
        self.assertEqual(len(every), len(keys), "a key is there twice")
        done = self.run_tool("serve", "--set", "server.nonsense=1")
        known = re.search(r"there are (.*)\n", done.stderr.decode()).group(1)
        self.assertEqual(keys, set(known.split(", ")))
        help_text = self.run_tool("serve", "--help").stdout.decode()
        told = dict(re.findall(r"([\w-]+) \((?:[^()]*?, )?(\d+[MG]?)\)", re.sub(r"\s+", " ", help_text)))
        numbers = {name: value for name, value in commented.items() if value[0].isdigit()}
        self.assertEqual(numbers.pop("interval"), "5")
        self.assertEqual(numbers, told)


if __name__ == "__main__":
    servercase.main()
