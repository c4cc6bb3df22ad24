// The WHERE clause: parsing.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_WhereClause.h"

#include <utility>

#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_ParseContext.h"

QORQL_WhereClause::QORQL_WhereClause(QORSmrPtr<QORQL_Evaluatable> expression) : _expression(std::move(expression)) {}

QORQL_WhereClause::~QORQL_WhereClause() = default;

QORSmrPtr<QORQL_Executable> QORQL_WhereClause::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                     QORQL_ProjectionMap&, const QORString& queryString,
                                                     const QORString& queryLanguage) {
  QORQL_ConditionScope scope(symbolTable, lexer);
  lexer.next(false);
  QORSmrPtr<QORQL_Evaluatable> expression =
      QORQL_Expression::parse(symbolTable, lexer, scope.projectionMap(), queryString, queryLanguage);
  scope.requestProperties();
  return QORSmrPtr<QORQL_Executable>::MakeIn<QORQL_WhereClause>(lexer.slabs(), std::move(expression));
}
