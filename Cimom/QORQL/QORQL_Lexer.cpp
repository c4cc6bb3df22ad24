// The token stream: tokens come from the scanner one at a time and pass through
// a queue when a parse routine looks ahead.
#include "Cimom/QORQL/QORQL_Lexer.h"

#include <FlexLexer.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "Cimom/QORQL/QORQL_Messages.h"

namespace {

constexpr int kFirstEnumeratedToken = TokenINVALID;
constexpr std::size_t kQuotes = 2;  // that a string literal's text is without

std::unique_ptr<std::istringstream> streamOver(const QORString& text) {
  return std::make_unique<std::istringstream>(std::string(text.view()), std::ios::in);
}

// For each byte, whether a token begins with it.
constexpr std::array<bool, 256> kBeginsToken = [] {
  constexpr std::string_view kSigns = "*=!<>~+-/,()[].:\"#&;{}_";
  std::array<bool, 256> begins{};
  for (std::size_t byte = 0; byte < 128; ++byte) {
    const char c = static_cast<char>(byte);
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    begins[byte] = isLetter || (c >= '0' && c <= '9') || kSigns.find(c) != std::string_view::npos;
  }
  return begins;
}();

bool beginsToken(char c) { return kBeginsToken[static_cast<unsigned char>(c)]; }

// Where the scanner finds its next token: behind blanks, strings without end
// and characters that begin none. The scanner itself counts lines only.
std::size_t startOfToken(std::string_view text, std::size_t from) {
  while (from < text.size() && !beginsToken(text[from])) {
    if (text[from] != '\'') {
      ++from;
      continue;
    }
    const std::size_t end = text.find_first_of("'\n", from + 1);
    if (end != std::string_view::npos && text[end] == '\'') return from;
    from = end == std::string_view::npos ? from + 1 : end;
  }
  return from;
}

// Double quotes are removed at either end, of string literals too.
std::string_view withoutQuotes(std::string_view text) {
  const std::size_t first = text.find_first_not_of('"');
  if (first == std::string_view::npos) return std::string_view();
  return text.substr(first, text.find_last_not_of('"') + 1 - first);
}

}  // namespace

QORQL_Lexer::QORQL_Lexer(const QORString& queryString, bool)
    : QORQL_Lexer(queryString, QORString::emptyString(), QORString::emptyString()) {}

QORQL_Lexer::QORQL_Lexer(const QORString& queryString, const QORString& fileName, const QORString& pathName)
    : _buffer(queryString.c_str()),
      _istream(streamOver(queryString)),
      _text(_istream->view()),
      _flexLexer(std::make_unique<yyFlexLexer>(_istream.get(), nullptr)),
      _fileName(fileName),
      _pathname(pathName) {
  next(false);
}

QORQL_Lexer::~QORQL_Lexer() = default;

QORQL_Token QORQL_Lexer::_getNext() {
  const int type = _flexLexer->yylex();
  const std::size_t start = startOfToken(_text, _scanned);
  const QORuint32 offset = static_cast<QORuint32>(start);
  if (type < kFirstEnumeratedToken) {
    _scanned = std::min(start + 1, _text.size());
    const char character = static_cast<char>(type);
    return QORQL_Token(QORString(&character, 1), static_cast<QORQL_TokenType>(type), offset);
  }
  // A string literal may hold any byte, so the text is taken by its length.
  const std::string_view matched(_flexLexer->YYText(), static_cast<std::size_t>(_flexLexer->YYLeng()));
  _scanned = start + matched.size() + (type == TokenSTRINGLITERAL ? kQuotes : 0);
  return QORQL_Token(QORString(withoutQuotes(matched)), static_cast<QORQL_TokenType>(type), offset);
}

QORQL_Token& QORQL_Lexer::_nextRevisitedToken() {
  _previousToken = _currentToken;
  _currentToken =
      _revisitTokens.isEmpty() ? QORQL_Token(QORString::emptyString(), TokenEOF) : _revisitTokens.removeFirst();
  return _currentToken;
}

QORQL_Token& QORQL_Lexer::next(bool revisit) {
  if (revisit) return _nextRevisitedToken();
  QORQL_Token following = _nextTokens.isEmpty() ? _getNext() : _nextTokens.removeFirst();
  _previousToken = std::exchange(_currentToken, std::move(following));
  return _currentToken;
}

QORQL_Token& QORQL_Lexer::lookAhead(int n) {
  if (n <= 0) return _currentToken;
  const QORuint32 wanted = static_cast<QORuint32>(n);
  while (_nextTokens.entries() < wanted) _nextTokens.append(_getNext());
  return _nextTokens.at(wanted - 1);
}

QORQL_Token& QORQL_Lexer::skipUntilToken(QORQL_TokenType type) {
  do {
    next(false);
  } while (_currentToken.getType() != type && _currentToken.getType() != TokenEOF);
  return _currentToken;
}

QORQL_Token& QORQL_Lexer::skipUntilTokenAndRevisit(QORQL_TokenType type) {
  while (_currentToken.getType() != type) {
    _revisitTokens.append(_currentToken);
    _previousToken = std::exchange(_currentToken, _getNext());
  }
  return _currentToken;
}

void QORQL_Lexer::matchToken(int type) {
  if (_currentToken.getType() != type) QORQL_raiseAtToken(QORQL_Messages::kTokenMismatch, *this);
}

QORuint32 QORQL_Lexer::getCurrentLineNr() const { return static_cast<QORuint32>(_flexLexer->lineno()); }
