// Small questions about texts that several parts ask: which bytes make words, names without
// regard to case, texts that may be missing.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TEXT_H
#define QORQL_TEXT_H

#include <functional>
#include <string>
#include <string_view>

#include "cmpbase.h"

// The bytes of the language's words and numbers; other alphabets have none in them.
constexpr bool QORQL_isLetter(char c) noexcept { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
constexpr bool QORQL_isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
constexpr bool QORQL_isWordByte(char c) noexcept { return QORQL_isLetter(c) || QORQL_isDigit(c); }
constexpr bool QORQL_isBlank(char c) noexcept { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// A name that equals every other spelling of itself.
inline std::string QORQL_foldedName(const QORString& name) { return std::string(QORString::toUpperCase(name).view()); }

// Empty where there is no text.
inline QORString QORQL_textOrEmpty(const QORSmrPtr<QORString>& text) {
  return text.IsNull() ? QORString::emptyString() : *text;
}

// For tables by text, with regard to case.
struct QORQL_TextKeyHash {
  std::size_t operator()(const QORString& key) const noexcept { return std::hash<std::string_view>{}(key.view()); }
};

#endif
