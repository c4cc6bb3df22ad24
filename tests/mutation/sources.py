"""The sources that faults are planted in, by area, and who includes a header."""
# SPDX-License-Identifier: Apache-2.0
import os
import re

AREAS = {"engine": "Cimom/QORQL", "foundation": "Cimom/Foundation", "model": "Cimom/Model", "mof": "Cimom/Mof",
         "embedded": "Cimom/Embedded"}
# A header that more sources include takes too long to compile for one fault.
MOST_INCLUDERS = 8
INCLUDE = re.compile(r'^#include "(Cimom/[^"]+)"', re.MULTILINE)


def read(root, path):
    with open(os.path.join(root, path), encoding="utf-8") as source:
        return source.read()


def listed(root, folders, ending):
    """The files below the folders, rooms included, that end so."""
    return sorted(os.path.relpath(os.path.join(place, name), root) for folder in folders
                  for place, _, names in os.walk(os.path.join(root, folder)) for name in names if name.endswith(ending))


def all_folders(root):
    return [f"Cimom/{name}" for name in sorted(os.listdir(os.path.join(root, "Cimom")))
            if os.path.isdir(os.path.join(root, "Cimom", name))]


def includers(root):
    """For each header the sources that include it, also by way of other headers."""
    folders = all_folders(root)
    included = {path: INCLUDE.findall(read(root, path))
                for ending in (".h", ".cpp") for path in listed(root, folders, ending)}
    found = {}
    for source in listed(root, folders, ".cpp"):
        seen, left = set(), list(included[source])
        while left:
            header = left.pop()
            if header not in seen:
                seen.add(header)
                left += included.get(header, [])
        for header in seen:
            found.setdefault(header, []).append(source)
    return found


def in_areas(root, areas):
    """Each path where faults are planted, with the sources that have to be compiled for it."""
    folders = [AREAS[area] for area in areas]
    found = {path: [path] for path in listed(root, folders, ".cpp")}
    by_header = includers(root)
    for header in listed(root, folders, ".h"):
        users = by_header.get(header, [])
        if 0 < len(users) <= MOST_INCLUDERS:
            found[header] = users
    return found
