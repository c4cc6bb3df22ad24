"""The tool as a listener: what it prints, what it answers, how it ends."""
# SPDX-License-Identifier: Apache-2.0
import fcntl
import signal
import struct
import termios
import threading
import time

import servercase
from eventcase import EXPORT_HEADERS, EventCase, export_message, instance
from servercase import request, request_headers

ALERT = instance("CIM_AlertIndication", Message="a <b>", PerceivedSeverity=("uint16", 3), SequenceContext="c",
                 SequenceNumber=("sint64", 7))


class ListenTest(EventCase):
    def test_an_indication_is_a_line_with_its_properties_in_order(self):
        listener = self.listen()
        reply = self.export(listener, ALERT)
        self.assertEqual((reply.status, reply.headers["CIMExport"]), (200, "MethodResponse"))
        self.assertIsNotNone(reply.tree.find(".//EXPMETHODRESPONSE"))
        self.assertEqual(listener.lines(1), ['{"class": "CIM_AlertIndication", "Message": "a <b>", '
                                             '"PerceivedSeverity": 3, "SequenceContext": "c", "SequenceNumber": 7}'])

    def test_embedded_instances_are_objects(self):
        listener = self.listen()
        inner = instance("Disk", Name="d").replace("<", "&lt;").replace('"', "&quot;")
        self.export(listener, '<INSTANCE CLASSNAME="CIM_InstCreation"><PROPERTY NAME="SourceInstance" TYPE="string" '
                              f'EmbeddedObject="instance"><VALUE>{inner}</VALUE></PROPERTY></INSTANCE>')
        self.assertEqual(listener.indications(1),
                         [{"class": "CIM_InstCreation", "SourceInstance": {"class": "Disk", "Name": "d"}}])

    def test_mof(self):
        listener = self.listen("-o", "mof")
        self.export(listener, ALERT)
        self.assertEqual(listener.lines(1), ["instance of CIM_AlertIndication {"])

    def test_what_is_malformed_is_answered_and_told(self):
        listener = self.listen()
        client = self.client(listener)
        reply = client.post(b"<CIM", EXPORT_HEADERS)
        self.assertEqual((reply.status, reply.headers["CIMError"]), (400, "request-not-well-formed"))
        self.assertEqual(self.export(listener, "").error, 4)
        call = self.judged(client.post(request("GetClass"), request_headers("GetClass")))
        self.assertEqual(call.error, 7)
        text = listener.error_text()
        self.assertEqual(text.count("qorql: warning: a request from 127.0.0.1 was refused: "), 3, text)
        self.assertIn("NewIndication is missing", text)
        self.export(listener, ALERT)
        self.assertEqual(len(listener.lines(1)), 1)

    def test_quiet_tells_nothing(self):
        listener = self.listen("--quiet")
        self.export(listener, "")
        self.assertNotIn("refused", listener.error_text())

    def test_it_ends_after_so_many_and_answers_each_of_them(self):
        listener = self.listen("--count", "3")
        for _ in range(3):
            self.assertEqual(self.export(listener, ALERT).error, 0)
        self.assertEqual(listener.process.wait(20), 0)
        self.assertEqual(len(listener.lines(4)), 3)

    def test_it_ends_by_a_signal(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            self.assertEqual(self.listen().stop(number), 0)

    def test_it_ends_when_nobody_reads_it(self):
        listener = self.listen()
        listener.process.stdout.close()
        self.assertEqual(self.export(listener, ALERT).error, 1)
        self.assertEqual(listener.process.wait(20), 0)

    def test_it_ends_though_its_reader_takes_nothing_and_names_what_it_did_not_print(self):
        listener = self.listen()
        refused = []

        def send():
            client = servercase.Client(listener)
            for number in range(40):
                content = instance("A", Text="x" * 8000, SequenceNumber=("sint64", number))
                reply = client.post(export_message(content), EXPORT_HEADERS)
                if reply.error:
                    refused.append((number, reply.error))
                    break
            client.close()

        def waiting():
            return struct.unpack("i", fcntl.ioctl(listener.process.stdout, termios.FIONREAD, b"\0" * 4))[0]

        thread = threading.Thread(target=send)
        thread.start()
        self.wait_for(lambda: waiting() > 60000)
        began = time.monotonic()
        self.assertEqual(listener.stop(), 0)
        self.assertLess(time.monotonic() - began, 9)
        thread.join()
        (number, error), = refused
        self.assertEqual(error, 1)
        self.assertIn(f"A, SequenceNumber {number} is not printed, or not as a whole, and refused: nobody reads",
                      listener.error_text())

    def test_a_sender_of_http_1_0_that_closes_is_answered(self):
        listener = self.listen()
        connection = self.raw(listener)
        body = export_message(ALERT)
        connection.send(b"POST / HTTP/1.0\r\nContent-Type: text/xml\r\nContent-Length: %d\r\n\r\n%s" % (len(body), body))
        status, _, answer = connection.read_reply()
        self.assertEqual(status, 200)
        self.assertIn(b"EXPMETHODRESPONSE", answer)

    def test_many_send_at_once(self):
        listener = self.listen()

        def send(sender):
            client = servercase.Client(listener)
            for number in range(25):
                content = instance("A", Sender=("uint16", sender), Number=("uint16", number))
                self.assertEqual(client.post(export_message(content), EXPORT_HEADERS).error, 0)
            client.close()

        threads = [threading.Thread(target=send, args=(sender,)) for sender in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        printed = listener.indications(100)
        for sender in range(4):
            self.assertEqual([one["Number"] for one in printed if one["Sender"] == sender], list(range(25)))

    def test_wrong_usage(self):
        for arguments in (["-o", "table"], ["--count", "x"], ["more"]):
            self.assertEqual(self.run_tool("listen", *arguments).returncode, 2, arguments)

    def test_an_address_in_use_is_told(self):
        listener = self.listen()
        done = self.run_tool("listen", "--listen", f"127.0.0.1:{listener.port}")
        self.assertEqual((done.returncode, done.stdout), (3, b""))
        self.assertIn("Address already in use", done.stderr.decode())


if __name__ == "__main__":
    servercase.main()
