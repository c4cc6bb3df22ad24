"""Proves that check_house.py finds each broken house rule and lets clean files pass."""
# SPDX-License-Identifier: Apache-2.0
import sys
import unittest

import check_house
import made_up_tree

# Taken apart, so that this file has the line once, in its own opening comment.
LICENSE = "SPDX-License-" + "Identifier: Apache-2.0"

RIGHT = {
    "Cimom/A.cpp": f"// Does one thing.\n// {LICENSE}\nint a;\n",
    "tool.py": f'"""Does one thing."""\n# {LICENSE}\n',
    "run": f"#!/bin/bash\n# Runs it.\n# {LICENSE}\n",
    "long.md": "# Long\n" + "line\n" * 900,
    "CMakeLists.txt": f"# Builds it.\n# {LICENSE}\n",
    "model.mof": "// A model.\n",
    "case.qtest": "# Cases.\n",
    "zone.cpp": f'// A time zone has such a name.\n// {LICENSE}\nauto zone = "XX' + 'X-5";\n',
    "full.cpp": f"// Just short enough.\n// {LICENSE}\n" + "\n" * 499,
}

WRONG = [
    ("b.cpp", f"int b;\n// {LICENSE}\n", "b.cpp:1: a file opens with a comment"),
    ("b.h", f"#ifndef B_H\n// {LICENSE}\n", "b.h:1: a file opens with a comment"),
    ("sub/CMakeLists.txt", f"project(x)\n# {LICENSE}\n", "sub/CMakeLists.txt:1: a file opens with a comment"),
    ("b.cpp", "// B.\nint b;\n", "b.cpp:1: the license is not told"),
    ("b.cpp.in", "// B.\n", "b.cpp.in:1: the license is not told"),
    ("b.py", '"""B."""\n' + "\n" * 40 + f"# {LICENSE}\n", "b.py:1: the license is not told"),
    ("b", "#!/bin/bash\n# B.\n", "b:1: the license is not told"),
    ("b.cpp", f"// Long.\n// {LICENSE}\n" + "\n" * 500, "b.cpp:502: 501 lines hold two ideas"),
    ("b.cpp", f"// B.\n// {LICENSE}\n// TO" + "DO later\n", "b.cpp:3: '// TO" + "DO': unfinished work"),
    ("b.md", "see Part" + " 3.1\n", "b.md:1: 'Part" + " 3.1': a reader has no such document"),
    ("b.py", f'"""B."""\n# {LICENSE}\nx = "/home' + '/ann/x"\n', "b.py:3: '/home" + "/a': a path of one machine"),
    ("b.cpp", f"// B.\n// {LICENSE}\nTEST(A, DISABLED" + "_B) {}\n", "a test that does not run"),
    ("b.cpp", f"// B.\n// {LICENSE}\nEXPECT_TRUE(" + "true);\n", "a test that cannot fail"),
    ("b", f"#!/bin/bash\n# {LICENSE}\n# FIX" + "ME\n", "b:3: '# FIX" + "ME'"),
]


class CheckHouse(made_up_tree.TreeCheck, unittest.TestCase):
    check = staticmethod(check_house.check)
    RIGHT, WRONG = RIGHT, WRONG


if __name__ == "__main__":
    sys.exit(unittest.main())
