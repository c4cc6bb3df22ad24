"""Proves that check_tests.py finds each source without a test and each name in another style, and lets the others pass."""
# SPDX-License-Identifier: Apache-2.0
import sys
import unittest

import check_tests
import made_up_tree

POINTED = "// Does it.\n// Tested by tests/unit/QORQL/JoinTest.cpp,\n// tests/queries/joins.qtest.\n// SPDX-License-Identifier: X\n#ifndef A\n"
TEST = "// Tests.\nTEST(Join, KeepsRows) {}\nTEST_P(Keys2, AreEqual) {}\nTEST(JoinDeathTest, Stops) {}\n"
RIGHT = {
    "Cimom/QORQL/QORQL_Join.h": "// Joins.\n",
    "Cimom/QORQL/Run/QORQL_Join.cpp": "// Joins.\n",
    "Cimom/Model/ModelPath.h": POINTED,
    "Cimom/Model/ModelPath.cpp": "// Paths.\n",
    "Cimom/Model/NoHeader.cpp": "// Alone. Tested by tests/queries.\nint a;\n",
    "include/cimom/X.h": "// No source of this check.\n",
    "tests/unit/QORQL/JoinTest.cpp": TEST,
    "tests/unit/QORQL/Support.cpp": "// No tests.\nvoid test_help() {}\n",
    "tests/queries/joins.qtest": "# Joins.\n",
    "tests/queries/runner.cpp": "// Another program.\nTEST(other, style_here) {}\n",
}

# A file that breaks a rule, its text, and what the message must say.
WRONG = [
    ("Cimom/Model/B.cpp", "// B.\n", "Cimom/Model/B.cpp: no BTest.cpp is in tests/unit/"),
    ("Cimom/Model/B.h", "// B.\n#ifndef B\n// Tested by tests/queries.\n", "Cimom/Model/B.h: no BTest.cpp"),
    ("Cimom/Model/ModelPath.h", POINTED.replace("joins", "none"), "tests/queries/none.qtest, which is said to test it, is not there"),
    ("Cimom/QORQL/QORQL_Join.h", "// Tested by tests/unit/Gone.cpp.\n", "tests/unit/Gone.cpp, which is said to test it, is not there"),
    ("tests/unit/A/KeyTest.cpp", "TEST(Key, isFound) {}\n", "Key.isFound: name it in the style of"),
    ("tests/unit/A/KeyTest.cpp", "TEST_F(\n    KeyTest, IsFound) {}\n", "KeyTest.IsFound: name it in the style of"),
    ("tests/unit/A/KeyTest.cpp", "TEST(Key, Is_Found) {}\n", "Key.Is_Found: name it in the style of"),
    ("tests/unit/A/Keys.cpp", "TEST(Key, IsFound) {}\n", "Keys.cpp: a file of tests is called after what it tests"),
]


class CheckTests(made_up_tree.TreeCheck, unittest.TestCase):
    check = staticmethod(check_tests.check)
    RIGHT, WRONG = RIGHT, WRONG

    def test_an_engine_that_only_points_at_tests_is_found(self):
        found = self.run_on({f"Cimom/QORQL/QORQL_{name}.h": "// Tested by tests/queries.\n" for name in "AB"})
        self.assertEqual(found, ["Cimom/QORQL/: 1 of 3 sources have a test of their name: at least 80% shall"])


if __name__ == "__main__":
    sys.exit(unittest.main())
