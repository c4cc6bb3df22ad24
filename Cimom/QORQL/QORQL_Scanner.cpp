// The lexical rules of the query language, one routine for each kind of token.
// A token is a view of the text: nothing is copied here.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Scanner.h"

#include <array>
#include <cstdio>
#include <iostream>

#include "Cimom/QORQL/QORQL_Text.h"

// Plain C names, for tools that look them up. The line and the text of the
// error report are never updated.
extern "C" {
int yywrap();
char* yylval = nullptr;
int lineno = 1;
}

int yywrap() { return 1; }

namespace {

constexpr char kEnd = '\0';  // the text of the end

enum class ByteKind : unsigned char { None, Blank, Newline, Letter, Digit, Quote, Sign };

constexpr ByteKind kindOf(char c) {
  constexpr std::string_view kSigns = "*=!<>~+-/,()[].:\"#&;{}";
  if (QORQL_isLetter(c)) return ByteKind::Letter;
  if (QORQL_isDigit(c)) return ByteKind::Digit;
  if (c == ' ' || c == '\t') return ByteKind::Blank;
  if (c == '\n') return ByteKind::Newline;
  if (c == '\'') return ByteKind::Quote;
  return kSigns.find(c) == std::string_view::npos ? ByteKind::None : ByteKind::Sign;
}

// By the byte that a token begins with.
constexpr std::array<ByteKind, 256> kKinds = [] {
  std::array<ByteKind, 256> kinds{};
  for (std::size_t byte = 0; byte < 128; ++byte) kinds[byte] = kindOf(static_cast<char>(byte));
  return kinds;
}();

ByteKind kind(char c) { return kKinds[static_cast<unsigned char>(c)]; }

constexpr std::array<bool, 256> kWordBytes = [] {
  std::array<bool, 256> bytes{};
  for (std::size_t byte = 0; byte < 256; ++byte)
    bytes[byte] = kKinds[byte] == ByteKind::Letter || kKinds[byte] == ByteKind::Digit;
  return bytes;
}();

bool isWordByte(char c) { return kWordBytes[static_cast<unsigned char>(c)]; }

struct Keyword {
  std::string_view word;  // in lower case
  QORQL_TokenType type = TokenID;
};

constexpr Keyword kKeywords[] = {
    {"select", TokenSELECT},
    {"from", TokenFROM},
    {"where", TokenWHERE},
    {"and", TokenAND},
    {"or", TokenOR},
    {"not", TokenNOT},
    {"local", TokenLOCAL},
    {"global", TokenGLOBAL},
    {"format", TokenFORMAT},
    {"as", TokenAS},
    {"xml", TokenXML},
    {"html", TokenHTML},
    {"csv", TokenCSV},
    {"true", TokenBOOLEANLITERAL},
    {"false", TokenBOOLEANLITERAL},
    {"like", TokenLIKE},
    {"is", TokenIS},
    {"null", TokenNULL},
    {"isa", TokenISA},
    {"any", TokenANY},
    {"every", TokenEVERY},
    {"in", TokenIN},
    {"satisfies", TokenSATISFIES},
    {"first", TokenFIRST},
    {"asc", TokenASC},
    {"desc", TokenDESC},
    {"by", TokenBY},
    {"order", TokenORDER},
    {"distinct", TokenDISTINCT},
    {"classqualifier", TokenCLASSQUALIFIER},
    {"propertyqualifier", TokenPROPERTYQUALIFIER},
};

// Lower case for letters; other bytes of a word become bytes that occur in no keyword.
constexpr char lowered(char c) { return static_cast<char>(c | 0x20); }

constexpr std::size_t kSlots = 128;

// The slot by length and first two letters: words of one letter are no keywords.
constexpr std::size_t slotOf(std::string_view word) {
  const std::size_t first = static_cast<unsigned char>(lowered(word[0]));
  const std::size_t second = static_cast<unsigned char>(lowered(word[1]));
  return (first * 5 + second * 3 + word.size()) % kSlots;
}

// The keywords by their slots; where a slot is taken, in the next free one.
constexpr std::array<Keyword, kSlots> kKeywordSlots = [] {
  std::array<Keyword, kSlots> slots{};
  for (const Keyword& keyword : kKeywords) {
    std::size_t slot = slotOf(keyword.word);
    while (!slots[slot].word.empty()) slot = (slot + 1) % kSlots;
    slots[slot] = keyword;
  }
  return slots;
}();

bool isKeyword(std::string_view word, std::string_view keyword) {
  if (word.size() != keyword.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (lowered(word[i]) != keyword[i]) return false;
  }
  return true;
}

QORQL_TokenType typeOfWord(std::string_view word) {
  if (word.size() < 2) return TokenID;
  for (std::size_t slot = slotOf(word); !kKeywordSlots[slot].word.empty(); slot = (slot + 1) % kSlots) {
    if (isKeyword(word, kKeywordSlots[slot].word)) return kKeywordSlots[slot].type;
  }
  return TokenID;
}

// The types of signs of one byte; a sign without a type of its own has its code as type.
constexpr std::array<QORQL_TokenType, 128> kTypesOfSigns = [] {
  std::array<QORQL_TokenType, 128> types{};
  for (std::size_t byte = 0; byte < types.size(); ++byte) types[byte] = static_cast<QORQL_TokenType>(byte);
  types['~'] = TokenTILDA;
  types['+'] = TokenPLUS;
  types['-'] = TokenMINUS;
  types['/'] = TokenDIV;
  types[','] = TokenCOMMA;
  types['('] = TokenOPENPAREN;
  types[')'] = TokenCLOSEPAREN;
  types['['] = TokenOPENSQUAREBRACK;
  types[']'] = TokenCLOSESQUAREBRACK;
  types['.'] = TokenDOT;
  return types;
}();

// Double quotes are removed at either end of a token's text, of string literals too.
std::string_view withoutQuotes(std::string_view text) {
  while (!text.empty() && text.front() == '"') text.remove_prefix(1);
  while (!text.empty() && text.back() == '"') text.remove_suffix(1);
  return text;
}

void yyerror(const char* message) {
  std::printf("%s in line %d (%s).\n", message, lineno, yylval == nullptr ? "(null)" : yylval);
}

}  // namespace

void QORQL_Scanner::echo(char c) {
  if (!_echo) _echo.emplace(std::cout.rdbuf());
  _echo->put(c);
}

// Entered on a quote. True when the string does not end on its line: then its
// quote, or the whole of it before the newline, has been skipped.
bool QORQL_Scanner::skipOpenString() {
  const std::size_t end = _text.find_first_of("'\n", _place + 1);
  if (end != std::string_view::npos && _text[end] == '\'') return false;
  if (end == std::string_view::npos) {
    echo(_text[_place++]);
  } else {
    _place = end;
    ++_line;
    yyerror("unterminated string");
  }
  return true;
}

void QORQL_Scanner::readWord(QORQL_Token& token) noexcept {
  const char* const start = _text.data() + _place;
  const char* const limit = _text.data() + _text.size();
  const char* end = start + 1;
  while (end != limit && isWordByte(*end)) ++end;
  const std::string_view word(start, static_cast<std::size_t>(end - start));
  put(token, typeOfWord(word), word.size());
}

// Digits; digits "." digits; the same with "e" or "E", perhaps a minus, and digits.
void QORQL_Scanner::readNumber(QORQL_Token& token) noexcept {
  const auto skipDigits = [this](std::size_t place) {
    while (QORQL_isDigit(at(place))) ++place;
    return place;
  };
  std::size_t end = skipDigits(_place);
  if (at(end) != '.' || !QORQL_isDigit(at(end + 1))) return put(token, TokenDECIMALLITERAL, end - _place);
  end = skipDigits(end + 1);
  if (lowered(at(end)) == 'e') {
    const std::size_t exponent = end + (at(end + 1) == '-' ? 2 : 1);
    if (QORQL_isDigit(at(exponent))) end = skipDigits(exponent);
  }
  put(token, TokenREALLITERAL, end - _place);
}

// Entered on the quote of a string that ends on its line. The text is what stands between the quotes.
void QORQL_Scanner::readString(QORQL_Token& token) noexcept {
  const std::size_t start = _place;
  const std::size_t end = _text.find('\'', start + 1);
  token.borrow(withoutQuotes(_text.substr(start + 1, end - start - 1)), TokenSTRINGLITERAL,
               static_cast<QORuint32>(start));
  _place = end + 1;
}

// The sign at the current place, with the bytes that belong to it.
QORQL_TokenType QORQL_Scanner::typeOfSign(std::size_t& length) const noexcept {
  const char c = _text[_place];
  const char following = at(_place + 1);
  const auto either = [&length](bool isLonger, QORQL_TokenType longer, QORQL_TokenType shorter) {
    length = isLonger ? 2 : 1;
    return isLonger ? longer : shorter;
  };
  const QORQL_TokenType character = static_cast<QORQL_TokenType>(c);
  switch (c) {
    case '*':
      length = 3;
      if (following == '=' && at(_place + 2) == '*') return TokenFULLOUTERJOIN;
      return either(following == '=', TokenLEFTJOIN, TokenASTERISK);
    case '=':
      return either(following == '*', TokenRIGHTJOIN, TokenEQUALS);
    case '!':
      return either(following == '=', TokenNOTEQUALS, character);
    case '<':
      if (following == '>') return either(true, TokenNOTEQUALS, TokenLESS);
      return either(following == '=', TokenLESSEQUAL, TokenLESS);
    case '>':
      return either(following == '=', TokenGREATEREQUAL, TokenGREATER);
    case ':':
      return either(following == ':', TokenSCOPE, character);
    default:
      length = 1;
      return kTypesOfSigns[static_cast<unsigned char>(c)];
  }
}

void QORQL_Scanner::readSign(QORQL_Token& token) noexcept {
  std::size_t length = 0;
  const QORQL_TokenType type = typeOfSign(length);
  put(token, type, length);
}

void QORQL_Scanner::read(QORQL_Token& token) {
  for (; _place < _text.size(); ++_place) {
    switch (kind(_text[_place])) {
      case ByteKind::Letter:
        return readWord(token);
      case ByteKind::Digit:
        return readNumber(token);
      case ByteKind::Sign:
        return readSign(token);
      case ByteKind::Quote:
        if (!skipOpenString()) return readString(token);
        --_place;
        break;
      case ByteKind::Newline:
        ++_line;
        break;
      case ByteKind::Blank:
        break;
      case ByteKind::None:
        echo(_text[_place]);
        break;
    }
  }
  token.borrow({&kEnd, 1}, TokenEOF, static_cast<QORuint32>(_text.size()));
}
