// How texts look on a terminal.
// SPDX-License-Identifier: Apache-2.0
#include "DisplayText.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

struct CodeRange {
  char32_t first;
  char32_t last;
};
// Combining marks, which take no column.
constexpr CodeRange kZeroWidth[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A}, {0x064B, 0x065F}, {0x0900, 0x0902},
    {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200F}, {0x202A, 0x202E},
    {0x2060, 0x2064}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}, {0xE0100, 0xE01EF}};
// Characters that take two columns.
constexpr CodeRange kDoubleWidth[] = {{0x1100, 0x115F},   {0x231A, 0x231B},   {0x2E80, 0x303E},   {0x3041, 0x33FF},
                                      {0x3400, 0x4DBF},   {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},   {0xA960, 0xA97C},
                                      {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                                      {0xFFE0, 0xFFE6},   {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF},
                                      {0x20000, 0x2FFFD}, {0x30000, 0x3FFFD}};

template <std::size_t N>
bool isIn(const CodeRange (&ranges)[N], char32_t code) {
  return std::any_of(ranges, ranges + N, [code](const CodeRange& r) { return r.first <= code && code <= r.last; });
}

// Added to a byte that begins no character, to tell it from characters.
constexpr char32_t kStrayByte = 0xDC00;

// Takes the character at the front off the text; a byte that begins none counts as one.
char32_t takeCharacter(std::string_view& text) {
  const unsigned char lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead < 0x80   ? 1
                             : lead < 0xC0 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF8 ? 4
                                           : 0;
  char32_t code = length == 1 ? lead : lead & (0x7Fu >> length);
  std::size_t taken = 1;
  while (taken < length && taken < text.size() && (text[taken] & 0xC0) == 0x80) {
    code = (code << 6) | (static_cast<unsigned char>(text[taken++]) & 0x3F);
  }
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  const bool isWhole = taken == length && !isSurrogate && code <= 0x10FFFF;
  text.remove_prefix(isWhole ? taken : 1);
  return isWhole ? code : kStrayByte + lead;
}

bool isStray(char32_t code) { return code > kStrayByte && code <= kStrayByte + 0xFF; }

bool isControl(char32_t code) { return code < 0x20 || (code >= 0x7F && code < 0xA0) || isStray(code); }

std::string escaped(char32_t code) {
  if (code == '\n') return "\\n";
  if (code == '\t') return "\\t";
  if (code == '\r') return "\\r";
  std::array<char, 8> text;
  std::snprintf(text.data(), text.size(), "\\x%02X", static_cast<unsigned>(code & 0xFF));
  return text.data();
}

}  // namespace

std::string printableText(std::string_view text) {
  std::string printable;
  printable.reserve(text.size());
  while (!text.empty()) {
    const std::string_view before = text;
    const char32_t code = takeCharacter(text);
    if (isControl(code)) {
      printable += escaped(code);
    } else {
      printable += before.substr(0, before.size() - text.size());
    }
  }
  return printable;
}

std::size_t displayWidth(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const char32_t code = takeCharacter(text);
    if (code < 0x300) {
      ++width;
    } else if (!isIn(kZeroWidth, code)) {
      width += isIn(kDoubleWidth, code) ? 2 : 1;
    }
  }
  return width;
}

std::string cutText(std::string_view text, std::size_t width, std::string_view mark) {
  if (displayWidth(text) <= width) return std::string(text);
  const std::size_t room = width - std::min(width, displayWidth(mark));
  std::string_view rest = text;
  std::size_t taken = 0;
  while (!rest.empty()) {
    std::string_view next = rest;
    takeCharacter(next);
    const std::size_t columns = displayWidth(rest.substr(0, rest.size() - next.size()));
    if (taken + columns > room) break;
    taken += columns;
    rest = next;
  }
  return std::string(text.substr(0, text.size() - rest.size())).append(mark);
}

std::string cutTextAtStart(std::string_view text, std::size_t width, std::string_view mark) {
  std::size_t rest = displayWidth(text);
  if (rest <= width) return std::string(text);
  const std::size_t room = width - std::min(width, displayWidth(mark));
  while (rest > room) {
    std::string_view next = text;
    takeCharacter(next);
    rest -= displayWidth(text.substr(0, text.size() - next.size()));
    text = next;
  }
  return std::string(mark).append(text);
}
