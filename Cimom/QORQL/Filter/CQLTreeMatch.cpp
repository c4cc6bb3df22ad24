// The judge of the prepared conditions. Chains of any length are walked without
// recursion; the depth of parentheses is the parser's.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLTreeMatch.h"

#include <vector>

#include "Cimom/QORQL/Filter/CQLComparison.h"
#include "Cimom/QORQL/Filter/CQLIsa.h"
#include "Cimom/QORQL/Filter/CQLPropertyPath.h"
#include "Cimom/QORQL/Filter/CQLReferences.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;
using Node = QORSmrPtr<QORQL_Evaluatable>;

// A right-grouped chain: operands from the left, combined from the right.
template <class Chain, class Evaluate>
Value evaluateChain(const Node& node, Evaluate evaluate) {
  const auto* const first = QORQL_nodeAs<Chain>(node);
  if (first == nullptr) return {};
  std::vector<Value> values;
  std::vector<QORQL_Operator> operators;
  for (const Chain& link : QORQL_linksOf(*first)) {
    values.push_back(evaluate(QORQL_operandOf(link)));
    if (QORQL_continues(link)) operators.push_back(link.getOperator());
  }
  if (values.size() != operators.size() + 1) return {};
  return QORQL_combineChain(operators, values);
}

template <class Compute>
Value valueOrNull(const Compute& compute) {
  try {
    return compute();
  } catch (...) {
    return {};
  }
}

bool isStringValue(const Value& value) {
  return !value.IsNull() && !value->isArray() && value->getType()->getName() == "string";
}

// A reference without path, scope and index.
bool isPlain(const QORQL_Factor& factor) {
  return !factor.getPropertyName().IsNull() && factor.getChain().IsNull() && factor.getPropertyScope().IsNull() &&
         factor.getArrayIndexList() == QORQL_Factor::kNoArray;
}

}  // namespace

bool CQLTreeMatch::satisfiesExpression(const Node& node) const {
  const auto* expression = QORQL_nodeAs<QORQL_Expression>(node);
  return expression != nullptr && expression->getOperator() == QORQL_OperatorNONE &&
         satisfiesTerm(expression->getExpressionTerm());
}

bool CQLTreeMatch::satisfiesTerm(const Node& node) const {
  const auto* const term = QORQL_nodeAs<QORQL_ExpressionTerm>(node);
  if (term == nullptr) return false;
  const QORQL_ExpressionTerm* last = term;
  for (const QORQL_ExpressionTerm& link : QORQL_linksOf(*term)) {
    if (!satisfiesFactor(QORQL_operandOf(link))) return false;
    last = &link;
  }
  return last->getOperator() == QORQL_OperatorNONE;
}

bool CQLTreeMatch::satisfiesFactor(const Node& node) const {
  const auto* factor = QORQL_nodeAs<QORQL_ExpressionFactor>(node);
  return factor != nullptr && factor->getOperator() == QORQL_OperatorNONE &&
         satisfiesComparison(factor->getComparison());
}

QoriTruth CQLTreeMatch::decide(const Node& comparison) const {
  try {
    const auto* node = QORQL_nodeAs<QORQL_Comparison>(comparison);
    if (node == nullptr) return QoriTruth::Null;
    if (node->getOperator() != QORQL_OperatorNONE) return decideOperator(*node);
    const Node* const inner = QORQL_parenthesised(comparison);
    return inner == nullptr ? QoriTruth::Null : decide(*inner);
  } catch (...) {
    return QoriTruth::Null;
  }
}

QoriTruth CQLTreeMatch::decideOperator(const QORQL_Comparison& comparison) const {
  const QORQL_Operator op = comparison.getOperator();
  if (op == QORQL_OperatorISA) return decideIsa(comparison);
  if (op < QORQL_OperatorEQUAL || op > QORQL_OperatorGREATEREQUAL) return QoriTruth::Null;
  const Value lhs(sum(comparison.getLHSArithmeticExpression()));
  const Value rhs(sum(comparison.getRHSArithmeticExpression()));
  return comparison.isArrayComp() ? CQLComparison::decideElements(lhs, rhs, op, comparison.getArrayComp())
                                  : CQLComparison::decide(lhs, rhs, op);
}

// The left side contributes the name of its property, or its text; the right side a class.
QoriTruth CQLTreeMatch::decideIsa(const QORQL_Comparison& comparison) const {
  const QORString property(isaProperty(_scope, comparison));
  const Value className(sum(comparison.getRHSArithmeticExpression()));
  if (property.isEmpty() || !isStringValue(className)) return QoriTruth::Null;
  return CQLIsa(_scope, property, className->toString()).test(*_instance);
}

QORString CQLTreeMatch::isaProperty(const CQLScope& scope, const QORQL_Comparison& comparison) {
  const Node& left = comparison.getLHSArithmeticExpression();
  const QORQL_Factor* const factor = QORQL_peeledLeaf(left.Get());
  if (factor != nullptr && factor->getLiteral().IsNull()) {
    const bool isOwn = isPlain(*factor) &&
                       (factor->getClassName()->isEmpty() || !scope.fromClassOf(*factor->getClassName()).isEmpty());
    return isOwn ? *factor->getPropertyName() : QORString();
  }
  if (!CQLIsConstant(left)) return {};
  const Value text(constant(scope, left));
  return isStringValue(text) ? text->toString() : QORString();
}

CQLTreeMatch::Value CQLTreeMatch::sum(const Node& node) const {
  return valueOrNull(
      [&] { return evaluateChain<QORQL_Arithmetic>(node, [&](const Node& operand) { return product(operand); }); });
}

CQLTreeMatch::Value CQLTreeMatch::product(const Node& node) const {
  return valueOrNull(
      [&] { return evaluateChain<QORQL_Term>(node, [&](const Node& operand) { return factor(operand); }); });
}

CQLTreeMatch::Value CQLTreeMatch::factor(const Node& node) const {
  return valueOrNull([&] { return factorValue(node); });
}

CQLTreeMatch::Value CQLTreeMatch::constant(const CQLScope& scope, const Node& side) {
  const QORSmrPtr<IQoriObject> none;
  return CQLTreeMatch(scope, none).sum(side);
}

CQLTreeMatch::Value CQLTreeMatch::factorValue(const Node& node) const {
  const auto* factor = QORQL_nodeAs<QORQL_Factor>(node);
  if (factor == nullptr) return {};
  if (factor->getEvaluatable().IsNull()) {
    if (!factor->getLiteral().IsNull()) return factor->getLiteral();
    return CQLPropertyPath(_scope, *factor).value(*_instance);
  }
  const Value value(nestedValue(factor->getEvaluatable()));
  if (factor->getOperator() != QORQL_OperatorMINUS) return value;
  const bool isUint64 = !value.IsNull() && value->getType()->getName() == "uint64";
  return isUint64 ? Value() : QORQL_negate(value);
}

// The value of what stands in parentheses or after a minus.
CQLTreeMatch::Value CQLTreeMatch::nestedValue(const Node& node) const {
  const auto* const inner = QORQL_nodeAs<QORQL_Comparison>(node);
  if (inner == nullptr) return factor(node);
  return inner->getOperator() == QORQL_OperatorNONE ? sum(inner->getLHSArithmeticExpression())
                                                    : QORQL_truthValue(decide(node));
}
