"""What signals do: the server reads everything anew without losing a request, and ends when its work is done."""
# SPDX-License-Identifier: Apache-2.0
import os
import shutil
import signal
import socket
import ssl
import threading
import time
import unittest

import servercase
from certificates import Certificates
from eventcase import instance
from reloadcase import CLASS, FAILED, ReloadCase
from servercase import Client, head_of, request
from users_test import basic


class ReloadTest(ReloadCase):
    def test_mof_is_read_anew(self):
        mof = self.write("model.mof", CLASS % "T_First")
        server = self.serve("--no-live", "-m", mof)
        self.assertEqual((self.knows(server, "T_First"), self.knows(server, "T_Second")), (True, False))
        self.write("model.mof", CLASS % "T_Second")
        self.reload(server)
        self.assertEqual((self.knows(server, "T_First"), self.knows(server, "T_Second")), (False, True))

    def test_faulty_mof_is_told_and_all_stays(self):
        mof = self.write("model.mof", CLASS % "T_First")
        server = self.serve("--no-live", "-m", mof)
        self.write("model.mof", "class T_Second { nonsense };\n")
        self.reload(server, FAILED)
        self.assertIn(f"{mof}:1:", server.log_text())
        self.assertEqual((self.knows(server, "T_First"), self.knows(server, "T_Second")), (True, False))
        self.write("model.mof", CLASS % "T_Second")
        self.reload(server)
        self.assertTrue(self.knows(server, "T_Second"))

    def test_no_request_is_lost_meanwhile(self):
        server = self.serve("--no-live", "-m", self.write("model.mof", CLASS % "T_First"))
        ended, wrong = threading.Event(), []

        def ask():
            client = Client(server)
            while not ended.is_set():
                reply = client.call("GetClass", ClassName="T_First")
                if reply.status != 200 or reply.error != 0:
                    wrong.append(reply.status)
            client.close()

        threads = [threading.Thread(target=ask) for _ in range(4)]
        for thread in threads:
            thread.start()
        for count in range(1, 6):
            self.reload(server, count=count)
        ended.set()
        for thread in threads:
            thread.join()
        self.assertEqual(wrong, [])

    @unittest.skipIf("QORQL_NEEDS_PROC" in os.environ, "sanitizers keep memory that was given back")
    def test_memory_is_given_back(self):
        mof = self.write("model.mof", CLASS % "T_One" + "".join(
            f'instance of T_One {{ Name = "{number:0200}"; }};\n' for number in range(5000)))
        server = self.serve("--no-live", "--no-cache", "-m", mof)

        def resident():
            with open(f"/proc/{server.process.pid}/status", encoding="ascii") as file:
                return next(int(line.split()[1]) for line in file if line.startswith("VmRSS"))

        for count in range(1, 4):
            self.reload(server, count=count)
        before = resident()
        for count in range(4, 14):
            self.reload(server, count=count)
        self.assertLess(resident(), before + before // 5)

    def test_configuration_is_read_anew(self):
        first, second = self.write("first.mof", CLASS % "T_First"), self.write("second.mof", CLASS % "T_Second")
        settings = self.write("server.ini", f"[server]\nlive = no\nmof = {first}\nlisten = 127.0.0.1:0\n")
        server = self.serve("--config", settings, listen=None)
        self.assertEqual((self.knows(server, "T_First"), self.knows(server, "T_Second")), (True, False))
        self.write("server.ini", f"[server]\nlive = no\nmof = {first}\nmof = {second}\nlisten = 127.0.0.1:0\nbody = 1K\n")
        self.reload(server)
        self.assertEqual((self.knows(server, "T_First"), self.knows(server, "T_Second")), (True, True))
        connection = self.raw(server)
        connection.send(head_of("GetClass", 2000))
        self.assertEqual(connection.read_reply()[0], 413)
        self.write("server.ini", "[server]\nnonsense = 1\n")
        self.reload(server, FAILED)
        self.assertIn(f"{settings}: [server] nonsense: there is no such key", server.log_text())
        self.assertTrue(self.knows(server, "T_Second"))

    def test_a_filter_that_does_not_fit_any_more_is_told_of_once(self):
        mof = self.write("model.mof", CLASS % "T_First")
        server = self.serve("--no-live", "--writable", "-m", mof)
        made = instance("CIM_IndicationFilter", Name="asked", Query="SELECT * FROM T_First")
        self.assertEqual(self.call(server, "CreateInstance", "root/interop", NewInstance=made).error, 0)
        self.write("model.mof", CLASS % "T_Second")
        for count in (1, 2):
            self.reload(server, count=count)
            told = [line for line in server.log_text().splitlines() if line.startswith("qorql: ") and "anew" not in line]
            self.assertEqual(len(told), count, told)
            self.assertRegex(told[-1], "CIM_IndicationFilter.*asked.* is not in force: .*'T_FIRST' is not a class of root/cimv2")

    def test_the_command_line_counts_before_the_configuration(self):
        settings = self.write("server.ini", "[server]\nlive = no\nlisten = 0.0.0.0:0\nbody = 1K\n")
        server = self.serve("--config", settings, "--limit", "body=3K", "--set", "server.idle=1")
        self.assertEqual(server.host, "127.0.0.1")
        connection = self.raw(server)
        connection.send(head_of("GetClass", 2000) + b" " * 2000)
        self.assertIn(connection.read_reply()[0], (200, 400))
        self.assertTrue(connection.ends(10))

    def test_a_setting_that_is_none_is_refused(self):
        for text, message in (("body = 0", "[server] body: '0' is not a whole number from 1 to"),
                              ("writable = maybe", "[server] writable: 'maybe' is not yes or no"),
                              ("nonsense", "this is no line of a configuration")):
            settings = self.write("server.ini", f"[server]\n{text}\n")
            done = self.run_tool("serve", "--config", settings)
            self.assertEqual((done.returncode, done.stdout), (3, b""))
            self.assertIn(message, done.stderr.decode())

    def test_users_and_certificates_are_read_anew(self):
        users = os.path.join(self.folder, "users")
        self.run_tool("passwd", users, "anna", stdin=b"old\n")
        certificates = Certificates(self.folder)
        good, expired = certificates.good(), certificates.expired()
        file, key = os.path.join(self.folder, "cert"), os.path.join(self.folder, "key")

        def use(pair):
            shutil.copy(pair[0], file)
            shutil.copy(pair[1], key)

        use(good)
        server = self.serve("--no-live", "-m", self.write("model.mof", CLASS % "T_First"), "--users", users,
                            "--tls-cert", file, "--tls-key", key)
        trusting = ssl.create_default_context(cafile=certificates.authority)
        self.assertTrue(self.knows(server, "T_First", basic("anna", "old"), trusting))
        self.run_tool("passwd", users, "anna", stdin=b"new\n")
        use(expired)
        self.reload(server)
        with self.assertRaises(ssl.SSLCertVerificationError):
            self.knows(server, "T_First", basic("anna", "new"), trusting)
        shutil.copy(good[0], file)  # beside the key of the other
        self.reload(server, FAILED)
        use(good)
        self.reload(server, count=2)
        self.assertTrue(self.knows(server, "T_First", basic("anna", "new"), trusting))
        client = Client(server, context=trusting)
        self.assertEqual(client.call("GetClass", headers=basic("anna", "old"), ClassName="T_First").status, 401)
        client.close()

    def test_the_supervisor_is_told(self):
        supervisor = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.addCleanup(supervisor.close)
        supervisor.settimeout(30)
        path = os.path.join(self.folder, "notify")
        supervisor.bind(path)
        os.environ["NOTIFY_SOCKET"] = path
        self.addCleanup(os.environ.pop, "NOTIFY_SOCKET")
        server = self.serve("--no-live")
        self.assertEqual(supervisor.recv(1000), b"READY=1")
        server.send_signal(signal.SIGHUP)
        self.assertRegex(supervisor.recv(1000), rb"^RELOADING=1\nMONOTONIC_USEC=\d+$")
        self.assertEqual(supervisor.recv(1000), b"READY=1")
        server.send_signal(signal.SIGTERM)
        self.assertEqual(supervisor.recv(1000), b"STOPPING=1")

    def test_the_end_waits_for_what_was_asked(self):
        server = self.serve("--no-live", "-m", self.write("model.mof", CLASS % "T_First"))
        body = request("GetClass", parameters={"ClassName": "T_First"})
        idle, half = self.raw(server), self.raw(server)
        half.send(head_of("GetClass", len(body)) + body[:-10])
        time.sleep(0.3)
        server.send_signal(signal.SIGTERM)
        self.assertTrue(idle.is_closed())
        with self.assertRaises(OSError):
            self.raw(server, timeout=5)
        half.send(body[-10:])
        self.assertEqual(half.read_reply()[0], 200)
        self.assertEqual(server.process.wait(30), 0)

    def test_the_end_waits_for_so_long_only(self):
        server = self.serve("--no-live", "--limit", "drain=1")
        half = self.raw(server)
        half.send(head_of("GetClass", 100) + b"half")
        time.sleep(0.3)
        began = time.monotonic()
        self.assertEqual(server.stop(), 0)
        self.assertLess(time.monotonic() - began, 10)


if __name__ == "__main__":
    servercase.main()
