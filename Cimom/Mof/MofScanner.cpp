// Delimits tokens; each byte is looked at once or twice, whatever the text.
#include "Cimom/Mof/MofScanner.h"

#include <cstdio>
#include <string>

#include "Cimom/Mof/MofSyntax.h"

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}
bool isNamePart(char c) { return isNameStart(c) || isDigit(c); }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

}  // namespace

std::size_t MofScanner::lineEndAfter(std::size_t offset) const noexcept {
  const std::size_t end = text().find_first_of("\r\n", offset);
  return end == std::string_view::npos ? text().size() : end;
}

MofToken MofScanner::next() {
  skipBlanks();
  if (_offset >= text().size()) return made(MofToken::Kind::End, 0);
  const char c = at(_offset);
  if (isNameStart(c)) return name(MofToken::Kind::Identifier, 0);
  if (c == '"') return quoted(MofToken::Kind::String, '"');
  if (c == '\'') return quoted(MofToken::Kind::Char, '\'');
  const char second = at(_offset + 1);
  const bool isSigned = (c == '+' || c == '-') && (isDigit(second) || second == '.');
  if (isDigit(c) || isSigned || (c == '.' && isDigit(second))) return number();
  if (c == '$' && isNameStart(second)) return name(MofToken::Kind::Alias, 1);
  if (c == '#') return pragma();
  if (std::string_view("{}[]();:,=").find(c) == std::string_view::npos) refuseByte();
  MofToken token = made(MofToken::Kind::Symbol, 1);
  token.symbol = c;
  return token;
}

void MofScanner::skipBlanks() {
  while (_offset < text().size()) {
    if (isBlank(at(_offset))) {
      ++_offset;
    } else if (at(_offset) == '/' && at(_offset + 1) == '/') {
      _offset = lineEndAfter(_offset);
    } else if (at(_offset) == '/' && at(_offset + 1) == '*') {
      const std::size_t end = text().find("*/", _offset + 2);
      if (end == std::string_view::npos) {
        const std::size_t start = _offset;
        _offset = text().size();
        throw MofFault{{&_source, start}, "unterminated comment: \"*/\" is missing"};
      }
      _offset = end + 2;
    } else {
      return;
    }
  }
}

MofToken MofScanner::quoted(MofToken::Kind kind, char quote) {
  const std::size_t start = _offset;
  const std::size_t lineEnd = lineEndAfter(start);
  const char stops[] = {quote, '\\'};
  std::size_t offset = start + 1;
  for (;;) {
    offset = text().find_first_of(std::string_view(stops, 2), offset);
    const bool isUnterminated = offset == std::string_view::npos || (kind == MofToken::Kind::Char && offset > lineEnd);
    if (isUnterminated) {
      _offset = lineEnd;
      throw MofFault{{&_source, start},
                     kind == MofToken::Kind::Char ? "unterminated character literal" : "unterminated string"};
    }
    if (text()[offset] == quote) break;
    offset += 2;
  }
  MofToken token = made(kind, offset + 1 - start);
  if (lineEnd < offset) token.lineEnd = lineEnd;
  return token;
}

MofToken MofScanner::number() {
  std::size_t end = _offset + 1;
  const std::size_t digits = isDigit(at(_offset)) || at(_offset) == '.' ? _offset : _offset + 1;
  const bool isHexadecimal = at(digits) == '0' && (at(digits + 1) == 'x' || at(digits + 1) == 'X');
  for (;; ++end) {
    const char c = at(end);
    const bool isExponentSign = (c == '+' || c == '-') && !isHexadecimal && (at(end - 1) == 'e' || at(end - 1) == 'E');
    if (!isNamePart(c) && c != '.' && !isExponentSign) break;
  }
  return made(MofToken::Kind::Number, end - _offset);
}

MofToken MofScanner::name(MofToken::Kind kind, std::size_t prefix) {
  std::size_t end = _offset + prefix + 1;
  while (isNamePart(at(end))) ++end;
  return made(kind, end - _offset);
}

MofToken MofScanner::pragma() {
  std::size_t start = _offset + 1;
  while (at(start) == ' ' || at(start) == '\t') ++start;
  std::size_t end = start;
  while (isNamePart(at(end))) ++end;
  if (!isMofWord(text().substr(start, end - start), "pragma")) refuseByte();
  return made(MofToken::Kind::Pragma, end - _offset);
}

MofToken MofScanner::made(MofToken::Kind kind, std::size_t length) {
  MofToken token;
  token.kind = kind;
  token.offset = _offset;
  token.length = length;
  _offset += length;
  return token;
}

void MofScanner::refuseByte() {
  const std::size_t start = _offset++;
  const char c = text()[start];
  char shown[32];
  if (c > ' ' && c < 0x7F) {
    std::snprintf(shown, sizeof shown, "unexpected \"%c\"", c);
  } else {
    std::snprintf(shown, sizeof shown, "unexpected byte 0x%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
  }
  throw MofFault{{&_source, start}, shown};
}
