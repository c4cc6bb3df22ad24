"""The Debian packages agree with the rest of the tree: the version, what they are built with, and that each file which
`cmake --install` lays down is in one package. scripts/bare --package builds and tries them; this takes no time.

Run as check_package.py ROOT MANIFEST PREFIX: the manifest lists the installed files, which stand below the prefix.
"""
# SPDX-License-Identifier: Apache-2.0
import fnmatch
import glob
import itertools
import os
import re
import sys

# What debian/control need not name, and what only a package needs.
ESSENTIAL = {"g++"}
OF_PACKAGES = {"debhelper-compat"}
TRIPLET = "a-triplet"  # in a package the libraries stand in a folder of that kind
NO_LIBRARIES = ("lib/systemd/", "lib/sysusers.d/")  # which stand in lib itself


def read(root, path):
    with open(os.path.join(root, path), encoding="utf-8") as source:
        return source.read()


def first_match(root, path, pattern):
    found = re.search(pattern, read(root, path), re.MULTILINE)
    return found.group(1) if found else None


def check_versions(root):
    version = first_match(root, "CMakeLists.txt", r"^project\(\w+ VERSION ([\d.]+)")
    for path, pattern in (("debian/changelog", r"\A\w+ \(([^)]*)\)"), ("CHANGELOG.md", r"^## (\S+)")):
        told = first_match(root, path, pattern)
        if told != version:
            yield f"{path} begins with version {told}, CMakeLists.txt with {version}"


def check_build_packages(root):
    listed = read(root, "packages.txt").split("# Tests")[0]
    wanted = {line.split("#")[0].strip() for line in listed.splitlines()} - {""} - ESSENTIAL
    field = first_match(root, "debian/control", r"^Build-Depends:\n((?: .*\n)*)")
    named = {line.strip().rstrip(",").split(" ")[0] for line in (field or "").splitlines()} - OF_PACKAGES
    for package in sorted(wanted - named):
        yield f"debian/control: Build-Depends lacks {package} of packages.txt"
    for package in sorted(named - wanted):
        yield f"debian/control: Build-Depends has {package}, packages.txt has it not above the tests"


def installed_files(manifest, prefix):
    """The files as a package has them: usr/bin/qorql."""
    with open(manifest, encoding="utf-8") as listing:
        for line in listing.read().splitlines():
            path = os.path.relpath(line, prefix)
            is_library = path.startswith("lib/") and not path.startswith(NO_LIBRARIES)
            yield "usr/" + (f"lib/{TRIPLET}/{path[4:]}" if is_library else path)


def patterns(root):
    """(file, pattern) for each line of the lists of what a package takes."""
    for path in sorted(glob.glob(os.path.join(root, "debian", "*.install"))):
        for line in read(root, path).splitlines():
            if line.strip():
                yield os.path.basename(path), line.split()[0]


def takes(pattern, path):
    return all(fnmatch.fnmatchcase(name, wanted)
               for name, wanted in itertools.zip_longest(path.split("/")[:pattern.count("/") + 1], pattern.split("/"), fillvalue=""))


def check_files(root, files):
    lists = list(patterns(root))
    for path in files:
        takers = [f"{name} ({pattern})" for name, pattern in lists if takes(pattern, path)]
        if len(takers) != 1:
            yield f"{path}: in {len(takers)} packages: {', '.join(takers) or 'add it to one of debian/*.install'}"
    for name, pattern in lists:
        if not any(takes(pattern, path) for path in files):
            yield f"debian/{name}: nothing that is installed matches {pattern}"


def check(root, manifest, prefix):
    files = list(installed_files(manifest, prefix))
    return [*check_versions(root), *check_build_packages(root), *check_files(root, files)]


if __name__ == "__main__":
    broken = check(*sys.argv[1:4])
    for line in broken:
        print(line)
    sys.exit(1 if broken else 0)
