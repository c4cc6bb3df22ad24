// A relation of a property with a literal or with another property, decided for
// a run of rows at a time.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_RUNRELATION_H
#define QORQL_RUNRELATION_H

#include <array>

#include "Cimom/QORQL/Lazy/QORQL_BoundExpression.h"
#include "Cimom/QORQL/Lazy/QORQL_PropertyColumn.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "cimom/QoriScalar.h"

// One side of a comparison: cells of a column, or the same view for all rows.
// BORROWS the bound value.
class QORQL_RunOperand {
 public:
  explicit QORQL_RunOperand(const QORQL_BoundValue& side) noexcept
      : _column(side.propertyColumn()), _constant(side.constant()) {}

  // Whether the side has a cell for each row without being computed.
  bool isReadable() const noexcept { return _constant != nullptr || _column != nullptr; }
  bool isConstant() const noexcept { return _constant != nullptr; }
  const QoriScalar& constant() const noexcept { return *_constant; }
  // Reads the next rows. REQUIRES isReadable(), and a block that has the column.
  void read(const QORQL_RowBlock& block, QORuint64 first, std::size_t count) {
    if (_constant == nullptr) _column->read(block, first, count, _cells.data());
  }
  const QoriScalar& operator[](std::size_t i) const noexcept { return _constant == nullptr ? _cells[i] : *_constant; }
  const QoriScalar* cells() const noexcept { return _cells.data(); }

 private:
  const QORQL_PropertyColumn* _column;
  const QoriScalar* _constant;
  std::array<QoriScalar, QORQL_PropertyColumn::kBatch> _cells;
};

// Of each row of a run.
using QORQL_RunTruths = std::array<QORQL_ViewTruth, QORQL_PropertyColumn::kBatch>;

// Fills `truths` with the relation's truth on `count` rows that both sides have read.
void QORQL_relateRun(const QORQL_RunOperand& left, QoriRelation relation, const QORQL_RunOperand& right,
                     std::size_t count, QORQL_RunTruths& truths) noexcept;

// Calls use(compare) with the comparison of two ordered keys that the relation stands for.
template <class Use>
void QORQL_withComparison(QoriRelation relation, const Use& use) {
  switch (relation) {
    case QoriRelation::Equal:
      return use([](const auto& a, const auto& b) { return a == b; });
    case QoriRelation::NotEqual:
      return use([](const auto& a, const auto& b) { return a != b; });
    case QoriRelation::Less:
      return use([](const auto& a, const auto& b) { return a < b; });
    case QoriRelation::Greater:
      return use([](const auto& a, const auto& b) { return a > b; });
    case QoriRelation::LessEqual:
      return use([](const auto& a, const auto& b) { return a <= b; });
    case QoriRelation::GreaterEqual:
      return use([](const auto& a, const auto& b) { return a >= b; });
  }
}

#endif
