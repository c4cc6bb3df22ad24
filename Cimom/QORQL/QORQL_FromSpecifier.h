// One class of a FROM clause, with its alias.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_FROMSPECIFIER_H
#define QORQL_FROMSPECIFIER_H

#include "Cimom/QORQL/QORQL_Executable.h"

class QORQL_Lexer;

// One class of FROM with its alias. Immutable.
class QORQL_FromSpecifier : public QORQL_Executable {
 public:
  // What the operations below give.
  QORQL_FromSpecifier(const QORString& tableName, const QORSmrPtr<QORQL_Executable>& subQuery, const QORString& alias);
  ~QORQL_FromSpecifier() override;

  // Reads `Class [ AS alias ]` from the current token on, leaves the first token after it current and enters the
  // names into the symbol table. THROWS QORQL_ParseException.
  static QORSmrPtr<QORQL_FromSpecifier> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer, bool isSelectAll);

  // Upper case.
  const QORString& getTableName() const noexcept { return _tableName; }
  // Upper case; empty when none.
  const QORString& getAlias() const noexcept { return _alias; }
  // Where the class stands, and the alias if there is one, as bytes of the statement's text.
  QORuint32 getOffset() const noexcept { return _offset; }
  QORuint32 getAliasOffset() const noexcept { return _aliasOffset; }
  // Always null: nested queries are refused by the parser.
  const QORSmrPtr<QORQL_Executable>& getSubQuery() const noexcept { return _subQuery; }

  // Runs a nested query, if there is one. THROWS QORQL_Exception (QORQL_UNDEFINED_SYMBOL) for an unknown name.
  void execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
               const QORString& nameSpace) override;

 private:
  QORString _tableName;
  QORSmrPtr<QORQL_Executable> _subQuery;
  QORString _alias;
  QORuint32 _offset = 0;
  QORuint32 _aliasOffset = 0;
};

#endif
