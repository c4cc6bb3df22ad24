// The statement's answers about an instance: by its prepared conditions, and step
// by step through the tree for those who ask for a step.
// Tested by tests/unit/Filters/CQLTreeMatchTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/Filter/CQLComparison.h"
#include "Cimom/QORQL/Filter/CQLMatcher.h"
#include "Cimom/QORQL/Filter/CQLPropertyPath.h"
#include "Cimom/QORQL/Filter/CQLScope.h"
#include "Cimom/QORQL/Filter/CQLTreeMatch.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;

constexpr char kIsMatch[] = "CQLQUERYSTATEMENT::isMatch";

}  // namespace

bool CQLQueryStatement::isMatch(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace) const {
  if (_matcher != nullptr) {
    const CQLQuickCheck::Outcome outcome = _matcher->matchesQuickly(instance.Get(), nameSpace);
    if (outcome != CQLQuickCheck::Outcome::Undecided) return outcome == CQLQuickCheck::Outcome::Holds;
  }
  return matchThoroughly(instance, nameSpace);
}

bool CQLQueryStatement::matchThoroughly(const Instance& instance, const QORString& nameSpace) const {
  if (_matcher == nullptr) requireValidated(kIsMatch);
  if (instance.IsNull()) CQLQueryException::raise(kIsMatch, CQL_QUERY_INVALID_OR_NULL_PARM_ERROR);
  bool result = false;
  const CQLQueryExceptionCode code = doMatch(result, instance, nameSpace);
  if (code != CQL_QUERY_SUCCESS && code != CQL_QUERY_ISMATCH_FAILURE) CQLQueryException::raise(kIsMatch, code);
  return result;
}

QORString CQLQueryStatement::neverMatchesBecause() const {
  requireValidated(kIsMatch);
  return QORString(_matcher->neverBecause().text);
}

QORuint32 CQLQueryStatement::neverMatchesOffset() const {
  requireValidated(kIsMatch);
  return _matcher->neverBecause().offset;
}

bool CQLQueryStatement::explainMatch(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace,
                                     std::string& why) const {
  const bool matches = isMatch(instance, nameSpace);
  why.clear();
  if (matches) return true;
  const QORString& own = getNameSpace();
  if (!nameSpace.isEqualCaseInsensitive(own)) {
    why = "its namespace is " + std::string(nameSpace.view()) + ", the filter's " + std::string(own.view());
  } else if (!isMatchFromClause(instance)) {
    why = "its class " + std::string(instance->getClassName().view()) + " is not in FROM";
  } else {
    why = _matcher->explainFailure(instance);
  }
  return false;
}

CQLQueryExceptionCode CQLQueryStatement::doMatch(bool& result, const Instance& instance,
                                                 const QORString& nameSpace) const {
  result = false;
  if (nameSpace.isNull()) return CQL_QUERY_INTERNAL_ERROR;
  try {
    const QORString& own = getNameSpace();
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
    if (_scope->isSubClass(className, classes.key()->getClassName())) return true;
  }
  return false;
}

bool CQLQueryStatement::isMatchWhereClause(const Instance& instance) const {
  try {
    const QORSmrPtr<QORQL_Executable>& clause = parsedQuery().getWhereClause();
    if (clause.IsNull()) return true;
    const auto* where = dynamic_cast<const QORQL_WhereClause*>(clause.Get());
    return where != nullptr && isMatchExpression(where->getExpression(), instance);
  } catch (...) {
    return false;
  }
}

bool CQLQueryStatement::isMatchExpression(const Node& node, const Instance& instance) const {
  return CQLTreeMatch(*_scope, instance).satisfiesExpression(node);
}

bool CQLQueryStatement::isMatchExpressionTerm(const Node& node, const Instance& instance) const {
  return CQLTreeMatch(*_scope, instance).satisfiesTerm(node);
}

bool CQLQueryStatement::isMatchExpressionFactor(const Node& node, const Instance& instance) const {
  return CQLTreeMatch(*_scope, instance).satisfiesFactor(node);
}

bool CQLQueryStatement::isMatchComparison(const Node& node, const Instance& instance) const {
  return CQLTreeMatch(*_scope, instance).satisfiesComparison(node);
}

Value CQLQueryStatement::doMatchArithmetic(const Node& node, const Instance& instance) const {
  return CQLTreeMatch(*_scope, instance).sum(node);
}

Value CQLQueryStatement::doMatchTerm(const Node& node, const Instance& instance) const {
  return CQLTreeMatch(*_scope, instance).product(node);
}

Value CQLQueryStatement::doMatchFactor(const Node& node, const Instance& instance) const {
  return CQLTreeMatch(*_scope, instance).factor(node);
}

Value CQLQueryStatement::getPropertyValueFromEmbeddedObject(const IQoriObject& instance,
                                                            const QORQL_Factor& factor) const {
  return CQLPropertyPath(*_scope, factor).value(instance);
}

bool CQLQueryStatement::doComparisonOperation(const Value& lhs, const Value& rhs, QORQL_Operator op) {
  return CQLComparison::decide(lhs, rhs, op) == QoriTruth::True;
}

Value CQLQueryStatement::doComparisonOpEqualsNotEquals(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                                       QORQL_Comparison::QORQL_ARRAY_COMP arrayComp) {
  if (arrayComp != QORQL_Comparison::ArrayCompNone) return doArrayComparisonOperations(lhs, rhs, op, arrayComp);
  return QORQL_truthValue(CQLComparison::decide(lhs, rhs, op));
}

Value CQLQueryStatement::doComparisonOpGreaterLess(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                                   QORQL_Comparison::QORQL_ARRAY_COMP arrayComp) {
  return doComparisonOpEqualsNotEquals(lhs, rhs, op, arrayComp);
}

Value CQLQueryStatement::doArrayComparisonOperations(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                                     QORQL_Comparison::QORQL_ARRAY_COMP arrayComp) {
  return doAnyEveryArrayComparisonOps(lhs, rhs, op, arrayComp);
}

Value CQLQueryStatement::doAnyEveryArrayComparisonOps(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                                      QORQL_Comparison::QORQL_ARRAY_COMP arrayComp) {
  return QORQL_truthValue(CQLComparison::decideElements(lhs, rhs, op, arrayComp));
}

bool CQLQueryStatement::compare(const Value& lhs, const Value& rhs, QORQL_Operator op) {
  return CQLComparison::compare(lhs, rhs, op);
}

bool CQLQueryStatement::compareRealValues(const Value& lhs, const Value& rhs, QORQL_Operator op) {
  return CQLComparison::compare(lhs, rhs, op);
}

bool CQLQueryStatement::isNumericalData(const QORString& lhsType, const QORString& rhsType) noexcept {
  return CQLComparison::areNumbers(lhsType, rhsType);
}

CQLPrecisionCode CQLQueryStatement::findPrecisionType(const QORString& lhsType, const QORString& rhsType) {
  return CQLComparison::precisionOf(lhsType, rhsType);
}

Value CQLQueryStatement::convertToHighPrecision(const QORString& /*fromType*/, const QORString& toType,
                                                const Value& value) {
  return CQLComparison::converted(toType, value);
}
