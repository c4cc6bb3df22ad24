"""Proves that check_order.py finds each untruth of the engine's map and lets a true one pass."""
# SPDX-License-Identifier: Apache-2.0
import sys
import unittest

import check_order
import made_up_tree

README = """# The engine

Words with a `name` before all sections.

**Ground.** `QORQL_A` and the texts in `QORQL_B`, which is no `B` of `namespace`.

**Middle.** `QORQL_C`; `QORQL_H.h`.

**Room (`Run/`).** `QORQL_H.cpp`, and the files `...Evaluation.cpp`.
"""
RIGHT = {
    "Cimom/QORQL/README.md": README,
    "Cimom/QORQL/QORQL_A.h": "// A.\n",
    "Cimom/QORQL/QORQL_A.cpp": '#include "Cimom/QORQL/QORQL_A.h"\n#include "Cimom/QORQL/QORQL_B.h"\n',
    "Cimom/QORQL/QORQL_B.h": '#include "cmpbase.h"\n',
    "Cimom/QORQL/QORQL_C.h": '#include "Cimom/QORQL/QORQL_B.h"\n',
    "Cimom/QORQL/QORQL_H.h": '#include "Cimom/QORQL/QORQL_C.h"\n',
    "Cimom/QORQL/Run/QORQL_H.cpp": '#include "Cimom/QORQL/QORQL_H.h"\n#include <vector>\n',
    "Cimom/QORQL/Run/QORQL_AEvaluation.cpp": '#include "Cimom/QORQL/QORQL_A.h"\n',
    "include/cmpbase.h": "// Base.\n",
    "tools/t.cpp": '#include "Cimom/QORQL/QORQL_C.h"\n',
}

# A file that makes the map untrue, its text, and what the message must say.
WRONG = [
    ("Cimom/QORQL/QORQL_A.h", '\n#include "Cimom/QORQL/QORQL_C.h"\n',
     'QORQL_A.h:2: Cimom/QORQL/QORQL_C.h stands further below in Cimom/QORQL/README.md ("Middle") than this file ("Ground")'),
    ("Cimom/QORQL/QORQL_A.cpp", '#include "Cimom/QORQL/QORQL_H.h"\n', "QORQL_A.cpp:1: Cimom/QORQL/QORQL_H.h stands further below"),
    ("Cimom/QORQL/QORQL_D.h", "// D.\n", "Cimom/QORQL/QORQL_D.h: stands in no section"),
    ("Cimom/QORQL/Lazy/QORQL_C.cpp", "// C.\n", "not its room's: name it in the section of `Lazy/`"),
    ("Cimom/QORQL/README.md", README.replace("`QORQL_C`", "`QORQL_C`, `QORQL_A`"), "QORQL_A stands in two sections"),
    ("Cimom/QORQL/README.md", README.replace("`QORQL_C`", "`QORQL_C`, `QORQL_X`"), "QORQL_X has no file"),
]


class CheckOrder(made_up_tree.TreeCheck, unittest.TestCase):
    check = staticmethod(check_order.check)
    RIGHT, WRONG = RIGHT, WRONG

    def test_a_known_include_passes_and_is_asked_for_when_it_is_gone(self):
        known = [("Cimom/QORQL/QORQL_A.h", "Cimom/QORQL/QORQL_C.h")]
        wrong = {"Cimom/QORQL/QORQL_A.h": '#include "Cimom/QORQL/QORQL_C.h"\n'}
        self.assertEqual(self.run_on(wrong, known), [])
        self.assert_one(self.run_on({}, known), "QORQL_A.h no longer includes Cimom/QORQL/QORQL_C.h")


if __name__ == "__main__":
    sys.exit(unittest.main())
