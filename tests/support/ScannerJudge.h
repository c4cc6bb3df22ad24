// A text's tokens as the lexical rules give them, to compare with those of the engine's scanner.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_SCANNERJUDGE_H
#define QORQL_TESTS_SCANNERJUDGE_H

#include <FlexLexer.h>

#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Cimom/QORQL/QORQL_Token.h"

struct ScannedToken {
  int type;
  std::string text;
  QORuint32 line;
  friend bool operator==(const ScannedToken&, const ScannedToken&) = default;
};

struct ScannedText {
  std::vector<ScannedToken> tokens;  // the end is the last one
  std::string echo;                  // what went to the output
};

inline std::string withoutDoubleQuotes(std::string text) {
  const std::size_t first = text.find_first_not_of('"');
  if (first == std::string::npos) return std::string();
  return text.substr(first, text.find_last_not_of('"') + 1 - first);
}

inline ScannedText scanByRules(std::string_view text) {
  std::istringstream in{std::string(text)};
  std::ostringstream out;
  yyFlexLexer rules(&in, &out);
  ScannedText scanned;
  for (;;) {
    const int type = rules.yylex();
    const std::string matched(rules.YYText(), static_cast<std::size_t>(rules.YYLeng()));
    const std::string value =
        type < TokenINVALID ? std::string(1, static_cast<char>(type)) : withoutDoubleQuotes(matched);
    scanned.tokens.push_back({type, value, static_cast<QORuint32>(rules.lineno())});
    if (type == TokenEOF) break;
  }
  scanned.echo = std::move(out).str();
  return scanned;
}

#endif
