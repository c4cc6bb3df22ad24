// Hints about words and forms of other languages, and texts that are no statement.
// Tested by tests/unit/QORQL/HintTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/QORQL/Face/QORQL_HintRules.h"
#include "Cimom/QORQL/Face/QORQL_Suggestion.h"
#include "Cimom/QORQL/QORQL_FunctionID.h"

namespace QORQL_HintRules {

namespace {

std::string inLowerCase(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return text;
}

constexpr char kNoFunctions[] = "a function has no value in a filter: select properties";

struct ForeignWord {
  const char* word;
  const char* hint;
};
constexpr char kFirst[] = "to see the first rows only, write SELECT FIRST n ...";
constexpr char kFrom[] =
    "list the classes in FROM, separated by commas; WHERE joins them, by values or through an association";
constexpr char kPlain[] = "there are no patterns: LIKE finds a plain text anywhere in another one";
constexpr ForeignWord kForeignWords[] = {
    {"FETCH", kFirst},
    {"ROWS", kFirst},
    {"LIMIT", kFirst},
    {"TOP", kFirst},
    {"HAVING", "there is no HAVING: an aggregate covers all rows"},
    {"JOIN", kFrom},
    {"INNER", kFrom},
    {"CROSS", kFrom},
    {"LEFT", "an outer join is written in WHERE, as A.x *= B.y"},
    {"RIGHT", "an outer join is written in WHERE, as A.x =* B.y"},
    {"FULL", "an outer join is written in WHERE, as A.x *=* B.y"},
    {"REGEXP", kPlain},
    {"RLIKE", kPlain},
    {"MATCHES", kPlain},
    {"GLOB", kPlain},
    {"UNION", "there is no UNION: run one statement after the other"},
    {"OFFSET", kFirst},
    {"WITHIN", "there is no WITHIN: leave it out"},
    {"GROUP", "there is no GROUP: leave it out"},
};

// SELECT FIRST Id, where a number is missing, and SELECT First of a property that is called so.
Answer firstWithoutNumber(const Scene& scene) {
  const std::size_t first = scene.is(scene.at, "FIRST") ? scene.at : scene.at - 1;
  if (first == 0 || first > scene.at || !scene.is(first, "FIRST") || !scene.is(first - 1, "SELECT")) return {};
  const auto& all = scene.pieces.all();
  if (first + 1 < all.size() && all[first + 1].kind == Kind::Number) return {};
  return Scene::Found{scene.isFilter ? "FIRST is a keyword, and a filter has no FIRST: leave it out"
                                     : "FIRST is a keyword: to see the first rows only, write SELECT FIRST n ...",
                      scene.offsetOf(first)};
}

// The values in the parentheses behind IN; none where they are not values.
std::vector<std::string> valuesBehind(const Scene& scene, std::size_t in) {
  constexpr std::size_t kMost = 4;
  std::vector<std::string> values;
  std::size_t begin = in + 2;
  if (!scene.is(in + 1, "(") || scene.is(begin, "SELECT")) return {};
  for (std::size_t piece = begin; piece < scene.pieces.all().size(); ++piece) {
    if (!scene.isOneOf(piece, ",", ")")) continue;
    const std::string value = scene.slice(scene.offsetOf(begin), scene.offsetOf(piece));
    if (value.empty()) return {};
    values.push_back(values.size() < kMost ? value : "...");
    if (scene.is(piece, ")") || values.size() > kMost) return values;
    begin = piece + 1;
  }
  return {};
}

std::string hintOfIn(const Scene& scene, std::size_t in, bool isNegated) {
  const std::string operand = scene.operandBefore(isNegated ? in - 1 : in);
  const std::vector<std::string> values = valuesBehind(scene, in);
  const std::string start = "there is no IN: ";
  const std::string one = scene.isFilter ? "use one filter for each value" : "run one statement for each value";
  if (operand.empty() || values.empty()) return start + (isNegated ? "write <> for each value, with AND" : one);
  if (!isNegated) return start + one + ", as with " + operand + " = " + values.front();
  std::string conditions;
  for (const std::string& value : values) {
    conditions += (conditions.empty() ? "" : " AND ") + (value == "..." ? value : operand + " <> " + value);
  }
  return start + "write " + conditions;
}

std::string hintOfBetween(const Scene& scene, std::size_t between, bool isNegated) {
  const std::string operand = scene.operandBefore(isNegated ? between - 1 : between);
  const std::size_t both = scene.find("AND", between);
  const std::string least = scene.operandFrom(between + 1);
  const std::string most = both == kNowhere ? "" : scene.operandFrom(both + 1);
  const bool isWhole = !operand.empty() && !least.empty() && !most.empty();
  const std::string x = isWhole ? operand : "x";
  const std::string from = x + (isNegated ? " < " : " >= ") + (isWhole ? least : "least");
  const std::string to = x + (isNegated ? " > " : " <= ") + (isWhole ? most : "greatest");
  const std::string run = scene.isFilter ? "use one filter with " : "run one statement with ";
  return "there is no BETWEEN: " + (isNegated ? run + from + " and one with " + to : "write " + from + " AND " + to);
}

// The command that leaves out equal rows of the statement without DISTINCT.
std::string hintOfDistinct(const Scene& scene, std::size_t distinct) {
  const bool isCounted = scene.is(distinct - 1, "(");
  if (isCounted && !scene.is(distinct - 2, "COUNT")) return "there is no DISTINCT: leave it out";
  const std::size_t from = scene.find("FROM");
  if (from == kNowhere || from <= distinct + 1) return "there is no DISTINCT: every row is shown";
  const std::string column = scene.operandFrom(distinct + 1);
  const std::string rest = scene.slice(scene.offsetOf(isCounted ? from : distinct + 1), scene.pieces.text().size());
  return "there is no DISTINCT: every row is shown. Another program leaves out equal ones: "
         "qorql -o csv --no-header \"SELECT " +
         (isCounted ? column + " " : "") + rest + "\" | sort -u" + (isCounted ? " | wc -l" : "");
}

// The last word of the reference that begins there.
std::size_t lastWordOf(const Scene& scene, std::size_t piece) {
  while (scene.isOneOf(piece + 1, ".", "::") && scene.pieces.isWord(piece + 2)) piece += 2;
  return piece;
}

// The first column of the select list that is a property; the piece at fault when none is.
std::size_t plainColumn(const Scene& scene) {
  bool isStart = false;
  std::size_t depth = 0;
  for (std::size_t piece = 0; piece < scene.pieces.all().size() && !scene.is(piece, "FROM"); ++piece) {
    if (isStart && scene.is(piece, "FIRST")) {
      ++piece;  // past its number
      continue;
    }
    if (isStart && scene.pieces.isWord(piece) && !scene.is(piece + 1, "(")) return piece;
    if (scene.is(piece, "(")) ++depth;
    if (scene.is(piece, ")") && depth > 0) --depth;
    isStart = scene.is(piece, "SELECT") || (depth == 0 && scene.is(piece, ","));
  }
  return scene.at;
}

// The command that prints what a later one may group.
std::string groupingText(const Scene& scene, const std::string& column) {
  const std::string from = scene.word(scene.find("FROM") == kNowhere ? kNowhere : scene.find("FROM") + 1);
  return "there is no GROUP BY: an aggregate covers all rows. Another program groups the rows: qorql -o jsonl "
         "\"SELECT * FROM " +
         (from.empty() ? "Class" : from) + "\" | jq -s \"group_by(." + column + ")\"";
}

constexpr char kOnlyAsks[] = "the language only reads: every statement begins with SELECT";
constexpr ForeignWord kForeignStatements[] = {
    {"SHOW", "qorql classes lists the classes, and qorql contents those with instances; in the shell, .tables does"},
    {"DESCRIBE", "qorql describe CLASS describes a class; in the shell, .describe CLASS does"},
    {"DESC", "qorql describe CLASS describes a class; in the shell, .describe CLASS does"},
    {"USE", "choose the namespace with the option --namespace, or in the shell with .namespace"},
    {"WITH", kOnlyAsks},
    {"INSERT", kOnlyAsks},
    {"UPDATE", kOnlyAsks},
    {"DELETE", kOnlyAsks},
    {"CREATE", kOnlyAsks},
    {"ALTER", kOnlyAsks},
    {"DROP", kOnlyAsks},
};

}  // namespace

Answer foreignWord(const Scene& scene) {
  if (!scene.isSyntax()) return {};
  if (const Answer first = firstWithoutNumber(scene)) return first;
  // TOP 5 is taken for a property and a fault; NOT IN is a fault at NOT.
  const bool isBefore = scene.at > 0 && scene.is(scene.at - 1, "TOP");
  const bool isNegated = scene.is(scene.at, "NOT");
  const std::size_t at = isBefore ? scene.at - 1 : isNegated ? scene.at + 1 : scene.at;
  if (scene.is(at, "IN")) return Scene::Found{hintOfIn(scene, at, isNegated), scene.offsetOf(at)};
  if (scene.is(at, "BETWEEN")) return Scene::Found{hintOfBetween(scene, at, isNegated), scene.offsetOf(at)};
  if (scene.is(at, "DISTINCT") && !scene.isFilter) return scene.here(hintOfDistinct(scene, at));
  for (const ForeignWord& known : kForeignWords) {
    if (!scene.is(at, known.word)) continue;
    const bool isOfQueries = scene.isFilter && !scene.is(at, "WITHIN");
    return Scene::Found{isOfQueries ? "a filter has no " + std::string(known.word) + ": leave it out" : known.hint,
                        scene.offsetOf(at)};
  }
  if (scene.is(at, "DISTINCT")) return scene.here("a filter has no DISTINCT: leave it out");
  return {};
}

Answer groupBy(const Scene& scene) {
  const bool isHere = scene.isSyntax() && scene.is(scene.at, "GROUP");
  if (!isHere || !scene.is(scene.at + 1, "BY")) return {};
  if (scene.isFilter) return scene.here("a filter has no GROUP BY: leave it out");
  const std::string column = scene.word(lastWordOf(scene, scene.at + 2));
  return scene.here(groupingText(scene, column.empty() ? "Name" : column));
}

Answer columnBesideAggregate(const Scene& scene) {
  if (scene.fault.kind != Fault::kColumnBesideAggregate) return {};
  if (scene.isFilter) return scene.here(kNoFunctions);
  const std::size_t column = scene.is(scene.at + 1, "(") ? plainColumn(scene) : scene.at;
  const std::size_t group = scene.find("GROUP");
  const bool isGrouped = group != kNowhere && scene.is(group + 1, "BY") && scene.pieces.isWord(group + 2);
  if (!isGrouped && scene.is(column + 1, "(")) {
    return scene.here("an aggregate covers all rows: ask for it in a statement of its own");
  }
  return Scene::Found{groupingText(scene, scene.word(lastWordOf(scene, isGrouped ? group + 2 : column))),
                      scene.offsetOf(column)};
}

Answer unknownFunction(const Scene& scene) {
  if (scene.fault.kind != Fault::kFunctionUnknown) return {};
  if (scene.isFilter) return scene.here(kNoFunctions);
  QORQL_Suggestion suggestion(scene.fault.name.view());
  std::string all;
  for (QORuint32 id = QORQL_FUNCTIONID_OBJECTPATH; id <= QORQL_FUNCTIONID_INSTANCEOF; ++id) {
    suggestion.consider(QORQL_functionName(id));
    all += std::string(all.empty() ? "" : ", ") + QORQL_functionName(id);
  }
  return scene.here(
      "there is no function " + textOf(scene.fault.name) +
      (suggestion.best().empty() ? ": the language has " + all : ": did you mean " + suggestion.best() + "?"));
}

Answer countOfAll(const Scene& scene) {
  const bool isHere = scene.isSyntax() && scene.is(scene.at, "*") && scene.at >= 2 && scene.is(scene.at - 1, "(");
  if (!isHere) return {};
  return scene.here(scene.isFilter ? kNoFunctions : "an aggregate takes a property, as in COUNT(Name)");
}

Answer unknownForm(const Scene& scene) {
  // FORMAT JSON: AS is missing.
  const bool isAsMissing =
      scene.isSyntax() && scene.at > 0 && scene.is(scene.at - 1, "FORMAT") && scene.pieces.isWord(scene.at);
  if (scene.fault.kind != Fault::kFormatUnknown && !isAsMissing) return {};
  if (scene.isFilter) return scene.here("a filter has no FORMAT: leave it out");
  if (isAsMissing && scene.isOneOf(scene.at, "QORIOBJECT", "XML", "HTML", "CSV")) {
    return scene.here("AS follows FORMAT: FORMAT AS " + scene.word(scene.at));
  }
  const std::string formats = "the formats of the language are QORIOBJECT, XML, HTML and CSV";
  const bool isOfTool = scene.isOneOf(scene.at, "JSON", "JSONL", "TABLE", "MOF");
  return scene.here(formats + (isOfTool ? "; qorql has more: qorql -o " + inLowerCase(scene.word(scene.at)) : ""));
}

Answer foreignStatement(const Scene& scene) {
  if (!scene.isSyntax() || scene.at != 0) return {};
  for (const ForeignWord& known : kForeignStatements) {
    if (scene.is(0, known.word)) return scene.here(known.hint);
  }
  return {};
}

// A class without a SELECT before it.
Answer classAlone(const Scene& scene) {
  if (!scene.isSyntax() || scene.at != 0 || !scene.names.classes || scene.pieces.all().size() > 2) return {};
  const std::vector<QORString> classes = scene.names.classes();
  for (std::size_t piece = 0; piece < scene.pieces.all().size(); ++piece) {
    const auto isThis = [&](const QORString& name) { return scene.is(piece, name.view()); };
    const auto found = std::find_if(classes.begin(), classes.end(), isThis);
    if (found != classes.end())
      return Scene::Found{"to see the objects of a class, write SELECT * FROM " + textOf(*found),
                          scene.offsetOf(piece)};
  }
  return {};
}

}  // namespace QORQL_HintRules
