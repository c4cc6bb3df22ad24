// The statement's lists of properties: what its clauses use of one class.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/Filter/CQLPropertyNames.h"
#include "Cimom/QORQL/Filter/CQLScope.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

CQLQueryExceptionCode CQLQueryStatement::buildSelectPropertyList(const QORString& className,
                                                                 PropertyNames& list) const {
  try {
    CQLPropertyNames names(*_scope, className);
    names.addSelectList(selectList());
    list = names.names();
    return CQL_QUERY_SUCCESS;
  } catch (...) {
    return CQL_QUERY_INTERNAL_ERROR;
  }
}

CQLQueryExceptionCode CQLQueryStatement::buildWherePropertyList(const QORString& className, PropertyNames& list) const {
  try {
    CQLPropertyNames names(*_scope, className);
    const auto* where = dynamic_cast<const QORQL_WhereClause*>(parsedQuery().getWhereClause().Get());
    if (where != nullptr) names.addWhereClause(*where);
    list = names.names();
    return CQL_QUERY_SUCCESS;
  } catch (...) {
    return CQL_QUERY_INTERNAL_ERROR;
  }
}

QORString CQLQueryStatement::requestedClass(const char* where, const QORSmrPtr<IQoriInstanceName>& className) const {
  requireValidated(where);
  if (className.IsNull()) CQLQueryException::raise(where, CQL_QUERY_INVALID_OR_NULL_PARM_ERROR);
  const QORString& name = className->getClassName();
  QORString fromClass(_scope->fromClassOf(name));
  if (!fromClass.isEmpty() || name.isEmpty()) return fromClass;
  return _scope->isOfFrom(name) ? name : QORString();
}

namespace {

// The list of one clause for a class that requestedClass gave: without properties where it gave none.
template <class Build>
IQueryStatement::PropertyNames listOfClause(const char* where, const QORString& requested, const Build& build) {
  IQueryStatement::PropertyNames list(new QORValSlist<QORString>());
  if (requested.isEmpty()) return list;
  const CQLQueryExceptionCode code = build(list);
  if (code != CQL_QUERY_SUCCESS) CQLQueryException::raise(where, code);
  return list;
}

}  // namespace

IQueryStatement::PropertyNames CQLQueryStatement::getSelectPropertyList(
    const QORSmrPtr<IQoriInstanceName>& className) const {
  constexpr char kWhere[] = "CQLQUERYSTATEMENT::getSelectPropertyList";
  const QORString requested(requestedClass(kWhere, className));
  return listOfClause(kWhere, requested, [&](PropertyNames& list) { return buildSelectPropertyList(requested, list); });
}

IQueryStatement::PropertyNames CQLQueryStatement::getWherePropertyList(
    const QORSmrPtr<IQoriInstanceName>& className) const {
  constexpr char kWhere[] = "CQLQUERYSTATEMENT::getWherePropertyList";
  const QORString requested(requestedClass(kWhere, className));
  return listOfClause(kWhere, requested, [&](PropertyNames& list) { return buildWherePropertyList(requested, list); });
}

// The union of both; null when either needs every property.
IQueryStatement::PropertyNames CQLQueryStatement::getPropertyList(const QORSmrPtr<IQoriInstanceName>& className) const {
  constexpr char kWhere[] = "CQLQUERYSTATEMENT::getPropertyList";
  const QORString requested(requestedClass(kWhere, className));
  if (requested.isEmpty()) return PropertyNames(new QORValSlist<QORString>());
  CQLPropertyNames names(*_scope, requested);
  for (const auto build : {&CQLQueryStatement::buildSelectPropertyList, &CQLQueryStatement::buildWherePropertyList}) {
    PropertyNames list;
    const CQLQueryExceptionCode code = (this->*build)(requested, list);
    if (code != CQL_QUERY_SUCCESS) CQLQueryException::raise(kWhere, code);
    if (list.IsNull()) return list;
    QORValSlistIterator<QORString> iterator(*list);
    while (++iterator) names.add(iterator.key());
  }
  return names.names();
}
