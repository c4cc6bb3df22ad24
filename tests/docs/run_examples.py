"""Runs the examples of a document: each ```query block must print what the ```result block after it says.

Run as run_examples.py TOOL DOCUMENT [MOF...]. The ```mof blocks of the document and the
given files are loaded before each query. Words after ```query go to the tool in place of
`-o csv`. A ```error block instead of ```result holds what standard error must contain.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import subprocess
import sys
import tempfile

import markdown

TIMEOUT_SECONDS = 60


def run_tool(tool, mof_files, block):
    command = [tool, "--no-live", *(block.arguments or ["-o", "csv"])]
    for path in mof_files:
        command += ["-m", path]
    return subprocess.run(
        command + [block.text.strip()], stdin=subprocess.DEVNULL, capture_output=True, timeout=TIMEOUT_SECONDS
    )


def compare(query, answer, ran):
    """What is wrong with the run, or None."""
    out, err = ran.stdout.decode(errors="replace"), ran.stderr.decode(errors="replace")
    if answer.kind == "error":
        missing = [line for line in answer.text.splitlines() if line not in err]
        if ran.returncode != 1 or missing:
            return f"expected exit status 1 and on standard error:\n{answer.text}got {ran.returncode}:\n{err}"
    elif ran.returncode != 0 or out != answer.text:
        return f"expected:\n{answer.text}got (exit status {ran.returncode}):\n{out}{err}"
    return None


def pairs(document):
    """Each query with the block after it."""
    blocks = [block for block in markdown.blocks(document) if block.kind in ("query", "result", "error")]
    for query, answer in zip(blocks[::2], blocks[1::2]):
        if query.kind != "query" or answer.kind == "query":
            raise ValueError(f"{document}:{query.line}: a query and its result must alternate")
        yield query, answer
    if len(blocks) % 2:
        raise ValueError(f"{document}:{blocks[-1].line}: this block has no partner")


def main(tool, document, mof_files):
    count = failures = 0
    with tempfile.TemporaryDirectory() as folder:
        own = os.path.join(folder, "document.mof")
        with open(own, "w", encoding="utf-8") as out:
            out.write("".join(block.text for block in markdown.blocks(document) if block.kind == "mof"))
        for query, answer in pairs(document):
            count += 1
            wrong = compare(query, answer, run_tool(tool, [*mof_files, own], query))
            if wrong:
                failures += 1
                print(f"{document}:{query.line}:\n{query.text}{wrong}")
    print(f"{count} examples, {failures} failed")
    return 1 if failures or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2], sys.argv[3:]))
