// Delimits tokens; each byte is looked at once or twice, whatever the text.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofScanner.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "Cimom/Mof/MofBytes.h"
#include "Cimom/Mof/MofLiterals.h"
#include "Cimom/Mof/MofSyntax.h"

namespace {

constexpr bool isNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

constexpr bool isSymbol(char c) { return std::string_view("{}[]();:,=").find(c) != std::string_view::npos; }

// One look-up tells what one of many comparisons would.
enum ByteKind : unsigned char { kOther = 0, kBlank = 1, kNamePart = 2, kSymbol = 4 };
constexpr std::array<unsigned char, 256> makeByteKinds() {
  std::array<unsigned char, 256> kinds{};
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    const char c = static_cast<char>(i);
    kinds[i] = isMofBlank(c) ? kBlank : isNameStart(c) || isMofDigit(c) ? kNamePart : isSymbol(c) ? kSymbol : kOther;
  }
  return kinds;
}
constexpr std::array<unsigned char, 256> kByteKinds = makeByteKinds();

bool isOfKind(char c, ByteKind kind) { return kByteKinds[static_cast<unsigned char>(c)] == kind; }
bool isNamePart(char c) { return isOfKind(c, kNamePart); }

// npos when the text ends before its line does.
std::size_t lengthOfLine(std::string_view text) {
  const std::size_t newLine = text.find('\n');
  return std::min(newLine, text.substr(0, newLine).find('\r'));
}

std::size_t endOfKind(std::string_view text, std::size_t offset, ByteKind kind) {
  while (offset < text.size() && isOfKind(text[offset], kind)) ++offset;
  return offset;
}

}  // namespace

std::size_t MofScanner::lineEndAfter(std::size_t offset) const noexcept {
  if (offset >= text().size()) return text().size();
  const std::size_t length = lengthOfLine(text().substr(offset));
  return length == std::string_view::npos ? text().size() : offset + length;
}

MofToken MofScanner::next() noexcept {
  if (!skipBlanks()) return bad("unterminated comment: \"*/\" is missing", text().size() - _offset);
  if (_offset >= text().size()) return made(MofToken::Kind::End, 0);
  const char c = at(_offset);
  if (isOfKind(c, kSymbol)) {
    MofToken token = made(MofToken::Kind::Symbol, 1);
    token.symbol = c;
    return token;
  }
  if (isNameStart(c)) return name(MofToken::Kind::Identifier, 0);
  if (c == '"') return quoted(MofToken::Kind::String, '"');
  if (c == '\'') return quoted(MofToken::Kind::Char, '\'');
  const char second = at(_offset + 1);
  const bool isSigned = (c == '+' || c == '-') && (isMofDigit(second) || second == '.');
  if (isMofDigit(c) || isSigned || (c == '.' && isMofDigit(second))) return number();
  if (c == '$' && isNameStart(second)) return name(MofToken::Kind::Alias, 1);
  if (c == '#') return pragma();
  return bad(nullptr, 1);
}

MofFault MofScanner::faultOf(const MofToken& token) const {
  const MofLocation where{&_source, token.offset};
  if (token.fault != nullptr) return {where, token.fault};
  const char c = at(token.offset);
  char shown[32];
  if (c > ' ' && c < 0x7F) {
    std::snprintf(shown, sizeof shown, "unexpected \"%c\"", c);
  } else {
    std::snprintf(shown, sizeof shown, "unexpected byte 0x%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
  }
  return {where, shown};
}

bool MofScanner::skipBlanks() noexcept {
  for (;;) {
    _offset = endOfKind(text(), _offset, kBlank);
    if (at(_offset) != '/') return true;
    if (at(_offset + 1) == '/') {
      _offset = lineEndAfter(_offset);
    } else if (at(_offset + 1) == '*') {
      const std::size_t end = text().find("*/", _offset + 2);
      if (end == std::string_view::npos) return false;
      _offset = end + 2;
    } else {
      return true;
    }
  }
}

// Most literals are plain: the next quote ends them. Where there is an escape or the end of a line in them, each byte
// is looked at from a backslash on.
MofToken MofScanner::quoted(MofToken::Kind kind, char quote) noexcept {
  const bool isString = kind == MofToken::Kind::String;
  constexpr std::size_t kNone = std::string_view::npos;
  const std::size_t start = _offset + 1;
  std::size_t offset = std::min(text().find(quote, start), text().size());
  const std::string_view inside = text().substr(start, offset - start);
  if (offset < text().size() && isPlainMofText(inside)) {
    MofToken token = made(kind, inside.size() + 2);
    token.isPlain = true;
    return token;
  }
  const std::size_t escape = inside.find('\\');
  std::size_t lineEnd = lengthOfLine(inside.substr(0, escape));
  if (lineEnd != kNone) lineEnd += start;
  if (lineEnd != kNone && !isString) {
    offset = lineEnd;
  } else if (escape != kNone) {
    for (offset = start + escape; offset < text().size() && text()[offset] != quote; ++offset) {
      const char c = text()[offset];
      if ((c == '\n' || c == '\r') && lineEnd == kNone) lineEnd = offset;
      if (lineEnd != kNone && !isString) break;
      if (c == '\\') ++offset;
    }
  }
  if (offset >= text().size() || text()[offset] != quote) {
    const std::size_t end = lineEnd == kNone ? text().size() : lineEnd;
    return bad(isString ? "unterminated string" : "unterminated character literal", end - _offset);
  }
  MofToken token = made(kind, offset + 1 - _offset);
  token.lineEnd = lineEnd;
  return token;
}

MofToken MofScanner::number() noexcept {
  std::size_t end = _offset + 1;
  const std::size_t digits = isMofDigit(at(_offset)) || at(_offset) == '.' ? _offset : _offset + 1;
  const bool isHexadecimal = at(digits) == '0' && (at(digits + 1) == 'x' || at(digits + 1) == 'X');
  for (;; ++end) {
    const char c = at(end);
    const bool isExponentSign = (c == '+' || c == '-') && !isHexadecimal && (at(end - 1) == 'e' || at(end - 1) == 'E');
    if (!isNamePart(c) && c != '.' && !isExponentSign) break;
  }
  return made(MofToken::Kind::Number, end - _offset);
}

MofToken MofScanner::name(MofToken::Kind kind, std::size_t prefix) noexcept {
  std::size_t end = _offset + prefix;
  unsigned char bits = 0;
  for (; end < text().size() && isNamePart(text()[end]); ++end) bits |= static_cast<unsigned char>(text()[end]);
  const std::size_t length = end - _offset;
  const bool isSound = bits < 0x80 || isUtf8(text().substr(_offset, length));
  return isSound ? made(kind, length) : bad("the name is not UTF-8", length);
}

MofToken MofScanner::pragma() noexcept {
  std::size_t start = _offset + 1;
  while (at(start) == ' ' || at(start) == '\t') ++start;
  const std::size_t end = endOfKind(text(), start, kNamePart);
  if (!isMofWord(text().substr(start, end - start), "pragma")) return bad(nullptr, 1);
  return made(MofToken::Kind::Pragma, end - _offset);
}

MofToken MofScanner::made(MofToken::Kind kind, std::size_t length) noexcept {
  MofToken token;
  token.kind = kind;
  token.offset = _offset;
  token.length = length;
  _offset += length;
  return token;
}

MofToken MofScanner::bad(const char* fault, std::size_t length) noexcept {
  MofToken token = made(MofToken::Kind::Bad, length);
  token.fault = fault;
  return token;
}
