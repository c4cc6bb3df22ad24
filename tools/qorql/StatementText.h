// The text of a statement cut into words and signs, the classes of its FROM clause, and places in it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_STATEMENTTEXT_H
#define QORQL_TOOL_STATEMENTTEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/QORQL/Face/QORQL_TextPieces.h"
#include "FromNames.h"
#include "cmpbase.h"

// A coarse view of the text for messages about names: it does not judge it.
class StatementText {
 public:
  using Kind = QORQL_TextPieces::Kind;
  using Piece = QORQL_TextPieces::Piece;
  using Source = FromNames::Source;
  static constexpr std::size_t kNowhere = QORQL_TextPieces::kNowhere;

  // BORROWS the text, which begins at that place of a longer one.
  explicit StatementText(std::string_view text, QORuint32 firstLine = 1, QORuint32 firstColumn = 1);

  std::string_view text() const noexcept { return _cut.text(); }
  const std::vector<Piece>& pieces() const noexcept { return _cut.all(); }
  // What FROM names, as far as it is written.
  const std::vector<Source>& sources() const noexcept { return _from.sources(); }
  std::string classOf(std::string_view name) const { return _from.classOf(name); }

  // Whether a piece is this word or sign, ignoring case. False outside the pieces.
  bool is(std::size_t piece, std::string_view word) const noexcept { return _cut.is(piece, word); }
  bool isWord(std::size_t piece) const noexcept { return _cut.isWord(piece); }
  // The piece that begins at that byte; kNowhere when none does.
  std::size_t pieceAt(std::size_t offset) const noexcept { return _cut.at(offset); }
  // Where the pieces after the FROM clause begin.
  std::size_t behindFrom() const noexcept { return _behindFrom; }
  // Whether the last piece is a text literal that its line does not end.
  bool endsInLiteral() const noexcept;

  // "line 1, column 15": columns count characters.
  std::string place(std::size_t offset) const;

 private:
  void readSources();

  const QORQL_TextPieces _cut;
  QORuint32 _firstLine;
  QORuint32 _firstColumn;
  FromNames _from;
  std::size_t _behindFrom = 0;
};

#endif
