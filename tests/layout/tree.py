"""The files of a source tree: what git knows or would add, else a walk that leaves out builds.

Run alone it prints the C++ files, one a line: tree.py ROOT
"""
# SPDX-License-Identifier: Apache-2.0
import os
import subprocess
import sys

SKIPPED_FOLDERS = {".git", ".cache", "build", "__pycache__"}
CXX_ENDINGS = (".cpp", ".h")


def _from_git(root):
    listing = subprocess.run(
        ["git", "-C", root, "ls-files", "--cached", "--others", "--exclude-standard", "-z"],
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        check=True,
    )
    return [path for path in listing.stdout.decode().split("\0") if path]


def _from_walk(root):
    found = []
    for folder, folders, names in os.walk(root):
        folders[:] = [name for name in folders if name not in SKIPPED_FOLDERS]
        found += [os.path.relpath(os.path.join(folder, name), root) for name in names]
    return found


def files(root):
    """Paths relative to the root, in order; every one exists and is a plain file."""
    try:
        is_checkout = os.path.exists(os.path.join(root, ".git"))
        paths = _from_git(root) if is_checkout else _from_walk(root)
    except (OSError, subprocess.CalledProcessError):
        paths = _from_walk(root)
    return sorted(path for path in set(paths) if os.path.isfile(os.path.join(root, path)))


def cxx_files(root):
    return [path for path in files(root) if path.endswith(CXX_ENDINGS)]


if __name__ == "__main__":
    print("\n".join(cxx_files(sys.argv[1])))
