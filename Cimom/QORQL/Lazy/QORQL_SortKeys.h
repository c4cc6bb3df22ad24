// The keys of a sort over lazy rows: numbers, texts or datetimes as arrays of fixed size.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SORTKEYS_H
#define QORQL_SORTKEYS_H

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
  // The same for the keys of `count` rows, which need no value.
  bool add(const QoriScalar* keys, std::size_t count);
  // False when the keys, each fit to be added, cannot be brought into one order.
  bool areSortable() const noexcept { return _order.isUniform(); }
  // The rows by key; rows of equal keys in descending order. Uses the keys up.
  std::vector<QORuint32> takeSorted(bool isAscending);

 private:
  // Kinds of keys that stand in one order.
  enum class Family : QORuint8 { None, Numbers, Texts, Timestamps, Intervals };

  bool addDateTime(const QORString& text);
  // Add those keys at the front that are integers of one signedness, or complete timestamps; return how many. REQUIRE
  // a key, and for the others than the first that those join.
  std::size_t addFront(const QoriScalar* keys, std::size_t count);
  template <QoriScalarKind kKind>
  std::size_t addIntegers(const QoriScalar* keys, std::size_t count);
  std::size_t addTimestamps(const QoriScalar* keys, std::size_t count);
  // Notes what the next key is; false when it goes not together with those before.
  bool joins(Family family) noexcept;
  void sortNumbers(bool isAscending);

  Family _family = Family::None;
  std::vector<QORQL_SortEntry> _entries;
  QORQL_NumberOrder _order;
  std::vector<std::string_view> _texts;  // by row; empty for all but texts
  std::vector<QORSmrPtr<IQoriValue>> _holders;
};

#endif
