"""What holds up neither a reload nor the end: clients that read slowly, queries that go on, a log that nobody reads."""
# SPDX-License-Identifier: Apache-2.0
import json
import os
import re
import signal
import ssl
import subprocess
import time

import servercase
from certificates import Certificates
from reloadcase import CLASS, FAILED, ReloadCase
from servercase import head_of, request
from users_test import basic

# A list that no buffer of a connection takes, and a join that goes on for minutes.
LONG = ("class T_Many { [Key] string Name; [Key] uint32 Id; };\nclass T_More : T_Many { };\n" + "".join(
    f'instance of {name} {{ Name = "{"x" * 300}"; Id = {number}; }};\n'
    for name in ("T_Many", "T_More") for number in range(8000)))
ENDLESS = "SELECT COUNT(a.Id) AS C FROM T_Many AS a, T_More AS b WHERE a.Id * b.Id = a.Id + b.Id + 7"


class EndingTest(ReloadCase):
    def begin(self, server, operation, **parameters):
        """A connection on which that is asked."""
        body = request(operation, parameters=parameters)
        connection = self.raw(server)
        connection.send(head_of(operation, len(body)) + body)
        time.sleep(0.3)
        return connection

    def begin_query(self, server):
        return self.begin(server, "ExecQuery", QueryLanguage="DMTF:CQL", Query=ENDLESS)

    def test_a_reload_waits_for_no_reader_and_no_query(self):
        mof = self.write("model.mof", LONG)
        server = self.serve("--no-live", "--no-cache", "-m", mof)
        slow = self.begin(server, "EnumerateInstances", ClassName="T_Many", LocalOnly="false")
        query = self.begin_query(server)
        self.write("model.mof", CLASS % "T_Second")
        began = time.monotonic()
        self.reload(server)
        self.assertTrue(self.knows(server, "T_Second"))
        self.assertLess(time.monotonic() - began, 5)
        self.assertEqual(slow.read_reply()[2].count(b"<VALUE.NAMEDINSTANCE>"), 16000)
        self.assertFalse(query.is_closed(0.5))
        query.close()

    def test_where_the_reload_is_refused_passwords_stay_as_they_were(self):
        users, mof = os.path.join(self.folder, "users"), self.write("model.mof", CLASS % "T_First")
        self.run_tool("passwd", users, "anna", stdin=b"old\n")
        server = self.serve("--no-live", "-m", mof, "--users", users)
        self.run_tool("passwd", users, "anna", stdin=b"new\n")
        self.write("model.mof", "nonsense")
        self.reload(server, FAILED)
        self.assertTrue(self.knows(server, "T_First", basic("anna", "old")))
        self.write("model.mof", CLASS % "T_Second")
        os.chmod(users, 0o666)
        self.reload(server, FAILED, 2)
        self.assertTrue(self.knows(server, "T_First", basic("anna", "old")))

    def test_limits_are_taken_over_and_what_is_not_is_told(self):
        lines = "[server]\nlive = no\nlisten = 127.0.0.1:0\n"
        settings = self.write("server.ini", lines + "contexts = 1\n")
        server = self.serve("--config", settings, listen=None)
        self.assertEqual([self.open_one(server) for _ in range(2)], [0, 27])
        self.write("server.ini", lines + "contexts = 2\ninterval = 7\nstore = store\nwritable = yes\n")
        self.reload(server)
        self.assertEqual([self.open_one(server) for _ in range(3)], [0, 0, 27])
        told = [line for line in server.log_text().splitlines() if "restart" in line]
        self.assertEqual(told, [f"qorql: warning: {name} is another one now, which counts after a restart"
                                for name in ("store", "writable")])

    def open_one(self, server):
        return self.call(server, "OpenEnumerateInstances", "root/interop", ClassName="CIM_Namespace", MaxObjectCount="0").error

    def test_more_connections_are_allowed_by_a_reload(self):
        settings = self.write("server.ini", "[server]\nlive = no\nlisten = 127.0.0.1:0\nconnections = 1\n")
        server = self.serve("--config", settings, listen=None)
        self.write("server.ini", "[server]\nlive = no\nlisten = 127.0.0.1:0\nconnections = 200\n")
        self.reload(server)
        body = request("GetClass", parameters={"ClassName": "T"})
        connections = [self.raw(server) for _ in range(100)]
        for connection in connections:
            connection.send(head_of("GetClass", len(body)) + body)
        self.assertEqual({connection.read_reply()[0] for connection in connections}, {200})

    def test_a_connection_of_tls_goes_on_after_a_reload(self):
        certificates = Certificates(self.folder)
        file, key = certificates.good()
        server = self.serve("--no-live", "-m", self.write("model.mof", CLASS % "T_First"), "--tls-cert", file, "--tls-key", key)
        body = request("GetClass", parameters={"ClassName": "T_First"})
        connection = self.raw(server, context=ssl.create_default_context(cafile=certificates.authority))
        for expected in (None, "close"):
            connection.send(head_of("GetClass", len(body)) + body)
            status, headers, _ = connection.read_reply()
            self.assertEqual((status, headers.get("connection")), (200, expected))
            if expected is None:
                self.reload(server)

    def test_a_query_is_told_that_the_server_ends(self):
        server = self.serve("--no-live", "-m", self.write("model.mof", LONG), "--limit", "drain=1")
        query = self.begin_query(server)
        server.send_signal(signal.SIGTERM)
        status, _, body = query.read_reply()
        self.assertEqual(status, 200)
        self.assertIn(b'<ERROR CODE="28" DESCRIPTION="the query was stopped: the server is shutting down"/>', body)
        self.assertEqual(server.process.wait(10), 0)

    def test_a_second_signal_ends_it_at_once(self):
        server = self.serve("--no-live", "-m", self.write("model.mof", LONG))
        query = self.begin_query(server)
        began = time.monotonic()
        server.send_signal(signal.SIGTERM)
        time.sleep(0.3)
        server.send_signal(signal.SIGINT)
        self.assertIn(b'<ERROR CODE="28"', query.read_reply()[2])
        self.assertEqual(server.process.wait(10), 0)
        self.assertLess(time.monotonic() - began, 6)

    def test_a_log_that_nobody_reads_holds_up_nothing(self):
        process = subprocess.Popen([servercase.TOOL, "serve", "--no-live", "--listen", "127.0.0.1:0"], stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, env=self.environment())
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.kill)
        port = int(servercase.LISTENING.fullmatch(process.stdout.readline().decode()).group(4))
        server = type("Server", (), {"port": port, "host": "127.0.0.1", "scheme": "http"})
        client = self.client(server)
        for _ in range(1000):
            self.assertEqual(client.call("GetClass", ClassName="T" + "x" * 200).status, 200)
        first = os.read(process.stderr.fileno(), 1 << 20)
        client.call("GetClass", ClassName="T")
        client.close()
        time.sleep(0.3)
        for _ in range(100):
            process.send_signal(signal.SIGHUP)
            time.sleep(0.005)
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(20), 0)
        lines = (first + process.stderr.read()).splitlines()
        told = [json.loads(line) for line in lines if line.startswith(b"{")]
        lost = [re.fullmatch(r"(\d+) lines were not written, since nobody read them", line.get("problem", "")) for line in told]
        lost = sum(int(match.group(1)) for match in lost if match)
        self.assertGreater(lost, 500)
        self.assertEqual(lost + sum(line.get("operation") == "GetClass" for line in told), 1001)

    def test_a_section_that_is_misspelt_is_named(self):
        for section in ("sever", "Server", ""):
            settings = self.write("server.ini", f"[{section}]\nusers = none\n")
            done = self.run_tool("serve", "--config", settings)
            self.assertEqual((done.returncode, done.stdout), (3, b""))
            self.assertIn(f"{settings}: there is no section [{section}]; there are server and ZEMO", done.stderr.decode())
        server = self.serve("--no-live", "--config", self.write("server.ini", "[ZEMO]\nDisablePreFilter = true\n"))
        self.assertEqual(server.stop(), 0)


if __name__ == "__main__":
    servercase.main()
