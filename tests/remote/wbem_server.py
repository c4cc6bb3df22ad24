"""A WBEM server for tests: CIM operations over HTTP on the local host, over a model, with habits and faults to order.

As a library:
    with WbemServer(Model.of_mof(dump, "plant.mof")) as server:
        server.url, server.calls, server.behaviour, server.faults
As a program, which prints its URL as its first line and serves until it is ended:
    wbem_server.py --dump MODEL_DUMP [options] MOF...
    wbem_server.py --dump MODEL_DUMP [options] MOF... -- COMMAND with {url} in it
"""
# SPDX-License-Identifier: Apache-2.0
import argparse
import base64
import contextlib
import dataclasses
import http.server
import itertools
import json
import socket
import ssl
import subprocess
import sys
import threading
import zlib

import faults
import habits
import wbem_operations
from cim_model import Model
from wbem_call import Call, Refused

MOST_REQUEST_BYTES = 1 << 24
PIECE = 16384


@dataclasses.dataclass
class Behaviour:
    """How a server behaves; what is changed holds from the next call on."""
    chunked: bool = False           # replies go out in chunks, while they are made
    gzip: bool = True               # where the client accepts it
    keep_alive: bool = True
    users: dict = None              # names and passwords; None: everybody may call
    realm: str = "cimom"
    host: str = "cimom.example"     # in instance paths
    content_type: str = 'application/xml; charset="utf-8"'
    pull_status: int = 0            # the status that pull operations are refused with, as 7 or 1
    refused: dict = dataclasses.field(default_factory=dict)  # operation: status
    unlisted: dict = dataclasses.field(default_factory=dict)  # class in lower case: status in place of its instances
    most_objects: int = 1 << 30     # of one reply to a pull
    context_seconds: float = 30
    queries: tuple = ()             # the query languages that ExecQuery knows; none: it is not supported
    habits: set = dataclasses.field(default_factory=set)
    keeps_replies: bool = False     # in the log, for tests that judge them


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    server_version = "test-cimom"
    disable_nagle_algorithm = True
    timeout = 120

    def setup(self):
        if isinstance(self.request, ssl.SSLSocket):
            self.request.do_handshake()
        super().setup()

    def handle(self):
        with contextlib.suppress(ConnectionError, ssl.SSLError, socket.timeout, ValueError):
            super().handle()

    def log_message(self, *_):
        pass

    @property
    def owner(self):
        return self.server.owner

    # Requests.

    def body(self):
        if "chunked" in self.headers.get("Transfer-Encoding", "").lower():
            return b"".join(self.chunks())
        length = int(self.headers.get("Content-Length", 0))
        if length > MOST_REQUEST_BYTES:
            raise Refused(413, "request-not-valid")
        return self.rfile.read(length)

    def chunks(self):
        while size := int(self.rfile.readline().split(b";")[0], 16):
            yield self.rfile.read(size)
            self.rfile.readline()
        while self.rfile.readline().strip():  # trailers
            pass

    def user(self):
        """The user who calls. RAISES Refused for none that may."""
        users = self.owner.behaviour.users
        kind, _, code = self.headers.get("Authorization", "").partition(" ")
        try:
            name, _, password = base64.b64decode(code).decode("utf-8").partition(":")
        except ValueError:
            raise Refused(400, "request-not-valid") from None
        if users is not None and (kind.lower() != "basic" or users.get(name) != password):
            raise Refused(401, "")
        return name

    def do_POST(self):
        try:
            body = self.body()
            call = Call(body, self.headers, self.user())
        except Refused as refused:
            self.refuse(refused)
            return
        call.connection = self.client_address[1]
        self.owner.take(call)
        fault = self.owner.fault_of(call)
        try:
            if fault is None:
                self.answer(call)
            else:
                call.fault = fault.kind
                fault.play(self, call)
        finally:
            self.owner.note(call)

    def refuse(self, refused):
        self.owner.refusals.append((refused.status, refused.error))
        self.send_response(refused.status)
        if refused.status == 401:
            self.send_header("WWW-Authenticate", f'Basic realm="{self.owner.behaviour.realm}"')
        elif refused.error:
            self.send_header("CIMError", refused.error)
        self.send_header("Content-Length", "0")
        self.end_headers()

    # Replies.

    def answer(self, call):
        self.send(call, self.pieces(call))

    def pieces(self, call):
        """The pieces of the reply's body, in bytes."""
        try:
            if call.response == "METHODRESPONSE":
                raise wbem_operations.Status(16, f"this server has no method {call.operation}")
            answer = self.owner.operations.answer(call)
        except wbem_operations.Status as status:
            call.status = status.code
            return self.encoded(wbem_operations.refusal(call, status))
        call.status = 0
        return self.encoded(wbem_operations.reply(call, answer, self.owner.behaviour))

    @staticmethod
    def encoded(texts):
        """Pieces of some kilobytes."""
        held, size = [], 0
        for text in texts:
            data = text.encode("utf-8", "surrogateescape")
            held.append(data)
            size += len(data)
            if size >= PIECE:
                yield b"".join(held)
                held, size = [], 0
        if held:
            yield b"".join(held)

    def kept(self, call, pieces):
        for piece in pieces:
            if self.owner.behaviour.keeps_replies:
                call.reply += piece
            yield piece

    def is_zipped(self):
        return self.owner.behaviour.gzip and "gzip" in self.headers.get("Accept-Encoding", "")

    def send(self, call, pieces):
        behaviour = self.owner.behaviour
        pieces = self.kept(call, pieces)
        headers = {"Content-Type": behaviour.content_type, "CIMOperation": "MethodResponse"}
        if self.is_zipped():
            headers["Content-Encoding"] = "gzip"
            pieces = zipped(pieces)
        if behaviour.chunked and self.request_version != "HTTP/1.0":
            headers["Transfer-Encoding"] = "chunked"
            self.begin(call, 200, headers)
            for piece in filter(None, pieces):
                self.put(call, b"%x\r\n%s\r\n" % (len(piece), piece))
            self.put(call, b"0\r\n\r\n")
            return
        body = b"".join(pieces)
        headers["Content-Length"] = str(len(body))
        self.begin(call, 200, headers)
        self.put(call, body)

    def begin(self, call, status, headers):
        call.http_status = status
        call.reply_headers = headers
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name, value)
        if not self.owner.behaviour.keep_alive:
            self.send_header("Connection", "close")
            self.close_connection = True
        self.end_headers()

    def put(self, call, data):
        call.reply_bytes += len(data)  # before the client can have it all
        self.wfile.write(data)


def zipped(pieces):
    compressor = zlib.compressobj(6, wbits=31)
    for piece in pieces:
        yield compressor.compress(piece)
    yield compressor.flush()


class HttpServer(http.server.ThreadingHTTPServer):
    daemon_threads = True
    request_queue_size = 128

    def handle_error(self, request, client_address):
        """A client that went away, or did not like the certificate, is no news; all else is the server's own fault."""
        error = sys.exc_info()[1]
        if not isinstance(error, (ConnectionError, ssl.SSLError, TimeoutError)):
            self.owner.errors.append(repr(error))
            super().handle_error(request, client_address)


class HttpServerV6(HttpServer):
    address_family = socket.AF_INET6


class WbemServer:
    """Serves from its making until it is closed. `certificate`: (file, key file) of a server with TLS."""

    def __init__(self, model, behaviour=None, certificate=None, address="127.0.0.1", log=None):
        self.behaviour = behaviour or Behaviour()
        self.operations = wbem_operations.Operations(model, self.behaviour)
        self.faults = []
        self.calls = []      # that were answered, in the order in which they came
        self.refusals = []   # (HTTP status, CIMError) of what was no call, or no caller
        self.errors = []     # of the server itself
        self.stopped = threading.Event()  # tells faults that wait
        self._log = log
        self._lock = threading.Lock()
        self._http = (HttpServerV6 if ":" in address else HttpServer)((address, 0), Handler)
        self._http.owner = self
        if certificate is not None:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(*certificate)
            self._http.socket = context.wrap_socket(self._http.socket, server_side=True, do_handshake_on_connect=False)
        self.port = self._http.server_address[1]
        self.scheme = "http" if certificate is None else "https"
        self.url = f"{self.scheme}://{f'[{address}]' if ':' in address else address}:{self.port}"
        self._thread = threading.Thread(target=self._http.serve_forever, kwargs={"poll_interval": 0.05}, daemon=True)
        self._thread.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        self.stopped.set()
        self._http.shutdown()
        self._http.server_close()

    def take(self, call):
        with self._lock:
            self.calls.append(call)

    def note(self, call):
        if self._log is not None:
            with self._lock:
                self._log.write(json.dumps(call.told()) + "\n")
                self._log.flush()

    def fault_of(self, call):
        with self._lock:
            return next((fault for fault in self.faults if fault.takes(call)), None)

    def told(self):
        """(operation, class) of each call so far."""
        with self._lock:
            return [(call.operation, call.class_name) for call in self.calls]


def read_arguments(arguments):
    parser = argparse.ArgumentParser(description="A WBEM server for tests.")
    parser.add_argument("--dump", required=True, help="the program model_dump")
    parser.add_argument("--log", type=argparse.FileType("w"), help="a file for a line of JSON for each call")
    parser.add_argument("--user", action="append", metavar="NAME:PASSWORD", help="who may call; everybody without it")
    parser.add_argument("--certificate", nargs=2, metavar=("FILE", "KEY"))
    parser.add_argument("--address", default="127.0.0.1")
    parser.add_argument("--chunked", action="store_true")
    parser.add_argument("--no-gzip", action="store_true")
    parser.add_argument("--no-keep-alive", action="store_true")
    parser.add_argument("--pull-status", type=int, default=0, help="refuses pull operations with it")
    parser.add_argument("--most-objects", type=int, default=1 << 30, help="in a reply to a pull")
    parser.add_argument("--queries", action="append", default=[], metavar="LANGUAGE", help="that ExecQuery knows")
    parser.add_argument("--habit", action="append", default=[], choices=habits.NAMES)
    parser.add_argument("--fault", action="append", default=[], type=faults.read, metavar="KIND[:OPERATION[:CLASS]]",
                        help=" ".join(faults.NAMES))
    parser.add_argument("mof", nargs="+")
    return parser.parse_args(arguments)


def behaviour_of(options):
    users = None if options.user is None else dict(user.split(":", 1) for user in options.user)
    return Behaviour(chunked=options.chunked, gzip=not options.no_gzip, keep_alive=not options.no_keep_alive,
                     users=users, pull_status=options.pull_status, most_objects=options.most_objects,
                     queries=tuple(options.queries), habits=set(options.habit))


def main(arguments):
    own = list(itertools.takewhile(lambda one: one != "--", arguments))
    command = arguments[len(own) + 1:]
    options = read_arguments(own)
    try:
        model = Model.of_mof(options.dump, *options.mof)
    except ValueError as error:
        print(error, file=sys.stderr)
        return 1
    with WbemServer(model, behaviour_of(options), options.certificate, options.address, options.log) as server:
        server.faults = options.fault
        if command:
            return subprocess.run([one.replace("{url}", server.url) for one in command], check=False).returncode
        print(server.url, flush=True)
        with contextlib.suppress(KeyboardInterrupt):
            threading.Event().wait()
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
