"""The installed headers are the interface and nothing else: each is the tree's, includes installed headers and the
standard library alone, and compiles by itself.

Run as check_headers.py ROOT INSTALLED WORK COMPILER...: INSTALLED is the folder of the installed headers, WORK one for
what is compiled, COMPILER the compiler with a cache in front of it, if there is one; the exit status is 1 when anything
was printed.
"""
# SPDX-License-Identifier: Apache-2.0
import concurrent.futures
import os
import subprocess
import sys

import check_includes
import tree

# What stands in include/ lies at the root of the installed headers.
PLATFORM = "include"


def installed_headers(installed):
    return sorted(os.path.relpath(os.path.join(folder, name), installed)
                  for folder, _, names in os.walk(installed) for name in names)


def find_strangers(root, installed, headers):
    """Files that are not the tree's header of that name, and headers of the platform that are not installed."""
    for header in headers:
        twins = [path for path in (os.path.join(root, PLATFORM, header), os.path.join(root, header)) if os.path.isfile(path)]
        if not twins:
            yield f"{header}: is no header of the tree: remove it, or the folder that it was left in"
            continue
        with open(twins[0], "rb") as ours, open(os.path.join(installed, header), "rb") as theirs:
            if ours.read() != theirs.read():
                yield f"{header}: is not what the tree has: install again"
    wanted = {os.path.relpath(path, PLATFORM) for path in tree.cxx_files(root) if path.startswith(PLATFORM + "/")}
    for header in sorted(wanted - set(headers)):
        yield f"{header}: belongs to the platform interface and is not installed"


def find_open_ends(installed, headers):
    for header in headers:
        for number, bracket, name in check_includes.includes_of(installed, header):
            if bracket == '"' and name not in headers:
                yield (f"{header}:{number}: {name} is not installed: declare its classes forward, "
                       "or, if it is part of the interface, add it to cmake/QorqlHeaders.cmake")
            if bracket == "<" and name not in check_includes.STANDARD_HEADERS:
                yield f"{header}:{number}: <{name}> is not the standard library's: an embedder may not have it"


# Paths are relative to the installed headers, so that a compiler cache knows them again in another build.
def compile_alone(compiler, installed, work, header):
    name = header.replace("/", "_") + ".cpp"
    with open(os.path.join(work, name), "w", encoding="utf-8") as out:
        out.write(f'#include "{header}"\n')
    source = os.path.join(os.path.relpath(work, installed), name)
    command = [*compiler, "-std=c++20", "-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Werror", "-I", ".", "-c",
               source, "-o", source + ".o"]
    ran = subprocess.run(command, cwd=installed, capture_output=True, text=True, check=False)
    return f"{header}: does not compile by itself:\n{ran.stderr}" if ran.returncode != 0 else None


def find_dependent(compiler, installed, work, headers):
    os.makedirs(work, exist_ok=True)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        yield from filter(None, pool.map(lambda header: compile_alone(compiler, installed, work, header), headers))


def check(root, installed, work, compiler):
    headers = installed_headers(installed)
    if not headers:
        return [f"{installed}: there are no headers"]
    found = list(find_strangers(root, installed, headers)) + list(find_open_ends(installed, headers))
    return found or list(find_dependent(compiler, installed, work, headers))


if __name__ == "__main__":
    wrong = check(*sys.argv[1:4], sys.argv[4:])
    for line in wrong:
        print(line)
    sys.exit(1 if wrong else 0)
