"""Proves that check_symbols.py tells the platform's and the run time's symbols from strangers."""
# SPDX-License-Identifier: Apache-2.0
import os
import subprocess
import sys
import tempfile
import unittest

import check_symbols

HEADER = """
class QORString {
 public:
  static QORString number(int value);
};
template <class T>
class QORSmrPtr : public QORSmrPtrImpl {};
QORuint32 hashKeyQORString(const QORString& key) noexcept;
[[noreturn]] void qorRaiseOutOfBounds();  // throws
bool qorInitThreading() noexcept;
"""

KNOWN = [
    "QORString::number(int)",
    "vtable for QORString",
    "typeinfo for QORString",
    "hashKeyQORString(QORString const&)",
    "qorRaiseOutOfBounds()",
    "qorInitThreading()",
    "operator<<(std::ostream&, QORString const&)",
    "operator new(unsigned long)@GLIBCXX_3.4",
    "memcpy@GLIBC_2.14",
    "vtable for __cxxabiv1::__si_class_type_info@CXXABI_1.3",
    "_Unwind_Resume@GCC_3.0",
    "__gmon_start__",
    "_ITM_registerTMCloneTable",
    "__asan_report_load8",
]

STRANGERS = [
    "CQoriStoredInstance::CQoriStoredInstance(int)",
    "vtable for EmbeddedObjectManager",
    "operator<<(std::ostream&, Stranger const&)",
    "ini_parse",
    "yywrap",
]


class CheckSymbols(unittest.TestCase):
    def setUp(self):
        with tempfile.TemporaryDirectory() as include:
            with open(os.path.join(include, "a.h"), "w", encoding="utf-8") as out:
                out.write(HEADER)
            self.names = check_symbols.platform_names(include)

    def test_platform_and_run_time_are_known(self):
        self.assertEqual(check_symbols.find_strangers(KNOWN, self.names), [])

    def test_every_stranger_is_found(self):
        self.assertEqual(check_symbols.find_strangers(KNOWN + STRANGERS, self.names), STRANGERS)

    def test_what_two_libraries_have_is_found(self):
        self.assertEqual(list(check_symbols.find_doubles({"one": ["a()", "b()"], "two": ["c()"]})), [])
        found = list(check_symbols.find_doubles({"one": ["a()", "b()"], "two": ["b()", "c()"], "three": ["c()"]}))
        self.assertEqual([line.split(",", 1)[0] for line in found], ["two: has b()", "three: has c()"])


class Libraries(unittest.TestCase):
    """Libraries that a compiler makes of a line each."""

    def make(self, name, text):
        path = os.path.join(self.folder, name)
        subprocess.run(["g++", "-shared", "-fPIC", "-x", "c++", "-o", path, "-"], input=text.encode(), check=True)
        return path

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        os.mkdir(os.path.join(self.folder, "include"))
        with open(os.path.join(self.folder, "include", "a.h"), "w", encoding="utf-8") as out:
            out.write(HEADER)

    def check(self, engine, model, other):
        libraries = [self.make(*pair) for pair in (("e.so", engine), ("m.so", model), ("o.so", other))]
        found = check_symbols.check(os.path.join(self.folder, "include"), *libraries)
        return [line.removeprefix(self.folder + "/").split(":", 1)[0] + line[line.index(": "):].split(",", 1)[0] for line in found]

    ENGINE = 'extern "C" { int lineno, yylval, yywrap; } bool qorInitThreading() noexcept; bool asks() { return qorInitThreading(); }'
    MODEL = "bool qorInitThreading() noexcept { return true; }"

    def test_sound_libraries_pass(self):
        self.assertEqual(self.check(self.ENGINE, self.MODEL, "inline int f() { return 1; } int g() { return f(); }"), [])

    def test_each_kind_of_fault_is_found(self):
        found = self.check("void stranger(); void f() { stranger(); }", "void other(); void g() { other(); }", "void g() {}")
        self.assertEqual(found, ["e.so: needs stranger()", "e.so: does not export lineno under this plain name: give it C linkage and default visibility",
                                 "e.so: does not export yylval under this plain name: give it C linkage and default visibility",
                                 "e.so: does not export yywrap under this plain name: give it C linkage and default visibility",
                                 "m.so: needs other(): the object model stands on the C++ library alone", "o.so: has g()"])


if __name__ == "__main__":
    sys.exit(unittest.main())
