// Statements in which a sign that the language does not know marks a place.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_QORQL_MARKEDSTATEMENT_H
#define QORQL_TESTS_UNIT_QORQL_MARKEDSTATEMENT_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "Cimom/QORQL/QORQL_Fault.h"

// "SELECT ^Nope FROM C": the text without the sign, and where it stood.
struct MarkedStatement {
  explicit MarkedStatement(std::string_view marked) : text(marked) {
    const std::size_t at = text.find('^');
    if (at == std::string::npos) return;
    text.erase(at, 1);
    offset = static_cast<QORuint32>(at);
  }

  // The text with the sign at another place, to compare with the marked one.
  std::string markedAt(QORuint32 place) const {
    std::string marked = text;
    if (place == QORQL_Fault::kNowhere) return marked + " (no place)";
    return marked.insert(std::min<std::size_t>(place, marked.size()), "^");
  }

  std::string text;
  QORuint32 offset = QORQL_Fault::kNowhere;
};

#endif
