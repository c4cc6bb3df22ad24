// Rows sorted by texts: the number that stands for the front of a text, and the sort.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_TextSort.h"

namespace {

std::vector<QORuint32> sortedRows(const std::vector<std::string_view>& texts, bool isAscending) {
  std::vector<QORQL_SortEntry> entries;
  for (std::size_t row = texts.size(); row != 0; --row) {
    entries.push_back({QORQL_TextSort::frontOf(texts[row - 1]), static_cast<QORuint32>(row - 1)});
  }
  QORQL_TextSort(texts).sort(entries, isAscending);
  std::vector<QORuint32> rows;
  for (const QORQL_SortEntry& entry : entries) rows.push_back(entry.row);
  return rows;
}

TEST(TextSort, FrontsStandAsTheirTextsDo) {
  const std::vector<std::string> texts = {
      "",         std::string("\0", 1), "a",      "aa",    "ab",   "abcdef", "abcdefg",
      "abcdefgh", "abcdefgz",           "abcdeg", "b\x7f", "\x80", "\xff",   "\xff\xff"};
  ASSERT_TRUE(std::is_sorted(texts.begin(), texts.end()));
  for (std::size_t i = 1; i < texts.size(); ++i) {
    EXPECT_LE(QORQL_TextSort::frontOf(texts[i - 1]), QORQL_TextSort::frontOf(texts[i])) << texts[i];
  }
  EXPECT_LT(QORQL_TextSort::frontOf("abc"), QORQL_TextSort::frontOf("abd"));
  EXPECT_LT(QORQL_TextSort::frontOf("abc"), QORQL_TextSort::frontOf(std::string("abc\0", 4)));
}

TEST(TextSort, SortsBothWaysWithTheLastOfEqualRowsFirst) {
  std::vector<std::string> held;
  for (int i = 0; i < 3000; ++i) held.push_back("a name that many share " + std::to_string(i * 7919 % 97));
  const std::vector<std::string_view> texts(held.begin(), held.end());
  for (const bool isAscending : {true, false}) {
    std::vector<QORuint32> expected(texts.size());
    std::iota(expected.rbegin(), expected.rend(), 0U);
    std::stable_sort(expected.begin(), expected.end(),
                     [&](QORuint32 a, QORuint32 b) { return isAscending ? texts[a] < texts[b] : texts[b] < texts[a]; });
    EXPECT_EQ(sortedRows(texts, isAscending), expected) << isAscending;
  }
}

TEST(TextSort, OfNoTextsIsNone) { EXPECT_TRUE(sortedRows({}, true).empty()); }

}  // namespace
