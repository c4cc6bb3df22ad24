"""Users and TLS: who is let in, how passwords are kept, and what stays secret."""
# SPDX-License-Identifier: Apache-2.0
import base64
import os
import pty
import socket
import ssl
import stat
import subprocess
import time

import servercase
from certificates import Certificates
from servercase import ServerCase, request, request_headers
from terminal import converse

LIMITS = ("--limit", "failures=3", "--limit", "failure-wait=2")


def basic(user, password):
    return {"Authorization": "Basic " + base64.b64encode(f"{user}:{password}".encode()).decode()}


class UsersTest(ServerCase):
    def setUp(self):
        super().setUp()
        self.users = os.path.join(self.folder, "users")
        self.give("anna", "secret")

    def give(self, user, password):
        done = self.run_tool("passwd", self.users, user, stdin=password.encode() + b"\n")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""))

    def ask(self, client, headers=()):
        """The reply to a call."""
        body = request("GetClass", parameters={"ClassName": "PLANT_Nothing"})
        return self.judged(client.post(body, {**request_headers("GetClass"), **dict(headers)}))

    def trusting(self, certificates):
        return ssl.create_default_context(cafile=certificates.authority)

    def test_a_user_with_the_password_is_let_in(self):
        server = self.serve_plant("--users", self.users)
        client = self.client(server)
        self.assertEqual(self.ask(client, basic("anna", "secret")).status, 200)
        line, = server.log(1)
        self.assertEqual(line["user"], "anna")

    def test_nobody_else_is(self):
        client = self.client(self.serve_plant("--users", self.users))
        for headers in ({}, basic("anna", "wrong"), basic("nobody", "secret"), {"Authorization": "Bearer x"}):
            reply = self.ask(client, headers)
            self.assertEqual(reply.status, 401)
            self.assertEqual(reply.headers["WWW-Authenticate"], 'Basic realm="qorql", charset="UTF-8"')
            self.assertNotIn(b"CIM", reply.body)
        self.assertEqual(self.ask(client, basic("anna", "secret")).status, 200)

    def test_wrong_passwords_have_an_address_wait(self):
        client = self.client(self.serve_plant("--users", self.users, *LIMITS))
        for _ in range(3):
            self.assertEqual(self.ask(client, basic("anna", "wrong")).status, 401)
        refused = self.ask(client, basic("anna", "secret"))
        self.assertEqual((refused.status, refused.headers["Retry-After"]), (429, "2"))
        client.close()
        time.sleep(2.2)
        self.assertEqual(self.ask(client, basic("anna", "secret")).status, 200)

    def test_a_client_with_curl_is_let_in(self):
        server = self.serve_plant("--users", self.users)
        settings = self.write("curl", 'user = "anna:secret"\n')
        done = subprocess.run(["curl", "-sS", "-K", settings, "-d", "<CIM/>", "-w", "%{http_code}", "-o", os.devnull, server.url],
                              capture_output=True, env=self.environment(), check=False)
        self.assertIn(done.stdout, (b"200", b"400"))
        self.assertEqual(done.stderr, b"")

    def test_a_password_is_known_nowhere(self):
        server = self.serve_plant("--users", self.users)
        client = self.client(server)
        self.ask(client, basic("anna", "secret"))
        self.ask(client, basic("anna", "sesame"))
        server.log(2)
        with open(self.users, encoding="ascii") as file:
            kept = file.read()
        for text in (server.log_text(), kept):
            self.assertNotIn("secret", text)
            self.assertNotIn("sesame", text)
            self.assertNotIn(basic("anna", "secret")["Authorization"][6:], text)

    def test_the_file_is_for_its_owner_alone_and_keeps_hashes(self):
        self.give("bert", "other")
        self.assertEqual(stat.S_IMODE(os.stat(self.users).st_mode), 0o600)
        with open(self.users, encoding="ascii") as file:
            self.assertRegex(file.read(), r"^anna:\$y\$\S+\nbert:\$y\$\S+\n$")
        self.assertEqual(os.listdir(self.folder), ["users"])

    def test_a_user_is_taken_out(self):
        self.assertEqual(self.run_tool("passwd", "--delete", self.users, "anna").returncode, 0)
        done = self.run_tool("passwd", "--delete", self.users, "anna")
        self.assertEqual((done.returncode, done.stderr.decode()),
                         (1, f"qorql: error: there is no user anna in {self.users}\n"))

    def test_what_is_no_password_or_user_is_refused(self):
        for user, password, message in (("anna", "\n", "a password is not empty"), ("anna", "", "there is no password"),
                                        ("a:b", "x\n", "no colon"), ("anna", "x" * 600, "no more than 511 bytes")):
            done = self.run_tool("passwd", self.users, user, stdin=password.encode())
            self.assertEqual(done.returncode, 1)
            self.assertIn(message, done.stderr.decode())
        self.assertEqual(self.run_tool("passwd", os.path.join(self.folder, "no", "users"), "anna", stdin=b"x\n").returncode, 3)

    def test_a_terminal_asks_twice_and_shows_nothing(self):
        for second, status in (("new", 0), ("different", 1)):
            self.assertEqual(self.at_terminal(["new", second]), status)
        client = self.client(self.serve_plant("--users", self.users))
        self.assertEqual(self.ask(client, basic("anna", "new")).status, 200)

    def at_terminal(self, answers):
        pid, terminal = pty.fork()
        if pid == 0:
            os.execve(servercase.TOOL, [servercase.TOOL, "passwd", self.users, "anna"], self.environment())
        shown = converse(terminal, answers)
        os.close(terminal)
        self.assertNotIn(b"new\r", shown)
        return os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1])

    def test_an_empty_certificate_is_not_taken_for_none(self):
        empty = self.write("empty.pem", "")
        server = subprocess.run([servercase.TOOL, "serve", "--no-live", "--listen", "127.0.0.1:0", "--tls-cert", empty,
                                 "--tls-key", Certificates(self.folder).good()[1]], capture_output=True, text=True, timeout=30, check=False)
        self.assertEqual((server.returncode, server.stdout), (3, ""))
        self.assertIn(f"{empty} is empty", server.stderr)

    def test_tls_is_spoken_with_those_who_trust_the_certificate(self):
        certificates = Certificates(self.folder)
        file, key = certificates.good()
        server = self.serve_plant("--tls-cert", file, "--tls-key", key, "--users", self.users)
        self.assertEqual(server.url, f"https://127.0.0.1:{server.port}/cimom")
        client = self.client(server, context=self.trusting(certificates))
        self.assertEqual(self.ask(client, basic("anna", "secret")).status, 200)
        self.assertEqual(self.ask(client).status, 401)
        with self.assertRaises(ssl.SSLError):
            self.ask(self.client(server, context=ssl.create_default_context()))
        plain = self.raw(server)
        plain.send(b"POST /cimom HTTP/1.1\r\n\r\n")
        self.assertTrue(plain.ends())

    def test_old_tls_is_refused(self):
        certificates = Certificates(self.folder)
        file, key = certificates.good()
        server = self.serve_plant("--tls-cert", file, "--tls-key", key)
        for version in ("-tls1", "-tls1_1"):
            done = subprocess.run(["openssl", "s_client", "-connect", f"127.0.0.1:{server.port}", version,
                                   "-cipher", "ALL:@SECLEVEL=0"], input=b"", capture_output=True, check=False)
            self.assertNotEqual(done.returncode, 0, version)

    def test_a_handshake_that_stops_halfway_ends(self):
        certificates = Certificates(self.folder)
        file, key = certificates.good()
        server = self.serve_plant("--tls-cert", file, "--tls-key", key, "--limit", "idle=1")
        connection = self.raw(server)
        connection.send(b"\x16\x03\x01\x02\x00")
        self.assertTrue(connection.ends())

    def test_a_body_of_chunks_that_is_too_long_is_told_over_tls_too(self):
        certificates = Certificates(self.folder)
        file, key = certificates.good()
        server = self.serve_plant("--tls-cert", file, "--tls-key", key, "--limit", "body=100K")
        connection = self.raw(server, context=self.trusting(certificates))
        connection.send(servercase.head_of("GetClass", None, "Transfer-Encoding: chunked"))
        for _ in range(4):
            connection.send(b"8000\r\n" + b" " * 0x8000 + b"\r\n")
        self.assertEqual(connection.read_head()[0], 413)

    def test_beyond_this_machine_with_tls_and_users(self):
        certificates = Certificates(self.folder)
        file, key = certificates.good()
        server = self.serve_plant("--tls-cert", file, "--tls-key", key, "--users", self.users, listen="0.0.0.0:0")
        self.assertRegex(server.url, r"^https://0\.0\.0\.0:\d+/cimom$")
        client = self.client(server, context=self.trusting(certificates))
        self.assertEqual(self.ask(client, basic("anna", "secret")).status, 200)
        for missing in (("--tls-cert", file, "--tls-key", key), ("--users", self.users)):
            done = self.run_tool("serve", "--no-live", "--listen", "0.0.0.0:0", *missing)
            self.assertEqual((done.returncode, done.stdout), (3, b""))
            self.assertIn("give --tls-cert, --tls-key and --users", done.stderr.decode())

    def test_what_the_server_cannot_use_is_told(self):
        certificates = Certificates(self.folder)
        file, _ = certificates.good()
        _, other = certificates.expired()
        text = self.write("text", "no certificate\n")
        open_file = self.write("open", "")
        os.chmod(open_file, 0o666)
        for arguments, message in ((("--tls-cert", file, "--tls-key", other),
                                    f"the certificate {file} with the private key {other}: "),
                                   (("--tls-cert", text, "--tls-key", other), f"the certificate {text}: "),
                                   (("--tls-cert", file, "--tls-key", file), f"the private key {file}: "),
                                   (("--tls-cert", file), "--tls-cert and --tls-key go together"),
                                   (("--users", text), "this is no user with a hashed password"),
                                   (("--users", open_file), "others than its owner may write to")):
            done = self.run_tool("serve", "--no-live", "--listen", "127.0.0.1:0", *arguments)
            self.assertEqual((done.returncode, done.stdout), (3, b""), arguments)
            self.assertIn(message, done.stderr.decode())


if __name__ == "__main__":
    socket.setdefaulttimeout(60)
    servercase.main()
