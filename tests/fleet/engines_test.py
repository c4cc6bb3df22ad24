"""Engines of other making read what the tool writes for them, and the worked example of docs/fleet.md is what it shows.

npm installs them below the folder that is named; where there is no npm, or it cannot, the tests are left out.
Run as engines_test.py TOOL FOLDER.
"""
# SPDX-License-Identifier: Apache-2.0
import datetime
import json
import os
import platform
import re
import shutil
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
sys.path[:0] = [os.path.join(ROOT, "tests", "cli"), os.path.join(ROOT, "tests", "docs")]
import arrow_test  # noqa: E402
import arrowreader  # noqa: E402
import markdown  # noqa: E402
import toolcase  # noqa: E402
from toolcase import MODEL, ToolCase  # noqa: E402

PACKAGES = ("apache-arrow", "nodejs-polars", "@duckdb/node-api")
INSTALL_SECONDS = 300
GUIDE = os.path.join(ROOT, "docs", "fleet.md")
STORAGE = os.path.join(ROOT, "examples", "storage.mof")
NODE = None     # the folder of the packages
MISSING = None  # why there are none
EPOCH = datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc)
# How apache-arrow names the types.
TYPES = {"utf8": "Utf8", "bool": "Bool", "float": "Float32", "double": "Float64", "null": "Null",
         "timestamp[us, UTC]": "Timestamp<MICROSECOND, UTC>", "duration[us]": "Duration<MICROSECOND>"}


def run(*command, **more):
    return subprocess.run(command, capture_output=True, stdin=subprocess.DEVNULL, check=False, **more)


def install(folder):
    """Why the packages cannot be had; None when they are there."""
    if shutil.which("npm") is None or shutil.which("node") is None:
        return "this system has no npm"
    os.makedirs(folder, exist_ok=True)
    wanted, noted = os.path.join(HERE, "package.json"), os.path.join(folder, "installed.json")
    with open(wanted, "rb") as file:
        content = file.read()
    if not os.path.exists(noted) or open(noted, "rb").read() != content:
        shutil.copy(wanted, os.path.join(folder, "package.json"))
        try:
            done = run("npm", "install", "--no-package-lock", "--no-audit", "--no-fund", "--ignore-scripts", cwd=folder,
                       timeout=INSTALL_SECONDS)
        except subprocess.TimeoutExpired:
            return "npm cannot install the engines in time"
        if done.returncode != 0:
            return "npm cannot install the engines"
        shutil.copy(wanted, noted)
    for package in PACKAGES:
        if run("node", "--input-type=module", "-e", f"await import('{package}')", cwd=folder).returncode != 0:
            return f"{package} does not run here"
    return None


def list_type(name):
    return f"List<{arrow_name(name[5:-1])}>" if name.startswith("list<") else None


def arrow_name(name):
    """As apache-arrow prints a type."""
    return list_type(name) or TYPES.get(name) or name.capitalize()


def of_arrow(kind, value):
    """A value as arrow.mjs prints what apache-arrow makes of it."""
    if value is None:
        return None
    if kind.startswith("list<"):
        return [of_arrow(kind[5:-1], one) for one in value]
    if kind in ("int64", "uint64", "duration[us]"):
        return str(value)
    return value / 1000 if kind.startswith("timestamp") else value


def of_polars(kind, value):
    """A value as polars writes it in JSON; times are compared as what they say."""
    if value is None:
        return None
    if kind.startswith("list<"):
        return [of_polars(kind[5:-1], one) for one in value]
    if kind.startswith("timestamp"):
        return EPOCH + datetime.timedelta(microseconds=value)
    return round(value, 6) if kind == "float" else value


def told_by_polars(kind, value):
    if value is None:
        return None
    if kind.startswith("list<"):
        return [told_by_polars(kind[5:-1], one) for one in value]
    if kind.startswith("timestamp"):
        return datetime.datetime.fromisoformat(value)
    if kind.startswith("duration"):
        return round(float(value.removeprefix("PT").removesuffix("S")) * 1000000)
    return round(value, 6) if kind == "float" else value


class Engines(ToolCase):
    needs_engines = True

    def setUp(self):
        super().setUp()
        if self.needs_engines and MISSING is not None:
            self.skipTest(MISSING)

    def node(self, script, *arguments):
        done = run("node", self.script(script), *arguments, cwd=self.folder, timeout=120)
        self.assertEqual((done.returncode, done.stderr.decode()), (0, ""))
        return done.stdout.decode()

    @staticmethod
    def script(name):
        """Where node finds the packages from."""
        return shutil.copy(os.path.join(HERE, name), os.path.join(NODE, name))

    def told(self, form, name, *arguments):
        """The file that the tool's answer is in."""
        return self.write(name, self.run_tool("--no-live", "-o", form, *arguments).raw)

    def duckdb(self, statement):
        return json.loads(self.node("duckdb.mjs", statement))


class Arrow(Engines):
    def judge(self, *arguments):
        path = self.told("arrow", "answer.arrow", *arguments)
        with open(path, "rb") as file:
            stream = arrowreader.read(file.read())[0]
        shown = json.loads(self.node("arrow.mjs", path))
        kinds = [field.type for field in stream.fields]
        self.assertEqual([(one["name"], one["type"], one["cimType"]) for one in shown["fields"]],
                         [(one.name, arrow_name(one.type), one.metadata.get("cim:type")) for one in stream.fields])
        self.assertEqual(shown["rows"], [[of_arrow(*pair) for pair in zip(kinds, row)] for row in stream.rows])
        polars = [list(row.values()) for row in json.loads(shown["polars"])]
        self.assertEqual([[told_by_polars(*pair) for pair in zip(kinds, row)] for row in polars],
                         [[of_polars(*pair) for pair in zip(kinds, row)] for row in stream.rows])
        return stream

    def test_every_type(self):
        path = self.write("types.mof", arrow_test.TYPES)
        self.assertEqual(len(self.judge("-m", path, "SELECT * FROM A_All").rows), 3)
        self.assertEqual(len(self.judge("-m", path, "SELECT * FROM A_Tie").rows), 1)
        self.assertEqual(self.judge("-m", path, "SELECT * FROM A_All WHERE Id = 99").rows, [])

    def test_models(self):
        self.judge("-m", MODEL, "SELECT * FROM Shop_Item")
        self.judge("-m", STORAGE, "SELECT * FROM CIM_ManagedSystemElement")
        self.judge("-m", STORAGE, "SELECT SUM(MaxMediaSize) AS Bytes, AVG(PowerOnHours) AS Hours FROM CIM_DiskDrive")

    def test_several_batches(self):
        path = self.write("many.mof", "class N { [Key] uint32 K; string T; };" + "".join(
            f'instance of N {{ K = {i}; T = "{"x" * (i % 50)}"; }};' for i in range(20000)))
        self.assertGreater(len(self.judge("-m", path, "SELECT K, T, 0 - K AS M FROM N").batches), 1)

    def broken_off(self):
        """What the tool leaves when the time is over before all rows are out."""
        path = self.write("many.mof", "class N { [Key] uint32 K; string T; };" + "".join(
            f'instance of N {{ K = {i}; T = "{"x" * 100}"; }};' for i in range(20000)))
        with subprocess.Popen([toolcase.TOOL, "--no-live", "-m", path, "-o", "arrow", "--timeout", "2",
                               "SELECT K, T FROM N"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
            begin = process.stdout.read(8)  # the rest waits in the pipe until the time is over
            time.sleep(2.5)
            return begin + process.stdout.read()

    def test_a_stream_that_breaks_off_is_refused(self):
        broken = self.write("broken.arrow", self.broken_off())
        whole = self.told("arrow", "whole.arrow", "-m", MODEL, "SELECT * FROM Shop_Item")
        for reader in ("import { tableFromIPC } from 'apache-arrow'; tableFromIPC(bytes)",
                       "import pl from 'nodejs-polars'; pl.readIPCStream(bytes)"):
            for path, is_whole in ((broken, False), (whole, True)):
                script = f"import {{ readFileSync }} from 'node:fs'; const bytes = readFileSync('{path}'); {reader}"
                done = run("node", "--input-type=module", "-e", script, cwd=NODE)
                self.assertEqual(done.returncode == 0, is_whole, reader)


class DuckDb(Engines):
    def test_json_lines(self):
        path = self.write("types.mof", arrow_test.TYPES)
        names = ("Id", "U64", "S64", "R64", "Yes", "Text", "U8s", "Texts", "Yeses")
        query = f"SELECT {', '.join(names)} FROM A_All ORDER BY Id ASC"
        self.told("jsonl", "answer.jsonl", "-m", path, query)
        with open(self.told("arrow", "answer.arrow", "-m", path, query), "rb") as file:
            rows = arrowreader.read(file.read())[0].rows
        got = self.duckdb("SELECT * FROM read_json_auto('answer.jsonl') ORDER BY Id")

        def text(value):
            if isinstance(value, list):
                return [text(one) for one in value]
            return str(value) if isinstance(value, int) and not isinstance(value, bool) else value
        self.assertEqual([list(row.values()) for row in got], [[text(value) for value in row] for row in rows])
        self.assertEqual(list(got[0]), list(names))

    def test_csv(self):
        self.told("csv", "answer.csv", "-m", MODEL, "SELECT Id, Name, Size, Weight FROM Shop_Item ORDER BY Id ASC")
        got = self.duckdb("SELECT * FROM read_csv('answer.csv', types = {'Size': 'UBIGINT'}) ORDER BY Id")
        self.assertEqual([list(row.values()) for row in got], [
            ["1", "plain", "18446744073709551615", 0.5], ["2", "with, comma", "0", -1.25],
            ["3", "a \"quoted\" <b> & 'c'", "42", 100], ["4", None, None, None], ["5", "größer 日本", "7", 0.001]])


class Guide(Engines):
    def place(self):
        """The folder looks as the root of the tree does, as far as the example needs it."""
        os.symlink(os.path.join(ROOT, "examples"), os.path.join(self.folder, "examples"))
        os.symlink(toolcase.TOOL, os.path.join(self.folder, "qorql"))

    def nightly(self, statement):
        """The status of the line of the crontab, and what it leaves."""
        self.write("nightly.txt", statement)
        spool = os.path.join(self.folder, "spool")
        os.makedirs(spool, exist_ok=True)
        line = next(block.text for block in markdown.blocks(GUIDE) if block.kind == "crontab")
        *when, command = line.split(None, 5)
        self.assertTrue(all(re.fullmatch(r"\*|\d+", field) for field in when), when)
        self.assertNotIn("%", command)  # which cron would take for the end of the line
        command = command.replace("/etc/qorql", self.folder).replace("/var/spool/qorql", spool)
        done = run("sh", "-c", command, cwd=self.folder, timeout=120,
                   env={**os.environ, "PATH": self.folder + ":" + os.environ["PATH"]})
        return done.returncode, {name: open(os.path.join(spool, name), encoding="utf-8").read() for name in os.listdir(spool)}

    def run_block(self, block, *command):
        done = run(*command, cwd=self.folder, timeout=120)
        self.assertEqual((done.returncode, done.stderr.decode()), (0, ""), f"line {block.line}")
        return done.stdout.decode()

    def test_the_worked_example_prints_what_it_shows(self):
        self.place()
        os.symlink(os.path.join(NODE, "node_modules"), os.path.join(self.folder, "node_modules"))
        out, shown = None, 0
        for block in markdown.blocks(GUIDE):
            if block.kind == "sh":
                self.run_block(block, "bash", "-e", "-c", block.text)
            elif block.kind == "js":
                out = self.run_block(block, "node", self.write(f"line{block.line}.mjs", block.text))
            elif block.kind == "text":
                self.assertEqual(out.strip(), block.text.strip(), f"line {block.line}")
                shown += 1
        self.assertEqual(shown, 2)


class GuideWithoutEngines(Guide):
    needs_engines = False

    def test_line_of_the_crontab(self):
        self.place()
        status, left = self.nightly("SELECT Name, NumberOfProcesses FROM Linux_OperatingSystem")
        self.assertEqual((status, list(left)), (0, [f"{platform.node()}.jsonl"]))
        self.assertEqual(list(json.loads(left[f"{platform.node()}.jsonl"])), ["Name", "NumberOfProcesses"])
        status, after = self.nightly("SELECT Nam FROM Linux_OperatingSystem")
        self.assertNotEqual(status, 0)
        self.assertEqual(after[f"{platform.node()}.jsonl"], left[f"{platform.node()}.jsonl"])

    def test_the_worked_example_prints_what_it_shows(self):
        """Here its commands alone, whose files readers of our own read."""
        self.place()
        for block in markdown.blocks(GUIDE):
            if block.kind == "sh":
                self.run_block(block, "bash", "-e", "-c", block.text)
        for name in ("atlas", "hermes"):
            with open(os.path.join(self.folder, "fleet", f"{name}.jsonl"), encoding="utf-8") as lines:
                self.assertEqual([sorted(json.loads(line)) for line in lines],
                                 [["Kind", "MaxMediaSize", "Name", "PowerOnHours"]] * 3)
        with open(os.path.join(self.folder, "fleet", "atlas.arrow"), "rb") as file:
            self.assertEqual(len(arrowreader.read(file.read())[0].rows), 6)


if __name__ == "__main__":
    NODE = os.path.abspath(sys.argv[2])
    MISSING = install(NODE)
    toolcase.main()
