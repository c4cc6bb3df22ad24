// A few entries are compared, many are distributed digit by digit.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_EntrySort.h"

#include <algorithm>
#include <array>
#include <utility>

// A stable sort by key: one pass finds the digits in which the keys differ; each of these is counted and distributed.
void QORQL_EntrySort::sortByDigits(std::span<QORQL_SortEntry> entries) {
  constexpr std::size_t kDigits = 8;
  const QORuint64 first = entries.front().key;
  QORuint64 difference = 0;
  for (const QORQL_SortEntry& entry : entries) difference |= entry.key ^ first;
  if (difference == 0) return;
  if (_roomSize < entries.size()) {
    _room = std::make_unique_for_overwrite<QORQL_SortEntry[]>(entries.size());
    _roomSize = entries.size();
  }
  std::span<QORQL_SortEntry> from = entries;
  std::span<QORQL_SortEntry> to(_room.get(), entries.size());
  for (std::size_t digit = 0; digit < kDigits; ++digit) {
    if ((difference >> (8 * digit) & 0xff) == 0) continue;
    const auto digitOf = [digit](const QORQL_SortEntry& entry) { return entry.key >> (8 * digit) & 0xff; };
    std::array<QORuint32, 256> count{};
    for (const QORQL_SortEntry& entry : from) ++count[digitOf(entry)];
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
