// What bounds and surrounds the parsing of an expression.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PARSECONTEXT_H
#define QORQL_PARSECONTEXT_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "cmpbase.h"

class QORQL_Lexer;
class QORQL_SymbolTable;

// Levels of parentheses, unary minus and calls together.
inline constexpr QORuint32 QORQL_kMaximumNesting = 1000;

// Counts one level while it lives. THROWS QORQL_ParseException (code 2,
// "expression nested too deeply") when the bound is passed.
class QORQL_NestingGuard {
 public:
  explicit QORQL_NestingGuard(QORQL_Lexer& lexer);
  QORQL_NestingGuard(const QORQL_NestingGuard&) = delete;
  QORQL_NestingGuard& operator=(const QORQL_NestingGuard&) = delete;
  ~QORQL_NestingGuard();

 private:
  QORQL_Lexer& _lexer;
};

// Sets the symbol table's updated flag while it lives and restores it, after an
// exception too. The flag tells factors that they stand in a select list, which
// refuses array references.
class QORQL_UpdatedFlagScope {
 public:
  QORQL_UpdatedFlagScope(QORQL_SymbolTable& symbolTable, QORboolean updated);
  QORQL_UpdatedFlagScope(const QORQL_UpdatedFlagScope&) = delete;
  QORQL_UpdatedFlagScope& operator=(const QORQL_UpdatedFlagScope&) = delete;
  ~QORQL_UpdatedFlagScope();

 private:
  QORQL_SymbolTable& _symbolTable;
  QORboolean _before;
};

// Lives while a WHERE condition or a sort key is parsed: its names go into a map
// of their own, since only the select list's names must be those of FROM; array
// references are allowed.
class QORQL_ConditionScope {
 public:
  QORQL_ConditionScope(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer);
  QORQL_ConditionScope(const QORQL_ConditionScope&) = delete;
  QORQL_ConditionScope& operator=(const QORQL_ConditionScope&) = delete;
  ~QORQL_ConditionScope();

  QORQL_ProjectionMap& projectionMap() noexcept { return _projectionMap; }
  // Adds the properties of each known class that the condition names to those that the statement
  // requests of the class.
  void requestProperties();

 private:
  QORQL_SymbolTable& _symbolTable;
  QORQL_Lexer& _lexer;
  QORQL_UpdatedFlagScope _flag;
  QORQL_ProjectionMap _projectionMap;
};

#endif
