"""An HTTP proxy for tests: forwards what it is asked for, tunnels with CONNECT, and refuses to order."""
# SPDX-License-Identifier: Apache-2.0
import base64
import contextlib
import http.client
import http.server
import select
import socket
import threading
import urllib.parse

HOP = {"proxy-connection", "proxy-authorization", "connection", "keep-alive", "transfer-encoding", "te", "upgrade"}


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    disable_nagle_algorithm = True
    timeout = 60

    def handle(self):
        with contextlib.suppress(ConnectionError, socket.timeout, ValueError):
            super().handle()

    def log_message(self, *_):
        pass

    def is_refused(self):
        """Notes what is asked, and answers it where the proxy refuses it."""
        owner = self.server.owner
        owner.asked.append((self.command, self.path))
        owner.headers.append(dict(self.headers))
        if owner.is_silent:
            owner.stopped.wait()
            return True
        if owner.user is not None:
            wanted = "Basic " + base64.b64encode(owner.user.encode()).decode()
            if self.headers.get("Proxy-Authorization") != wanted:
                self.refuse(407)
                return True
        if owner.status:
            self.refuse(owner.status)
        return bool(owner.status)

    def refuse(self, status):
        """With a page, as proxies have them."""
        self.rfile.read(int(self.headers.get("Content-Length", 0)))
        page = b"<html>What the proxy says</html>"
        self.send_response(status)
        if status == 407:
            self.send_header("Proxy-Authenticate", 'Basic realm="proxy"')
        self.send_header("Content-Length", str(len(page)))
        self.end_headers()
        self.wfile.write(page)

    def do_POST(self):
        if self.is_refused():
            return
        target = urllib.parse.urlsplit(self.path)
        if target.scheme != "http":
            self.refuse(400)
            return
        body = self.rfile.read(int(self.headers.get("Content-Length", 0)))
        kept = {name: value for name, value in self.headers.items() if name.lower() not in HOP}
        connection = http.client.HTTPConnection(target.hostname, target.port, timeout=30)
        try:
            connection.request("POST", target.path, body, kept)
            response = connection.getresponse()
            answer = response.read()
        except OSError:
            self.send_error(502)
            return
        finally:
            connection.close()
        self.send_response(response.status)
        for name, value in response.getheaders():
            if name.lower() not in HOP | {"content-length", "server", "date"}:
                self.send_header(name, value)
        self.send_header("Content-Length", str(len(answer)))
        self.end_headers()
        self.wfile.write(answer)

    def do_CONNECT(self):
        self.close_connection = True
        if self.is_refused():
            return
        host, _, port = self.path.rpartition(":")
        try:
            other = socket.create_connection((host.strip("[]"), int(port)), timeout=30)
        except OSError:
            self.send_error(502)
            return
        with other:
            self.send_response(200)
            self.send_header("X-Of-The-Proxy", "something")
            self.end_headers()
            self.tunnel(other)

    def tunnel(self, other):
        pair = {self.connection: other, other: self.connection}
        while not self.server.owner.stopped.is_set():
            for ready in select.select(list(pair), [], [], 0.1)[0]:
                data = ready.recv(65536)
                if not data:
                    return
                pair[ready].sendall(data)


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, request, client_address):
        """A client that went away is no news."""


class Proxy:
    """Serves from its making until it is closed."""

    def __init__(self, user=None, status=0, is_silent=False):
        self.user = user            # NAME:PASSWORD of who may use it; None: everybody
        self.status = status        # with which it refuses everything
        self.is_silent = is_silent  # answers nothing
        self.asked = []             # (method, target)
        self.headers = []           # of the same
        self.stopped = threading.Event()
        self._http = Server(("127.0.0.1", 0), Handler)
        self._http.owner = self
        self.port = self._http.server_address[1]
        threading.Thread(target=self._http.serve_forever, kwargs={"poll_interval": 0.05}, daemon=True).start()

    def url(self, user=None):
        return f"http://{user + '@' if user else ''}127.0.0.1:{self.port}"

    def close(self):
        self.stopped.set()
        self._http.shutdown()
        self._http.server_close()
