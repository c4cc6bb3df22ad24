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
  // Runs the clause or the statement. `table` is never null, neither before nor after; another table may stand in its
  // place then. REQUIRES the symbol table that parsing filled. Instances are fetched from `nameSpace`. Where `out`
  // (BORROWED, may be null) is given, the select list writes the result to it. THROWS QORQL_Exception,
  // QORQL_StoppedException where the thread's monitor asks for it, QORQL_ParseException for an aggregate that cannot be
  // streamed, and what providers and values throw; the table is incomplete then. A statement may be run again, each
  // time on a new table; a clause works on what the clauses that ran before it left in the table.
  virtual void execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
                       const QORString& nameSpace) = 0;
};

#endif
