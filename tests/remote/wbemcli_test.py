"""A client of other making, wbemcli, understands the tests' WBEM server."""
# SPDX-License-Identifier: Apache-2.0
import shutil
import subprocess
import unittest

import certificates
import remotecase
from remotecase import RemoteCase


@unittest.skipUnless(shutil.which("wbemcli"), "this system has no wbemcli")
class Wbemcli(RemoteCase):
    def run_client(self, server, operation, path, *arguments, user="", properties=""):
        url = server.url.replace("://", f"://{user}@" if user else "://")
        done = subprocess.run(["wbemcli", operation, *arguments, f"{url}/{path}", *filter(None, [properties])],
                              capture_output=True, timeout=60, check=False)
        return done.returncode, done.stdout.decode(), done.stderr.decode()

    def told(self, operation, path, *arguments, properties="", **behaviour):
        """What it prints, without the server's address."""
        server = self.serve(host="here", **behaviour)
        status, out, err = self.run_client(server, operation, path, *arguments, properties=properties)
        self.assertEqual((status, err), (0, ""))
        return [line.replace(f"127.0.0.1:{server.port}/", "").replace("here/", "") for line in out.splitlines()]

    def test_names_of_classes(self):
        self.assertEqual(self.told("ecn", "root/cimv2:P_Thing"),
                         ["root/cimv2:P_Pump", "root/cimv2:P_BigPump", "root/cimv2:P_Tank"])

    def test_classes(self):
        # It does not know the attribute of embedded objects at arrays.
        told = "\n".join(self.told("gc", "root/cimv2:P_Pump", "-nl", "-t", properties="Name,Level,Remarks,Codes"))
        for name in ("-Name#=", "-Level", "-Remarks[]", "-Codes[]"):
            self.assertIn(name, told)

    def test_names_of_instances(self):
        self.assertEqual(self.told("ein", "root/cimv2:P_Tank"), ['root/cimv2:P_Tank.Name="t1"', 'root/cimv2:P_Tank.Name="t2"'])

    def test_instances(self):
        for behaviour in ({}, {"chunked": True}, {"keep_alive": False}):
            told = self.told("ei", "root/cimv2:P_Tank", "-nl", *(["-cte"] if behaviour.get("chunked") else []), **behaviour)
            self.assertEqual([line for line in told if line],
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

    def test_refusals(self):
        status, _, err = self.run_client(self.serve(), "ei", "root/cimv2:P_None")
        self.assertNotEqual(status, 0)
        self.assertRegex(err, r"\(5\) CIM_ERR_INVALID_CLASS")

    def test_users(self):
        server = self.serve(users={"u": "p"})
        self.assertNotEqual(self.run_client(server, "ein", "root/cimv2:P_Tank")[0], 0)
        self.assertEqual(self.run_client(server, "ein", "root/cimv2:P_Tank", user="u:p")[0], 0)

    def test_certificates(self):
        made = certificates.Certificates(self.folder)
        for certificate, is_right in ((made.good(), True), (made.expired(), False), (made.self_signed(), False)):
            status, _, _ = self.run_client(self.serve(certificate=certificate), "ein", "root/cimv2:P_Tank", "-cacert",
                                           made.authority)
            self.assertEqual(status == 0, is_right, certificate)


if __name__ == "__main__":
    remotecase.main()
