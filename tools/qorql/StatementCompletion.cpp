// The text is cut into words up to the cursor; the last keyword of a clause
// among them says what may come.
// SPDX-License-Identifier: Apache-2.0
#include "StatementCompletion.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "StatementText.h"

namespace {

constexpr std::array<const char*, 4> kClauses{"SELECT", "FROM", "WHERE", "ORDER"};
constexpr std::array<const char*, 7> kFunctions{"AVG(", "COUNT(", "INSTANCEOF(", "MAX(", "MIN(", "OBJECTPATH(", "SUM("};

// Keywords that a word must follow. Names and the other keywords may be followed by a sign: a comma, a dot, a
// semicolon.
constexpr std::array<const char*, 16> kOpenKeywords{"AND", "ANY", "AS",   "BY",  "EVERY", "FIRST", "FORMAT", "FROM",
                                                    "IS",  "ISA", "LIKE", "NOT", "OR",    "ORDER", "SELECT", "WHERE"};

bool isWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

std::string upper(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return result;
}

// Names and signs as they are, whatever a text literal holds.
std::vector<std::string> wordsOf(const StatementText& text) {
  std::vector<std::string> words;
  for (const StatementText::Piece& piece : text.pieces()) words.emplace_back(piece.text);
  return words;
}

bool isClause(const std::string& word) {
  return std::find(kClauses.begin(), kClauses.end(), upper(word)) != kClauses.end();
}

class Completer {
 public:
  Completer(const EmbeddedObjectManager& manager, const std::string& nameSpace, const StatementText& text)
      : _manager(manager), _nameSpace(nameSpace), _text(text) {}

  // What may follow these words.
  std::vector<std::string> next(const std::vector<std::string>& before) const {
    const std::string last = before.empty() ? "" : upper(before.back());
    if (last == "." && before.size() > 1) return propertiesOf(before[before.size() - 2]);
    if (last == "ISA") return classNames(_manager, _nameSpace);
    if (last == "AS")
      return isFormat(before) ? std::vector<std::string>{"CSV", "HTML", "XML"} : std::vector<std::string>{};
    if (last == "IS") return {"NOT", "NULL"};
    if (last == "FORMAT") return {"AS"};
    if (last == "ORDER") return {"BY"};
    return ofClause(before, last);
  }

 private:
  static bool isFormat(const std::vector<std::string>& before) {
    return before.size() > 1 && upper(before[before.size() - 2]) == "FORMAT";
  }

  std::vector<std::string> ofClause(const std::vector<std::string>& before, const std::string& last) const {
    const auto clause = std::find_if(before.rbegin(), before.rend(), isClause);
    if (clause == before.rend()) return {"SELECT"};
    const std::string name = upper(*clause);
    if (name == "FROM") {
      if (last == "FROM" || last == ",") return classNames(_manager, _nameSpace);
      return {"AS", "WHERE", "ORDER", "FORMAT"};
    }
    std::vector<std::string> words = operands();
    if (name == "SELECT") add(words, {"AS", "FIRST", "FROM"});
    if (name == "WHERE") {
      add(words, {"AND", "ANY", "EVERY", "FALSE", "FORMAT", "IS", "ISA", "LIKE", "NOT", "NULL", "OR", "ORDER", "TRUE"});
    }
    if (name == "ORDER") add(words, {"ASC", "DESC", "FORMAT"});
    return words;
  }

  // Functions, and the names that FROM brings.
  std::vector<std::string> operands() const {
    std::vector<std::string> words(kFunctions.begin(), kFunctions.end());
    for (const StatementText::Source& name : _text.sources()) {
      words.push_back(name.className);
      if (!name.alias.empty()) words.push_back(name.alias);
      add(words, propertiesOf(name.className));
    }
    return words;
  }

  // Of a class, an alias, or a class that FROM does not name.
  std::vector<std::string> propertiesOf(const std::string& qualifier) const {
    const std::string known = _text.classOf(qualifier);
    const std::string& className = known.empty() ? qualifier : known;
    std::vector<std::string> words;
    for (const CimPropertyDeclaration& property : _manager.allProperties(QORString(_nameSpace), QORString(className))) {
      words.emplace_back(property.name.view());
    }
    return words;
  }

  static void add(std::vector<std::string>& words, const std::vector<std::string>& more) {
    words.insert(words.end(), more.begin(), more.end());
  }

  const EmbeddedObjectManager& _manager;
  const std::string& _nameSpace;
  const StatementText& _text;
};

bool isOpenKeyword(const std::string& word) {
  return std::find(kOpenKeywords.begin(), kOpenKeywords.end(), upper(word)) != kOpenKeywords.end();
}

bool isKeyword(const std::string& word) {
  return std::all_of(word.begin(), word.end(), [](char c) { return (c >= 'A' && c <= 'Z') || c == '('; });
}

// A keyword that was begun in small letters is completed in them.
void followCase(std::vector<std::string>& words, std::string_view typed) {
  const bool isSmall = !typed.empty() && std::islower(static_cast<unsigned char>(typed.front())) != 0;
  if (!isSmall) return;
  for (std::string& word : words) {
    if (!isKeyword(word)) continue;
    for (char& c : word) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
}

}  // namespace

std::vector<std::string> startingWith(std::vector<std::string> names, std::string_view word) {
  const std::string folded = upper(word);
  std::erase_if(names, [&folded](const std::string& name) { return !upper(name).starts_with(folded); });
  const auto comesFirst = [](const std::string& a, const std::string& b) { return upper(a) < upper(b); };
  std::sort(names.begin(), names.end(), comesFirst);
  const auto isSame = [](const std::string& a, const std::string& b) { return upper(a) == upper(b); };
  names.erase(std::unique(names.begin(), names.end(), isSame), names.end());
  return names;
}

std::vector<std::string> classNames(const EmbeddedObjectManager& manager, const std::string& nameSpace) {
  std::vector<std::string> names;
  for (const QORString& name : manager.classNames(QORString(nameSpace))) names.emplace_back(name.view());
  return names;
}

Completions completeStatement(std::string_view text, std::size_t cursor, const EmbeddedObjectManager& manager,
                              const std::string& nameSpace) {
  Completions found;
  found.start = cursor;
  while (found.start != 0 && isWordCharacter(text[found.start - 1])) --found.start;
  const StatementText before(text.substr(0, found.start));
  if (before.endsInLiteral()) return found;
  const std::string_view typed = text.substr(found.start, cursor - found.start);
  const StatementText whole(text);
  found.words = startingWith(Completer(manager, nameSpace, whole).next(wordsOf(before)), typed);
  followCase(found.words, typed);
  found.hasBlank = found.words.size() == 1 && isOpenKeyword(found.words.front());
  return found;
}
