// Whether one instance satisfies a filter: the walk over the parsed WHERE tree.
// Whatever is missing or wrong on the way makes the instance not match.
#include <vector>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/Filter/CQLIsa.h"
#include "Cimom/QORQL/Filter/CQLMatcher.h"
#include "Cimom/QORQL/Filter/CQLPropertyPath.h"
#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;
using Node = QORSmrPtr<QORQL_Evaluatable>;

constexpr char kIsMatch[] = "CQLQUERYSTATEMENT::isMatch";

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

QORQL_Comparison* nestedComparison(const Node& node) { return dynamic_cast<QORQL_Comparison*>(node.Get()); }

}  // namespace

const CQLQueryStatement::Node* CQLQueryStatement::parenthesised(const Node& comparison) {
  const auto* outer = dynamic_cast<const QORQL_Comparison*>(comparison.Get());
  if (outer == nullptr || outer->getOperator() != QORQL_OperatorNONE) return nullptr;
  const auto* sum = dynamic_cast<const QORQL_Arithmetic*>(outer->getLHSArithmeticExpression().Get());
  if (sum == nullptr || sum->getOperator() != QORQL_OperatorNONE || sum->getTermCasted() == nullptr) return nullptr;
  const QORQL_Term& term = *sum->getTermCasted();
  const QORQL_Factor* const factor = term.getOperator() == QORQL_OperatorNONE ? term.getFactorCasted() : nullptr;
  if (factor == nullptr || factor->getOperator() != QORQL_OperatorNONE) return nullptr;
  return nestedComparison(factor->getEvaluatable()) == nullptr ? nullptr : &factor->getEvaluatable();
}

bool CQLQueryStatement::isMatch(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace) const {
  if (_matcher == nullptr) {
    requireValidated(kIsMatch);
  } else {
    const CQLQuickCheck::Outcome outcome = _matcher->matchesQuickly(instance.Get(), nameSpace);
    if (outcome != CQLQuickCheck::Outcome::Undecided) return outcome == CQLQuickCheck::Outcome::Holds;
  }
  if (instance.IsNull()) CQLQueryException::raise(kIsMatch, CQL_QUERY_INVALID_OR_NULL_PARM_ERROR);
  bool result = false;
  const CQLQueryExceptionCode code = doMatch(result, instance, nameSpace);
  if (code != CQL_QUERY_SUCCESS && code != CQL_QUERY_ISMATCH_FAILURE) CQLQueryException::raise(kIsMatch, code);
  return result;
}

CQLQueryExceptionCode CQLQueryStatement::doMatch(bool& result, const Instance& instance,
                                                 const QORString& nameSpace) const {
  result = false;
  if (nameSpace.isNull()) return CQL_QUERY_INTERNAL_ERROR;
  try {
    const QORString& own = nameSpaceInUse();
    if (nameSpace.data() != own.data() && !nameSpace.isEqualCaseInsensitive(own)) return CQL_QUERY_ISMATCH_FAILURE;
    if (!isMatchFromClause(instance)) return CQL_QUERY_ISMATCH_FAILURE;
    result = _matcher == nullptr ? isMatchWhereClause(instance) : _matcher->matches(instance);
    return result ? CQL_QUERY_SUCCESS : CQL_QUERY_ISMATCH_FAILURE;
  } catch (...) {
    result = false;
    return CQL_QUERY_INTERNAL_ERROR;
  }
}

bool CQLQueryStatement::isMatchFromClause(const Instance& instance) const {
  if (instance.IsNull()) return false;
  if (_matcher != nullptr) return _matcher->isOfFromClass(*instance);
  const QORString& className = instance->getClassName();
  if (className.isEmpty()) return false;
  QORValSlistIterator<QORSmrPtr<IQoriInstanceName>> classes(*getClassList());
  while (++classes) {
    if (CQLQueryValidator::isSubClass(nameSpaceInUse(), className, classes.key()->getClassName())) return true;
  }
  return false;
}

bool CQLQueryStatement::isMatchWhereClause(const Instance& instance) const {
  try {
    const Node none;
    const QORSmrPtr<QORQL_Executable>& clause = dynamic_cast<const QORQL_Query&>(*_query).getWhereClause();
    if (clause.IsNull()) return true;
    const auto* where = dynamic_cast<const QORQL_WhereClause*>(clause.Get());
    return where != nullptr && isMatchExpression(where->getExpression(), instance);
  } catch (...) {
    return false;
  }
}

bool CQLQueryStatement::isMatchExpression(const Node& node, const Instance& instance) const {
  const auto* expression = dynamic_cast<const QORQL_Expression*>(node.Get());
  return expression != nullptr && expression->getOperator() == QORQL_OperatorNONE &&
         isMatchExpressionTerm(expression->getExpressionTerm(), instance);
}

bool CQLQueryStatement::isMatchExpressionTerm(const Node& node, const Instance& instance) const {
  const auto* term = dynamic_cast<const QORQL_ExpressionTerm*>(node.Get());
  while (term != nullptr && isMatchExpressionFactor(term->getExpressionFactor(), instance)) {
    if (term->getOperator() == QORQL_OperatorNONE) return true;
    if (term->getOperator() != QORQL_OperatorAND) return false;
    term = dynamic_cast<const QORQL_ExpressionTerm*>(term->getExpressionTerm().Get());
  }
  return false;
}

bool CQLQueryStatement::isMatchExpressionFactor(const Node& node, const Instance& instance) const {
  const auto* factor = dynamic_cast<const QORQL_ExpressionFactor*>(node.Get());
  return factor != nullptr && factor->getOperator() == QORQL_OperatorNONE &&
         isMatchComparison(factor->getComparison(), instance);
}

bool CQLQueryStatement::isMatchComparison(const Node& node, const Instance& instance) const {
  return decide(node, instance) == QoriTruth::True;
}

QoriTruth CQLQueryStatement::decide(const Node& comparison, const Instance& instance) const {
  try {
    const auto* node = dynamic_cast<const QORQL_Comparison*>(comparison.Get());
    if (node == nullptr) return QoriTruth::Null;
    if (node->getOperator() != QORQL_OperatorNONE) return decideOperator(*node, instance);
    const Node* const inner = parenthesised(comparison);
    return inner == nullptr ? QoriTruth::Null : decide(*inner, instance);
  } catch (...) {
    return QoriTruth::Null;
  }
}

QoriTruth CQLQueryStatement::decideOperator(const QORQL_Comparison& comparison, const Instance& instance) const {
  const QORQL_Operator op = comparison.getOperator();
  if (op == QORQL_OperatorISA) return decideIsa(comparison, instance);
  if (op < QORQL_OperatorEQUAL || op > QORQL_OperatorGREATEREQUAL) return QoriTruth::Null;
  const Value lhs(doMatchArithmetic(comparison.getLHSArithmeticExpression(), instance));
  const Value rhs(doMatchArithmetic(comparison.getRHSArithmeticExpression(), instance));
  if (lhs.IsNull() || rhs.IsNull()) return QoriTruth::Null;
  const bool isEquality = op == QORQL_OperatorEQUAL || op == QORQL_OperatorNOTEQUAL;
  return QORQL_truthOf(isEquality ? doComparisonOpEqualsNotEquals(lhs, rhs, op, comparison.getArrayComp())
                                  : doComparisonOpGreaterLess(lhs, rhs, op, comparison.getArrayComp()));
}

Value CQLQueryStatement::doMatchArithmetic(const Node& node, const Instance& instance) const {
  return valueOrNull([&] {
    return evaluateChain<QORQL_Arithmetic>(node, [&](const Node& operand) { return doMatchTerm(operand, instance); });
  });
}

Value CQLQueryStatement::doMatchTerm(const Node& node, const Instance& instance) const {
  return valueOrNull([&] {
    return evaluateChain<QORQL_Term>(node, [&](const Node& operand) { return doMatchFactor(operand, instance); });
  });
}

Value CQLQueryStatement::doMatchFactor(const Node& node, const Instance& instance) const {
  return valueOrNull([&] { return factorValue(node, instance); });
}

Value CQLQueryStatement::factorValue(const Node& node, const Instance& instance) const {
  const auto* factor = dynamic_cast<const QORQL_Factor*>(node.Get());
  if (factor == nullptr) return {};
  if (factor->getEvaluatable().IsNull()) {
    if (!factor->getLiteral().IsNull()) return factor->getLiteral();
    return getPropertyValueFromEmbeddedObject(*instance, *factor);
  }
  Value value;
  if (const QORQL_Comparison* const inner = nestedComparison(factor->getEvaluatable())) {
    value = inner->getOperator() == QORQL_OperatorNONE
                ? doMatchArithmetic(inner->getLHSArithmeticExpression(), instance)
                : QORQL_truthValue(decide(factor->getEvaluatable(), instance));
  } else {
    value = doMatchFactor(factor->getEvaluatable(), instance);
  }
  if (factor->getOperator() != QORQL_OperatorMINUS) return value;
  const bool isUint64 = !value.IsNull() && value->getType()->getName() == "uint64";
  return isUint64 ? Value() : QORQL_negate(value);
}

Value CQLQueryStatement::getPropertyValueFromEmbeddedObject(const IQoriObject& instance,
                                                            const QORQL_Factor& factor) const {
  const CQLPropertyPath path(*this, factor);
  return path.value(instance);
}

// The left side contributes the name of its property, or its text; the right side a class.
QoriTruth CQLQueryStatement::decideIsa(const QORQL_Comparison& comparison, const Instance& instance) const {
  const QORString property(CQLIsa::propertyOf(*this, comparison));
  const Value className(doMatchArithmetic(comparison.getRHSArithmeticExpression(), instance));
  if (property.isEmpty() || !isText(className)) return QoriTruth::Null;
  return CQLIsa(*this, property, className->toString()).test(*instance);
}
