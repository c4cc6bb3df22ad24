// What the rules of hints look at: a fault, the text around it, and the names that are known.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Face/QORQL_HintScene.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <iterator>

#include "Cimom/QORQL/CQLQueryValidator.h"

QORQL_HintScene::QORQL_HintScene(const QORQL_Fault& given, std::string_view text, const QORQL_KnownNames& known,
                                 bool isOfFilter)
    : fault(given),
      pieces(text),
      names(known),
      offset(std::min<std::size_t>(given.offset, text.size())),
      at(pieces.from(offset)),
      isFilter(isOfFilter) {}

std::string QORQL_HintScene::word(std::size_t piece) const {
  return piece < pieces.all().size() ? std::string(pieces.all()[piece].text) : std::string();
}

std::size_t QORQL_HintScene::offsetOf(std::size_t piece) const {
  return piece < pieces.all().size() ? pieces.all()[piece].offset : pieces.text().size();
}

std::string QORQL_HintScene::slice(std::size_t from, std::size_t to) const {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::string_view part = pieces.text().substr(from, to - std::min(from, to));
  const std::size_t first = part.find_first_not_of(kBlanks);
  return first == kNowhere ? "" : std::string(part.substr(first, part.find_last_not_of(kBlanks) + 1 - first));
}

std::size_t QORQL_HintScene::find(std::string_view word, std::size_t from) const {
  std::size_t piece = from;
  while (piece < pieces.all().size() && !is(piece, word)) ++piece;
  return piece < pieces.all().size() ? piece : kNowhere;
}

std::size_t QORQL_HintScene::openingBefore(std::size_t piece) const {
  std::size_t depth = 0;
  while (piece-- > 0) {
    if (is(piece, ")")) ++depth;
    if (is(piece, "(") && depth-- == 0) return piece;
  }
  return kNowhere;
}

std::string QORQL_HintScene::operandBefore(std::size_t end) const {
  std::size_t depth = 0;
  std::size_t begin = end;
  for (; begin > 0; --begin) {
    const std::size_t before = begin - 1;
    if (depth == 0 && isOneOf(before, "WHERE", "AND", "OR", "NOT", "(", "SELECT", ",")) break;
    if (is(before, ")")) ++depth;
    if (is(before, "(") && depth > 0) --depth;
  }
  return slice(offsetOf(begin), offsetOf(end));
}

std::string QORQL_HintScene::operandFrom(std::size_t begin) const {
  std::size_t depth = 0;
  std::size_t end = begin;
  for (; end < pieces.all().size(); ++end) {
    if (depth == 0 && isOneOf(end, "AND", "OR", "NOT", ")", "ORDER", "FORMAT", ";")) break;
    if (is(end, "(")) ++depth;
    if (is(end, ")") && depth > 0) --depth;
  }
  return slice(offsetOf(begin), offsetOf(end));
}

std::string QORQL_HintScene::reference() const {
  std::size_t last = at;
  while (isOneOf(last + 1, ".", "::") && pieces.isWord(last + 2)) last += 2;
  return is(last, fault.name.view()) ? slice(offset, pieces.all()[last].end()) : std::string(fault.name.view());
}

std::vector<QORString> QORQL_HintScene::classesAsked() const {
  std::vector<QORString> classes;
  const std::string_view asked = fault.className.view();
  const std::size_t from = find("FROM");
  for (std::size_t piece = from == kNowhere ? from : from + 1; pieces.isWord(piece);) {
    const bool hasAlias = is(piece + 1, "AS");
    const bool isAsked = asked.empty() || is(piece, asked) || (hasAlias && is(piece + 2, asked));
    if (isAsked) classes.emplace_back(pieces.all()[piece].text);
    piece += hasAlias ? 3 : 1;
    if (!is(piece, ",")) break;
    ++piece;
  }
  return classes;
}

QORString QORQL_HintScene::holderBelow(const std::vector<QORString>& asked) const {
  if (!names.classes) return {};
  const auto isBelow = [&](const QORString& name) {
    return std::any_of(asked.begin(), asked.end(), [&](const QORString& above) {
      return CQLQueryValidator::isSubClass(names.nameSpace, name, above);
    });
  };
  const auto isThis = [&](const QORString& property) { return property.isEqualCaseInsensitive(fault.name); };
  for (const QORString& name : names.classes()) {
    if (!isBelow(name)) continue;
    const std::vector<QORString> properties = names.properties(name);
    if (std::any_of(properties.begin(), properties.end(), isThis)) return name;
  }
  return {};
}

bool QORQL_HintScene::isNamelike(std::size_t piece) const {
  const bool isClause = (is(piece, "ORDER") && is(piece + 1, "BY")) || (is(piece, "FORMAT") && is(piece + 1, "AS"));
  return !isClause && isOneOf(piece, "ORDER", "FORMAT", "BY", "LOCAL", "GLOBAL", "XML", "HTML", "CSV", "FIRST", "ASC",
                              "DESC", "ANY", "EVERY", "SATISFIES", "CLASSQUALIFIER", "PROPERTYQUALIFIER");
}

std::string QORQL_HintScene::dateTimeOf(std::string_view literal) {
  std::string digits;
  std::copy_if(literal.begin(), literal.end(), std::back_inserter(digits), [](char c) { return c >= '0' && c <= '9'; });
  const bool isDigits = digits.size() == literal.size() && (digits.size() == 8 || digits.size() == 14);
  const bool isDashed = literal.size() >= 10 && literal[4] == '-' && literal[7] == '-' && digits.size() <= 14;
  if (!isDigits && !isDashed) {
    const std::time_t now = std::time(nullptr);
    std::tm today{};
    gmtime_r(&now, &today);
    std::array<char, 16> text{};
    digits.assign(text.data(), std::strftime(text.data(), text.size(), "%Y%m%d", &today));
  }
  digits.resize(14, '0');
  return digits + ".000000+000";
}
