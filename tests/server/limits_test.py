"""What is too much, too slow or ill-formed: refused in words where that can be, and never at the cost of other clients."""
# SPDX-License-Identifier: Apache-2.0
import os
import statistics
import threading
import time

import servercase
from servercase import Client, ServerCase, head_of, request

CHUNKED = "Transfer-Encoding: chunked"


class LimitsTest(ServerCase):
    def setUp(self):
        super().setUp()
        self.body = request("GetClass", parameters={"ClassName": "PLANT_Nothing"})
        self.good = head_of("GetClass", len(self.body)) + self.body

    def assert_refused(self, server, data, status):
        """The bytes get this status, and the connection ends."""
        connection = self.raw(server)
        connection.send(data)
        told, headers, _ = connection.read_reply()
        self.assertEqual((told, headers.get("connection", "").lower()), (status, "close"), data[:200])
        self.assertTrue(connection.ends())
        connection.close()

    def assert_alive(self, server):
        connection = self.raw(server)
        connection.send(self.good)
        self.assertEqual(connection.read_reply()[0], 200)
        connection.close()

    def test_a_body_that_says_it_is_too_long_is_refused_unread(self):
        server = self.serve_plant()
        self.assert_refused(server, head_of("GetClass", 100 << 20), 413)
        self.assert_refused(server, head_of("GetClass", (16 << 20) + 1), 413)
        self.assert_refused(server, head_of("GetClass", "9" * 30), 413)
        self.assert_alive(server)

    def test_a_body_of_chunks_is_refused_when_it_comes_to_be_too_long(self):
        server = self.serve_plant("--limit", "body=100K")
        connection = self.raw(server)
        connection.send(head_of("GetClass", None, CHUNKED))
        sent, piece = 0, b"8000\r\n" + b" " * 0x8000 + b"\r\n"
        try:
            while sent < 100 << 20:
                connection.send(piece)
                sent += len(piece)
        except OSError:
            pass
        self.assertLess(sent, 20 << 20)
        self.assertEqual(connection.read_head()[0], 413)
        self.assertEqual([line["http"] for line in server.log(1)], [413])
        self.assert_alive(server)

    def test_100_mb_leave_no_memory_behind(self):
        server = self.serve_plant()
        def resident():
            with open(f"/proc/{server.process.pid}/status", encoding="ascii") as file:
                return next(int(line.split()[1]) for line in file if line.startswith("VmHWM"))
        before = resident()
        for head in (head_of("GetClass", None, CHUNKED), head_of("GetClass", 100 << 20)):
            connection = self.raw(server)
            try:
                connection.send(head)
                for _ in range(100):
                    connection.send(b"100000\r\n" + b" " * 0x100000 + b"\r\n")
            except OSError:
                pass
            connection.close()
        self.assert_alive(server)
        self.assertLess(resident() - before, 60 << 10)

    def test_a_head_that_can_be_read_in_two_ways_is_refused(self):
        server = self.serve_plant()
        host, method = b"Host: 127.0.0.1\r\n", b"CIMMethod: GetClass\r\n"
        for before, after in ((host, b""), (host, host + b"Host: other\r\n"), (host, host + host), (host, b"Host: a b\r\n"),
                              (host, b"Host: a/b\r\n"), (method, b"CIMMethod: Get\r\n Class\r\n"),
                              (method, b"CIMMethod:\r\n\tGetClass\r\n"), (method, method + b" \r\n"),
                              (method, b"CIM: GetClass\r\n Method\r\n"), (method, b"CIMMethod: Get\r\n Cl\r\n ass\r\n"),
                              (method, b"CIMMethod : GetClass\r\n"), (host, b" X: 1\r\n" + host)):
            self.assertIn(before, self.good)
            self.assert_refused(server, self.good.replace(before, after), 400)
        smuggled = head_of("GetClass", None).replace(b"\r\n\r\n", b"\r\nContent-: 5\r\n Length\r\n\r\n")
        self.assert_refused(server, smuggled + b"hello", 400)
        for before, after in ((host, b"Host:\r\n"), (host, b"Host: [::1]:5988\r\n"), (method, b"CIMMethod:GetClass\r\n"),
                              (method, b"CIMMethod: \t GetClass \t \r\n"), (method, method + b"X-Empty:\r\nX-Blank: \r\n"),
                              (b"HTTP/1.1\r\n" + host, b"HTTP/1.0\r\n")):
            self.assertIn(before, self.good)
            connection = self.raw(server)
            connection.send(self.good.replace(before, after))
            self.assertEqual(connection.read_reply()[0], 200, after)
            connection.close()

    def test_a_length_that_can_be_read_in_two_ways_is_refused(self):
        server = self.serve_plant()
        self.assert_refused(server, head_of("GetClass", 5, CHUNKED) + b"0\r\n\r\n", 400)
        self.assert_refused(server, head_of("GetClass", 5, "Content-Length: 6") + b"hello", 400)
        self.assert_refused(server, head_of("GetClass", "5, 5") + b"hello", 400)
        self.assert_refused(server, head_of("GetClass", "-5") + b"hello", 400)
        self.assert_refused(server, head_of("GetClass", "5x") + b"hello", 400)
        self.assert_refused(server, head_of("GetClass", None), 411)
        self.assert_refused(server, head_of("GetClass", None, "Transfer-Encoding: gzip, chunked") + b"0\r\n\r\n", 501)
        self.assert_alive(server)
        problems = [line["problem"] for line in server.log() if "problem" in line]
        self.assertNotEqual(problems, [])
        self.assertEqual([each for each in problems if each.count("(") != each.count(")")], [], "cut in the middle")

    def test_a_body_in_another_encoding_is_refused(self):
        connection = self.raw(self.serve_plant())
        connection.send(head_of("GetClass", 5, "Content-Encoding: gzip") + b"hello")
        self.assertEqual(connection.read_reply()[0], 415)
        connection.send(self.good)
        self.assertEqual(connection.read_reply()[0], 200)

    def test_a_page_of_a_browser_is_refused(self):
        connection = self.raw(self.serve_plant())
        connection.send(head_of("GetClass", 5, "Origin: http://page.example") + b"hello")
        self.assertEqual(connection.read_reply()[0], 403)

    def test_chunks_that_are_none_end_the_connection(self):
        server = self.serve_plant()
        for chunks in (b"zz\r\nhello\r\n0\r\n\r\n", b"fffffffffffffffffffff\r\n", b"5\r\nhelloworld\r\n0\r\n\r\n", b"-1\r\n"):
            connection = self.raw(server)
            connection.send(head_of("GetClass", None, CHUNKED) + chunks)
            self.assertIn(connection.read_head()[0], (0, 400, 413))
            connection.close()
        self.assert_alive(server)

    def test_a_head_that_is_too_long_is_refused(self):
        server = self.serve_plant()
        for data in (b"POST /" + b"a" * 300000 + b" HTTP/1.1\r\n\r\n", head_of("GetClass", 0, "X-Long: " + "b" * 300000),
                     head_of("GetClass", 0, *[f"X-{number}: 1" for number in range(30000)])):
            connection = self.raw(server)
            try:
                connection.send(data)
            except OSError:
                pass  # it did not wait for the end
            self.assertIn(connection.read_head()[0], (0, 400, 413, 414, 431))
            connection.close()
        self.assert_alive(server)

    def test_garbage_ends_its_connection_alone(self):
        server = self.serve_plant()
        for data in (b"\0\1\2\3\r\n\r\n", b"\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03", os.urandom(1000) + b"\r\n\r\n",
                     b"GARBAGE\r\n\r\n", b"POST\r\n\r\n", b" \r\n\r\n", b"POST /cimom HTTP/9.9\r\n\r\n", b"<CIM/>\r\n\r\n"):
            connection = self.raw(server)
            connection.send(data)
            connection.socket.shutdown(1)
            self.assertNotEqual(connection.read_head()[0], 200, data)
            connection.close()
        self.assert_alive(server)

    def test_empty_lines_before_a_request_are_left_out(self):
        connection = self.raw(self.serve_plant())
        connection.send(b"\r\n\r\n" + self.good)
        self.assertEqual(connection.read_reply()[0], 200)

    def test_too_many_connections_are_told(self):
        server = self.serve_plant("--limit", "connections=3")
        held = [self.raw(server) for _ in range(3)]
        for connection in held:
            connection.send(self.good)
            self.assertEqual(connection.read_reply()[0], 200)
        self.assert_refused(server, self.good, 503)
        held[0].close()
        for _ in range(100):
            connection = self.raw(server)
            connection.send(self.good)
            status = connection.read_reply()[0]
            connection.close()
            if status == 200:
                break
            time.sleep(0.05)
        self.assertEqual(status, 200)

    def test_an_idle_connection_ends(self):
        server = self.serve_plant("--limit", "idle=1")
        fresh, used = self.raw(server), self.raw(server)
        used.send(self.good)
        self.assertEqual(used.read_reply()[0], 200)
        began = time.monotonic()
        self.assertTrue(fresh.is_closed())
        self.assertTrue(used.is_closed())
        self.assertLess(time.monotonic() - began, 10)

    def test_a_request_that_comes_too_slowly_ends(self):
        server = self.serve_plant("--limit", "idle=1")
        for whole in (self.good, head_of("GetClass", None, CHUNKED) + b"1\r\n \r\n" * 1000):
            connection = self.raw(server)
            began = time.monotonic()
            try:
                for at in range(len(whole)):
                    connection.send(whole[at:at + 1])
                    time.sleep(0.05)
                    if time.monotonic() - began > 20:
                        break
            except OSError:
                pass
            self.assertLess(time.monotonic() - began, 10)
        half = self.raw(server)
        half.send(self.good[:-10])
        self.assertTrue(half.is_closed())
        self.assert_alive(server)

    def test_many_idle_connections_change_no_latency(self):
        server = self.serve_plant()

        def latency():
            client, times = Client(server), []
            for _ in range(200):
                began = time.perf_counter()
                client.call("GetClass", ClassName="PLANT_Nothing")
                times.append(time.perf_counter() - began)
            client.close()
            return statistics.median(times)

        alone = min(latency() for _ in range(3))
        idle = [self.raw(server) for _ in range(64)]
        for connection in idle:
            connection.send(self.good)
            connection.read_reply()
        beside = min(latency() for _ in range(3))
        print(f"median of a request: {alone * 1e6:.0f} us alone, {beside * 1e6:.0f} us beside 64 idle connections")
        self.assertLess(beside, 2 * alone)

    def test_connections_that_come_and_go_leave_nothing_behind(self):
        server = self.serve_plant()

        def hammer():
            for _ in range(50):
                connection = self.raw(server)
                connection.send(self.good)
                connection.read_reply()
                connection.close()

        threads = [threading.Thread(target=hammer) for _ in range(8)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual([line["http"] for line in server.log(400)], [200] * 400)
        folder = f"/proc/{server.process.pid}"
        for _ in range(100):
            if len(os.listdir(folder + "/task")) < 6:
                break
            time.sleep(0.05)
        self.assertLess(len(os.listdir(folder + "/task")), 6)
        self.assertLess(len(os.listdir(folder + "/fd")), 30)

    def test_a_limit_that_is_none_is_wrong_usage(self):
        for limit in ("body", "body=", "body=0", "body=x", "nothing=1", "connections=1000000"):
            done = self.run_tool("serve", "--limit", limit)
            self.assertEqual((done.returncode, done.stdout), (2, b""), limit)


if __name__ == "__main__":
    servercase.main()
