// A statement of the engine, parsed beforehand.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_STATEMENT_H
#define QORQL_BENCH_STATEMENT_H

#include <string>

#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "bench/World.h"

namespace bench {

// Keeps the texts that the parsed statement refers to.
struct Statement {
  explicit Statement(const std::string& query) : text(query) {
    QORQL_Lexer lexer(text, false);
    parsed = QORQL_Query::parse(symbols, lexer, false, text, language, nameSpace).StaticCast<QORQL_Query>();
  }

  const QORString text;
  const QORString language = "DMTF:CQL";
  const QORString nameSpace = kNameSpace;
  QORQL_SymbolTable symbols{nullptr};
  QORSmrPtr<QORQL_Query> parsed;
};

}  // namespace bench

#endif
