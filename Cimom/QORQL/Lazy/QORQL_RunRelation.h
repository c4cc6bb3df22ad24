// A relation of a property with a literal or with another property, decided for
// a run of rows at a time.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_RUNRELATION_H
#define QORQL_RUNRELATION_H

#include <array>
#include <memory>
#include <optional>

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
  // BORROWS: the property that the side is; null for every other.
  const QORQL_PropertyColumn* column() const noexcept { return _column; }
  // Reads the next rows, or finds out where their cells lie. REQUIRES isReadable(), and a block that has the column.
  void read(const QORQL_RowBlock& block, QORuint64 first, std::size_t count) {
    if (_constant != nullptr) return;
    if (_column->readsCells()) {
      _hasGaps = !block.isWholeExtent;
      if (_buffer == nullptr) _buffer = std::make_unique_for_overwrite<const char*[]>(kBatch);
      _places = _column->fetchCells(block, first, count, _buffer.get());
    } else {
      if (_cells == nullptr) _cells = std::make_unique<QoriScalar[]>(kBatch);
      _column->read(block, first, count, _cells.get());
    }
  }
  const QoriScalar& operator[](std::size_t i) const noexcept {
    if (_constant != nullptr) return *_constant;
    return _places != nullptr ? QORQL_PropertyColumn::viewIn(_places[i], _column->offset()) : _cells[i];
  }
  // Calls use(cellOf), where cellOf(i) is the cell of a row: one loop for each form in which cells are at hand.
  // REQUIRES that the side is no constant.
  template <class Use>
  void withCells(const Use& use) const {
    if (_places == nullptr) return use([cells = _cells.get()](std::size_t i) -> const QoriScalar& { return cells[i]; });
    if (!_hasGaps) {
      return use([places = _places, offset = _column->offset()](std::size_t i) -> const QoriScalar& {
        return QoriCells::at(places[i], offset);
      });
    }
    use([places = _places, offset = _column->offset()](std::size_t i) -> const QoriScalar& {
      return QORQL_PropertyColumn::viewIn(places[i], offset);
    });
  }

 private:
  static constexpr std::size_t kBatch = QORQL_PropertyColumn::kBatch;

  const QORQL_PropertyColumn* _column;
  const QoriScalar* _constant;
  const char* const* _places = nullptr;  // of each row's cells; null: its cell has been read
  bool _hasGaps = true;                  // whether a row may be without cells
  // For kBatch rows; made when first needed, since most operands need one of them or none.
  std::unique_ptr<const char*[]> _buffer;
  std::unique_ptr<QoriScalar[]> _cells;
};

// Of each row of a run.
using QORQL_RunTruths = std::array<QORQL_ViewTruth, QORQL_PropertyColumn::kBatch>;

// Fills `truths` with the relation's truth on `count` rows that both sides have read.
void QORQL_relateRun(const QORQL_RunOperand& left, QoriRelation relation, const QORQL_RunOperand& right,
                     std::size_t count, QORQL_RunTruths& truths) noexcept;

// Puts out the indices of those of `count` rows of a block of one column, from `first` on, on which the relation of the
// column with the literal is true, and returns how many there are; nothing where that is not told by integers of the
// literal's signedness and NULLs alone. Costs one loop, where the truths and then the rows take several.
std::optional<std::size_t> QORQL_selectRun(const QORQL_PropertyColumn& column, QoriRelation relation,
                                           const QoriScalar& literal, const QORQL_RowBlock& block, QORuint64 first,
                                           std::size_t count, QORuint32* out) noexcept;

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
