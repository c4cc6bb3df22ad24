"""What cannot be seen is told: sources of live classes, namespaces, the columns of an empty result."""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import shutil
import socket
import subprocess
import unittest

import toolcase
from toolcase import MODEL, ToolCase

NOBODY = 65534


def hiding(*folders):
    """A command that runs another one where these folders are empty."""
    mounts = " && ".join(f"mount -t tmpfs none {folder}" for folder in folders)
    return ["unshare", "--map-root-user", "--mount", "sh", "-c", mounts + ' && exec "$@"', "sh"]


def can_hide():
    try:
        return subprocess.run([*hiding("/run"), "true"], capture_output=True, check=False).returncode == 0
    except FileNotFoundError:
        return False


def can_be_nobody():
    return os.geteuid() == 0 and os.access("/proc/1/fd", os.R_OK)


@unittest.skipUnless(can_hide(), "this system does not let a test hide folders")
class MissingSources(ToolCase):
    def without(self, folder, query):
        return toolcase.Result(subprocess.run([*hiding(folder), toolcase.TOOL, "-o", "csv", query], capture_output=True,
                                              timeout=60, check=False))

    def test_services_without_systemd(self):
        for query in ("SELECT Name FROM Linux_Service", "SELECT Service FROM Linux_ServiceProcess"):
            result = self.without("/run", query)
            self.assertEqual(result.out, "")
            self.refused(result, 3, "qorql: error: systemd does not run here, which lists the services (CIM status 7)")

    def test_a_superclass_goes_without_them_and_says_so(self):
        result = self.without("/run", "SELECT FIRST 1 s.Name FROM CIM_EnabledLogicalElement AS s")
        self.assertEqual((result.status, result.out.count("\n")), (0, 2))
        self.assertIn("qorql: warning: systemd does not run here, which lists the services\n", result.err)

    def test_a_superclass_that_has_nothing_else_fails_as_they_do(self):
        result = self.without("/run", "SELECT s.Name FROM CIM_Service AS s")
        self.assertEqual(result.out, "")
        self.refused(result, 3, "qorql: error: systemd does not run here, which lists the services (CIM status 7)")

    def test_devices_and_counters_without_sysfs(self):
        result = self.without("/sys", "SELECT DeviceID FROM Linux_BlockDevice")
        self.assertEqual(result.out, "")
        self.refused(result, 3, "qorql: error: The block devices cannot be listed (CIM status 1)")
        result = self.without("/sys", "SELECT DeviceID, BytesReceived FROM Linux_NetworkPort")
        self.assertEqual((result.status, result.err),
                         (0, "qorql: warning: Cannot read /sys/class/net: No such file or directory\n"))
        self.succeed(self.without("/sys", "SELECT DeviceID FROM Linux_NetworkPort"))

    def test_users_and_groups_without_their_files(self):
        for query, what in (("SELECT Name FROM Linux_User", "user"), ("SELECT Name FROM Linux_Group", "group")):
            result = self.without("/etc", query)
            self.assertEqual((result.status, result.out), (3, ""), result.err)
            self.assertEqual(result.err, f"qorql: error: The {what} database cannot be read (CIM status 1)\n")

    def test_facts_of_the_system_without_their_files(self):
        result = self.without("/etc", "SELECT Version FROM Linux_OperatingSystem")
        self.assertEqual((result.status, result.err),
                         (0, "qorql: warning: Cannot read /etc/os-release: No such file or directory\n"))
        self.succeed(self.without("/etc", "SELECT KernelName FROM Linux_OperatingSystem"))


@unittest.skipUnless(os.access("/var/lib/dpkg/status", os.R_OK), "this system has no list of packages")
class MissingLibrary(ToolCase):
    """The library that reads the packages does not lie beside the others."""

    def setUp(self):
        super().setUp()
        linked = subprocess.run(["ldd", toolcase.TOOL], capture_output=True, text=True, check=True).stdout
        libraries = re.findall(r"=> (\S*/libqorql\S+)", linked)
        if not libraries:
            self.skipTest("this tool has its libraries built in")
        for library in libraries:
            shutil.copy(library, self.folder)
        self.env = dict(os.environ, LD_LIBRARY_PATH=self.folder)

    def test_packages_have_no_source(self):
        result = self.run_tool("SELECT Name FROM Linux_Package", env=self.env)
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertRegex(result.err, r"\Aqorql: error: The packages cannot be listed: .*libqorqlapt\.so: [^\n]+ \(CIM status 7\)\n\Z")

    def test_a_superclass_goes_without_them_and_says_so(self):
        result = self.run_tool("-o", "csv", "SELECT Caption FROM CIM_ManagedElement", env=self.env)
        self.assertEqual(result.status, 0, result.err)
        self.assertIn("\nroot\n", result.out)
        self.assertRegex(result.err, r"(?m)^qorql: warning: The packages cannot be listed: .*libqorqlapt\.so: ")

    def test_a_watch_goes_without_them_and_says_so(self):
        result = self.run_tool("watch", "--count", "1", "SELECT * FROM CIM_InstCreation", env=self.env)
        self.assertEqual(result.status, 0, result.err)
        self.assertRegex(result.err, r"(?m)^qorql: warning: .*The packages cannot be listed: .*libqorqlapt\.so: ")


@unittest.skipUnless(can_hide() and os.path.exists("/var/lib/dpkg/status"), "this system does not let a test change its packages")
class FailingSource(ToolCase):
    """A list of packages that is none, in a world of its own."""

    FAULT = r"(?m)^qorql: error: Linux_Package: The packages cannot be listed: "

    def broken(self, *arguments):
        path = self.write("status", "Package bash\nthis is no list\n")
        place = ["unshare", "--map-root-user", "--mount", "sh", "-c", f"mount --bind {path} /var/lib/dpkg/status && exec " + '"$@"', "sh"]
        return toolcase.Result(subprocess.run([*place, toolcase.TOOL, *arguments], capture_output=True, timeout=60, check=False))

    def test_the_contents_of_the_other_classes_are_told(self):
        for quiet in ([], ["--quiet"]):
            result = self.broken("contents", *quiet, "-o", "csv")
            self.assertEqual(result.status, 3, result.err)
            self.assertRegex(result.err, self.FAULT)
            self.assertEqual(len(re.findall(self.FAULT, result.err)), 1)
            for name in ("Linux_User", "Linux_Process", "Linux_OperatingSystem"):
                self.assertRegex(result.out, rf"(?m)^root/cimv2,{name},\d+$")
            self.assertNotIn("Linux_Package", result.out)
            self.assertEqual(len(result.err.splitlines()), len(set(result.err.splitlines())), result.err)

    def test_the_instances_of_the_other_classes_are_printed(self):
        result = self.broken("instances", "CIM_[LS]o*")
        self.assertEqual((result.status, len(re.findall(self.FAULT, result.err))), (3, 1), result.err)
        result = self.broken("instances", "CIM_ManagedEl*")
        self.assertEqual((result.status, len(re.findall(self.FAULT, result.err))), (3, 1), result.err)
        for name in ("Linux_User", "Linux_OperatingSystem"):
            self.assertIn(f"instance of {name} {{", result.out)

    def test_a_class_alone_fails(self):
        result = self.broken("instances", "Linux_Package")
        self.assertEqual((result.status, result.out), (3, ""))


# A world of its own in which a user sees no process of others. Its first process stays the superuser's.
HIDING_PROCESSES = ["unshare", "--mount", "--pid", "--fork", "sh", "-c", "mount -t proc -o hidepid=2 proc /proc && "
                    f'setpriv --reuid {NOBODY} --regid {NOBODY} --clear-groups "$@"; exit $?', "sh"]


def can_hide_processes():
    try:
        seen = subprocess.run([*HIDING_PROCESSES, "sh", "-c", "ls -d /proc/1 || echo hidden"], capture_output=True, text=True, check=False)
        return seen.stdout == "hidden\n"
    except FileNotFoundError:
        return False


@unittest.skipUnless(can_hide_processes(), "this system does not let a test hide processes")
class HiddenProcesses(ToolCase):
    HIDDEN = "qorql: warning: Cannot read the processes of other users: No such file or directory\n"

    def blind(self, query):
        result = toolcase.Result(subprocess.run([*HIDING_PROCESSES, toolcase.TOOL, "-o", "csv", query], capture_output=True,
                                                timeout=60, check=False, cwd="/"))
        if "ermission denied" in result.err and not result.out:
            self.skipTest("the tool lies where another user cannot run it")
        return result

    def test_ports_show_without_their_processes(self):
        with socket.create_server(("127.0.0.1", 0)) as server:
            port = server.getsockname()[1]
            result = self.blind(f"SELECT PortNumber, ProcessID FROM Linux_ListeningPort WHERE PortNumber = {port}")
            self.assertEqual((result.status, result.out, result.err), (0, f"PortNumber,ProcessID\n{port},\n", self.HIDDEN))
            result = self.blind("SELECT Antecedent FROM Linux_ProcessPort")
            self.assertEqual((result.status, result.out, result.err), (0, "Antecedent\n", self.HIDDEN))

    def test_what_both_classes_of_a_join_miss_is_told_once(self):
        result = self.blind("SELECT P.ParentProcessID, U.UserNumber FROM Linux_Process AS P, Linux_User AS U "
                            "WHERE Linux_ProcessOwner = P AND Linux_ProcessOwner = U")
        self.assertEqual((result.status, result.err), (0, self.HIDDEN))
        self.assertEqual(len(result.out.splitlines()), 2)

    def test_processes_are_counted_without_them(self):
        for query, told in (("SELECT NumberOfProcesses FROM Linux_OperatingSystem", "NumberOfProcesses\n1\n"),
                            ("SELECT COUNT(Handle) AS N FROM Linux_Process", "N\n1\n"),
                            ("SELECT COUNT(Antecedent) AS N FROM Linux_ProcessOwner", "N\n1\n"),
                            ("SELECT ProcessCount FROM Linux_User WHERE UserNumber = 0", "ProcessCount\n0\n")):
            with self.subTest(query=query):
                result = self.blind(query)
                self.assertEqual((result.status, result.out, result.err), (0, told, self.HIDDEN))


@unittest.skipUnless(can_hide(), "this system does not let a test hide folders")
class Accounts(ToolCase):
    def test_an_account_without_a_shell_has_the_usual_one(self):
        path = self.write("passwd", "root:x:0:0::/root:/bin/bash\nplain:x:7:7:::\nremote:x:8:8:::/usr/bin/rsync-shell\n"
                                    "sync:x:4:4:::/bin/sync\nnone:x:9:9:::/usr/sbin/nologin\noff:x:10:10:::/bin/false\n")
        made_up = ["unshare", "--map-root-user", "--mount", "sh", "-c", f"mount --bind {path} /etc/passwd && exec " + '"$@"', "sh"]
        query = ("SELECT Name, Shell FROM Linux_User "
                 "WHERE NOT Shell LIKE '/nologin' AND NOT Shell LIKE '/false' AND Shell <> '/bin/sync'")
        result = toolcase.Result(subprocess.run([*made_up, toolcase.TOOL, "-o", "csv", query], capture_output=True, timeout=60,
                                                check=False))
        self.assertEqual(self.succeed(result), "Name,Shell\nroot,/bin/bash\nplain,/bin/sh\nremote,/usr/bin/rsync-shell\n")


@unittest.skipUnless(can_be_nobody(), "only the superuser can run the tool as another user")
class OrdinaryUsers(ToolCase):
    def as_nobody(self, *arguments):
        try:
            done = subprocess.run([toolcase.TOOL, *arguments], capture_output=True, timeout=60, check=False, user=NOBODY,
                                  group=NOBODY, extra_groups=[], cwd="/")
        except PermissionError:
            self.skipTest("the tool lies where another user cannot run it")
        return toolcase.Result(done)

    def test_ports_of_others_show_without_their_processes(self):
        with socket.create_server(("127.0.0.1", 0)) as server:
            port = server.getsockname()[1]
            query = f"SELECT PortNumber, ProcessID FROM Linux_ListeningPort WHERE PortNumber = {port}"
            seen = toolcase.Result(subprocess.run([toolcase.TOOL, "-o", "csv", query], capture_output=True, check=False))
            self.assertIn(f"\n{port},{os.getpid()}\n", seen.out)
            result = self.as_nobody("-o", "csv", query)
            self.assertEqual((result.status, result.out), (0, f"PortNumber,ProcessID\n{port},\n"))
            self.assertRegex(result.err, r"\Aqorql: warning: Cannot read /proc/\d+/fd: Permission denied(, and \d+ more)?\n\Z")
            self.succeed(self.as_nobody("-o", "csv", f"SELECT PortNumber FROM Linux_ListeningPort WHERE PortNumber = {port}"))

    # As in a container: what others have open is listed, and where it leads to is hidden.
    def test_ports_of_processes_that_hide_what_they_have_open(self):
        lesser = ["setpriv", "--bounding-set=-sys_ptrace,-chown"]
        if not shutil.which("setpriv") or subprocess.run([*lesser, "true"], capture_output=True, check=False).returncode != 0:
            self.skipTest("no program of this system takes rights away")
        with socket.create_server(("127.0.0.1", 0)) as server:
            port = server.getsockname()[1]
            query = f"SELECT PortNumber, ProcessID FROM Linux_ListeningPort WHERE PortNumber = {port}"
            result = toolcase.Result(subprocess.run([*lesser, toolcase.TOOL, "-o", "csv", query], capture_output=True, check=False))
            self.assertEqual((result.status, result.out), (0, f"PortNumber,ProcessID\n{port},\n"))
            self.assertRegex(result.err, r"\Aqorql: warning: Cannot read /proc/\d+/fd: Permission denied(, and \d+ more)?\n\Z")

    def test_programs_of_others_are_null(self):
        result = self.as_nobody("-o", "csv", f"SELECT Handle, Executable FROM Linux_Process WHERE Handle = '{os.getpid()}'")
        self.assertEqual((result.status, result.out), (0, f"Handle,Executable\n{os.getpid()},\n"))
        self.assertRegex(result.err, r"\Aqorql: warning: Cannot read /proc/\d+/exe: Permission denied(, and \d+ more)?\n\Z")


class Namespaces(ToolCase):
    def test_a_namespace_that_no_mof_file_speaks_of(self):
        path = self.write("spaces.mof", '#pragma namespace("root/one")\nclass A { [Key] uint8 K; };\n'
                                        '#pragma namespace("root/two")\nclass B { [Key] uint8 K; };\n')
        for command in (["SELECT K FROM A"], ["explain", "SELECT K FROM A"], ["classes"]):
            words = [*command[:-1], "-m", path, "-n", "root/typo", command[-1]] if command != ["classes"] else [
                "classes", "-m", path, "-n", "root/typo"]
            result = self.run_tool(*words)
            self.assertEqual(result.out, "")
            self.refused(result, 3, "qorql: error: there is no namespace root/typo; classes are declared in root/one, root/two")
        self.succeed(self.run_tool("--no-live", "-m", path, "-n", "ROOT/two", "-o", "csv", "SELECT K FROM B"))

    def test_a_namespace_where_nothing_is(self):
        self.refused(self.run_tool("--no-live", "-n", "root/typo", "SELECT K FROM A"), 3,
                     "qorql: error: there is no namespace root/typo: nothing declares a class")


class EmptyResults(ToolCase):
    COLUMNS = "Id,Name,Size,Balance,Weight,Sold,Tags,Codes,Made,Grade"

    def test_a_star_has_its_columns(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", "SELECT * FROM Shop_Empty")), "Id,Name\n")
        self.assertEqual(self.succeed(self.model("-o", "csv", "SELECT * FROM Shop_Item WHERE Id = 99")), self.COLUMNS + "\n")
        self.assertEqual(self.succeed(self.model("-o", "csv", "SELECT i.* FROM Shop_Item AS i WHERE Id > 99")),
                         self.COLUMNS + "\n")
        self.assertEqual(re.split(r"\s+", self.succeed(self.model("SELECT * FROM Shop_Empty")).splitlines()[0].strip()),
                         ["Id", "Name"])
        self.assertEqual(self.succeed(self.model("-o", "json", "SELECT * FROM Shop_Empty")).strip(), "[]")

    def test_names_of_two_classes_stay_apart(self):
        out = self.succeed(self.run_tool("--no-live", "-m", MODEL, "-o", "csv",
                                         "SELECT * FROM Shop_Item AS i, Shop_Empty AS e WHERE i.Id = e.Id"))
        self.assertEqual(len(out.splitlines()), 1)
        self.assertEqual(len(out.split(",")), 12)


if __name__ == "__main__":
    toolcase.main()
