// The chain of conditions of a WHERE clause.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLMatcher.h"

#include <algorithm>

#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "cimom/QoriProviderPluginManager.h"

namespace {

// The class's name as the repository has it: instances share its text, which
// makes the comparison short.
QORString declaredName(const QORString& nameSpace, const QORString& className) {
  const QORSmrPtr<IQoriRepository> repository =
      QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository();
  const QORSmrPtr<IQoriClass> found =
      repository.IsNull() ? QORSmrPtr<IQoriClass>() : repository->getClass(nameSpace, className);
  return found.IsNull() ? className : found->getClassName();
}

}  // namespace

CQLMatcher::CQLMatcher(const CQLScope& scope, const QORSmrPtr<QORQL_Executable>& whereClause) : _scope(scope) {
  const QORString& nameSpace = scope.nameSpace();
  if (!nameSpace.isNull()) _nameSpaceText = nameSpace.data();
  for (const QORString& className : scope.classNames()) _classes.push_back(declaredName(nameSpace, className));
  if (whereClause.IsNull()) return;
  const auto* where = dynamic_cast<const QORQL_WhereClause*>(whereClause.Get());
  addExpression(where == nullptr ? QORSmrPtr<QORQL_Evaluatable>() : where->getExpression());
}

void CQLMatcher::add(std::unique_ptr<CQLCondition> condition) {
  _quickChecks.push_back(condition->quickCheck());
  _conditions.push_back(std::move(condition));
}

void CQLMatcher::addExpression(const QORSmrPtr<QORQL_Evaluatable>& node) {
  const auto* const expression = QORQL_nodeAs<QORQL_Expression>(node);
  if (expression == nullptr || expression->getOperator() != QORQL_OperatorNONE) {
    add(CQLMakeNever("WHERE", {"a filter that uses OR never matches",
                               expression == nullptr ? CQLQueryFault::kNoOffset : expression->getOffset()}));
    return;
  }
  const auto* const term = QORQL_nodeAs<QORQL_ExpressionTerm>(QORQL_operandOf(*expression));
  if (term == nullptr) return;
  for (const QORQL_ExpressionTerm& link : QORQL_linksOf(*term)) add(CQLMakeCondition(_scope, QORQL_operandOf(link)));
}

// Most instances are of the FROM class itself.
bool CQLMatcher::isOfFromClass(const IQoriObject& instance) const {
  const QORString& name = instance.getClassName();
  if (name.isEmpty()) return false;
  for (const QORString& wanted : _classes) {
    if (name.data() != wanted.data() && !name.isEqualCaseInsensitive(wanted)) continue;
    const IQoriLayout* const layout = instance.getLayout();
    const QORuint64 serial = layout == nullptr ? 0 : layout->getSerial();
    if (serial != 0 && _fromSerial.load(std::memory_order_relaxed) != serial) {
      _fromSerial.store(serial, std::memory_order_relaxed);
    }
    return true;
  }
  return std::any_of(_classes.begin(), _classes.end(),
                     [&](const QORString& wanted) { return _scope.isSubClass(name, wanted); });
}

// A condition that is undecided because the instance failed does not hold.
const CQLCondition* CQLMatcher::firstFailure(const QORSmrPtr<IQoriObject>& instance) const {
  const IQoriObject& object = *instance;
  const QoriCells found = object.getCells();
  const QORuint64 serial = found.layout == nullptr ? 0 : found.layout->getSerial();
  for (std::size_t i = 0; i < _conditions.size(); ++i) {
    try {
      const CQLQuickCheck::Outcome outcome = _quickChecks[i].check(object, found, serial);
      const bool holds = outcome == CQLQuickCheck::Outcome::Undecided ? _conditions[i]->holds(instance)
                                                                      : outcome == CQLQuickCheck::Outcome::Holds;
      if (!holds) return _conditions[i].get();
    } catch (...) {
      return _conditions[i].get();
    }
  }
  return nullptr;
}

std::string CQLMatcher::explainFailure(const QORSmrPtr<IQoriObject>& instance) const {
  const CQLCondition* const failure = firstFailure(instance);
  if (failure == nullptr) return {};
  try {
    return failure->explain(instance);
  } catch (...) {
    return "its values cannot be read";
  }
}

std::vector<CQLAccess> CQLMatcher::accesses() const {
  if (!neverBecause().text.empty()) {
    CQLAccess never;
    never.kind = CQLAccess::Kind::Never;
    return {never};
  }
  std::vector<CQLAccess> accesses;
  for (const std::unique_ptr<CQLCondition>& condition : _conditions) accesses.push_back(condition->access());
  return accesses;
}

CQLNeverReason CQLMatcher::neverBecause() const {
  for (const std::unique_ptr<CQLCondition>& condition : _conditions) {
    CQLNeverReason reason = condition->neverBecause();
    if (!reason.text.empty()) return reason;
  }
  return {};
}
