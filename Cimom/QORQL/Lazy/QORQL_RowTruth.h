// The truth of one comparison on lazy rows.
// Tested by tests/unit/QORQL/LazyFilterTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_ROWTRUTH_H
#define QORQL_ROWTRUTH_H

#include <memory>
#include <optional>

#include "Cimom/QORQL/Lazy/QORQL_BoundExpression.h"
#include "Cimom/QORQL/Lazy/QORQL_ConditionPlan.h"
#include "Cimom/QORQL/Lazy/QORQL_RunRelation.h"

class QORQL_RowTruth {
 public:
  virtual ~QORQL_RowTruth() = default;
  // What the comparison gives on the row. THROWS what it throws there.
  virtual QoriTruth test(const QORQL_RowView& row) = 0;
  // What it gives on `count` rows of a block from `first` on, as far as
  // properties and literals tell without error. False when they never do; then
  // and for undecided rows test() must be asked. REQUIRES count <= QORQL_PropertyColumn::kBatch.
  virtual bool testRun(const QORQL_RowBlock& /*block*/, QORuint64 /*first*/, std::size_t /*count*/,
                       QORQL_RunTruths& /*truths*/) {
    return false;
  }
  // Puts out the indices of those of any number of rows on which it is true, for a block of one column, and returns how
  // many there are. Nothing when testRun() must be asked of these rows; that tells nothing of others.
  virtual std::optional<std::size_t> selectRun(const QORQL_RowBlock& /*block*/, QORuint64 /*first*/,
                                               std::size_t /*count*/, QORuint32* /*out*/) {
    return std::nullopt;
  }
  // To be called when test() has decided a row of the run that testRun() has seen last: puts in what that tells of the
  // undecided rows from `next` on.
  virtual void learn(std::size_t /*next*/, std::size_t /*count*/, QORQL_RunTruths& /*truths*/) {}

  // BORROWS its arguments except the sides, which must be the comparison's on the table. Uses these where the
  // comparison allows it, otherwise a row that is filled for each test.
  static std::unique_ptr<QORQL_RowTruth> make(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                              const QORQL_ConditionPlan& plan, QORQL_BoundSides sides,
                                              const QORString& nameSpace);
};

#endif
