// The join of two blocks of lazy rows on keys that are computed once per row of
// either block.
#ifndef QORQL_LAZYJOIN_H
#define QORQL_LAZYJOIN_H

#include <deque>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_BoundExpression.h"
#include "Cimom/QORQL/Lazy/QORQL_LazyFilter.h"
#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"

// The keys of one side of a comparison over the rows of one block.
class QORQL_JoinKeys {
 public:
  // What all keys that are not null have in common. Keys of one category compare
  // without error.
  enum Category { kNone, kNumber, kText, kBoolean, kReference, kMixed };

  // BORROWS its arguments. Keys come with readRun().
  QORQL_JoinKeys(const QORQL_BoundValue& side, const QORQL_LazyRows& rows, const QORQL_RowBlock& block);

  // Adds the keys of the rows that come next, and so few that their texts are still near when it returns; false when
  // there were none left. THROWS what computing a key throws.
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

// Tries to join the two blocks that the condition reads, each side of it one
// block. On success the blocks are replaced, outer rows are added, and true is
// returned. False, with nothing changed, when only evaluation row by row is sure
// to give the same rows and errors.
bool QORQL_joinLazily(const QORQL_DataTable& table, QORQL_LazyRows& rows, const QORQL_Condition& condition,
                      const std::vector<std::size_t>& blockNumbers);

// Appends a row for an object of one column, null in every other. REQUIRES one block over all columns.
void QORQL_appendExtendedRow(QORQL_LazyRows& rows, QORuint32 column, QORuint32 index);

#endif
