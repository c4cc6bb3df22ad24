"""Plants faults and tells which the tests catch: see scripts/mutate, which runs this on a finished build.

Run as mutate.py ROOT [OPTION]...
"""
# SPDX-License-Identifier: Apache-2.0
import argparse
import collections
import concurrent.futures
import difflib
import filecmp
import json
import os
import random
import shutil
import sys
import threading
import time

import faults
import sources
from build import Build, DoesNotCompile
from judge import Judge

Plan = collections.namedtuple("Plan", "path users line fault")


def plans(root, areas, count, seed):
    """Faults at lines by chance, each line at most once."""
    users = sources.in_areas(root, areas)
    places = []
    for path in sorted(users):
        text = sources.read(root, path)
        by_line = {}
        for fault in faults.find(text):
            by_line.setdefault(faults.line_of(text, fault), []).append(fault)
        places += [(path, line, by_line[line]) for line in sorted(by_line)]
    dice = random.Random(seed)
    chosen = dice.sample(places, min(count, len(places)))
    return [Plan(path, users[path], line, dice.choice(candidates)) for path, line, candidates in chosen]


def difference(root, plan):
    text = sources.read(root, plan.path)
    lines = difflib.unified_diff(text.splitlines(), faults.plant(text, plan.fault).splitlines(), plan.path, plan.path,
                                 lineterm="", n=0)
    return [line for line in lines if not line.startswith(("---", "+++", "@@"))]


def records_of(report):
    with open(report, encoding="utf-8") as file:
        return [json.loads(line) for line in file]


def replans(root, report, wanted):
    """The faults of an earlier report that ended as wanted, found again by their text."""
    users = sources.in_areas(root, sources.AREAS)
    for record in records_of(report):
        if record["outcome"] not in wanted:
            continue
        text = sources.read(root, record["path"])
        same = [fault for fault in faults.find(text)
                if difference(root, Plan(record["path"], [], 0, fault)) == record["diff"]]
        if not same:
            print(f"gone: {record['path']}:{record['line']}: {record['diff'][0]}")
            continue
        fault = min(same, key=lambda one: abs(faults.line_of(text, one) - record["line"]))
        yield Plan(record["path"], users[record["path"]], faults.line_of(text, fault), fault)


class Planter:
    """Plants one fault at a time for each of its threads, and writes the report."""

    def __init__(self, root, folder, report, patience):
        self.root = root
        self.build, self.judge = Build(root, folder), Judge(folder, patience)
        self.work = os.path.join(root, "build", "mutate")
        shutil.rmtree(self.work, ignore_errors=True)
        os.makedirs(self.work)
        self.report = report
        self.lock = threading.Lock()

    def compiled(self, plan, text, folder):
        """Compiles what has to be with this text in the place of the file's own."""
        overlay = os.path.join(self.work, f"sources-{threading.get_ident()}")
        shutil.rmtree(overlay, ignore_errors=True)
        place = os.path.join(overlay, plan.path)
        os.makedirs(os.path.dirname(place))
        with open(place, "w", encoding="utf-8") as file:
            file.write(text)
        os.makedirs(folder, exist_ok=True)
        objects = {}
        for number, user in enumerate(plan.users):
            objects[user] = os.path.join(folder, f"{number}.o")
            self.build.compile(user, overlay, objects[user])
        return objects

    def is_same_code(self, plan, text, objects, folder):
        """A fault that the compiler makes the same code of is none."""
        unchanged = self.compiled(plan, text, os.path.join(folder, "unchanged"))
        return all(filecmp.cmp(objects[user], unchanged[user], shallow=False) for user in plan.users)

    def outcome(self, plan):
        folder = os.path.join(self.work, f"planted-{threading.get_ident()}")
        shutil.rmtree(folder, ignore_errors=True)
        text = sources.read(self.root, plan.path)
        try:
            objects = self.compiled(plan, faults.plant(text, plan.fault), folder)
            self.build.link(objects, folder)
        except DoesNotCompile:
            return "does not compile", None
        is_same = []
        test, result = self.judge.verdict(
            plan.path, folder, lambda: is_same.append(self.is_same_code(plan, text, objects, folder)) or is_same[0])
        if test is None:
            return ("same code" if any(is_same) else "NOT CAUGHT"), None
        return "caught", test if result == "fails" else f"{test}, hangs"

    def plant(self, plan):
        start = time.monotonic()
        outcome, test = self.outcome(plan)
        record = {"path": plan.path, "line": plan.line, "kind": plan.fault.kind, "outcome": outcome, "test": test,
                  "diff": difference(self.root, plan)}
        with self.lock:
            self.report.write(json.dumps(record) + "\n")
            self.report.flush()
            print(f"{outcome}{': ' + test if test else ''} ({time.monotonic() - start:.0f} s)")
            show(self.root, plan)
        return outcome


def show(root, plan):
    print(f"{plan.path}:{plan.line}: {plan.fault.kind}")
    print("".join(f"    {line}\n" for line in difference(root, plan)), end="", flush=True)


def options():
    parser = argparse.ArgumentParser(prog="scripts/mutate", description="Plants faults and tells which the tests catch.")
    parser.add_argument("root", help=argparse.SUPPRESS)
    parser.add_argument("--count", type=int, default=50, help="faults to plant")
    parser.add_argument("--seed", type=int, default=1, help="another seed, other faults")
    parser.add_argument("--area", default=",".join(sources.AREAS), help="of " + ", ".join(sources.AREAS))
    parser.add_argument("--jobs", type=int, default=1, help="faults tried at the same time")
    parser.add_argument("--list", action="store_true", help="show the faults and plant none")
    parser.add_argument("--again", metavar="REPORT", help="plant those again that a report has as not caught")
    parser.add_argument("--patience", type=float, default=600, help="leave out tests that take more seconds")
    parser.add_argument("--resume", action="store_true", help="go on with a report: plant what it lacks")
    parser.add_argument("--report", default="build/mutate.jsonl", help="where the outcomes go, a line of JSON each")
    chosen = parser.parse_args()
    chosen.area = chosen.area.split(",")
    for area in chosen.area:
        if area not in sources.AREAS:
            parser.error(f"there is no area '{area}'")
    return chosen


def main():
    chosen = options()
    root = os.path.abspath(chosen.root)
    if chosen.again:
        planned = list(replans(root, chosen.again, ("NOT CAUGHT",)))
    else:
        planned = plans(root, chosen.area, chosen.count, chosen.seed)
    if chosen.list:
        for plan in planned:
            show(root, plan)
        return 0
    done = records_of(chosen.report) if chosen.resume else []
    known = [(record["path"], record["line"], record["diff"]) for record in done]
    planned = [plan for plan in planned if (plan.path, plan.line, difference(root, plan)) not in known]
    with open(chosen.report, "a" if chosen.resume else "w", encoding="utf-8") as report:
        planter = Planter(root, os.path.join(root, "build", "test"), report, chosen.patience)
        with concurrent.futures.ThreadPoolExecutor(chosen.jobs) as pool:
            outcomes = collections.Counter(pool.map(planter.plant, planned))
    outcomes.update(record["outcome"] for record in done)
    shutil.rmtree(planter.work)
    print(", ".join(f"{count} {outcome}" for outcome, count in sorted(outcomes.items())))
    return 0


if __name__ == "__main__":
    sys.exit(main())
