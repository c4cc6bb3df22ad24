"""Work grows no faster than n log n, by count: allocations and their bytes, or instructions under valgrind.

Run as growth_test.py PROGRAM allocations|instructions; see workloads.py for what is tried.
"""
# SPDX-License-Identifier: Apache-2.0
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
# What grows by a few bytes for each n costs too little to be seen unless there are more of them.
MORE_BYTES = 100


def write(folder, name, text):
    path = os.path.join(folder, name)
    with open(path, "w", encoding="latin-1") as file:
        file.write(text)
    return path


def arguments_of(kind, make, n, folder):
    """The program's arguments for a workload of size n, whose files go to a folder of their own."""
    os.mkdir(folder)
    if kind == "query":
        model, query = make(n)
        return ["query", write(folder, "model", model), write(folder, "text", query)]
    if kind == "filter":
        return ["filter", write(folder, "model", workloads.INDICATIONS),
                write(folder, "indication", workloads.INDICATION), write(folder, "text", make(n))]
    return ["mof", write(folder, "text", make(n))]


def run(command):
    # Symbols are found before the work starts, so that the first piece does not pay for it.
    done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False,
                          env=dict(os.environ, LD_BIND_NOW="1"))
    report = done.stderr.decode(errors="replace")
    if done.returncode != 0:
        sys.exit(f"{command[0]} failed:\n{report[-4000:]}")
    return report


def count_allocations(program, arguments, _):
    """Two counts for each piece of work: allocations and bytes."""
    return [[int(word) for word in line.split()] for line in run([program] + arguments).splitlines()]


def count_instructions(program, arguments, folder):
    """One count for each piece of work: instructions."""
    dump = os.path.join(folder, "dump")
    run(["valgrind", "-q", "--tool=callgrind", "--dump-line=no", f"--callgrind-out-file={dump}", program] + arguments)
    counts = []
    while os.path.exists(f"{dump}.{len(counts) + 1}"):
        with open(f"{dump}.{len(counts) + 1}", encoding="latin-1") as file:
            # The totals at the end of a dump have what was done before the piece began, too.
            counts.append([int(re.search(r"^summary: (\d+)", file.read(), re.MULTILINE).group(1))])
    return counts


def sizes_of(name, measure):
    small, *others = SIZES[measure]
    return [small] + [n * (MORE_BYTES if name in workloads.BY_BYTES else 1) for n in others]


def check(name, sizes, counts, words):
    (_, medium, large), (fixed, few, many) = sizes, counts
    allowed = large * math.log(large) / (medium * math.log(medium)) * SLACK
    is_good = True
    for place, word in enumerate(words):
        grown_few, grown_many = few[place] - fixed[place], many[place] - fixed[place]
        # A few thousand instructions, or allocations, more or less are noise.
        ratio = grown_many / max(grown_few, 1000)
        print(f"{name}: {word} {grown_few} at {medium}, {grown_many} at {large}: {ratio:.1f} times")
        if ratio > allowed:
            print(f"    GROWS TOO FAST: more than {allowed:.1f} times")
            is_good = False
    return is_good


def main(program, measure):
    kinds = (("query", workloads.QUERIES), ("filter", workloads.FILTERS), ("mof", workloads.MODELS))
    tried = [(kind, name, make) for kind, group in kinds for name, make in group.items()]
    count = count_allocations if measure == "allocations" else count_instructions
    words = ["allocations", "bytes"] if measure == "allocations" else ["instructions"]
    with tempfile.TemporaryDirectory() as folder:
        # All in one process: to start one under valgrind costs more than the work of most.
        # What is done once in a process falls to a piece that does not count.
        kind, name, make = tried[0]
        arguments = arguments_of(kind, make, 1, os.path.join(folder, "first"))
        for kind, name, make in tried:
            for n in sizes_of(name, measure):
                arguments += arguments_of(kind, make, n, os.path.join(folder, f"{name} {n}"))
        counts = count(program, arguments, folder)[1:]
    if len(counts) != 3 * len(tried):
        sys.exit(f"{len(counts)} counts for {3 * len(tried)} pieces of work")
    results = [check(name, sizes_of(name, measure), counts[3 * i:3 * i + 3], words)
               for i, (_, name, _) in enumerate(tried)]
    print(f"{results.count(False)} of {len(results)} grow too fast")
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
