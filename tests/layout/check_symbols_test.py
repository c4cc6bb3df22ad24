"""Proves that check_symbols.py tells the platform's and the run time's symbols from strangers."""
import os
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


if __name__ == "__main__":
    sys.exit(unittest.main())
