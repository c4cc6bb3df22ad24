"""Compares the binary interface of two installations with abidiff: what the libraries export of the installed headers, the
types in it member by member, what operations return, and the order of virtual functions. What has come since is fine.

Run as compare_abi.py OLD NEW, two prefixes; each has libraries with whole debugging information (-g) below lib*, and
headers in include/qorql. The libraries' inner parts, which they export too, are left out: functions that no installed
header of OLD has, and types that no installed header defines. The exit status is 1 when anything was printed.
"""
# SPDX-License-Identifier: Apache-2.0
import glob
import os
import re
import subprocess
import sys
import tempfile

import check_abi

HEADERS = os.path.join("include", "qorql")
# What abidiff's status says: that it failed, or was called wrongly.
FAILED = 1 | 2
HAS_TYPES = re.compile(r"DW_TAG_(?:class|structure)_type")


def libraries(prefix):
    """The libraries by their file names, without the version behind it."""
    found = glob.glob(os.path.join(prefix, "lib*", "**", "libqorql*.so"), recursive=True)
    return {os.path.basename(path): path for path in sorted(found) if os.path.dirname(path).split(os.sep)[-1] != "qorql"}


def interface_of(prefix):
    root = os.path.join(prefix, HEADERS)
    found = glob.glob(os.path.join(root, "**", "*.h"), recursive=True)
    return check_abi.Interface(root, sorted(os.path.relpath(path, root) for path in found))


def symbols(library, *options):
    """Unsorted, so that two lists of one library go together line by line."""
    listing = subprocess.run(["nm", "-D", "-p", "--defined-only", *options, library], capture_output=True, text=True, check=True)
    return [line.split(" ", 2)[2] for line in listing.stdout.splitlines()]


def public_symbols(library, interface):
    for symbol, name in zip(symbols(library), symbols(library, "-C")):
        if interface.is_part(name):
            yield symbol


def tells_types(library):
    with subprocess.Popen(["readelf", "--debug-dump=abbrev", library], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                          text=True) as listing:
        found = any(HAS_TYPES.search(line) for line in listing.stdout)
        listing.stdout.read()
    return found


def differences(old, new, folders, wanted):
    """What abidiff says of the symbols that are wanted; empty when that is nothing."""
    with tempfile.NamedTemporaryFile("w", encoding="utf-8", suffix=".list") as listed:
        listed.write("[abi_whitelist]\n" + "".join(f"  {symbol}\n" for symbol in wanted))
        listed.flush()
        ran = subprocess.run(["abidiff", "--no-added-syms", "--drop-private-types", "--kmi-whitelist", listed.name,
                              "--headers-dir1", folders[0], "--headers-dir2", folders[1], old, new],
                             capture_output=True, text=True, check=False)
    if ran.returncode & FAILED:
        return f"abidiff cannot compare {old} with {new}: {ran.stderr.strip() or ran.stdout.strip()}"
    return ran.stdout.strip() if ran.returncode else ""


def compare(old, new):
    before, after, interface = libraries(old), libraries(new), interface_of(old)
    if not before:
        yield f"{old}: there are no libraries below it"
    for name, library in before.items():
        if name not in after:
            yield f"{name}: is not in {new}"
            continue
        bare = [path for path in (library, after[name]) if not tells_types(path)]
        yield from (f"{path}: tells no types, build it with -g" for path in bare)
        wanted = sorted(set(public_symbols(library, interface)))
        if not wanted:
            yield f"{name}: exports nothing of the headers in {os.path.join(old, HEADERS)}"
        elif not bare:
            found = differences(library, after[name], [os.path.join(prefix, HEADERS) for prefix in (old, new)], wanted)
            if found:
                yield f"{name}: programs that were built before would break:\n{found}"


def main(old, new):
    found = list(compare(old, new))
    for text in found:
        print(text)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
