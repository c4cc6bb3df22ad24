"""Runs the commands of a document: each ./qorql line of its ```sh blocks must succeed and print something.

Run as run_commands.py TOOL ROOT DOCUMENT. The commands run in ROOT with TOOL in place of ./qorql, while processes come
and go for those that wait for one.
"""
# SPDX-License-Identifier: Apache-2.0
import contextlib
import re
import shlex
import subprocess
import sys
import threading

import markdown

TIMEOUT_SECONDS = 60
# What the tool says where the caller may not see a part of a live class, which depends on the caller.
UNSEEN = re.compile(rb"^qorql: warning: Cannot read \S+: (Permission denied|No such file or directory)(, and \d+ more)?\n",
                    re.MULTILINE)
COMMAND = "./qorql "


@contextlib.contextmanager
def coming_and_going():
    """A process every moment, each there long enough to be seen."""
    over = threading.Event()

    def start_some():
        running = []
        while not over.wait(0.3):
            running.append(subprocess.Popen(["sleep", "3"]))
            running = [process for process in running if process.poll() is None]
        for process in running:
            process.kill()
            process.wait()

    thread = threading.Thread(target=start_some)
    thread.start()
    try:
        yield
    finally:
        over.set()
        thread.join()


def run(command, root):
    with coming_and_going() if " watch " in command else contextlib.nullcontext():
        return subprocess.run(command, shell=True, cwd=root, stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=TIMEOUT_SECONDS)


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
        ran = run(shlex.quote(tool) + command[len(COMMAND) - 1:], root)
        if ran.returncode != 0 or not ran.stdout.strip() or UNSEEN.sub(b"", ran.stderr):
            failures += 1
            print(f"{document}:{number}: {command}\nexit status {ran.returncode}")
            print(ran.stdout.decode(errors="replace") + ran.stderr.decode(errors="replace"))
    print(f"{count} commands, {failures} failed")
    return 1 if failures or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:4]))
