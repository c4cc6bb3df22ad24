"""Holds a guide and its program together: the guide's code is the program's, and so is its output.

Run as check_guide.py GUIDE SOURCE PROGRAM. Each ```cpp block must stand in SOURCE, line for
line (where that is a folder, in one of its files), and the ```output block must be what PROGRAM prints.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import subprocess
import sys

import markdown

TIMEOUT_SECONDS = 60


def check(guide, source, output):
    blocks = markdown.blocks(guide)
    for block in blocks:
        if block.kind == "cpp" and block.text not in source:
            yield f"{guide}:{block.line}: this code does not stand in the program"
    shown = [block for block in blocks if block.kind == "output"]
    if len(shown) != 1:
        yield f"{guide}:1: there must be one output block"
    elif shown[0].text != output:
        yield f"{guide}:{shown[0].line}: the program prints:\n{output}"


def code_of(source):
    """The text of a file, or of the files of a folder one after another."""
    files = [os.path.join(source, name) for name in sorted(os.listdir(source))] if os.path.isdir(source) else [source]
    code = ""
    for file in files:
        with open(file, encoding="utf-8") as text:
            code += text.read()
    return code


def main(guide, source, program):
    code = code_of(source)
    ran = subprocess.run([program], capture_output=True, timeout=TIMEOUT_SECONDS, check=True)
    wrong = list(check(guide, code, ran.stdout.decode()))
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:4]))
