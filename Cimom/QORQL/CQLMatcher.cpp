// The chain of conditions of a WHERE clause.
#include "Cimom/QORQL/CQLMatcher.h"

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

namespace {

std::string explanation(const CQLCondition& failure, const QORSmrPtr<IQoriObject>& instance) {
  try {
    return failure.explain(instance);
  } catch (...) {
    return "its values cannot be read";
  }
}

}  // namespace

CQLMatcher::CQLMatcher(const CQLQueryStatement& statement) {
  const auto& query = dynamic_cast<const QORQL_Query&>(*statement._query);
  if (query.getWhereClause().IsNull()) return;
  const auto* where = dynamic_cast<const QORQL_WhereClause*>(query.getWhereClause().Get());
  addExpression(statement, where == nullptr ? QORSmrPtr<QORQL_Evaluatable>() : where->getExpression());
}

CQLMatcher::~CQLMatcher() = default;

void CQLMatcher::addExpression(const CQLQueryStatement& statement, const QORSmrPtr<QORQL_Evaluatable>& node) {
  const auto* expression = dynamic_cast<const QORQL_Expression*>(node.Get());
  if (expression == nullptr || expression->getOperator() != QORQL_OperatorNONE) {
    _conditions.push_back(CQLMakeNever("WHERE", "a filter that uses OR never matches"));
    return;
  }
  const auto* term = dynamic_cast<const QORQL_ExpressionTerm*>(expression->getExpressionTerm().Get());
  while (term != nullptr) {
    _conditions.push_back(CQLMakeCondition(statement, term->getExpressionFactor()));
    term = dynamic_cast<const QORQL_ExpressionTerm*>(term->getExpressionTerm().Get());
  }
}

// A condition that an instance's failure leaves undecided does not hold.
const CQLCondition* CQLMatcher::firstFailure(const QORSmrPtr<IQoriObject>& instance) const {
  for (const std::unique_ptr<CQLCondition>& condition : _conditions) {
    try {
      if (!condition->holds(instance)) return condition.get();
    } catch (...) {
      return condition.get();
    }
  }
  return nullptr;
}

std::string CQLMatcher::neverBecause() const {
  for (const std::unique_ptr<CQLCondition>& condition : _conditions) {
    std::string reason = condition->neverBecause();
    if (!reason.empty()) return reason;
  }
  return {};
}

QORString CQLQueryStatement::neverMatchesBecause() const {
  requireValidated("CQLQUERYSTATEMENT::isMatch");
  return QORString(_matcher->neverBecause());
}

bool CQLQueryStatement::explainMatch(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace,
                                     std::string& why) const {
  const bool matches = isMatch(instance, nameSpace);
  why.clear();
  if (matches) return true;
  if (!nameSpace.isEqualCaseInsensitive(nameSpaceInUse())) {
    why =
        "its namespace is " + std::string(nameSpace.view()) + ", the filter's " + std::string(nameSpaceInUse().view());
  } else if (!isMatchFromClause(instance)) {
    why = "its class " + std::string(instance->getClassName().view()) + " is not in FROM";
  } else if (const CQLCondition* const failure = _matcher->firstFailure(instance)) {
    why = explanation(*failure, instance);
  }
  return false;
}
