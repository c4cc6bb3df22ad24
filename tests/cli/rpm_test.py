"""Packages of rpm, as rpm itself lists them."""
# SPDX-License-Identifier: Apache-2.0
import csv
import os
import shutil
import subprocess
import unittest

import toolcase
from toolcase import ToolCase

RECIPE = """Name: {name}
Version: {version}
Release: 1
Summary: A package
License: none
BuildArch: noarch
%description
More.
%files
"""
COLUMNS = "SELECT Name, VersionString, Architecture, InstanceID FROM Linux_Package WHERE PackageSystem = 'rpm'"


def reads_rpm():
    linked = subprocess.run(["ldd", toolcase.TOOL], capture_output=True, text=True, check=False).stdout
    places = [line.split()[2] for line in linked.splitlines() if "libqorqlembedded" in line and "=>" in line]
    return any(os.path.exists(os.path.join(os.path.dirname(place), "qorql", "libqorqlrpm.so")) for place in places)


@unittest.skipUnless(shutil.which("rpm") and shutil.which("rpmbuild"), "this system has no rpm")
class RpmPackages(ToolCase):
    """A user whose settings name a database of their own."""

    def setUp(self):
        super().setUp()
        if not reads_rpm():
            self.skipTest("this tool was built without librpm")
        self.database = os.path.join(self.folder, "database")
        self.write(".rpmmacros", f"%_dbpath {self.database}\n%_topdir {self.folder}/top\n")
        self.env = dict(os.environ, HOME=self.folder)

    def rpm(self, *command):
        return subprocess.run(command, env=self.env, capture_output=True, text=True, check=True).stdout

    def install(self, name, version):
        recipe = self.write("recipe", RECIPE.format(name=name, version=version))
        self.rpm("rpmbuild", "-bb", recipe)
        self.rpm("rpm", "-i", "--justdb", "--nodeps", f"{self.folder}/top/RPMS/noarch/{name}-{version}-1.noarch.rpm")

    def test_the_packages_are_those_that_rpm_lists(self):
        self.install("kernel", "6.1")
        self.install("kernel", "6.2")
        self.install("tiny", "1")
        listed = self.rpm("rpm", "-qa", "--qf", "%{NAME} %{EVR} %{ARCH} rpm:%{NEVRA}\\n").splitlines()
        self.assertEqual(len(listed), 3)
        result = self.run_tool("-o", "csv", COLUMNS, env=self.env)
        self.succeed(result)
        rows = list(csv.reader(result.out.splitlines()))[1:]
        self.assertEqual(sorted(" ".join(row) for row in rows), sorted(listed))

    def test_without_a_database_nothing_is_said_and_none_is_made(self):
        result = self.run_tool("-o", "csv", COLUMNS, env=self.env)
        self.assertEqual((result.status, result.err), (0, ""))
        self.assertEqual(len(result.out.splitlines()), 1)
        self.assertFalse(os.path.exists(self.database))

    def test_a_broken_database_is_an_error_that_names_it(self):
        os.mkdir(self.database)
        self.write("database/rpmdb.sqlite", "this is no database\n")
        # librpm forgets the handle of a database that it cannot open.
        environment = self.passing_leaks_of("libsqlite3", env=self.env)
        result = self.run_tool("-o", "csv", COLUMNS, env=environment)
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertRegex(result.err, rf"\Aqorql: error: The packages cannot be listed: rpm's database in {self.database}: [^\n]+"
                                     r" \(CIM status 1\)\n\Z")


if __name__ == "__main__":
    toolcase.main()
