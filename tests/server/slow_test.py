"""A server that asks others, one of which is slow or does not answer: who need not wait does not."""
# SPDX-License-Identifier: Apache-2.0
import http.client
import http.server
import re
import socket
import threading
import time

import servercase
from servercase import ServerCase, head_of, request

OWN = 'class Own_A { [Key] string Id; };\ninstance of Own_A { Id = "own"; };\n'
OUTER = ('class T_Slow { [Key] string Id; };\ninstance of T_Slow { Id = "slow"; };\n'
         'class T_Quick { [Key] string Id; };\ninstance of T_Quick { Id = "quick"; };\n')


REFERENCES_TAKE = 2.5  # longer than a server remembers what a statement learned
# The links are told for each end alone.
LINKED = ('class T_Pool { [Key] string Id; };\nclass T_Disk { [Key] string Id; };\n'
          '[Association] class T_Link { [Key] T_Pool REF Pool; [Key] T_Disk REF Disk; };\n' +
          "".join(f'instance of T_Pool as $p{i} {{ Id = "p{i}"; }};\ninstance of T_Disk as $d{i} {{ Id = "d{i}"; }};\n'
                  f"instance of T_Link {{ Pool = $p{i}; Disk = $d{i}; }};\n" for i in range(2)))
REFUSAL = ('<?xml version="1.0" encoding="utf-8"?><CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="%s" '
           'PROTOCOLVERSION="1.0"><SIMPLERSP><IMETHODRESPONSE NAME="%s"><ERROR CODE="7" DESCRIPTION="not listed"/>'
           "</IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>")


class Delay:
    """Passes requests on to a server; those for instances of T_Slow when `release` is set. It refuses to list T_Link, and
    tells references after a while."""

    def __init__(self, behind):
        self.release, self.asked = threading.Event(), threading.Event()
        delay = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_POST(self):
                body = self.rfile.read(int(self.headers["Content-Length"]))
                if b"EnumerateInstances" in body and b"T_Slow" in body:
                    delay.asked.set()
                    delay.release.wait(20)
                if b"EnumerateInstances" in body and b"T_Link" in body:
                    self.tell(200, REFUSAL % (re.search(rb'ID="(\d+)"', body).group(1).decode(),
                                              self.headers["CIMMethod"]))
                    return
                if b'"References"' in body:
                    time.sleep(REFERENCES_TAKE)
                connection = http.client.HTTPConnection("127.0.0.1", behind.port)
                connection.request("POST", self.path, body, {name: value for name, value in self.headers.items()
                                                              if name not in ("Accept-Encoding", "Connection")})
                reply = connection.getresponse()
                content = reply.read()
                connection.close()
                self.tell(reply.status, content)

            def tell(self, status, content):
                content = content if isinstance(content, bytes) else content.encode()
                try:
                    self.send_response(status)
                    self.send_header("Content-Type", 'application/xml; charset="utf-8"')
                    self.send_header("CIMOperation", "MethodResponse")
                    self.send_header("Content-Length", str(len(content)))
                    self.end_headers()
                    self.wfile.write(content)
                except OSError:
                    self.close_connection = True

            def log_message(self, *_):
                """Nobody reads it."""

        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.server.daemon_threads = True
        self.url = f"http://127.0.0.1:{self.server.server_port}"
        self.thread = threading.Thread(target=self.server.serve_forever, daemon=True)
        self.thread.start()

    def end(self):
        self.release.set()
        self.server.shutdown()
        self.server.server_close()
        self.thread.join()


class SlowTest(ServerCase):
    def serve_slow(self, *options):
        """A server that asks one through a delay, and the delay. It knows already that the other one lacks its own class."""
        delay = Delay(self.serve("--no-live", "-m", self.write("outer.mof", OUTER)))
        self.addCleanup(delay.end)
        gateway = self.serve("--no-live", "-m", self.write("own.mof", OWN), "--server", delay.url, *options)
        self.assertEqual(len(self.call(gateway, "EnumerateInstances", ClassName="Own_A").items), 1)
        return gateway, delay

    def begin(self, server, operation, **parameters):
        """A call that is not waited for."""
        body = request(operation, parameters=parameters)
        connection = self.raw(server)
        connection.send(head_of(operation, len(body)) + body)
        return connection

    def timed(self, *arguments, **parameters):
        begin = time.monotonic()
        reply = self.call(*arguments, **parameters)
        return reply, time.monotonic() - begin

    def test_a_slow_question_holds_up_no_other_one(self):
        gateway, delay = self.serve_slow()
        slow = [self.begin(gateway, "EnumerateInstances", ClassName="T_Slow") for _ in range(20)]
        self.assertTrue(delay.asked.wait(10))
        for operation in ({"operation": "EnumerateInstances", "ClassName": "Own_A"},
                          {"operation": "ExecQuery", "QueryLanguage": "CQL", "Query": "SELECT Id FROM Own_A"}):
            reply, seconds = self.timed(gateway, **operation)
            self.assertEqual((reply.error, len(reply.items)), (0, 1))
            self.assertLess(seconds, 2)
        delay.release.set()
        for connection in slow:
            status, _, body = connection.read_reply()
            self.assertEqual((status, body.count(b"<VALUE>slow</VALUE>")), (200, 1))
        reply = self.call(gateway, "EnumerateInstances", ClassName="T_Quick")
        self.assertEqual((reply.error, len(reply.items)), (0, 1))

    def test_another_question_is_asked_beside_a_slow_one(self):
        gateway, delay = self.serve_slow()
        slow = self.begin(gateway, "EnumerateInstances", ClassName="T_Slow")
        self.assertTrue(delay.asked.wait(10))
        reply, seconds = self.timed(gateway, "EnumerateInstances", ClassName="T_Quick")
        self.assertEqual((reply.error, len(reply.items)), (0, 1))
        self.assertLess(seconds, 5)
        slow.close()

    def test_the_limit_holds_while_others_are_asked(self):
        gateway, _ = self.serve_slow("--limit", "query=1")
        for operation in ({"operation": "EnumerateInstances", "ClassName": "T_Slow"},
                          {"operation": "ExecQuery", "QueryLanguage": "CQL", "Query": "SELECT Id FROM T_Slow"}):
            reply, seconds = self.timed(gateway, **operation)
            self.assertEqual(reply.error, 27)
            self.assertIn("took more than 1 seconds", reply.tree.find(".//ERROR").get("DESCRIPTION"))
            self.assertLess(seconds, 5)

    def test_a_client_that_goes_away_ends_its_operation(self):
        gateway, delay = self.serve_slow()
        connection = self.begin(gateway, "EnumerateInstances", ClassName="T_Slow")
        self.assertTrue(delay.asked.wait(10))
        connection.close()
        self.assertIn("the client has gone", [line.get("message") for line in gateway.log(2)])

    def test_links_that_are_told_for_each_end_alone_are_all_there_however_long_it_takes(self):
        delay = Delay(self.serve("--no-live", "-m", self.write("linked.mof", LINKED)))
        self.addCleanup(delay.end)
        gateway = self.serve("--no-live", "--server", delay.url)
        query = "SELECT T_Pool.Id, T_Disk.Id FROM T_Pool, T_Disk WHERE T_Link = T_Pool AND T_Link = T_Disk"
        reply = self.call(gateway, "ExecQuery", QueryLanguage="CQL", Query=query)
        self.assertEqual((reply.error, len(reply.items)), (0, 2))

    def test_a_server_that_does_not_answer_is_waited_for_once(self):
        with socket.create_server(("127.0.0.1", 0)) as dead:
            quick = self.serve("--no-live", "-m", self.write("outer.mof", OUTER))
            gateway = self.serve("--no-live", "--call-timeout", "1", "--server", f"quick={quick.url}",
                                 "--server", f"dead=http://127.0.0.1:{dead.getsockname()[1]}")
            begin = time.monotonic()
            connections = [self.begin(gateway, "GetClass", ClassName=f"T_{number}") for number in range(6)]
            for connection in connections:
                self.assertIn(b"dead: GetClass", connection.read_reply()[2])
            self.assertLess(time.monotonic() - begin, 5)
            for number in range(20):
                reply, seconds = self.timed(gateway, "GetClass", ClassName=f"T_Other{number}")
                self.assertEqual(reply.error, 1)
                self.assertLess(seconds, 0.9)


if __name__ == "__main__":
    servercase.main()
