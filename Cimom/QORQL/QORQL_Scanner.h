// The lexical rules of the query language: cuts a text into tokens.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SCANNER_H
#define QORQL_SCANNER_H

#include <cstddef>
#include <optional>
#include <ostream>
#include <string_view>

#include "Cimom/QORQL/QORQL_Token.h"
#include "cmpbase.h"

// The longest match counts; keywords go before identifiers and ignore case.
// Belongs to one thread.
class QORQL_Scanner {
 public:
  // BORROWS the text, and all tokens borrow from it.
  explicit QORQL_Scanner(std::string_view text) noexcept : _text(text) {}

  // Puts the next token there; TokenEOF at the end of the text, as often as it
  // is asked. Bytes that are no token are copied to standard output and skipped, and so
  // is the quote of a string that does not end on its line, which is reported there.
  void read(QORQL_Token& token);
  // From 1. The newline after an unterminated string counts twice.
  QORuint32 line() const noexcept { return _line; }

 private:
  bool skipOpenString();
  void echo(char c);
  void put(QORQL_Token& token, QORQL_TokenType type, std::size_t length) noexcept {
    token.borrow({_text.data() + _place, length}, type, static_cast<QORuint32>(_place));
    _place += length;
  }
  void readWord(QORQL_Token& token) noexcept;
  void readNumber(QORQL_Token& token) noexcept;
  void readString(QORQL_Token& token) noexcept;
  void readSign(QORQL_Token& token) noexcept;
  QORQL_TokenType typeOfSign(std::size_t& length) const noexcept;
  char at(std::size_t place) const noexcept { return place < _text.size() ? _text[place] : '\0'; }

  std::string_view _text;
  std::size_t _place = 0;
  QORuint32 _line = 1;
  std::optional<std::ostream> _echo;  // over standard output's buffer, once there is something to copy
};

#endif
