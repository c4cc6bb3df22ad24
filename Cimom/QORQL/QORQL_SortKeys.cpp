// Numbers are sorted digit by digit, texts by their first bytes and only then
// by the rest.
#include "Cimom/QORQL/QORQL_SortKeys.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

namespace {

// The first eight bytes as a number in the order of the texts; short texts are
// filled with zeros, so equal numbers do not make equal texts.
QORuint64 firstBytes(std::string_view text) noexcept {
  std::array<unsigned char, 8> bytes{};
  std::memcpy(bytes.data(), text.data(), std::min(text.size(), bytes.size()));
  QORuint64 number = 0;
  for (const unsigned char byte : bytes) number = number << 8U | byte;
  return number;
}

// A stable sort by key: one counting pass over all digits, then one
// distribution for each digit in which the keys differ.
template <class Entry>
void sortByDigits(std::vector<Entry>& entries) {
  constexpr std::size_t kDigits = 8;
  std::vector<std::array<QORuint32, 256>> counts(kDigits);
  for (const Entry& entry : entries) {
    for (std::size_t digit = 0; digit < kDigits; ++digit) ++counts[digit][entry.key >> (8 * digit) & 0xff];
  }
  std::vector<Entry> other(entries.size());
  for (std::size_t digit = 0; digit < kDigits; ++digit) {
    std::array<QORuint32, 256>& count = counts[digit];
    const auto digitOf = [digit](const Entry& entry) { return entry.key >> (8 * digit) & 0xff; };
    if (count[digitOf(entries.front())] == entries.size()) continue;
    QORuint32 start = 0;
    for (QORuint32& place : count) place = std::exchange(start, start + place);
    for (const Entry& entry : entries) other[count[digitOf(entry)]++] = entry;
    entries.swap(other);
  }
}

}  // namespace

bool QORQL_SortKeys::add(const QoriScalar& key, const QORSmrPtr<IQoriValue>& holder) {
  const QORuint32 row = static_cast<QORuint32>(_entries.size());
  if (key.kind == QoriScalarKind::Text && _texts.size() == row) {
    _entries.push_back({firstBytes(key.text->view()), row});
    _texts.push_back(key.text);
  } else if (key.isNumber() && _texts.empty()) {
    _entries.push_back({_order.note(key), row});
  } else {
    return false;
  }
  if (!holder.IsNull()) _holders.push_back(holder);
  return true;
}

void QORQL_SortKeys::sortTexts(bool isAscending) {
  const auto order = [this](const Entry& a, const Entry& b) {
    if (a.key != b.key) return a.key < b.key ? -1 : 1;
    return _texts[a.row]->view().compare(_texts[b.row]->view());
  };
  std::sort(_entries.begin(), _entries.end(), [&](const Entry& a, const Entry& b) {
    const int result = isAscending ? order(a, b) : order(b, a);
    return result == 0 ? a.row > b.row : result < 0;
  });
}

void QORQL_SortKeys::sortNumbers(bool isAscending) {
  constexpr std::size_t kWorthDigits = 512;
  const QORuint64 inverted = isAscending ? 0 : ~QORuint64{0};
  for (Entry& entry : _entries) entry.key = _order.keyOf(entry.key) ^ inverted;
  if (_entries.size() < kWorthDigits) {
    std::sort(_entries.begin(), _entries.end(),
              [](const Entry& a, const Entry& b) { return a.key != b.key ? a.key < b.key : a.row > b.row; });
  } else {
    std::reverse(_entries.begin(), _entries.end());
    sortByDigits(_entries);
  }
}

std::vector<QORuint32> QORQL_SortKeys::takeSorted(bool isAscending) {
  if (_texts.empty()) {
    sortNumbers(isAscending);
  } else {
    sortTexts(isAscending);
  }
  std::vector<QORuint32> rows;
  rows.reserve(_entries.size());
  for (const Entry& entry : _entries) rows.push_back(entry.row);
  _entries = {};
  return rows;
}
