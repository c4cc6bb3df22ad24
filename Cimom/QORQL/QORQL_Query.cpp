// A statement: parsing. All clauses and the end of the text are read first, so
// that a fault of the text is reported as such; then the names are resolved.
#include "Cimom/QORQL/QORQL_Query.h"

#include "Cimom/QORQL/QORQL_AssociationPlan.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

QORQL_Query::QORQL_Query(const QORSmrPtr<QORQL_Executable>& select, const QORSmrPtr<QORQL_Executable>& from,
                         const QORSmrPtr<QORQL_Executable>& where, const QORSmrPtr<QORQL_FormatClause>& format,
                         QORboolean isNestedQuery, const QORSmrPtr<QORQL_Executable>& orderBy,
                         const QORString& queryString, const QORString& queryLanguage)
    : _selectList(select),
      _fromClause(from),
      _whereClause(where),
      _formatClause(format),
      _isNestedQuery(isNestedQuery),
      _orderbyClause(orderBy),
      _queryString(queryString),
      _queryLanguage(queryLanguage) {}

QORQL_Query::~QORQL_Query() = default;

QORSmrPtr<QORQL_Executable> QORQL_Query::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                               QORboolean isNestedQuery, const QORString& queryString,
                                               const QORString& queryLanguage, const QORString& nameSpace) {
  QORQL_ProjectionMap projectionMap = QORQL_newProjectionMap();
  const QORSmrPtr<QORQL_Query> query =
      _parseClauses(symbolTable, lexer, isNestedQuery, projectionMap, queryString, queryLanguage);
  if (!isNestedQuery && lexer.getCurrent().getType() != TokenEOF) {
    QORQL_raiseAtToken(QORQL_Messages::kUnexpectedToken, lexer);
  }
  query->_resolve(symbolTable, projectionMap, nameSpace);
  QORQL_AssociationPlan::apply(*query, symbolTable);
  return query;
}

QORSmrPtr<QORQL_Query> QORQL_Query::_parseClauses(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                  QORboolean isNestedQuery, QORQL_ProjectionMap& projectionMap,
                                                  const QORString& queryString, const QORString& queryLanguage) {
  const QORSmrPtr<QORQL_Executable> select =
      QORQL_SelectList::parse(symbolTable, lexer, projectionMap, queryString, queryLanguage);
  QORSmrPtr<QORQL_SelectList> selectList = select.StaticCast<QORQL_SelectList>();
  const QORSmrPtr<QORQL_Executable> from =
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
  return new QORQL_Query(select, from, where, format, isNestedQuery, orderBy, queryString, queryLanguage);
}
