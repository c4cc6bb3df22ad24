// Fuzz target: the scanner and the token stream. However a text is read, token
// by token, by looking ahead or by revisiting, the tokens are the same, and
// those of the lexical rules.
// SPDX-License-Identifier: Apache-2.0
#include <vector>

#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "FuzzInput.h"
#include "ScannerJudge.h"

namespace {

struct Seen {
  QORQL_TokenType type;
  std::string text;
  friend bool operator==(const Seen&, const Seen&) = default;
};
using Tokens = std::vector<Seen>;

Seen seen(const QORQL_Token& token) { return {token.getType(), std::string(token.getValue().view())}; }

// A lexer begins with its first token current; a token of end is kept as the last.
Tokens readOneByOne(const QORString& text) {
  QORQL_Lexer lexer(text, false);
  Tokens tokens;
  QORuint32 line = 0;
  for (;;) {
    fuzzRequire(lexer.getCurrentLineNr() >= line, "line numbers go backwards");
    line = lexer.getCurrentLineNr();
    tokens.push_back(seen(lexer.getCurrent()));
    if (tokens.back().type == TokenEOF) return tokens;
    lexer.next(false);
    fuzzRequire(seen(lexer.lookBack()) == tokens.back(), "lookBack is not the token before");
  }
}

void compareWithRules(const QORString& text, const Tokens& tokens) {
  const ScannedText expected = scanByRules(text.view());
  fuzzRequire(tokens.size() == expected.tokens.size(), "the rules give another number of tokens");
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    fuzzRequire(tokens[i].type == expected.tokens[i].type && tokens[i].text == expected.tokens[i].text,
                "the rules give another token");
  }
}

// Looks 1, 2, 3 ... tokens ahead before each step, round and round.
void readLookingAhead(const QORString& text, const Tokens& expected) {
  QORQL_Lexer lexer(text, false);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    for (std::size_t n = 0; n <= i % 5; ++n) {
      const Seen wanted = i + n < expected.size() ? expected[i + n] : expected.back();
      fuzzRequire(seen(lexer.lookAhead(static_cast<int>(n))) == wanted, "looking ahead shows another token");
    }
    lexer.next(false);
  }
}

// Puts everything aside and takes it back.
void readTwice(const QORString& text, const Tokens& expected) {
  QORQL_Lexer lexer(text, false);
  lexer.skipUntilTokenAndRevisit(TokenEOF);
  for (std::size_t i = 0; i + 1 < expected.size(); ++i) {
    fuzzRequire(seen(lexer.next(true)) == expected[i], "a revisited token is another one");
  }
  fuzzRequire(lexer.next(true).getType() == TokenEOF, "tokens follow the last one that was put aside");
}

void skip(const QORString& text, const Tokens& expected) {
  for (const QORQL_TokenType type : {TokenFROM, TokenCOMMA, TokenSTRINGLITERAL}) {
    QORQL_Lexer lexer(text, false);
    std::size_t i = 1;
    while (i < expected.size() && expected[i].type != type && expected[i].type != TokenEOF) ++i;
    const Seen wanted = i < expected.size() ? expected[i] : expected.back();
    fuzzRequire(seen(lexer.skipUntilToken(type)) == wanted, "skipping stops elsewhere");
    try {
      lexer.matchToken(type);
      fuzzRequire(wanted.type == type, "a token matches another type");
    } catch (const QORQL_ParseException&) {
      fuzzRequire(wanted.type != type, "a token does not match its own type");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QORString text(reinterpret_cast<const char*>(data), size);
  const Tokens tokens = readOneByOne(text);
  compareWithRules(text, tokens);
  readLookingAhead(text, tokens);
  readTwice(text, tokens);
  skip(text, tokens);
  return 0;
}
