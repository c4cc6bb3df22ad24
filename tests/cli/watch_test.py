"""qorql watch: the live changes that a filter matches."""
# SPDX-License-Identifier: Apache-2.0
import json
import os
import select
import signal
import subprocess
import sys
import time
import unittest

import toolcase
from toolcase import ToolCase

SECONDS = 60  # after which a watch that has not seen what it should is taken for broken
PROCESSES = "SourceInstance ISA Linux_Process"


class Watch:
    """A running watch; its lines are JSON objects."""

    def __init__(self, filter_text, *arguments):
        self.process = subprocess.Popen([toolcase.TOOL, "watch", "--interval", "0.1", *arguments, filter_text],
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, bufsize=0)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
        self.process.communicate()

    def next(self):
        """The next indication; None at the end of the output."""
        ready, _, _ = select.select([self.process.stdout], [], [], SECONDS)
        assert ready, "the watch prints nothing"
        line = self.process.stdout.readline()
        return json.loads(line) if line else None

    def end(self, number):
        self.process.send_signal(number)
        _, errors = self.process.communicate(timeout=SECONDS)
        return self.process.returncode, toolcase.UNSEEN.sub("", errors.decode())


def sleeper(seconds=SECONDS):
    return subprocess.Popen([sys.executable, "-c", f"import time; time.sleep({seconds})"])


class Changes(ToolCase):
    def setUp(self):
        super().setUp()
        self.started = []
        self.addCleanup(self.stop)

    def stop(self):
        for process in self.started:
            process.kill()
            process.wait()

    def start(self):
        self.started.append(sleeper())
        return str(self.started[-1].pid)

    def until(self, watch, handles):
        """Starts processes until the watch has seen one of them: its first look takes a while."""
        deadline = time.monotonic() + SECONDS
        while time.monotonic() < deadline:
            handles.add(self.start())
            ready, _, _ = select.select([watch.process.stdout], [], [], 0.5)
            while ready:
                seen = watch.next()
                if seen["SourceInstance"]["Handle"] in handles:
                    return seen
                ready, _, _ = select.select([watch.process.stdout], [], [], 0)
        self.fail("the watch sees no process that is started")

    def test_a_process_that_is_started(self):
        with Watch(f"SELECT * FROM CIM_InstCreation WHERE {PROCESSES}") as watch:
            seen = self.until(watch, set())
            source = seen["SourceInstance"]
            self.assertEqual((seen["class"], source["class"]), ("CIM_InstCreation", "Linux_Process"))
            self.assertEqual(source["ParentProcessID"], os.getpid())
            self.assertTrue(seen["SourceInstanceModelPath"].startswith("root/cimv2:Linux_Process."))
            self.assertIn(f"Handle=\"{source['Handle']}\"", seen["SourceInstanceModelPath"])
            self.assertEqual(seen["SourceInstanceHost"], os.uname().nodename)
            self.assertRegex(seen["IndicationTime"], r"^\d{14}\.\d{6}[+-]\d{3}$")
            self.assertNotIn("PreviousInstance", seen)
            self.assertEqual(watch.end(signal.SIGINT), (0, ""))

    def test_a_process_that_ends(self):
        with Watch(f"SELECT SourceInstance FROM CIM_InstIndication WHERE {PROCESSES} AND "
                   f"SourceInstance.Linux_Process::ParentProcessID = {os.getpid()}") as watch:
            handles = set()
            born = self.until(watch, handles)["SourceInstance"]["Handle"]
            self.stop()
            while True:
                seen = watch.next()
                if seen["class"] == "CIM_InstDeletion" and seen["SourceInstance"]["Handle"] == born:
                    break
            self.assertEqual(sorted(seen), ["SourceInstance", "class"])
            self.assertEqual(watch.end(signal.SIGTERM), (0, ""))

    def test_an_instance_that_changes_is_shown_before_and_after(self):
        with Watch("SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_OperatingSystem AND "
                   "SourceInstance.CIM_OperatingSystem::LocalDateTime <> "
                   "PreviousInstance.CIM_OperatingSystem::LocalDateTime", "--limit", "2") as watch:
            first, second = watch.next(), watch.next()
            self.assertIsNone(watch.next())
            self.assertEqual(watch.process.wait(SECONDS), 0)
        for seen in (first, second):
            self.assertEqual(seen["class"], "CIM_InstModification")
            self.assertLess(seen["PreviousInstance"]["LocalDateTime"], seen["SourceInstance"]["LocalDateTime"])
        self.assertEqual(first["SourceInstance"], second["PreviousInstance"])
        self.assertNotEqual(first["IndicationIdentifier"], second["IndicationIdentifier"])

    def test_what_always_changes_makes_no_news_unless_it_is_named(self):
        child = subprocess.Popen(["sleep", str(SECONDS)])
        self.started.append(child)
        time.sleep(0.5)  # it is idle by then
        look = ["watch", "--interval", "1.1", "--count", "2", "--quiet"]
        text = f"SELECT * FROM CIM_InstModification WHERE {{}} SourceInstance.Linux_Process::Handle = '{child.pid}'"
        idle = self.run_tool(*look, text.format("SourceInstance ISA Linux_Process AND"))
        self.assertEqual((idle.status, idle.out), (0, ""))
        named = self.run_tool(*look, text.format("SourceInstance ISA Linux_Process AND "
                                                 "SourceInstance.Linux_Process::ElapsedTime > 0 AND"))
        self.assertIn('"ElapsedTime": ', named.out)
        selected = self.run_tool(*look, text.format("SourceInstance ISA Linux_Process AND").replace(
            "SELECT *", "SELECT SourceInstance.Linux_Process::ElapsedTime, SourceInstance"))
        self.assertIn('"ElapsedTime": ', selected.out)
        for alias in ("SELECT SourceInstance AS ElapsedTime FROM CIM_InstModification WHERE",
                      "SELECT * FROM CIM_InstModification AS ElapsedTime WHERE ElapsedTime.SourceInstance ISA "
                      "Linux_Process AND"):
            idle = self.run_tool(*look, text.format("SourceInstance ISA Linux_Process AND").replace(
                "SELECT * FROM CIM_InstModification WHERE", alias))
            self.assertEqual((idle.status, idle.out), (0, ""), alias)


class ManyFilters(ToolCase):
    # The time, which is looked at since the filter names it, is another one at every look.
    CHANGED = ("SELECT SourceInstance FROM CIM_InstModification WHERE SourceInstance ISA CIM_OperatingSystem AND "
               "SourceInstance.CIM_OperatingSystem::LocalDateTime <> PreviousInstance.CIM_OperatingSystem::LocalDateTime")

    def watch(self, filters, *arguments):
        return self.run_tool("watch", "--interval", "0.05", *arguments, "--filters", self.write("filters.txt", filters))

    def test_an_indication_tells_the_lines_of_the_filters_that_match(self):
        out = self.succeed(self.watch(
            f"{self.CHANGED}\n\nSELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_Processor\r\n"
            "SELECT PreviousInstance FROM CIM_InstModification WHERE "
            "SourceInstance ISA Linux_OperatingSystem\n", "--limit", "2"))
        lines = [json.loads(line) for line in out.splitlines()]
        self.assertEqual([line["filters"] for line in lines], [[1, 4], [1, 4]])
        for line in lines:
            self.assertEqual(sorted(line), ["PreviousInstance", "SourceInstance", "class", "filters"])

    def test_an_indication_tells_the_names_of_the_filters_that_match(self):
        line = json.loads(self.succeed(self.watch(f"# what changes\nload: {self.CHANGED}\n{self.CHANGED}\n", "--limit", "1")))
        self.assertEqual(line["filters"], ["load", 3])
        self.refused(self.watch("still: SELECT * FROM CIM_AlertIndication", "--strict"), 1,
                     "qorql: error: line 1 (still): the filter asks for no indication of a change: nothing will be printed")

    def test_each_prints_what_the_filters_that_match_it_select(self):
        out = self.succeed(self.watch(
            f"{self.CHANGED}\nSELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_Processor\n",
            "--limit", "1"))
        self.assertEqual((json.loads(out)["filters"], sorted(json.loads(out))), ([1], ["SourceInstance", "class", "filters"]))

    def test_filters_for_which_nothing_can_come(self):
        silent = f"SELECT * FROM CIM_AlertIndication\n{self.CHANGED}\n"
        result = self.watch(silent, "--limit", "1")
        self.assertEqual((result.status, json.loads(result.out)["filters"]), (0, [2]))
        self.assertEqual(result.err, "qorql: warning: line 1: the filter asks for no indication of a change: nothing will "
                                     "be printed\n")
        self.refused(self.watch(silent, "--strict"), 1, "qorql: error: line 1: the filter asks for no indication of a "
                                                        "change: nothing will be printed")

    def test_a_file_without_a_filter_is_refused(self):
        result = self.watch("# SELECT * FROM CIM_InstCreation\n", "--count", "1")
        self.refused(result, 1, f"qorql: error: {os.path.join(self.folder, 'filters.txt')} holds no filter")

    def test_filters_that_are_not_valid(self):
        result = self.watch(f"{self.CHANGED}\nSELECT\nSELECT * FROM CIM_Nope\n", "--count", "1")
        self.assertEqual((result.status, result.out), (1, ""))
        self.assertEqual([line[:45] for line in result.err.splitlines()],
                         [f"qorql: error: line {line}: the filter is not valid" for line in (2, 3)])

    def test_wrong_usage(self):
        path = self.write("filters.txt", self.CHANGED)
        for arguments, says in ((["--filters", path, self.CHANGED], "--filters"), (["--filters"], "--filters"),
                                (["--filters", path + ".no"], "filters.txt.no")):
            result = self.run_tool("watch", "--count", "1", *arguments)
            self.assertEqual((result.status, result.out), (2, ""), arguments)
            self.assertIn(says, result.err)


class Volatile(ToolCase):
    """What changes whenever one looks."""

    def start_processes_until_end_of(self, watch):
        started = []
        over = time.monotonic() + SECONDS
        while watch.poll() is None and time.monotonic() < over:
            started.append(subprocess.Popen(["sleep", str(SECONDS)]))
            time.sleep(0.05)
        for process in started:
            process.kill()
            process.wait()
        self.assertIsNotNone(watch.poll(), "the watch does not end")

    def test_what_the_processes_of_users_take_is_not_read(self):
        look = ["watch", "--interval", "0.3", "--count", "4", "--log", "info"]
        with subprocess.Popen([toolcase.TOOL, *look, "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA Linux_User"],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as watch:
            self.start_processes_until_end_of(watch)
            self.assertEqual((watch.wait(), watch.stdout.read()), (0, b""))

    def test_it_is_read_for_a_filter_that_names_it(self):
        with Watch("SELECT * FROM CIM_InstModification WHERE SourceInstance ISA Linux_User AND "
                   "SourceInstance.Linux_User::ProcessCount > 0", "--limit", "1") as watch:
            self.start_processes_until_end_of(watch.process)
            self.assertGreater(watch.next()["SourceInstance"]["ProcessCount"], 0)

    def test_the_time_is_not_read(self):
        out = self.succeed(self.run_tool("watch", "--interval", "0.1", "--limit", "1",
                                         "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA Linux_OperatingSystem"))
        names = json.loads(out)["SourceInstance"].keys()
        self.assertIn("FreePhysicalMemory", names)
        self.assertFalse({"UpTime", "LocalDateTime"} & names)


class End(ToolCase):
    def watch(self, *arguments):
        return self.run_tool("watch", "--interval", "0.05", *arguments)

    def test_after_a_number_of_looks(self):
        self.assertEqual(self.succeed(self.watch("--count", "2", "SELECT * FROM CIM_InstCreation WHERE SourceInstance "
                                                                 "ISA CIM_Processor")), "")

    def test_when_the_reader_goes_away(self):
        with Watch("SELECT * FROM CIM_InstDeletion WHERE SourceInstance ISA Linux_Processor") as watch:
            watch.process.stdout.close()
            self.assertEqual(watch.process.wait(SECONDS), 0)
            self.assertEqual(watch.process.stderr.read(), b"")
            watch.process.stdout = None

    def test_when_the_reader_goes_away_while_it_prints(self):
        with Watch("SELECT * FROM CIM_InstModification WHERE SourceInstance ISA Linux_OperatingSystem") as watch:
            watch.next()
            watch.process.stdout.close()
            self.assertEqual(watch.process.wait(SECONDS), 0)
            self.assertEqual(watch.process.stderr.read(), b"")
            watch.process.stdout = None

    def test_nothing_to_see(self):
        for text, warning in (
                ("SELECT * FROM CIM_AlertIndication",
                 "the filter asks for no indication of a change: nothing will be printed"),
                ("SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_StorageVolume",
                 "no live class is of the class that the filter asks for: nothing will be printed"),
                ("SELECT * FROM CIM_InstCreation WHERE 'sourceinstance' ISA 'CIM_StorageVolume'",
                 "no live class is of the class that the filter asks for: nothing will be printed")):
            result = self.watch("--count", "1", text)
            self.assertEqual((result.status, result.out, result.err), (0, "", f"qorql: warning: {warning}\n"))
            self.assertEqual(self.succeed(self.watch("--quiet", "--count", "1", text)), "")

    def test_a_filter_that_is_not_valid(self):
        self.refused(self.watch("SELECT * FROM CIM_InstCreations"), 1,
                     "qorql: error: the filter is not valid: CIM_InstCreations is not a class of root/cimv2: "
                     "did you mean CIM_InstCreation? (line 1, column 15)")

    def test_a_fuller_schema_of_indications(self):
        path = self.write("own.mof", "class CIM_Indication { }; [Indication] class CIM_InstModification : "
                                     "CIM_Indication { [EmbeddedObject] string SourceInstance; string Extra; };\n")
        out = self.succeed(self.watch("-m", path, "--limit", "1", "SELECT * FROM CIM_InstModification WHERE "
                                                                  "SourceInstance ISA CIM_OperatingSystem"))
        self.assertEqual(sorted(json.loads(out)), ["SourceInstance", "class"])

    def test_wrong_usage(self):
        creation = "SELECT * FROM CIM_InstCreation"
        for arguments, says in (([], "FILTER"), (["--interval"], "--interval"), (["--interval", "0", creation], "from 0.01"),
                                (["--interval", "soon", creation], "--interval"), (["--count"], "--count"),
                                (["--count", "0", creation], "--count"), (["--count", "-1", creation], "--count"),
                                (["--limit"], "--limit"), (["--limit", "many", creation], "--limit"),
                                (["--no-such", creation], "--no-such"), ([creation, creation], "SELECT")):
            result = self.run_tool("watch", *arguments)
            self.assertEqual((result.status, result.out), (2, ""), arguments)
            self.assertEqual(result.err.splitlines()[-1], "Try qorql watch --help.")
            self.assertIn(says, result.err)

    def test_numbers_that_are_none(self):
        creation = "SELECT * FROM CIM_InstCreation"
        for text in ("nan", "inf", "1e400", "0.0099", "86400.5", "1s", " 1", ""):
            with self.subTest(interval=text):
                self.refused(self.run_tool("watch", "--count", "1", "--interval", text, creation), 2,
                             f"qorql: --interval: '{text}' is not a number from 0.01 to 86400\n"
                             "Try qorql watch --help.")
        for option in ("--count", "--limit"):
            for text in ("18446744073709551616", "99999999999999999999", "1.5", "0x10", "nan", "0"):
                with self.subTest(option=option, text=text):
                    self.refused(self.run_tool("watch", option, text, creation), 2,
                                 f"qorql: {option}: '{text}' is not a whole number of 1 or more\n"
                                 "Try qorql watch --help.")

    def test_help(self):
        text = self.succeed(self.run_tool("watch", "--help"))
        for part in ("--interval", "--count", "--limit", "FILTER", "Exit status"):
            self.assertIn(part, text)


if __name__ == "__main__":
    toolcase.main()
