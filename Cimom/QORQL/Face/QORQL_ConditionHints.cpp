// Hints about conditions and the values they compare.
// Tested by tests/unit/QORQL/HintTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <string>
#include <string_view>

#include "Cimom/QORQL/Face/QORQL_HintRules.h"

namespace QORQL_HintRules {

namespace {

constexpr char kNoNot[] = "a condition under NOT never matches in a filter: ask with =, <>, <, <=, > or >=";

// The parenthesis that closes the one which encloses a piece; the number of pieces when none does.
std::size_t closingAfter(const Scene& scene, std::size_t piece) {
  std::size_t depth = 0;
  for (; piece < scene.pieces.all().size(); ++piece) {
    if (scene.is(piece, "(")) ++depth;
    if (scene.is(piece, ")") && depth-- == 0) break;
  }
  return piece;
}

// Whether OR joins what stands in these parentheses with another condition.
bool isSideOfOr(const Scene& scene, std::size_t open, std::size_t inside) {
  const std::size_t where = scene.find("WHERE");
  const std::size_t before = where == kNowhere ? kNowhere : scene.find("OR", where);
  return (before != kNowhere && before < open) || scene.find("OR", closingAfter(scene, inside)) != kNowhere;
}

std::string inObject(const Scene& scene) {
  return scene.fault.object.isEmpty() ? "" : " in " + textOf(scene.fault.object);
}

}  // namespace

// Where NULL is asked for, and where it is no value.
Answer comparisonWithNull(const Scene& scene) {
  if (!scene.isSyntax() || !scene.is(scene.at, "NULL") || scene.at == 0) return {};
  const bool isFirst = scene.isOneOf(scene.at - 1, "WHERE", "AND", "OR", "NOT", "(");
  const std::size_t sign = isFirst ? scene.at + 1 : scene.at - 1;
  const bool isUnequal = scene.isOneOf(sign, "<>", "!=");
  if (!isUnequal && !scene.is(sign, "=")) return {};
  const std::size_t place = scene.offsetOf(isFirst ? scene.at : sign);
  if (scene.isFilter) return Scene::Found{"a condition on NULL never matches in a filter: leave it out", place};
  const std::string operand = isFirst ? scene.operandFrom(sign + 1) : scene.operandBefore(sign);
  return Scene::Found{"test for NULL with IS: " + operand + (isUnequal ? " IS NOT NULL" : " IS NULL"), place};
}

Answer lateNot(const Scene& scene) {
  if (!scene.isSyntax() || !scene.is(scene.at, "NOT") || scene.at == 0) return {};
  if (!scene.isOneOf(scene.at + 1, "LIKE", "ISA", "ANY", "EVERY")) return {};
  if (scene.isFilter) return scene.here(kNoNot);
  return scene.here("NOT goes before the comparison: NOT " + scene.operandBefore(scene.at) + " " +
                    scene.operandFrom(scene.at + 1));
}

Answer doubleEquals(const Scene& scene) {
  const bool isHere = scene.isSyntax() && scene.is(scene.at, "=") && scene.pieces.isJoined(scene.at);
  if (!isHere || !scene.is(scene.at - 1, "=")) return {};
  return Scene::Found{"equality is written with one =", scene.offsetOf(scene.at - 1)};
}

// Signs that other languages have: =>, &&, || and !>.
Answer foreignSign(const Scene& scene) {
  if (!scene.isSyntax() || scene.at == 0) return {};
  const std::size_t at = scene.at;
  const auto answer = [&](std::size_t piece, const std::string& hint) {
    return Scene::Found{"there is no " + hint, scene.offsetOf(piece)};
  };
  if (scene.isOneOf(at, "<", ">") && scene.is(at - 1, "=") && scene.pieces.isJoined(at)) {
    return answer(at - 1, "=" + scene.word(at) + ": write " + scene.word(at) + "=");
  }
  if (scene.is(at, "!") && scene.isOneOf(at + 1, "<", ">") && scene.pieces.isJoined(at + 1)) {
    return answer(at, "!" + scene.word(at + 1) + (scene.is(at + 1, "<") ? ": write >=" : ": write <="));
  }
  if (scene.is(at, "&") && scene.is(at + 1, "&")) return answer(at, "&&: write AND");
  // The scanner passes over ||, so that the fault stands behind it.
  if (at < 2 || !scene.is(at - 1, "|") || !scene.is(at - 2, "|")) return {};
  return answer(at - 2, scene.isFilter ? "||, and OR never matches in a filter: use one filter for each side"
                                       : "||: run one statement for each side");
}

Answer exclamationMark(const Scene& scene) {
  if (!scene.isSyntax() || !scene.is(scene.at, "!")) return {};
  if (scene.isFilter) return scene.here(kNoNot);
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

// Only a comparison may stand in parentheses; AND joins as it is, and what OR would add is a statement of its own.
Answer parenthesis(const Scene& scene) {
  const bool isAnd = scene.is(scene.at, "AND");
  if (scene.fault.kind != Fault::kParenthesisOpen || (!isAnd && !scene.is(scene.at, "OR"))) return {};
  const std::size_t open = scene.openingBefore(scene.at);
  if (open == kNowhere) return {};
  const bool isNegated = open > 0 && scene.is(open - 1, "NOT");
  if (scene.isFilter && isNegated) return scene.here(kNoNot);
  const std::string start = "only one comparison may stand in parentheses: ";
  const std::string run = scene.isFilter ? "use one filter " : "run one statement ";
  if (isSideOfOr(scene, open, scene.at)) return scene.here(start + run + "for each side of OR");
  std::size_t end = scene.at + 1;
  while (end < scene.pieces.all().size() && !scene.isOneOf(end, ")", "AND", "OR", "(")) ++end;
  const bool isWhole = scene.is(end, ")");
  const std::string left = isWhole ? scene.slice(scene.offsetOf(open) + 1, scene.offset) : "a";
  const std::string right = isWhole ? scene.slice(scene.offsetOf(scene.at + 1), scene.offsetOf(end)) : "b";
  if (isAnd && !isNegated) return scene.here(start + "write " + left + " AND " + right);
  if (!isAnd && isNegated) return scene.here(start + "write NOT " + left + " AND NOT " + right);
  const std::string second = isAnd ? left + " AND NOT " + right : right;
  return scene.here(start + run + "with " + (isAnd ? "NOT " : "") + left + " and one with " + second);
}

// Either paths should be compared, or the other half is missing.
Answer halfAssociation(const Scene& scene) {
  if (scene.fault.kind != Fault::kHalfAssociation) return {};
  const std::size_t where = scene.find("WHERE");
  const std::size_t path = scene.find("OBJECTPATH", where == kNowhere ? 0 : where);
  if (scene.isFilter) {
    return Scene::Found{"a filter asks one instance at a time: it has no associations",
                        path == kNowhere ? scene.offset : scene.offsetOf(path)};
  }
  if (path == kNowhere) {
    return scene.here("write both ends of an association side by side: Link = a AND Link = b");
  }
  return Scene::Found{
      "OBJECTPATH(a) = OBJECTPATH(b) is read as half an association: compare the keys, as in a.Name = b.Name",
      scene.offsetOf(path)};
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
  const auto isAny = [&](const char* type) { return is(type, "") || is("", type); };
  const bool isTruth = scene.isOneOf(scene.at, "TRUE", "FALSE");
  if (isAny("boolean") || isTruth)
    return scene.here("TRUE and FALSE compare with booleans only, and booleans with them");
  if (isAny("datetime")) {
    std::string literal = scene.word(scene.at);
    if (literal.size() > 1 && literal.front() == '\'') literal = literal.substr(1, literal.size() - 2);
    return scene.here("a datetime is written '" + Scene::dateTimeOf(literal) + "'");
  }
  if (!isAny("string")) return {};
  return scene.here("compare text with text in single quotes, and numbers with numbers");
}

}  // namespace QORQL_HintRules
