// The table of hints, kRules: first what the text around the word at fault tells, then values and names. Each rule is
// asked in its turn and says nothing where it does not apply. The rules of the language's own words and of names stand
// here too.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Face/QORQL_Hint.h"

#include <algorithm>

#include "Cimom/QORQL/Face/QORQL_HintRules.h"
#include "Cimom/QORQL/Face/QORQL_Suggestion.h"

namespace {

using namespace QORQL_HintRules;

constexpr const char* kClauseWords[] = {"SELECT", "FROM", "WHERE", "ORDER", "BY",   "ASC", "DESC", "FORMAT",
                                        "AS",     "AND",  "OR",    "NOT",   "LIKE", "IS",  "NULL", "ISA"};

// --- the language's own words --------------------------------------------------------

constexpr char kNoOrder[] = "a filter has no ORDER BY: leave it out";

Answer secondSortKey(const Scene& scene) {
  const bool isBehindKey = scene.fault.kind == Fault::kDirectionMissing;
  const bool isBehindDirection = scene.isSyntax() && scene.at > 0 && scene.isOneOf(scene.at - 1, "ASC", "DESC");
  if (!scene.is(scene.at, ",") || (!isBehindKey && !isBehindDirection)) return {};
  if (scene.isFilter) return scene.here(kNoOrder);
  return scene.here("rows can be sorted by one key only");
}

Answer missingDirection(const Scene& scene) {
  if (scene.fault.kind != Fault::kDirectionMissing) return {};
  if (scene.isFilter) return scene.here(kNoOrder);
  QORQL_Suggestion suggestion(scene.word(scene.at));
  for (const char* const direction : {"ASC", "DESC", "ASCENDING", "DESCENDING"}) suggestion.consider(direction);
  const bool isUp = suggestion.best().starts_with("ASC");
  if (!suggestion.best().empty()) return scene.here(std::string("did you mean ") + (isUp ? "ASC?" : "DESC?"));
  const std::size_t order = scene.find("ORDER");
  if (order == kNowhere) return {};
  return scene.here("ASC or DESC follows the key: " + scene.slice(scene.offsetOf(order), scene.offset) + " ASC");
}

Answer keywordAsAlias(const Scene& scene) {
  if (scene.fault.kind != Fault::kNameExpected || !scene.pieces.isWord(scene.at)) return {};
  return scene.here(scene.word(scene.at) + " is a keyword, not a name: choose another one");
}

// Where a name or a value is expected.
Answer keywordAsName(const Scene& scene) {
  if (!scene.isSyntax() || scene.at == 0 || !scene.isNamelike(scene.at)) return {};
  const bool isOperand = scene.isOneOf(scene.at - 1, "SELECT", "FROM", ",", "WHERE", "AND", "OR", "NOT", "(", "BY") ||
                         scene.isOneOf(scene.at - 1, "=", "<>", "!=", "<", ">", "<=", ">=", "+", "-", "/", ".", "::");
  if (!isOperand) return {};
  return scene.here(scene.word(scene.at) +
                    " is a keyword: a property or class of that name cannot be referred to, but "
                    "SELECT * shows it");
}

// Whether a name, a value or a parenthesis ends there.
bool isEndOfOperand(const Scene& scene, std::size_t piece) {
  if (piece >= scene.pieces.all().size()) return false;
  const QORQL_TextPieces::Kind kind = scene.pieces.all()[piece].kind;
  return kind != QORQL_TextPieces::Kind::Sign || scene.isOneOf(piece, ")", "]");
}

Answer unnamedColumn(const Scene& scene) {
  if (scene.fault.kind != Fault::kColumnUnnamed) return {};
  std::size_t end = scene.at;
  std::size_t depth = 0;
  for (; end < scene.pieces.all().size(); ++end) {
    if (depth == 0 && scene.isOneOf(end, ",", "FROM")) break;
    if (scene.is(end, "(")) ++depth;
    if (scene.is(end, ")") && depth > 0) --depth;
  }
  // Size / 2 Half: the name is there, and AS is not.
  const bool isNamed = end > scene.at + 1 && scene.pieces.isWord(end - 1) && isEndOfOperand(scene, end - 2);
  const std::size_t last = isNamed ? end - 1 : end;
  return scene.here("give it a name with AS: " + scene.slice(scene.offset, scene.offsetOf(last)) + " AS " +
                    (isNamed ? scene.word(last) : "Value"));
}

// SELECT Name Size FROM Class
Answer missingComma(const Scene& scene) {
  const bool isHere = scene.isSyntax() && scene.at > 1 && scene.pieces.isWord(scene.at);
  const std::size_t from = scene.find("FROM");
  if (!isHere || from == kNowhere || from <= scene.at || !scene.isOneOf(scene.at + 1, ",", "FROM")) return {};
  const bool isBesideColumn = isEndOfOperand(scene, scene.at - 1) && !scene.isOneOf(scene.at - 1, "SELECT", "FIRST");
  if (!isBesideColumn || scene.isNamelike(scene.at)) return {};
  const bool isFirstColumn = scene.is(1, "FIRST") && scene.find(",") > scene.at;
  const std::string column =
      isFirstColumn ? scene.slice(scene.offsetOf(3), scene.offset) : scene.operandBefore(scene.at);
  const std::string name = scene.word(scene.at);
  return scene.here("a comma is missing: " + column + ", " + name +
                    (scene.isFilter ? "" : "; or AS: " + column + " AS " + name));
}

Answer typingError(const Scene& scene) {
  if (!scene.isSyntax() || !scene.pieces.isWord(scene.at)) return {};
  QORQL_Suggestion suggestion(scene.word(scene.at));
  for (const char* const keyword : kClauseWords) {
    if (scene.at == 0 && keyword != kClauseWords[0]) break;
    suggestion.consider(keyword);
  }
  const bool isMeant = !suggestion.best().empty() && !scene.is(scene.at, suggestion.best());
  return isMeant ? scene.here("did you mean " + suggestion.best() + "?") : Answer();
}

// FROM Class c
Answer missingAs(const Scene& scene) {
  const bool isHere = scene.isSyntax() && scene.at > 1 && scene.pieces.isWord(scene.at);
  const std::size_t from = scene.find("FROM");
  if (!isHere || from == kNowhere || from + 1 >= scene.at || !scene.pieces.isWord(scene.at - 1)) return {};
  if (!scene.isOneOf(scene.at - 2, "FROM", ",")) return {};
  const bool isEnd = scene.at + 1 == scene.pieces.all().size();
  if (!isEnd && !scene.isOneOf(scene.at + 1, ",", "WHERE", "ORDER", "FORMAT")) return {};
  return scene.here("an alias follows AS: " + scene.word(scene.at - 1) + " AS " + scene.word(scene.at));
}

// --- names ---------------------------------------------------------------------------

Answer propertyMeant(const Scene& scene) {
  const bool isHere = scene.fault.kind == Fault::kPropertyUnknown || scene.fault.kind == Fault::kPropertyMissing;
  if (!isHere || !scene.names.properties) return {};
  const std::vector<QORString> asked = scene.classesAsked();
  const std::string below = textOf(scene.holderBelow(asked));
  if (!below.empty()) {
    return scene.here(scene.word(scene.at) + " is a property of " + below + ", a subclass: ask for it FROM " + below);
  }
  QORQL_Suggestion suggestion(scene.fault.name.view());
  for (const QORString& className : asked) {
    for (const QORString& property : scene.names.properties(className)) suggestion.consider(property.view());
  }
  return suggestion.best().empty() ? Answer() : scene.here("did you mean " + suggestion.best() + "?");
}

Answer classMeant(const Scene& scene) {
  if (scene.fault.kind != Fault::kClassUnknown || !scene.names.classes) return {};
  QORQL_Suggestion suggestion(scene.fault.name.view());
  for (const QORString& name : scene.names.classes()) suggestion.consider(name.view());
  return suggestion.best().empty() ? Answer() : scene.here("did you mean " + suggestion.best() + "?");
}

Answer pathUnread(const Scene& scene) {
  if (scene.fault.kind != Fault::kPathUnread) return {};
  return scene.here("a query does not read the properties of embedded objects");
}

// --- the table -----------------------------------------------------------------------

struct Rule {
  const char* name;
  Answer (*answer)(const Scene& scene);
};
constexpr Rule kRules[] = {
    {"curly-quote", curlyQuote},
    {"open-quote", openQuote},
    {"double-quote", doubleQuote},
    {"other-quote", otherQuote},
    {"missing-blank", missingBlank},
    {"null-comparison", comparisonWithNull},
    {"late-not", lateNot},
    {"group-by", groupBy},
    {"foreign-word", foreignWord},
    {"comment", comment},
    {"double-equals", doubleEquals},
    {"foreign-sign", foreignSign},
    {"exclamation-mark", exclamationMark},
    {"exponent", exponent},
    {"unknown-function", unknownFunction},
    {"count-of-all", countOfAll},
    {"unknown-form", unknownForm},
    {"foreign-statement", foreignStatement},
    {"class-alone", classAlone},
    {"parenthesis", parenthesis},
    {"second-sort-key", secondSortKey},
    {"missing-direction", missingDirection},
    {"keyword-as-alias", keywordAsAlias},
    {"keyword-as-name", keywordAsName},
    {"unnamed-column", unnamedColumn},
    {"column-beside-aggregate", columnBesideAggregate},
    {"typing-error", typingError},
    {"missing-as", missingAs},
    {"missing-comma", missingComma},
    {"half-association", halfAssociation},
    {"missing-value", missingValue},
    {"missing-element", missingElement},
    {"incomparable", incomparable},
    {"property-meant", propertyMeant},
    {"class-meant", classMeant},
    {"path", pathUnread},
};

// Of the first rule that knows one.
QORQL_Hint hintOf(const Scene& scene) {
  for (const Rule& rule : kRules) {
    if (const Answer found = rule.answer(scene)) {
      const std::size_t end = scene.pieces.text().size();
      return {rule.name, found->text, static_cast<QORuint32>(std::min(found->offset, end))};
    }
  }
  return {};
}

}  // namespace

QORQL_Hint QORQL_hintOf(const QORQL_Fault& fault, std::string_view text, const QORQL_KnownNames& names) {
  return fault.hasPlace() ? hintOf(Scene(fault, text, names, false)) : QORQL_Hint();
}

QORQL_Hint QORQL_hintOfFilter(const QORQL_Fault& fault, std::string_view text, const QORQL_KnownNames& names) {
  return fault.hasPlace() ? hintOf(Scene(fault, text, names, true)) : QORQL_Hint();
}

QORQL_Hint QORQL_hintOf(const QoriBaseException& error, std::string_view text, const QORQL_KnownNames& names) {
  const QORQL_Fault* const fault = QORQL_faultOf(error);
  return fault == nullptr ? QORQL_Hint() : QORQL_hintOf(*fault, text, names);
}

std::vector<std::string> QORQL_hintRules() {
  std::vector<std::string> names;
  for (const Rule& rule : kRules) names.emplace_back(rule.name);
  return names;
}
