// What the rules of hints look at: a fault, the text around it, and the names that are known.
// Tested by tests/unit/QORQL/HintTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_HINTSCENE_H
#define QORQL_HINTSCENE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/QORQL/Face/QORQL_Hint.h"
#include "Cimom/QORQL/Face/QORQL_TextPieces.h"

// BORROWS all that it is made of.
struct QORQL_HintScene {
  struct Found {
    std::string text;
    std::size_t offset;
  };

  QORQL_HintScene(const QORQL_Fault& given, std::string_view text, const QORQL_KnownNames& known, bool isOfFilter);

  // Whether the text breaks a rule of the language that no kind of fault stands for.
  bool isSyntax() const { return fault.kind == QORQL_Fault::kSyntax && fault.hasPlace(); }
  bool is(std::size_t piece, std::string_view word) const { return pieces.is(piece, word); }
  template <class... Words>
  bool isOneOf(std::size_t piece, Words... words) const {
    return (pieces.is(piece, words) || ...);
  }
  // Empty past the last piece; its offset is then the end of the text.
  std::string word(std::size_t piece) const;
  std::size_t offsetOf(std::size_t piece) const;
  // The text from one byte to another, without the blanks at its ends.
  std::string slice(std::size_t from, std::size_t to) const;
  // The first piece from there on that is this word; kNowhere when none is.
  std::size_t find(std::string_view word, std::size_t from = 0) const;
  // The parenthesis that encloses a piece; kNowhere when none does.
  std::size_t openingBefore(std::size_t piece) const;
  // The operand that ends before that piece, back to the keyword or parenthesis it stands behind.
  std::string operandBefore(std::size_t end) const;
  // The operand that begins with that piece, to the keyword or parenthesis that ends it.
  std::string operandFrom(std::size_t begin) const;
  // The reference at the place of the fault as it is written, or the name of the property that is at fault there.
  std::string reference() const;
  // The classes that the name at fault was asked of, those of FROM where it has no class.
  std::vector<QORString> classesAsked() const;
  // Of the classes below one of these the first that has the property at fault; empty when none is known.
  QORString holderBelow(const std::vector<QORString>& asked) const;
  // Whether a piece is a keyword that is called like a property, and does not begin a clause.
  bool isNamelike(std::size_t piece) const;
  // "2026-11-22", with or without a time behind it, as a datetime; today where that is no date.
  static std::string dateTimeOf(std::string_view literal);
  // A hint at the place of the fault.
  std::optional<Found> here(std::string hint) const { return Found{std::move(hint), offset}; }

  static constexpr std::size_t kNowhere = QORQL_TextPieces::kNowhere;

  const QORQL_Fault& fault;
  const QORQL_TextPieces pieces;
  const QORQL_KnownNames& names;
  const std::size_t offset;  // of the word at fault
  const std::size_t at;      // its piece, or the one behind it
  const bool isFilter;       // else it is a query
};

#endif
