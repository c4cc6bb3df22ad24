// The lexical rules as regular expressions, and the words and signs by their texts.
// SPDX-License-Identifier: Apache-2.0
#include "ScannerModel.h"

#include <regex>
#include <unordered_map>

namespace {

constexpr int kEnd = 0;
// What is done with a match that makes no token.
constexpr int kSkip = -1;
constexpr int kOpenString = -2;
constexpr int kEcho = -3;
// A token whose type is its character.
constexpr int kCharacter = -4;
constexpr int kString = 278;
constexpr int kIdentifier = 277;
constexpr int kDecimal = 279;
constexpr int kReal = 280;
// A keyword, an identifier or a sign.
constexpr int kWord = -5;

// What a whole word in capitals, or a sign, is.
const std::unordered_map<std::string, int> kTypes = {{"SELECT", 257},
                                                     {"FROM", 258},
                                                     {"WHERE", 259},
                                                     {"AND", 271},
                                                     {"OR", 272},
                                                     {"NOT", 273},
                                                     {"LOCAL", 282},
                                                     {"GLOBAL", 283},
                                                     {"FORMAT", 284},
                                                     {"AS", 285},
                                                     {"XML", 286},
                                                     {"HTML", 287},
                                                     {"CSV", 288},
                                                     {"TRUE", 281},
                                                     {"FALSE", 281},
                                                     {"LIKE", 291},
                                                     {"IS", 295},
                                                     {"NULL", 296},
                                                     {"ISA", 297},
                                                     {"ANY", 301},
                                                     {"EVERY", 302},
                                                     {"IN", 303},
                                                     {"SATISFIES", 304},
                                                     {"FIRST", 305},
                                                     {"ASC", 306},
                                                     {"DESC", 307},
                                                     {"BY", 308},
                                                     {"ORDER", 309},
                                                     {"DISTINCT", 310},
                                                     {"CLASSQUALIFIER", 311},
                                                     {"PROPERTYQUALIFIER", 312},
                                                     {"*=*", 294},
                                                     {"*=", 292},
                                                     {"=*", 293},
                                                     {"*", 260},
                                                     {"=", 261},
                                                     {"!=", 262},
                                                     {"<>", 262},
                                                     {"<", 263},
                                                     {"<=", 264},
                                                     {">", 265},
                                                     {">=", 266},
                                                     {"~", 267},
                                                     {"+", 268},
                                                     {"-", 269},
                                                     {"/", 270},
                                                     {",", 274},
                                                     {"(", 275},
                                                     {")", 276},
                                                     {"[", 299},
                                                     {"]", 300},
                                                     {".", 290},
                                                     {"::", 298}};

// The rules that match most come first, which decides nothing: no two match the same text but the last one, which
// takes what no other takes.
struct Rule {
  std::regex pattern;
  int type;
};

const std::vector<Rule>& rules() {
  static const std::vector<Rule> theRules = {
      {std::regex("[ \\t]+|\\n"), kSkip},
      {std::regex("[A-Za-z_][A-Za-z0-9_]*"), kWord},
      {std::regex("\\*=\\*|\\*=|=\\*|!=|<>|<=|>=|::|[*=<>~+/,()\\[\\].-]"), kWord},
      {std::regex("'[^'\\n]*'"), kString},
      {std::regex("'[^'\\n]*\\n"), kOpenString},
      {std::regex("[0-9]+"), kDecimal},
      {std::regex("[0-9]+\\.[0-9]+([eE]-?[0-9]+)?"), kReal},
      {std::regex("[!\"#&;{}:]"), kCharacter},
      {std::regex("[^]"), kEcho}};
  return theRules;
}

int typeOfWord(std::string text) {
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  const auto found = kTypes.find(text);
  return found == kTypes.end() ? kIdentifier : found->second;
}

struct Match {
  int type;
  std::string text;
};

Match longestMatch(const std::string& text, std::size_t place) {
  Match longest{kEcho, ""};
  for (const Rule& rule : rules()) {
    std::smatch found;
    const auto begin = text.begin() + static_cast<std::ptrdiff_t>(place);
    if (!std::regex_search(begin, text.end(), found, rule.pattern, std::regex_constants::match_continuous)) continue;
    if (static_cast<std::size_t>(found.length()) > longest.text.size()) longest = {rule.type, found.str()};
  }
  return longest;
}

std::string withoutEnds(const std::string& text, char end) {
  std::size_t first = 0;
  std::size_t last = text.size();
  while (first < last && text[first] == end) ++first;
  while (first < last && text[last - 1] == end) --last;
  return text.substr(first, last - first);
}

ModelToken tokenOf(const Match& match, unsigned line, std::size_t output) {
  if (match.type == kCharacter) return {static_cast<unsigned char>(match.text[0]), match.text, line, output};
  const std::string text = match.type == kString ? match.text.substr(1, match.text.size() - 2) : match.text;
  const int type = match.type == kWord ? typeOfWord(match.text) : match.type;
  return {type, withoutEnds(text, '"'), line, output};
}

}  // namespace

ModelScan scanByModel(const std::string& text) {
  ModelScan scan;
  unsigned line = 1;
  std::size_t place = 0;
  while (place < text.size()) {
    const Match match = longestMatch(text, place);
    place += match.text.size();
    for (const char c : match.text) line += c == '\n' ? 1 : 0;
    if (match.type == kOpenString) {
      --place;  // the newline is read again, and counted again
      scan.output += "unterminated string in line 1 ((null)).\n";
    } else if (match.type == kEcho) {
      scan.output += match.text;
    } else if (match.type != kSkip) {
      scan.tokens.push_back(tokenOf(match, line, scan.output.size()));
    }
  }
  scan.tokens.push_back({kEnd, std::string(1, '\0'), line, scan.output.size()});
  return scan;
}
