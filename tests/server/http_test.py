"""How the server speaks HTTP: methods, bodies in every form, connections that go on, and what it says of itself."""
# SPDX-License-Identifier: Apache-2.0
import signal
import subprocess

import servercase
from servercase import ServerCase, head_of, request


class HttpTest(ServerCase):
    def setUp(self):
        super().setUp()
        self.body = request("GetClass", parameters={"ClassName": "PLANT_Nothing"})

    def assert_answered(self, connection):
        status, headers, body = connection.read_reply()
        self.assertEqual((status, headers["cimoperation"]), (200, "MethodResponse"))
        self.replies.append(body)

    def test_it_says_where_it_listens_and_ends_by_a_signal(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            server = self.serve_plant()
            self.assertEqual(server.url, f"http://127.0.0.1:{server.port}/cimom")
            self.assertEqual(self.call(server, "GetClass", ClassName="PLANT_Nothing").status, 200)
            self.assertEqual(server.stop(number), 0)

    def test_it_listens_at_several_addresses(self):
        server = self.serve_plant("--listen", "[::1]:0", addresses=2)
        self.assertRegex(server.urls[1], r"^http://\[::1\]:\d+/cimom$")

    def test_other_commands_load_nothing_of_the_server(self):
        loaded = subprocess.run(["ldd", servercase.TOOL], capture_output=True, check=True).stdout.decode()
        self.assertIn("libqorql.so", loaded)
        for library in ("libqorqlserver", "libmicrohttpd", "libgnutls", "libcrypt.", "libsqlite3", "libqorqlremote",
                        "libexpat", "libcurl"):
            self.assertNotIn(library, loaded)

    def test_an_address_in_use_is_told(self):
        server = self.serve_plant()
        done = self.run_tool("serve", "--no-live", "--listen", f"127.0.0.1:{server.port}")
        self.assertEqual((done.returncode, done.stdout), (3, b""))
        self.assertIn(f"cannot listen at 127.0.0.1:{server.port}: Address already in use", done.stderr.decode())

    def test_beyond_this_machine_it_wants_tls_and_users(self):
        done = self.run_tool("serve", "--no-live", "--listen", "0.0.0.0:0")
        self.assertEqual((done.returncode, done.stdout), (3, b""))
        self.assertRegex(done.stderr.decode(), r"to listen at 0\.0\.0\.0:\d+, give --tls-cert, --tls-key and --users")

    def test_a_connection_goes_on(self):
        connection = self.raw(self.serve_plant())
        for _ in range(3):
            connection.send(head_of("GetClass", len(self.body)) + self.body)
            self.assert_answered(connection)

    def test_requests_may_come_before_the_replies(self):
        connection = self.raw(self.serve_plant())
        connection.send((head_of("GetClass", len(self.body)) + self.body) * 5)
        for _ in range(5):
            self.assert_answered(connection)

    def test_a_body_may_come_in_chunks_with_trailers(self):
        connection = self.raw(self.serve_plant())
        chunks = b"".join(b"%x\r\n%s\r\n" % (len(self.body[at:at + 100]), self.body[at:at + 100])
                          for at in range(0, len(self.body), 100))
        connection.send(head_of("GetClass", None, "Transfer-Encoding: chunked", "Trailer: X-Sum") + chunks +
                        b"0\r\nX-Sum: 1\r\n\r\n")
        self.assert_answered(connection)
        connection.send(head_of("GetClass", len(self.body)) + self.body)
        self.assert_answered(connection)

    def test_a_client_that_waits_is_told_to_go_on_or_why_not(self):
        server = self.serve_plant()
        connection = self.raw(server)
        connection.send(head_of("GetClass", len(self.body), "Expect: 100-continue"))
        self.assertEqual(connection.read_head(), (100, {}))
        connection.send(self.body)
        self.assert_answered(connection)
        refused = self.raw(server)
        refused.send(head_of("GetClass", 100 << 20, "Expect: 100-continue"))
        self.assertEqual(refused.read_head()[0], 413)

    def test_extensions_of_chunks_are_skipped(self):
        connection = self.raw(self.serve_plant())
        connection.send(head_of("GetClass", None, "Transfer-Encoding: chunked") +
                        b"%x;a=b\r\n%s\r\n0;c\r\n\r\n" % (len(self.body), self.body))
        self.assert_answered(connection)

    def test_what_follows_a_request_that_is_none_is_not_read_as_one(self):
        server = self.serve_plant()
        connection, good = self.raw(server), head_of("GetClass", len(self.body)) + self.body
        connection.send(good + head_of("GetClass", "x") + self.body + good)
        self.assert_answered(connection)
        self.assertEqual(connection.read_reply()[0], 400)
        self.assertEqual(connection.read_head()[0], 0)
        self.assertEqual([line["http"] for line in server.log(2) if "http" in line].count(200), 1)

    def test_http_1_0_is_answered_and_closed(self):
        connection = self.raw(self.serve_plant())
        connection.send(head_of("GetClass", len(self.body), version="HTTP/1.0") + self.body)
        self.assert_answered(connection)
        self.assertTrue(connection.is_closed())

    def test_what_is_no_operation_is_refused_by_its_method(self):
        client = self.client(self.serve_plant())
        for method, status in (("GET", 405), ("HEAD", 405), ("OPTIONS", 200), ("PUT", 501), ("DELETE", 501)):
            reply = client.post(b"", {}, method=method)
            self.assertEqual(reply.status, status, method)
            if status in (200, 405):
                self.assertEqual(reply.headers["Allow"], "POST, M-POST, OPTIONS")

    def test_m_post_is_answered_in_its_own_way(self):
        server = self.serve_plant()
        man = "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=73"
        reply = self.judged(self.client(server).post(request("EnumerateClassNames"), {
            "Man": man, "73-CIMOperation": "MethodCall", "73-CIMMethod": "EnumerateClassNames",
            "73-CIMObject": "root%2Fcimv2"}, method="M-POST"))
        self.assertEqual((reply.status, reply.error), (200, 0))
        self.assertEqual((reply.headers["Man"], reply.headers["73-CIMOperation"]), (man, "MethodResponse"))
        self.assertEqual(reply.headers["Ext"], "")

    def test_a_long_reply_comes_in_chunks_and_compressed_where_that_is_taken(self):
        mof = self.write("many.mof", "class T_One { [Key] string Name; };\n" + "".join(
            f'instance of T_One {{ Name = "number {number}"; }};\n' for number in range(5000)))
        server = self.serve("--no-live", "-m", mof)
        plain = self.call(server, "EnumerateInstances", ClassName="T_One")
        packed = self.call(server, "EnumerateInstances", ClassName="T_One", headers={"Accept-Encoding": "gzip"})
        self.assertEqual(len(plain.items), 5000)
        self.assertEqual((plain.headers["Transfer-Encoding"], plain.headers["Content-Encoding"]), ("chunked", None))
        self.assertEqual((packed.headers["Content-Encoding"], packed.body), ("gzip", plain.body))
        first, second = server.log(2)
        self.assertEqual(first["bytes"], len(plain.body))
        self.assertLess(second["bytes"], len(plain.body) / 3)

    def test_a_reader_who_stops_is_left(self):
        mof = self.write("many.mof", "class T_One { [Key] string Name; };\n" + "".join(
            f'instance of T_One {{ Name = "number {number:0300}"; }};\n' for number in range(20000)))
        server = self.serve("--no-live", "-m", mof, "--limit", "idle=1")
        connection = self.raw(server)
        body = request("EnumerateInstances", parameters={"ClassName": "T_One"})
        connection.send(head_of("EnumerateInstances", len(body)) + body)
        line, = server.log(1, patience=20)
        self.assertTrue(line["cut"])
        self.assertLess(line["ms"], 15000)

    def test_the_log_tells_of_each_request(self):
        server = self.serve_plant()
        self.call(server, "GetClass", ClassName="PLANT_Nothing")
        line, = server.log(1)
        self.assertRegex(line["time"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z$")
        self.assertEqual((line["client"], line["user"], line["http"]), ("127.0.0.1", "", 200))
        self.assertGreater(line["bytes"], 0)
        self.assertGreaterEqual(line["ms"], 0)


if __name__ == "__main__":
    servercase.main()
