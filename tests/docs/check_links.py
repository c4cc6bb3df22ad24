"""Each link of a document inside the tree leads somewhere: file and heading exist.

Run as check_links.py ROOT; looks at every Markdown file of the tree.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "layout"))
import tree  # noqa: E402

LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
HEADING = re.compile(r"^#+\s+(.*?)\s*$", re.MULTILINE)
FENCED = re.compile(r"^```.*?^```$", re.MULTILINE | re.DOTALL)


def read(path):
    with open(path, encoding="utf-8") as document:
        return FENCED.sub("", document.read())


def anchors(text):
    """The anchors that a page gives its headings."""
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in HEADING.findall(text)}


def check(root):
    for path in tree.files(root):
        if not path.endswith(".md"):
            continue
        text = read(os.path.join(root, path))
        for link in LINK.findall(text):
            if re.match(r"[a-z]+:", link):
                continue
            name, _, anchor = link.partition("#")
            target = os.path.normpath(os.path.join(root, os.path.dirname(path), name)) if name else os.path.join(root, path)
            if not os.path.exists(target):
                yield f"{path}: the link {link} leads to no file"
            elif anchor and anchor not in anchors(read(target)):
                yield f"{path}: the link {link} leads to no heading"


if __name__ == "__main__":
    broken = list(check(sys.argv[1]))
    for line in broken:
        print(line)
    sys.exit(1 if broken else 0)
