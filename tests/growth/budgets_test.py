"""The workloads of the benchmark stay within their budgets, counted in instructions under valgrind.

Run as budgets_test.py PROGRAM [renew]. The budgets are in budgets.json: what was counted when they were last renewed,
with the compiler that the program was built by. By the same compiler a workload may take a tenth more. Another compiler,
or its library, counts otherwise: there the counts are taken in proportion to those of a piece of work that has nothing
of the product, with more room. `renew` writes what is counted now, which belongs into a change that means to change it.
"""
# SPDX-License-Identifier: Apache-2.0
import json
import os
import re
import subprocess
import sys
import tempfile

FOLDER = os.path.dirname(os.path.abspath(__file__))
BUDGETS = os.path.join(FOLDER, "budgets.json")
BENCHMARK = os.path.join(FOLDER, "..", "..", "bench", "Workloads.cpp")
ROOM, OTHER_ROOM = 1.1, 1.5
# Whoever made the product faster by that much should renew the budgets, so that it stays so.
LEFT_OVER = 0.8
DISKS, POOLS, QUOTAS, DEVICES, TRAYS = 1000, 100, 100, 1000, 10
MIDDLE = 1 << 39

CLASSES = """class EX_Disk { [Key] string DeviceID; string Name; uint64 Size; uint32 BlockSize; uint16 Status;
  boolean Enabled; real64 Load; string PoolID; uint16 OperationalStatus[]; };
class EX_Pool { [Key] string PoolID; string Name; uint64 Capacity; };
class EX_Quota { [Key] string PoolID; string Name; uint64 Capacity; };
class EX_Device { [Key] string DeviceID; string Name; uint64 Size; datetime InstallDate; uint16 State[];
  sint32 Temperature; };
class EX_SolidState : EX_Device { uint8 Wear; string Model; };
class EX_Tray { [Key] string TrayID; string Name; };
[Association] class EX_InTray { [Key] EX_Tray REF GroupComponent; [Key] EX_Device REF PartComponent; };
"""
SCAN = "SELECT DeviceID, Name, Size FROM EX_Disk"
FILTER = f"SELECT DeviceID, Size FROM EX_Disk WHERE Size > {MIDDLE} AND Status = 2"
JOIN = "SELECT d.DeviceID, p.Name, d.Size FROM EX_Disk AS d, EX_Pool AS p WHERE d.PoolID = p.PoolID"
MATCH = [f"Size > {MIDDLE}", "Status = 2", "BlockSize = 512", "Load < 0.9", "Name <> 'abc'"]
# Kind, name and statement; the names are those of the benchmark, and those of its matches.
WORKLOADS = [
    ("rows", "scan", SCAN),
    ("rows", "filter", FILTER),
    ("rows", "substring", "SELECT DeviceID, Name FROM EX_Disk WHERE Name LIKE 'unip'"),
    ("rows", "sort", "SELECT DeviceID, Size FROM EX_Disk ORDER BY Size ASC"),
    ("rows", "aggregates", "SELECT COUNT(DeviceID) AS n, MIN(Size) AS least, MAX(Size) AS most, SUM(Size) AS total, "
                           "AVG(Load) AS mean FROM EX_Disk"),
    ("rows", "join", JOIN),
    ("rows", "inequality", "SELECT d.DeviceID, q.PoolID FROM EX_Disk AS d, EX_Quota AS q WHERE d.Size > q.Capacity"),
    ("rows", "left", "SELECT d.DeviceID, p.Name FROM EX_Disk AS d, EX_Pool AS p WHERE p.PoolID =* d.PoolID"),
    ("rows", "left-extra", "SELECT d.DeviceID, p.Name FROM EX_Disk AS d, EX_Pool AS p WHERE d.PoolID *= p.PoolID"),
    ("xml", "xml", SCAN),
    ("xml-counted", "xml-counted", SCAN),
    ("parse", "parse-filter", FILTER),
    ("parse", "parse-join", JOIN),
    ("rows", "number-order", "SELECT DeviceID, Size FROM EX_Device ORDER BY Size ASC"),
    ("rows", "datetime-order", "SELECT DeviceID, InstallDate FROM EX_Device ORDER BY InstallDate ASC"),
    ("rows", "half-null", "SELECT DeviceID, Temperature FROM EX_Device WHERE Temperature > 40"),
    ("rows", "objectpath", "SELECT OBJECTPATH(EX_Device) AS Path FROM EX_Device"),
    ("rows", "instanceof", "SELECT INSTANCEOF(EX_Device) AS Whole FROM EX_Device"),
    ("rows", "isa", "SELECT DeviceID FROM EX_Device WHERE EX_Device ISA EX_SolidState"),
    ("rows", "any", "SELECT DeviceID FROM EX_Device WHERE ANY State = 2"),
    ("rows", "association", "SELECT t.Name, d.DeviceID FROM EX_Tray AS t, EX_Device AS d "
                            "WHERE EX_InTray = t AND EX_InTray = d"),
] + [("match", f"match-{n}", "SELECT * FROM EX_Disk WHERE " + " AND ".join(MATCH[:n])) for n in (1, 2, 5)]


def mixed(index, field):
    """Spread evenly over 64 bits."""
    bits = (index * 0x9E3779B97F4A7C15 + field * 0xD1B54A32D192ED03) % 2**64
    bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9 % 2**64
    return bits ^ bits >> 31


def disk(i):
    name = ("Juniper", "Alder", "R&D <lab>", "Hazel")[mixed(i, 1) % 4] + f"-{mixed(i, 2):016x}"
    pool = "" if i % 50 == 0 else f'PoolID = "pool{mixed(i, 8) % (POOLS + 3):06}"; '
    return (f'instance of EX_Disk {{ DeviceID = "disk{i:08}"; Name = "{name}"; Size = {mixed(i, 3) % 2**40}; '
            f"BlockSize = {512 if mixed(i, 4) % 2 else 4096}; Status = {mixed(i, 5) % 5}; Enabled = TRUE; "
            f"Load = {mixed(i, 7) % 4096 / 4096:.6f}; {pool}OperationalStatus = {{2, 3}}; }};\n")


def tray(i):
    return f'instance of EX_Tray as $t{i} {{ TrayID = "tray{i}"; Name = "Tray no. {i}"; }};\n'


def device(i):
    date = f"20{mixed(i, 44) % 20 + 10}0{mixed(i, 45) % 9 + 1}{mixed(i, 46) % 18 + 10}"
    date += f"{mixed(i, 47) % 24:02}{mixed(i, 48) % 60:02}{mixed(i, 49) % 60:02}.{mixed(i, 50) % 10**6:06}+000"
    heat = f"Temperature = {mixed(i, 51) % 100 - 10}; " if mixed(i, 52) % 2 else ""
    return (f'instance of {"EX_SolidState" if mixed(i, 41) % 3 == 0 else "EX_Device"} as $d{i} '
            f'{{ DeviceID = "device{i:08}"; Name = "Device #{i}"; Size = {mixed(i, 43) % 2**40}; '
            f'InstallDate = "{date}"; State = {{{mixed(i, 53) % 6}, {mixed(i, 54) % 6}}}; {heat}}};\n'
            f"instance of EX_InTray {{ GroupComponent = $t{mixed(i, 55) % TRAYS}; PartComponent = $d{i}; }};\n")


def pools(class_name, count):
    return "".join(f'instance of {class_name} {{ PoolID = "pool{i:06}"; Name = "Pool <{i}>"; '
                   f"Capacity = {mixed(i, 22) % (10 * 2**40)}; }};\n" for i in range(count))


def count(program):
    """(compiler, {name: instructions})"""
    with tempfile.TemporaryDirectory() as folder:
        model, workloads, dump = (os.path.join(folder, name) for name in ("model", "workloads", "dump"))
        with open(model, "w", encoding="utf-8") as file:
            file.write(CLASSES + "".join(map(disk, range(DISKS))) + pools("EX_Pool", POOLS) + pools("EX_Quota", QUOTAS))
            file.write("".join(map(tray, range(TRAYS))) + "".join(map(device, range(DEVICES))))
        with open(workloads, "w", encoding="utf-8") as file:
            file.write("".join("\t".join(workload) + "\n" for workload in WORKLOADS))
        command = ["valgrind", "-q", "--tool=callgrind", "--instr-atstart=no", "--dump-line=no",
                   f"--callgrind-out-file={dump}", program, model, workloads]
        done = subprocess.run(command, capture_output=True, text=True, check=False,
                              env=dict(os.environ, LD_BIND_NOW="1"))
        if done.returncode != 0:
            sys.exit(f"{program} failed:\n{done.stderr[-4000:]}")
        compiler, *names = done.stdout.splitlines()
        counts = {}
        for number, name in enumerate(names, 1):
            with open(f"{dump}.{number}", encoding="latin-1") as file:
                counts[name] = int(re.search(r"^summary: (\d+)", file.read(), re.MULTILINE).group(1))
    return compiler, counts


def missing_workloads():
    """Those of the benchmark that have no budget."""
    with open(BENCHMARK, encoding="utf-8") as file:
        known = set(re.findall(r'[{(]Task::\w+, "([\w-]+)"', file.read()))
    return sorted(known - {name for _, name, _ in WORKLOADS}) if known else ["all: none is found"]


def check(compiler, counts, budgets):
    """Prints each workload; returns the number of faults."""
    is_same = compiler == budgets["compiler"]
    scale = 1 if is_same else counts["reference"] / budgets["counts"]["reference"]
    room = ROOM if is_same else OTHER_ROOM
    print(f"compiled by {compiler}, budgets by {budgets['compiler']}: {scale:.2f} times their reference")
    faults = 0
    for name, counted in counts.items():
        budget = budgets["counts"].get(name)
        if budget is None:
            print(f"{name}: {counted} instructions, NO BUDGET")
            faults += 1
            continue
        part = counted / (budget * scale)
        is_over = part > room and name != "reference"
        note = ": TOO MANY" if is_over else ": fewer by much, renew the budgets" if part < LEFT_OVER else ""
        print(f"{name}: {counted} instructions, {part:.2f} of what they were{note}")
        faults += is_over
    for name in budgets["counts"].keys() - counts.keys():
        print(f"{name}: NOT COUNTED")
        faults += 1
    return faults


def main(program, action="check"):
    compiler, counts = count(program)
    if action == "renew":
        with open(BUDGETS, "w", encoding="utf-8") as file:
            json.dump({"compiler": compiler, "counts": counts}, file, indent=2)
            file.write("\n")
        return 0
    with open(BUDGETS, encoding="utf-8") as file:
        faults = check(compiler, counts, json.load(file))
    for name in missing_workloads():
        print(f"{name}: a workload of the benchmark WITHOUT A BUDGET")
        faults += 1
    print(f"{faults} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
