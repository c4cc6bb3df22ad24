// The text of a statement cut into words and signs.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TEXTPIECES_H
#define QORQL_TEXTPIECES_H

#include <cstddef>
#include <string_view>
#include <vector>

// A coarse view of a text, also of one that the parser refuses: it does not judge it. BORROWS the text.
class QORQL_TextPieces {
 public:
  enum class Kind { Word, Number, Literal, Sign };
  struct Piece {
    Kind kind;
    std::string_view text;  // a literal's with its quotes; one without end ends with its line
    std::size_t offset;

    std::size_t end() const noexcept { return offset + text.size(); }
  };
  static constexpr std::size_t kNowhere = std::string_view::npos;

  explicit QORQL_TextPieces(std::string_view text);

  std::string_view text() const noexcept { return _text; }
  const std::vector<Piece>& all() const noexcept { return _pieces; }
  // Whether a piece is this word or sign, ignoring case. False outside the pieces.
  bool is(std::size_t piece, std::string_view word) const noexcept;
  bool isWord(std::size_t piece) const noexcept;
  // Whether it follows the one before it without a blank.
  bool isJoined(std::size_t piece) const noexcept;
  // The piece that begins at that byte; kNowhere when none does.
  std::size_t at(std::size_t offset) const noexcept;
  // The first piece that begins there or behind; their number when none does.
  std::size_t from(std::size_t offset) const noexcept;

 private:
  std::size_t endOfPiece(std::size_t start, Kind& kind) const;

  std::string_view _text;
  std::vector<Piece> _pieces;
};

#endif
