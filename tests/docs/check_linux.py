"""Runs the statements of docs/linux.md on this machine and compares what they say with the machine's own tools.

Run as check_linux.py TOOL DOCUMENT. Each ```query block must run, and its result must have the columns that the
```columns block after it lists, which begins with the name of the question. Where JUDGES has something under that name,
it gets the rows and says what is wrong with them; where the tool that it asks is not there it is left out, with the
reason. A statement whose source is not on this machine (systemd) is left out likewise.
"""
# SPDX-License-Identifier: Apache-2.0
import ipaddress
import json
import os
import pwd
import re
import shutil
import subprocess
import sys
import tempfile
import time

import markdown

TIMEOUT_SECONDS = 60
SKIPPED = 77  # the exit status by which ctest knows that something was left out
UNSEEN = re.compile(r"^qorql: warning: Cannot read [^\n]+: (Permission denied|No such file or directory)(, and \d+ more)?\n",
                    re.MULTILINE)
NO_SYSTEMD = "systemd does not run here, which lists the services"


class LeftOut(Exception):
    """Why something cannot be judged on this machine."""


def output_of(*command):
    """What a tool of the machine prints; LeftOut where it is not there or does not know."""
    if shutil.which(command[0]) is None:
        raise LeftOut(f"there is no {command[0]}")
    ran = subprocess.run(command, capture_output=True, text=True, timeout=TIMEOUT_SECONDS, check=False,
                         env=dict(os.environ, LC_ALL="C"))
    if ran.returncode != 0:
        raise LeftOut(f"{command[0]} says: {ran.stderr.strip() or ran.stdout.strip() or 'nothing'}")
    return ran.stdout


def content_of(path):
    try:
        with open(path, encoding="utf-8", errors="replace") as file:
            return file.read()
    except OSError as error:
        raise LeftOut(f"{path}: {error.strerror}") from error


def differs(what, found, expected):
    if found != expected:
        yield f"{what}: found {found!r}, expected {expected!r}"


# --- what each question's answer is judged by: rows as dictionaries in, complaints out --------------------------------

def ports(rows):
    expected = set()
    for line in output_of("ss", "-Htuln").splitlines():
        words = line.split()
        address, _, port = words[4].rpartition(":")
        address = address.strip("[]").split("%")[0]
        expected.add((words[0], {"*": "::"}.get(address, address), int(port)))
    yield from differs("ports", {(row["Protocol"], row["LocalAddress"], row["PortNumber"]) for row in rows}, expected)


def biggest(rows):
    sizes = [row["WorkingSetSize"] for row in rows]
    yield from differs("the order", sizes, sorted(sizes, reverse=True))
    said = [line.split() for line in output_of("ps", "-eo", "rss=,comm=").splitlines()]
    yield from differs("the number of rows", len(rows), min(10, len(said)))
    # The tool that was asked has ended by now; where a sanitizer makes it the biggest, the next one is compared.
    sizes = [row["WorkingSetSize"] for row in rows if row.get("Name") != "qorql"]
    most = max(int(words[0]) for words in said if words[1:] != ["qorql"])
    if sizes and abs(sizes[0] / 1024 - most) > 0.5 * most:
        yield f"the biggest has {sizes[0]} bytes, ps says {most} KiB"


def memory_by_user(rows):
    counts = {}
    for line in output_of("ps", "-eo", "user:64=").splitlines():
        counts[line.strip()] = counts.get(line.strip(), 0) + 1
    accounts = {account.pw_name for account in pwd.getpwall()}
    yield from differs("the users who are missing", (set(counts) & accounts) - {row["Name"] for row in rows}, set())
    for row in rows:
        if row["Name"] not in counts or abs(counts[row["Name"]] - row["ProcessCount"]) > 20 + counts[row["Name"]] / 4:
            yield f"{row}: ps counts {counts.get(row['Name'])}"


def used_percentage(mount):
    """0 for what is empty, without space or read-only."""
    state = os.statvfs(mount)
    used = state.f_blocks - state.f_bfree
    return 0 if state.f_flag & os.ST_RDONLY else 100 * used / max(1, used + state.f_bavail)


def full_disks(rows):
    found = {row["Name"] for row in rows}
    for name in found:
        if used_percentage(name) < 85:
            yield f"{name}: {used_percentage(name)} % are used"
    for name, options in mount_options().items():
        try:
            is_full = "ro" not in options and used_percentage(name) > 95
        except OSError:
            continue
        if is_full and name not in found:
            yield f"{name} is not there: {used_percentage(name)} % are used"


def failed_services(rows):
    listed = output_of("systemctl", "list-units", "--type=service", "--state=failed", "--plain", "--no-legend")
    yield from differs("services", {row["Name"] for row in rows}, {line.split()[0] for line in listed.splitlines()})


def members(rows):
    names = output_of("getent", "group", "sudo").strip().split(":")[3]
    yield from differs("members", {row["Name"] for row in rows}, set(names.split(",")) - {""})


def login_shells(rows):
    for line in output_of("getent", "passwd").splitlines():
        name, shell = line.split(":")[0], line.split(":")[6]
        has_shell = os.path.basename(shell) not in ("nologin", "false", "sync")
        if has_shell != any(row["Name"] == name for row in rows):
            yield f"{name} has the shell {shell}"


def superusers(rows):
    accounts = [line.split(":") for line in output_of("getent", "passwd").splitlines()]
    yield from differs("users", {row["Name"] for row in rows}, {parts[0] for parts in accounts if parts[2] == "0"})


def zombies(rows):
    """The test starts one, which only this process can end."""
    if str(Zombie.pid) not in {row["Handle"] for row in rows}:
        yield f"the zombie {Zombie.pid} is not there"


def busy(rows):
    """The test starts one."""
    handles = [row["Handle"] for row in rows]
    if str(Busy.process.pid) not in handles:
        yield f"the busy process {Busy.process.pid} is not there"
    use = [row["CPUPercent"] for row in rows]
    yield from differs("the order", use, sorted(use, reverse=True))


def new_processes(rows):
    if str(os.getpid()) not in {row["Handle"] for row in rows}:
        yield "the process of the test is not there"


def uptime(rows):
    seconds = float(content_of("/proc/uptime").split()[0])
    if len(rows) != 1 or abs(rows[0]["UpTime"] - seconds) > 60:
        yield f"{rows}: /proc/uptime says {seconds}"


def overload(rows):
    load = float(content_of("/proc/loadavg").split()[0])
    processors = int(output_of("nproc", "--all"))
    if (load > 2 * processors and not rows) or (load < processors / 2 and rows):
        yield f"{rows}: the load is {load} on {processors} processors"


def address(rows):
    links = json.loads(output_of("ip", "-j", "address", "show"))
    wanted = [link for link in links if any(entry["local"] == "127.0.0.1" for entry in link["addr_info"])]
    yield from differs("interfaces", [row["DeviceID"] for row in rows], [link["ifname"] for link in wanted])
    for row, link in zip(rows, wanted):
        pairs = set(zip(row["NetworkAddresses"], row["PrefixLengths"]))
        yield from differs("addresses", pairs, {(entry["local"], entry["prefixlen"]) for entry in link["addr_info"]})


def mount_options():
    """By the place of the mount; of several in one place the last, which hides the others."""
    options = {}
    for line in content_of("/proc/self/mounts").splitlines():
        words = line.split()
        options[words[1].replace("\\040", " ")] = words[3].split(",")
    return options


def mounts(rows):
    expected = {name for name, given in mount_options().items() if "nosuid" not in given}
    yield from differs("mounts", {row["Name"] for row in rows}, expected)


def device(rows):
    sources = [line.split()[0] for line in content_of("/proc/self/mounts").splitlines() if line.split()[1] == "/"]
    yield from differs("devices", [row["Device"] for row in rows], sources[-1:])


def parents(rows):
    names = {line.split(None, 1)[0]: line.split(None, 1)[1].strip() for line in output_of("ps", "-eo", "pid=,comm=").splitlines()}
    own = [row for row in rows if row["Handle"] == str(Busy.process.pid)]
    yield from differs("the parent", [row["ParentName"] for row in own], [names.get(str(os.getpid()))])


def deleted(rows):
    """The test starts one."""
    if str(Deleted.process.pid) not in {row["Handle"] for row in rows}:
        yield f"the process {Deleted.process.pid}, whose program is deleted, is not there"
    if str(Busy.process.pid) in {row["Handle"] for row in rows}:
        yield "a process whose program is there is among them"


def processors(rows):
    facts = dict(line.split(":", 1) for line in output_of("lscpu").splitlines() if ":" in line)
    row = rows[0]
    told = [facts[name].strip() for name in ("Socket(s)", "Core(s) per socket")]
    if not all(number.isdecimal() for number in told):
        raise LeftOut(f"lscpu tells {' and '.join(told)} for sockets and cores")
    sockets, cores = map(int, told)
    yield from differs("sockets and cores", (row["NumberOfSockets"], row["NumberOfCores"]), (sockets, sockets * cores))
    yield from differs("processors", row["NumberOfProcessors"], int(output_of("nproc", "--all")))
    yield from differs("the model", row["ProcessorModel"] or "-", facts.get("Model name", "-").strip())


def threads(rows):
    """The test starts one."""
    yield from differs("the threads of the process of the test",
                       [row["ThreadCount"] for row in rows if row["Handle"] == str(Threads.process.pid)], [Threads.COUNT])
    for row in rows:
        if row["ThreadCount"] <= 10:
            yield f"{row} has ten threads at most"


def written_bytes():
    """By the process, of those that may be seen and have written."""
    written = {}
    for handle in filter(str.isdecimal, os.listdir("/proc")):
        try:
            with open(f"/proc/{handle}/io", encoding="ascii") as file:
                written[handle] = int(dict(line.split(": ") for line in file)["write_bytes"])
        except OSError:
            pass
    return {handle: count for handle, count in written.items() if count > 0}


def writers(rows):
    """The test starts one, which some file systems do not count."""
    written = [row["BytesWritten"] for row in rows]
    yield from differs("the order", written, sorted(written, reverse=True))
    expected = written_bytes()
    yield from differs("the number of rows", len(rows), min(10, len(expected)))
    found = {row["Handle"] for row in rows}
    for handle, count in expected.items():
        if handle not in found and (not written or count > written[-1]):
            yield f"the process {handle} has written {count} bytes and is not there"


def logins(rows):
    listed = [line.split()[:2] for line in output_of("who").splitlines()]
    yield from differs("logins", sorted([row["UserName"], row["Terminal"]] for row in rows), sorted(listed))


def package(rows):
    version = output_of("dpkg-query", "-W", "-f", "${Version}", "dpkg")
    yield from differs("the version", [row["VersionString"] for row in rows], [version])


def is_remote(text, own):
    address = ipaddress.ip_address(text)
    address = getattr(address, "ipv4_mapped", None) or address
    return not address.is_loopback and str(address) not in own


def connections(rows):
    links = json.loads(output_of("ip", "-j", "address", "show"))
    own = {entry["local"] for link in links for entry in link["addr_info"]}
    expected = set()
    for line in output_of("ss", "-Htn", "state", "established").splitlines():
        remote, _, port = line.split()[3].rpartition(":")
        remote = remote.strip("[]").split("%")[0]
        if is_remote(remote, own):
            expected.add((remote, int(port)))
    yield from differs("connections", {(row["RemoteAddress"], row["RemotePort"]) for row in rows}, expected)


def cron_entries(rows):
    found = {(row["FileName"], row["LineNumber"]): row["Command"] for row in rows}
    folder = "/etc/cron.d"
    for name in os.listdir(folder) if os.path.isdir(folder) else []:
        if not re.fullmatch(r"[A-Za-z0-9_-]+", name):
            continue
        for number, line in enumerate(content_of(os.path.join(folder, name)).splitlines(), 1):
            if re.match(r"\s*([\d*]\S*\s+\S+\s+\S+\s+\S+\s+\S+|@\w+)\s+\w+\s+\S", line):
                command = found.get((os.path.join(folder, name), number))
                if command is None or not line.rstrip().endswith(command.rstrip()):
                    yield f"{folder}/{name}:{number}: found {command!r}"


def timers(rows):
    listed = output_of("systemctl", "list-timers", "--all", "--plain", "--no-legend")
    names = {word for line in listed.splitlines() for word in line.split() if word.endswith(".timer")}
    yield from differs("timers", {row["Name"] for row in rows} & names, names)


def modules(rows):
    expected = {}
    for line in output_of("lsmod").splitlines()[1:]:
        words = line.split()
        expected[words[0]] = (int(words[1]), words[3].split(",") if len(words) > 3 else [])
    yield from differs("modules", {row["Name"]: (row["Size"], row["UsedBy"]) for row in rows}, expected)


def routes(rows):
    """Those of all tables that lead out of the machine, each hop for itself."""
    staying = ("2", "3", "4", "5")  # local, broadcast, anycast, multicast
    expected = []
    for version in ("-4", "-6"):
        for route in json.loads(output_of("ip", "-N", "-j", version, "route", "show", "table", "all") or "[]"):
            if route.get("type", "1") not in staying:
                expected += [(route["dst"], hop.get("gateway", hop.get("via", {}).get("host")), hop.get("dev"),
                              int(route.get("table", 254)), route.get("metric", 0), hop.get("weight"))
                             for hop in route.get("nexthops", [route])]
    found = []
    for row in rows:
        full = 128 if ":" in row["DestinationAddress"] else 32
        prefix = "" if row["PrefixLength"] == full else f"/{row['PrefixLength']}"
        destination = "default" if row["PrefixLength"] == 0 else row["DestinationAddress"] + prefix
        found.append((destination, row["Gateway"], row["InterfaceName"], row["TableNumber"], row["Metric"], row["Weight"]))
    yield from differs("routes", sorted(found, key=str), sorted(expected, key=str))


def block_devices(rows):
    types = {entry["kname"]: entry["type"] for entry in json.loads(output_of("lsblk", "-Jan", "-o", "KNAME,TYPE", "-l"))["blockdevices"]}
    yield from differs("the devices that are missing", set(types) - {row["Name"] for row in rows}, set())
    for row in rows:
        expected = types.get(row["Name"], row["DeviceType"])
        said = {"partition": "part", "zram": "disk", "ram": "disk"}.get(row["DeviceType"], row["DeviceType"])
        if not expected.startswith(said):
            yield f"{row}: lsblk says {expected}"


JUDGES = {judge.__name__.replace("_", "-"): judge for judge in (
    ports, biggest, memory_by_user, full_disks, failed_services, members, login_shells, superusers, zombies, busy,
    new_processes, uptime, overload, address, mounts, device, parents, deleted, processors, threads, writers, logins,
    package, connections, cron_entries, timers, modules, routes, block_devices)}


# --- processes that the questions are about ----------------------------------------------------------------------------

class Zombie:
    pid = 0


class Busy:
    process = None


class Deleted:
    process = None
    program = None


class Threads:
    COUNT = 12
    process = None
    PROGRAM = """
import threading
for _ in range({others}):
    threading.Thread(target=threading.Event().wait, daemon=True).start()
print("ready", flush=True)
input()
"""


class Writer:
    process = None
    PROGRAM = """
import os
import sys
with open(sys.argv[1], "wb") as file:
    file.write(bytes(1 << 20))
    file.flush()
    os.fsync(file.fileno())
print("ready", flush=True)
input()
"""


def start_program(text, *arguments):
    """One that says when it is ready and ends when its input does."""
    process = subprocess.Popen([sys.executable, "-c", text, *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    process.stdout.readline()
    return process


def start_processes(folder):
    Zombie.pid = os.fork()
    if Zombie.pid == 0:
        os._exit(0)
    Busy.process = subprocess.Popen([sys.executable, "-c", "while True: pass"])
    Deleted.program = os.path.join(folder, "sleeper")
    shutil.copy(shutil.which("sleep"), Deleted.program)
    Deleted.process = subprocess.Popen([Deleted.program, "600"])
    while os.readlink(f"/proc/{Deleted.process.pid}/exe") != Deleted.program:
        time.sleep(0.01)
    os.remove(Deleted.program)
    Threads.process = start_program(Threads.PROGRAM.format(others=Threads.COUNT - 1))
    Writer.process = start_program(Writer.PROGRAM, os.path.join(folder, "written"))


def end_processes():
    for process in (Busy.process, Deleted.process, Threads.process, Writer.process):
        process.kill()
        process.communicate()
    os.waitpid(Zombie.pid, 0)


# --- the run ------------------------------------------------------------------------------------------------------------

def questions(document):
    """(line, statement, name, columns) of each question."""
    blocks = [block for block in markdown.blocks(document) if block.kind in ("query", "columns")]
    if len(blocks) % 2:
        raise ValueError(f"{document}:{blocks[-1].line}: this block has no partner")
    for query, columns in zip(blocks[::2], blocks[1::2]):
        if (query.kind, columns.kind) != ("query", "columns") or len(columns.arguments) != 1:
            raise ValueError(f"{document}:{query.line}: a query and its columns, with a name, must alternate")
        yield query.line, query.text.strip(), columns.arguments[0], columns.text.split()


def run(tool, form, statement):
    ran = subprocess.run([tool, "-o", form, statement], stdin=subprocess.DEVNULL, capture_output=True, text=True,
                         timeout=TIMEOUT_SECONDS, check=False)
    if ran.returncode == 3 and NO_SYSTEMD in ran.stderr:
        raise LeftOut(NO_SYSTEMD)
    complaints = UNSEEN.sub("", ran.stderr)
    if ran.returncode != 0 or complaints:
        raise ValueError(f"exit status {ran.returncode}: {complaints}")
    return ran.stdout


def check(tool, statement, name, columns):
    """Complaints about one question. A source that changed while two looked at it is looked at again."""
    header = run(tool, "csv", statement).split("\n", 1)[0]
    if header.split(",") != columns:
        raise ValueError(f"the columns are {header}")
    if name not in JUDGES:
        yield f"nothing judges {name}"
        return
    for remaining in (4, 3, 2, 1, 0):
        complaints = list(JUDGES[name](json.loads(run(tool, "json", statement))))
        if not complaints or remaining == 0:
            yield from complaints
            return
        time.sleep(0.3)


def main(tool, document):
    count = failures = 0
    reasons = []
    seen = set()
    with tempfile.TemporaryDirectory(prefix="qorql-linux-") as folder:
        start_processes(folder)
        try:
            for line, statement, name, columns in questions(document):
                count += 1
                seen.add(name)
                try:
                    complaints = list(check(tool, statement, name, columns))
                except LeftOut as reason:
                    reasons.append(f"{name}: {reason}")
                    continue
                except ValueError as failure:
                    complaints = [str(failure)]
                failures += 1 if complaints else 0
                for complaint in complaints:
                    print(f"{document}:{line}: {statement}\n{complaint}")
        finally:
            end_processes()
    for name in sorted(set(JUDGES) - seen):
        failures += 1
        print(f"{document}: no question is called {name}")
    print(f"{count} questions, {failures} failed, {len(reasons)} not judged")
    for reason in reasons:
        print(f"skipped: {reason}")
    return 1 if failures or count == 0 else SKIPPED if reasons else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:3]))
