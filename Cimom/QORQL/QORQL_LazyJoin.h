// The join of two blocks of lazy rows on keys that are computed once per row of
// either block.
#ifndef QORQL_LAZYJOIN_H
#define QORQL_LAZYJOIN_H

#include <deque>
#include <vector>

#include "Cimom/QORQL/QORQL_BoundExpression.h"
#include "Cimom/QORQL/QORQL_LazyFilter.h"
#include "Cimom/QORQL/QORQL_LazyRows.h"

// The keys of one side of a comparison over the rows of one block.
class QORQL_JoinKeys {
 public:
  // What all keys that are not null have in common. Keys of one category compare
  // without error.
  enum Category { kNone, kNumber, kText, kBoolean, kReference, kMixed };

  QORQL_JoinKeys(const QORQL_BoundValue& side, const QORQL_LazyRows& rows, const QORQL_RowBlock& block);

  const std::vector<QoriScalar>& keys() const noexcept { return _keys; }
  // Of each key that is not null; equal keys have equal hashes.
  const std::vector<QORuint32>& hashes() const noexcept { return _hashes; }
  Category category() const noexcept { return _category; }
  static bool areJoinable(const QORQL_JoinKeys& a, const QORQL_JoinKeys& b) noexcept;

 private:
  void addProperty(const QORQL_PropertyColumn& column, const QORQL_RowBlock& block);
  void add(QoriScalar key, QORSmrPtr<IQoriValue>& holder);

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
