// Comments in the text of statements.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_COMMENTS_H
#define QORQL_TOOL_COMMENTS_H

#include <string>

#include "cmpbase.h"

// A text of statements without its comments. The language has none; what begins one here is what no statement holds:
// - # up to the end of the line, and /* up to the next */, also over lines;
// - -- up to the end of the line where no statement has begun: inside of one it is arithmetic.
// None of them begins inside a string literal, which ends at the latest with its line.
struct TextWithoutComments {
  // Lines and columns are those of the text: a blank stands for each character of a comment that something may follow.
  std::string text;
  // The line of a comment that does not end, from which nothing is in the text; 0: there is none.
  QORuint32 openLine = 0;
};

TextWithoutComments withoutComments(std::string text);

// The same for a whole text. THROWS std::runtime_error for a comment that does not end.
std::string withoutEndedComments(std::string text);

#endif
