"""What the tests of the tool as a server share: starting one, asking it by a client and by raw sockets, and its log."""
# SPDX-License-Identifier: Apache-2.0
import json
import os
import re
import select
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
TESTS = os.path.dirname(HERE)
sys.path.insert(1, os.path.join(TESTS, "remote"))

import remotecase  # noqa: E402 (the folder is named above)
from remotecase import Client, SKIPPED, namespace_path, parameter, request, request_headers  # noqa: E402, F401

DTD = remotecase.DTD
PLANT = remotecase.PLANT
TOOL = "qorql"
LISTENING = re.compile(r"listening on ((https?)://(.*):(\d+)/cimom)\n")


class Server:
    """`qorql serve` while it runs. `urls`, `scheme`, `host` and `port` are those of the lines that it begins with."""

    def __init__(self, *arguments, addresses=1, environment=None, command="serve", patience=60):
        self.errors = tempfile.TemporaryFile()
        self.process = subprocess.Popen([TOOL, command, *arguments], stdout=subprocess.PIPE, stderr=self.errors,
                                        env=environment)
        self.urls = []
        for _ in range(addresses):
            line = self.read_line(patience)
            found = LISTENING.fullmatch(line)
            if found is None:
                self.process.kill()
                self.process.wait()
                raise AssertionError(f"the server does not say where it listens: {line!r}\n{self.log_text()}")
            if not self.urls:
                self.scheme, self.host, self.port = found.group(2), found.group(3), int(found.group(4))
            self.urls.append(found.group(1))
        self.url = self.urls[0]

    def read_line(self, patience):
        line, end = b"", time.monotonic() + patience
        while not line.endswith(b"\n") and time.monotonic() < end:
            if not select.select([self.process.stdout], [], [], 0.2)[0]:
                continue
            piece = os.read(self.process.stdout.fileno(), 1)
            if not piece:
                break
            line += piece
        return line.decode()

    def log_text(self):
        # Without moving the place in the file, which is the server's as well.
        return os.pread(self.errors.fileno(), os.fstat(self.errors.fileno()).st_size, 0).decode("utf-8", "replace")

    def log(self, count=None, patience=10):
        """The lines of the log that are JSON; once there are `count` of them, where that is given."""
        end = time.monotonic() + patience
        while True:
            lines = [json.loads(line) for line in self.log_text().splitlines() if line.startswith("{")]
            if count is None or len(lines) >= count or time.monotonic() > end:
                return lines
            time.sleep(0.02)

    def send_signal(self, number):
        self.process.send_signal(number)

    def stop(self, number=signal.SIGTERM, patience=60):
        """Ends it and returns its exit status."""
        if self.process.poll() is None:
            self.process.send_signal(number)
        try:
            return self.process.wait(patience)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
            raise
        finally:
            self.process.stdout.close()


class RawConnection:
    """Bytes to the server and back, whatever they are."""

    def __init__(self, server, timeout=20, context=None):
        self.socket = socket.create_connection(("127.0.0.1", server.port), timeout=timeout)
        if context is not None:
            self.socket = context.wrap_socket(self.socket, server_hostname="127.0.0.1")
        self.rest = b""

    def send(self, data):
        self.socket.sendall(data if isinstance(data, bytes) else data.encode())

    def read_head(self):
        """(status, headers) of the next reply; (0, {}) when the connection ends before it."""
        while b"\r\n\r\n" not in self.rest:
            piece = self.receive()
            if not piece:
                return 0, {}
            self.rest += piece
        head, self.rest = self.rest.split(b"\r\n\r\n", 1)
        lines = head.decode("latin-1").split("\r\n")
        headers = {name.strip().lower(): value.strip() for name, _, value in (line.partition(":") for line in lines[1:])}
        return int(lines[0].split()[1]), headers

    def read_reply(self):
        """(status, headers, body) of the next reply with a length, or in chunks."""
        status, headers = self.read_head()
        if headers.get("transfer-encoding") != "chunked":
            return status, headers, self.read_bytes(int(headers.get("content-length", 0)))
        body = b""
        while size := int(self.read_text_line() or "0", 16):
            body += self.read_bytes(size)
            self.read_text_line()
        self.read_text_line()
        return status, headers, body

    def read_bytes(self, count):
        """Fewer where the connection ends before."""
        while len(self.rest) < count:
            piece = self.receive()
            if not piece:
                break
            self.rest += piece
        taken, self.rest = self.rest[:count], self.rest[count:]
        return taken

    def read_text_line(self):
        while b"\r\n" not in self.rest:
            piece = self.receive()
            if not piece:
                break
            self.rest += piece
        line, _, self.rest = self.rest.partition(b"\r\n")
        return line.decode("latin-1")

    def receive(self):
        try:
            return self.socket.recv(65536)
        except ConnectionError:
            return b""

    def is_closed(self, patience=20):
        """Whether the server closes the connection without another byte."""
        self.socket.settimeout(patience)
        try:
            return not self.rest and not self.receive()
        except TimeoutError:
            return False

    def ends(self, patience=20):
        """Whether the server closes the connection, whatever it says before."""
        end = time.monotonic() + patience
        while time.monotonic() < end:
            if self.is_closed(patience):
                return True
            self.rest = b""
        return False

    def close(self):
        self.socket.close()


def head_of(operation="GetClass", length=0, *more, method="POST", namespace="root/cimv2", version="HTTP/1.1"):
    """The head of a request, with its empty line; length None leaves Content-Length out."""
    lines = [f"{method} /cimom {version}", "Host: 127.0.0.1"]
    lines += [f"{name}: {value}" for name, value in request_headers(operation, namespace).items()]
    lines += [] if length is None else [f"Content-Length: {length}"]
    return "\r\n".join([*lines, *more, "", ""]).encode()


class ServerCase(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qorql-server-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.replies = []  # that tearDown has judged

    def environment(self):
        """No profiles, passwords and proxies of whoever runs the tests."""
        kept = {name: value for name, value in os.environ.items() if not name.lower().endswith("_proxy")}
        return {**kept, "HOME": self.folder, "XDG_CONFIG_HOME": os.path.join(self.folder, ".config"),
                "XDG_CACHE_HOME": os.path.join(self.folder, ".cache")}

    def write(self, name, content):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(content)
        return path

    def run_tool(self, *arguments, stdin=b"", timeout=60):
        return subprocess.run([TOOL, *arguments], input=stdin, capture_output=True, timeout=timeout,
                              env=self.environment(), check=False)

    def serve(self, *arguments, listen="127.0.0.1:0", **more):
        """A server of MOF files and options, without live classes unless it is told of them, until the test ends."""
        given = ["--listen", listen] if listen else []
        server = Server(*given, *arguments, environment=self.environment(), **more)
        self.addCleanup(server.errors.close)
        self.addCleanup(server.stop)
        return server

    def serve_plant(self, *arguments, **more):
        return self.serve("--no-live", "-m", PLANT, *arguments, **more)

    def client(self, server, **arguments):
        client = Client(server, **arguments)
        self.addCleanup(client.close)
        return client

    def raw(self, server, **arguments):
        connection = RawConnection(server, **arguments)
        self.addCleanup(connection.close)
        return connection

    def call(self, server, operation, namespace="root/cimv2", headers=(), **parameters):
        """One call over a connection of its own; the reply is judged by the document type definition at the end."""
        client = Client(server)
        try:
            return self.judged(client.call(operation, namespace, headers, **parameters))
        finally:
            client.close()

    def judged(self, reply):
        if reply.status == 200:
            self.replies.append(reply.body)
        return reply

    def tearDown(self):
        self.assert_valid(self.replies)

    def assert_valid(self, documents):
        """The document type definition judges."""
        files = []
        for number, document in enumerate(documents):
            files.append(os.path.join(self.folder, f"{number}.xml"))
            with open(files[-1], "wb") as file:
                file.write(document)
        if not files:
            return
        done = subprocess.run(["xmllint", "--noout", "--nonet", "--dtdvalid", DTD, *files], capture_output=True,
                              check=False)
        self.assertEqual((done.returncode, done.stderr.decode()), (0, ""))


def main():
    global TOOL
    TOOL = os.path.abspath(sys.argv[1])
    ran = unittest.main(module="__main__", argv=[sys.argv[0], *sys.argv[2:]], exit=False).result
    reasons = [reason for _, reason in ran.skipped]
    for reason in sorted(set(reasons)):
        print(f"skipped: {reason} ({reasons.count(reason)} tests)")
    sys.exit(1 if not ran.wasSuccessful() else SKIPPED if ran.skipped else 0)
