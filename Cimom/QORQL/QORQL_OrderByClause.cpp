// The ORDER BY clause: parsing.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_OrderByClause.h"

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_ParseContext.h"
#include "Cimom/QORQL/QORQL_SelectList.h"

namespace {

QORSmrPtr<QORQL_Evaluatable> parseKey(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer, const QORString& queryString,
                                      const QORString& queryLanguage) {
  QORQL_ConditionScope scope(symbolTable, lexer);
  QORSmrPtr<QORQL_Evaluatable> key =
      QORQL_Arithmetic::parse(symbolTable, lexer, scope.projectionMap(), queryString, queryLanguage);
  scope.requestProperties();
  return key;
}

// The direction is recognised by its text, so that a quoted word is accepted too.
QORboolean parseIsAscending(QORQL_Lexer& lexer) {
  const QORString& direction = lexer.getCurrent().getValue();
  const bool isDescending = direction.isEqualCaseInsensitive("DESC");
  if (!isDescending && !direction.isEqualCaseInsensitive("ASC")) {
    QORQL_raiseAtToken(QORQL_Messages::kDirectionExpected, lexer);
  }
  lexer.next(false);
  return !isDescending;
}

}  // namespace

QORQL_OrderByClause::QORQL_OrderByClause(const QORSmrPtr<QORQL_Evaluatable>& expression, QORboolean isSortAscending)
    : _expression(expression), _isSortAscending(isSortAscending) {}

QORQL_OrderByClause::~QORQL_OrderByClause() = default;

QORSmrPtr<QORQL_Executable> QORQL_OrderByClause::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                       QORQL_ProjectionMap&, QORSmrPtr<QORQL_SelectList>& selectList,
                                                       const QORString& queryString, const QORString& queryLanguage) {
  if (selectList->AreAllEntriesAggregates()) QORQL_raise(QORQL_Messages::kOrderByAggregates, lexer);
  lexer.next(false);
  const QORSmrPtr<QORQL_Evaluatable> key = parseKey(symbolTable, lexer, queryString, queryLanguage);
  const QORboolean isAscending = parseIsAscending(lexer);
  selectList->setOrderByKey(key);
  return QORSmrPtr<QORQL_Executable>::MakeIn<QORQL_OrderByClause>(lexer.slabs(), key, isAscending);
}
