// The text of a statement cut into words and signs, the classes of its FROM clause, and places in it.
// SPDX-License-Identifier: Apache-2.0
#include "StatementText.h"

#include <algorithm>
#include <utility>

#include "Cimom/QORQL/QORQL_Fault.h"

StatementText::StatementText(std::string_view text, QORuint32 firstLine, QORuint32 firstColumn)
    : _cut(text), _firstLine(firstLine), _firstColumn(firstColumn) {
  readSources();
}

// FROM Class [AS Alias] {, Class [AS Alias]}
void StatementText::readSources() {
  std::vector<Source> sources;
  std::size_t piece = 0;
  while (piece < pieces().size() && !is(piece, "FROM")) ++piece;
  do {
    ++piece;
    if (!isWord(piece)) break;
    Source source{std::string(pieces()[piece].text), "", pieces()[piece].offset};
    ++piece;
    if (is(piece, "AS") && isWord(piece + 1)) {
      source.alias = pieces()[piece + 1].text;
      piece += 2;
    }
    sources.push_back(std::move(source));
  } while (is(piece, ","));
  _behindFrom = std::min(piece, pieces().size());
  _from = FromNames(std::move(sources));
}

bool StatementText::endsInLiteral() const noexcept {
  if (pieces().empty() || pieces().back().kind != Kind::Literal) return false;
  const Piece& last = pieces().back();
  const bool isClosed = last.text.size() > 1 && last.text.back() == '\'';
  return !isClosed && last.offset + last.text.size() == text().size();
}

std::string StatementText::place(std::size_t offset) const {
  const QORQL_Place place = QORQL_placeOf(text(), offset);
  return "line " + std::to_string(_firstLine + place.line - 1) + ", column " +
         std::to_string(place.column + (place.line == 1 ? _firstColumn - 1 : 0));
}
