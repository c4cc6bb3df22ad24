"""Who may include whom: prints each #include that points the wrong way, with reason and fix.

Run as check_includes.py ROOT; the exit status is 1 when anything was printed.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import sys

import tree

# The engine's language, which lies beside its rooms.
LANGUAGE = ["Cimom/QORQL/QORQL_", "Cimom/QORQL/CQL"]

# For each folder: the folders (or files, by prefix) that it may include besides
# itself, and why nothing else. The longest matching folder counts.
RULES = {
    "include": ([], "the platform's headers stand on the standard library alone"),
    "include/qorql.h": (
        ["include/", "Cimom/QORQL/Face/", "Cimom/QORQL/Explain/"] + LANGUAGE,
        "the face of the engine is made of its public headers",
    ),
    "Cimom/QORQL": (["include/"], "the engine knows an object manager by its interface in include/ only, its language none of its rooms"),
    "Cimom/QORQL/Lazy": (["include/"] + LANGUAGE, "lazy rows know the language, and nobody who uses them"),
    "Cimom/QORQL/Out": (
        ["include/", "Cimom/QORQL/Lazy/"] + LANGUAGE,
        "what writes and reads results knows the language and its tables, not how they came about",
    ),
    "Cimom/QORQL/Run": (
        ["include/", "Cimom/QORQL/Lazy/", "Cimom/QORQL/Out/"] + LANGUAGE,
        "a query runs without knowing who explains it, and apart from filters",
    ),
    "Cimom/QORQL/Explain": (
        ["include/", "Cimom/QORQL/Lazy/"] + LANGUAGE,
        "what explains a query runs none",
    ),
    "Cimom/QORQL/Filter": (["include/"] + LANGUAGE, "filters need no tables, no rows and no query that runs"),
    "Cimom/QORQL/Face": (
        ["include/", "Cimom/QORQL/Out/", "Cimom/QORQL/Explain/"] + LANGUAGE,
        "the face is made of what every program may use",
    ),
    "Cimom/Foundation": (["include/"], "the foundation is the out-of-line code of include/cmpbase"),
    "Cimom/Model": (["include/"], "the object model stands on the foundation alone"),
    "Cimom/Embedded": (
        ["include/", "Cimom/Model/"],
        "the object manager serves the engine and must not know it, nor MOF, nor its providers",
    ),
    "Cimom/Mof": (
        ["include/", "Cimom/Embedded/CimDeclaration"],
        "the MOF reader hands declarations to a sink and must not know who keeps them",
    ),
    "Cimom/Providers": (
        ["include/", "Cimom/Embedded/"],
        "a provider fills instances through the object manager's provider interface",
    ),
    "Cimom/CimXml": (
        ["include/", "Cimom/Model/", "Cimom/Embedded/CimDeclarations.h"],
        "CIM-XML is read and written without knowing who asks or answers",
    ),
    "Cimom/Remote": (
        ["include/", "Cimom/Model/", "Cimom/CimXml/", "Cimom/Embedded/"],
        "servers are asked on behalf of the object manager, whose outer source they are",
    ),
    "Cimom/Server": (
        ["include/", "Cimom/Model/", "Cimom/CimXml/", "Cimom/Embedded/"],
        "a server answers for the object manager, and runs statements through the engine's face in include/",
    ),
    "tools": (["include/", "Cimom/"], "tools are built without tests and benchmarks"),
    "examples": (["include/", "Cimom/"], "an example uses what an embedder has"),
    "tests": (["include/", "Cimom/", "tools/"], "tests are built without benchmarks"),
    "bench": (["include/", "Cimom/"], "benchmarks are built without tests and tools"),
}

# Folders whose angle-bracket includes are the standard library's, and what else they may name.
ANGLE_ALLOWED = {
    "include": [],
    "Cimom/QORQL": [],
    "Cimom/QORQL/Lazy": [],
    "Cimom/QORQL/Out": [],
    "Cimom/QORQL/Run": [],
    "Cimom/QORQL/Explain": [],
    "Cimom/QORQL/Face": [],
    "Cimom/QORQL/Filter": [],
    "Cimom/Foundation": [],
    "Cimom/Model": [],
    "Cimom/Mof": ["MofCacheFormat_generated.h", "xxhash.h"],
    "Cimom/Embedded": ["ini.h", "INIReader.h"],
    "Cimom/CimXml": ["expat.h"],
}

STANDARD_HEADERS = set(
    """algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes
    climits clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg
    cstddef cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem
    forward_list fstream functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits
    list locale map memory memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex
    scoped_allocator semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf
    string string_view strstream syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map
    unordered_set utility valarray variant vector version""".split()
)

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def folder_of(path):
    """The longest folder of RULES that holds the path, or the file's own rule; None for neither."""
    holders = [folder for folder in RULES if path == folder or path.startswith(folder + "/")]
    return max(holders, key=len, default=None)


def includes_of(root, path):
    """(line number, bracket, name) for each #include of the file."""
    with open(os.path.join(root, path), encoding="utf-8") as source:
        for number, line in enumerate(source, 1):
            match = INCLUDE.match(line)
            if match:
                yield number, match.group(1), match.group(2)


def resolve(root, path, name):
    """The file that a quoted include means, relative to the root; None when it is not in the tree."""
    beside = os.path.join(os.path.dirname(path), name)
    for candidate in (os.path.join("include", name), name, beside):
        if os.path.isfile(os.path.join(root, candidate)):
            return os.path.normpath(candidate)
    return None


def wrong_quoted(root, path, folder, name):
    target = resolve(root, path, name)
    if target is None:
        if folder == "tests":
            return None  # found through tests/support or made by the build
        return f'"{name}" is not in the tree: name it from the root or from include/'
    allowed, reason = RULES[folder]
    if folder_of(target) == folder or any(target.startswith(prefix) for prefix in allowed):
        return None
    may = " and ".join([folder + "/"] + allowed)
    return f"{target} may not be included here, because {reason}. Include only {may}, or move the code"


def wrong_angle(folder, name):
    if folder not in ANGLE_ALLOWED or name in STANDARD_HEADERS or name in ANGLE_ALLOWED[folder]:
        return None
    return f"<{name}> is not the standard library's: {folder}/ stays portable. Move the use to a folder that may have it"


def find_wrong_directions(root, paths):
    for path in paths:
        folder = folder_of(path)
        if folder is None:
            yield f"{path}:1: this folder has no include rule: add it to RULES in tests/layout/check_includes.py"
            continue
        for number, bracket, name in includes_of(root, path):
            wrong = wrong_angle(folder, name) if bracket == "<" else wrong_quoted(root, path, folder, name)
            if wrong:
                yield f"{path}:{number}: {wrong}"


def find_cycles(root, paths):
    """Each header that includes itself through others, once per cycle found."""
    edges = {}
    for path in paths:
        if path.endswith(".h"):
            quoted = (resolve(root, path, name) for _, bracket, name in includes_of(root, path) if bracket == '"')
            edges[path] = [target for target in quoted if target]
    finished = set()
    for start in edges:
        trail, stack = [], [(start, iter(edges[start]))]
        while stack:
            path, targets = stack[-1]
            if len(trail) < len(stack):
                trail.append(path)
            target = next((t for t in targets if t not in finished), None)
            if target is None:
                finished.add(path)
                stack.pop()
                trail.pop()
            elif target in trail:
                ring = " -> ".join(trail[trail.index(target):] + [target])
                yield f"{target}:1: headers include each other in a ring: {ring}. Declare a class forward in one of them"
            else:
                stack.append((target, iter(edges.get(target, []))))


def check(root):
    paths = tree.cxx_files(root)
    return list(find_wrong_directions(root, paths)) + list(find_cycles(root, paths))


if __name__ == "__main__":
    found = check(sys.argv[1])
    for line in found:
        print(line)
    sys.exit(1 if found else 0)
