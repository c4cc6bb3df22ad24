// The keys of a sort over lazy rows: numbers or texts as arrays of fixed size.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SORTKEYS_H
#define QORQL_SORTKEYS_H

#include <deque>
#include <string_view>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_EntrySort.h"
#include "Cimom/QORQL/Lazy/QORQL_NumberOrder.h"
#include "cimom/IQoriValue.h"
#include "cimom/QoriScalar.h"
#include "cmpbase.h"

class QORQL_SortKeys {
 public:
  void reserve(std::size_t rows) { _entries.reserve(rows); }
  // Adds the next row's key; `holder` keeps a key that was made. False when it
  // cannot be compared with the others: then this class cannot sort them.
  bool add(const QoriScalar& key, const QORSmrPtr<IQoriValue>& holder);
  // False when the keys, each fit to be added, cannot be brought into one order.
  bool areSortable() const noexcept { return _order.isUniform(); }
  // The rows by key; rows of equal keys in descending order. Uses the keys up.
  std::vector<QORuint32> takeSorted(bool isAscending);

 private:
  void sortNumbers(bool isAscending);

  std::vector<QORQL_SortEntry> _entries;
  QORQL_NumberOrder _order;
  std::vector<std::string_view> _texts;  // by row; empty for numbers
  std::deque<QORSmrPtr<IQoriValue>> _holders;
};

#endif
