"""Reads what a program shows at a terminal, to its last byte, and answers what it asks there."""
# SPDX-License-Identifier: Apache-2.0
import os
import select
import time


def read_piece(terminal, size=65536):
    """What is there to be read of a terminal, and b"" once its other end is closed and all is read.

    Linux may tell the end to one who reads while the program writes its last lines and ends: these reach the reader's
    side a moment later. Who is told of an end asks once more, and is given all of them or told the same again.
    """
    for _ in range(2):
        try:
            piece = os.read(terminal, size)
        except OSError:
            continue
        if piece:
            return piece
    return b""


def read_all(terminal):
    """What comes until the other end is closed."""
    return b"".join(iter(lambda: read_piece(terminal), b""))


def converse(terminal, answers, seconds=30):
    """What comes until the other end is closed, or the seconds are over; each question, which ends with a colon, is answered."""
    shown, asked, answers, end = b"", 0, list(answers), time.monotonic() + seconds
    while time.monotonic() < end:
        if not select.select([terminal], [], [], 0.2)[0]:
            continue
        piece = read_piece(terminal)
        if not piece:
            break
        shown += piece
        if answers and shown[asked:].rstrip().endswith(b":"):
            os.write(terminal, answers.pop(0).encode() + b"\n")
            asked = len(shown)
    return shown
