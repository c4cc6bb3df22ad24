"""House rules that a compiler does not see: prints each file that breaks one, with reason and fix.

Run as check_house.py ROOT; the exit status is 1 when anything was printed.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import sys

import tree

LONGEST_FILE = 500  # lines, but for that of the license

# What the first line of a file (the second after a #! line) must begin with, by ending or name.
OPENINGS = {
    ".cpp": ("//",),
    ".h": ("//",),
    ".l": ("/*", "//", "%{", "%top{"),
    ".mof": ("//", "/*"),
    ".py": ('"""', "#"),
    ".cmake": ("#",),
    ".qtest": ("#",),
    ".sh": ("#",),
    "CMakeLists.txt": ("#",),
}

# Words, where they are looked for, and why they must not be there. A bracket
# inside a pattern keeps this file from finding itself.
WORDS = [
    (r"(//|#|\*).*\b(TO[D]O|FIX[M]E|XX[X]|HAC[K])\b", "unfinished work does not go in: finish it or leave the remark out"),
    (r"\bPart [1-9]\.[0-9]\b", "a reader has no such document: say what the code does and why"),
    (r"\b[Ss]pe[c](ification)?\.md\b|\b[Rr]uling[s]?\.md\b|\bthe [s]pecification\b",
     "a reader has no such document: docs/language.md is the reference"),
    (r"\.\./share[d]\b|(?<![\w.])/(hom[e]|wor[k])/\w", "a path of one machine: name files from the root of the tree"),
    (r"\bDISABLE[D]_|\bGTEST_SKI[P]\b", "a test that does not run proves nothing: mend it or delete it"),
    (r"\b(EXPECT|ASSERT)_TRUE\(tru[e]\)", "a test that cannot fail proves nothing"),
]

# The line that tells the license, in the opening comment of each source.
LICENSE_LINE = "SPDX-License-Identifier: Apache-2.0"
OPENING_LINES = 30
SOURCE_ENDINGS = (".cpp", ".h", ".cpp.in", ".h.in", ".l", ".fbs", ".py", ".cmake", ".sh", "CMakeLists.txt")

TEXT_ENDINGS = tuple(ending for ending in OPENINGS if ending.startswith(".")) + (".md", ".txt", ".json", ".ini")


def openings_for(path):
    name = os.path.basename(path)
    return OPENINGS.get(name) or OPENINGS.get(os.path.splitext(name)[1])


def find_missing_opening(path, lines):
    openings = openings_for(path)
    first = next((line for line in lines if line.strip() and not line.startswith("#!")), "")
    if openings and not first.lstrip().startswith(openings):
        yield f"{path}:1: a file opens with a comment that says what it is for: add one ({openings[0]} ...)"


def is_source(path, lines):
    return path.endswith(SOURCE_ENDINGS) or bool(lines) and lines[0].startswith("#!")


def has_license(lines):
    return any(LICENSE_LINE in line for line in lines[:OPENING_LINES])


def find_missing_license(path, lines):
    if is_source(path, lines) and not has_license(lines):
        yield f"{path}:1: the license is not told: end the opening comment with {LICENSE_LINE}"


def find_too_long(path, lines):
    length = len(lines) - has_license(lines)
    if path.endswith(tree.CXX_ENDINGS) and length > LONGEST_FILE:
        yield f"{path}:{len(lines)}: {length} lines hold two ideas: split the file (at most {LONGEST_FILE} lines)"


def find_words(path, lines):
    for number, line in enumerate(lines, 1):
        for pattern, reason in WORDS:
            match = re.search(pattern, line)
            if match:
                yield f"{path}:{number}: '{match.group(0)}': {reason}"


def is_text(root, path):
    if path == "LICENSE":
        return False
    if path.endswith(TEXT_ENDINGS + SOURCE_ENDINGS):
        return True
    with open(os.path.join(root, path), "rb") as source:
        return source.read(2) == b"#!"


def check(root):
    found = []
    for path in tree.files(root):
        if "/corpus/" in path or not is_text(root, path):
            continue
        with open(os.path.join(root, path), encoding="utf-8", errors="replace") as source:
            lines = source.read().split("\n")
        if lines and lines[-1] == "":
            lines.pop()
        for rule in (find_missing_opening, find_missing_license, find_too_long, find_words):
            found += rule(path, lines)
    return found


if __name__ == "__main__":
    broken = check(sys.argv[1])
    for line in broken:
        print(line)
    sys.exit(1 if broken else 0)
