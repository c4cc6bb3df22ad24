// The keys of one side of a join, computed once for each row.
// Tested by tests/unit/QORQL/LazyJoinTest.cpp, tests/queries/join-keys.qtest.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_JOINKEYS_H
#define QORQL_JOINKEYS_H

#include <deque>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_BoundExpression.h"
#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "cimom/QoriScalar.h"

// The keys of one side of a comparison over the rows of one block.
class QORQL_JoinKeys {
 public:
  // What all keys that are not null have in common. Keys of one category compare
  // without error.
  enum Category { kNone, kNumber, kText, kBoolean, kReference, kMixed };

  // BORROWS its arguments. Keys come with readRun().
  QORQL_JoinKeys(const QORQL_BoundValue& side, const QORQL_LazyRows& rows, const QORQL_RowBlock& block);

  // Adds the keys of the next rows, a run at a time: a caller that uses them at once still finds their texts in
  // the cache. False when there were no rows left. THROWS what computing a key throws.
  bool readRun();
  void readAll() {
    while (readRun()) {
    }
  }
  // Of the rows so far.
  const std::vector<QoriScalar>& keys() const noexcept { return _keys; }
  // Of each key that is not null; equal keys have equal hashes.
  const std::vector<QORuint32>& hashes() const noexcept { return _hashes; }
  Category category() const noexcept { return _category; }
  static bool areJoinable(const QORQL_JoinKeys& a, const QORQL_JoinKeys& b) noexcept;

 private:
  void add(QoriScalar key, QORSmrPtr<IQoriValue>& holder);

  const QORQL_BoundValue& _side;
  const QORQL_RowBlock& _block;
  QORQL_RowView _view;
  QORQL_StopCheck _stopCheck;
  std::vector<QoriScalar> _keys;
  std::vector<QORuint32> _hashes;
  std::deque<QORSmrPtr<IQoriValue>> _holders;  // of keys that were computed
  std::deque<QORString> _paths;                // of references
  Category _category = kNone;
};

#endif
