// The base of runnable clauses and statements.
// Tested by tests/unit/QORQL/QueryTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EXECUTABLE_H
#define QORQL_EXECUTABLE_H

#include <iosfwd>

#include "cmpbase.h"

class QORQL_DataTable;
class QORQL_SymbolTable;

// The namespace that ORDER BY and nested queries are given, whatever the caller's.
inline constexpr char QORQL_kFixedNameSpace[] = "root/yrk/zemo";

// Made by the parser; belongs to one thread at a time.
class QORQL_Executable {
 public:
  QORQL_Executable() = default;
  QORQL_Executable(const QORQL_Executable&) = delete;
  QORQL_Executable& operator=(const QORQL_Executable&) = delete;

  virtual ~QORQL_Executable();
  // Works on `table`, which it may replace; `out` may be null.
  virtual void execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
                       const QORString& nameSpace) = 0;
};

#endif
