// Preparing one side of a filter's comparison.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLOperand.h"

#include "Cimom/QORQL/Filter/CQLReferences.h"
#include "Cimom/QORQL/Filter/CQLTreeMatch.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"

std::unique_ptr<CQLOperand> CQLOperand::make(const CQLScope& scope, const QORSmrPtr<QORQL_Evaluatable>& side) {
  const QORQL_Factor* const factor = QORQL_peeledLeaf(side.Get());
  if (factor != nullptr && factor->getLiteral().IsNull()) {
    return std::make_unique<CQLOperand>(std::make_unique<CQLPropertyPath>(scope, *factor));
  }
  return CQLIsConstant(side) ? std::make_unique<CQLOperand>(CQLTreeMatch::constant(scope, side)) : nullptr;
}

CQLOperand::CQLOperand(const QORSmrPtr<IQoriValue>& constant) : _constant(constant) {
  if (!_constant.IsNull()) _view = _constant->scalar();
}
