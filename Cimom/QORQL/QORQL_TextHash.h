// A fast hash of texts, for indexes that live no longer than a query.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TEXTHASH_H
#define QORQL_TEXTHASH_H

#include <cstring>
#include <string_view>

#include "cmpbase.h"

inline QORuint64 QORQL_mixBits(QORuint64 bits) noexcept {
  bits *= 0x9e3779b97f4a7c15ULL;
  return bits ^ (bits >> 32U);
}

// Eight bytes at a time.
inline QORuint64 QORQL_hashText(std::string_view text) noexcept {
  constexpr std::size_t kWord = sizeof(QORuint64);
  QORuint64 hash = text.size();
  QORuint64 word = 0;
  if (text.size() < kWord) {
    for (const char byte : text) word = word << 8U | static_cast<unsigned char>(byte);
    return QORQL_mixBits(QORQL_mixBits(hash ^ word));
  }
  for (std::size_t at = 0; at + kWord < text.size(); at += kWord) {
    std::memcpy(&word, text.data() + at, kWord);
    hash = QORQL_mixBits(hash ^ word);
  }
  std::memcpy(&word, text.data() + text.size() - kWord, kWord);  // may overlap the one before
  return QORQL_mixBits(QORQL_mixBits(hash ^ word));
}

#endif
