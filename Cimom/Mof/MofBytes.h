// The kinds of bytes that MOF is made of.
// Tested by tests/unit/Mof/MofSyntaxTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFBYTES_H
#define QORQL_MOF_MOFBYTES_H

#include <cstddef>
#include <cstring>
#include <string_view>

#include "cmpbase.h"

constexpr bool isMofDigit(char c) noexcept { return c >= '0' && c <= '9'; }
// A space, a tabulator, a line's end of any kind or a form feed.
constexpr bool isMofBlank(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Whether each byte in a literal stands for itself and none ends a line: ASCII without the backslash and without
// control characters. Eight bytes at a time: a byte that is none of these leaves its highest bit set.
inline bool isPlainMofText(std::string_view text) noexcept {
  constexpr QORuint64 kOnes = 0x0101010101010101;
  constexpr QORuint64 kHighs = kOnes * 0x80;
  QORuint64 bytes = kOnes * ' ';
  QORuint64 found = 0;
  const auto look = [&bytes, &found] { found |= bytes | (bytes - kOnes * ' ') | ((bytes ^ (kOnes * '\\')) - kOnes); };
  if (text.size() < sizeof bytes) {
    std::memcpy(&bytes, text.data(), text.size());
    look();
    return (found & kHighs) == 0;
  }
  const std::size_t last = text.size() - sizeof bytes;
  for (std::size_t i = 0; i < last; i += sizeof bytes) {
    std::memcpy(&bytes, text.data() + i, sizeof bytes);
    look();
  }
  std::memcpy(&bytes, text.data() + last, sizeof bytes);
  look();
  return (found & kHighs) == 0;
}

#endif  // QORQL_MOF_MOFBYTES_H
