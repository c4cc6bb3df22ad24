// What a statement is warned of.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_WARNING_H
#define QORQL_TOOL_WARNING_H

#include <cstddef>
#include <optional>
#include <string>

struct Warning {
  std::string text;                   // a printable sentence
  std::optional<std::size_t> offset;  // of the word that it is about, as a byte of the statement's text
};

#endif
