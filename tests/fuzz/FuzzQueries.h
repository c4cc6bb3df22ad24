// The fixed model that whole queries run on, and which queries are too large to try.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_FUZZQUERIES_H
#define QORQL_TESTS_FUZZQUERIES_H

#include <string>

#include "Cimom/QORQL/QORQL_FromClause.h"
#include "FuzzInput.h"
#include "QueryRun.h"

inline std::string fuzzModel() {
  return fuzzFile("tests/queries/models/disks.mof") + fuzzFile("tests/queries/models/boxes.mof") +
         fuzzFile("tests/queries/models/types.mof");
}

// Whether a query parses to a product that the plain algorithm can make: each
// class of the model has at most five instances, and each row costs as much as
// the text is long. A text that is refused is small, whatever it says.
inline bool isSmallQuery(const std::string& query) {
  constexpr std::size_t kLargest = 200000;
  try {
    const QORString text(query.data(), query.size());
    QORQL_SymbolTable symbols(nullptr);
    QORQL_Lexer lexer(text, false);
    const QORSmrPtr<QORQL_Executable> parsed(
        QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", EmbeddedObjectManager::kDefaultNamespace));
    const auto& from =
        dynamic_cast<const QORQL_FromClause&>(*dynamic_cast<const QORQL_Query&>(*parsed).getFromClause());
    std::size_t work = query.size();
    for (QORuint32 i = 0; i < from.getFromSpecifierList()->entries() && work <= kLargest; ++i) work *= 5;
    return work <= kLargest;
  } catch (const QoriBaseException&) {
    return true;
  }
}

// An engine that uses a null pointer has made a mistake, even if it says so. A
// message may quote the query, which may speak of null pointers.
inline void requireStatedError(const QueryOutcome& outcome, const std::string& query) {
  constexpr const char* kMistake = "Null pointer";
  fuzzRequire(outcome.error.find(kMistake) == std::string::npos || query.find(kMistake) != std::string::npos,
              outcome.error);
}

#endif
