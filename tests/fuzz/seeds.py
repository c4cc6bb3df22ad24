"""Seeds for the fuzz targets from the query scripts and models of the tests.

Run as seeds.py ROOT FOLDER; makes FOLDER/query, /xml and /mof with one file for each input.
"""
# SPDX-License-Identifier: Apache-2.0
import glob
import hashlib
import os
import sys

SECTION_WORDS = {"rule:", "query", "result", "error", "echo", "log", "calls", "end"}


def queries_of(path):
    """The text of each query section of a script."""
    lines = None
    with open(path, "rb") as script:
        for line in script.read().split(b"\n"):
            word = line.split(b" ")[0].decode("utf-8", "replace")
            if word in SECTION_WORDS:
                if lines:
                    yield b"\n".join(lines)
                lines = [] if line == b"query" else None
            elif lines is not None:
                lines.append(line)


def write(folder, text):
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, hashlib.sha1(text).hexdigest()[:16]), "wb") as seed:
        seed.write(text)


def main(root, folder):
    for path in sorted(glob.glob(os.path.join(root, "tests/queries/*.qtest"))):
        for query in queries_of(path):
            if len(query) <= 4096:
                write(os.path.join(folder, "query"), query)
                write(os.path.join(folder, "xml"), query)
    for pattern in ("tests/queries/models/*.mof", "tests/fuzz/models/*.mof", "examples/*.mof"):
        for path in sorted(glob.glob(os.path.join(root, pattern))):
            with open(path, "rb") as model:
                text = model.read()
            write(os.path.join(folder, "mof"), text)
            # Each declaration alone finds more than all of them together.
            for part in text.split(b"\n\n"):
                write(os.path.join(folder, "mof"), part + b"\n")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
