// Integers of one signedness against an unsigned literal, the common case, take
// one comparison each; all others are compared as views.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_RunRelation.h"

#include <limits>

namespace {

// What the first cell with a value is; Null when there is none.
QoriScalarKind firstKind(const QORQL_RunOperand& operand, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i) {
    if (!operand[i].isNull()) return operand[i].kind;
  }
  return QoriScalarKind::Null;
}

// REQUIRES an unsigned literal.
bool fitsSigned(const QoriScalar& literal) noexcept {
  return literal.u <= static_cast<QORuint64>(std::numeric_limits<QORsint64>::max());
}

template <QoriScalarKind kKind>
auto integerOf(const QoriScalar& view) noexcept {
  if constexpr (kKind == QoriScalarKind::Signed) {
    return view.s;
  } else {
    return view.u;
  }
}

// Cells without value are as common as others, so that nothing branches on them.
// REQUIRES a literal that is the same number as an integer of that kind.
template <QoriScalarKind kKind>
void relateIntegers(const QORQL_RunOperand& operand, QoriRelation relation, const QoriScalar& literal,
                    std::size_t count, QORQL_RunTruths& truths) noexcept {
  const auto number = integerOf<kKind>(literal);
  QORQL_withComparison(relation, [&](const auto& compare) {
    operand.withCells([&](const auto& cellOf) {
      for (std::size_t i = 0; i < count; ++i) {
        const QoriScalar& cell = cellOf(i);
        const QORQL_ViewTruth truth = QORQL_viewTruth(compare(integerOf<kKind>(cell), number));
        if (cell.kind == kKind || cell.kind == QoriScalarKind::Null) [[likely]] {
          truths[i] = cell.kind == kKind ? truth : QORQL_ViewTruth::Null;
        } else {
          truths[i] = QORQL_relateViews(cell, relation, literal);
        }
      }
    });
  });
}

// A literal against the property whose cells lie at an offset.
struct CellRelation {
  const char* const* cells;
  QORuint32 offset;
  QoriRelation relation;
  const QoriScalar& literal;
};

// Rows of a block of one column, which are objects by their places.
struct WholeRows {
  QORuint32 operator[](QORuint64 row) const noexcept { return static_cast<QORuint32>(row); }
  static bool hasObject(QORuint32 /*index*/) noexcept { return true; }
};
struct TupleRows {
  const QORuint32* indices;
  QORuint32 operator[](QORuint64 row) const noexcept { return indices[row]; }
  static bool hasObject(QORuint32 index) noexcept { return index != QORQL_kNoObject; }
};

// What the first object that has a value has; Null when there is none.
template <class Rows>
QoriScalarKind firstKind(const CellRelation& asked, const Rows& rows, QORuint64 first, QORuint64 end) noexcept {
  for (QORuint64 row = first; row < end; ++row) {
    const QORuint32 index = rows[row];
    const QoriScalarKind kind =
        Rows::hasObject(index) ? QoriCells::at(asked.cells[index], asked.offset).kind : QoriScalarKind::Null;
    if (kind != QoriScalarKind::Null) return kind;
  }
  return QoriScalarKind::Null;
}

// Both put out the indices of the rows that hold, without a branch on that, which the processor could not predict, and
// return how many there are; nothing when they meet what they are not made for. Functions of their own, so that each
// loop has all it needs at hand. The first is for cells that all have an integer of that kind.
template <QoriScalarKind kKind, class Compare, class Rows>
[[gnu::noinline]] std::optional<std::size_t> selectDense(const Compare& compare, const CellRelation& asked,
                                                         const Rows& rows, QORuint64 first, QORuint64 end,
                                                         QORuint32* out) noexcept {
  const char* const* const cells = asked.cells;
  const QORuint32 offset = asked.offset;
  const auto number = integerOf<kKind>(asked.literal);
  std::size_t selected = 0;
  for (QORuint64 row = first; row < end; ++row) {
    const QORuint32 index = rows[row];
    if (!Rows::hasObject(index)) return std::nullopt;
    const QoriScalar& cell = QoriCells::at(cells[index], offset);
    if (cell.kind != kKind) return std::nullopt;
    out[selected] = index;
    selected += compare(integerOf<kKind>(cell), number) ? 1 : 0;
  }
  return selected;
}

// The second is for integers and NULLs, which alternate: what else it meets adds up, without a branch on which it is.
template <QoriScalarKind kKind, class Compare, class Rows>
[[gnu::noinline]] std::optional<std::size_t> selectWithNulls(const Compare& compare, const CellRelation& asked,
                                                             const Rows& rows, QORuint64 first, QORuint64 end,
                                                             QORuint32* out) noexcept {
  static_assert(static_cast<unsigned>(QoriScalarKind::Null) == 0);
  const char* const* const cells = asked.cells;
  const QORuint32 offset = asked.offset;
  const auto number = integerOf<kKind>(asked.literal);
  unsigned others = 0;
  std::size_t selected = 0;
  for (QORuint64 row = first; row < end; ++row) {
    const QORuint32 index = rows[row];
    if (!Rows::hasObject(index)) continue;
    const QoriScalar& cell = QoriCells::at(cells[index], offset);
    const bool isInteger = cell.kind == kKind;
    others |= isInteger ? 0U : static_cast<unsigned>(cell.kind);
    out[selected] = index;
    selected += static_cast<unsigned>(isInteger) & static_cast<unsigned>(compare(integerOf<kKind>(cell), number));
  }
  if (others != 0) return std::nullopt;
  return selected;
}

template <QoriScalarKind kKind, class Rows>
std::optional<std::size_t> selectIntegers(const CellRelation& asked, const Rows& rows, QORuint64 first, QORuint64 end,
                                          QORuint32* out) noexcept {
  std::optional<std::size_t> selected;
  QORQL_withComparison(asked.relation, [&](const auto& compare) {
    selected = selectDense<kKind>(compare, asked, rows, first, end, out);
    if (!selected) selected = selectWithNulls<kKind>(compare, asked, rows, first, end, out);
  });
  return selected;
}

template <class Rows>
std::optional<std::size_t> select(const CellRelation& asked, const Rows& rows, QORuint64 first, QORuint64 end,
                                  QORuint32* out) noexcept {
  return fitsSigned(asked.literal) && firstKind(asked, rows, first, end) == QoriScalarKind::Signed
             ? selectIntegers<QoriScalarKind::Signed>(asked, rows, first, end, out)
             : selectIntegers<QoriScalarKind::Unsigned>(asked, rows, first, end, out);
}

}  // namespace

void QORQL_relateRun(const QORQL_RunOperand& left, QoriRelation relation, const QORQL_RunOperand& right,
                     std::size_t count, QORQL_RunTruths& truths) noexcept {
  if (left.isConstant() || !right.isConstant() || right.constant().kind != QoriScalarKind::Unsigned) {
    for (std::size_t i = 0; i < count; ++i) truths[i] = QORQL_relateViews(left[i], relation, right[i]);
    return;
  }
  const QoriScalar& literal = right.constant();
  if (fitsSigned(literal) && firstKind(left, count) == QoriScalarKind::Signed) {
    relateIntegers<QoriScalarKind::Signed>(left, relation, literal, count, truths);
  } else {
    relateIntegers<QoriScalarKind::Unsigned>(left, relation, literal, count, truths);
  }
}

std::optional<std::size_t> QORQL_selectRun(const QORQL_PropertyColumn& column, QoriRelation relation,
                                           const QoriScalar& literal, const QORQL_RowBlock& block, QORuint64 first,
                                           std::size_t count, QORuint32* out) noexcept {
  const bool isTold = literal.kind == QoriScalarKind::Unsigned && block.columns.size() == 1 && column.readsCells();
  const char* const* const cells = isTold ? column.allCells() : nullptr;
  if (cells == nullptr) return std::nullopt;
  const CellRelation asked{cells, column.offset(), relation, literal};
  return block.isWholeExtent ? select(asked, WholeRows{}, first, first + count, out)
                             : select(asked, TupleRows{block.tuples.data()}, first, first + count, out);
}
