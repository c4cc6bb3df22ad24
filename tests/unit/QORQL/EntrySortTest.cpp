// Entries sorted by their keys, whatever their number and their digits.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_EntrySort.h"

namespace {

using Entries = std::vector<QORQL_SortEntry>;

void expectSorted(const std::vector<QORuint64>& keys) {
  Entries entries;
  for (std::size_t row = keys.size(); row != 0; --row) {
    entries.push_back({keys[row - 1], static_cast<QORuint32>(row - 1)});
  }
  Entries expected = entries;
  std::stable_sort(expected.begin(), expected.end(), [](const auto& a, const auto& b) { return a.key < b.key; });
  QORQL_EntrySort().sort(entries);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    ASSERT_EQ(entries[i].key, expected[i].key) << keys.size() << " entries, at " << i;
    ASSERT_EQ(entries[i].row, expected[i].row) << keys.size() << " entries, at " << i;
  }
}

TEST(EntrySort, SortsByEveryDigit) {
  std::mt19937_64 random(3);
  for (const std::size_t size : {0U, 1U, 2U, 17U, 300U, 5000U}) {
    for (unsigned bits = 0; bits <= 64; bits += 8) {
      std::vector<QORuint64> keys(size);
      for (QORuint64& key : keys) key = bits == 0 ? 0 : random() >> (64 - bits);
      expectSorted(keys);
    }
  }
}

TEST(EntrySort, LeavesEqualKeysInTheOrderOfTheirRows) {
  std::vector<QORuint64> keys(5000);
  for (std::size_t i = 0; i < keys.size(); ++i) keys[i] = i * 7919 % 5 << 40U;
  expectSorted(keys);
}

TEST(EntrySort, SortsMoreAfterFewerInTheSameRoom) {
  QORQL_EntrySort sort;
  for (const QORuint32 size : {2000U, 10U, 4000U}) {
    Entries entries;
    for (QORuint32 row = size; row != 0; --row) entries.push_back({row * 7919ULL % size, row - 1});
    sort.sort(entries);
    EXPECT_TRUE(std::is_sorted(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
      return a.key != b.key ? a.key < b.key : a.row > b.row;
    })) << size;
  }
}

}  // namespace
