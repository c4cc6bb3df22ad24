"""The faults and habits of the tests' WBEM server are what they are called, as a plain client sees them."""
# SPDX-License-Identifier: Apache-2.0
import http.client
import re
import socket
import unittest
import xml.etree.ElementTree as ElementTree
import zlib

import faults
import habits
import remotecase
from remotecase import RemoteCase, request, request_headers

OPERATION = "EnumerateInstances"


class Faults(RemoteCase):
    seen = set()

    def play(self, kind, operation=OPERATION, timeout=20, **parameters):
        """(client, server) after a call that the fault takes; the reply is not read."""
        self.seen.add(kind)
        server = self.serve()
        server.faults = [faults.Fault(kind)]
        client = self.client(server, timeout=timeout)
        body = request(operation, parameters=parameters or {"ClassName": "P_Pump", "LocalOnly": False})
        client.connection.request("POST", "/cimom", body, request_headers(operation))
        return client.connection

    def body(self, kind, **parameters):
        response = self.play(kind, **parameters).getresponse()
        self.assertEqual(response.status, 200)
        return response.read()

    def test_bodies_that_are_cut(self):
        whole = self.call(self.serve(), OPERATION, ClassName="P_Pump", LocalOnly=False).body
        for kind in ("cut", "long-length", "broken-later"):
            with self.assertRaises((http.client.IncompleteRead, ConnectionError), msg=kind):
                self.body(kind)
        self.assertEqual(self.body("cut-whole"), whole[:len(whole) // 2])
        self.assertEqual(self.body("short-length"), whole[:-20])
        self.assertEqual(self.body("no-length"), whole)
        self.assertEqual(self.body("empty"), b"")
        with self.assertRaises(http.client.IncompleteRead):
            self.body("cut-chunks")
        with self.assertRaises(http.client.IncompleteRead):
            self.body("wrong-chunk")

    def test_connections_that_end(self):
        for kind in ("dropped", "broken"):
            with self.assertRaises((http.client.RemoteDisconnected, ConnectionError), msg=kind):
                self.body(kind)

    def test_refusals_of_http(self):
        for kind in ("400", "401", "403", "404", "500", "501", "503"):
            self.assertEqual(self.play(kind).getresponse().status, int(kind))
        self.assertEqual(self.play("redirect").getresponse().headers["Location"], "http://elsewhere.invalid/cimom")
        loop = self.play("redirect-loop")
        self.assertEqual(loop.getresponse().headers["Location"], f"http://127.0.0.1:{loop.port}/cimom")
        self.assertTrue(self.body("page").startswith(b"<!doctype html>"))

    def test_what_is_no_http(self):
        with self.assertRaises(http.client.BadStatusLine):
            self.body("garbage")
        with self.assertRaises(http.client.HTTPException):
            self.body("endless-headers")

    def test_silence_and_slowness(self):
        with self.assertRaises(socket.timeout):
            self.play("silence", timeout=0.5).getresponse()
        later = self.play("silence-later", timeout=0.5).getresponse()
        with self.assertRaises(socket.timeout):
            later.read()
        slow = self.play("slow").getresponse()
        self.assertEqual(slow.read(5), b"<?xml")
        header = self.play("slow-headers").sock
        self.assertEqual([header.recv(100)[-8:], header.recv(100), header.recv(100)], [b"X-More: ", b"x", b"x"])

    def test_replies_without_end(self):
        begin = self.play("endless").getresponse().read(1 << 20)
        self.assertGreater(begin.count(b"</VALUE.NAMEDINSTANCE>"), 100)
        unzipper = zlib.decompressobj(31)
        response = self.play("bomb").getresponse()
        zipped = sum(len(unzipper.decompress(response.read(4096))) for _ in range(4))
        self.assertGreater(zipped, 1 << 20)

    def test_gzip_that_is_none(self):
        with self.assertRaises(zlib.error):
            zlib.decompress(self.body("wrong-gzip"), 31)
        with self.assertRaises(zlib.error):
            zlib.decompress(self.body("cut-gzip"), 31)

    def test_long_texts(self):
        tree = ElementTree.fromstring(self.body("long-text"))
        self.assertEqual(max(len(value.text or "") for value in tree.iter("VALUE")), faults.LONG_TEXT)

    def test_what_no_parser_takes(self):
        for kind in ("ill-formed-utf8", "control-character", "control-reference", "entity", "wrong-tag", "trailing"):
            with self.assertRaises(ElementTree.ParseError, msg=kind):
                ElementTree.fromstring(self.body(kind))
        self.assertIn(b"<!DOCTYPE CIM [<!ENTITY", self.body("doctype"))
        self.assertEqual(self.body("deep").count(b"<VALUE.OBJECT>"), faults.DEEP)

    def test_what_well_formed_replies_say_wrongly(self):
        for kind, pattern in (("wrong-value", rb"<VALUE>many</VALUE>"), ("out-of-range", rb"<VALUE>9{23}</VALUE>"),
                              ("other-id", rb'<MESSAGE ID="other"'), ("other-operation", rb'RESPONSE NAME="DeleteClass"'),
                              ("other-version", rb'DTDVERSION="3.0"')):
            body = self.body(kind)
            ElementTree.fromstring(body)
            self.assertEqual(len(re.findall(pattern, body)), 1, kind)
        embedded = [one.text for one in ElementTree.fromstring(self.body("embedded-class")).iter("VALUE")
                    if (one.text or "").startswith("<CLASS ")]
        self.assertEqual([ElementTree.fromstring(one).get("NAME") for one in embedded], ["P_Tank"])
        opened = self.body("no-end-of-sequence", operation="OpenEnumerateInstances", ClassName="P_Pump")
        self.assertNotIn(b"EndOfSequence", opened)

    def test_a_fault_takes_the_calls_that_it_is_for(self):
        server = self.serve()
        server.faults = [faults.Fault("500", OPERATION, "p_tank", skip=1, times=1), faults.read("404:GetClass:P_Tank")]
        client = self.client(server)
        got = [client.call(operation, ClassName=name).status for operation, name in (
            (OPERATION, "P_Tank"), (OPERATION, "P_Pump"), (OPERATION, "P_Tank"), (OPERATION, "P_Tank"),
            ("GetClass", "P_Tank"), ("GetClass", "P_Pump"))]
        self.assertEqual(got, [200, 200, 500, 200, 404, 200])
        self.assertEqual([call.fault for call in server.calls], [None, None, "500", None, "404", None])
        for wrong in ("none", "500:a:b:c"):
            with self.assertRaises(ValueError):
                faults.read(wrong)

    def test_zz_every_fault_was_seen(self):
        self.assertEqual(sorted(self.seen), faults.NAMES)


class Habits(RemoteCase):
    def shown(self, *wanted, name="P_Thing", operation=OPERATION, **parameters):
        server = self.serve(habits=set(wanted))
        client = self.client(server)
        reply = client.call(operation, ClassName=name, **({"LocalOnly": False} | parameters))
        ElementTree.fromstring(reply.body)
        return reply.body.decode()

    def test_each_changes_what_it_is_called_after(self):
        for habit, pattern, name in (
                ("other-case", r'<INSTANCE CLASSNAME="P_TANK"', "P_Tank"),
                ("no-types", r'<PROPERTY NAME="Litres"><VALUE>500<', "P_Tank"),
                ("no-key-types", r'<KEYVALUE VALUETYPE="string">t1<', "P_Tank"),
                ("duplicates", r'<INSTANCE [^>]*><PROPERTY NAME="Name".*<PROPERTY NAME="Name".*</INSTANCE>', "P_BigPump"),
                ("wrong-value-types", r'<KEYVALUE VALUETYPE="string">-1</KEYVALUE>', "P_Cell"),
                ("hexadecimal", r'NAME="Litres" TYPE="uint32"><VALUE>0x1f4<', "P_Tank"),
                ("hexadecimal", r"<VALUE>-0x8000000000000000<", "P_Pump"),
                ("leading-zeros", r"<VALUE>000500<", "P_Tank"), ("leading-zeros", r"<VALUE>-0002<", "P_BigPump"),
                ("blanks", r"<VALUE> 500\n</VALUE>", "P_Tank"), ("blanks", r"<VALUE> 65535\n</VALUE>", "P_Pump"),
                ("lower-booleans", r'TYPE="boolean"><VALUE>true<', "P_Pump"),
                ("newlines", r"<VALUE.ARRAY>\n  <VALUE>1</VALUE>", "P_Pump"),
                ("old-embedded", r'EMBEDDEDOBJECT="instance"', "P_Pump")):
            self.assertRegex(self.shown(habit, name=name), re.compile(pattern, re.DOTALL), habit)
            self.assertNotRegex(self.shown(name=name), re.compile(pattern, re.DOTALL), habit)

    def test_hosts_of_paths(self):
        for habit, pattern in (("no-host", "<NAMESPACEPATH><LOCALNAMESPACEPATH>"), ("empty-host", "<HOST></HOST>"),
                               ("unknown-host", "<HOST>array-7.nowhere.invalid</HOST>")):
            server = self.serve(habits={habit})
            reply = self.client(server).call("OpenEnumerateInstances", ClassName="P_Tank", MaxObjectCount=9)
            self.assertEqual(len(re.findall(pattern, reply.body.decode())), 2, habit)

    def test_properties_that_nobody_asked_for(self):
        self.assertIn('NAME="Litres"', self.shown("all-properties", name="P_Tank", PropertyList=["Name"]))

    def test_values_stay_what_they_are(self):
        """Habits that change how something is written change nothing that is said."""
        def values(body):
            return [(one.get("NAME"), [(value.text or "") for value in one.iter("VALUE")])
                    for tag in ("PROPERTY", "PROPERTY.ARRAY") for one in ElementTree.fromstring(body).iter(tag)]
        plain = values(self.shown())
        for habit in ("other-case", "no-types", "no-key-types", "wrong-value-types", "newlines", "old-embedded"):
            self.assertEqual(values(self.shown(habit)), plain, habit)
        for habit in ("hexadecimal", "leading-zeros", "blanks"):
            for (name, old), (_, new) in zip(plain, values(self.shown(habit))):
                if name in ("Level", "Turns", "Balance", "Codes", "Doors", "Litres"):
                    base = 16 if habit == "hexadecimal" else 10
                    self.assertEqual([int(one, base) for one in new], [int(one) for one in old], habit)
                else:
                    self.assertEqual(new, old, habit)

    def test_every_habit_changes_something(self):
        cases = {"P_Pump": {}, "P_Cell": {}}
        for habit in habits.HABITS:
            changed = [self.shown(habit, name=name, **more) != self.shown(name=name, **more) for name, more in cases.items()]
            if habit not in ("no-host", "empty-host", "unknown-host"):
                self.assertTrue(any(changed), habit)


if __name__ == "__main__":
    remotecase.main()
