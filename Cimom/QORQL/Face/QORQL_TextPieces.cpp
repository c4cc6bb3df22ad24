// The text of a statement cut into words and signs.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Face/QORQL_TextPieces.h"

#include <algorithm>

#include "Cimom/QORQL/QORQL_Text.h"
#include "cmpbase.h"

namespace {}  // namespace

QORQL_TextPieces::QORQL_TextPieces(std::string_view text) : _text(text) {
  for (std::size_t start = 0; start < _text.size();) {
    if (QORQL_isBlank(_text[start])) {
      ++start;
      continue;
    }
    Kind kind = Kind::Sign;
    const std::size_t end = endOfPiece(start, kind);
    _pieces.push_back({kind, _text.substr(start, end - start), start});
    start = end;
  }
}

std::size_t QORQL_TextPieces::endOfPiece(std::size_t start, Kind& kind) const {
  const char first = _text[start];
  std::size_t end = start + 1;
  if (QORQL_isLetter(first)) {
    kind = Kind::Word;
    while (end < _text.size() && QORQL_isWordByte(_text[end])) ++end;
  } else if (QORQL_isDigit(first)) {
    kind = Kind::Number;
    while (end < _text.size() && QORQL_isDigit(_text[end])) ++end;
  } else if (first == '\'') {
    kind = Kind::Literal;
    end = _text.find_first_of("'\n", end);
    if (end == std::string_view::npos || _text[end] == '\n') return std::min(end, _text.size());
    ++end;
  } else {
    constexpr std::string_view kPairs[] = {"::", "<>", "<=", ">=", "!="};
    const bool isPair = std::find(std::begin(kPairs), std::end(kPairs), _text.substr(start, 2)) != std::end(kPairs);
    if (isPair) ++end;
  }
  return end;
}

bool QORQL_TextPieces::is(std::size_t piece, std::string_view word) const noexcept {
  return piece < _pieces.size() && QORString::equalIgnoringCase(_pieces[piece].text, word);
}

bool QORQL_TextPieces::isWord(std::size_t piece) const noexcept {
  return piece < _pieces.size() && _pieces[piece].kind == Kind::Word;
}

bool QORQL_TextPieces::isJoined(std::size_t piece) const noexcept {
  return piece > 0 && piece < _pieces.size() && _pieces[piece - 1].end() == _pieces[piece].offset;
}

std::size_t QORQL_TextPieces::at(std::size_t offset) const noexcept {
  const std::size_t found = from(offset);
  return found < _pieces.size() && _pieces[found].offset == offset ? found : kNowhere;
}

std::size_t QORQL_TextPieces::from(std::size_t offset) const noexcept {
  const auto begins = [](const Piece& piece, std::size_t place) { return piece.offset < place; };
  const auto found = std::lower_bound(_pieces.begin(), _pieces.end(), offset, begins);
  return static_cast<std::size_t>(found - _pieces.begin());
}
