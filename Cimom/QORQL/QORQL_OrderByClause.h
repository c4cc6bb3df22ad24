// The ORDER BY clause: sorts the table by one key.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_ORDERBYCLAUSE_H
#define QORQL_ORDERBYCLAUSE_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Executable.h"

class QORQL_Lexer;
class QORQL_SelectList;

// The one sort key of a statement.
class QORQL_OrderByClause : public QORQL_Executable {
 public:
  // The key is never null.
  QORQL_OrderByClause(const QORSmrPtr<QORQL_Evaluatable>& expression, QORboolean isSortAscending);
  ~QORQL_OrderByClause() override;

  // Entered on BY. Hands its key to the select list.
  static QORSmrPtr<QORQL_Executable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                           QORQL_ProjectionMap& projMap, QORSmrPtr<QORQL_SelectList>& selectList,
                                           const QORString& queryString, const QORString& queryLanguage);

  // What the constructor was given.
  const QORSmrPtr<QORQL_Evaluatable>& getExpression() const noexcept { return _expression; }
  QORboolean isSortAscending() const noexcept { return _isSortAscending; }

  // THROWS QORQL_Exception (QORQL_INTERNAL_ERROR) "Caught an exception while sorting the data."
  void execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
               const QORString& nameSpace) override;

 private:
  QORSmrPtr<QORQL_Evaluatable> _expression;
  QORboolean _isSortAscending;
};

#endif
