// The table of hints, kRules: first what the text around the word at fault tells, then values and names. Each rule is
// asked in its turn and says nothing where it does not apply.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Face/QORQL_Hint.h"

#include <algorithm>

#include "Cimom/QORQL/Face/QORQL_HintScene.h"
#include "Cimom/QORQL/Face/QORQL_Suggestion.h"
#include "Cimom/QORQL/QORQL_FunctionID.h"

namespace {

using Fault = QORQL_Fault;
using Kind = QORQL_TextPieces::Kind;

constexpr std::size_t kNowhere = QORQL_TextPieces::kNowhere;

using Answer = std::optional<QORQL_HintScene::Found>;
using Scene = QORQL_HintScene;

std::string textOf(const QORString& text) { return std::string(text.view()); }

constexpr const char* kKeywords[] = {"SELECT", "FROM", "WHERE", "ORDER", "BY",   "ASC", "DESC", "FORMAT",
                                     "AS",     "AND",  "OR",    "NOT",   "LIKE", "IS",  "NULL", "ISA"};
// --- quotes and blanks ----------------------------------------------------------------

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
  if (!scene.isSyntax() || !scene.is(scene.at, "\"")) return {};
  const std::size_t close = scene.pieces.text().find('"', scene.offset + 1);
  if (close == std::string_view::npos) return {};
  return scene.here("text goes in single quotes: '" + scene.slice(scene.offset + 1, close) + "'");
}

std::string inLowerCase(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return text;
}

bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isLower(char c) { return c >= 'a' && c <= 'z'; }

// A keyword that its own letters tell apart from the name behind it: ANDName, andName.
Answer missingBlank(const Scene& scene) {
  if (!scene.isSyntax() || !scene.pieces.isWord(scene.at)) return {};
  const std::string word = scene.word(scene.at);
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

// --- words and signs of other languages --------------------------------------------------

struct ForeignWord {
  const char* word;
  const char* hint;
};
constexpr char kFirst[] = "to see the first rows only, write SELECT FIRST n ...";
constexpr char kFrom[] =
    "list the classes in FROM, separated by commas; WHERE joins them, by values or through an association";
constexpr ForeignWord kForeignWords[] = {
    {"LIMIT", kFirst},
    {"TOP", kFirst},
    {"DISTINCT", "there is no DISTINCT: every row is shown"},
    {"HAVING", "there is no HAVING: an aggregate covers all rows"},
    {"JOIN", kFrom},
    {"INNER", kFrom},
    {"CROSS", kFrom},
    {"LEFT", "an outer join is written in WHERE, as A.x *= B.y"},
    {"RIGHT", "an outer join is written in WHERE, as A.x =* B.y"},
    {"FULL", "an outer join is written in WHERE, as A.x *=* B.y"},
    {"IN", "there is no IN: ask for one value at a time with ="},
    {"BETWEEN", "there is no BETWEEN: write x >= least AND x <= greatest"},
    {"UNION", "there is no UNION: run one statement after the other"},
    {"OFFSET", kFirst},
};

Answer foreignWord(const Scene& scene) {
  if (!scene.isSyntax()) return {};
  // TOP 5 is taken for a property and a fault; NOT IN is a fault at NOT.
  const bool isBefore = scene.at > 0 && scene.is(scene.at - 1, "TOP");
  const std::size_t at = isBefore ? scene.at - 1 : scene.is(scene.at, "NOT") ? scene.at + 1 : scene.at;
  for (const ForeignWord& known : kForeignWords) {
    if (scene.is(at, known.word)) return Scene::Found{known.hint, scene.offsetOf(at)};
  }
  return {};
}

// The command that prints what a later one may group.
std::string groupingText(const Scene& scene, const std::string& column) {
  const std::string from = scene.word(scene.find("FROM") == kNowhere ? kNowhere : scene.find("FROM") + 1);
  return "there is no GROUP BY: an aggregate covers all rows. Another program groups the rows: qorql -o jsonl "
         "\"SELECT * FROM " +
         (from.empty() ? "Class" : from) + "\" | jq -s \"group_by(." + column + ")\"";
}

Answer groupBy(const Scene& scene) {
  const bool isHere = scene.isSyntax() && scene.is(scene.at, "GROUP");
  if (!isHere || !scene.is(scene.at + 1, "BY")) return {};
  const std::string column = scene.word(scene.at + 2);
  return scene.here(groupingText(scene, column.empty() ? "Name" : column));
}

Answer columnBesideAggregate(const Scene& scene) {
  if (scene.fault.kind != Fault::kColumnBesideAggregate) return {};
  const std::size_t group = scene.find("GROUP");
  const bool isGrouped = group != kNowhere && scene.is(group + 1, "BY") && scene.pieces.isWord(group + 2);
  return scene.here(groupingText(scene, scene.word(isGrouped ? group + 2 : scene.at)));
}

// A comment that parses for a while stands before the fault in its line: 1 -- one is 1 less the negated one.
Answer comment(const Scene& scene) {
  const bool isHere = scene.isSyntax() || scene.fault.kind == Fault::kPropertyUnknown;
  const std::size_t line = scene.pieces.text().substr(0, scene.offset).rfind('\n') + 1;
  const std::size_t end = std::min(scene.at + 1, scene.pieces.all().size());
  for (std::size_t at = scene.pieces.from(line); isHere && at < end; ++at) {
    const bool isOpening =
        (scene.is(at, "-") && scene.is(at + 1, "-")) || (scene.is(at, "/") && scene.isOneOf(at + 1, "*", "/"));
    if (isOpening && scene.pieces.isJoined(at + 1)) {
      return Scene::Found{"the language has no comments: leave it out", scene.offsetOf(at)};
    }
  }
  return {};
}

// Where NULL is asked for, and where it is no value.
Answer comparisonWithNull(const Scene& scene) {
  if (!scene.isSyntax() || !scene.is(scene.at, "NULL") || scene.at == 0) return {};
  const bool isUnequal = scene.isOneOf(scene.at - 1, "<>", "!=");
  if (!isUnequal && !scene.is(scene.at - 1, "=")) return {};
  const std::string operand = scene.at > 1 ? scene.word(scene.at - 2) : "";
  return Scene::Found{"test for NULL with IS: " + operand + (isUnequal ? " IS NOT NULL" : " IS NULL"),
                      scene.offsetOf(scene.at - 1)};
}

Answer lateNot(const Scene& scene) {
  if (!scene.isSyntax() || !scene.is(scene.at, "NOT") || scene.at == 0) return {};
  if (!scene.isOneOf(scene.at + 1, "LIKE", "ISA", "ANY", "EVERY")) return {};
  return scene.here("NOT goes before the comparison: NOT " + scene.word(scene.at - 1) + " " + scene.word(scene.at + 1) +
                    " " + scene.word(scene.at + 2));
}

Answer doubleEquals(const Scene& scene) {
  const bool isHere = scene.isSyntax() && scene.is(scene.at, "=") && scene.pieces.isJoined(scene.at);
  if (!isHere || !scene.is(scene.at - 1, "=")) return {};
  return Scene::Found{"equality is written with one =", scene.offsetOf(scene.at - 1)};
}

Answer exclamationMark(const Scene& scene) {
  if (!scene.isSyntax() || !scene.is(scene.at, "!")) return {};
  return scene.here("negate a condition with NOT: NOT " + scene.word(scene.at + 1) + " = ...");
}

// 1e8 and 1.5e+3: a real number has digits on both sides of its point, and its exponent no plus.
Answer exponent(const Scene& scene) {
  const auto& all = scene.pieces.all();
  const bool isHere = scene.isSyntax() && scene.at > 0 && scene.at < all.size() && scene.pieces.isJoined(scene.at);
  if (!isHere || all[scene.at - 1].kind != Kind::Number) return {};
  std::string word = scene.word(scene.at);
  if (word.front() != 'e' && word.front() != 'E') return {};
  if (word.size() == 1 && scene.isOneOf(scene.at + 1, "+", "-")) {
    word += (scene.is(scene.at + 1, "-") ? "-" : "") + scene.word(scene.at + 2);
  }
  if (word.find_first_not_of("0123456789-", 1) != std::string::npos || word.size() == 1) return {};
  const bool hasPoint = scene.at > 2 && scene.is(scene.at - 2, ".") && all[scene.at - 3].kind == Kind::Number;
  const std::size_t begin = scene.at - (hasPoint ? 3 : 1);
  const std::string mantissa = scene.slice(scene.offsetOf(begin), scene.offset) + (hasPoint ? "" : ".0");
  return Scene::Found{"a number with an exponent needs a decimal point and takes no plus sign: " + mantissa + word,
                      scene.offsetOf(begin)};
}

Answer unknownFunction(const Scene& scene) {
  if (scene.fault.kind != Fault::kFunctionUnknown) return {};
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
  return isHere ? scene.here("an aggregate takes a property, as in COUNT(Name)") : Answer();
}

Answer unknownForm(const Scene& scene) {
  if (scene.fault.kind != Fault::kFormatUnknown) return {};
  const bool isOfTool = scene.isOneOf(scene.at, "JSON", "JSONL", "TABLE", "MOF");
  return scene.here(isOfTool
                        ? "the formats of the language are QORIOBJECT, XML, HTML and CSV; qorql has more: qorql -o " +
                              inLowerCase(scene.word(scene.at))
                        : "the formats of the language are QORIOBJECT, XML, HTML and CSV");
}

// --- statements that are none --------------------------------------------------------

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

// --- the language's own words --------------------------------------------------------

// Only a comparison may stand in parentheses; AND joins as it is, and what OR would add is a statement of its own.
Answer parenthesis(const Scene& scene) {
  const bool isAnd = scene.is(scene.at, "AND");
  if (scene.fault.kind != Fault::kParenthesisOpen || (!isAnd && !scene.is(scene.at, "OR"))) return {};
  const std::size_t open = scene.openingBefore(scene.at);
  if (open == kNowhere) return {};
  std::size_t end = scene.at + 1;
  while (end < scene.pieces.all().size() && !scene.isOneOf(end, ")", "AND", "OR", "(")) ++end;
  const bool isWhole = scene.is(end, ")");
  const std::string left = isWhole ? scene.slice(scene.offsetOf(open) + 1, scene.offset) : "a";
  const std::string right = isWhole ? scene.slice(scene.offsetOf(scene.at + 1), scene.offsetOf(end)) : "b";
  const bool isNegated = open > 0 && scene.is(open - 1, "NOT");
  const std::string start = "only one comparison may stand in parentheses: ";
  if (isAnd && !isNegated) return scene.here(start + "write " + left + " AND " + right);
  if (!isAnd && isNegated) return scene.here(start + "write NOT " + left + " AND NOT " + right);
  const std::string second = isAnd ? left + " AND NOT " + right : right;
  return scene.here(start + "run one statement with " + (isAnd ? "NOT " : "") + left + " and one with " + second);
}

Answer secondSortKey(const Scene& scene) {
  const bool isBehindKey = scene.fault.kind == Fault::kDirectionMissing;
  const bool isBehindDirection = scene.isSyntax() && scene.at > 0 && scene.isOneOf(scene.at - 1, "ASC", "DESC");
  if (!scene.is(scene.at, ",") || (!isBehindKey && !isBehindDirection)) return {};
  return scene.here("rows can be sorted by one key only");
}

Answer missingDirection(const Scene& scene) {
  if (scene.fault.kind != Fault::kDirectionMissing) return {};
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

Answer unnamedColumn(const Scene& scene) {
  if (scene.fault.kind != Fault::kColumnUnnamed) return {};
  std::size_t end = scene.at;
  std::size_t depth = 0;
  for (; end < scene.pieces.all().size(); ++end) {
    if (depth == 0 && scene.isOneOf(end, ",", "FROM")) break;
    if (scene.is(end, "(")) ++depth;
    if (scene.is(end, ")") && depth > 0) --depth;
  }
  return scene.here("give it a name with AS: " + scene.slice(scene.offset, scene.offsetOf(end)) + " AS Value");
}

Answer typingError(const Scene& scene) {
  if (!scene.isSyntax() || !scene.pieces.isWord(scene.at)) return {};
  QORQL_Suggestion suggestion(scene.word(scene.at));
  for (const char* const keyword : kKeywords) {
    if (scene.at == 0 && keyword != kKeywords[0]) break;
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
  return scene.here("an alias follows AS: " + scene.word(scene.at - 1) + " AS " + scene.word(scene.at));
}

// Either paths should be compared, or the other half is missing.
Answer halfAssociation(const Scene& scene) {
  if (scene.fault.kind != Fault::kHalfAssociation) return {};
  const std::size_t where = scene.find("WHERE");
  const std::size_t path = scene.find("OBJECTPATH", where == kNowhere ? 0 : where);
  if (path == kNowhere) {
    return scene.here("write both ends of an association side by side: Link = a AND Link = b");
  }
  return Scene::Found{
      "OBJECTPATH(a) = OBJECTPATH(b) is read as half an association: compare the keys, as in a.Name = b.Name",
      scene.offsetOf(path)};
}

// --- values of a row -----------------------------------------------------------------

std::string inObject(const Scene& scene) {
  return scene.fault.object.isEmpty() ? "" : " in " + textOf(scene.fault.object);
}

// A key that is NULL, or an operand of LIKE: the condition that keeps such rows out comes before LIKE.
Answer missingValue(const Scene& scene) {
  if (scene.fault.kind != Fault::kValueMissing || scene.fault.name.isEmpty()) return {};
  const std::string name = scene.reference();
  const std::size_t order = scene.find("ORDER");
  const bool isKey = order != kNowhere && scene.offsetOf(order) < scene.offset;
  const std::string start = name + " is NULL" + inObject(scene) + ": ";
  if (!isKey) return scene.here(start + "put " + name + " IS NOT NULL AND before it");
  const bool hasWhere = scene.find("WHERE") != kNowhere;
  return scene.here(start + "leave such rows out with " + (hasWhere ? "AND " : "WHERE ") + name + " IS NOT NULL");
}

Answer missingElement(const Scene& scene) {
  if (scene.fault.kind != Fault::kElementMissing) return {};
  const QORuint32 length = scene.fault.length;
  return scene.here(scene.reference() + " has " + (length == 0 ? "no" : std::to_string(length)) +
                    (length == 1 ? " element" : " elements") + inObject(scene) + ", and the first is [0]");
}

Answer incomparable(const Scene& scene) {
  if (scene.fault.kind != Fault::kValuesIncomparable) return {};
  const auto is = [&](const char* type, const char* other) {
    return scene.fault.type.beginsWith(type) && scene.fault.otherType.beginsWith(other);
  };
  if (is("string", "datetime") || is("datetime", "string")) {
    std::string literal = scene.word(scene.at);
    if (literal.size() > 1 && literal.front() == '\'') literal = literal.substr(1, literal.size() - 2);
    return scene.here("a datetime is written '" + Scene::dateTimeOf(literal) + "'");
  }
  if (!is("string", "") && !is("", "string")) return {};
  return scene.here("compare text with text in single quotes, and numbers with numbers");
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

// --- the table -----------------------------------------------------------------------

struct Rule {
  const char* name;
  Answer (*answer)(const Scene& scene);
};
constexpr Rule kRules[] = {
    {"curly-quote", curlyQuote},
    {"open-quote", openQuote},
    {"double-quote", doubleQuote},
    {"missing-blank", missingBlank},
    {"null-comparison", comparisonWithNull},
    {"late-not", lateNot},
    {"group-by", groupBy},
    {"foreign-word", foreignWord},
    {"comment", comment},
    {"double-equals", doubleEquals},
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
    {"half-association", halfAssociation},
    {"missing-value", missingValue},
    {"missing-element", missingElement},
    {"incomparable", incomparable},
    {"property-meant", propertyMeant},
    {"class-meant", classMeant},
};

}  // namespace

QORQL_Hint QORQL_hintOf(const QORQL_Fault& fault, std::string_view text, const QORQL_KnownNames& names) {
  if (!fault.hasPlace()) return {};
  const Scene scene(fault, text, names);
  for (const Rule& rule : kRules) {
    if (const Answer found = rule.answer(scene)) {
      return {rule.name, found->text, static_cast<QORuint32>(std::min(found->offset, text.size()))};
    }
  }
  return {};
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
