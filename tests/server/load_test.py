"""Many clients at once: all kinds of operations, those who leave, who are slow or send what is none, and SIGHUPs beside.

QORQL_LOAD_SECONDS says how long (3). Nobody who asks rightly may notice the others.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import random
import signal
import threading
import time

import servercase
from eventcase import EXPORT_HEADERS, INTEROP, export_message, instance, value_in
from servercase import Client, RawConnection, head_of, request
from subscriptions import ALERTS, DISKS, SubscriptionCase, disk, disk_name

SECONDS = float(os.environ.get("QORQL_LOAD_SECONDS", "3"))
ROWS = 600
MODEL = DISKS + "class LOAD_Row { [Key] string Name; uint32 Number; };\nclass LOAD_Leaf { [Key] string Name; string Row; };\n"
MODEL += "".join(f'instance of LOAD_Row {{ Name = "row {number:05}"; Number = {number}; }};\n'
                 f'instance of LOAD_Leaf {{ Name = "leaf {number:05}"; Row = "row {number // 2:05}"; }};\n'
                 for number in range(ROWS))
JOIN = "SELECT r.Name, l.Name FROM LOAD_Row AS r, LOAD_Leaf AS l WHERE r.Name = l.Row AND r.Number < 100"
LONG = "SELECT r.Name FROM LOAD_Row AS r, LOAD_Leaf AS l, DISK_Disk AS d WHERE r.Name < l.Name AND r.Number > d.Size"
CQL = "DMTF:CQL"
CHUNKED = "Transfer-Encoding: chunked"


def stored_disk(name, size):
    return f"<VALUE.NAMEDINSTANCE>{disk_name(name)}{disk(name, size)}</VALUE.NAMEDINSTANCE>"


class LoadTest(SubscriptionCase):
    def setUp(self):
        super().setUp()
        self.server = self.serve("--no-live", "--writable", "--store", os.path.join(self.folder, "store.db"), "-m",
                                 self.write("load.mof", MODEL), "--limit", "contexts=16", "--limit", "idle=3",
                                 "--limit", "body=1M")
        self.failures, self.counts, self.kept = [], {}, {}
        self.end = time.monotonic() + SECONDS
        self.threads = []

    def start(self, work, *arguments):
        """Does it again and again until the end; what it throws fails the test."""
        def repeat():
            chance = random.Random(len(self.threads))
            times = 0
            try:
                while times == 0 or time.monotonic() < self.end:
                    work(chance, *arguments)
                    times += 1
            except Exception as failure:  # pylint: disable=broad-except
                self.failures.append((work.__name__, repr(failure)))
                self.end = 0
            self.counts[work.__name__] = self.counts.get(work.__name__, 0) + times

        self.threads.append(threading.Thread(target=repeat))
        self.threads[-1].start()

    def ask(self, client, operation, namespace="root/cimv2", allowed=(0,), **parameters):
        reply = client.call(operation, namespace, **parameters)
        told = reply.status, reply.error if reply.status == 200 else 0
        assert told[0] == 200 and told[1] in allowed, (operation, parameters, told, reply.body[:400])
        return reply

    def with_client(self, work, chance, *arguments):
        client = Client(self.server, timeout=120)
        try:
            return work(client, chance, *arguments)
        finally:
            client.close()

    # Those who ask rightly.

    def read(self, chance):
        self.with_client(self.read_some, chance)

    def read_some(self, client, chance):
        for _ in range(chance.randrange(1, 6)):
            operation, parameters = chance.choice((
                ("GetClass", {"ClassName": "LOAD_Row"}), ("EnumerateClasses", {"DeepInheritance": True}),
                ("EnumerateClassNames", {}), ("EnumerateQualifiers", {}),
                ("GetInstance", {"InstanceName": disk_name("declared")}),
                ("EnumerateInstanceNames", {"ClassName": "LOAD_Row"}), ("EnumerateInstances", {"ClassName": "LOAD_Row"}),
                ("Associators", {"ObjectName": disk_name("declared")}), ("References", {"ObjectName": disk_name("declared")})))
            reply = self.ask(client, operation, **parameters)
            assert parameters.get("ClassName") != "LOAD_Row" or operation == "GetClass" or len(reply.items) == ROWS
        self.ask(client, "EnumerateInstances", INTEROP, ClassName="CIM_Namespace")

    def query(self, chance):
        self.with_client(self.query_some, chance)

    def query_some(self, client, chance):
        for _ in range(chance.randrange(1, 6)):
            reply = self.ask(client, "ExecQuery", QueryLanguage=CQL, Query=JOIN)
            assert len(reply.items) == 200, len(reply.items)
            self.ask(client, "ExecQuery", QueryLanguage=CQL, Query="SELECT FROM", allowed=(15,))

    def pull(self, chance):
        self.with_client(self.pull_some, chance)

    def pull_some(self, client, chance):
        """To the end, closed before, or left to itself. A reload ends contexts (21), and so many are open (27)."""
        opening, pulling = chance.choice((
            (("OpenQueryInstances", {"FilterQuery": JOIN, "FilterQueryLanguage": CQL}), "PullInstances"),
            (("OpenEnumerateInstances", {"ClassName": "LOAD_Row"}), "PullInstancesWithPath"),
            (("OpenEnumerateInstancePaths", {"ClassName": "LOAD_Row"}), "PullInstancePaths")))
        reply = self.ask(client, opening[0], MaxObjectCount=10, OperationTimeout=5, allowed=(0, 27), **opening[1])
        count, left = 0, chance.randrange(4)
        while not reply.error:
            count += len(reply.items)
            context = reply.output("EnumerationContext")
            if reply.output("EndOfSequence").upper() == "TRUE":
                assert count == (200 if opening[0] == "OpenQueryInstances" else ROWS), (opening[0], count)
                return
            if left == 0:
                return
            if left == 1 and count > 50:
                self.ask(client, "CloseEnumeration", allowed=(0, 21), EnumerationContext=context)
                return
            reply = self.ask(client, pulling, allowed=(0, 21), EnumerationContext=context, MaxObjectCount=70)

    def change(self, chance, number):
        self.with_client(self.change_some, chance, number)

    def change_some(self, client, chance, number):
        mine = self.kept.setdefault(number, {})
        for _ in range(10):
            name, size = f"disk {number} {chance.randrange(20)}", chance.randrange(1000)
            if name not in mine:
                self.ask(client, "CreateInstance", NewInstance=disk(name, size))
                mine[name] = str(size)
            elif chance.randrange(2):
                self.ask(client, "ModifyInstance", ModifiedInstance=stored_disk(name, size))
                mine[name] = str(size)
            else:
                self.ask(client, "DeleteInstance", InstanceName=disk_name(name))
                del mine[name]
            found = self.ask(client, "GetInstance", InstanceName=disk_name(name), allowed=(0, 6))
            assert (found.error == 6) == (name not in mine), (name, found.body)

    def come_and_go_as_subscriber(self, chance, listener):
        name = f"passing {chance.randrange(1 << 30)}"
        made = self.create_filter(self.server, name=name), self.create_handler(self.server, listener.url, name=name)
        tie = self.tie(self.server, *made)
        for one in (tie, *made):
            assert isinstance(one, str), one
        for one in (tie, *made):
            told = self.delete(self.server, one)
            assert told == 0, told

    def send_alert(self, _chance):
        client = Client(self.server)
        self.sent += 1
        reply = client.post(export_message(instance("CIM_AlertIndication", Message=str(self.sent))), EXPORT_HEADERS)
        client.close()
        assert (reply.status, reply.error) == (200, 0), reply.body
        time.sleep(0.01)

    # The others.

    def leave(self, chance):
        """In the middle of a request, of a query, or of a reply."""
        connection = RawConnection(self.server)
        operation, parameters = chance.choice((("ExecQuery", {"QueryLanguage": CQL, "Query": LONG}),
                                               ("EnumerateInstances", {"ClassName": "LOAD_Row"})))
        body = request(operation, parameters=parameters)
        whole = head_of(operation, len(body)) + body
        connection.send(whole[:chance.choice((10, 300, len(whole) - 5, len(whole), len(whole)))])
        time.sleep(chance.random() * 0.1)
        connection.close()

    def send_what_is_none(self, chance):
        connection = RawConnection(self.server)
        deep = b"<VALUE>" * 20000
        body = request("GetClass", parameters={"ClassName": "LOAD_Row"})
        data = chance.choice((
            os.urandom(300) + b"\r\n\r\n", head_of("GetClass", len(body) - 7) + body, head_of("GetClass", "x") + body,
            head_of("GetClass", len(deep)) + deep, head_of("GetClass", None, CHUNKED) + b"fffffffffffffffff\r\n",
            head_of("GetClass", None, CHUNKED) + b"zz\r\n", head_of("GetClass", 3) + b"<a>",
            head_of("GetClass", 0, *[f"X-{number}: 1" for number in range(5000)]), head_of("GetClass", len(body), "Origin: x") + body))
        try:
            connection.send(data)
            connection.socket.shutdown(1)
        except OSError:
            pass  # it did not wait for the end
        status = connection.read_head()[0]
        assert status in (0, 200, 400, 403, 413, 414, 431, 501), (status, data[:300])
        connection.close()

    def dawdle(self, _chance):
        """A request byte by byte, until the server has had enough."""
        connection = RawConnection(self.server)
        try:
            for byte in head_of("GetClass", 100):
                connection.send(bytes([byte]))
                time.sleep(0.05)
                if time.monotonic() > self.end:
                    break
        except OSError:
            pass
        connection.close()

    def send_100_mb(self, chance):
        connection = RawConnection(self.server)
        told = chance.randrange(2)
        try:
            connection.send(head_of("GetClass", 100 << 20) if told else head_of("GetClass", None, CHUNKED))
            for _ in range(100):
                connection.send(b" " * (1 << 20) if told else b"100000\r\n" + b" " * (1 << 20) + b"\r\n")
            raise AssertionError("it took 100 MB")
        except OSError:
            pass  # it did not wait for the end
        connection.close()

    def reload(self, chance):
        self.server.send_signal(signal.SIGHUP)
        time.sleep(0.3 + chance.random())

    # All of them.

    def test_nobody_who_asks_rightly_notices_the_others(self):
        listener = self.play()
        self.sent = 0
        self.subscribe(self.server, listener.url, ALERTS)
        for work, *arguments in ((self.read,), (self.read,), (self.query,), (self.query,), (self.pull,), (self.pull,),
                                 (self.pull,), (self.change, 1), (self.change, 2), (self.send_alert,), (self.leave,),
                                 (self.leave,), (self.send_what_is_none,), (self.dawdle,), (self.send_100_mb,),
                                 (self.send_100_mb,), (self.reload,), (self.come_and_go_as_subscriber, self.play())):
            self.start(work, *arguments)
        for thread in self.threads:
            thread.join()
        print("times: " + ", ".join(f"{name} {times}" for name, times in sorted(self.counts.items())))
        self.assertEqual(self.failures, [], self.server.log_text()[-2000:])
        self.assert_all_is_as_it_was_told(listener)
        self.assertEqual(self.server.stop(), 0, self.server.log_text()[-4000:])

    def test_so_many_enumerations_are_open_as_may_be_however_many_ask_at_once(self):
        kept, refused = [], []

        def open_some():
            client = Client(self.server, timeout=120)
            for _ in range(8):
                reply = client.call("OpenEnumerateInstances", ClassName="LOAD_Row", MaxObjectCount=0,
                                    OperationTimeout=3600)
                kept.append(reply.output("EnumerationContext")) if not reply.error else refused.append(reply.error)
            client.close()

        for _ in range(2):
            threads = [threading.Thread(target=open_some) for _ in range(4)]
            for thread in threads:
                thread.start()
            for thread in threads:
                thread.join()
            self.assertEqual((len(set(kept)), refused), (16, [27] * 16))
            for context in kept:
                told = self.call(self.server, "CloseEnumeration", EnumerationContext=context)
                self.assertEqual((told.status, told.error), (200, 0))
            kept.clear()
            refused.clear()

    def assert_all_is_as_it_was_told(self, listener):
        told = {name: size for mine in self.kept.values() for name, size in mine.items()}
        self.assertEqual(dict(self.disks(self.server)), {"declared": "1", **told})
        self.wait_for(lambda: len(listener.messages) >= self.sent)
        self.assertEqual([value_in(message, "Message") for message in listener.messages],
                         [str(number + 1) for number in range(self.sent)])
        numbers = listener.numbers()
        self.assertEqual(numbers, list(range(numbers[0], numbers[0] + self.sent)))
        folder = f"/proc/{self.server.process.pid}"
        self.wait_for(lambda: len(os.listdir(folder + "/fd")) < 40)
        # Replies of the same requests are judged by their like elsewhere; a few of those here are enough.
        del self.replies[50:]


if __name__ == "__main__":
    servercase.main()
