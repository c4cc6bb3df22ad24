// Unsigned numbers against an unsigned literal, the common case, take one
// comparison each; all others are compared as views.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_RunRelation.h"

void QORQL_relateRun(const QORQL_RunOperand& left, QoriRelation relation, const QORQL_RunOperand& right,
                     std::size_t count, QORQL_RunTruths& truths) noexcept {
  if (left.isConstant() || !right.isConstant() || right.constant().kind != QoriScalarKind::Unsigned) {
    for (std::size_t i = 0; i < count; ++i) truths[i] = QORQL_relateViews(left[i], relation, right[i]);
    return;
  }
  const QoriScalar& literal = right.constant();
  const QORuint64 number = literal.u;
  const QoriScalar* const cells = left.cells();
  QORQL_withComparison(relation, [&](const auto& compare) {
    for (std::size_t i = 0; i < count; ++i) {
      truths[i] = cells[i].kind == QoriScalarKind::Unsigned ? QORQL_viewTruth(compare(cells[i].u, number))
                                                            : QORQL_relateViews(cells[i], relation, literal);
    }
  });
}
