// A few entries are compared, many are distributed digit by digit.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_EntrySort.h"

#include <algorithm>
#include <array>
#include <utility>

// A stable sort by key: one counting pass over all digits, then one
// distribution for each digit in which the keys differ.
void QORQL_EntrySort::sortByDigits(std::span<QORQL_SortEntry> entries) {
  constexpr std::size_t kDigits = 8;
  std::array<std::array<QORuint32, 256>, kDigits> counts{};
  for (const QORQL_SortEntry& entry : entries) {
    for (std::size_t digit = 0; digit < kDigits; ++digit) ++counts[digit][entry.key >> (8 * digit) & 0xff];
  }
  if (_roomSize < entries.size()) {
    _room = std::make_unique_for_overwrite<QORQL_SortEntry[]>(entries.size());
    _roomSize = entries.size();
  }
  std::span<QORQL_SortEntry> from = entries;
  std::span<QORQL_SortEntry> to(_room.get(), entries.size());
  for (std::size_t digit = 0; digit < kDigits; ++digit) {
    std::array<QORuint32, 256>& count = counts[digit];
    const auto digitOf = [digit](const QORQL_SortEntry& entry) { return entry.key >> (8 * digit) & 0xff; };
    if (count[digitOf(from.front())] == from.size()) continue;
    QORuint32 start = 0;
    for (QORuint32& place : count) place = std::exchange(start, start + place);
    for (const QORQL_SortEntry& entry : from) to[count[digitOf(entry)]++] = entry;
    std::swap(from, to);
  }
  if (from.data() != entries.data()) std::copy(from.begin(), from.end(), entries.begin());
}

void QORQL_EntrySort::sort(std::span<QORQL_SortEntry> entries) {
  constexpr std::size_t kWorthDigits = 512;
  if (entries.size() >= kWorthDigits) return sortByDigits(entries);
  std::sort(entries.begin(), entries.end(), [](const QORQL_SortEntry& a, const QORQL_SortEntry& b) {
    return a.key != b.key ? a.key < b.key : a.row > b.row;
  });
}
