"""Proves that check_headers.py finds each way in which installed headers are not the interface."""
# SPDX-License-Identifier: Apache-2.0
import os
import sys
import tempfile
import unittest

import check_headers
import made_up_tree

SOUND = {
    "include/platform.h": "#include <string>\n#include <vector>\n",
    "Cimom/QORQL/A.h": '#include "platform.h"\nstruct A { std::string name; };\n',
    "Cimom/QORQL/Private.h": "struct Private {};\n",
}


class CheckHeaders(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        for path, text in SOUND.items():
            self.write("root/" + path, text)
        self.write("installed/platform.h", SOUND["include/platform.h"])
        self.write("installed/Cimom/QORQL/A.h", SOUND["Cimom/QORQL/A.h"])

    def write(self, path, text):
        made_up_tree.write_tree(self.folder, {path: text})

    def change(self, path, text):
        """In the tree and where it is installed."""
        self.write("root/" + path, text)
        self.write("installed/" + path, text)

    def check(self):
        folders = [os.path.join(self.folder, name) for name in ("root", "installed", "work")]
        return check_headers.check(*folders, ["g++"])

    def found(self, *parts):
        wrong = self.check()
        self.assertEqual(len(wrong), 1, wrong)
        for part in parts:
            self.assertIn(part, wrong[0])

    def test_the_interface_passes(self):
        self.assertEqual(self.check(), [])

    def test_a_header_that_includes_a_private_one(self):
        self.change("Cimom/QORQL/A.h", '#include "Cimom/QORQL/Private.h"\n')
        self.found("Cimom/QORQL/A.h:1", "Private.h is not installed")

    def test_a_header_of_another_library(self):
        self.change("Cimom/QORQL/A.h", "#include <expat.h>\n")
        self.found("<expat.h> is not the standard library's")

    def test_a_header_that_leans_on_others(self):
        self.change("Cimom/QORQL/A.h", "struct A { std::string name; };\n")
        self.found("Cimom/QORQL/A.h: does not compile by itself", "std")

    def test_a_header_that_the_tree_no_longer_has(self):
        self.write("installed/Cimom/QORQL/Old.h", "")
        self.found("Cimom/QORQL/Old.h: is no header of the tree")

    def test_a_header_that_is_not_the_trees(self):
        self.write("installed/Cimom/QORQL/A.h", "")
        self.found("Cimom/QORQL/A.h: is not what the tree has")

    def test_a_platform_header_that_is_missing(self):
        self.write("root/include/more.h", "")
        self.found("more.h: belongs to the platform interface and is not installed")

    def test_an_empty_installation(self):
        for path in ("platform.h", "Cimom/QORQL/A.h"):
            os.remove(os.path.join(self.folder, "installed", path))
        self.found("there are no headers")


if __name__ == "__main__":
    sys.exit(unittest.main())
