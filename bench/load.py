"""Times loading, whole processes: the tool reading MOF, keeping a cache and reading that, beside sqlite3 reading CSV.

Run as load.py TOOL [--sizes=LIST] [--rounds=N] [--schema=FILE] [--only=load] [--turn=SECONDS]; prints Markdown. Peers
take turns; times are processor time, ratios are taken within a round.
"""
# SPDX-License-Identifier: Apache-2.0
import argparse
import csv
import os
import statistics
import subprocess
import sys
import tempfile

CLASSES = """Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
class Disk { [Key] string DeviceID; string Name; uint64 Size; uint32 BlockSize; uint16 Status; boolean Enabled;
  real64 Load; string PoolID; uint16 OperationalStatus[]; };
"""
TABLE = ("CREATE TABLE Disk(DeviceID TEXT PRIMARY KEY, Name TEXT, Size INTEGER, BlockSize INTEGER, Status INTEGER, "
         "Enabled INTEGER, Load REAL, PoolID TEXT, OperationalStatus TEXT);")
COLUMNS = "DeviceID Name Size BlockSize Status Enabled Load PoolID OperationalStatus".split()
QUERY = "SELECT COUNT(Size) AS N FROM Disk"
SCHEMA_QUERY = "SELECT COUNT(Caption) AS N FROM CIM_ManagedElement"
MIXER = 0x9E3779B97F4A7C15


def mixed(number, salt):
    """Even bits, the same in every run."""
    bits = (number * MIXER + salt * 0xBF58476D1CE4E5B9) & (2**64 - 1)
    bits = ((bits ^ bits >> 30) * 0x94D049BB133111EB) & (2**64 - 1)
    return bits ^ bits >> 31


def disk(number):
    """The values of one disk as MOF writes them."""
    states = [2 + mixed(number, 9) % 18] + ([19] if mixed(number, 8) % 3 == 0 else [])
    return (f'"disk{number:08}"', f'"Drive-{mixed(number, 1) % 2**48:012x}-{number}"', str(mixed(number, 2) % 2**40),
            "4096" if mixed(number, 3) % 2 else "512", str(mixed(number, 4) % 5), "true" if mixed(number, 5) % 2 else "false",
            f"{mixed(number, 6) % 4096 / 4096:.12f}", f'"pool{mixed(number, 7) % 1000:06}"', "{%s}" % ", ".join(map(str, states)))


def write_models(folder, size):
    mof, table = os.path.join(folder, "disks.mof"), os.path.join(folder, "disks.csv")
    with open(mof, "w") as model, open(table, "w", newline="") as rows:
        model.write(CLASSES)
        writer = csv.writer(rows)
        for number in range(size):
            values = disk(number)
            model.write("instance of Disk { %s };\n" % " ".join(f"{n} = {v};" for n, v in zip(COLUMNS, values)))
            writer.writerow([value.strip('"{}') for value in values])
    return mof, table


def timed(command):
    """(processor seconds, MB at the peak, what it prints)."""
    with subprocess.Popen(command, stdout=subprocess.PIPE) as process:
        printed = process.stdout.read()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"load.py: status {process.returncode} of: {' '.join(command)}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024, printed.split()[-1].decode()


class Peer:
    def __init__(self, title, command, goal="-", leaves_out=None):
        self.title, self.command, self.goal, self.leaves_out = title, command, goal, leaves_out
        self.seconds, self.megabytes, self.answer = [], [], None

    def run(self):
        if self.leaves_out is not None and os.path.exists(self.leaves_out):
            os.remove(self.leaves_out)
        seconds, megabytes, self.answer = timed(self.command)
        self.seconds.append(seconds)
        self.megabytes.append(megabytes)


def run_rounds(peers, rounds):
    for _ in range(rounds):
        for peer in peers:
            peer.run()
    answers = {peer.title: peer.answer for peer in peers}
    if len(set(answers.values())) != 1:
        sys.exit(f"load.py: the peers disagree: {answers}")


def print_table(title, peers, base):
    print(f"\n### {title}\n\n| | s | of {base.title} | MB at the peak | goal at 100,000 |\n|---|--:|--:|--:|---|")
    for peer in peers:
        ratios = [own / other for own, other in zip(peer.seconds, base.seconds)]
        print(f"| {peer.title} | {statistics.median(peer.seconds):.3f} | {statistics.median(ratios):.2f} "
              f"({min(ratios):.2f} to {max(ratios):.2f}) | {statistics.median(peer.megabytes):.0f} | {peer.goal} |", flush=True)


def tool_peers(tool, model, query, folder, goals):
    cache = os.path.join(folder, "model.mofcache")
    common = [tool, "--no-live", "-m", model, query]
    return [Peer("from MOF", common + ["--no-cache"], goals[0]),
            Peer("from MOF, writing the cache", common + ["--cache", cache], goals[1], cache),
            Peer("from the cache", common + ["--cache", cache], goals[2])]


def load_disks(tool, size, rounds):
    with tempfile.TemporaryDirectory() as folder:
        model, table = write_models(folder, size)
        base = Peer("sqlite3", ["sqlite3", ":memory:", "-cmd", TABLE, "-cmd", ".mode csv", "-cmd", f".import {table} Disk",
                                "SELECT COUNT(Size) FROM Disk"])
        goals = ("at most 1.0, 170 MB", "a third more than from MOF", "at most 0.25, 130 MB")
        peers = [base] + tool_peers(tool, model, QUERY, folder, goals)
        run_rounds(peers, rounds)
        print_table(f"Loading {size} instances", peers, base)


def load_schema(tool, schema, rounds):
    with tempfile.TemporaryDirectory() as folder:
        peers = tool_peers(tool, schema, SCHEMA_QUERY, folder, ("-", "-", "-"))
        run_rounds(peers, rounds)
        print_table("Loading " + os.path.basename(schema), peers, peers[0])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("tool")
    parser.add_argument("--sizes", default="100000")
    parser.add_argument("--rounds", type=int, default=9)
    parser.add_argument("--schema")
    parser.add_argument("--only")
    parser.add_argument("--turn")
    options = parser.parse_args()
    for size in options.sizes.split(","):
        load_disks(options.tool, int(size), options.rounds)
    if options.schema:
        load_schema(options.tool, options.schema, options.rounds)


if __name__ == "__main__":
    main()
