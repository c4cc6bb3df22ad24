"""Linux_KernelModule over a made-up kernel's list of modules, judged by lsmod."""
# SPDX-License-Identifier: Apache-2.0
import json
import os
import shutil
import subprocess
import unittest

import toolcase
from toolcase import ToolCase

PLACE = ["unshare", "--map-root-user", "--mount", "sh", "-ec"]
# Name, size, count of uses, modules that use it.
MODULES = (("nf_nat", 57344, 2, ("nft_chain_nat", "xt_nat")), ("nft_chain_nat", 16384, 0, ()), ("xt_nat", 12288, 0, ()),
           ("loop", 32768, 1, ()), ("hyphen_ed", 4096, 0, ()))


def can_judge():
    if not shutil.which("lsmod") or os.environ.get("QORQL_NEEDS_PROC"):
        return False
    try:
        return subprocess.run([*PLACE, "mount -t tmpfs none /proc; mount -t tmpfs none /sys"], capture_output=True,
                              check=False).returncode == 0
    except FileNotFoundError:
        return False


@unittest.skipUnless(can_judge(), "this system has no lsmod, or does not let a test make up a list of modules")
class Modules(ToolCase):
    def made_up(self):
        """The commands that make such a kernel up: /proc/modules, and a folder for each module, which lsmod reads."""
        commands = ["mount -t tmpfs none /proc", "mount -t tmpfs none /sys"]
        for name, size, count, users in MODULES:
            folder = f"/sys/module/{name}"
            commands.append(f"mkdir -p {folder}/holders; echo {size} > {folder}/coresize; echo {count} > {folder}/refcnt; "
                            f"echo live > {folder}/initstate")
            commands += [f"mkdir -p {folder}/holders/{user}" for user in users]
            told = "".join(user + "," for user in users) or "-"
            commands.append(f"echo '{name} {size} {count} {told} Live 0x0000000000000000' >> /proc/modules")
        return "\n".join(commands)

    def test_size_count_and_users(self):
        query = "SELECT Name, Size, UseCount, UsedBy FROM Linux_KernelModule"
        ran = subprocess.run([*PLACE, f'{self.made_up()}\nlsmod\necho\n{toolcase.TOOL} -o json "{query}"'], capture_output=True,
                             text=True, timeout=60, check=False)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        listed, said = ran.stdout.split("\n\n")
        expected = []
        for line in listed.splitlines()[1:]:
            name, size, count, *users = line.split()
            expected.append([name, int(size), int(count), sorted(users[0].split(",")) if users else []])
        self.assertEqual(len(expected), len(MODULES))
        found = [[row["Name"], row["Size"], row["UseCount"], sorted(row["UsedBy"])] for row in json.loads(said)]
        self.assertEqual(sorted(found), sorted(expected))


if __name__ == "__main__":
    toolcase.main()
