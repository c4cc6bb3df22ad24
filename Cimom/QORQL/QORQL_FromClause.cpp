// The FROM clause: parsing.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_FromClause.h"

#include <utility>

#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

QORQL_FromClause::QORQL_FromClause(SpecifierList fromSpecifierList, bool isSelectAll, const QORString& queryString,
                                   const QORString& queryLanguage)
    : _fromSpecifierList(std::move(fromSpecifierList)),
      _isSelectAll(isSelectAll),
      _queryString(queryString),
      _queryLanguage(queryLanguage) {}

QORQL_FromClause::~QORQL_FromClause() = default;

QORSmrPtr<QORQL_Executable> QORQL_FromClause::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                    QORSmrPtr<QORQL_SelectList>& selectList,
                                                    const QORString& queryString, const QORString& queryLanguage) {
  if (lexer.getCurrent().getType() != TokenFROM) QORQL_raise(QORQL_Messages::kFromExpected, lexer);
  const bool isSelectAll = selectList->isSelectAll();
  SpecifierList specifiers = SpecifierList::MakeIn(lexer.slabs());
  do {
    lexer.next(false);
    specifiers->append(QORQL_FromSpecifier::parse(symbolTable, lexer, isSelectAll), lexer.slabs());
  } while (lexer.getCurrent().getType() == TokenCOMMA);
  if (specifiers->isEmpty()) QORQL_raise(QORQL_Messages::kFromEmpty, lexer);
  symbolTable.setSymbolTableUpdatedFlag(true);
  return QORSmrPtr<QORQL_Executable>::MakeIn<QORQL_FromClause>(lexer.slabs(), std::move(specifiers), isSelectAll,
                                                               queryString, queryLanguage);
}
