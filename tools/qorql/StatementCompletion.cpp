// The text is cut into words up to the cursor; the last keyword of a clause
// among them says what may come.
#include "StatementCompletion.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace {

constexpr std::array<const char*, 4> kClauses{"SELECT", "FROM", "WHERE", "ORDER"};
constexpr std::array<const char*, 7> kFunctions{"AVG(", "COUNT(", "INSTANCEOF(", "MAX(", "MIN(", "OBJECTPATH(", "SUM("};

bool isNameCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

std::string upper(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return result;
}

// Names as they are, signs one by one, text literals as a quote, keywords in capitals.
struct Words {
  std::vector<std::string> words;
  bool isInLiteral = false;  // the text ends inside one
};

Words cutWords(std::string_view text) {
  Words result;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t start = i;
    if (isNameCharacter(text[i])) {
      while (i < text.size() && isNameCharacter(text[i])) ++i;
      result.words.emplace_back(text.substr(start, i - start));
    } else if (text[i] == '\'') {
      const std::size_t end = text.find_first_of("'\n", i + 1);
      result.isInLiteral = end == std::string_view::npos;
      i = result.isInLiteral ? text.size() : end + 1;
      result.words.emplace_back("'");
    } else {
      if (std::isspace(static_cast<unsigned char>(text[i])) == 0) result.words.emplace_back(1, text[i]);
      ++i;
    }
  }
  return result;
}

bool isClause(const std::string& word) {
  return std::find(kClauses.begin(), kClauses.end(), upper(word)) != kClauses.end();
}

struct FromName {
  std::string className;
  std::string alias;
};

// The classes that the text's FROM clause names so far.
std::vector<FromName> fromNames(const std::vector<std::string>& words) {
  std::vector<FromName> names;
  auto word = std::find_if(words.begin(), words.end(), [](const std::string& w) { return upper(w) == "FROM"; });
  if (word == words.end()) return names;
  for (++word; word != words.end() && isNameCharacter(word->front()); ++word) {
    names.push_back({*word, {}});
    const bool hasAlias = words.end() - word > 2 && upper(word[1]) == "AS";
    if (hasAlias) {
      word += 2;
      names.back().alias = *word;
    }
    if (++word == words.end() || *word != ",") break;
  }
  return names;
}

class Completer {
 public:
  Completer(const EmbeddedObjectManager& manager, const std::string& nameSpace, std::vector<FromName> from)
      : _manager(manager), _nameSpace(nameSpace), _from(std::move(from)) {}

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
    for (const FromName& name : _from) {
      words.push_back(name.className);
      if (!name.alias.empty()) words.push_back(name.alias);
      add(words, propertiesOf(name.className));
    }
    return words;
  }

  // Of a class, an alias, or a class that FROM does not name.
  std::vector<std::string> propertiesOf(const std::string& qualifier) const {
    std::string className = qualifier;
    for (const FromName& name : _from) {
      if (upper(name.alias) == upper(qualifier)) className = name.className;
    }
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
  std::vector<FromName> _from;
};

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
  while (found.start != 0 && isNameCharacter(text[found.start - 1])) --found.start;
  const Words before = cutWords(text.substr(0, found.start));
  if (before.isInLiteral) return found;
  const std::string_view typed = text.substr(found.start, cursor - found.start);
  const Completer completer(manager, nameSpace, fromNames(cutWords(text).words));
  found.words = startingWith(completer.next(before.words), typed);
  followCase(found.words, typed);
  return found;
}
