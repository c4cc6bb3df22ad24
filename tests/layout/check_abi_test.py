"""Proves that check_abi.py finds what would break programs that were built before, on a library of a few lines."""
# SPDX-License-Identifier: Apache-2.0
import os
import subprocess
import sys
import tempfile
import unittest

import check_abi

HEADER = """// A library.
class Part {
 public:
  Part();
  virtual ~Part();
  virtual int value() const;
  int operator()(int factor) const;
  static const int kMost;

 protected:
  void forHeirs();

 private:
  void hidden();
  int _value = 1;
};
int freely(const Part& part);
class CQLForward;
int freely(const CQLForward* inner);
"""
SOURCE = """#include "part.h"
Part::Part() = default;
Part::~Part() = default;
int Part::value() const { return _value; }
int Part::operator()(int factor) const { return factor * _value; }
const int Part::kMost = 7;
void Part::forHeirs() {}
void Part::hidden() {}
int freely(const Part& part) { return part.value(); }
int freely(const CQLForward*) { return 2; }
int internal() { return 1; }
"""


class CheckAbi(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = folder.name
        os.mkdir(os.path.join(self.root, "include"))
        self.baseline = os.path.join(self.root, "abi.txt")
        self.build(HEADER, SOURCE)
        self.assertEqual(self.run_it("--renew"), 0)

    def build(self, header, source):
        for name, text in (("include/part.h", header), ("part.cpp", source)):
            with open(os.path.join(self.root, name), "w", encoding="utf-8") as out:
                out.write(text)
        self.library = os.path.join(self.root, "libpart.so")
        subprocess.run(["g++", "-std=c++20", "-shared", "-fPIC", "-Wl,-soname,libpart.so", "-I", os.path.join(self.root, "include"),
                        os.path.join(self.root, "part.cpp"), "-o", self.library], check=True)

    def run_it(self, *options):
        return check_abi.main([*options, self.root, self.baseline, os.path.join(self.root, "work"), self.library,
                               "include/part.h", "g++"])

    def broken_by(self, *changes):
        header, source = HEADER, SOURCE
        for before, after in changes:
            self.assertTrue(before in header or before in source)
            header, source = header.replace(before, after), source.replace(before, after)
        self.build(header, source)
        with open(self.baseline, encoding="utf-8") as noted:
            now = check_abi.present(self.root, os.path.join(self.root, "work"), [self.library], ["include/part.h"], ["g++"])
            return list(check_abi.find_broken(noted.read().splitlines(), now))

    def test_the_interface_is_noted_and_nothing_else(self):
        with open(self.baseline, encoding="utf-8") as noted:
            text = noted.read()
        for part in ("Part::Part()", "Part::~Part()", "Part::value() const", "Part::operator()(int) const", "Part::kMost",
                     "Part::forHeirs()", "freely(Part const&)", "vtable for Part, 5 entries", "size of Part: 16"):
            self.assertIn(part + "\n", text)
        self.assertNotIn("hidden", text)
        self.assertNotIn("internal", text)
        self.assertNotIn("CQLForward", text)

    def test_the_same_passes(self):
        self.assertEqual(self.run_it(), 0)

    def test_internal_renames_and_additions_pass(self):
        self.assertEqual(self.broken_by(("hidden", "covered"), ("int internal() {", "int inner() { return 2; }\nint more() {"),
                                        ("  static const int kMost;", "  void added() {}\n  static const int kMost;")), [])

    def test_another_signature_is_found(self):
        self.assertEqual(self.broken_by(("freely(const Part& part)", "freely(const Part& part, int)")),
                         ["libpart.so: freely(Part const&): has gone"])

    def test_another_size_is_found(self):
        self.assertEqual(self.broken_by(("  int _value = 1;", "  int _value = 1;\n  long _more = 2;")),
                         ["size of Part: 16: is now size of Part: 24"])

    def test_another_virtual_operation_is_found(self):
        self.assertEqual(self.broken_by(("  virtual int value() const;", "  virtual int value() const;\n  virtual void step() {}")),
                         ["libpart.so: vtable for Part, 5 entries: is now libpart.so: vtable for Part, 6 entries"])

    def test_a_break_fails_the_run(self):
        self.build(HEADER.replace("value()", "worth()"), SOURCE.replace("value()", "worth()"))
        self.assertEqual(self.run_it(), 1)


if __name__ == "__main__":
    sys.exit(unittest.main(buffer=True))
