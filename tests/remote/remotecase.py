"""What the tests of the WBEM server share: a plain client of their own, and the judge of documents."""
# SPDX-License-Identifier: Apache-2.0
import http.client
import os
import subprocess
import sys
import tempfile
import unittest
import urllib.parse
import xml.etree.ElementTree as ElementTree
import zlib
from xml.sax import saxutils

import wbem_server
from cim_model import Model

HERE = os.path.dirname(os.path.abspath(__file__))
TESTS = os.path.dirname(HERE)
sys.path.insert(1, os.path.join(TESTS, "support"))  # terminal.py

DTD = os.path.join(TESTS, "support", "CIM_DTD_V24.dtd")
PLANT = os.path.join(HERE, "plant.mof")
SKIPPED = 77  # the exit status by which ctest knows that something was left out
DUMP = None


def namespace_path(namespace):
    return "<LOCALNAMESPACEPATH>%s</LOCALNAMESPACEPATH>" % "".join(
        f'<NAMESPACE NAME="{step}"/>' for step in namespace.split("/"))


def parameter(name, value):
    """A text, a flag, a number or a list of texts; and XML that begins with a tag as it is."""
    if isinstance(value, bool):
        value = "TRUE" if value else "FALSE"
    if isinstance(value, list):
        content = "<VALUE.ARRAY>%s</VALUE.ARRAY>" % "".join(f"<VALUE>{saxutils.escape(one)}</VALUE>" for one in value)
    elif isinstance(value, str) and value.startswith("<"):
        content = value
    elif name in ("ClassName", "AssocClass", "ResultClass"):
        content = f'<CLASSNAME NAME="{value}"/>'
    else:
        content = f"<VALUE>{saxutils.escape(str(value))}</VALUE>"
    return f'<IPARAMVALUE NAME="{name}">{content}</IPARAMVALUE>'


def request(operation, namespace="root/cimv2", parameters=(), message_id="17"):
    content = "".join(parameter(name, value) for name, value in dict(parameters).items())
    return (f'<?xml version="1.0" encoding="utf-8"?>\n<CIM CIMVERSION="2.0" DTDVERSION="2.0">'
            f'<MESSAGE ID="{message_id}" PROTOCOLVERSION="1.0"><SIMPLEREQ><IMETHODCALL NAME="{operation}">'
            f"{namespace_path(namespace)}{content}</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>").encode()


def request_headers(operation, namespace="root/cimv2"):
    return {"Content-Type": 'application/xml; charset="utf-8"', "CIMOperation": "MethodCall", "CIMMethod": operation,
            "CIMObject": urllib.parse.quote(namespace, safe="")}


class Reply:
    def __init__(self, response):
        self.status = response.status
        self.headers = response.headers
        body = response.read()
        self.body = zlib.decompress(body, 31) if self.headers.get("Content-Encoding") == "gzip" else body

    @property
    def tree(self):
        return ElementTree.fromstring(self.body)

    @property
    def error(self):
        """The CIM status; 0 when all is well."""
        found = self.tree.find(".//ERROR")
        return 0 if found is None else int(found.get("CODE"))

    @property
    def items(self):
        return list(self.tree.find(".//IRETURNVALUE"))

    def output(self, name):
        return self.tree.findtext(f".//PARAMVALUE[@NAME='{name}']/VALUE")

    def properties(self):
        """For each instance, its class and its properties' names."""
        return [(one.get("CLASSNAME"), [feature.get("NAME") for feature in one]) for one in self.tree.iter("INSTANCE")]


class Client:
    """One connection to a server."""

    def __init__(self, server, timeout=20, context=None):
        kind = http.client.HTTPConnection if server.scheme == "http" else http.client.HTTPSConnection
        extra = {} if context is None else {"context": context}
        self.connection = kind("127.0.0.1", server.port, timeout=timeout, **extra)

    def post(self, body, headers, path="/cimom", method="POST"):
        self.connection.request(method, path, body, headers)
        return Reply(self.connection.getresponse())

    def call(self, operation, namespace="root/cimv2", headers=(), **parameters):
        return self.post(request(operation, namespace, parameters), {**request_headers(operation, namespace), **dict(headers)})

    def close(self):
        self.connection.close()


class RemoteCase(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qorql-remote-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.replies = []  # that tearDown has judged

    def serve(self, *mof, certificate=None, address="127.0.0.1", **behaviour):
        """A server of MOF files, of the plant when none is named, until the test ends."""
        server = wbem_server.WbemServer(Model.of_mof(DUMP, *(mof or (PLANT,))), wbem_server.Behaviour(**behaviour),
                                        certificate, address)
        self.addCleanup(server.close)
        return server

    def client(self, server, **arguments):
        client = Client(server, **arguments)
        self.addCleanup(client.close)
        return client

    def call(self, server, operation, namespace="root/cimv2", **parameters):
        client = Client(server)
        try:
            return self.judged(client.call(operation, namespace, **parameters))
        finally:
            client.close()

    def judged(self, reply):
        self.replies.append(reply.body)
        return reply

    def tearDown(self):
        self.assert_valid(self.replies)

    def assert_valid(self, documents):
        """The document type definition judges."""
        if not documents:
            return
        files = []
        for number, document in enumerate(documents):
            files.append(os.path.join(self.folder, f"{number}.xml"))
            with open(files[-1], "wb") as file:
                file.write(document)
        done = subprocess.run(["xmllint", "--noout", "--nonet", "--dtdvalid", DTD, *files], capture_output=True,
                              check=False)
        self.assertEqual((done.returncode, done.stderr.decode()), (0, ""))


def names_of(reply, attribute="NAME"):
    return [one.get(attribute) for one in reply.items]


def main():
    global DUMP
    DUMP = os.path.abspath(sys.argv[1])
    ran = unittest.main(module="__main__", argv=[sys.argv[0], *sys.argv[2:]], exit=False).result
    reasons = [reason for _, reason in ran.skipped]
    for reason in sorted(set(reasons)):
        print(f"skipped: {reason} ({reasons.count(reason)} tests)")
    sys.exit(1 if not ran.wasSuccessful() else SKIPPED if ran.skipped else 0)
