"""Proves that check_comments.py finds what has no comment, and that declarations.py reads headers as a compiler does."""
# SPDX-License-Identifier: Apache-2.0
import os
import sys
import tempfile
import unittest

import check_comments
import declarations

TOLD = """// What it is for.
#include <vector>
class Forward;

// A class.
template <class T>
class Table : public Base<std::vector<int>> {
 public:
  static constexpr int kKind = 1;  // behind it
  using Rows = std::vector<T>;

  Table();
  Table(const Table&) = delete;
  Table& operator=(Table&& other) noexcept;
  ~Table() override;
  void step() override;
  // What the constructor was given, {"} and all.
  const Rows& rows() const noexcept { return _rows; }
  int count() const noexcept {
    if (_rows.empty()) return 0;
    return 1;
  }
  // Compare.
  friend bool operator==(const Table& a, const Table& b) { return a._rows == b._rows; }
  bool operator()(int row) const;
  Table& operator+=(const Table& other);
  // Takes one.
  explicit Table(Rows rows) : _rows(std::move(rows)), _names{1, 2} {}

 protected:
  void forHeirs();

 private:
  struct Row {
    int value();
  };
  void hidden();
  Rows _rows;
  std::vector<int> _names{};
};

template <class T>
inline bool Table<T>::operator()(int row) const {
  return row > 0;
}

namespace deep {

// Free.
[[noreturn]] void raise(const char* where);

}  // namespace deep
"""


class ReadsHeaders(unittest.TestCase):
    def test_finds_each_declaration_with_its_access(self):
        found = [(it.kind, it.name, it.access) for it in declarations.read(TOLD) if it.access != "private"]
        functions = ["Table", "Table", "operator=", "~Table", "step", "rows", "count", "operator==", "operator()", "operator+=", "Table"]
        self.assertEqual(found, [("class", "Table", "public"), ("constant", "Table::kKind", "public")] +
                         [("function", "Table::" + name, "public") for name in functions] +
                         [("function", "Table::forHeirs", "protected"), ("function", "deep::raise", "public")])

    def test_finds_what_is_private(self):
        hidden = [it.name for it in declarations.read(TOLD) if it.access == "private"]
        self.assertEqual(hidden, ["Table::Row", "Table::Row::value", "Table::hidden"])

    def test_comments_stand_above_and_behind(self):
        comments = {it.name: it.comment for it in declarations.read(TOLD)}
        self.assertEqual(comments["Table::kKind"], "behind it")
        self.assertEqual(comments["Table::rows"], 'What the constructor was given, {"} and all.')
        self.assertEqual(comments["Table"], "A class.")


class FindsWhatIsUntold(unittest.TestCase):
    def found(self, text):
        with tempfile.TemporaryDirectory() as root:
            with open(os.path.join(root, "a.h"), "w", encoding="utf-8") as out:
                out.write(text)
            return [line.split(" has no", 1)[0] for line in check_comments.check(root, ["a.h"])]

    def test_what_is_told_passes(self):
        self.assertEqual(self.found(TOLD), [])

    def test_a_class(self):
        self.assertEqual(self.found(TOLD.replace("// A class.\n", "")), ["a.h:5: Table"])

    def test_an_operation(self):
        self.assertEqual(self.found(TOLD.replace("  // What the constructor", "\n  int first();\n  // What the constructor")),
                         ["a.h:18: Table::first"])

    def test_a_constant(self):
        self.assertEqual(self.found(TOLD.replace("  // behind it", "")), ["a.h:9: Table::kKind"])

    def test_a_constructor_with_arguments(self):
        self.assertEqual(self.found(TOLD.replace("  Table();\n", "  Table(int rows, int columns);\n")), ["a.h:12: Table::Table"])

    def test_a_free_function(self):
        self.assertEqual(self.found(TOLD.replace("// Free.\n", "")), ["a.h:49: deep::raise"])

    def test_a_comment_does_not_reach_beyond_a_blank_line(self):
        self.assertEqual(self.found(TOLD.replace("  int count()", "\n  int count()")), ["a.h:20: Table::count"])


if __name__ == "__main__":
    sys.exit(unittest.main())
