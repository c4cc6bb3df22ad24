"""What the tests of indications share: messages that carry them, and listeners with habits."""
# SPDX-License-Identifier: Apache-2.0
import http.server
import json
import os
import re
import select
import socketserver
import subprocess
import tempfile
import threading
import time
import xml.etree.ElementTree as ElementTree

import servercase
from servercase import ServerCase

INTEROP = "root/interop"
LISTENING = re.compile(r"listening on (https?)://(.*):(\d+)/cimom\n")


def export_message(content, message_id="9"):
    return (f'<?xml version="1.0" encoding="utf-8"?>\n<CIM CIMVERSION="2.0" DTDVERSION="2.0">'
            f'<MESSAGE ID="{message_id}" PROTOCOLVERSION="1.0"><SIMPLEEXPREQ><EXPMETHODCALL NAME="ExportIndication">'
            f'<EXPPARAMVALUE NAME="NewIndication">{content}</EXPPARAMVALUE></EXPMETHODCALL></SIMPLEEXPREQ>'
            f"</MESSAGE></CIM>").encode()


def instance(class_name, **values):
    """An INSTANCE of texts and numbers; a value (type, text) has that type."""
    features = ""
    for name, value in values.items():
        kind, text = value if isinstance(value, tuple) else ("string", value)
        text = str(text).replace("&", "&amp;").replace("<", "&lt;")
        features += f'<PROPERTY NAME="{name}" TYPE="{kind}"><VALUE>{text}</VALUE></PROPERTY>'
    return f'<INSTANCE CLASSNAME="{class_name}">{features}</INSTANCE>'


EXPORT_HEADERS = {"Content-Type": 'application/xml; charset="utf-8"', "CIMExport": "MethodRequest",
                  "CIMExportMethod": "ExportIndication"}


class Listener:
    """`qorql listen` while it runs."""

    def __init__(self, case, *arguments):
        self.errors = tempfile.TemporaryFile()
        self.process = subprocess.Popen([servercase.TOOL, "listen", "--listen", "127.0.0.1:0", *arguments],
                                        stdout=subprocess.PIPE, stderr=self.errors, env=case.environment())
        case.addCleanup(self.errors.close)
        case.addCleanup(self.stop)
        self.scheme, self.rest = "http", b""
        found = case.wait_for(lambda: LISTENING.search(self.error_text()))
        self.scheme, self.port = found.group(1), int(found.group(3))
        self.url = f"{self.scheme}://127.0.0.1:{self.port}/x"

    def error_text(self):
        return os.pread(self.errors.fileno(), 1 << 20, 0).decode()

    def lines(self, count, patience=20):
        """The first lines that it prints, as many, or those that come in time."""
        end = time.monotonic() + patience
        while self.rest.count(b"\n") < count and time.monotonic() < end:
            if select.select([self.process.stdout], [], [], 0.2)[0]:
                piece = os.read(self.process.stdout.fileno(), 65536)
                if not piece:
                    break
                self.rest += piece
        lines = self.rest.split(b"\n")
        taken, self.rest = lines[:count], b"\n".join(lines[count:])
        return [line.decode() for line in taken if line]

    def indications(self, count, patience=20):
        return [json.loads(line) for line in self.lines(count, patience)]

    def stop(self, number=15, patience=20):
        if self.process.poll() is None:
            self.process.send_signal(number)
        try:
            return self.process.wait(patience)
        finally:
            self.process.stdout.close()


class PlayedListener(socketserver.ThreadingMixIn, socketserver.TCPServer):
    """A listener of the tests' own. `answer` is told the message's ID and returns (status, headers, body); None ends
    the connection without a word."""

    daemon_threads = True
    allow_reuse_address = True

    def __init__(self, answer=None, protocol="HTTP/1.1", context=None, port=0):
        self.answer = answer or accept
        self.messages, self.headers, self.lock = [], [], threading.Lock()
        handler = type("Handler", (_Handler,), {"protocol_version": protocol})
        super().__init__(("127.0.0.1", port), handler)
        if context is not None:
            self.socket = context.wrap_socket(self.socket, server_side=True)
        self.port = self.server_address[1]
        self.url = f"{'http' if context is None else 'https'}://127.0.0.1:{self.port}/"
        self.thread = threading.Thread(target=self.serve_forever, args=(0.05,), daemon=True)
        self.thread.start()

    def handle_error(self, request, client_address):
        """A peer that goes away is no failure of a test."""

    def numbers(self):
        with self.lock:
            return [int(value_in(message, "SequenceNumber")) for message in self.messages]

    def close(self):
        self.shutdown()
        self.server_close()


def value_in(message, name):
    return ElementTree.fromstring(message).findtext(f".//EXPPARAMVALUE/INSTANCE/PROPERTY[@NAME='{name}']/VALUE")


def reply_of(content, message_id):
    return (f'<?xml version="1.0" encoding="utf-8"?>\n<CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="{message_id}" '
            f'PROTOCOLVERSION="1.0"><SIMPLEEXPRSP><EXPMETHODRESPONSE NAME="ExportIndication">{content}'
            f"</EXPMETHODRESPONSE></SIMPLEEXPRSP></MESSAGE></CIM>").encode()


def accept(message_id):
    return 200, {}, reply_of("", message_id)


def full(message_id):
    return 200, {}, reply_of('<ERROR CODE="1" DESCRIPTION="queue full"/>', message_id)


class _Handler(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        message_id = ElementTree.fromstring(body).find("MESSAGE").get("ID")
        with self.server.lock:
            self.server.messages.append(body)
            self.server.headers.append(dict(self.headers))
        answer = self.server.answer(message_id)
        if answer is None:
            self.close_connection = True
            return
        status, headers, content = answer
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name, value)
        if self.protocol_version == "HTTP/1.1":
            self.send_header("Content-Length", str(len(content)))
        self.end_headers()
        self.wfile.write(content)

    def log_message(self, *arguments):
        """The tests' output is their own."""


class EventCase(ServerCase):
    def wait_for(self, look, patience=20):
        end = time.monotonic() + patience
        while True:
            found = look()
            if found or time.monotonic() > end:
                self.assertTrue(found, "it did not come in time")
                return found
            time.sleep(0.02)

    def listen(self, *arguments):
        return Listener(self, *arguments)

    def play(self, *arguments, **more):
        listener = PlayedListener(*arguments, **more)
        self.addCleanup(listener.close)
        return listener

    def export(self, server, content, headers=()):
        client = self.client(server)
        return self.judged(client.post(export_message(content), {**EXPORT_HEADERS, **dict(headers)}))
