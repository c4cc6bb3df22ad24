"""Work grows no faster than n log n, by count: allocations and their bytes, or instructions under valgrind.

Run as growth_test.py PROGRAM allocations|instructions; see workloads.py for what is tried.
"""
import math
import os
import re
import subprocess
import sys
import tempfile

import workloads

SLACK = 1.25
# Small, medium, large; the small one's count is taken off as the fixed cost. Valgrind is slow, so it gets less.
SIZES = {"allocations": (1, 1000, 10000), "instructions": (1, 100, 1000)}


def write(folder, name, text):
    path = os.path.join(folder, name)
    with open(path, "w", encoding="latin-1") as file:
        file.write(text)
    return path


def arguments_of(kind, make, n, folder):
    """The program's arguments for a workload of size n."""
    if kind == "query":
        model, query = make(n)
        return ["query", write(folder, "model", model), write(folder, "text", query)]
    if kind == "filter":
        return ["filter", write(folder, "model", workloads.INDICATIONS),
                write(folder, "indication", workloads.INDICATION), write(folder, "text", make(n))]
    return ["mof", write(folder, "text", make(n))]


def run(command):
    done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)} failed:\n{done.stderr.decode(errors='replace')}")
    return done.stderr.decode(errors="replace")


def count_allocations(program, arguments):
    return [int(word) for word in run([program] + arguments).split()[-2:]]


def count_instructions(program, arguments):
    tool = ["valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null"]
    report = run(tool + [program] + arguments)
    return [int(re.search(r"I\s+refs:\s+([\d,]+)", report).group(1).replace(",", ""))]


def check(name, kind, make, program, measure):
    small, medium, large = SIZES[measure]
    count = count_allocations if measure == "allocations" else count_instructions
    with tempfile.TemporaryDirectory() as folder:
        fixed, few, many = (count(program, arguments_of(kind, make, n, folder)) for n in (small, medium, large))
    allowed = large * math.log(large) / (medium * math.log(medium)) * SLACK
    isGood = True
    for place, word in enumerate(["allocations", "bytes"] if measure == "allocations" else ["instructions"]):
        grown_few, grown_many = few[place] - fixed[place], many[place] - fixed[place]
        # A few thousand instructions, or allocations, more or less are noise.
        ratio = grown_many / max(grown_few, 1000)
        print(f"{name}: {word} {grown_few} at {medium}, {grown_many} at {large}: {ratio:.1f} times")
        if ratio > allowed:
            print(f"    GROWS TOO FAST: more than {allowed:.1f} times")
            isGood = False
    return isGood


def main(program, measure):
    kinds = (("query", workloads.QUERIES), ("filter", workloads.FILTERS), ("mof", workloads.MODELS))
    results = [check(name, kind, make, program, measure) for kind, group in kinds for name, make in group.items()]
    print(f"{results.count(False)} of {len(results)} grow too fast")
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
