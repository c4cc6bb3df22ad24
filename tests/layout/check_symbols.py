"""The libraries' outer symbols: what the engine and the object model need from outside, the plain names that the engine
must export, and that no library has what another one has.

Run as check_symbols.py INCLUDE_FOLDER ENGINE MODEL [OTHER...]; the exit status is 1 when anything was printed.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import subprocess
import sys

EXPORTED = ["lineno", "yylval", "yywrap"]

# Symbols of the compiler's and the C library's run time carry one of these versions...
RUNTIME_VERSION = re.compile(r"@+(GLIBC|GLIBCXX|CXXABI|GCC)[_0-9.A-Z]*$")
# ... or are one of these: optional hooks, sanitizers and coverage counting.
RUNTIME_NAME = re.compile(r"^(_ITM_\w+|__gmon_start__|__cxa_\w+|__(asan|ubsan|tsan|sanitizer|gcov)_\w+)$")

# What stands at the left margin belongs to no class.
DECLARED_TYPE = re.compile(r"^(?:class|struct)\s+(\w+)", re.MULTILINE)
DECLARED_FUNCTION = re.compile(r"^[\w\[][\w\[\]:<>&*, ]*?\b(\w+)\([^;{}]*\)[\w ]*;", re.MULTILINE)
SPECIAL = re.compile(r"^(vtable for|typeinfo for|typeinfo name for|VTT for|guard variable for|(non-virtual |virtual )?thunk to) ")


def platform_names(include):
    """Every type and function name that the platform's headers declare."""
    names = set()
    for folder, _, files in os.walk(include):
        for name in files:
            with open(os.path.join(folder, name), encoding="utf-8") as header:
                text = header.read()
            names.update(DECLARED_TYPE.findall(text))
            names.update(DECLARED_FUNCTION.findall(text))
    return names


def owner_of(symbol):
    """The outermost name of a demangled symbol: its class, or the function itself."""
    return re.split(r"[^\w~]", SPECIAL.sub("", symbol), maxsplit=1)[0]


def is_platform(symbol, names):
    if symbol.startswith("operator"):
        return any(word in names for word in re.findall(r"\w+", symbol))
    return owner_of(symbol) in names


def is_runtime(symbol):
    return bool(RUNTIME_VERSION.search(symbol) or RUNTIME_NAME.match(symbol))


def find_strangers(undefined, names):
    return [symbol for symbol in undefined if not is_runtime(symbol) and not is_platform(symbol, names)]


def symbols(library, kind, demangle):
    options = ["nm", "-D", kind] + (["-C"] if demangle else [])
    listing = subprocess.run(options + [library], stdout=subprocess.PIPE, check=True).stdout.decode()
    return [re.sub(r"^[0-9a-f ]*[A-Za-z] ", "", line) for line in listing.splitlines() if line.strip()]


def check_engine(library, include):
    names = platform_names(include)
    for symbol in find_strangers(symbols(library, "--undefined-only", True), names):
        yield f"{library}: needs {symbol}, which no header in include/ declares: the engine may ask the platform only"
    exported = symbols(library, "--defined-only", False)
    for name in EXPORTED:
        if name not in exported:
            yield f'{library}: does not export {name} under this plain name: give it C linkage and default visibility'


def check_model(library):
    for symbol in symbols(library, "--undefined-only", True):
        if not is_runtime(symbol):
            yield f"{library}: needs {symbol}: the object model stands on the C++ library alone"


def find_doubles(definitions):
    """What two libraries define, each symbol with both; inline functions and what else the linker merges apart."""
    owners = {}
    for library, defined in definitions.items():
        for symbol in defined:
            owner = owners.setdefault(symbol, library)
            if owner != library:
                yield f"{library}: has {symbol}, which {owner} has: a program of both would use one of them by chance"


def strong_symbols(library):
    listing = subprocess.run(["nm", "-D", "-C", "--defined-only", library], stdout=subprocess.PIPE, check=True).stdout.decode()
    return [match.group(1) for match in re.finditer(r"^[0-9a-f]+ [ABDRST] (.*)$", listing, re.MULTILINE)
            if match.group(1) not in ("_init", "_fini")]


def check(include, engine, model, *others):
    yield from check_engine(engine, include)
    yield from check_model(model)
    yield from find_doubles({library: strong_symbols(library) for library in (engine, model, *others)})


if __name__ == "__main__":
    found = list(check(*sys.argv[1:]))
    for line in found:
        print(line)
    sys.exit(1 if found else 0)
