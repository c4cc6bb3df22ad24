// The tokens of MOF text.
// Tested by tests/unit/Mof/MofSyntaxTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFSCANNER_H
#define QORQL_MOF_MOFSCANNER_H

#include <cstddef>
#include <string_view>

#include "Cimom/Mof/MofSource.h"

struct MofToken {
  enum class Kind { End, Identifier, Alias, String, Char, Number, Pragma, Symbol, Bad };

  Kind kind = Kind::End;
  char symbol = '\0';    // of a Symbol
  bool isPlain = false;  // of a String: what stands between its quotes is its value
  std::size_t offset = 0;
  std::size_t length = 0;
  // Of a string literal that runs over the end of its line: where that line ends.
  std::size_t lineEnd = std::string_view::npos;
  const char* fault = nullptr;  // of a Bad token; null: the byte belongs to no token
};

// Reads a text once, token by token. Comments and white space are
// skipped; literals are delimited here and read by MofLiterals. Belongs to one
// parser; the source outlives it.
class MofScanner {
 public:
  explicit MofScanner(const MofSource& source) : _source(source), _text(source.getText()), _offset(source.getStart()) {}

  // Bytes that form no token are returned as Bad; the next call continues after them.
  MofToken next() noexcept;
  // The fault of a Bad token.
  MofFault faultOf(const MofToken& token) const;
  // Continues elsewhere in the text.
  void resumeAt(std::size_t offset) noexcept { _offset = offset; }
  // Where the line of `offset` ends.
  std::size_t lineEndAfter(std::size_t offset) const noexcept;

 private:
  std::string_view text() const noexcept { return _text; }
  char at(std::size_t offset) const noexcept { return offset < text().size() ? text()[offset] : '\0'; }
  // Returns false at a comment that does not end.
  bool skipBlanks() noexcept;
  MofToken quoted(MofToken::Kind kind, char quote) noexcept;
  MofToken number() noexcept;
  MofToken name(MofToken::Kind kind, std::size_t prefix) noexcept;
  MofToken pragma() noexcept;
  MofToken made(MofToken::Kind kind, std::size_t length) noexcept;
  MofToken bad(const char* fault, std::size_t length) noexcept;

  const MofSource& _source;
  const std::string_view _text;
  std::size_t _offset;
};

#endif
