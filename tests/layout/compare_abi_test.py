"""Proves that scripts/abi finds what breaks programs that were built before, on two libraries of a few lines."""
# SPDX-License-Identifier: Apache-2.0
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

from made_up_tree import write_tree

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SKIPPED = 77

HEADER = """// A library.
struct Measure {
  int length;
  int width;
};
enum Colour { kRed = 0, kBlue = 1 };
class Part {
 public:
  Part();
  virtual ~Part();
  virtual int value() const;
  virtual int weight() const;
  int area(const Measure& measure) const;

 private:
  struct State;
  State* _state;
};
bool isSold(const Part& part, Colour colour);
"""
SOURCE = """#include "part.h"
#include "inner.h"
struct Part::State {
  Inner inner;
};
Part::Part() : _state(new State) {}
Part::~Part() { delete _state; }
int Part::value() const { return _state->inner.value; }
int Part::weight() const { return 2; }
int Part::area(const Measure& measure) const { return measure.length * measure.width; }
bool isSold(const Part&, Colour colour) { return colour == kRed; }
int countInner(const Inner& inner) { return inner.value; }
"""
INNER = """struct Inner {
  int value = 1;
};
int countInner(const Inner& inner);
"""
ABIDIFF = shutil.which("abidiff")
SOUND = {"include/qorql/part.h": HEADER, "part.cpp": SOURCE, "inner.h": INNER}


class WithoutAbidiff(unittest.TestCase):
    def test_says_that_nothing_was_compared(self):
        with tempfile.TemporaryDirectory() as commands:
            for name in ("dirname", "readlink"):
                os.symlink(shutil.which(name), os.path.join(commands, name))
            ran = subprocess.run([os.path.join(ROOT, "scripts", "abi"), "old", "new"], env={"PATH": commands},
                                 capture_output=True, text=True, check=False)
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (
            SKIPPED, "", "abi: there is no abidiff, which the package abigail-tools has: nothing was compared\n"))


@unittest.skipUnless(ABIDIFF, "there is no abidiff, which the package abigail-tools has")
class CompareAbi(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.install("old", SOUND)

    def install(self, name, files, flags=("-g",)):
        """Lays headers and the library down as an installation does."""
        prefix = os.path.join(self.folder, name)
        shutil.rmtree(prefix, ignore_errors=True)
        write_tree(prefix, files)
        os.mkdir(os.path.join(prefix, "lib"))
        subprocess.run(["g++", "-std=c++20", "-shared", "-fPIC", *flags, "-Wl,-soname,libqorqlpart.so.0",
                        "-I", os.path.join(prefix, "include", "qorql"), "-I", prefix, os.path.join(prefix, "part.cpp"),
                        "-o", os.path.join(prefix, "lib", "libqorqlpart.so")], check=True)
        return prefix

    def run_it(self, new):
        ran = subprocess.run([os.path.join(ROOT, "scripts", "abi"), os.path.join(self.folder, "old"), new],
                             capture_output=True, text=True, check=False)
        return ran.returncode, ran.stdout + ran.stderr

    def after(self, *changes):
        """What is said when texts have taken the place of others, each in the one file that has it."""
        files = dict(SOUND)
        for before, now in changes:
            self.assertTrue(any(before in text for text in files.values()), before)
            files = {path: text.replace(before, now) for path, text in files.items()}
        return self.run_it(self.install("new", files))

    def assert_broken(self, said, part):
        self.assertEqual(said[0], 1, said[1])
        self.assertIn("programs that were built before would break", said[1])
        self.assertIn(part, said[1])

    def test_the_same_passes(self):
        self.assertEqual(self.after(), (0, ""))

    def test_a_parameter_whose_members_change_places(self):
        said = self.after(("  int length;\n  int width;\n", "  int width;\n  int length;\n"))
        self.assert_broken(said, "Measure")

    def test_a_parameter_with_a_member_of_another_type(self):
        self.assert_broken(self.after(("int width;", "float width;")), "width")

    def test_an_operation_that_returns_something_else(self):
        self.assert_broken(self.after(("int area(", "long area("), ("int Part::area", "long Part::area")), "return type changed")

    def test_virtual_functions_in_another_order(self):
        said = self.after(("  virtual int value() const;\n  virtual int weight() const;\n",
                           "  virtual int weight() const;\n  virtual int value() const;\n"))
        self.assert_broken(said, "vtable")

    def test_an_enumerator_with_another_value(self):
        self.assert_broken(self.after(("kBlue = 1", "kBlue = 7")), "kBlue")

    def test_an_operation_that_has_gone(self):
        said = self.after(("bool isSold(const Part& part, Colour colour);", ""),
                          ("bool isSold(const Part&, Colour colour) { return colour == kRed; }", ""))
        self.assert_broken(said, "isSold")

    def test_what_has_come_passes(self):
        self.assertEqual(self.after(("bool isSold(const Part& part", "int more();\nbool isSold(const Part& part"),
                                    ("bool isSold(const Part&,", "int more() { return 1; }\nbool isSold(const Part&,")), (0, ""))

    def test_inner_parts_may_change_and_go(self):
        self.assertEqual(self.after(("int value = 1;", "long before = 2;\n  int value = 1;"),
                                    ("int countInner(const Inner& inner) { return inner.value; }", ""),
                                    ("int countInner(const Inner& inner);", "")), (0, ""))

    def test_libraries_without_debugging_information_are_refused(self):
        status, said = self.run_it(self.install("new", SOUND, ("-g0",)))
        self.assertEqual(status, 1)
        self.assertIn("lib/libqorqlpart.so: tells no types, build it with -g", said)

    def test_a_library_that_is_missing(self):
        status, said = self.run_it(os.path.join(self.folder, "nowhere"))
        self.assertEqual((status, said), (1, f"libqorqlpart.so: is not in {self.folder}/nowhere\n"))

    def test_a_prefix_without_libraries(self):
        shutil.rmtree(os.path.join(self.folder, "old", "lib"))
        self.assertEqual(self.run_it(self.folder), (1, f"{self.folder}/old: there are no libraries below it\n"))


if __name__ == "__main__":
    passed = unittest.main(exit=False).result.wasSuccessful()
    if passed and not ABIDIFF:
        print("skipped: there is no abidiff, which the package abigail-tools has")
        sys.exit(SKIPPED)
    sys.exit(0 if passed else 1)
