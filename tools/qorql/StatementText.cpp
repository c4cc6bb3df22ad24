// The text of a statement cut into words and signs, and places in it.
#include "StatementText.h"

#include <algorithm>

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
std::string folded(std::string_view name) { return std::string(QORString::toUpperCase(QORString(name)).view()); }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

}  // namespace

StatementText::StatementText(std::string_view text, QORuint32 firstLine, QORuint32 firstColumn)
    : _text(text), _firstLine(firstLine), _firstColumn(firstColumn) {
  readPieces();
  readSources();
  readIsaClasses();
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
  while (_from < _pieces.size() && !is(_from, "FROM")) ++_from;
  std::size_t piece = _from;
  do {
    ++piece;
    if (!isWord(piece)) break;
    Source source{std::string(_pieces[piece].text), "", _pieces[piece].offset};
    ++piece;
    if (is(piece, "AS") && isWord(piece + 1)) {
      source.alias = _pieces[piece + 1].text;
      piece += 2;
    }
    _sources.push_back(std::move(source));
  } while (is(piece, ","));
  _behindFrom = std::min(piece, _pieces.size());
}

// [FROM name .] property ISA Class
void StatementText::readIsaClasses() {
  for (std::size_t i = _behindFrom + 1; i + 1 < _pieces.size(); ++i) {
    if (!is(i, "ISA") || !isWord(i - 1)) continue;
    const bool hasPath = i >= 2 && (is(i - 2, ".") || is(i - 2, "::"));
    if (hasPath && (i < 3 || classOf(_pieces[i - 3].text).empty())) continue;
    std::string_view className = _pieces[i + 1].text;
    if (_pieces[i + 1].kind == Kind::Literal && className.size() > 2)
      className = className.substr(1, className.size() - 2);
    _isaClasses.try_emplace(folded(_pieces[i - 1].text), className);
  }
}

std::string StatementText::isaClassOf(std::string_view property) const {
  const auto found = _isaClasses.find(folded(property));
  return found == _isaClasses.end() ? "" : found->second;
}

std::string StatementText::classOf(std::string_view name) const {
  for (const Source& source : _sources) {
    if (QORString::equalIgnoringCase(source.className, name) || QORString::equalIgnoringCase(source.alias, name)) {
      return source.className;
    }
  }
  return "";
}

bool StatementText::is(std::size_t piece, std::string_view word) const noexcept {
  return piece < _pieces.size() && QORString::equalIgnoringCase(_pieces[piece].text, word);
}

bool StatementText::isWord(std::size_t piece) const noexcept {
  return piece < _pieces.size() && _pieces[piece].kind == Kind::Word;
}

bool StatementText::beginsReference(std::size_t piece) const noexcept {
  if (!isWord(piece) || (piece >= _from && piece < _behindFrom)) return false;
  if (piece == 0) return true;
  return !is(piece - 1, ".") && !is(piece - 1, "::") && !is(piece - 1, "ISA") && !is(piece - 1, "AS");
}

std::size_t StatementText::findReference(std::string_view name) const noexcept {
  for (std::size_t i = 0; i < _pieces.size(); ++i) {
    const bool isAlone = beginsReference(i) && !is(i + 1, ".") && !is(i + 1, "(");
    if (isAlone && is(i, name)) return i;
  }
  return findWord(name);
}

std::size_t StatementText::findWord(std::string_view name) const noexcept {
  for (std::size_t i = 0; i < _pieces.size(); ++i) {
    if (isWord(i) && is(i, name)) return i;
  }
  return kNowhere;
}

std::string StatementText::place(std::size_t offset) const {
  const std::string_view before = _text.substr(0, std::min(offset, _text.size()));
  const auto lines = static_cast<QORuint32>(std::count(before.begin(), before.end(), '\n'));
  const std::size_t lineStart = before.rfind('\n') == std::string_view::npos ? 0 : before.rfind('\n') + 1;
  std::size_t column = 0;
  for (std::size_t i = lineStart; i < before.size(); ++i) {
    const bool goesOn = (static_cast<unsigned char>(before[i]) & 0xC0U) == 0x80U && i > 0 &&
                        (static_cast<unsigned char>(before[i - 1]) & 0x80U) != 0;
    if (!goesOn) ++column;  // so does a byte of another encoding that stands alone
  }
  return "line " + std::to_string(_firstLine + lines) + ", column " +
         std::to_string(column + (lines == 0 ? _firstColumn : 1));
}
