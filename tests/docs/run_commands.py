"""Runs the commands of a document: each ./qorql line of its ```sh blocks must succeed and print something.

Run as run_commands.py TOOL ROOT DOCUMENT. The commands run in ROOT with TOOL in place of ./qorql.
"""
import shlex
import subprocess
import sys

import markdown

TIMEOUT_SECONDS = 60
COMMAND = "./qorql "


def commands(document):
    """(line, command) in order."""
    for block in markdown.blocks(document):
        if block.kind == "sh":
            for offset, line in enumerate(block.text.splitlines(), 1):
                if line.startswith(COMMAND):
                    yield block.line + offset, line


def main(tool, root, document):
    count = failures = 0
    for number, command in commands(document):
        count += 1
        ran = subprocess.run(
            shlex.quote(tool) + command[len(COMMAND) - 1:],
            shell=True,
            cwd=root,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=TIMEOUT_SECONDS,
        )
        if ran.returncode != 0 or not ran.stdout.strip() or ran.stderr:
            failures += 1
            print(f"{document}:{number}: {command}\nexit status {ran.returncode}")
            print(ran.stdout.decode(errors="replace") + ran.stderr.decode(errors="replace"))
    print(f"{count} commands, {failures} failed")
    return 1 if failures or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:4]))
