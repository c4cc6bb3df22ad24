"""Each rule of the language reference has a test that names it, and each test names rules that exist.

Run as check_rules.py ROOT. A rule is defined by **[NAME-1]** in docs/language.md. A query
script cites it in a line `rule: NAME-1, NAME-2`, a unit test in a comment `// rule: NAME-1`.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import sys

DOCUMENT = os.path.join("docs", "language.md")
RULE = r"[A-Z]+-\d+"
DEFINITION = re.compile(rf"\*\*\[({RULE})\]\*\*")
MENTION = re.compile(rf"\[({RULE})\]")
CITATION = re.compile(rf"^\s*(?://|#)?\s*rule:\s*({RULE}(?:\s*,\s*{RULE})*)\s*$")


def read_lines(path):
    with open(path, encoding="utf-8") as source:
        return source.read().split("\n")


def definitions(root):
    """Rule name to line; a name defined twice is reported as (name, line)."""
    found, doubles = {}, []
    for number, line in enumerate(read_lines(os.path.join(root, DOCUMENT)), 1):
        for name in DEFINITION.findall(line):
            if name in found:
                doubles.append((name, number))
            found.setdefault(name, number)
    return found, doubles


def test_files(root):
    for folder, _, names in os.walk(os.path.join(root, "tests")):
        for name in sorted(names):
            if name.endswith((".qtest", ".cpp")):
                yield os.path.join(folder, name)


def citations(root):
    """(file, line, rule) for each citation."""
    for path in test_files(root):
        for number, line in enumerate(read_lines(path), 1):
            match = CITATION.match(line)
            if match:
                for name in re.findall(RULE, match.group(1)):
                    yield os.path.relpath(path, root), number, name


def check(root):
    rules, doubles = definitions(root)
    for name, number in doubles:
        yield f"{DOCUMENT}:{number}: {name} is defined twice: give one of them a new number"
    for number, line in enumerate(read_lines(os.path.join(root, DOCUMENT)), 1):
        for name in MENTION.findall(line):
            if name not in rules:
                yield f"{DOCUMENT}:{number}: {name} is not defined"
    cited = set()
    for path, number, name in citations(root):
        cited.add(name)
        if name not in rules:
            yield f"{path}:{number}: {name} is no rule of {DOCUMENT}"
    for name, number in rules.items():
        if name not in cited:
            yield f"{DOCUMENT}:{number}: no test names {name}: add `rule: {name}` to a query script or unit test"


if __name__ == "__main__":
    broken = list(check(sys.argv[1]))
    for line in broken:
        print(line)
    sys.exit(1 if broken else 0)
