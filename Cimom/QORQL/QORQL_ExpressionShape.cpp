// Taking trees of expressions apart, node by node.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_ExpressionShape.h"

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"

namespace {

// What a node holds first, when it has no operator.
template <class Node>
const QORQL_Evaluatable* withoutOperator(const QORQL_Evaluatable& node,
                                         const QORSmrPtr<QORQL_Evaluatable>& (*operandOf)(const Node&)) noexcept {
  const Node& known = static_cast<const Node&>(node);
  return known.getOperator() == QORQL_OperatorNONE ? operandOf(known).Get() : nullptr;
}

const QORSmrPtr<QORQL_Evaluatable>& operandOf(const QORQL_ExpressionFactor& node) { return node.getComparison(); }
const QORSmrPtr<QORQL_Evaluatable>& operandOf(const QORQL_Comparison& node) {
  return node.getLHSArithmeticExpression();
}
const QORSmrPtr<QORQL_Evaluatable>& operandOf(const QORQL_Factor& node) { return node.getEvaluatable(); }

bool isLeaf(const QORQL_Factor& factor) noexcept {
  return factor.getEvaluatable().IsNull() && factor.getSelectedEntry().IsNull();
}

}  // namespace

const QORQL_Evaluatable* QORQL_decidingOperand(const QORQL_Evaluatable* condition) noexcept {
  const QORQL_Expression* last = QORQL_nodeAs<QORQL_Expression>(condition);
  if (last == nullptr) return nullptr;
  while (const QORQL_Expression* const next = QORQL_nextLink(*last)) last = next;
  return last->getOperator() == QORQL_OperatorNONE ? QORQL_operandOf(*last).Get() : nullptr;
}

const QORQL_Evaluatable* QORQL_onlyOperand(const QORQL_Evaluatable& node) noexcept {
  switch (node.kind()) {
    case QORQL_NodeKind::Expression:
      return withoutOperator<QORQL_Expression>(node, QORQL_operandOf);
    case QORQL_NodeKind::ExpressionTerm:
      return withoutOperator<QORQL_ExpressionTerm>(node, QORQL_operandOf);
    case QORQL_NodeKind::ExpressionFactor:
      return withoutOperator<QORQL_ExpressionFactor>(node, operandOf);
    case QORQL_NodeKind::Comparison:
      return withoutOperator<QORQL_Comparison>(node, operandOf);
    case QORQL_NodeKind::Arithmetic:
      return withoutOperator<QORQL_Arithmetic>(node, QORQL_operandOf);
    case QORQL_NodeKind::Term:
      return withoutOperator<QORQL_Term>(node, QORQL_operandOf);
    case QORQL_NodeKind::Factor:
      return withoutOperator<QORQL_Factor>(node, operandOf);
    default:
      return nullptr;
  }
}

const QORQL_Evaluatable* QORQL_peel(const QORQL_Evaluatable* node) noexcept {
  if (node == nullptr) return nullptr;
  while (const QORQL_Evaluatable* const inner = QORQL_onlyOperand(*node)) node = inner;
  return node;
}

const QORQL_Factor* QORQL_peeledLeaf(const QORQL_Evaluatable* node) noexcept {
  const auto* const factor = QORQL_nodeAs<QORQL_Factor>(QORQL_peel(node));
  return factor != nullptr && isLeaf(*factor) ? factor : nullptr;
}

const QORQL_Factor* QORQL_loneFactor(const QORSmrPtr<QORQL_Evaluatable>& node) noexcept {
  if (const auto* const comparison = QORQL_nodeAs<QORQL_Comparison>(node)) {
    const bool isBare = comparison->getOperator() == QORQL_OperatorNONE && !comparison->isArrayComp();
    return isBare ? QORQL_loneFactor(comparison->getLHSArithmeticExpression()) : nullptr;
  }
  const auto* const arithmetic = QORQL_nodeAs<QORQL_Arithmetic>(node);
  if (arithmetic == nullptr || arithmetic->getOperator() != QORQL_OperatorNONE) return nullptr;
  const QORQL_Term* const term = arithmetic->getTermCasted();
  return term == nullptr || term->getOperator() != QORQL_OperatorNONE ? nullptr : term->getFactorCasted();
}

const QORQL_Factor* QORQL_soleLeaf(const QORSmrPtr<QORQL_Evaluatable>& node) noexcept {
  const QORQL_Factor* const factor = QORQL_loneFactor(node);
  return factor != nullptr && isLeaf(*factor) ? factor : nullptr;
}

const QORQL_Factor* QORQL_leadingFactor(const QORQL_Arithmetic& arithmetic) noexcept {
  const QORQL_Term* const term = arithmetic.getTermCasted();
  return term == nullptr ? nullptr : term->getFactorCasted();
}

const QORSmrPtr<QORQL_Evaluatable>* QORQL_parenthesised(const QORSmrPtr<QORQL_Evaluatable>& comparison) noexcept {
  const auto* const outer = QORQL_nodeAs<QORQL_Comparison>(comparison);
  if (outer == nullptr || outer->getOperator() != QORQL_OperatorNONE) return nullptr;
  const QORQL_Factor* const factor = QORQL_loneFactor(outer->getLHSArithmeticExpression());
  if (factor == nullptr || factor->getOperator() != QORQL_OperatorNONE) return nullptr;
  const QORSmrPtr<QORQL_Evaluatable>& inner = factor->getEvaluatable();
  return QORQL_nodeAs<QORQL_Comparison>(inner) == nullptr ? nullptr : &inner;
}

bool QORQL_hasPath(const QORQL_Factor& reference) noexcept {
  return !reference.getChain().IsNull() && reference.getChain()->find(".") != QORString::npos;
}

bool QORQL_hasIndex(const QORQL_Factor& reference) noexcept {
  const QORsint32 index = reference.getArrayIndexList();
  return index != QORQL_Factor::kNoArray && index != QORQL_Factor::kWholeArray;
}

bool QORQL_containsInstanceOf(QORQL_Evaluatable& tree) {
  return QORQL_contains(
      tree, [](const QORQL_Function& function) { return function.getFunctionID() == QORQL_FUNCTIONID_INSTANCEOF; });
}

bool QORQL_containsOuterJoin(QORQL_Evaluatable& tree) {
  return QORQL_contains(
      tree, [](const QORQL_Comparison& comparison) { return comparison.getJoinType() != QORQL_JOIN_TYPE_INNER; });
}

bool QORQL_containsAssociation(QORQL_Evaluatable& tree) {
  return QORQL_contains(tree, [](const QORQL_Association& /*association*/) { return true; });
}
