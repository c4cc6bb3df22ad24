// Taking trees of expressions apart, node by node.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_ExpressionShape.h"

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"

namespace {

// The node's own operator; what has none of its own, such as a function, is no node to look into.
template <class Node>
bool hasOperator(const QORQL_Evaluatable& node) noexcept {
  return static_cast<const Node&>(node).getOperator() != QORQL_OperatorNONE;
}

bool hasOperator(const QORQL_Evaluatable& node) noexcept {
  switch (node.kind()) {
    case QORQL_NodeKind::Expression:
      return hasOperator<QORQL_Expression>(node);
    case QORQL_NodeKind::ExpressionTerm:
      return hasOperator<QORQL_ExpressionTerm>(node);
    case QORQL_NodeKind::ExpressionFactor:
      return hasOperator<QORQL_ExpressionFactor>(node);
    case QORQL_NodeKind::Comparison:
      return hasOperator<QORQL_Comparison>(node);
    case QORQL_NodeKind::Arithmetic:
      return hasOperator<QORQL_Arithmetic>(node);
    case QORQL_NodeKind::Term:
      return hasOperator<QORQL_Term>(node);
    case QORQL_NodeKind::Factor:
      return hasOperator<QORQL_Factor>(node);
    default:
      return true;
  }
}

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

const QORQL_Evaluatable* QORQL_leadingOperand(const QORQL_Evaluatable& node) noexcept {
  switch (node.kind()) {
    case QORQL_NodeKind::Expression:
      return QORQL_operandOf(static_cast<const QORQL_Expression&>(node)).Get();
    case QORQL_NodeKind::ExpressionTerm:
      return QORQL_operandOf(static_cast<const QORQL_ExpressionTerm&>(node)).Get();
    case QORQL_NodeKind::ExpressionFactor:
      return hasOperator(node) ? nullptr : static_cast<const QORQL_ExpressionFactor&>(node).getComparison().Get();
    case QORQL_NodeKind::Comparison:
      return static_cast<const QORQL_Comparison&>(node).getLHSArithmeticExpression().Get();
    case QORQL_NodeKind::Arithmetic:
      return QORQL_operandOf(static_cast<const QORQL_Arithmetic&>(node)).Get();
    case QORQL_NodeKind::Term:
      return QORQL_operandOf(static_cast<const QORQL_Term&>(node)).Get();
    default:
      return nullptr;
  }
}

const QORQL_Evaluatable* QORQL_onlyOperand(const QORQL_Evaluatable& node) noexcept {
  if (hasOperator(node)) return nullptr;
  const auto* const factor = QORQL_nodeAs<QORQL_Factor>(&node);
  return factor == nullptr ? QORQL_leadingOperand(node) : factor->getEvaluatable().Get();
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
  const auto* const term = QORQL_nodeAs<QORQL_Term>(arithmetic->getTerm());
  if (term == nullptr || term->getOperator() != QORQL_OperatorNONE) return nullptr;
  return QORQL_nodeAs<QORQL_Factor>(term->getFactor());
}

const QORQL_Factor* QORQL_soleLeaf(const QORSmrPtr<QORQL_Evaluatable>& node) noexcept {
  const QORQL_Factor* const factor = QORQL_loneFactor(node);
  return factor != nullptr && isLeaf(*factor) ? factor : nullptr;
}

const QORQL_Factor* QORQL_leadingFactor(const QORQL_Arithmetic& arithmetic) noexcept {
  const auto* const term = QORQL_nodeAs<QORQL_Term>(arithmetic.getTerm());
  return term == nullptr ? nullptr : QORQL_nodeAs<QORQL_Factor>(term->getFactor());
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
  return !reference.getChain().IsNull() && reference.getChain()->view().find('.') != std::string_view::npos;
}

QORString QORQL_ownProperty(const QORQL_Factor& reference) {
  if (reference.getPropertyName().IsNull()) return QORString::emptyString();
  if (!QORQL_hasPath(reference)) return *reference.getPropertyName();
  const std::string_view chain = reference.getChain()->view();
  const std::string_view steps = chain.substr(chain.find('.') + 1);
  return QORString(steps.substr(0, steps.find('.')));
}

bool QORQL_isWholeObject(const QORQL_Factor& factor) noexcept {
  const bool hasClass = !factor.getClassName().IsNull() && !factor.getClassName()->isEmpty();
  const bool hasProperty = !factor.getPropertyName().IsNull() && !factor.getPropertyName()->isEmpty();
  return hasClass && !hasProperty && !QORQL_hasPath(factor) && !QORQL_hasIndex(factor) &&
         factor.getEvaluatable().IsNull() && factor.getSelectedEntry().IsNull();
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
