"""The binary interface that programs were built against: holds what the libraries export of the installed headers, and
the sizes of the classes in them, to what is noted down. What has come since is fine; what has gone or changed is printed.

Run as check_abi.py [--renew] ROOT BASELINE WORK LIBRARIES HEADERS COMPILER...: LIBRARIES and HEADERS are lists with
commas, WORK a folder for what is compiled, COMPILER the compiler with a cache in front of it, if there is one. With
--renew the baseline is written anew, which belongs to a release whose libraries have another soname, or none before it.
Dumps of debugging information, as abidiff compares them, would hold the libraries' inner parts too, which may change.
The exit status is 1 when anything was printed.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import subprocess
import sys

import declarations

# Types of this tree, as they are named and as they are defined.
OWN_TYPE = re.compile(r"\b(?:QORQL_|CQL|Cim|Mof|Model|[CI]?Qori)\w+")
DEFINED = re.compile(r"\b(?:class|struct|enum(?:\s+class)?)\s+(\w+)[^;{}()]*\{")
# Symbols that stand for a class.
OF_CLASS = re.compile(r"^(vtable|typeinfo) for (.+)$")
STRONG = "ABDRTu"
ENTRY = 8  # bytes of an entry of a vtable


def qualified_name(symbol):
    """The name of a demangled function or variable, without its parameters and what is behind them."""
    flat = symbol.replace("operator()", "operator\x01")
    return flat.split("(", 1)[0].replace("\x01", "()").split("[abi:", 1)[0]


class Interface:
    """What the headers declare for others: the names of operations and constants, and of classes."""

    def __init__(self, root, headers):
        self.operations, self.classes, self.types, templates = set(), [], set(), set()
        for header in headers:
            with open(os.path.join(root, header), encoding="utf-8") as source:
                text = source.read()
            self.types.update(DEFINED.findall(declarations.code_of(text)))
            for found in declarations.read(text):
                if found.kind == "class" and found.text.startswith("template"):
                    templates.add(found.name)
                elif found.access != "private":
                    self._enter(found, templates)

    def _enter(self, found, templates):
        if found.kind != "class":
            self.operations.add(found.name)
        elif not any(found.name.startswith(template + "::") for template in templates) and found.access == "public":
            self.classes.append(found.name)

    def is_part(self, symbol):
        of_class = OF_CLASS.match(symbol)
        if of_class:
            return of_class.group(2) in self.classes
        return qualified_name(symbol) in self.operations and self._is_of_use(symbol)

    def _is_of_use(self, symbol):
        """Whether all that it takes is defined for others, too; what takes more is the libraries' own."""
        return set(OWN_TYPE.findall(symbol[len(qualified_name(symbol)):])) <= self.types


def soname(library):
    listing = subprocess.run(["readelf", "-d", library], capture_output=True, text=True, check=True).stdout
    return re.search(r"Library soname: \[(.+?)\]", listing).group(1)


def exported(library, interface):
    listing = subprocess.run(["nm", "-D", "-C", "-S", "--defined-only", library], capture_output=True, text=True, check=True)
    for line in listing.stdout.splitlines():
        match = re.match(r"^[0-9a-f]+ (?:([0-9a-f]+) )?(\w) (.+)$", line)
        if not match or match.group(2) not in STRONG + "V" or not interface.is_part(match.group(3)):
            continue
        size = f", {int(match.group(1), 16) // ENTRY} entries" if match.group(3).startswith("vtable") else ""
        yield f"{soname(library)}: {match.group(3)}{size}"


def sizes(root, work, libraries, headers, compiler, interface):
    """A program tells them, since the compiler alone knows."""
    os.makedirs(work, exist_ok=True)
    source, program = os.path.join(work, "sizes.cpp"), os.path.join(work, "sizes")
    names = [re.sub("^include/", "", header) for header in headers]
    with open(source, "w", encoding="utf-8") as out:
        out.write("#include <cstdio>\n" + "".join(f'#include "{name}"\n' for name in names) + "int main() {\n")
        out.writelines(f'  std::printf("size of {name}: %zu\\n", sizeof({name}));\n' for name in interface.classes)
        out.write("}\n")
    includes = ["-I", os.path.join(root, "include"), "-I", root]
    subprocess.run([*compiler, "-std=c++20", *includes, "-c", source, "-o", source + ".o"], check=True)
    places = [f"-Wl,-rpath,{os.path.dirname(library)}" for library in libraries]
    subprocess.run([compiler[-1], source + ".o", *libraries, *places, "-o", program], check=True)
    return subprocess.run([program], capture_output=True, text=True, check=True).stdout.splitlines()


def present(root, work, libraries, headers, compiler):
    interface = Interface(root, headers)
    found = [line for library in libraries for line in exported(library, interface)]
    return sorted({*found, *sizes(root, work, libraries, headers, compiler, interface)})


def subject(line):
    """What a line tells of, so that a change is told from a loss."""
    return re.sub(r": \d+$|, \d+ entries$", "", line)


def find_broken(noted, now):
    there, subjects = set(now), {subject(line): line for line in now}
    for line in noted:
        if line not in there:
            changed = subjects.get(subject(line))
            yield f"{line}: is now {changed}" if changed and changed != line else f"{line}: has gone"


ADVICE = ("programs that were built before would break. Undo it; or, where nothing has been released with this soname, note the "
          "interface anew: cmake --build build/test --target renew_abi")


def main(arguments):
    is_renewed = arguments[:1] == ["--renew"]
    root, baseline, work, libraries, headers, *compiler = arguments[1:] if is_renewed else arguments
    now = present(root, work, libraries.split(","), headers.split(","), compiler)
    if is_renewed:
        with open(baseline, "w", encoding="utf-8") as out:
            out.write("\n".join(now) + "\n")
        return 0
    with open(baseline, encoding="utf-8") as noted:
        broken = list(find_broken(noted.read().splitlines(), now))
    for line in broken:
        print(line)
    if broken:
        print(ADVICE)
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
