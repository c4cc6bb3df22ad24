// The WHERE clause: filters and joins the table.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_WHERECLAUSE_H
#define QORQL_WHERECLAUSE_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Executable.h"

class QORQL_Lexer;

// The condition of a statement.
class QORQL_WhereClause : public QORQL_Executable {
 public:
  // The condition is never null.
  explicit QORQL_WhereClause(QORSmrPtr<QORQL_Evaluatable> expression);
  ~QORQL_WhereClause() override;

  // Entered on WHERE.
  static QORSmrPtr<QORQL_Executable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                           QORQL_ProjectionMap& projMap, const QORString& queryString,
                                           const QORString& queryLanguage);

  // What the constructor was given.
  const QORSmrPtr<QORQL_Evaluatable>& getExpression() const noexcept { return _expression; }

  // Filters and joins the table. THROWS QORQL_Exception and what values and providers throw.
  void execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
               const QORString& nameSpace) override;

 private:
  QORSmrPtr<QORQL_Evaluatable> _expression;
};

#endif
