"""Each command that a document or the opening comment of a script names is run by a check.

Run as check_commands.py TOOL ROOT. A command of the tool is run here, with a sample where a word stands for something
(QUERY), and --help where its arguments are not told; those of the ```sh blocks have a check of their own
(run_commands.py). Any other command must be one that .ci/run, scripts/bare or bare_test.py run: the same program with
all options that are named, whatever their values, so that long ones may run with their shortest setting.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import shlex
import subprocess
import sys

import markdown

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "layout"))
import tree  # noqa: E402

TIMEOUT_SECONDS = 60
# Whose ```sh blocks run_commands.py runs, and the one whose example runs as a whole (fleet.engines).
RUN_DOCUMENTS = ("README.md", os.path.join("docs", "tool.md"))
WHOLE_EXAMPLE = os.path.join("docs", "fleet.md")
# What runs commands, and is run by hand or by a machine that watches over the changes.
CALLERS = (os.path.join(".ci", "run"), os.path.join("scripts", "bare"), os.path.join("tests", "layout", "bare_test.py"))
ALL_CHECKS = ".ci/run"

# A text that is a command when it begins like this; `./qorql` may stand alone, `qorql` alone is a name.
PROGRAMS = ("apt apt-get bash ccache clang-format cmake ctest curl dnf docker dpkg-buildpackage gcovr gdb git jq make man mmdebstrap ninja perf "
            "pip podman python3 sh sqlite3 ssh sudo systemctl valgrind")
START = re.compile(r"(?:\./(?!\.)\w\S*|qorql (?!>)\S|(?:" + PROGRAMS.replace(" ", "|") + r") [-\w./]|build/\S+ -)")
INLINE = re.compile(r"`([^`]+)`")
FENCED = re.compile(r"^```.*?^```$", re.MULTILINE | re.DOTALL)
# In an opening comment: a script of the tree with the options and placeholders behind it.
ARGUMENT = r"(?: +(?:\[[^\]]*\](?:\.\.\.)?|--?[a-zA-Z][-\w]*(?:=\S+)?|[A-Z]{2,}\S*))"
IN_COMMENT = re.compile(r"(?<![\w/.`])((?:\./\w+|scripts/\w+|bench/run|\.ci/run)\b(?!\.\w)" + ARGUMENT + "*)")
IN_COMMENT_ALONE = re.compile("(?:" + PROGRAMS.replace(" ", "|") + ") -")
OPTION = re.compile(r"(?<![-\w])(--?[a-zA-Z][-\w]*)")

SAMPLES = {
    "QUERY": "'SELECT Name FROM Linux_OperatingSystem'",
    "FILTER": "'SELECT * FROM CIM_AlertIndication'",
    "COMMAND": "classes",
    "PATTERN": "'Linux_*'",
    "NAME": "Linux_OperatingSystem",
    "CLASS": "Linux_OperatingSystem",
}


def is_script(root, path):
    full = os.path.join(root, path)
    return os.path.isfile(full) and os.access(full, os.X_OK)


def is_command(root, text):
    program = text.split(" ", 1)[0]
    return bool(START.match(text)) or "/" in program and is_script(root, program)


def without_remark(line):
    return re.split(r"\s+#\s", line.strip(), maxsplit=1)[0].strip()


def of_document(root, path):
    """(line, command, whether it stands in a ```sh block) of a Markdown document."""
    full = os.path.join(root, path)
    for block in markdown.blocks(full):
        for offset, line in enumerate(block.text.splitlines(), 1):
            if block.kind == "sh" and line.strip():
                yield block.line + offset, without_remark(line), True
            elif block.kind in ("", "text", "console") and is_command(root, line.strip()):
                yield block.line + offset, without_remark(line), False
    with open(full, encoding="utf-8") as document:
        prose = FENCED.sub(lambda block: "\n" * block.group().count("\n"), document.read())
    for number, line in enumerate(prose.splitlines(), 1):
        if line.startswith("    ") and is_command(root, line.strip()):
            yield number, without_remark(line), False
        else:
            for text in INLINE.findall(line):
                if is_command(root, text):
                    yield number, text, False


def opening_comment(text):
    """The comment that a script begins with, in one line."""
    lines = text.splitlines()[1:] if text.startswith("#!") else text.splitlines()
    opening = []
    for line in lines:
        if not line.startswith("#"):
            break
        opening.append(line.lstrip("#").strip())
    return opening


def of_script(root, path):
    with open(os.path.join(root, path), encoding="utf-8") as source:
        opening = opening_comment(source.read())
    for number, line in enumerate(opening, 1):
        if IN_COMMENT_ALONE.match(line):
            yield number, line, False
    for match in IN_COMMENT.finditer(re.sub(r"  +", " ", " ".join(opening))):
        yield 1, match.group(1).strip().rstrip(".,:;"), False


def mentions(root):
    """(file, line, command, whether it stands in a ```sh block) for each command that is named."""
    for path in tree.files(root):
        name = os.path.basename(path)
        if path.endswith(".md"):
            found = of_document(root, path)
        elif is_script(root, path) and not path.endswith(".py") or path.endswith((".sh", ".cmake")) or name == "CMakeLists.txt":
            found = of_script(root, path)
        else:
            continue
        for number, command, is_shell in found:
            yield path, number, command, is_shell


def program_of(command):
    return re.sub(r"^\./(?=\w+/)", "", command.split(" ", 1)[0])


def calls(root):
    """Program to the texts of its calls by those that run commands."""
    found = {}
    for path in CALLERS:
        full = os.path.join(root, path)
        if not os.path.exists(full):
            continue
        with open(full, encoding="utf-8") as source:
            text = re.sub(r"^\s*#.*$", "", source.read(), flags=re.MULTILINE).replace("\\\n", " ")
        for part in re.split(r"&&|\|\||[|;\n(){}\"]", text):
            part = part.strip().removeprefix("exec ").removeprefix("in_tree ").strip("'")
            if part:
                found.setdefault(program_of(part), []).append(part)
    return found


def is_called(command, called):
    """Whether each part of a command line is among the calls, with all its options."""
    for part in re.split(r"&&|\|", command):
        part = part.strip()
        known = " ".join(called.get(program_of(part), []))
        if not known or not set(OPTION.findall(part)) <= set(OPTION.findall(known)):
            return False
        if "/" not in program_of(part) and part not in known:
            return False
    return True


def sample_of(command):
    """The arguments with which a command of the tool is tried."""
    arguments = command.split(" ", 1)[1] if " " in command else ""
    if arguments.startswith(("serve", "listen")):
        return arguments + " --help"  # they do not end by themselves; tests/server runs them
    has_gap = bool(re.search(r"[A-Z]{4,}|\[", arguments))
    if re.search(r"'|\"|--? ?\w+|^$", arguments) and not has_gap:
        return arguments
    arguments = re.sub(r"\[[^\]]*\]|\.\.\.", "", arguments)
    if not re.search("[A-Z]{4,}", arguments) or arguments.startswith("watch"):
        return re.sub(r"\b[A-Z]{4,}\b", "", arguments) + " --help"  # alone it would ask for more, or not end
    return re.sub(r"\b[A-Z]{4,}\b", lambda word: SAMPLES.get(word.group(), word.group()), arguments)


def try_tool(tool, root, command):
    """What is wrong with the command of the tool, or None."""
    line = f"{shlex.quote(tool)} {sample_of(command)}"
    ran = subprocess.run(line, shell=True, cwd=root, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                         timeout=TIMEOUT_SECONDS, check=False)
    return None if ran.returncode == 0 else f"tried as qorql {sample_of(command)}: status {ran.returncode}: {ran.stderr}"


def check(tool, root):
    called = calls(root)
    tried = {}
    for path, number, command, is_shell in mentions(root):
        if is_shell and path == WHOLE_EXAMPLE:
            continue
        wrong = None
        if program_of(command) in ("./qorql", "qorql"):
            if is_shell and path in RUN_DOCUMENTS and command.startswith("./"):
                continue
            if command not in tried:
                tried[command] = try_tool(tool, root, command)
            wrong = tried[command]
        elif command != ALL_CHECKS and not is_called(command, called):
            wrong = "no check runs it with these options: let .ci/run run it, with its shortest setting"
        if wrong:
            yield f"{path}:{number}: {command}: {wrong}"


def main(tool, root):
    broken = list(check(tool, root))
    for line in broken:
        print(line)
    print(f"{sum(1 for _ in mentions(root))} commands, {len(broken)} not run")
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:3]))
