// The text of a statement cut into words and signs, and places in it.
// SPDX-License-Identifier: Apache-2.0
#include "StatementText.h"

#include <algorithm>
#include <utility>

#include "Cimom/QORQL/QORQL_Fault.h"

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

}  // namespace

StatementText::StatementText(std::string_view text, QORuint32 firstLine, QORuint32 firstColumn)
    : _text(text), _firstLine(firstLine), _firstColumn(firstColumn) {
  readPieces();
  readSources();
}

std::size_t StatementText::endOfPiece(std::size_t start, Kind& kind) const {
  const char first = _text[start];
  std::size_t end = start + 1;
  if (isLetter(first)) {
    kind = Kind::Word;
    while (end < _text.size() && (isLetter(_text[end]) || isDigit(_text[end]))) ++end;
  } else if (isDigit(first)) {
    kind = Kind::Number;
    while (end < _text.size() && isDigit(_text[end])) ++end;
  } else if (first == '\'') {
    kind = Kind::Literal;
    end = _text.find_first_of("'\n", end);
    if (end == std::string_view::npos || _text[end] == '\n') return std::min(end, _text.size());
    ++end;
  } else {
    kind = Kind::Sign;
    constexpr std::string_view kPairs[] = {"::", "<>", "<=", ">=", "!="};
    const bool isPair = std::find(std::begin(kPairs), std::end(kPairs), _text.substr(start, 2)) != std::end(kPairs);
    if (isPair) ++end;
  }
  return end;
}

void StatementText::readPieces() {
  for (std::size_t start = 0; start < _text.size();) {
    if (isBlank(_text[start])) {
      ++start;
      continue;
    }
    Kind kind = Kind::Sign;
    const std::size_t end = endOfPiece(start, kind);
    _pieces.push_back({kind, _text.substr(start, end - start), start});
    start = end;
  }
}

// FROM Class [AS Alias] {, Class [AS Alias]}
void StatementText::readSources() {
  std::vector<Source> sources;
  std::size_t piece = 0;
  while (piece < _pieces.size() && !is(piece, "FROM")) ++piece;
  do {
    ++piece;
    if (!isWord(piece)) break;
    Source source{std::string(_pieces[piece].text), "", _pieces[piece].offset};
    ++piece;
    if (is(piece, "AS") && isWord(piece + 1)) {
      source.alias = _pieces[piece + 1].text;
      piece += 2;
    }
    sources.push_back(std::move(source));
  } while (is(piece, ","));
  _behindFrom = std::min(piece, _pieces.size());
  _from = FromNames(std::move(sources));
}

bool StatementText::is(std::size_t piece, std::string_view word) const noexcept {
  return piece < _pieces.size() && QORString::equalIgnoringCase(_pieces[piece].text, word);
}

bool StatementText::isWord(std::size_t piece) const noexcept {
  return piece < _pieces.size() && _pieces[piece].kind == Kind::Word;
}

std::size_t StatementText::pieceAt(std::size_t offset) const noexcept {
  const auto begins = [](const Piece& piece, std::size_t place) { return piece.offset < place; };
  const auto found = std::lower_bound(_pieces.begin(), _pieces.end(), offset, begins);
  const bool isThere = found != _pieces.end() && found->offset == offset;
  return isThere ? static_cast<std::size_t>(found - _pieces.begin()) : kNowhere;
}

bool StatementText::endsInLiteral() const noexcept {
  if (_pieces.empty() || _pieces.back().kind != Kind::Literal) return false;
  const Piece& last = _pieces.back();
  const bool isClosed = last.text.size() > 1 && last.text.back() == '\'';
  return !isClosed && last.offset + last.text.size() == _text.size();
}

std::string StatementText::place(std::size_t offset) const {
  const QORQL_Place place = QORQL_placeOf(_text, offset);
  return "line " + std::to_string(_firstLine + place.line - 1) + ", column " +
         std::to_string(place.column + (place.line == 1 ? _firstColumn - 1 : 0));
}
