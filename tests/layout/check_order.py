"""Whether the engine's README tells the truth about the order of its files: prints each file that stands in no section
or in two, each name without a file, and each #include of a file in a section further below, with reason and fix.

Run as check_order.py ROOT; the exit status is 1 when anything was printed.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import sys

import check_includes
import tree

ENGINE = "Cimom/QORQL"
MAP = ENGINE + "/README.md"

# Includes that point down the map and are to be untangled: (file, what it includes). One that is gone must leave the list.
KNOWN = []

SECTION = re.compile(r"^\*\*(.+?)\.\*\*", re.MULTILINE)
NAME = re.compile(r"`(\.\.\.)?((?:\w+/)*\w+)(\.cpp|\.h)?`")


class Map:
    """The sections of the README, and what they name: whole file names, stems, and endings (`...Evaluation.cpp`)."""

    def __init__(self, text):
        cuts = [*SECTION.finditer(text)]
        ends = [cut.start() for cut in cuts[1:]] + [len(text)]
        self.titles = [cut.group(1) for cut in cuts]
        self.named = {}
        self.twice = []
        for number, (cut, end) in enumerate(zip(cuts, ends)):
            for dots, stem, ending in NAME.findall(text[cut.end():end]):
                if ending or stem.startswith(("QORQL_", "CQL")):
                    self._enter(dots + os.path.basename(stem) + ending, number)

    def _enter(self, name, number):
        if self.named.setdefault(name, number) != number:
            self.twice.append(name)

    def name_of(self, path):
        """What the README calls the file: by its whole name, else by its stem, else by its ending; None if nothing."""
        base = os.path.basename(path)
        stem = os.path.splitext(base)[0]
        endings = [name for name in self.named if name.startswith("...") and base.endswith(name[3:])]
        return next((name for name in [base, stem, *endings] if name in self.named), None)


def find_in_sections(files, order):
    for name in order.twice:
        yield f"{MAP}: {name} stands in two sections: name it in one of them"
    called = {path: order.name_of(path) for path in files}
    for path, name in called.items():
        room = os.path.relpath(os.path.dirname(path), ENGINE)
        if name is None:
            yield f"{path}: stands in no section of {MAP}: name it there"
        elif room != "." and f"`{room}/`" not in order.titles[order.named[name]]:
            yield f"{path}: stands in a section of {MAP} that is not its room's: name it in the section of `{room}/`"
    for name in order.named.keys() - set(called.values()):
        yield f"{MAP}: {name} has no file: take the name out"


def downward(root, files, order):
    """(file, line, included file) for each include of a file in a section further below."""
    place = {path: order.named[name] for path in files if (name := order.name_of(path)) is not None}
    for path in place:
        for number, _, name in check_includes.includes_of(root, path):
            target = check_includes.resolve(root, path, name)
            if place.get(target, 0) > place[path]:
                yield path, number, target, order.titles[place[path]], order.titles[place[target]]


def find_downward(root, files, order, known):
    left = set(known)
    for path, number, target, here, there in downward(root, files, order):
        if (path, target) in known:
            left.discard((path, target))
            continue
        yield (f"{path}:{number}: {target} stands further below in {MAP} (\"{there}\") than this file (\"{here}\"): "
               "move the code, or put the map right")
    for path, target in sorted(left):
        yield f"{path} no longer includes {target}: take the pair out of KNOWN in tests/layout/check_order.py"


def check(root, known=None):
    with open(os.path.join(root, MAP), encoding="utf-8") as text:
        order = Map(text.read())
    files = [path for path in tree.cxx_files(root) if path.startswith(ENGINE + "/")]
    return [*find_in_sections(files, order), *find_downward(root, files, order, KNOWN if known is None else known)]


if __name__ == "__main__":
    broken = check(sys.argv[1])
    for line in broken:
        print(line)
    sys.exit(1 if broken else 0)
