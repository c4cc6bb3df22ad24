"""No example of the documentation is warned of, unless it shows what the warning is about.

Run as check_warnings.py TOOL ROOT. The examples of docs/language.md run over examples/language.mof and the
document's own ```mof blocks; a warning about one must name the rule under which the example stands. The
queries of README.md and docs/tool.md get none at all.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import shlex
import subprocess
import sys
import tempfile

import markdown
import run_commands

TIMEOUT_SECONDS = 60
RULE = re.compile(r"\*\*\[([A-Z]+-\d+)\]\*\*")
WARNING = re.compile(r"^qorql: warning: (.*)$", re.MULTILINE)
TAG = re.compile(r" \[([A-Z]+-\d+)\]$")
# The example of a property that no class has: a warning without a rule.
UNKNOWN_PROPERTY = "NAME-4"


def rules_by_line(document):
    """For each line, from 1, the rules that the last line before it defines which defines any."""
    current, rules = [], [[]]
    with open(document, encoding="utf-8") as source:
        for line in source:
            rules.append(current)
            current = RULE.findall(line) or current
    return rules


def unexpected(warnings, rules):
    """The warnings that are not about one of the rules."""
    tags = [(warning, TAG.search(warning)) for warning in warnings]
    return [w for w, tag in tags if (tag.group(1) if tag else UNKNOWN_PROPERTY) not in rules]


def explain(tool, root, arguments, query):
    ran = subprocess.run([tool, "explain", *arguments, query], cwd=root, stdin=subprocess.DEVNULL, capture_output=True,
                         timeout=TIMEOUT_SECONDS, text=True)
    failure = [] if ran.returncode == 0 else [f"exit status {ran.returncode}: {ran.stderr}"]
    return WARNING.findall(ran.stdout + ran.stderr) + failure


def queries_of_commands(document):
    """(line, options that load MOF, query) of the commands that run or explain one."""
    for line, command in run_commands.commands(document):
        words = shlex.split(command.split(" | ")[0])[1:]
        mof = [word for i in range(len(words) - 1) if words[i] == "-m" for word in words[i:i + 2]]
        statements = [word for word in words if word.upper().startswith("SELECT ")]
        if statements and words[0] not in ("match", "validate", "watch"):
            yield line, mof, statements[0]


def check_language(tool, root):
    document = os.path.join(root, "docs", "language.md")
    rules = rules_by_line(document)
    blocks = markdown.blocks(document)
    with tempfile.TemporaryDirectory() as folder:
        own = os.path.join(folder, "document.mof")
        with open(own, "w", encoding="utf-8") as out:
            out.write("".join(block.text for block in blocks if block.kind == "mof"))
        arguments = ["--no-live", "-m", os.path.join(root, "examples", "language.mof"), "-m", own]
        for block in blocks:
            if block.kind == "query":
                yield block.line, unexpected(explain(tool, root, arguments, block.text.strip()), rules[block.line])


def check_commands(tool, root, document):
    for line, mof, query in queries_of_commands(document):
        yield line, explain(tool, root, mof, query)


def main(tool, root):
    checks = {"docs/language.md": check_language(tool, root)}
    for name in ("README.md", "docs/tool.md"):
        checks[name] = check_commands(tool, root, os.path.join(root, name))
    failures = 0
    for name, results in checks.items():
        count = 0
        for line, warnings in results:
            count += 1
            failures += len(warnings)
            for warning in warnings:
                print(f"{name}:{line}: {warning}")
        print(f"{name}: {count} queries")
        failures += count == 0
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:3]))
