"""Queries over the wire: rows as instances, refusals, and what ends a query; and the tool, which asks its own server."""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import socket
import subprocess
import threading
import time

import servercase
from servercase import ServerCase, head_of, request

DOCUMENT = os.path.join(os.path.dirname(servercase.TESTS), "docs", "server.md")
EXAMPLES = os.path.join(os.path.dirname(servercase.TESTS), "examples")


def rows(reply):
    """Class, and (name, type, value) of each property of each instance."""
    return [(one.get("CLASSNAME"), [(each.get("NAME"), each.get("TYPE"), each.findtext("VALUE")) for each in one])
            for one in reply.tree.iter("INSTANCE")]


class QueryTest(ServerCase):
    def ask(self, server, query, language="DMTF:CQL", **more):
        return self.call(server, "ExecQuery", QueryLanguage=language, Query=query, **more)

    def test_rows_are_instances(self):
        reply = self.ask(self.serve_plant(), "SELECT FIRST 1 Name, Litres FROM P_Tank ORDER BY Litres ASC")
        self.assertEqual([one.tag for one in reply.items], ["VALUE.OBJECT"])
        self.assertEqual(rows(reply), [("P_Tank", [("Name", "string", "t2"), ("Litres", "uint32", "10")])])

    def test_every_kind_of_value_is_valid(self):
        reply = self.ask(self.serve_plant(), "SELECT * FROM P_Pump")
        self.assertEqual(reply.error, 0)
        self.assertEqual(len(reply.items), 2)
        joined = self.ask(self.serve_plant(), "SELECT a.Name, b.Name, OBJECTPATH(a) AS P, a.Litres * 2 AS L FROM P_Tank AS a, "
                                              "P_BigPump AS b WHERE a.Litres > b.Level")
        self.assertEqual([one[0] for one in rows(joined)], ["QueryResult"] * 2)
        self.assertEqual([name for name, _, _ in rows(joined)[0][1]], ["a.Name", "b.Name", "P", "L"])

    def test_refusals(self):
        server = self.serve_plant()
        self.assertEqual(self.ask(server, "SELECT Name FROM P_Tank", "SQL").error, 14)
        self.assertEqual(self.call(server, "ExecQuery", "root/none", QueryLanguage="CQL", Query="SELECT a FROM b").error, 3)
        self.assertEqual(self.call(server, "ExecQuery", Query="SELECT a FROM b").error, 4)
        wrong = self.ask(server, "SELECT Litre FROM P_Tank")
        self.assertEqual(wrong.error, 15)
        told = self.run_tool("--no-live", "-m", servercase.PLANT, "--quiet", "SELECT Litre FROM P_Tank").stderr.decode()
        message = re.match(r"qorql: error: (.*?) \(", told).group(1)
        self.assertTrue(wrong.tree.find(".//ERROR").get("DESCRIPTION").startswith(message), told)

    def test_a_result_is_pulled_with_its_class(self):
        server = self.serve_plant()
        first = self.call(server, "OpenQueryInstances", FilterQueryLanguage="DMTF:CQL", ReturnQueryResultClass=True,
                          FilterQuery="SELECT Name, Litres / 10 AS Tens FROM P_Tank", MaxObjectCount=1)
        declared = first.tree.find(".//PARAMVALUE[@NAME='QueryResultClass']/CLASS")
        columns = [(one.get("NAME"), one.get("TYPE")) for one in declared.iter("PROPERTY")]
        self.assertEqual(columns, [("Name", "string"), ("TENS", "uint64")])
        second = self.call(server, "PullInstances", MaxObjectCount=9,
                           EnumerationContext=first.output("EnumerationContext"))
        self.assertEqual([one.tag for one in first.items + second.items], ["INSTANCE", "INSTANCE"])
        self.assertEqual([one[1][1][2] for one in rows(first) + rows(second)], ["50", "1"])
        self.assertEqual(second.output("EndOfSequence"), "TRUE")

    def long_query(self, *options):
        """A server of a model, and a query on it that takes minutes."""
        numbers = "".join(f"instance of {name} {{ Id = {i}; }};\n" for name in ("N", "M") for i in range(20000))
        model = self.write("numbers.mof", "Qualifier Key : boolean = false, Scope(property);\n"
                                          "class N { [Key] uint32 Id; };\nclass M { [Key] uint32 Id; };\n" + numbers)
        return (self.serve("--no-live", "-m", model, *options),
                "SELECT COUNT(a.Id) AS C FROM N AS a, M AS b WHERE a.Id * b.Id = a.Id + b.Id + 7")

    def test_a_query_that_takes_too_long_is_ended(self):
        server, query = self.long_query("--limit", "query=1")
        begin = time.monotonic()
        reply = self.ask(server, query)
        self.assertEqual(reply.error, 27)
        self.assertIn("more than 1 seconds", reply.tree.find(".//ERROR").get("DESCRIPTION"))
        self.assertLess(time.monotonic() - begin, 15)

    def test_a_query_that_takes_too_much_memory_is_ended(self):
        server, _ = self.long_query("--limit", "memory=1M")
        reply = self.ask(server, "SELECT a.Id AS X, b.Id AS Y, c.Id AS Z FROM N AS a, M AS b, N AS c")
        self.assertEqual(reply.error, 27)
        self.assertIn("take more than 1048576 bytes of memory", reply.tree.find(".//ERROR").get("DESCRIPTION"))
        few = "SELECT a.Id AS X, b.Id AS Y FROM N AS a, M AS b WHERE a.Id = b.Id AND a.Id < 9"
        self.assertEqual(len(self.ask(server, few).items), 9)

    def test_a_client_that_goes_away_ends_its_query(self):
        server, query = self.long_query()
        body = request("ExecQuery", parameters={"QueryLanguage": "CQL", "Query": query})
        connection = self.raw(server)
        connection.send(head_of("ExecQuery", len(body)) + body)
        threading.Event().wait(0.5)
        connection.close()
        answered = []
        for _ in range(400):
            answered = [line["status"] for line in server.log() if line.get("operation") == "ExecQuery"]
            if answered:
                break
            threading.Event().wait(0.05)
        self.assertEqual(answered, [1])

    def test_a_client_that_sends_nothing_more_gets_its_reply(self):
        server, query = self.long_query("--limit", "query=1")
        body = request("ExecQuery", parameters={"QueryLanguage": "CQL", "Query": query})
        for version in ("HTTP/1.1", "HTTP/1.0"):
            connection = self.raw(server)
            connection.send(head_of("ExecQuery", len(body), version=version) + body)
            connection.socket.shutdown(socket.SHUT_WR)
            status, headers = connection.read_head()
            while status == 100:
                status, headers = connection.read_head()
            self.assertEqual(status, 200)
            self.assertIn(b'CODE="27"', connection.read_bytes(int(headers["content-length"])), version)
            connection.close()

    def test_clients_ask_at_once(self):
        server = self.serve_plant()
        faults = []

        def one(number):
            try:
                for _ in range(5):
                    if number % 2:
                        reply = self.ask(server, "SELECT a.Name, b.Name FROM P_Tank AS a, P_Pump AS b")
                        count = len(reply.items)
                    else:
                        reply = self.call(server, "OpenQueryInstances", FilterQueryLanguage="CQL", MaxObjectCount=1,
                                          FilterQuery="SELECT a.Name, b.Name FROM P_Tank AS a, P_Pump AS b")
                        count = len(reply.items)
                        while reply.output("EndOfSequence") == "FALSE":
                            reply = self.call(server, "PullInstances", MaxObjectCount=2,
                                              EnumerationContext=reply.output("EnumerationContext"))
                            count += len(reply.items)
                    if count != 4:
                        faults.append(count)
            except Exception as error:  # noqa: BLE001 (told below)
                faults.append(repr(error))

        threads = [threading.Thread(target=one, args=(number,)) for number in range(32)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(faults, [])

    def test_the_tool_gets_the_same_rows_of_its_own_server(self):
        server = self.serve_plant()
        url = f"http://127.0.0.1:{server.port}"
        for query in ("SELECT Name, Litres FROM P_Tank WHERE Litres > 10", "SELECT Name, Level, Since FROM P_Pump",
                      "SELECT a.Name, b.Name FROM P_Tank AS a, P_Pump AS b WHERE a.Litres > b.Level"):
            direct = self.run_tool("--no-live", "-m", servercase.PLANT, "-o", "jsonl", query)
            self.assertEqual(direct.returncode, 0, direct.stderr)
            for options in ((), ("--push-down",)):
                asked = self.run_tool("--no-live", "--server", url, *options, "-o", "jsonl", query)
                self.assertEqual((asked.returncode, asked.stdout), (0, direct.stdout), asked.stderr)

    def test_the_example_of_the_document(self):
        with open(DOCUMENT, encoding="utf-8") as file:
            section = file.read().split("\n## Queries\n")[1].split("\n## ")[0]
        command = re.search(r"```bash\n(curl .*?)\n```", section, re.S).group(1)
        shown = re.search(r"```xml\n(.*?)```", section, re.S).group(1)
        server = self.serve("--no-live", "-m", os.path.join(EXAMPLES, "storage.mof"))
        done = subprocess.run(["bash", "-c", command.replace("127.0.0.1:5988", f"127.0.0.1:{server.port}")],
                              capture_output=True, timeout=60, check=False, cwd=os.path.dirname(EXAMPLES))
        self.assertEqual("".join(done.stdout.decode().split()), "".join(shown.split()), done.stderr)


if __name__ == "__main__":
    servercase.main()
