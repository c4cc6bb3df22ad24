"""Whether the test of a source is found by its name, and tests are named in one style: prints each source without a test
of its name whose header does not say what tests it, each named file that is not there, and each name in another style.

The test of Cimom/.../QORQL_Join.cpp is tests/unit/.../JoinTest.cpp. Where a source has none, the first comment of its
header (of the source itself, if it has no header of its name) ends with
    // Tested by tests/unit/QORQL/WhereTest.cpp, tests/queries/joins.qtest.
which may take several lines, and names files or folders.

Run as check_tests.py ROOT; the exit status is 1 when anything was printed.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import sys

import tree

UNITS = "tests/unit/"
# Of the engine's sources this part has a test of its name: who wants to change one need not search.
ENGINE = "Cimom/QORQL/"
FOUND_BY_NAME = 0.8

FIRST_COMMENT = re.compile(r"(?://[^\n]*\n)*")
TESTED_BY = re.compile(r"\bTested by (.+)\.$", re.DOTALL)
TEST = re.compile(r"^(?:TEST|TEST_F|TEST_P|TYPED_TEST|TYPED_TEST_P)\(\s*(\w+),\s*(\w+)", re.MULTILINE)
STYLE = re.compile(r"[A-Z][A-Za-z0-9]*")


def stem_of(path):
    return os.path.splitext(os.path.basename(path))[0]


def read(root, path):
    with open(os.path.join(root, path), encoding="utf-8") as source:
        return source.read()


def testers_of(text):
    """What the first comment says after "Tested by", or None."""
    comment = FIRST_COMMENT.match(text).group(0)
    lines = [line.removeprefix("//").strip() for line in comment.splitlines()]
    words = " ".join(line for line in lines if not line.startswith("SPDX-"))
    match = TESTED_BY.search(words)
    return match and [name.strip() for name in match.group(1).split(",")]


def sources_of(paths):
    """For each source, by its stem: the file whose first comment speaks for it."""
    speakers = {}
    for path in paths:
        if path.startswith("Cimom/"):
            stem = stem_of(path)
            if path.endswith(".h") or stem not in speakers:
                speakers[stem] = path
    return speakers


def find_untested(root, paths):
    tests = {stem_of(path) for path in paths if path.startswith(UNITS)}
    by_name = of_engine = 0
    for stem, path in sorted(sources_of(paths).items(), key=lambda item: item[1]):
        test = stem.removeprefix("QORQL_") + "Test"
        is_engine = path.startswith(ENGINE)
        of_engine += is_engine
        by_name += is_engine and test in tests
        testers = testers_of(read(root, path))
        if testers is None and test not in tests:
            yield f"{path}: no {test}.cpp is in {UNITS}: write it, or end the first comment with // Tested by FILE, FILE."
        for name in testers or []:
            if not os.path.exists(os.path.join(root, name)):
                yield f"{path}: {name}, which is said to test it, is not there"
    if by_name < FOUND_BY_NAME * of_engine:
        yield f"{ENGINE}: {by_name} of {of_engine} sources have a test of their name: at least {FOUND_BY_NAME:.0%} shall"


def find_other_styles(root, paths):
    for path in paths:
        if not path.startswith(UNITS):
            continue
        names = TEST.findall(read(root, path))
        if names and not re.fullmatch(r"[A-Z]\w*Test\.cpp", os.path.basename(path)):
            yield f"{path}: a file of tests is called after what it tests: ThatTest.cpp"
        for suite, test in names:
            for name in (suite, test):
                if not STYLE.fullmatch(name) or name == suite and name.endswith("Test") and not name.endswith("DeathTest"):
                    yield (f"{path}: {suite}.{test}: name it in the style of Scanner.CountsLinesFromOne "
                           "(capitals, no underscore, no suite that ends with Test)")
                    break


def check(root):
    paths = tree.cxx_files(root)
    return [*find_untested(root, paths), *find_other_styles(root, paths)]


if __name__ == "__main__":
    broken = check(sys.argv[1])
    for line in broken:
        print(line)
    sys.exit(1 if broken else 0)
