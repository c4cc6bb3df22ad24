// Integers of one signedness against an unsigned literal, the common case, take
// one comparison each; all others are compared as views.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_RunRelation.h"

#include <limits>

namespace {

using Kind = QoriScalarKind;

// What the first cell with a value is; Null when there is none.
Kind firstKind(const QORQL_RunOperand& operand, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i) {
    if (!operand[i].isNull()) return operand[i].kind;
  }
  return Kind::Null;
}

template <Kind kKind>
auto integerOf(const QoriScalar& view) noexcept {
  if constexpr (kKind == Kind::Signed) {
    return view.s;
  } else {
    return view.u;
  }
}

// Cells without value are as common as others, so that nothing branches on them.
// REQUIRES a literal that is the same number as an integer of that kind.
template <Kind kKind>
void relateIntegers(const QORQL_RunOperand& operand, QoriRelation relation, const QoriScalar& literal,
                    std::size_t count, QORQL_RunTruths& truths) noexcept {
  const auto number = integerOf<kKind>(literal);
  QORQL_withComparison(relation, [&](const auto& compare) {
    operand.withCells([&](const auto& cellOf) {
      for (std::size_t i = 0; i < count; ++i) {
        const QoriScalar& cell = cellOf(i);
        const QORQL_ViewTruth truth = QORQL_viewTruth(compare(integerOf<kKind>(cell), number));
        if (cell.kind == kKind || cell.kind == Kind::Null) [[likely]] {
          truths[i] = cell.kind == kKind ? truth : QORQL_ViewTruth::Null;
        } else {
          truths[i] = QORQL_relateViews(cell, relation, literal);
        }
      }
    });
  });
}

}  // namespace

void QORQL_relateRun(const QORQL_RunOperand& left, QoriRelation relation, const QORQL_RunOperand& right,
                     std::size_t count, QORQL_RunTruths& truths) noexcept {
  if (left.isConstant() || !right.isConstant() || right.constant().kind != Kind::Unsigned) {
    for (std::size_t i = 0; i < count; ++i) truths[i] = QORQL_relateViews(left[i], relation, right[i]);
    return;
  }
  const QoriScalar& literal = right.constant();
  const bool fitsSigned = literal.u <= static_cast<QORuint64>(std::numeric_limits<QORsint64>::max());
  if (fitsSigned && firstKind(left, count) == Kind::Signed) {
    relateIntegers<Kind::Signed>(left, relation, literal, count, truths);
  } else {
    relateIntegers<Kind::Unsigned>(left, relation, literal, count, truths);
  }
}
