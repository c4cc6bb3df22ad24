// A statement: parsing. All clauses and the end of the text are read first, so
// that a fault of the text is reported as such; then the names are resolved.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Query.h"

#include <utility>

#include "Cimom/QORQL/QORQL_AssociationPlan.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

QORQL_Query::QORQL_Query(QORSmrPtr<QORQL_Executable> select, QORSmrPtr<QORQL_Executable> from,
                         QORSmrPtr<QORQL_Executable> where, QORSmrPtr<QORQL_FormatClause> format,
                         QORboolean isNestedQuery, QORSmrPtr<QORQL_Executable> orderBy, const QORString& queryString,
                         const QORString& queryLanguage)
    : _selectList(std::move(select)),
      _fromClause(std::move(from)),
      _whereClause(std::move(where)),
      _formatClause(std::move(format)),
      _isNestedQuery(isNestedQuery),
      _orderbyClause(std::move(orderBy)),
      _queryString(queryString),
      _queryLanguage(queryLanguage) {}

// The nodes of a statement lie side by side and are freed together.
QORQL_Query::~QORQL_Query() {
  const QORSlabs::Returning together;
  _orderbyClause.Release();
  _formatClause.Release();
  _whereClause.Release();
  _fromClause.Release();
  _selectList.Release();
}

QORSmrPtr<QORQL_Executable> QORQL_Query::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                               QORboolean isNestedQuery, const QORString& queryString,
                                               const QORString& queryLanguage, const QORString& nameSpace) {
  const QORSlabs::Returning together;  // what only the parser needs
  QORQL_ProjectionMap projectionMap = QORQL_newProjectionMap(lexer.slabs());
  QORSmrPtr<QORQL_Executable> result =
      _parseClauses(symbolTable, lexer, isNestedQuery, projectionMap, queryString, queryLanguage);
  QORQL_Query& query = static_cast<QORQL_Query&>(*result);
  if (!isNestedQuery && lexer.getCurrent().getType() != TokenEOF) {
    QORQL_raiseAtToken(QORQL_Messages::kUnexpectedToken, lexer);
  }
  query._resolve(symbolTable, projectionMap, nameSpace, lexer.slabs());
  if (lexer.hasAssociation()) query._takeAssociations(symbolTable);
  return result;
}

QORSmrPtr<QORQL_Executable> QORQL_Query::_parseClauses(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                       QORboolean isNestedQuery, QORQL_ProjectionMap& projectionMap,
                                                       const QORString& queryString, const QORString& queryLanguage) {
  QORSmrPtr<QORQL_Executable> select =
      QORQL_SelectList::parse(symbolTable, lexer, projectionMap, queryString, queryLanguage);
  QORSmrPtr<QORQL_SelectList> selectList = select.StaticCastIn<QORQL_SelectList>(lexer.slabs());
  QORSmrPtr<QORQL_Executable> from =
      QORQL_FromClause::parse(symbolTable, lexer, selectList, queryString, queryLanguage);
  QORSmrPtr<QORQL_Executable> where;
  if (lexer.getCurrent().getType() == TokenWHERE) {
    where = QORQL_WhereClause::parse(symbolTable, lexer, projectionMap, queryString, queryLanguage);
  }
  QORSmrPtr<QORQL_Executable> orderBy;
  if (lexer.getCurrent().getType() == TokenORDER) {
    if (lexer.next(false).getType() != TokenBY) QORQL_raise(QORQL_Messages::kOrderWithoutBy, lexer);
    orderBy = QORQL_OrderByClause::parse(symbolTable, lexer, projectionMap, selectList, queryString, queryLanguage);
  }
  QORSmrPtr<QORQL_FormatClause> format;
  if (lexer.getCurrent().getType() == TokenFORMAT) format = QORQL_FormatClause::parse(symbolTable, lexer);
  return QORSmrPtr<QORQL_Executable>::MakeIn<QORQL_Query>(lexer.slabs(), std::move(select), std::move(from),
                                                          std::move(where), std::move(format), isNestedQuery,
                                                          std::move(orderBy), queryString, queryLanguage);
}

void QORQL_Query::_takeAssociations(const QORQL_SymbolTable& symbolTable) {
  if (_whereClause.IsNull()) return;
  const auto& where = static_cast<const QORQL_WhereClause&>(*_whereClause);
  const auto* const orderBy = static_cast<const QORQL_OrderByClause*>(_orderbyClause.Get());
  const QORQL_AssociationPlan plan = QORQL_planAssociations(
      where.getExpression(), static_cast<const QORQL_SelectList&>(*_selectList),
      orderBy == nullptr ? QORSmrPtr<QORQL_Evaluatable>() : orderBy->getExpression(), symbolTable);
  _whereHasAssociation = plan.hasAssociation;
  static_cast<QORQL_FromClause&>(*_fromClause).setSkippedClasses(plan.skippedClasses);
  for (const QORString& name : plan.wholeClasses) {
    const QORSmrPtr<QORQL_Symbol> symbol(symbolTable.lookupIgnoringCase(name));
    if (!symbol.IsNull() && !symbol->getClassInfo().IsNull()) symbol->getClassInfo()->setFetchAllProperties(true);
  }
}
