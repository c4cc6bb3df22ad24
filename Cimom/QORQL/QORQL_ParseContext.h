// What every parse routine of an expression is given, and the bound of nesting.
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

#endif
