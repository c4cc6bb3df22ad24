// Texts are sorted by their first seven bytes, those that share these by the next seven, and so on, as numbers. Two
// texts are compared only in small groups: in a long list the texts are not in the cache, and comparing would wait for
// two of them each time.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_TextSort.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

// How many bytes of a text make a part; the last byte of its key says how many there were, or kGoesOn for more.
constexpr std::size_t kPart = 7;
constexpr QORuint64 kCountMask = 0xff;
constexpr QORuint64 kGoesOn = kPart + 1;

}  // namespace

// Missing bytes are zeros: of texts that differ in nothing but zeros at their ends the shorter one comes first.
QORuint64 QORQL_TextSort::frontOf(std::string_view text) noexcept {
  std::array<unsigned char, 8> bytes{};
  const std::size_t count = std::min(text.size(), bytes.size());
  std::memcpy(bytes.data(), text.data(), count);
  QORuint64 number = 0;
  for (const unsigned char byte : bytes) number = number << 8U | byte;
  return (number & ~kCountMask) | count;
}

void QORQL_TextSort::sort(std::vector<QORQL_SortEntry>& entries, bool isAscending) {
  constexpr std::size_t kFew = 16;
  _inversion = isAscending ? 0 : ~QORuint64{0};
  for (QORQL_SortEntry& entry : entries) entry.key ^= _inversion;
  const Group all{entries, 0};
  _sort.sort(all.entries);
  addGroups(all);
  while (!_groups.empty()) {
    const Group group = _groups.back();
    _groups.pop_back();
    if (group.entries.size() < kFew) {
      sortByComparing(group, isAscending);
    } else {
      sortByParts(group);
    }
  }
}

void QORQL_TextSort::sortByComparing(const Group& group, bool isAscending) const {
  const auto restOf = [&](const QORQL_SortEntry& entry) { return _texts[entry.row].substr(group.depth); };
  std::sort(group.entries.begin(), group.entries.end(), [&](const QORQL_SortEntry& a, const QORQL_SortEntry& b) {
    const int order = restOf(a).compare(restOf(b));
    if (order == 0) return a.row > b.row;
    return isAscending ? order < 0 : order > 0;
  });
}

void QORQL_TextSort::sortByParts(const Group& group) {
  readParts(group);
  _sort.sort(group.entries);
  addGroups(group);
}

// The texts of a whole run are prefetched before the first of them is read.
void QORQL_TextSort::readParts(const Group& group) const {
  constexpr std::size_t kRun = 64;
  for (std::size_t first = 0; first < group.entries.size(); first += kRun) {
    const auto run = group.entries.subspan(first, std::min(kRun, group.entries.size() - first));
    for (const QORQL_SortEntry& entry : run) __builtin_prefetch(&_texts[entry.row]);
    for (const QORQL_SortEntry& entry : run) __builtin_prefetch(_texts[entry.row].data() + group.depth);
    for (QORQL_SortEntry& entry : run) entry.key = frontOf(_texts[entry.row].substr(group.depth)) ^ _inversion;
  }
}

std::size_t QORQL_TextSort::endOfCommon(const Group& group) const noexcept {
  std::string_view common = _texts[group.entries.front().row].substr(group.depth);
  for (const QORQL_SortEntry& entry : group.entries) {
    const std::string_view rest = _texts[entry.row].substr(group.depth);
    const auto end = std::mismatch(common.begin(), common.end(), rest.begin(), rest.end()).first;
    common = common.substr(0, static_cast<std::size_t>(end - common.begin()));
  }
  return group.depth + common.size();
}

void QORQL_TextSort::addGroups(const Group& sorted) {
  const std::span<QORQL_SortEntry> entries = sorted.entries;
  for (std::size_t first = 0; first < entries.size();) {
    const QORuint64 key = entries[first].key;
    std::size_t end = first + 1;
    while (end < entries.size() && entries[end].key == key) ++end;
    if (end - first > 1 && ((key ^ _inversion) & kCountMask) == kGoesOn) {
      Group group{entries.subspan(first, end - first), sorted.depth + kPart};
      // What all of a group share may be long: it is skipped at once.
      if (group.entries.size() == entries.size()) group.depth = endOfCommon(group);
      _groups.push_back(group);
    }
    first = end;
  }
}
