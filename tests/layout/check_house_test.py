"""Proves that check_house.py finds each broken house rule and lets clean files pass."""
import os
import sys
import tempfile
import unittest

import check_house

RIGHT = {
    "Cimom/A.cpp": "// Does one thing.\nint a;\n",
    "tool.py": '"""Does one thing."""\n',
    "run": "#!/bin/bash\n# Runs it.\n",
    "long.md": "# Long\n" + "line\n" * 900,
    "CMakeLists.txt": "# Builds it.\n",
    "model.mof": "// A model.\n",
    "case.qtest": "# Cases.\n",
    "zone.cpp": '// A time zone has such a name.\nauto zone = "XX' + 'X-5";\n',
    "full.cpp": "// Just short enough.\n" + "\n" * 499,
}

WRONG = [
    ("b.cpp", "int b;\n", "b.cpp:1: a file opens with a comment"),
    ("b.h", "#ifndef B_H\n", "b.h:1: a file opens with a comment"),
    ("sub/CMakeLists.txt", "project(x)\n", "sub/CMakeLists.txt:1: a file opens with a comment"),
    ("b.cpp", "// Long.\n" + "\n" * 500, "b.cpp:501: 501 lines hold two ideas"),
    ("b.cpp", "// B.\n// TO" + "DO later\n", "b.cpp:2: '// TO" + "DO': unfinished work"),
    ("b.md", "see Part" + " 3.1\n", "b.md:1: 'Part" + " 3.1': a reader has no such document"),
    ("b.py", '"""B."""\nx = "/home' + '/ann/x"\n', "b.py:2: '/home" + "/a': a path of one machine"),
    ("b.cpp", "// B.\nTEST(A, DISABLED" + "_B) {}\n", "a test that does not run"),
    ("b.cpp", "// B.\nEXPECT_TRUE(" + "true);\n", "a test that cannot fail"),
    ("b", "#!/bin/bash\n# FIX" + "ME\n", "b:2: '# FIX" + "ME'"),
]


class CheckHouse(unittest.TestCase):
    def run_on(self, extra):
        with tempfile.TemporaryDirectory() as root:
            for path, text in {**RIGHT, **extra}.items():
                os.makedirs(os.path.dirname(os.path.join(root, path)), exist_ok=True)
                with open(os.path.join(root, path), "w", encoding="utf-8") as out:
                    out.write(text)
            return check_house.check(root)

    def test_clean_files_pass(self):
        self.assertEqual(self.run_on({}), [])

    def test_each_broken_rule_is_found_alone(self):
        for path, text, message in WRONG:
            with self.subTest(path=path, message=message):
                found = self.run_on({path: text})
                self.assertEqual(len(found), 1, found)
                self.assertIn(message, found[0])


if __name__ == "__main__":
    sys.exit(unittest.main())
