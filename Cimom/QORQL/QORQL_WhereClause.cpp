// The WHERE clause: parsing.
#include "Cimom/QORQL/QORQL_WhereClause.h"

#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_ParseContext.h"

QORQL_WhereClause::QORQL_WhereClause(const QORSmrPtr<QORQL_Evaluatable>& expression) : _expression(expression) {}

QORQL_WhereClause::~QORQL_WhereClause() = default;

QORSmrPtr<QORQL_Executable> QORQL_WhereClause::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                     QORQL_ProjectionMap&, const QORString& queryString,
                                                     const QORString& queryLanguage) {
  QORQL_ConditionScope scope(symbolTable);
  lexer.next(false);
  const QORSmrPtr<QORQL_Evaluatable> expression =
      QORQL_Expression::parse(symbolTable, lexer, scope.projectionMap(), queryString, queryLanguage);
  scope.requestProperties();
  return new QORQL_WhereClause(expression);
}
