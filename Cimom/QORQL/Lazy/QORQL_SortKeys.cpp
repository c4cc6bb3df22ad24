// Numbers become keys in the same order, datetimes by their microseconds; the keys of texts are their fronts.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_SortKeys.h"

#include <algorithm>

#include "Cimom/QORQL/Lazy/QORQL_TextSort.h"
#include "cimom/QoriDateTime.h"

bool QORQL_SortKeys::joins(Family family) noexcept {
  if (_family == Family::None) _family = family;
  return _family == family;
}

// Incomplete datetimes, and intervals beside timestamps, are compared as texts, pair by pair.
bool QORQL_SortKeys::addDateTime(const QORString& text) {
  const QoriDateTime read = qori::readDateTime(text.view());
  if (!read.complete || !joins(read.interval ? Family::Intervals : Family::Timestamps)) return false;
  QoriScalar number;
  number.kind = QoriScalarKind::Signed;
  number.s = read.microseconds;
  _entries.push_back({_order.note(number), static_cast<QORuint32>(_entries.size())});
  return true;
}

bool QORQL_SortKeys::add(const QoriScalar& key, const QORSmrPtr<IQoriValue>& holder) {
  const QORuint32 row = static_cast<QORuint32>(_entries.size());
  if (key.isNumber() && joins(Family::Numbers)) {
    _entries.push_back({_order.note(key), row});
  } else if (key.kind == QoriScalarKind::Text && joins(Family::Texts)) {
    if (_texts.empty()) _texts.reserve(_entries.capacity());
    _texts.push_back(key.text->view());
    _entries.push_back({QORQL_TextSort::frontOf(_texts.back()), row});
  } else if (key.kind != QoriScalarKind::DateTime || !addDateTime(*key.text)) {
    return false;
  }
  if (!holder.IsNull()) _holders.push_back(holder);
  return true;
}

template <QoriScalarKind kKind>
std::size_t QORQL_SortKeys::addIntegers(const QoriScalar* keys, std::size_t count) {
  const std::size_t start = _entries.size();
  _entries.resize(start + count);
  QORQL_SortEntry* const entries = _entries.data() + start;
  QoriScalar all;
  all.kind = kKind;
  std::size_t done = 0;
  for (; done < count && keys[done].kind == kKind; ++done) {
    all.u |= keys[done].u;
    entries[done] = {keys[done].u, static_cast<QORuint32>(start + done)};
  }
  _entries.resize(start + done);
  if (done != 0) _order.note(all);  // the first bit tells of a sign and of a huge number, whichever key has it
  return done;
}

// The complete timestamps at the front of the keys.
std::size_t QORQL_SortKeys::addTimestamps(const QoriScalar* keys, std::size_t count) {
  const std::size_t start = _entries.size();
  _entries.resize(start + count);
  QORQL_SortEntry* const entries = _entries.data() + start;
  QoriScalar all;
  all.kind = QoriScalarKind::Signed;
  std::size_t done = 0;
  for (; done < count && keys[done].kind == QoriScalarKind::DateTime; ++done) {
    const QoriDateTime read = qori::readDateTime(keys[done].text->view());
    if (!read.complete || read.interval) break;
    all.s |= read.microseconds;
    entries[done] = {static_cast<QORuint64>(read.microseconds), static_cast<QORuint32>(start + done)};
  }
  _entries.resize(start + done);
  if (done != 0) _order.note(all);  // the first bit tells of a sign, whichever key has it
  return done;
}

// The keys at the front of one kind, which most are, without a look at each for anything else.
std::size_t QORQL_SortKeys::addFront(const QoriScalar* keys, std::size_t count) {
  if (keys[0].kind == QoriScalarKind::DateTime) {
    const bool mayJoin = _family == Family::None || _family == Family::Timestamps;
    const std::size_t added = mayJoin ? addTimestamps(keys, count) : 0;
    if (added != 0) _family = Family::Timestamps;
    return added;
  }
  const bool isInteger = keys[0].kind == QoriScalarKind::Unsigned || keys[0].kind == QoriScalarKind::Signed;
  if (!isInteger || !joins(Family::Numbers)) return 0;
  return keys[0].kind == QoriScalarKind::Unsigned ? addIntegers<QoriScalarKind::Unsigned>(keys, count)
                                                  : addIntegers<QoriScalarKind::Signed>(keys, count);
}

bool QORQL_SortKeys::add(const QoriScalar* keys, std::size_t count) {
  const QORSmrPtr<IQoriValue> none;
  for (std::size_t i = count == 0 ? 0 : addFront(keys, count); i < count; ++i) {
    const bool isAdded = keys[i].kind == QoriScalarKind::DateTime ? addDateTime(*keys[i].text) : add(keys[i], none);
    if (!isAdded) return false;
  }
  return true;
}

void QORQL_SortKeys::sortNumbers(bool isAscending) {
  const QORuint64 inverted = isAscending ? 0 : ~QORuint64{0};
  for (QORQL_SortEntry& entry : _entries) entry.key = _order.keyOf(entry.key) ^ inverted;
  QORQL_EntrySort().sort(_entries);
}

std::vector<QORuint32> QORQL_SortKeys::takeSorted(bool isAscending) {
  std::reverse(_entries.begin(), _entries.end());
  if (_texts.empty()) {
    sortNumbers(isAscending);
  } else {
    QORQL_TextSort(_texts).sort(_entries, isAscending);
  }
  std::vector<QORuint32> rows;
  rows.reserve(_entries.size());
  for (const QORQL_SortEntry& entry : _entries) rows.push_back(entry.row);
  _entries = {};
  return rows;
}
