// Unsigned numbers against an unsigned literal, the common case, take one
// comparison each; everything else goes by the comparison of views.
#include "Cimom/QORQL/Lazy/QORQL_RunRelation.h"

#include "Cimom/QORQL/QORQL_Values.h"

namespace {

QORQL_RunTruth runTruth(const QoriScalar& left, QoriRelation relation, const QoriScalar& right) noexcept {
  bool isDecided = false;
  const QoriTruth truth = QORQL_relateViews(left, relation, right, isDecided);
  return isDecided ? static_cast<QORQL_RunTruth>(truth) : QORQL_RunTruth::Undecided;
}

}  // namespace

void QORQL_relateRun(const QORQL_RunOperand& left, QoriRelation relation, const QORQL_RunOperand& right,
                     std::size_t count, QORQL_RunTruths& truths) noexcept {
  if (left.isConstant() || !right.isConstant() || right.constant().kind != QoriScalarKind::Unsigned) {
    for (std::size_t i = 0; i < count; ++i) truths[i] = runTruth(left[i], relation, right[i]);
    return;
  }
  const QoriScalar& literal = right.constant();
  const QORuint64 number = literal.u;
  const QoriScalar* const cells = left.cells();
  QORQL_withComparison(relation, [&](const auto& compare) {
    for (std::size_t i = 0; i < count; ++i) {
      truths[i] = cells[i].kind == QoriScalarKind::Unsigned
                      ? (compare(cells[i].u, number) ? QORQL_RunTruth::True : QORQL_RunTruth::False)
                      : runTruth(cells[i], relation, literal);
    }
  });
}
