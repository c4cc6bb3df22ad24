// Cuts a text into statements.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_STATEMENTS_H
#define QORQL_TOOL_STATEMENTS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cmpbase.h"

struct Statement {
  std::string text;
  // Where it begins in the whole text; columns count characters.
  QORuint32 firstLine = 1;
  QORuint32 firstColumn = 1;
};

// The statements between the semicolons of a text, blank ones left out, blanks
// around them removed. A semicolon inside a string literal does not count: a
// literal begins at a single quote and ends at the next one in the same line.
std::vector<Statement> splitStatements(std::string_view text);
// The place after the last semicolon that ends a statement; 0 when there is none.
std::size_t endOfStatements(std::string_view text);

// The content of a file or of standard input with CR LF line ends turned into
// LF and without a byte order mark, which the language does not know.
std::string normaliseText(std::string text);

#endif
