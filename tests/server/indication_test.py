"""Clients subscribe over the wire, and their listeners get indications, whatever these listeners do."""
# SPDX-License-Identifier: Apache-2.0
import os
import shutil
import signal
import ssl
import subprocess
import sys
import time
import unittest

import servercase
from eventcase import INTEROP, accept, full, instance, value_in
from subscriptions import ALERTS, DISKS, SubscriptionCase, disk, disk_name

sys.path.insert(1, os.path.join(servercase.TESTS, "remote"))
sys.path.insert(1, os.path.join(servercase.TESTS, "docs"))
import certificates  # noqa: E402 (the folders are named above)
import markdown  # noqa: E402

DOCUMENT = os.path.join(os.path.dirname(servercase.TESTS), "docs", "server.md")

# What a MOF file of subscriptions declares, in short.
KEYS = " ".join(f"[Key] string {name};" for name in
                ("SystemCreationClassName", "SystemName", "CreationClassName", "Name"))
SUBSCRIPTION = f"""
#pragma namespace("root/interop")
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride, ToSubclass);
class CIM_IndicationFilter {{ {KEYS} string Query; string QueryLanguage; string SourceNamespaces[]; }};
class CIM_ListenerDestination {{ {KEYS} string Destination; uint16 PersistenceType; }};
class CIM_ListenerDestinationCIMXML : CIM_ListenerDestination {{ }};
[Association] class CIM_IndicationSubscription {{
  [Key] CIM_IndicationFilter REF Filter; [Key] CIM_ListenerDestination REF Handler; }};
instance of CIM_IndicationFilter as $F {{ SystemCreationClassName = "s"; SystemName = "s";
  CreationClassName = "CIM_IndicationFilter"; Name = "f"; Query = "SELECT * FROM CIM_InstCreation"; }};
instance of CIM_ListenerDestinationCIMXML as $H {{ SystemCreationClassName = "s"; SystemName = "s";
  CreationClassName = "CIM_ListenerDestinationCIMXML"; Name = "h"; Destination = "URL"; }};
instance of CIM_IndicationSubscription {{ Filter = $F; Handler = $H; }};
#pragma namespace("root/cimv2")
"""

CHANGES = "SELECT * FROM CIM_InstIndication WHERE SourceInstance ISA DISK_Disk"


class IndicationTest(SubscriptionCase):
    def test_changes_by_clients_reach_the_tool_as_a_listener(self):
        server, listener = self.serve_disks(), self.listen()
        self.subscribe(server, listener.url, CHANGES)
        self.create(server, disk("new", 2), "root/cimv2")
        self.delete(server, disk_name("new"), "root/cimv2")
        created, deleted = listener.indications(2)
        self.assertEqual((created["class"], deleted["class"]), ("CIM_InstCreation", "CIM_InstDeletion"))
        self.assertEqual(created["SourceInstance"], {"class": "DISK_Disk", "Name": "new", "Size": 2, "Labels": None})
        self.assertEqual((created["SequenceNumber"], deleted["SequenceNumber"]), (0, 1))
        self.assertEqual(created["SequenceContext"], deleted["SequenceContext"])
        self.assertEqual(created["IndicationFilterName"], listener.url)

    def test_live_changes_reach_a_listener(self):
        listener = self.listen()
        server = self.serve("--writable", "--interval", "0.1")
        self.subscribe(server, listener.url,
                       "SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA Linux_Process")
        with subprocess.Popen(["sleep", "30"]) as started:
            found = listener.indications(1)
            started.kill()
        self.assertEqual([(one["class"], one["SourceInstance"]["class"]) for one in found],
                         [("CIM_InstCreation", "Linux_Process")])

    def test_live_changes_right_after_the_reply_and_around_reading_anew_are_seen(self):
        listener = self.listen()
        server = self.serve("--writable", "--interval", "1.5")
        self.subscribe(server, listener.url,
                       "SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA Linux_Process "
                       "AND SourceInstance.Linux_Process::Name = 'sleep'")
        with subprocess.Popen(["sleep", "60"]) as first:
            self.assert_seen(listener, first)
            with subprocess.Popen(["sleep", "61"]) as second:
                server.send_signal(signal.SIGHUP)
                self.assert_seen(listener, second)
                second.kill()
            first.kill()

    def test_live_changes_right_after_the_start_are_seen(self):
        listener, store = self.listen(), os.path.join(self.folder, "server.db")
        first = self.serve("--writable", "--store", store, "--interval", "0.5")
        self.subscribe(first, listener.url,
                       "SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA Linux_Process "
                       "AND SourceInstance.Linux_Process::Name = 'sleep'")
        first.stop()
        self.serve("--writable", "--store", store, "--interval", "0.5")
        with subprocess.Popen(["sleep", "60"]) as started:
            try:
                self.assert_seen(listener, started)
            finally:
                started.kill()

    def assert_seen(self, listener, process):
        """A process is among those of which the listener gets to know."""
        seen = set()
        end = time.monotonic() + 8
        while str(process.pid) not in seen and time.monotonic() < end:
            seen |= {one["SourceInstance"]["Handle"] for one in listener.indications(1, 0.5)}
        self.assertIn(str(process.pid), seen)

    def test_what_is_sent_is_plain_and_valid(self):
        server, listener = self.serve_disks(), self.play()
        self.subscribe(server, listener.url)
        self.alert(server, "hello & <good> \x7f")
        self.wait_for(lambda: listener.messages)
        headers = {name.lower(): value for name, value in listener.headers[0].items()}
        self.assertEqual((headers["cimexport"], headers["cimexportmethod"]), ("MethodRequest", "ExportIndication"))
        self.assertEqual(headers["accept"], "application/xml")
        self.assertNotIn("accept-encoding", headers)
        self.assertNotIn("transfer-encoding", headers)
        self.assertEqual(int(headers["content-length"]), len(listener.messages[0]))
        self.replies.append(listener.messages[0])

    def test_what_is_wrong_is_refused(self):
        server = self.serve_disks()
        self.assertEqual(self.create_filter(server, "SELECT * FROM CIM_Nothing"), 15)
        self.assertEqual(self.create_filter(server, "SELECT"), 15)
        self.assertEqual(self.create_filter(server, language="SQL"), 14)
        self.assertEqual(self.create_handler(server, "ftp://a"), 4)
        made, handler = self.create_filter(server), self.create_handler(server, "http://127.0.0.1:9/")
        self.assertEqual(self.create_filter(server), 11)
        self.assertEqual(self.tie(server, handler, handler), 4)
        self.assertEqual(self.tie(server, made, handler, OnFatalErrorPolicy=("uint16", 9)), 4)
        subscription = self.tie(server, made, handler)
        self.assertEqual((self.delete(server, made), self.delete(server, handler)), (1, 1))
        self.assertEqual([self.delete(server, name) for name in (subscription, handler, made)], [0, 0, 0])

    def test_a_server_that_takes_no_changes_takes_no_alerts(self):
        server = self.serve_plant()
        reply = self.export(server, instance("CIM_AlertIndication", Message="x"))
        self.assertEqual(reply.error, 2)
        self.assertIn("--writable", reply.tree.find(".//ERROR").get("DESCRIPTION"))

    def test_subscriptions_of_mof_files_are_in_force_or_told_not_to_be(self):
        listener = self.listen()
        mof = self.write("subscription.mof", SUBSCRIPTION.replace("URL", listener.url) + DISKS)
        server = self.serve("--no-live", "--writable", "-m", mof)
        self.create(server, disk("new"), "root/cimv2")
        self.assertEqual([one["SourceInstance"]["Name"] for one in listener.indications(1)], ["new"])
        self.assertNotIn("not in force", server.log_text())
        self.assertIn("not in force without --writable", self.serve("--no-live", "-m", mof).log_text())

    def test_a_hundred_that_wait_survive_a_kill(self):
        store = os.path.join(self.folder, "server.db")
        listener = self.play(lambda message_id: None)
        server = self.serve_disks("--store", store)
        self.set_retry(server, 1000, 1)
        self.subscribe(server, listener.url)
        for number in range(100):
            self.alert(server, str(number))
        self.assertEqual(self.queue(server, "Queued"), 100)
        server.stop(signal.SIGKILL)
        before = len(listener.numbers())
        self.assertEqual(set(listener.numbers()), {0})
        listener.answer = accept
        again = self.serve_disks("--store", store)
        self.wait_for(lambda: len(listener.numbers()) >= before + 100)
        self.alert(again, "100")
        self.wait_for(lambda: len(listener.numbers()) >= before + 101)
        self.assertEqual(listener.numbers()[before:], list(range(101)))
        contexts = {value_in(message, "SequenceContext") for message in listener.messages}
        self.assertEqual(len(contexts), 1)

    def assert_gets_through(self, answers, **more):
        """The first answers of a listener are these; then it takes everything, in order."""
        left = list(answers)
        listener = self.play(lambda message_id: left.pop(0)(message_id) if left else accept(message_id), **more)
        server = self.serve_disks()
        self.set_retry(server, 10, 0)
        self.subscribe(server, listener.url)
        for number in range(3):
            self.alert(server, str(number))
        self.wait_for(lambda: self.queue(server, "Delivered") == 3)
        self.assertEqual(listener.numbers(), [0] * len(answers) + [0, 1, 2])
        return server

    def test_a_listener_of_http_1_0_that_closes(self):
        self.assert_gets_through([], protocol="HTTP/1.0")

    def test_a_listener_whose_queue_is_full(self):
        self.assert_gets_through([full, full])

    def test_a_listener_that_fails(self):
        self.assert_gets_through([lambda _: (500, {}, b"no"), lambda _: (503, {}, b""), lambda _: None])

    def test_a_listener_that_answers_garbage(self):
        self.assert_gets_through([lambda _: (200, {}, b"<html>"), lambda _: (200, {}, b""),
                                  lambda _: accept("another")])

    def test_a_redirection_is_not_followed(self):
        elsewhere = self.play()
        self.assert_gets_through([lambda _: (302, {"Location": elsewhere.url}, b"")])
        self.assertEqual(elsewhere.messages, [])

    def test_a_dead_and_a_silent_listener_hold_up_nobody_else(self):
        silent = self.play(lambda message_id: self.wait_for(lambda: self.is_over, 60) and None)
        self.is_over = False
        self.addCleanup(setattr, self, "is_over", True)
        alive = self.play()
        server = self.serve_disks()
        made = self.create_filter(server)
        for number, url in enumerate((silent.url, "http://127.0.0.1:9/", alive.url)):
            self.tie(server, made, self.create_handler(server, url, name=str(number)))
        for number in range(20):
            self.alert(server, str(number))
        self.wait_for(lambda: len(alive.messages) == 20)
        self.assertEqual(alive.numbers(), list(range(20)))

    def test_a_subscription_is_removed_or_disabled_by_its_policy(self):
        server = self.serve_disks()
        self.set_retry(server, 0, 0)
        for policy, left in ((4, []), (3, ["4"])):
            subscription = self.subscribe(server, f"http://127.0.0.1:9/{policy}", OnFatalErrorPolicy=("uint16", policy))
            self.alert(server, "x")

            def states():
                found = self.call(server, "EnumerateInstances", INTEROP,
                                  ClassName="CIM_IndicationSubscription", LocalOnly=False).tree
                return [one.text for one in found.findall(".//PROPERTY[@NAME='SubscriptionState']/VALUE")]

            self.wait_for(lambda left=left: states() == left)
            if left:
                self.assertEqual(self.delete(server, subscription), 0)

    def test_a_listener_of_https_is_known_by_its_certificate(self):
        made = certificates.Certificates(self.folder)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(*made.make("listener"))
        listener = self.play(context=context)
        for arguments, isTaken in (([], False), (["--listener-ca", made.authority], True)):
            server = self.serve_disks(*arguments)
            self.set_retry(server, 0, 0)
            self.subscribe(server, listener.url)
            self.alert(server, "x")
            self.wait_for(lambda server=server, isTaken=isTaken: self.queue(
                server, "Delivered" if isTaken else "Dropped") == 1)
            self.assertEqual(len(listener.messages), 1 if isTaken else 0)
            server.stop()

    def test_the_certificates_that_listeners_are_known_by_are_read_anew(self):
        made = certificates.Certificates(self.folder)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(*made.make("listener"))
        listener = self.play(context=context)
        settings = self.write("server.ini", "[server]\n")
        server = self.serve_disks("--config", settings)
        self.set_retry(server, 0, 0)
        self.subscribe(server, listener.url)
        self.alert(server, "x")
        self.wait_for(lambda: self.queue(server, "Dropped") == 1)
        self.write("server.ini", f"[server]\nlistener-ca = {made.authority}\n")
        server.send_signal(signal.SIGHUP)
        self.wait_for(lambda: "have been read anew" in server.log_text())
        self.write("server.ini", "[server]\nlistener-ca = none\n")
        server.send_signal(signal.SIGHUP)
        self.wait_for(lambda: "there are no certificates of listeners in none" in server.log_text())
        self.alert(server, "y")
        self.wait_for(lambda: self.queue(server, "Delivered") == 1)
        # What it was sent before does not let it in once its authority is gone.
        self.write("server.ini", "[server]\n")
        server.send_signal(signal.SIGHUP)
        self.wait_for(lambda: server.log_text().count("have been read anew") == 2)
        self.alert(server, "z")
        self.wait_for(lambda: self.queue(server, "Dropped") == 2)
        self.assertEqual(len(listener.messages), 1)

    def test_a_listener_of_the_tool_with_a_certificate_and_users(self):
        made = certificates.Certificates(self.folder)
        certificate, key = made.make("listener")
        users = os.path.join(self.folder, "users")
        self.assertEqual(self.run_tool("passwd", users, "anna", stdin=b"secret\n").returncode, 0)
        listener = self.listen("--tls-cert", certificate, "--tls-key", key, "--users", users, "--count", "1")
        server = self.serve_disks("--listener-ca", made.authority)
        self.set_retry(server, 0, 0)
        asked = self.create_filter(server)
        wrong = self.tie(server, asked, self.create_handler(server, listener.url.replace("//", "//anna:guessed@")))
        self.alert(server, "x")
        self.wait_for(lambda: self.queue(server, "Dropped") == 1)
        self.assertEqual(self.delete(server, wrong), 0)
        self.tie(server, asked, self.create_handler(server, listener.url.replace("//", "//anna:secret@"), name="right"))
        self.alert(server, "y")
        self.assertEqual([one["Message"] for one in listener.indications(1)], ["y"])
        self.assertEqual(listener.process.wait(20), 0)
        for text in (server.log_text(), listener.error_text()):
            self.assertNotIn("secret", text)
            self.assertNotIn("guessed", text)
        self.assertIn("an indication for https://***@127.0.0.1", server.log_text())

    @unittest.skipUnless(shutil.which("wbemcli"), "this system has no wbemcli")
    def test_the_example_of_the_document(self):
        listen, serve, subscribe = [block.text for block in markdown.blocks(DOCUMENT) if block.kind == "events"]
        self.assertEqual(listen.strip(), "qorql listen --listen 127.0.0.1:5990")
        listener = self.listen()
        self.assertEqual(serve.strip(), "qorql serve --writable --store server.db")
        server = self.serve("--writable", "--store", os.path.join(self.folder, "server.db"), "--interval", "0.1")
        script = subscribe.replace(":5988", f":{server.port}").replace(":5990", f":{listener.port}")
        done = subprocess.run(["sh", "-e", "-c", script], capture_output=True, timeout=60, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        with subprocess.Popen(["sleep", "5"]) as started:
            found = listener.indications(1)
            started.kill()
        self.assertEqual([(one["class"], one["SourceInstance"]["class"]) for one in found],
                         [("CIM_InstCreation", "Linux_Process")])
        (unsubscribe,) = [block.text for block in markdown.blocks(DOCUMENT) if block.kind == "unsubscribe"]
        names = "".join(line + "\n" for line in script.splitlines() if not line.startswith("wbemcli"))
        done = subprocess.run(["sh", "-e", "-c", names + unsubscribe.replace(":5988", f":{server.port}")],
                              capture_output=True, timeout=60, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        for name in ("CIM_IndicationSubscription", "CIM_IndicationFilter", "CIM_ListenerDestinationCIMXML"):
            self.assertEqual(self.call(server, "EnumerateInstanceNames", INTEROP, ClassName=name).items, [])

    def test_the_alert_of_the_document(self):
        (alert,) = [block.text for block in markdown.blocks(DOCUMENT) if block.kind == "alert"]
        server, listener = self.serve("--writable", "--no-live"), self.listen()
        self.subscribe(server, listener.url)
        done = subprocess.run(["sh", "-e", "-c", alert.replace(":5988", f":{server.port}")], capture_output=True,
                              timeout=60, check=False)
        self.assertIn(b"EXPMETHODRESPONSE", done.stdout)
        self.assertNotIn(b"ERROR", done.stdout)
        self.assertEqual([one["Message"] for one in listener.indications(1)], ["the lamp is on"])

    def test_subscriptions_survive_reading_anew(self):
        server, listener = self.serve_disks(), self.play()
        self.subscribe(server, listener.url)
        self.alert(server, "0")
        server.send_signal(signal.SIGHUP)
        self.wait_for(lambda: "read anew" in server.log_text())
        self.alert(server, "1")
        self.wait_for(lambda: len(listener.messages) == 2)
        self.assertEqual(listener.numbers(), [0, 1])


if __name__ == "__main__":
    servercase.main()
