"""Reads the fenced blocks of a Markdown document."""
# SPDX-License-Identifier: Apache-2.0
import re
from dataclasses import dataclass

FENCE = re.compile(r"^```(.*)$")


@dataclass
class Block:
    line: int  # of the opening fence, from 1
    kind: str  # first word after the fence
    arguments: list  # the other words
    text: str  # with a line feed after each line


def blocks(path):
    """The fenced blocks of the file in order."""
    found, current, lines = [], None, []
    with open(path, encoding="utf-8") as document:
        for number, line in enumerate(document, 1):
            fence = FENCE.match(line)
            if fence is None:
                lines.append(line)
            elif current is None:
                words = fence.group(1).split()
                current, lines = Block(number, words[0] if words else "", words[1:], ""), []
            else:
                current.text = "".join(lines)
                found.append(current)
                current = None
    if current is not None:
        raise ValueError(f"{path}:{current.line}: this fence is not closed")
    return found
