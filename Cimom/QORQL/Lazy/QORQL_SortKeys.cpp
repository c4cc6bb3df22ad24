// Numbers become keys in the same order; the keys of texts are their fronts.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_SortKeys.h"

#include <algorithm>

#include "Cimom/QORQL/Lazy/QORQL_TextSort.h"

bool QORQL_SortKeys::add(const QoriScalar& key, const QORSmrPtr<IQoriValue>& holder) {
  const QORuint32 row = static_cast<QORuint32>(_entries.size());
  if (key.kind == QoriScalarKind::Text && _texts.size() == row) {
    if (_texts.empty()) _texts.reserve(_entries.capacity());
    _texts.push_back(key.text->view());
    _entries.push_back({QORQL_TextSort::frontOf(_texts.back()), row});
  } else if (key.isNumber() && _texts.empty()) {
    _entries.push_back({_order.note(key), row});
  } else {
    return false;
  }
  if (!holder.IsNull()) _holders.push_back(holder);
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
