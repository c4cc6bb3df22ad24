// Reading of literals. Escapes name UTF-16 code units; two that form a
// surrogate pair are one character.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofLiterals.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace {

std::size_t lengthOfCharacter(QORuint32 firstByte) {
  if (firstByte < 0x80) return 1;
  if (firstByte < 0xC2 || firstByte >= 0xF5) return 0;
  return firstByte < 0xE0 ? 2 : firstByte < 0xF0 ? 3 : 4;
}

// The character that starts at `text`, and its length; 0 when it is not UTF-8
// (too long, a surrogate, past U+10FFFF, cut off).
std::size_t decodeUtf8(std::string_view text, QORuint32& code) {
  const auto byteAt = [text](std::size_t i) { return static_cast<QORuint32>(static_cast<unsigned char>(text[i])); };
  const QORuint32 first = byteAt(0);
  const std::size_t length = lengthOfCharacter(first);
  if (length == 0 || length > text.size()) return 0;
  code = length == 1 ? first : first & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byteAt(i) & 0xC0) != 0x80) return 0;
    code = code << 6 | (byteAt(i) & 0x3F);
  }
  const bool isOverlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  const bool isForbidden = (code >= 0xD800 && code < 0xE000) || code > 0x10FFFF;
  return isOverlong || isForbidden ? 0 : length;
}

// How many bytes at the front stand for themselves: ASCII but for the backslash. Eight at a time.
std::size_t plainLength(std::string_view text) {
  constexpr QORuint64 kOnes = 0x0101010101010101;
  constexpr QORuint64 kHighs = 0x8080808080808080;
  std::size_t length = 0;
  for (; length + sizeof(QORuint64) <= text.size(); length += sizeof(QORuint64)) {
    QORuint64 bytes = 0;
    std::memcpy(&bytes, text.data() + length, sizeof bytes);
    const QORuint64 escapes = bytes ^ (kOnes * '\\');  // zero where there is one
    if ((((escapes - kOnes) | bytes) & kHighs) != 0) break;
  }
  const auto isPlain = [](char c) { return c != '\\' && static_cast<unsigned char>(c) < 0x80; };
  while (length < text.size() && isPlain(text[length])) ++length;
  return length;
}

bool isHighSurrogate(QORuint32 unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(QORuint32 unit) { return unit >= 0xDC00 && unit < 0xE000; }

// Reads `\xhhhh` (one to four digits) at the front of `rest`; the length, or 0.
std::size_t readHexEscape(std::string_view rest, QORuint32& unit) {
  if (rest.size() < 3 || rest[0] != '\\' || (rest[1] != 'x' && rest[1] != 'X')) return 0;
  const char* const begin = rest.data() + 2;
  const char* const end = begin + std::min<std::size_t>(4, rest.size() - 2);
  const auto [stop, error] = std::from_chars(begin, end, unit, 16);
  return error == std::errc() ? static_cast<std::size_t>(stop - rest.data()) : 0;
}

// The character of the escape at the front of `rest`, and its length.
std::size_t readEscape(std::string_view rest, const MofLocation& at, QORuint32& code) {
  constexpr std::string_view kLetters = "btnfr\"'\\";
  constexpr std::string_view kMeanings = "\b\t\n\f\r\"'\\";
  const std::size_t simple = kLetters.find(rest[1]);
  if (simple != std::string_view::npos) {
    code = static_cast<unsigned char>(kMeanings[simple]);
    return 2;
  }
  std::size_t length = readHexEscape(rest, code);
  if (length == 0) {
    throw MofFault{at, "unknown escape \"" + std::string(rest.substr(0, 2)) +
                           "\"; known are \\b \\t \\n \\f \\r \\\" \\' \\\\ and \\xhhhh"};
  }
  if (isHighSurrogate(code)) {
    QORuint32 low = 0;
    const std::size_t second = readHexEscape(rest.substr(length), low);
    if (second != 0 && isLowSurrogate(low)) {
      code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
      return length + second;
    }
  }
  if (code == 0 || isHighSurrogate(code) || isLowSurrogate(code)) {
    throw MofFault{at, "the escape \"" + std::string(rest.substr(0, length)) + "\" names no character"};
  }
  return length;
}

[[noreturn]] void refuseNumber(std::string_view literal, const MofLocation& at, const char* why) {
  constexpr std::size_t kShown = 40;
  std::string shown(literal.substr(0, kShown));
  if (literal.size() > kShown) shown += "...";
  throw MofFault{at, "\"" + shown + "\" " + why};
}

// Splits off a prefix or suffix and returns the base that it stands for.
int baseOf(std::string_view& digits) {
  if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
    digits.remove_prefix(2);
    return 16;
  }
  if (digits.size() > 1 && (digits.back() == 'b' || digits.back() == 'B')) {
    digits.remove_suffix(1);
    return 2;
  }
  if (digits.size() > 1 && digits[0] == '0') {
    digits.remove_prefix(1);
    return 8;
  }
  return 10;
}

// Digits with one point and an optional exponent.
bool isReal(std::string_view digits) {
  const std::size_t exponent = std::min(digits.find_first_of("eE"), digits.size());
  const std::string_view mantissa = digits.substr(0, exponent);
  return mantissa.find_first_not_of("0123456789.") == std::string_view::npos && mantissa != "." &&
         (mantissa.find('.') != std::string_view::npos || exponent < digits.size());
}

}  // namespace

void appendUtf8(QORuint32 code, std::string& out) {
  const auto put = [&out](QORuint32 byte) { out += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | code >> 6);
    put(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    put(0xE0 | code >> 12);
    put(0x80 | (code >> 6 & 0x3F));
    put(0x80 | (code & 0x3F));
  } else {
    put(0xF0 | code >> 18);
    put(0x80 | (code >> 12 & 0x3F));
    put(0x80 | (code >> 6 & 0x3F));
    put(0x80 | (code & 0x3F));
  }
}

bool isUtf8(std::string_view text) noexcept {
  QORuint32 code = 0;
  for (;;) {
    text.remove_prefix(plainLength(text));
    if (text.empty()) return true;
    const std::size_t length = decodeUtf8(text, code);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
}

void appendMofString(std::string_view literal, const MofLocation& at, std::string& out) {
  const std::string_view body = literal.substr(1, literal.size() - 2);
  std::size_t i = 0;
  while (i < body.size()) {
    const unsigned char c = static_cast<unsigned char>(body[i]);
    const MofLocation here{at.source, at.offset + 1 + i};
    QORuint32 code = c;
    if (c == '\\') {
      i += readEscape(body.substr(i), here, code);
      appendUtf8(code, out);
    } else if (c < 0x80) {
      const std::size_t length = plainLength(body.substr(i));
      out.append(body, i, length);
      i += length;
    } else {
      const std::size_t length = decodeUtf8(body.substr(i), code);
      if (length == 0) throw MofFault{here, "the text is not UTF-8"};
      out.append(body.substr(i, length));
      i += length;
    }
  }
}

char16_t readMofChar(std::string_view literal, const MofLocation& at) {
  std::string text;
  appendMofString(literal, at, text);
  QORuint32 code = 0;
  const std::size_t length = text.empty() ? 0 : decodeUtf8(text, code);
  if (length == 0 || length != text.size() || code > 0xFFFF) {
    throw MofFault{at, "a character literal holds exactly one character up to U+FFFF"};
  }
  return static_cast<char16_t>(code);
}

MofValueSyntax readMofNumber(std::string_view literal, const MofLocation& at) {
  MofValueSyntax value;
  value.at = at;
  value.text = QORString(literal);
  std::string_view digits = literal;
  if (digits[0] == '+' || digits[0] == '-') {
    value.flag = digits[0] == '-';
    digits.remove_prefix(1);
  }
  if (digits.empty()) refuseNumber(literal, at, "is not a number");
  const char* const end = digits.data() + digits.size();
  const bool isPrefixed = digits.size() > 1 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
  if (!isPrefixed && isReal(digits)) {
    value.kind = MofValueSyntax::Kind::Real;
    const auto [stop, error] = std::from_chars(digits.data(), end, value.real);
    if (stop != end) refuseNumber(literal, at, "is not a number");
    if (error == std::errc::result_out_of_range) refuseNumber(literal, at, "does not fit a 64-bit real number");
    if (value.flag) value.real = -value.real;
    return value;
  }
  value.kind = MofValueSyntax::Kind::Integer;
  const int base = baseOf(digits);
  const char* const last = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), last, value.magnitude, base);
  if (stop != last)
    refuseNumber(literal, at, base == 8 ? "is not a number (a leading 0 means octal)" : "is not a number");
  if (error != std::errc()) refuseNumber(literal, at, "does not fit 64 bits");
  return value;
}
