"""A client of other making, wbemcli, understands what the server answers to each operation that it has."""
# SPDX-License-Identifier: Apache-2.0
import shutil
import subprocess
import unittest

import servercase
from servercase import ServerCase


@unittest.skipUnless(shutil.which("wbemcli"), "this system has no wbemcli")
class Wbemcli(ServerCase):
    def setUp(self):
        super().setUp()
        self.server = self.serve_plant("--writable")

    def run_client(self, operation, path, *arguments, properties=""):
        done = subprocess.run(["wbemcli", operation, *arguments, f"{self.server.scheme}://127.0.0.1:{self.server.port}/{path}",
                               *filter(None, [properties])], capture_output=True, timeout=60, check=False)
        return done.returncode, done.stdout.decode(), done.stderr.decode()

    def told(self, operation, path, *arguments, properties=""):
        """What it prints, without the server's address."""
        status, out, err = self.run_client(operation, path, *arguments, properties=properties)
        self.assertEqual((status, err), (0, ""))
        return [line.replace(f"127.0.0.1:{self.server.port}/", "") for line in out.splitlines() if line]

    def assert_refused(self, code, operation, path, *arguments, properties=""):
        status, _, err = self.run_client(operation, path, *arguments, properties=properties)
        self.assertNotEqual(status, 0)
        self.assertRegex(err, rf"\({code}\) CIM_ERR_")

    def test_names_of_classes(self):
        self.assertEqual(self.told("ecn", "root/cimv2:P_Thing"),
                         ["root/cimv2:P_Pump", "root/cimv2:P_BigPump", "root/cimv2:P_Tank"])

    def test_classes(self):
        # It does not know the attribute of embedded objects at arrays.
        told = "\n".join(self.told("gc", "root/cimv2:P_Pump", "-nl", "-t", properties="Name,Level,Remarks,Codes"))
        for name in ("-Name#=", "-Level", "-Remarks[]", "-Codes[]"):
            self.assertIn(name, told)
        self.assertIn("root/cimv2:P_FeedsHot", "\n".join(self.told("ec", "root/cimv2:P_Feeds", "-nl")))
        # It prints a definition as it came.
        self.assertTrue(self.told("gcd", "root/cimv2:P_Tank")[0].startswith('<CLASS NAME="P_Tank" '))

    def test_names_of_instances(self):
        self.assertEqual(self.told("ein", "root/cimv2:P_Tank"), ['root/cimv2:P_Tank.Name="t1"', 'root/cimv2:P_Tank.Name="t2"'])

    def test_instances(self):
        self.assertEqual(self.told("ei", "root/cimv2:P_Tank", "-nl"),
                         ['root/cimv2:P_Tank.Name="t1"', '-Name="t1"', "-Place=", "-Litres=500",
                          'root/cimv2:P_Tank.Name="t2"', '-Name="t2"', r'-Place="hall \"A\""', "-Litres=10"])

    def test_one_instance(self):
        told = self.told("gi", 'root/cimv2:P_BigPump.Name="p2"', "-nl", properties="Doors,IsOn")
        self.assertIn("-Doors=-2", told)
        self.assertIn("-IsOn=FALSE", told)

    def test_associations(self):
        path = 'root/cimv2:P_Tank.Name="t2"'
        self.assertEqual(len(self.told("ain", path)), 1)
        # Nor does it know elements of arrays that are NULL.
        self.assertTrue(self.told("ai", path, "-ac", "P_FeedsHot", properties="Name")[0].startswith("root/cimv2:P_Pump.Name="))
        self.assertEqual(self.told("ain", path, "-arr", "Sink"), [])
        self.assertTrue(self.told("rin", path)[0].startswith("root/cimv2:P_FeedsHot."))
        self.assertIn("Degrees=80", self.told("ri", path)[0])

    def test_changes(self):
        path = 'root/cimv2:P_Tank.Name="t9"'
        self.assertEqual(self.told("ci", path, properties='Name="t9",Litres=3'), [path])
        self.assert_refused(11, "ci", path, properties='Name="t9",Litres=3')
        self.assertIn("-Litres=3", self.told("gi", path, "-nl"))
        self.told("mi", path, properties="Litres=4")
        self.assertIn("-Litres=4", self.told("gi", path, "-nl"))
        self.told("di", path)
        self.assert_refused(6, "gi", path)

    def test_refusals(self):
        self.assert_refused(5, "ei", "root/cimv2:P_None")
        self.assert_refused(3, "ei", "root/none:P_Tank")
        self.assert_refused(6, "di", 'root/cimv2:P_Tank.Name="none"')

    def test_what_is_not_served(self):
        tank = 'root/cimv2:P_Tank.Name="t1"'
        self.assert_refused(7, "gp", tank, properties="Litres")
        self.assert_refused(7, "sp", tank, properties="Litres=1")
        self.assert_refused(7, "dc", "root/cimv2:P_Tank")
        self.assert_refused(16, "cm", tank, properties="Reset")
        self.assert_refused(17, "cm", tank, properties="None")
        self.assertIn('<ERROR CODE="16"', self.run_client("cmx", tank, properties="Reset")[1])

    def test_it_finds_the_namespaces(self):
        told = "\n".join(self.told("ein", "root/interop:CIM_Namespace"))
        self.assertIn('Name="root/cimv2"', told)
        self.assertEqual(len(self.told("ein", "root/interop:CIM_ObjectManager")), 1)


if __name__ == "__main__":
    servercase.main()
