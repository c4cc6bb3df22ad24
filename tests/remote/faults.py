"""Faults that a WBEM server of tests commits to order, on the wire and in what it sends.

A fault takes calls by operation and class, after some calls and for a number of them. Those that never end by themselves
end with the server or when the client goes away.
"""
# SPDX-License-Identifier: Apache-2.0
import re
import socket
import struct
import zlib
from xml.sax import saxutils

XML = 'application/xml; charset="utf-8"'
BOMB = 1 << 31       # bytes of a bomb that is unzipped
LONG_TEXT = 10 << 20
DEEP = 100000


def whole(handler, call):
    return b"".join(handler.pieces(call))


def send(handler, call, body, status=200, **headers):
    """A reply with the right length and whatever headers."""
    told = {"Content-Type": XML, "CIMOperation": "MethodResponse", "Content-Length": str(len(body))}
    told.update({name.replace("_", "-"): value for name, value in headers.items()})
    handler.begin(call, status, {name: value for name, value in told.items() if value is not None})
    handler.put(call, body)


def hang_up(handler):
    handler.close_connection = True


def reset(handler):
    """Ends the connection as a machine does that goes down."""
    handler.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    handler.close_connection = True
    handler.rfile.close()
    handler.connection.close()


# Bodies and their lengths.


def cut(handler, call):
    """Half of what the length promises."""
    body = whole(handler, call)
    send(handler, call, body[:len(body) // 2], Content_Length=str(len(body)))
    hang_up(handler)


def cut_whole(handler, call):
    """Half of the body with its right length."""
    body = whole(handler, call)
    send(handler, call, body[:len(body) // 2])


def cut_chunks(handler, call):
    """Half of the body in chunks, and no last one."""
    body = whole(handler, call)
    half = body[:len(body) // 2]
    send(handler, call, b"%x\r\n%s\r\n" % (len(half), half), Content_Length=None, Transfer_Encoding="chunked")
    hang_up(handler)


def wrong_chunk(handler, call):
    body = whole(handler, call)
    send(handler, call, b"zz\r\n" + body + b"\r\n0\r\n\r\n", Content_Length=None, Transfer_Encoding="chunked")
    hang_up(handler)


def long_length(handler, call):
    body = whole(handler, call)
    send(handler, call, body, Content_Length=str(len(body) + 1000))
    hang_up(handler)


def short_length(handler, call):
    body = whole(handler, call)
    send(handler, call, body, Content_Length=str(len(body) - 20))
    hang_up(handler)


def no_length(handler, call):
    """The body ends where the connection ends, which HTTP allows."""
    send(handler, call, whole(handler, call), Content_Length=None, Connection="close")
    hang_up(handler)


def empty(handler, call):
    send(handler, call, b"")


def dropped(handler, call):
    """No reply at all."""
    hang_up(handler)


def broken(handler, call):
    reset(handler)


def broken_later(handler, call):
    body = whole(handler, call)
    send(handler, call, body[:len(body) // 2], Content_Length=str(len(body)))
    handler.wfile.flush()
    reset(handler)


# Replies of HTTP.


def http_status(status, **headers):
    def play(handler, call):
        send(handler, call, b"<html><body>no</body></html>", status, Content_Type="text/html", **headers)
    return play


def redirect(handler, call):
    send(handler, call, b"", 302, Location="http://elsewhere.invalid/cimom")


def redirect_loop(handler, call):
    send(handler, call, b"", 307, Location=handler.owner.url + handler.path)


def page(handler, call):
    """A page for people, as from a server that is none for CIM."""
    send(handler, call, b"<!doctype html><html><p>Log in here</html>", Content_Type="text/html")


def garbage(handler, call):
    handler.wfile.write(bytes(range(256)) * 16)
    hang_up(handler)


def endless_headers(handler, call):
    handler.wfile.write(b"HTTP/1.1 200 OK\r\n")
    while not handler.owner.stopped.is_set():
        handler.wfile.write(b"X-More: " + b"x" * 1000 + b"\r\n")


# Time.


def silence(handler, call):
    handler.owner.stopped.wait()


def silence_later(handler, call):
    body = whole(handler, call)
    send(handler, call, body[:len(body) // 2], Content_Length=str(len(body)))
    handler.wfile.flush()
    handler.owner.stopped.wait()


def slow_headers(handler, call):
    """Ten bytes a second of a header that does not end."""
    handler.wfile.write(b"HTTP/1.1 200 OK\r\nX-More: ")
    while not handler.owner.stopped.wait(0.1):
        handler.wfile.write(b"x")


def slow(handler, call):
    """Ten bytes a second."""
    body = whole(handler, call)
    send(handler, call, b"", Content_Length=str(len(body)))
    for byte in body:
        if handler.owner.stopped.wait(0.1):
            return
        handler.put(call, bytes([byte]))


# Size.


def instances_forever(handler, call):
    body = whole(handler, call)
    element = re.search(rb"<(VALUE\.\w+|INSTANCE)>?.*?</\1>", body, re.DOTALL)
    yield body[:element.end()]
    while not handler.owner.stopped.is_set():
        yield element[0]


def endless(handler, call):
    """The first instance again and again."""
    handler.begin(call, 200, {"Content-Type": XML, "CIMOperation": "MethodResponse", "Transfer-Encoding": "chunked"})
    for piece in instances_forever(handler, call):
        handler.put(call, b"%x\r\n%s\r\n" % (len(piece), piece))


def bomb(handler, call):
    """Two gigabytes of blanks that zip to some megabytes."""
    body = whole(handler, call)
    place = body.index(b">", body.index(b"<CIM")) + 1
    compressor = zlib.compressobj(9, wbits=31)
    handler.begin(call, 200, {"Content-Type": XML, "CIMOperation": "MethodResponse", "Content-Encoding": "gzip",
                              "Transfer-Encoding": "chunked"})

    def put(data):
        packed = compressor.compress(data)
        if packed:
            handler.put(call, b"%x\r\n%s\r\n" % (len(packed), packed))
    put(body[:place])
    blanks = b" " * (1 << 20)
    for _ in range(BOMB // len(blanks)):
        put(blanks)
    put(body[place:])
    rest = compressor.flush()
    handler.put(call, b"%x\r\n%s\r\n0\r\n\r\n" % (len(rest), rest))


def wrong_gzip(handler, call):
    send(handler, call, b"\x1f\x8b\x08 this is no gzip", Content_Encoding="gzip")


def cut_gzip(handler, call):
    compressor = zlib.compressobj(6, wbits=31)
    body = compressor.compress(whole(handler, call)) + compressor.flush()
    send(handler, call, body[:len(body) // 2], Content_Encoding="gzip")


# What the body says.


def edited(pattern, replacement, count=1):
    """The body with a place changed, in the first text of a value where no other place is meant."""
    def play(handler, call):
        body = whole(handler, call)
        send(handler, call, re.sub(pattern, replacement, body, count=count, flags=re.DOTALL))
    return play


FIRST_TEXT = rb"(<PROPERTY [^>]*TYPE=\"string\"[^>]*><VALUE>)[^<]*"


def text(value):
    return edited(FIRST_TEXT, lambda found: found[1] + value)


def embedded_class(handler, call):
    """A class in the place of the first embedded instance, with what it inherits."""
    namespace = handler.owner.operations.namespace(call)
    told = saxutils.escape(namespace.class_xml("P_Tank", local_only=False))
    play = edited(rb"(<PROPERTY [^>]*EmbeddedObject=[^>]*><VALUE>)[^<]*", lambda found: found[1] + told.encode())
    play(handler, call)


def doctype(handler, call):
    body = whole(handler, call)
    declared = b'<!DOCTYPE CIM [<!ENTITY a "aaaaaaaaaa"><!ENTITY b "&a;&a;&a;&a;"><!ENTITY c SYSTEM "file:///etc/hostname">]>\n<CIM '
    body = body.replace(b"<CIM ", declared, 1)
    send(handler, call, re.sub(FIRST_TEXT, rb"\1&c;", body, count=1))


FAULTS = {
    "cut": cut, "cut-whole": cut_whole, "cut-chunks": cut_chunks, "wrong-chunk": wrong_chunk,
    "long-length": long_length, "short-length": short_length, "no-length": no_length, "empty": empty,
    "dropped": dropped, "broken": broken, "broken-later": broken_later,
    "400": http_status(400, CIMError="request-not-valid"),
    "401": http_status(401, WWW_Authenticate='Basic realm="cimom"'),
    "403": http_status(403), "404": http_status(404), "500": http_status(500), "501": http_status(501),
    "503": http_status(503, Retry_After="1"),
    "redirect": redirect, "redirect-loop": redirect_loop, "page": page, "garbage": garbage,
    "endless-headers": endless_headers,
    "silence": silence, "silence-later": silence_later, "slow": slow, "slow-headers": slow_headers,
    "endless": endless, "bomb": bomb, "wrong-gzip": wrong_gzip, "cut-gzip": cut_gzip,
    "long-text": text(b"x" * LONG_TEXT), "ill-formed-utf8": text(b"caf\xe9 \xff"), "control-character": text(b"a\x01b"),
    "control-reference": text(b"a&#1;b"), "entity": text(b"&unknown;"), "doctype": doctype,
    "embedded-class": embedded_class,
    "deep": edited(rb"(<IRETURNVALUE>)", rb"\1" + b"<VALUE.OBJECT>" * DEEP),
    "wrong-tag": edited(rb"</INSTANCE>", rb"</INSTANZ>"),
    "wrong-value": edited(rb"(TYPE=\"[us]int\d+\"[^>]*><VALUE>)[^<]*", rb"\1many"),
    "out-of-range": edited(rb"(TYPE=\"[us]int\d+\"[^>]*><VALUE>)[^<]*", rb"\g<1>99999999999999999999999"),
    "other-id": edited(rb"<MESSAGE ID=\"[^\"]*\"", b'<MESSAGE ID="other"'),
    "other-operation": edited(rb"RESPONSE NAME=\"[^\"]*\"", b'RESPONSE NAME="DeleteClass"'),
    "other-version": edited(rb'DTDVERSION="2.0"', b'DTDVERSION="3.0"'),
    "trailing": edited(rb"</CIM>\s*$", b"</CIM><CIM/>"),
    "no-end-of-sequence": edited(rb"<PARAMVALUE.*</PARAMVALUE>", b""),
}
NAMES = sorted(FAULTS)


class Fault:
    """Takes the calls of an operation and a class, or of all, after `skip` of them, `times` times or always."""

    def __init__(self, kind, operation=None, class_name=None, skip=0, times=None):
        self.kind = kind
        self.operation = operation
        self.class_name = class_name
        self.skip = skip
        self.times = times
        self.play = FAULTS[kind]

    def takes(self, call):
        if self.operation and self.operation != call.operation:
            return False
        if self.class_name and self.class_name.lower() != call.class_name.lower():
            return False
        if self.skip > 0:
            self.skip -= 1
            return False
        if self.times is not None:
            self.times -= 1
            return self.times >= 0
        return True


def read(text_):
    """KIND, KIND:OPERATION or KIND:OPERATION:CLASS. RAISES ValueError."""
    kind, *rest = text_.split(":")
    if kind not in FAULTS or len(rest) > 2:
        raise ValueError(text_)
    return Fault(kind, *rest)
