// The judge of the prepared conditions. Chains of any length are walked without
// recursion; the depth of parentheses is the parser's.
#include "Cimom/QORQL/Filter/CQLTreeMatch.h"

#include <vector>

#include "Cimom/QORQL/Filter/CQLComparison.h"
#include "Cimom/QORQL/Filter/CQLIsa.h"
#include "Cimom/QORQL/Filter/CQLPropertyPath.h"
#include "Cimom/QORQL/Filter/CQLReferences.h"
#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;
using Node = QORSmrPtr<QORQL_Evaluatable>;

const Node& operandOf(const QORQL_Arithmetic& node) { return node.getTerm(); }
const Node& operandOf(const QORQL_Term& node) { return node.getFactor(); }
const Node& restOf(const QORQL_Arithmetic& node) { return node.getArithmetic(); }
const Node& restOf(const QORQL_Term& node) { return node.getTerm(); }

// A right-grouped chain: operands from the left, combined from the right.
template <class Chain, class Evaluate>
Value evaluateChain(const Node& node, Evaluate evaluate) {
  std::vector<Value> values;
  std::vector<QORQL_Operator> operators;
  for (const auto* link = dynamic_cast<const Chain*>(node.Get()); link != nullptr;) {
    values.push_back(evaluate(operandOf(*link)));
    if (link->getOperator() == QORQL_OperatorNONE) break;
    operators.push_back(link->getOperator());
    link = dynamic_cast<const Chain*>(restOf(*link).Get());
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

bool isText(const Value& value) {
  return !value.IsNull() && !value->isArray() && value->getType()->getName() == "string";
}

const QORQL_Comparison* nestedComparison(const Node& node) { return dynamic_cast<const QORQL_Comparison*>(node.Get()); }

// A reference without path, scope and index.
bool isPlain(const QORQL_Factor& factor) {
  return !factor.getPropertyName().IsNull() && factor.getChain().IsNull() && factor.getPropertyScope().IsNull() &&
         factor.getArrayIndexList() == QORQL_Factor::kNoArray;
}

}  // namespace

const CQLTreeMatch::Node* CQLTreeMatch::parenthesised(const Node& comparison) {
  const auto* outer = dynamic_cast<const QORQL_Comparison*>(comparison.Get());
  if (outer == nullptr || outer->getOperator() != QORQL_OperatorNONE) return nullptr;
  const auto* sum = dynamic_cast<const QORQL_Arithmetic*>(outer->getLHSArithmeticExpression().Get());
  if (sum == nullptr || sum->getOperator() != QORQL_OperatorNONE || sum->getTermCasted() == nullptr) return nullptr;
  const QORQL_Term& term = *sum->getTermCasted();
  const QORQL_Factor* const factor = term.getOperator() == QORQL_OperatorNONE ? term.getFactorCasted() : nullptr;
  if (factor == nullptr || factor->getOperator() != QORQL_OperatorNONE) return nullptr;
  return nestedComparison(factor->getEvaluatable()) == nullptr ? nullptr : &factor->getEvaluatable();
}

bool CQLTreeMatch::satisfiesExpression(const Node& node) const {
  const auto* expression = dynamic_cast<const QORQL_Expression*>(node.Get());
  return expression != nullptr && expression->getOperator() == QORQL_OperatorNONE &&
         satisfiesTerm(expression->getExpressionTerm());
}

bool CQLTreeMatch::satisfiesTerm(const Node& node) const {
  const auto* term = dynamic_cast<const QORQL_ExpressionTerm*>(node.Get());
  while (term != nullptr && satisfiesFactor(term->getExpressionFactor())) {
    if (term->getOperator() == QORQL_OperatorNONE) return true;
    if (term->getOperator() != QORQL_OperatorAND) return false;
    term = dynamic_cast<const QORQL_ExpressionTerm*>(term->getExpressionTerm().Get());
  }
  return false;
}

bool CQLTreeMatch::satisfiesFactor(const Node& node) const {
  const auto* factor = dynamic_cast<const QORQL_ExpressionFactor*>(node.Get());
  return factor != nullptr && factor->getOperator() == QORQL_OperatorNONE &&
         satisfiesComparison(factor->getComparison());
}

QoriTruth CQLTreeMatch::decide(const Node& comparison) const {
  try {
    const auto* node = dynamic_cast<const QORQL_Comparison*>(comparison.Get());
    if (node == nullptr) return QoriTruth::Null;
    if (node->getOperator() != QORQL_OperatorNONE) return decideOperator(*node);
    const Node* const inner = parenthesised(comparison);
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
  if (property.isEmpty() || !isText(className)) return QoriTruth::Null;
  return CQLIsa(_scope, property, className->toString()).test(*_instance);
}

QORString CQLTreeMatch::isaProperty(const CQLScope& scope, const QORQL_Comparison& comparison) {
  const Node& left = comparison.getLHSArithmeticExpression();
  const QORQL_Factor* const factor = CQLLoneFactor(left);
  if (factor != nullptr && factor->getLiteral().IsNull()) {
    const bool isOwn = isPlain(*factor) &&
                       (factor->getClassName()->isEmpty() || !scope.fromClassOf(*factor->getClassName()).isEmpty());
    return isOwn ? *factor->getPropertyName() : QORString();
  }
  if (!CQLIsConstant(left)) return {};
  const Value text(constant(scope, left));
  return isText(text) ? text->toString() : QORString();
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
  const auto* factor = dynamic_cast<const QORQL_Factor*>(node.Get());
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

// The value of what stands in parentheses or behind a minus.
CQLTreeMatch::Value CQLTreeMatch::nestedValue(const Node& node) const {
  const QORQL_Comparison* const inner = nestedComparison(node);
  if (inner == nullptr) return factor(node);
  return inner->getOperator() == QORQL_OperatorNONE ? sum(inner->getLHSArithmeticExpression())
                                                    : QORQL_truthValue(decide(node));
}
