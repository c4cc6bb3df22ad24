"""Times the server, a process of its own, over the loopback: instances a second, a query beside the tool's own run, the
latency of a request beside idle connections, many clients at once, and the memory of a long result.

Run as serve.py TOOL [--sizes=LIST] [--rounds=N] [--seconds=N] [--rows=N] [--only=serve] [--turn=SECONDS]; prints
Markdown. The first size is that of the enumeration and of the join.
"""
# SPDX-License-Identifier: Apache-2.0
import argparse
import http.client
import os
import re
import resource
import statistics
import subprocess
import sys
import tempfile
import threading
import time
from xml.sax import saxutils

CLASSES = """Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
class Disk { [Key] string DeviceID; string Name; string Model; string Serial; string PoolID; uint64 Size; uint32 BlockSize;
  uint16 Status; boolean Enabled; real64 Load; sint32 Offset; uint16 OperationalStatus[]; };
class Pool { [Key] string PoolID; string ArrayID; };
class Array { [Key] string ArrayID; string Name; };
class Left { [Key] string L; };
class Right { [Key] string R; };
"""
JOIN = ("SELECT d.DeviceID, d.Size, p.PoolID, a.Name FROM Disk AS d, Pool AS p, Array AS a "
        "WHERE d.PoolID = p.PoolID AND p.ArrayID = a.ArrayID")
ALL_PAIRS = "SELECT l.L, r.R FROM Left AS l, Right AS r WHERE l.L < r.R"
TICK = os.sysconf("SC_CLK_TCK")
SIDE = 1000


def write_model(path, size, rows):
    with open(path, "w", encoding="ascii") as model:
        model.write(CLASSES)
        for number in range(size):
            model.write(f'instance of Disk {{ DeviceID = "disk{number:08}"; Name = "Drive {number}"; Model = "M-{number % 17}"; '
                        f'Serial = "SN{number * 7919:012}"; PoolID = "pool{number % 100}"; Size = {number * 1000003}; '
                        f"BlockSize = 4096; Status = {number % 5}; Enabled = true; Load = 0.5; Offset = -{number}; "
                        f"OperationalStatus = {{2, {number % 7}}}; }};\n")
        for number in range(100):
            model.write(f'instance of Pool {{ PoolID = "pool{number}"; ArrayID = "array{number % 10}"; }};\n')
        for number in range(10):
            model.write(f'instance of Array {{ ArrayID = "array{number}"; Name = "Array {number}"; }};\n')
        for number in range(SIDE):
            model.write(f'instance of Left {{ L = "a{number:040}"; }};\n')
        for number in range(rows // SIDE):
            model.write(f'instance of Right {{ R = "b{number:040}"; }};\n')


def message(operation, **parameters):
    content = "".join(
        f'<IPARAMVALUE NAME="{name}">' + (f'<CLASSNAME NAME="{value}"/>' if name == "ClassName" else
                                          f"<VALUE>{saxutils.escape(str(value))}</VALUE>") + "</IPARAMVALUE>"
        for name, value in parameters.items())
    return (f'<?xml version="1.0" encoding="utf-8"?>\n<CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1" '
            f'PROTOCOLVERSION="1.0"><SIMPLEREQ><IMETHODCALL NAME="{operation}"><LOCALNAMESPACEPATH><NAMESPACE NAME="root"/>'
            f'<NAMESPACE NAME="cimv2"/></LOCALNAMESPACEPATH>{content}</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>').encode()


class Server:
    def __init__(self, tool, model):
        self.process = subprocess.Popen([tool, "serve", "--quiet", "--no-live", "--no-cache", "-m", model, "--listen",
                                         "127.0.0.1:0"], stdout=subprocess.PIPE)
        line = self.process.stdout.readline().decode()
        if not line.startswith("listening on "):
            sys.exit(f"serve.py: the server does not listen: {line!r}")
        self.port = int(line.rsplit(":", 1)[1].split("/")[0])

    def connect(self):
        return http.client.HTTPConnection("127.0.0.1", self.port, timeout=600)

    def cpu(self):
        """Processor seconds that it has taken."""
        with open(f"/proc/{self.process.pid}/stat", encoding="ascii") as file:
            fields = file.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / TICK

    def megabytes(self, field="VmRSS"):
        with open(f"/proc/{self.process.pid}/status", encoding="ascii") as file:
            return next(int(line.split()[1]) for line in file if line.startswith(field + ":")) / 1024

    def forget_peak(self):
        with open(f"/proc/{self.process.pid}/clear_refs", "w", encoding="ascii") as file:
            file.write("5")

    def stop(self):
        self.process.terminate()
        self.process.wait()


def ask(connection, operation, look=None, **parameters):
    """The bytes of the reply; `look` is shown each piece. Anything but a good reply ends the program."""
    connection.request("POST", "/cimom", message(operation, **parameters),
                       {"Content-Type": 'application/xml; charset="utf-8"', "CIMOperation": "MethodCall",
                        "CIMMethod": operation, "CIMObject": "root%2Fcimv2"})
    reply, total, first = connection.getresponse(), 0, b""
    while piece := reply.read(1 << 20):
        total += len(piece)
        first = first or piece
        if look:
            look(piece)
    if reply.status != 200 or b"<ERROR " in first:
        sys.exit(f"serve.py: {operation} is answered with {reply.status}: {first[:500].decode()}")
    return total


class Tags:
    """Counts a tag in pieces that may cut it."""

    def __init__(self, tag):
        self.tag, self.count, self.rest = tag, 0, b""

    def __call__(self, piece):
        text = self.rest + piece
        self.count += text.count(self.tag)
        self.rest = text[-(len(self.tag) - 1):]


def measured(server, connection, tag, operation, **parameters):
    """(processor seconds of the server, seconds on the clock, tags, bytes) of one exchange."""
    tags, cpu, began = Tags(tag), server.cpu(), time.perf_counter()
    size = ask(connection, operation, tags, **parameters)
    return server.cpu() - cpu, time.perf_counter() - began, tags.count, size


def verdict(good):
    return "met" if good else "missed"


def enumeration(server, size, rounds):
    connection, turns = server.connect(), []
    for _ in range(rounds + 1):
        # The clock of the processor ticks in hundredths: enough turns are taken together.
        turns.append([measured(server, connection, b"<INSTANCE ", "EnumerateInstances", ClassName="Disk") for _ in range(5)])
    if {one[2] for turn in turns for one in turn} != {size}:
        sys.exit("serve.py: not all instances came")
    cpu = statistics.median(5 * size / max(sum(one[0] for one in turn), 0.01) for turn in turns[1:])
    wall = statistics.median(5 * size / sum(one[1] for one in turn) for turn in turns[1:])
    print(f"| EnumerateInstances, {size} of 12 properties: a second of the server's processor | {cpu:.0f} | 25000 or more, "
          f"{verdict(cpu >= 25000)} |")
    print(f"| the same, a second on the clock, with the client's reading | {wall:.0f} | - |", flush=True)


def tool_seconds(tool, model, query, runs):
    """The mean of what the tool says that a query took, with its XML: the model is loaded before, once for all runs."""
    with tempfile.NamedTemporaryFile("w", suffix=".txt") as script:
        script.write((query + ";\n") * runs)
        script.flush()
        done = subprocess.run([tool, "--no-live", "--no-cache", "-m", model, "--stats", "-o", "xml", "--file", script.name],
                              check=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    found = re.findall(r" execute=([0-9.]+)ms output=([0-9.]+)ms", done.stderr)
    if len(found) != runs:
        sys.exit(f"serve.py: the tool does not tell its times: {done.stderr[:500]}")
    return statistics.mean(float(execute) + float(output) for execute, output in found) / 1000


def tool_process(tool, model, query):
    """The processor seconds of the tool's run, a process that starts, loads the model and answers once."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run([tool, "--no-live", "--no-cache", "-m", model, "-o", "xml", query], check=True, stdout=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def join(server, tool, model, size, rounds):
    connection, ratios, rows = server.connect(), [], []
    for _ in range(rounds + 1):
        own = [measured(server, connection, b"<INSTANCE ", "ExecQuery", QueryLanguage="DMTF:CQL", Query=JOIN) for _ in range(20)]
        rows += [one[2] for one in own]
        tool_time, whole = tool_seconds(tool, model, JOIN, 20), tool_process(tool, model, JOIN)
        spent, clock = sum(one[0] for one in own) / len(own), statistics.mean(one[1] for one in own)
        ratios.append((spent / tool_time, clock / tool_time, spent / whole, clock / whole))
    if set(rows) != {size}:
        sys.exit(f"serve.py: the join has other rows: {set(rows)}")
    processor, clock, of_process, clock_of_process = (statistics.median(one[part] for one in ratios[1:]) for part in range(4))
    title = f"ExecQuery of a join of three classes, {size} rows"
    print(f"| {title}: the server's processor time, of the tool's own run, a whole process | {of_process:.2f} | 1.5 or less, "
          f"{verdict(of_process <= 1.5)} |")
    print(f"| the same, the whole exchange on the clock with the client's reading | {clock_of_process:.2f} | 1.5 or less, "
          f"{verdict(clock_of_process <= 1.5)} |")
    print(f"| {title}: the server's processor time, of the tool's executing and writing alone | {processor:.2f} | 1.5 or less, "
          f"{verdict(processor <= 1.5)} |")
    print(f"| the same, the whole exchange on the clock with the client's reading | {clock:.2f} | - |", flush=True)


def latency(server):
    connection, times = server.connect(), []
    for _ in range(300):
        began = time.perf_counter()
        ask(connection, "GetClass", ClassName="Pool")
        times.append(time.perf_counter() - began)
    connection.close()
    return statistics.median(times)


def idle(server, rounds):
    ratios = []
    for _ in range(rounds):
        alone = latency(server)
        held = [server.connect() for _ in range(64)]
        for one in held:
            ask(one, "GetClass", ClassName="Pool")
        ratios.append((latency(server) / alone, alone))
        for one in held:
            one.close()
    ratio, alone = statistics.median(one[0] for one in ratios), statistics.median(one[1] for one in ratios)
    print(f"| a request beside 64 idle connections, of one alone ({alone * 1e6:.0f} us) | {ratio:.2f} | below 2, "
          f"{verdict(ratio < 2)} |", flush=True)


def crowd(server, seconds):
    """32 clients query at once: how many, and by how much the memory grows from a sixth of the time to its end."""
    end, counts, failed = time.monotonic() + seconds, [], []
    def work():
        connection, count = server.connect(), 0
        try:
            while time.monotonic() < end:
                ask(connection, "ExecQuery", QueryLanguage="DMTF:CQL", Query="SELECT * FROM Pool")
                count += 1
        except BaseException as failure:  # pylint: disable=broad-except
            failed.append(failure)
        counts.append(count)
    threads = [threading.Thread(target=work) for _ in range(32)]
    for thread in threads:
        thread.start()
    time.sleep(seconds / 6)
    before = server.megabytes()
    for thread in threads:
        thread.join()
    after = server.megabytes()
    if failed:
        sys.exit(f"serve.py: {len(failed)} of 32 clients failed: {failed[0]}")
    print(f"| 32 clients for {seconds:g} s: {sum(counts)} queries without an error; MB after a sixth of it, and at the end | "
          f"{before:.1f}, {after:.1f} | flat, {verdict(after < before * 1.1 + 2)} |", flush=True)


def pulled(connection):
    tags, context, found, end = Tags(b"<INSTANCE "), {}, None, False
    call = ("OpenQueryInstances", {"FilterQueryLanguage": "DMTF:CQL", "FilterQuery": ALL_PAIRS, "MaxObjectCount": 1000})
    while not end:
        pieces = []
        ask(connection, call[0], lambda piece, kept=pieces: (tags(piece), kept.append(piece)), **call[1])
        text = b"".join(pieces)[-2000:]
        end = re.search(rb'EndOfSequence"[^>]*><VALUE>TRUE', text) is not None
        found = re.search(rb'EnumerationContext"[^>]*><VALUE>([^<]*)', text)
        context = {"EnumerationContext": found.group(1).decode()} if found else {}
        call = ("PullInstances", {**context, "MaxObjectCount": 1000})
    return tags.count


def long_results(tool, folder, rows):
    model = os.path.join(folder, "long.mof")
    write_model(model, 1, rows)
    def executed(connection):
        tags = Tags(b"<INSTANCE ")
        ask(connection, "ExecQuery", tags, QueryLanguage="DMTF:CQL", Query=ALL_PAIRS)
        return tags.count
    for name, work in (("ExecQuery", executed), ("OpenQueryInstances and pulls of 1000", pulled)):
        server = Server(tool, model)
        try:
            connection = server.connect()
            ask(connection, "GetClass", ClassName="Pool")
            before = server.megabytes()
            count = work(connection)
            grown = server.megabytes("VmHWM") - before
        finally:
            server.stop()
        if count != rows:
            sys.exit(f"serve.py: {name} gave {count} rows of {rows}")
        print(f"| {name} of {rows} rows: MB at the peak beyond the model | {grown:.0f} | - |", flush=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("tool")
    parser.add_argument("--sizes", default="10000")
    parser.add_argument("--rounds", type=int, default=9)
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--rows", type=int, default=1000000)
    parser.add_argument("--only")
    parser.add_argument("--turn")
    options = parser.parse_args()
    size = int(options.sizes.split(",")[0])
    with tempfile.TemporaryDirectory() as folder:
        model = os.path.join(folder, "model.mof")
        write_model(model, size, SIDE)
        server = Server(options.tool, model)
        try:
            print("\n### The server\n\n| | | goal |\n|---|--:|---|", flush=True)
            enumeration(server, size, options.rounds)
            join(server, options.tool, model, size, options.rounds)
            idle(server, options.rounds)
            crowd(server, options.seconds)
        finally:
            server.stop()
        long_results(options.tool, folder, options.rows)


if __name__ == "__main__":
    main()
