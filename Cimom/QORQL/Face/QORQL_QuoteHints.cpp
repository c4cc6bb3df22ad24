// Hints about quotes, blanks and comments.
// Tested by tests/unit/QORQL/HintTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/QORQL/Face/QORQL_HintRules.h"

namespace QORQL_HintRules {

namespace {

bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isLower(char c) { return c >= 'a' && c <= 'z'; }

// Whether a name stands where that piece is, and no text.
bool isPlaceOfName(const Scene& scene, std::size_t piece) {
  if (piece == 0) return false;
  if (scene.isOneOf(piece - 1, "SELECT", "FROM", "BY", "AS", ".", "::")) return true;
  const std::size_t where = scene.find("WHERE");
  return scene.is(piece - 1, ",") && (where == kNowhere || piece < where);
}

// What is written as a name, blanks and hyphens as lines below; empty for what is like no name.
std::string asName(std::string text) {
  for (char& c : text) {
    const bool isOfName =
        isUpper(c) || isLower(c) || (c >= '0' && c <= '9') || std::string_view("_.:").find(c) != std::string_view::npos;
    if (!isOfName && c != ' ' && c != '-') return {};
    c = isOfName ? c : '_';
  }
  return text;
}

// The text from behind a quote to the sign that closes it; empty when there is none.
std::string quotedText(const Scene& scene, std::size_t begin, char close) {
  const std::size_t end = scene.pieces.text().find(close, begin);
  return end == std::string_view::npos ? "" : scene.slice(begin, end);
}

Answer nameWithoutQuotes(std::size_t offset, const std::string& inner, const std::string& signs = "quotes") {
  const std::string name = asName(inner);
  if (name.empty()) return {};
  return Scene::Found{"names go without " + signs + ": " + name, offset};
}

// "Name" = 'x': quotes at the left of a comparison hold a property that is known. Where none is known, as in filters,
// what is compared with a value is one.
bool isPropertyInQuotes(const Scene& scene, const std::string& inner) {
  const bool isLeft = scene.at > 0 && scene.isOneOf(scene.at - 1, "WHERE", "AND", "OR", "NOT", "(");
  if (!isLeft || asName(inner) != inner) return false;
  if (scene.names.properties) {
    const auto has = [&](const QORString& className) {
      const std::vector<QORString> all = scene.names.properties(className);
      return std::any_of(all.begin(), all.end(),
                         [&](const QORString& name) { return name.isEqualCaseInsensitive(QORString(inner)); });
    };
    const std::vector<QORString> classes = scene.classesAsked();
    return std::any_of(classes.begin(), classes.end(), has);
  }
  std::size_t sign = scene.at + 1;
  while (sign < scene.pieces.all().size() && !scene.is(sign, "\"")) ++sign;
  const std::size_t value = ++sign + 1;
  if (!scene.isOneOf(sign, "=", "<>", "!=", "<", "<=", ">", ">=", "LIKE")) return false;
  return value < scene.pieces.all().size() && scene.pieces.all()[value].kind != Kind::Word;
}

// EX_DiskWHERE Size: the blank before WHERE is missing, and the word behind it is at fault.
Answer missingBlankBefore(const Scene& scene) {
  constexpr std::string_view kWhere = "WHERE";
  const std::string word = scene.at > 1 ? scene.word(scene.at - 1) : "";
  if (!scene.isOneOf(scene.at - 2, "FROM", ",") || word.size() <= kWhere.size()) return {};
  const std::size_t cut = word.size() - kWhere.size();
  if (!QORString::equalIgnoringCase(word.substr(cut), kWhere)) return {};
  return Scene::Found{"a space is missing: " + word.substr(0, cut) + " " + word.substr(cut),
                      scene.offsetOf(scene.at - 1)};
}

// NOTName is taken for a property.
bool isNotWithName(const Scene& scene, const std::string& word) {
  const bool isCondition = scene.at > 0 && scene.isOneOf(scene.at - 1, "WHERE", "AND", "OR", "(");
  return scene.fault.kind == Fault::kPropertyUnknown && isCondition && word.starts_with("NOT");
}

bool isCommentAt(const Scene& scene, std::size_t piece) {
  if (scene.is(piece, "#")) return true;
  const bool isDashes = scene.is(piece, "-") && scene.is(piece + 1, "-");
  const bool isOpening = isDashes || (scene.is(piece, "/") && scene.isOneOf(piece + 1, "*", "/"));
  // Name--1 is a column without a name.
  const bool isNumber = piece + 2 < scene.pieces.all().size() && scene.pieces.all()[piece + 2].kind == Kind::Number;
  if (isDashes && isNumber && scene.fault.kind == Fault::kColumnUnnamed) return false;
  return isOpening && scene.pieces.isJoined(piece + 1);
}

}  // namespace

// The scanner skips what it does not know, so that the fault stands behind it.
Answer curlyQuote(const Scene& scene) {
  constexpr std::string_view kCurly[] = {"\u2018", "\u2019", "\u201C", "\u201D"};
  const std::string_view text = scene.pieces.text();
  for (const QORQL_TextPieces::Piece& piece : scene.pieces.all()) {
    if (piece.offset > scene.offset) break;
    for (const std::string_view quote : kCurly) {
      if (piece.kind == Kind::Literal || !text.substr(piece.offset).starts_with(quote)) continue;
      const std::size_t begin = piece.offset + quote.size();
      std::size_t end = text.size();
      for (const std::string_view close : kCurly) end = std::min(end, text.find(close, begin));
      const std::string inner = end < text.size() ? scene.slice(begin, end) : "text";
      return Scene::Found{"text goes in plain single quotes: '" + inner + "'", piece.offset};
    }
  }
  return {};
}

Answer openQuote(const Scene& scene) {
  for (const QORQL_TextPieces::Piece& piece : scene.pieces.all()) {
    if (piece.offset > scene.offset) break;
    const bool isOpen = piece.kind == Kind::Literal && (piece.text.size() < 2 || piece.text.back() != '\'');
    if (isOpen) return Scene::Found{"the quote that opens here is not closed on its line", piece.offset};
  }
  return {};
}

Answer doubleQuote(const Scene& scene) {
  const bool isHere = scene.isSyntax() || scene.fault.kind == Fault::kNameExpected;
  if (!isHere || !scene.is(scene.at, "\"")) return {};
  const std::string inner = quotedText(scene, scene.offset + 1, '"');
  const bool isName = isPlaceOfName(scene, scene.at) || isPropertyInQuotes(scene, inner);
  if (isName) return nameWithoutQuotes(scene.offset, inner);
  return inner.empty() ? Answer() : scene.here("text goes in single quotes: '" + inner + "'");
}

// 'a name', [a name] and `a name`, of which the scanner passes over the last ones' quotes.
Answer otherQuote(const Scene& scene) {
  const bool isHere = scene.isSyntax() || scene.fault.kind == Fault::kNameExpected;
  if (!isHere) return {};
  const auto& all = scene.pieces.all();
  std::size_t tick = kNowhere;
  for (std::size_t piece = 0; piece < scene.at && piece < all.size(); ++piece) {
    if (scene.is(piece, "`")) tick = tick == kNowhere ? piece : kNowhere;
  }
  if (tick != kNowhere) return nameWithoutQuotes(scene.offsetOf(tick), quotedText(scene, all[tick].end(), '`'));
  if (scene.at >= all.size() || !isPlaceOfName(scene, scene.at)) return {};
  if (scene.is(scene.at, "["))
    return nameWithoutQuotes(scene.offset, quotedText(scene, scene.offset + 1, ']'), "brackets");
  const bool isText = all[scene.at].kind == Kind::Literal;
  return isText ? nameWithoutQuotes(scene.offset, quotedText(scene, scene.offset + 1, '\'')) : Answer();
}

// A keyword that its own letters tell apart from the name behind it: ANDName, andName.
Answer missingBlank(const Scene& scene) {
  const std::string word = scene.word(scene.at);
  const bool isHere = scene.isSyntax() || isNotWithName(scene, word);
  if (!isHere || !scene.pieces.isWord(scene.at)) return {};
  if (const Answer before = missingBlankBefore(scene)) return before;
  for (const std::string_view keyword : {"AND", "OR", "WHERE", "ORDER", "FROM", "LIKE", "NOT", "ISA"}) {
    if (word.size() <= keyword.size() || !QORString::equalIgnoringCase(word.substr(0, keyword.size()), keyword)) {
      continue;
    }
    const std::string rest = word.substr(keyword.size());
    const bool isUpperBefore =
        std::all_of(word.begin(), word.begin() + static_cast<std::ptrdiff_t>(keyword.size()), isUpper);
    const bool isApart = isUpperBefore ? std::any_of(rest.begin(), rest.end(), isLower) : isUpper(rest.front());
    const bool isBy = QORString::equalIgnoringCase(rest, "BY");
    if (isApart || isBy) return scene.here("a space is missing: " + word.substr(0, keyword.size()) + " " + rest);
  }
  return {};
}

// A comment that parses for a while stands before the fault in its line: 1 -- one is 1 less the negated one.
Answer comment(const Scene& scene) {
  const bool isColumn = scene.fault.kind == Fault::kColumnUnnamed;
  const bool isHere = scene.isSyntax() || isColumn || scene.fault.kind == Fault::kPropertyUnknown;
  const std::size_t line = scene.pieces.text().substr(0, scene.offset).rfind('\n') + 1;
  // A column's comment stands behind it.
  const std::size_t last = isColumn ? scene.find("FROM", scene.at) : scene.at + 1;
  const std::size_t end = std::min(last, scene.pieces.all().size());
  for (std::size_t at = scene.pieces.from(line); isHere && at < end; ++at) {
    if (isCommentAt(scene, at)) {
      return Scene::Found{"the language has no comments: leave it out", scene.offsetOf(at)};
    }
  }
  return {};
}

}  // namespace QORQL_HintRules
