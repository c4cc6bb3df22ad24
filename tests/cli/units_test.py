"""Linux_Service, Linux_Timer and Linux_ServiceProcess over a systemd that the test starts, judged by systemctl.

It runs as a manager of a user in namespaces and a control group of its own, with units that the test makes up, so that
nothing of the machine is touched: what it starts ends with it.
"""
# SPDX-License-Identifier: Apache-2.0
import json
import os
import shutil
import subprocess
import unittest

import toolcase
from toolcase import ToolCase

SYSTEMD = "/lib/systemd/systemd"
GROUPS = "/sys/fs/cgroup/systemd"
PLACE = ["unshare", "--cgroup", "--pid", "--fork", "--kill-child", "--mount", "sh", "-c"]

UNITS = {
    "good.service": "[Unit]\nDescription=Runs all the time\n[Service]\nExecStart=/bin/sleep 1000\n"
                    "[Install]\nWantedBy=default.target\n",
    "bad.service": "[Unit]\nDescription=Fails at once\n[Service]\nExecStart=/bin/false\n",
    "once.service": "[Unit]\nDescription=Is done\n[Service]\nType=oneshot\nRemainAfterExit=yes\nExecStart=/bin/true\n",
    "idle.service": "[Unit]\nDescription=Never started\n[Service]\nExecStart=/bin/true\n",
    "daily.timer": "[Unit]\nDescription=Every day\n[Timer]\nOnCalendar=daily\nOnCalendar=Mon 04:30\nUnit=idle.service\n",
    "tick.timer": "[Unit]\nDescription=After the start\n[Timer]\nOnActiveSec=100ms\nAccuracySec=1ms\nUnit=once.service\n",
    "off.timer": "[Unit]\nDescription=Not started\n[Timer]\nOnCalendar=hourly\nUnit=idle.service\n",
    # systemd speaks over a bus that it has started itself.
    "dbus.socket": "[Socket]\nListenStream=/run/user/0/bus\n",
    "dbus.service": "[Unit]\nRequires=dbus.socket\n[Service]\nType=notify\nNotifyAccess=main\n"
                    "ExecStart=/usr/bin/dbus-daemon --session --address=systemd: --nofork --nopidfile --systemd-activation\n",
    **{f"{name}.target": "[Unit]\n" for name in ("default", "basic", "sockets", "timers", "paths", "shutdown")},
}

WORLD = f"""
set -e
mount -t proc proc /proc
mount -t tmpfs none /sys/fs/cgroup
mkdir {GROUPS}
mount -t cgroup -o none,name=systemd cgroup {GROUPS}
mount -t tmpfs none /run
mkdir -p /run/systemd/system /run/user/0
cp -r "$1" /run/units
export TZ=UTC LC_ALL=C XDG_RUNTIME_DIR=/run/user/0 SYSTEMD_UNIT_PATH=/run/units SYSTEMD_LOG_TARGET=null
export DBUS_SESSION_BUS_ADDRESS=unix:path=/run/user/0/bus DBUS_SYSTEM_BUS_ADDRESS=unix:path=/run/user/0/bus
{SYSTEMD} --user >/dev/null 2>&1 &
for n in $(seq 100); do systemctl --user is-active -q default.target 2>/dev/null && break; sleep 0.1; done
systemctl --user start dbus.socket dbus.service good.service once.service daily.timer tick.timer
systemctl --user start bad.service; systemctl --user show -p Id idle.service off.timer >/dev/null
for n in $(seq 100); do systemctl --user is-failed -q bad.service && break; sleep 0.1; done
sleep 0.3
"""


class OwnGroup:
    """A control group that the commands of a test run in."""

    def __enter__(self):
        self.path = f"{GROUPS}/qorql-test-{os.getpid()}"
        os.mkdir(self.path)
        return self

    def run(self, script, *arguments):
        enter = f'echo $$ > {self.path}/cgroup.procs && exec "$@"'
        return subprocess.run(["sh", "-c", enter, "sh", *PLACE, script, "sh", *arguments], capture_output=True, text=True,
                              timeout=60, check=False)

    def __exit__(self, *_):
        subprocess.run(["sh", "-c", "for n in $(seq 50); do find \"$1\" -depth -type d -exec rmdir {} + 2>/dev/null && break; "
                        "sleep 0.1; done", "sh", self.path], check=False)


def can_start():
    """Whether a systemd of its own starts here, which takes a control group that the test may make. Where systemd runs
    anyway, the test of the questions about this machine asks that one."""
    programs = all(shutil.which(name) for name in ("unshare", "systemctl", "dbus-daemon", SYSTEMD))
    if os.path.exists("/run/systemd/system") or os.environ.get("QORQL_NEEDS_PROC"):
        return False
    if not programs or os.geteuid() != 0 or not os.path.exists(f"{GROUPS}/cgroup.procs"):
        return False
    try:
        with OwnGroup() as group:
            return group.run(f"mount -t tmpfs none /sys/fs/cgroup && mkdir {GROUPS} && "
                             f"mount -t cgroup -o none,name=systemd cgroup {GROUPS}").returncode == 0
    except OSError:
        return False


@unittest.skipUnless(can_start(), "this system does not let a test start a systemd of its own")
class Units(ToolCase):
    def setUp(self):
        super().setUp()
        for name, text in UNITS.items():
            self.write("units/" + name, text)

    def answers(self, *commands):
        """What each of these commands prints in that world."""
        script = WORLD + "".join(f"{command}\necho; echo ----\n" for command in commands)
        with OwnGroup() as group:
            ran = group.run(script, os.path.join(self.folder, "units"))
        self.assertEqual((ran.returncode, ran.stderr), (0, ""), ran.stdout)
        return ran.stdout.split("\n----\n")[:-1]

    def shown(self, text):
        """What systemctl shows of units, as dictionaries by name."""
        units = (dict(line.split("=", 1) for line in part.splitlines()) for part in text.strip().split("\n\n"))
        return {unit["Id"]: unit for unit in units if unit["LoadState"] != "not-found"}

    def test_services(self):
        keys = ("Id", "Description", "LoadState", "ActiveState", "SubState", "UnitFileState")
        said, told = self.answers(
            f'{toolcase.TOOL} -o json "SELECT Name, Description, LoadState, ActiveState, SubState, UnitFileState, MainProcessID, '
            'Started FROM Linux_Service"',
            f"systemctl --user show -p {','.join(keys)},MainPID '*.service' idle.service")
        units = self.shown(told)
        self.assertLessEqual({"good.service", "bad.service", "once.service"}, set(units))
        rows = json.loads(said)
        self.assertLessEqual({"good.service", "bad.service", "once.service"}, {row["Name"] for row in rows})
        for row in rows:
            unit = units[row["Name"]]
            self.assertEqual([row["Name"], *(row[key] for key in keys[1:])], [unit[key] for key in keys])
            self.assertEqual(row["MainProcessID"] or 0, int(unit["MainPID"]))
            self.assertEqual(row["Started"], unit["ActiveState"] == "active")
        self.assertEqual({row["Name"]: row["ActiveState"] for row in rows}["bad.service"], "failed")

    def test_timers(self):
        said, told = self.answers(
            f'{toolcase.TOOL} -o json "SELECT Name, Description, Unit, Schedule, NextTime, LastTime, ActiveState, SubState '
            'FROM Linux_Timer"',
            "systemctl --user show -p Id,Description,LoadState,Unit,ActiveState,SubState,TimersCalendar,"
            "NextElapseUSecRealtime,LastTriggerUSec '*.timer'")
        # A timer with several calendars has a line for each.
        calendars = [line.split("OnCalendar=")[1].split(" ;")[0] for line in told.splitlines() if "OnCalendar=" in line]
        units = self.shown(told)
        rows = {row["Name"]: row for row in json.loads(said)}
        self.assertEqual(set(rows), set(units))
        self.assertLessEqual({"daily.timer", "tick.timer"}, set(rows))
        for name, unit in units.items():
            row = rows[name]
            self.assertEqual([row[key] for key in ("Description", "Unit", "ActiveState", "SubState")],
                             [unit[key] for key in ("Description", "Unit", "ActiveState", "SubState")])
            for mine, theirs in (("NextTime", "NextElapseUSecRealtime"), ("LastTime", "LastTriggerUSec")):
                expected = unit[theirs].split(" ", 1)[1] if " " in unit[theirs] else None
                self.assertEqual(self.shown_time(row[mine]), expected, (name, mine))
        self.assertEqual(sorted(rows["daily.timer"]["Schedule"]), sorted(calendars))
        self.assertEqual(rows["tick.timer"]["Schedule"], ["OnActiveSec=0.1s"])
        self.assertIsNotNone(rows["daily.timer"]["NextTime"])
        self.assertIsNotNone(rows["tick.timer"]["LastTime"])

    def shown_time(self, datetime):
        """A datetime of CIM in the time zone of the test as systemctl shows it, without the day of the week."""
        if datetime is None:
            return None
        self.assertEqual(datetime[21:], "+000")
        return f"{datetime[:4]}-{datetime[4:6]}-{datetime[6:8]} {datetime[8:10]}:{datetime[10:12]}:{datetime[12:14]} UTC"

    def test_the_main_process_of_a_service(self):
        query = ("SELECT S.Name, P.Name, P.ProcessID FROM Linux_Service AS S, Linux_Process AS P "
                 "WHERE Linux_ServiceProcess = S AND Linux_ServiceProcess = P AND S.Name = 'good.service'")
        said, told = self.answers(f'{toolcase.TOOL} -o csv --no-header "{query}"', "systemctl --user show -P MainPID good.service")
        self.assertEqual(said, f"good.service,sleep,{told.strip()}\n")

    def test_the_services_that_failed(self):
        said, = self.answers(f"{toolcase.TOOL} -o csv --no-header \"SELECT Name FROM Linux_Service WHERE ActiveState = 'failed'\"")
        self.assertEqual(said, "bad.service\n")


if __name__ == "__main__":
    toolcase.main()
