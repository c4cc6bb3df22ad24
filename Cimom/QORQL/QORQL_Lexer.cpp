// The token stream: tokens come from the scanner one at a time and pass through
// a queue when a parse routine looks ahead.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Lexer.h"

#include <utility>

#include "Cimom/QORQL/QORQL_Messages.h"

namespace {

// About how many bytes the nodes of a statement take for each character of its text.
constexpr std::size_t kNodeBytes = 80;

}  // namespace

QORQL_Lexer::QORQL_Lexer(const QORString& queryString, bool)
    : QORQL_Lexer(queryString, QORString::emptyString(), QORString::emptyString()) {}

QORQL_Lexer::QORQL_Lexer(const QORString& queryString, const QORString& fileName, const QORString& pathName)
    : _text(queryString),
      _scanner(_text.view()),
      _slabs(_text.length() * kNodeBytes),
      _buffer(queryString.c_str()),
      _fileName(fileName),
      _pathname(pathName) {
  next(false);
}

QORQL_Lexer::~QORQL_Lexer() = default;

QORQL_Token QORQL_Lexer::_getNext() {
  QORQL_Token token;
  _scanner.read(token);
  return token;
}

QORQL_Token& QORQL_Lexer::_nextRevisitedToken() {
  _previousToken = std::move(_currentToken);
  _currentToken =
      _revisitTokens.isEmpty() ? QORQL_Token(QORString::emptyString(), TokenEOF) : _revisitTokens.removeFirst();
  return _currentToken;
}

QORQL_Token& QORQL_Lexer::next(bool revisit) {
  if (revisit) return _nextRevisitedToken();
  _previousToken = std::move(_currentToken);
  if (_hasFollowing) {
    _currentToken = std::move(_followingToken);
    _hasFollowing = !_nextTokens.isEmpty();
    if (_hasFollowing) _followingToken = _nextTokens.removeFirst();
  } else {
    _scanner.read(_currentToken);
  }
  return _currentToken;
}

QORQL_Token& QORQL_Lexer::lookAhead(int n) {
  if (n <= 0) return _currentToken;
  if (!_hasFollowing) {
    _scanner.read(_followingToken);
    _hasFollowing = true;
  }
  const QORuint32 others = static_cast<QORuint32>(n) - 1;
  if (others == 0) return _followingToken;
  while (_nextTokens.entries() < others) _nextTokens.append(_getNext());
  return _nextTokens.at(others - 1);
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
    _previousToken = std::move(_currentToken);
    _currentToken = _getNext();
  }
  return _currentToken;
}

void QORQL_Lexer::matchToken(int type) {
  if (_currentToken.getType() != type) QORQL_raiseAtToken(QORQL_Messages::kTokenMismatch, *this);
}

QORString QORQL_printedText(const QORQL_Token& token) {
  return token.getType() == TokenEOF ? QORString::emptyString() : token.getValue();
}

void QORQL_raise(const QORQL_ParseMessage& message, const QORQL_Lexer& lexer, const QORString& argument) {
  QORQL_raiseAt(lexer.getOffset(), message, lexer, argument);
}

void QORQL_raise(const QORQL_CheckMessage& message, const QORQL_Lexer& lexer) {
  QORQL_raise(message, lexer.getOffset());
}

void QORQL_raiseAtToken(const QORQL_ParseMessage& message, QORQL_Lexer& lexer) {
  QORQL_raise(message, lexer, QORQL_printedText(lexer.getCurrent()));
}

void QORQL_raiseAt(QORuint32 offset, const QORQL_ParseMessage& message, const QORQL_Lexer& lexer,
                   const QORString& argument) {
  QORQL_raise(message, lexer.getCurrentLineNr(), offset, argument);
}
