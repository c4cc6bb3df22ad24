"""Measures indications, whole processes: subscriptions at a server, and the listener that gets what they ask for.

Run as indications.py TOOL [--subscriptions=N] [--indications=N] [--senders=N] [--queued=N]; prints Markdown, and ends
with status 1 when an indication is missing, out of order, or there twice.
"""
# SPDX-License-Identifier: Apache-2.0
import argparse
import collections
import http.client
import json
import os
import re
import select
import subprocess
import sys
import tempfile
import threading
import time

LISTENING = re.compile(r"listening on http://127\.0\.0\.1:(\d+)/")
HEAD = '<?xml version="1.0" encoding="utf-8"?><CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1" PROTOCOLVERSION="1.0">'
INTEROP = '<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/><NAMESPACE NAME="interop"/></LOCALNAMESPACEPATH>'
SILENCE = 60  # seconds without an indication after which the rest is taken as lost


def instance(class_name, values, references=()):
    text = f'<INSTANCE CLASSNAME="{class_name}">'
    for name, value in values.items():
        text += f'<PROPERTY NAME="{name}" TYPE="string"><VALUE>{value}</VALUE></PROPERTY>'
    for name, of, path in references:
        text += (f'<PROPERTY.REFERENCE NAME="{name}" REFERENCECLASS="{of}"><VALUE.REFERENCE>{path}</VALUE.REFERENCE>'
                 "</PROPERTY.REFERENCE>")
    return text + "</INSTANCE>"


class Client:
    """One connection to the server."""

    def __init__(self, port):
        self.connection = http.client.HTTPConnection("127.0.0.1", port, timeout=60)

    def post(self, body, headers):
        self.connection.request("POST", "/cimom", body.encode(), {"Content-Type": "application/xml", **headers})
        reply = self.connection.getresponse()
        text = reply.read().decode()
        if reply.status != 200 or "<ERROR" in text:
            sys.exit(f"indications.py: the server answers {reply.status}: {text}")
        return text

    def create(self, content):
        """The name of the new instance."""
        text = self.post(f'{HEAD}<SIMPLEREQ><IMETHODCALL NAME="CreateInstance">{INTEROP}<IPARAMVALUE NAME="NewInstance">'
                         f"{content}</IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>",
                         {"CIMOperation": "MethodCall", "CIMMethod": "CreateInstance", "CIMObject": "root%2Finterop"})
        return text[text.index("<INSTANCENAME"):text.rindex("</INSTANCENAME>") + len("</INSTANCENAME>")]

    def alert(self, number, event):
        content = instance("CIM_AlertIndication", {"Message": number, "EventID": event})
        self.post(f'{HEAD}<SIMPLEEXPREQ><EXPMETHODCALL NAME="ExportIndication"><EXPPARAMVALUE NAME="NewIndication">'
                  f"{content}</EXPPARAMVALUE></EXPMETHODCALL></SIMPLEEXPREQ></MESSAGE></CIM>",
                  {"CIMExport": "MethodRequest", "CIMExportMethod": "ExportIndication"})


class Process:
    """The tool as a server or as a listener; says where it listens on standard output or standard error."""

    def __init__(self, command, errors, says_on_errors):
        self.errors = open(errors, "w+b")
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=self.errors)
        found, end, text = None, time.monotonic() + 60, b""
        while found is None and time.monotonic() < end and self.process.poll() is None:
            if says_on_errors:
                time.sleep(0.01)
                text = os.pread(self.errors.fileno(), 4096, 0)
            elif select.select([self.process.stdout], [], [], 0.2)[0]:
                text += os.read(self.process.stdout.fileno(), 4096)
            found = LISTENING.search(text.decode())
        if found is None:
            self.process.kill()
            text += os.pread(self.errors.fileno(), 4096, 0)
            sys.exit(f"indications.py: it does not start: {text.decode()}")
        self.port = int(found.group(1))

    def end(self, kills=False):
        if kills:
            self.process.kill()
        else:
            self.process.terminate()
        self.process.wait(60)
        self.process.stdout.close()
        self.errors.close()


class Bench:
    def __init__(self, tool, folder):
        self.tool, self.folder = tool, folder

    def serve(self):
        return Process([self.tool, "serve", "--no-live", "--writable", "--quiet", "--listen", "127.0.0.1:0", "--store",
                        os.path.join(self.folder, "server.db")], os.path.join(self.folder, "server.log"), False)

    def listen(self, port=0):
        return Process([self.tool, "listen", "--listen", f"127.0.0.1:{port}"], os.path.join(self.folder, "listen.log"),
                       True)


def subscribe(client, port, count):
    """One listener, and for each subscription a filter that asks for an event of its own."""
    handler = client.create(instance("CIM_ListenerDestinationCIMXML",
                                     {"Name": "bench", "Destination": f"http://127.0.0.1:{port}/"}))
    for event in range(count):
        query = f"SELECT * FROM CIM_AlertIndication WHERE EventID = '{event}'"
        asked = client.create(instance("CIM_IndicationFilter", {"Name": event, "Query": query, "QueryLanguage": "DMTF:CQL"}))
        client.create(instance("CIM_IndicationSubscription", {},
                               [("Filter", "CIM_IndicationFilter", asked), ("Handler", "CIM_ListenerDestination", handler)]))


def send(port, first, count, step, subscriptions):
    client = Client(port)
    for number in range(first, count, step):
        client.alert(number, number % subscriptions)


def send_all(port, count, senders, subscriptions, first=0):
    threads = [threading.Thread(target=send, args=(port, first + start, first + count, senders, subscriptions))
               for start in range(senders)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def collect(listener, count):
    """What the listener prints, until so many different ones are there or nothing comes any more."""
    printed, rest, end, numbers = [], b"", time.monotonic() + SILENCE, set()
    while len(numbers) < count and time.monotonic() < end:
        if not select.select([listener.process.stdout], [], [], 0.2)[0]:
            continue
        piece = os.read(listener.process.stdout.fileno(), 1 << 16)
        if not piece:
            break
        end = time.monotonic() + SILENCE
        *lines, rest = (rest + piece).split(b"\n")
        printed += [json.loads(line) for line in lines]
        numbers.update(int(json.loads(line)["SequenceNumber"]) for line in lines)
    return printed


def judge(title, printed, first, count):
    """Says how many are missing, out of order and repeated; whether all is well."""
    numbers = [int(one["SequenceNumber"]) for one in printed]
    once = list(dict.fromkeys(numbers))
    missing = count - len(set(numbers) & set(range(first, first + count)))
    disorder = sum(1 for before, after in zip(once, once[1:]) if after < before)
    alerts = collections.Counter(int(number) for number in {int(one["SequenceNumber"]): one["Message"] for one in printed}.values())
    doubled = sum(times - 1 for times in alerts.values())
    repeated = len(numbers) - len(once)
    print(f"| {title} | {count} | {missing} | {disorder} | {doubled} | {repeated} |", flush=True)
    return missing == disorder == doubled == 0


def measure(bench, options):
    server, listener = bench.serve(), bench.listen()
    rates, printed = [], []
    begin = time.monotonic()
    subscribe(Client(server.port), listener.port, options.subscriptions)
    rates.append(("subscriptions made", 2 * options.subscriptions + 1, time.monotonic() - begin))
    begin = time.monotonic()
    reader = threading.Thread(target=lambda: printed.extend(collect(listener, options.indications)))
    reader.start()
    send_all(server.port, options.indications, options.senders, options.subscriptions)
    rates.append(("indications taken", options.indications, time.monotonic() - begin))
    reader.join()
    rates.append(("indications delivered", options.indications, time.monotonic() - begin))
    listener.end()
    send_all(server.port, options.queued, options.senders, options.subscriptions, first=options.indications)
    server.end(kills=True)
    listener, begin = bench.listen(listener.port), time.monotonic()
    server = bench.serve()
    queued = collect(listener, options.queued)
    rates.append(("delivered after the kill, with the start", options.queued, time.monotonic() - begin))
    server.end()
    listener.end()
    return rates, printed, queued


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("tool")
    parser.add_argument("--subscriptions", type=int, default=1000)
    parser.add_argument("--indications", type=int, default=10000)
    parser.add_argument("--senders", type=int, default=4)
    parser.add_argument("--queued", type=int, default=100)
    parser.add_argument("--only", help="as bench/run has it")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        rates, printed, queued = measure(Bench(options.tool, folder), options)
    print("\n### Indications\n\n| | number | s | a second |\n|---|--:|--:|--:|")
    for title, number, seconds in rates:
        print(f"| {title} | {number} | {seconds:.2f} | {number / seconds:.0f} |")
    print("\n| | indications | missing | out of order | with two numbers | repeated with their number |\n|---|--:|--:|--:|--:|--:|")
    is_well = judge("delivered", printed, 0, options.indications)
    is_well = judge("queued at `kill -9`", queued, options.indications, options.queued) and is_well
    if not is_well:
        sys.exit("indications.py: indications are missing, out of order or doubled")


if __name__ == "__main__":
    main()
