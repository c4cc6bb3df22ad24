"""Queries over the live classes of this machine."""
# SPDX-License-Identifier: Apache-2.0
import csv
import io
import json
import os
import pwd
import socket
import subprocess
import sys
import unittest

import toolcase
from toolcase import MODEL, ToolCase

QUALIFIERS = ("Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);\n"
              "Qualifier Override : string = null, Scope(property, method, reference), "
              "Flavor(EnableOverride, Restricted);\n")


# A world of its own in which the kernel's files are not there; root needs no world of users for it, which a changed root
# would refuse.
WITHOUT_PROC = ["unshare", *([] if os.geteuid() == 0 else ["--map-root-user"]), "--mount", "sh", "-c", 'mount -t tmpfs none /proc && exec "$@"', "sh"]


def can_hide_proc():
    try:
        return subprocess.run([*WITHOUT_PROC, "true"], capture_output=True, check=False).returncode == 0
    except FileNotFoundError:
        return False


@unittest.skipIf(os.environ.get("QORQL_NEEDS_PROC"), "the sanitizers of this build read /proc themselves")
@unittest.skipUnless(can_hide_proc(), "this system does not let a test hide /proc")
class ProviderFailure(ToolCase):
    def blind(self, *arguments):
        return toolcase.Result(subprocess.run([*WITHOUT_PROC, toolcase.TOOL, *arguments], capture_output=True,
                                              timeout=60, check=False))

    def test_ends_with_status_3_and_its_message(self):
        for query, message in (("SELECT Handle FROM Linux_Process", "The process table cannot be read"),
                               ("SELECT Name FROM Linux_FileSystem", "The table of mounts cannot be read"),
                               ("SELECT DeviceID FROM Linux_Processor", "The processors cannot be listed")):
            with self.subTest(query=query):
                result = self.blind("-o", "csv", query)
                self.assertEqual(result.out, "")
                self.refused(result, 3, f"qorql: error: {message} (CIM status 1)")

    def test_also_of_the_command_that_shows_instances(self):
        result = self.blind("instances", "Linux_Process")
        self.assertEqual(result.out, "")
        self.refused(result, 3, "qorql: error: The process table cannot be read (CIM status 1)")

    def test_the_log_tells_why(self):
        result = self.blind("--log", "info", "SELECT Handle FROM Linux_Process")
        self.assertIn("qorql: info: Providers: Cannot read /proc: No such file or directory\n", result.err)

    def test_a_property_that_cannot_be_read_is_null(self):
        result = self.blind("-o", "json", "SELECT HostName, NumberOfProcesses, TotalVisibleMemorySize, LoadAverage, "
                                          "LastBootUpTime FROM Linux_OperatingSystem")
        self.assertEqual(list(json.loads(result.out)[0].values()), [os.uname().nodename] + [None] * 4)
        self.assertEqual(result.status, 0)
        self.assertRegex(result.err, r"\Aqorql: warning: Cannot read /proc[^:]*: No such file or directory, and 3 more\n\Z")


def some_mount():
    """The root, or where it is no mount, as in a changed root, the largest that there is."""
    with open("/proc/self/mounts", encoding="utf-8") as table:
        targets = [line.split()[1] for line in table]
    plain = [target for target in targets if "\\" not in target and os.access(target, os.X_OK)]
    return "/" if "/" in targets else max(plain, key=lambda target: os.statvfs(target).f_blocks)


class Live(ToolCase):
    def rows(self, query, *arguments):
        result = self.run_tool("-o", "json", *arguments, query)
        self.assertEqual((result.status, toolcase.UNSEEN.sub("", result.err)), (0, ""))
        return json.loads(result.out)

    def test_finds_its_caller(self):
        rows = self.rows(f"SELECT Handle, Name, ParentProcessID FROM Linux_Process WHERE Handle = '{os.getpid()}'")
        self.assertEqual(len(rows), 1)
        self.assertEqual(rows[0]["Handle"], str(os.getpid()))
        self.assertEqual(rows[0]["ParentProcessID"], os.getppid())
        with open("/proc/self/comm", encoding="utf-8") as comm:
            self.assertEqual(rows[0]["Name"], comm.read().rstrip("\n"))

    def test_its_name_by_every_property_that_shows_it(self):
        rows = self.rows(f"SELECT Caption, Name, ElementName, State FROM Linux_Process WHERE Handle = '{os.getpid()}'")
        with open("/proc/self/comm", encoding="utf-8") as comm:
            name = comm.read().rstrip("\n")
        self.assertEqual([rows[0]["Caption"], rows[0]["Name"], rows[0]["ElementName"]], [name] * 3)

    def test_finds_it_as_an_instance_of_the_base_class(self):
        rows = self.rows(f"SELECT Handle FROM CIM_Process WHERE Handle = '{os.getpid()}'")
        self.assertEqual(rows, [{"Handle": str(os.getpid())}])

    def test_finds_arguments_of_a_child(self):
        with subprocess.Popen([sys.executable, "-c", "input()", "größer, \"quoted\""], stdin=subprocess.PIPE) as child:
            rows = self.rows(f"SELECT CommandLine, ParentProcessID FROM Linux_Process WHERE ProcessID = {child.pid}")
            child.communicate(b"\n")
        self.assertEqual(rows[0]["ParentProcessID"], os.getpid())
        self.assertTrue(rows[0]["CommandLine"].endswith(" -c input() größer, \"quoted\""), rows)

    def test_what_ps_tells_of_a_process(self):
        columns = "ppid=,uid=,gid=,tty=,nlwp="
        said = subprocess.run(["ps", "-o", columns, "-p", str(os.getpid())], capture_output=True, text=True, check=True)
        row = self.rows("SELECT ParentProcessID, UserID, GroupID, Terminal, ThreadCount FROM Linux_Process "
                        f"WHERE Handle = '{os.getpid()}'")[0]
        found = [row["ParentProcessID"], row["UserID"], row["GroupID"], row["Terminal"] or "?", row["ThreadCount"]]
        self.assertEqual([str(value) for value in found], said.stdout.split())

    def test_where_a_process_is_and_what_it_holds(self):
        with subprocess.Popen(["sleep", "60"], cwd="/", stdin=subprocess.DEVNULL) as child:
            rows = self.rows("SELECT WorkingDirectory, ParentName, OpenFileCount, ControlGroup, SwapSize, ExecutableExists, "
                             f"ElapsedTime FROM Linux_Process WHERE Handle = '{child.pid}'")
            files = len(os.listdir(f"/proc/{child.pid}/fd"))
            with open(f"/proc/{child.pid}/cgroup", encoding="utf-8") as groups:
                paths = [line.rstrip("\n").split(":", 2)[2] for line in groups]
            child.kill()
        with open("/proc/self/comm", encoding="utf-8") as comm:
            name = comm.read().rstrip("\n")
        self.assertEqual(len(rows), 1)
        row = rows[0]
        self.assertEqual((row["WorkingDirectory"], row["ParentName"], row["OpenFileCount"]), ("/", name, files))
        self.assertIn(row["ControlGroup"], paths)
        self.assertEqual((row["SwapSize"], row["ExecutableExists"]), (0, True))
        self.assertLess(row["ElapsedTime"], 60)

    def test_a_connection_and_its_process(self):
        with socket.socket() as waiting, socket.socket() as client:
            waiting.bind(("127.0.0.1", 0))
            waiting.listen()
            client.connect(waiting.getsockname())
            port = waiting.getsockname()[1]
            rows = self.rows("SELECT State, LocalPort, IsRemote, ProcessID FROM Linux_Socket "
                             f"WHERE RemotePort = {port} AND RemoteAddress = '127.0.0.1'")
            # Another test's server may have had that port a moment ago.
            rows = [row for row in rows if row["State"] != "TimeWait"]
            self.assertEqual(rows, [{"State": "Established", "LocalPort": client.getsockname()[1], "IsRemote": False,
                                     "ProcessID": os.getpid()}])
            rows = self.rows(f"SELECT Name FROM CIM_ProtocolEndpoint AS E WHERE E ISA Linux_Socket AND E.Name = 'tcp:127.0.0.1:{port}'")
            self.assertEqual(len(rows), 1)

    def test_descriptions_are_there_where_they_are_shown(self):
        result = self.run_tool("class", "Linux_Login")
        self.assertIn('Description("When the login began.")', result.out)

    def test_order_and_first(self):
        rows = self.rows("SELECT FIRST 3 Handle, WorkingSetSize FROM Linux_Process ORDER BY WorkingSetSize DESC")
        sizes = [row["WorkingSetSize"] for row in rows]
        self.assertEqual(len(sizes), 3)
        self.assertEqual(sizes, sorted(sizes, reverse=True))
        self.assertGreater(sizes[0], 0)

    def test_a_file_system(self):
        mount = some_mount()
        rows = self.rows("SELECT Name, FileSystemSize, AvailableSpace, ReadOnly FROM Linux_FileSystem "
                         f"WHERE Name = '{mount}'")
        state = os.statvfs(mount)
        self.assertEqual(len(rows), 1)
        self.assertEqual(rows[0]["FileSystemSize"], state.f_blocks * state.f_frsize)
        self.assertEqual(rows[0]["ReadOnly"], bool(state.f_flag & os.ST_RDONLY))

    def test_operating_system(self):
        rows = self.rows("SELECT KernelRelease, HostName, LoadAverage, NumberOfProcesses FROM Linux_OperatingSystem")
        self.assertEqual(len(rows), 1)
        self.assertEqual(rows[0]["KernelRelease"], os.uname().release)
        self.assertEqual(rows[0]["HostName"], os.uname().nodename)
        self.assertEqual(len(rows[0]["LoadAverage"]), 3)
        self.assertGreater(rows[0]["NumberOfProcesses"], 0)

    def test_every_property_of_every_class(self):
        for name in ("Linux_Process", "Linux_FileSystem", "Linux_OperatingSystem", "Linux_Processor",
                     "Linux_NetworkPort", "Linux_User", "Linux_Group", "Linux_ComputerSystem", "Linux_ProcessOwner", "Linux_GroupMember"):
            with self.subTest(name=name):
                result = self.run_tool("-o", "csv", f"SELECT * FROM {name}")
                self.assertEqual((result.status, toolcase.UNSEEN.sub("", result.err)), (0, ""))
                rows = list(csv.reader(io.StringIO(result.out)))
                self.assertGreater(len(rows), 1)
                self.assertEqual({len(row) for row in rows}, {len(rows[0])})

    def test_a_process_and_its_port(self):
        with socket.socket() as waiting:
            waiting.bind(("127.0.0.1", 0))
            waiting.listen()
            port = waiting.getsockname()[1]
            rows = self.rows("SELECT P.Handle, L.PortNumber FROM Linux_Process AS P, Linux_ListeningPort AS L "
                             f"WHERE Linux_ProcessPort = P AND Linux_ProcessPort = L AND P.Handle = '{os.getpid()}'")
            self.assertEqual(rows, [{"Handle": str(os.getpid()), "PortNumber": port}])
            rows = self.rows("SELECT P.Handle AS H FROM Linux_Process AS P, Linux_ListeningPort AS L "
                             f"WHERE P.ProcessID = L.ProcessID AND L.PortNumber = {port} AND L.Protocol = 'tcp'")
            self.assertEqual(rows, [{"H": str(os.getpid())}])

    def test_a_process_and_its_user(self):
        rows = self.rows("SELECT U.UserNumber, U.HomeFolder FROM Linux_Process AS P, Linux_User AS U "
                         f"WHERE Linux_ProcessOwner = P AND Linux_ProcessOwner = U AND P.Handle = '{os.getpid()}'")
        user = pwd.getpwuid(os.geteuid())
        self.assertEqual(rows, [{"UserNumber": user.pw_uid, "HomeFolder": user.pw_dir}])

    def test_join_with_stored_instances(self):
        path = self.write("watch.mof", QUALIFIERS + "class Watch { [Key] string Program; string Why; };\n"
                                                    f'instance of Watch {{ Program = "{os.getpid()}"; Why = "me"; }};\n')
        rows = self.rows("SELECT P.Handle, W.Why FROM Watch AS W, Linux_Process AS P WHERE P.Handle = W.Program",
                         "-m", path)
        self.assertEqual([list(row.values()) for row in rows], [[str(os.getpid()), "me"]])

    def test_other_namespace(self):
        rows = self.rows(f"SELECT OBJECTPATH(P) AS O FROM Linux_Process AS P WHERE Handle = '{os.getpid()}'",
                         "-n", "root/live")
        self.assertIn("root/live:Linux_Process.CreationClassName=", rows[0]["O"])
        self.assertIn(f',Handle="{os.getpid()}",', rows[0]["O"])

    def test_without_live_classes_there_are_none(self):
        result = self.run_tool("--no-live", "-m", MODEL, "SELECT Handle FROM Linux_Process")
        self.assertEqual((result.status, result.out), (1, ""))

    def test_a_fuller_schema_takes_the_place_of_the_short_one(self):
        path = self.write("cim.mof", QUALIFIERS + (
            "class CIM_ManagedElement { string Caption; };\n"
            "class CIM_Process : CIM_ManagedElement {\n"
            "  [Key] string CSName; [Key] string Handle; string Name; uint64 WorkingSetSize; string Extra;\n};\n"))
        rows = self.rows(f"SELECT Handle, CSName, WorkingSetSize, Extra FROM Linux_Process "
                         f"WHERE Handle = '{os.getpid()}'", "-m", path)
        self.assertEqual(rows[0]["CSName"], os.uname().nodename)
        self.assertGreater(rows[0]["WorkingSetSize"], 0)
        self.assertIsNone(rows[0]["Extra"])

    def test_live_classes_that_do_not_fit_are_left_out(self):
        path = self.write("odd.mof", QUALIFIERS + (
            "class CIM_LogicalElement { [Key] uint32 Name; };\ninstance of CIM_LogicalElement { Name = 5; };\n"))
        result = self.run_tool("-m", path, "-o", "csv", "SELECT Name FROM CIM_LogicalElement")
        self.assertEqual((result.status, result.out), (0, "Name\n5\n"))
        self.assertRegex(result.err, r"\Aqorql: warning: Without CIM_\w+(, \w+)* and \d+ more, which cannot be "
                                     r"combined with the MOF files: class CIM_\w+: key .+\n\Z")
        quiet = self.run_tool("--quiet", "-m", path, "-o", "csv", "SELECT Name FROM CIM_LogicalElement")
        self.assertEqual((quiet.status, quiet.out, quiet.err), (0, "Name\n5\n", ""))

    def test_live_classes_beside_those_that_do_not_fit(self):
        path = self.write("odd.mof", QUALIFIERS + (
            "class CIM_Process { [Key] string Handle; string Name; };\ninstance of CIM_Process { Handle = \"stored\"; };\n"))
        warning = ("qorql: warning: Without Linux_ProcessOwner, Linux_ProcessPort, "
                   "which cannot be combined with the MOF files: Linux_ProcessOwner refers to Linux_Process, which is not derived "
                   "from CIM_ManagedElement\n")
        result = self.run_tool("-m", path, "-o", "csv", f"SELECT Handle FROM CIM_Process WHERE Handle = '{os.getpid()}'")
        self.assertEqual((result.status, result.out, result.err), (0, f"Handle\n{os.getpid()}\n", warning))
        names = self.run_tool("classes", "-m", path, "Linux_*").out.split()
        self.assertIn("Linux_User", names)
        self.assertIn("Linux_GroupMember", names)
        self.assertNotIn("Linux_ProcessOwner", names)
        users = self.run_tool("--quiet", "-m", path, "-o", "csv",
                              "SELECT G.Name AS G, U.Name AS U FROM Linux_Group AS G, Linux_User AS U "
                              "WHERE Linux_GroupMember = G AND Linux_GroupMember = U AND U.UserNumber = 0")
        self.assertIn("root,root\n", users.out)

    def test_only_what_a_query_names_is_read(self):
        result = self.run_tool("-o", "csv", "--log", "trace", "--stats",
                               f"SELECT Name FROM Linux_Process WHERE Handle = '{os.getpid()}'")
        self.assertEqual(result.status, 0)
        self.assertNotIn("Cannot read", result.err)
        self.assertIn("enumerateInstances=1 ", result.err)


if __name__ == "__main__":
    toolcase.main()
