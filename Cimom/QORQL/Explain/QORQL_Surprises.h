// Where a statement does not mean what someone who knows SQL expects.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SURPRISES_H
#define QORQL_SURPRISES_H

#include <string>
#include <string_view>
#include <vector>

#include "cmpbase.h"

class QORQL_Query;

// One place, told once.
struct QORQL_Surprise {
  const char* rule;            // of the language reference, such as "WHERE-3"
  std::string text;            // what the statement means, and what to write instead
  QORuint32 offset;            // of the word that it is about, as a byte of the text
  std::string unknownClass{};  // the name at fault, where it is one of no class
};

// Each kind once: OR, then conditions, arithmetic, names and associations, the
// select list, FROM, and joins. Asks the class repository. REQUIRES a parsed query.
std::vector<QORQL_Surprise> QORQL_findSurprises(const QORQL_Query& query, const QORString& nameSpace);
// Those of them that hold for filters as well: where arithmetic computes something unexpected, and literals that no
// type holds. A filter's query does not keep its text, which is given.
std::vector<QORQL_Surprise> QORQL_findFilterSurprises(const QORQL_Query& query, const QORString& nameSpace,
                                                      std::string_view text);

#endif
