// Statements are made clause by clause as lists of tokens, damaged, and then written with white space by chance.
// SPDX-License-Identifier: Apache-2.0
#include "GrammarText.h"

namespace {

const std::vector<std::string> kPieces = {"select",
                                          "FROM",
                                          "Where",
                                          "*=*",
                                          "*=",
                                          "=*",
                                          "*",
                                          "=",
                                          "!=",
                                          "<>",
                                          "<",
                                          ">",
                                          "<=",
                                          ">=",
                                          "~",
                                          "+",
                                          "-",
                                          "/",
                                          "and",
                                          "OR",
                                          "Not",
                                          ",",
                                          "(",
                                          ")",
                                          "[",
                                          "]",
                                          "local",
                                          "global",
                                          "format",
                                          "as",
                                          "xml",
                                          "html",
                                          "csv",
                                          ".",
                                          "true",
                                          "FALSE",
                                          "like",
                                          "is",
                                          "null",
                                          "isa",
                                          "::",
                                          ":",
                                          "any",
                                          "every",
                                          "in",
                                          "satisfies",
                                          "first",
                                          "asc",
                                          "desc",
                                          "by",
                                          "order",
                                          "distinct",
                                          "classqualifier",
                                          "propertyqualifier",
                                          "'",
                                          "''",
                                          "'text'",
                                          "'\"q\"'",
                                          "\"",
                                          "'open",
                                          "\n",
                                          "\r\n",
                                          " ",
                                          "\t",
                                          "0",
                                          "12",
                                          "3.25",
                                          "1.5e-3",
                                          "1.5E",
                                          "e7",
                                          "e",
                                          "x",
                                          "_a1",
                                          "isnull",
                                          "selected",
                                          "!",
                                          "#",
                                          "&",
                                          ";",
                                          "{",
                                          "}",
                                          "$",
                                          "%",
                                          "@",
                                          "\\",
                                          "\x01",
                                          "\x7F",
                                          "\x80",
                                          "\xC3\xA4",
                                          "\xFF",
                                          "?",
                                          "|",
                                          "^",
                                          "`"};

const std::vector<std::string> kOperators = {"=",  "=",  "=",    "<>", "!=", "<",  ">",
                                             "<=", ">=", "LIKE", "*=", "=*", "*=*"};
const std::vector<std::string> kLiterals = {
    "0",          "7",          "127",        "128",        "255",
    "256",        "32767",      "32768",      "65535",      "65536",
    "2147483647", "2147483648", "4294967295", "4294967296", "9223372036854775808",
    "1.5",        "2.50",       "1.25e-3",    "3.0E2",      "TRUE",
    "false",      "'text'",     "''",         "'\"q'",      "'5'"};

}  // namespace

std::string GrammarText::soup() {
  std::string text;
  for (unsigned count = below(14); count > 0; --count) {
    text += chance(8) ? std::string(1, static_cast<char>(below(256))) : anyOf(kPieces);
    if (chance(25)) text += anyOf({" ", "\n", "\t", "  "});
  }
  return text;
}

std::string GrammarText::statement(unsigned damaged) {
  _tokens.clear();
  _from.clear();
  for (unsigned count = 1 + (chance(45) ? 1 + below(2) : 0); count > 0; --count) {
    _from.push_back(anyOf(_vocabulary.classes));
    _from.push_back(chance(40) ? anyOf(_vocabulary.aliases) : "");
  }
  _isCondition = false;
  selectList();
  from();
  _isCondition = true;
  if (chance(60)) where();
  if (chance(35)) orderBy();
  if (chance(10)) format();
  if (chance(damaged)) damage();
  return joined();
}

void GrammarText::damage() {
  for (unsigned count = 1 + below(3); count > 0 && !_tokens.empty(); --count) {
    const auto place = _tokens.begin() + below(static_cast<unsigned>(_tokens.size()));
    switch (below(5)) {
      case 0:
        _tokens.erase(place);
        break;
      case 1:
        _tokens.insert(place, std::string(*place));
        break;
      case 2:
        std::swap(*place, _tokens[below(static_cast<unsigned>(_tokens.size()))]);
        break;
      case 3:
        *place = anyOf(kPieces);
        break;
      default:
        _tokens.erase(place, chance(50) ? _tokens.end() : place + 1);
    }
  }
}

std::string GrammarText::joined() {
  std::string text;
  for (const std::string& token : _tokens) {
    text += token;
    text += chance(80) ? " " : chance(60) ? "\n" : chance(85) ? "\t\n " : "";
  }
  return text;
}

// Names ignore case, so half of them are written in another one.
void GrammarText::name(const std::vector<std::string>& names) {
  std::string text = anyOf(names);
  if (chance(30)) text[0] = static_cast<char>(text[0] ^ 0x20);
  put(text);
}

void GrammarText::fromName() {
  const std::string& name = anyOf(_from);
  if (name.empty() || chance(2)) return this->name(chance(50) ? _vocabulary.classes : _vocabulary.aliases);
  this->name({name});
}

void GrammarText::selectList() {
  put("SELECT");
  if (chance(10)) {
    put("FIRST");
    put(chance(90) ? anyOf({"5", "0", "'3'", "'-2'"}) : anyOf({"x", "1.5", "''"}));
  }
  const bool isAggregate = chance(15);
  for (unsigned count = 1 + below(3);; put(",")) {
    entry(isAggregate != chance(2));
    if (--count == 0) return;
  }
}

void GrammarText::entry(bool isAggregate) {
  if (!isAggregate && chance(12)) return put("*");
  if (isAggregate) {
    call(anyOf({"COUNT", "min", "MAX", "SUM", "Avg"}).c_str(), 1);
  } else if (chance(60)) {
    reference();
    if (chance(70)) return;
  } else {
    comparison(2);
  }
  if (chance(2)) return;
  put("AS");
  name(chance(70) ? _vocabulary.aliases : _vocabulary.properties);
}

void GrammarText::from() {
  put("FROM");
  for (std::size_t i = 0; i < _from.size(); i += 2) {
    if (i > 0) put(",");
    put(_from[i]);
    if (_from[i + 1].empty()) continue;
    put("AS");
    put(_from[i + 1]);
  }
}

void GrammarText::where() {
  put("WHERE");
  conditions(1 + below(2));
}

void GrammarText::conditions(unsigned terms) {
  for (;; put(chance(60) ? "AND" : "OR")) {
    if (chance(15)) {
      association();
    } else {
      if (chance(12)) put("NOT");
      comparison(chance(30) ? 2 : 1);
    }
    if (--terms == 0) return;
  }
}

void GrammarText::association() {
  const std::string tie = anyOf(_vocabulary.classes);
  for (int side = 0; side < 2; ++side) {
    if (side == 1) put(chance(92) ? "AND" : "OR");
    const bool isReference = chance(25);
    put(tie);
    if (isReference) {
      put(".");
      put(anyOf({"firstref", "secondref", "firstRef"}));
    }
    put(chance(75) ? "=" : anyOf(kOperators));
    if (chance(30)) {
      call("OBJECTPATH", 0);
    } else {
      fromName();
    }
  }
}

void GrammarText::comparison(int depth) {
  if (chance(10)) put(anyOf({"ANY", "EVERY"}));
  arithmetic(depth);
  if (chance(12)) return;
  if (chance(12)) {
    put("IS");
    if (chance(40)) put("NOT");
    return put("NULL");
  }
  if (chance(10)) {
    put("ISA");
    if (chance(15)) return literal();
    return name(_vocabulary.classes);
  }
  put(anyOf(kOperators));
  if (chance(10)) put(anyOf({"ANY", "EVERY"}));
  arithmetic(depth);
}

void GrammarText::arithmetic(int depth) {
  factor(depth);
  while (chance(20)) {
    put(anyOf({"+", "-", "*", "/", "-"}));
    factor(depth);
  }
}

void GrammarText::factor(int depth) {
  if (depth > 0 && chance(10)) {
    put("(");
    comparison(depth - 1);
    return put(")");
  }
  if (chance(6)) {
    put("-");
    return factor(depth);
  }
  if (depth > 0 && chance(10)) {
    const bool isAny = _isCondition || chance(10);
    return call((isAny ? anyOf({"COUNT", "max", "Objectpath", chance(20) ? std::string("NOPE") : std::string("Sum")})
                       : anyOf({"OBJECTPATH", "InstanceOf"}))
                    .c_str(),
                depth - 1);
  }
  if (chance(30)) return literal();
  reference();
}

void GrammarText::call(const char* function, int depth) {
  put(function);
  put("(");
  if (chance(65)) {
    fromName();
  } else if (chance(60)) {
    reference();
  } else if (chance(90)) {
    conditions(1 + below(2) * static_cast<unsigned>(depth > 0));
  }
  if (chance(3)) {
    put(",");
    reference();
  }
  put(")");
}

void GrammarText::reference() {
  if (chance(25)) {
    chance(85) ? name(_vocabulary.properties) : fromName();
    return index();
  }
  if (chance(15)) return scopedReference();
  fromName();
  index();
  put(".");
  if (chance(8)) return put("*");
  if (chance(5)) return put(anyOf({"firstref", "secondref", "SecondRef"}));
  name(chance(90) ? _vocabulary.properties : _vocabulary.classes);
  index();
  while (chance(8)) {
    put(".");
    name(_vocabulary.properties);
    index();
  }
}

void GrammarText::scopedReference() {
  if (chance(50)) {
    chance(40) ? fromName() : name(_vocabulary.properties);
    put(".");
    if (chance(25)) {
      name(_vocabulary.properties);
      put(".");
    }
  }
  name(_vocabulary.classes);
  put("::");
  name(chance(92) ? _vocabulary.properties : _vocabulary.classes);
  index();
}

void GrammarText::index() {
  if (!chance(_isCondition ? 5 : 1) || (!_isCondition && chance(80))) return;
  put("[");
  if (chance(80)) put(anyOf({"0", "3", "*", "*", "x"}));
  if (chance(96)) put("]");
}

void GrammarText::literal() { put(anyOf(kLiterals)); }

void GrammarText::orderBy() {
  put("ORDER");
  if (chance(97)) put("BY");
  if (chance(40)) {
    name(chance(60) ? _vocabulary.aliases : _vocabulary.properties);
  } else {
    arithmetic(1);
  }
  if (chance(96)) put(anyOf({"ASC", "desc", "'Desc'"}));
}

void GrammarText::format() {
  put("FORMAT");
  put("AS");
  put(anyOf({"XML", "html", "Csv", "QORIOBJECT"}));
}
