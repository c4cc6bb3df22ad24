// Texts by chance for the models of the grammar: soups of tokens, and statements with damage.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_GRAMMARTEXT_H
#define QORQL_TESTS_GRAMMARTEXT_H

#include <cstdint>
#include <random>
#include <string>
#include <vector>

// The names that statements are made of.
struct Vocabulary {
  std::vector<std::string> classes;
  std::vector<std::string> properties;
  std::vector<std::string> aliases;
};

// The same seed gives the same texts.
class GrammarText {
 public:
  GrammarText(std::uint32_t seed, Vocabulary vocabulary) : _random(seed), _vocabulary(std::move(vocabulary)) {}

  void setVocabulary(Vocabulary vocabulary) { _vocabulary = std::move(vocabulary); }
  // Anything: tokens, parts of tokens and bytes that no token begins with.
  std::string soup();
  // A statement; in so many of a hundred some tokens are dropped, doubled, swapped or others.
  std::string statement(unsigned damaged);

  unsigned below(unsigned limit) { return static_cast<unsigned>(_random() % limit); }
  bool chance(unsigned percent) { return below(100) < percent; }

 private:
  const std::string& anyOf(const std::vector<std::string>& texts) {
    return texts[below(static_cast<unsigned>(texts.size()))];
  }
  void put(const std::string& token) { _tokens.push_back(token); }
  void name(const std::vector<std::string>& names);
  void fromName();
  void damage();
  std::string joined();
  void selectList();
  void entry(bool isAggregate);
  void from();
  void where();
  void conditions(unsigned terms);
  void association();
  void comparison(int depth);
  void arithmetic(int depth);
  void factor(int depth);
  void call(const char* function, int depth);
  void reference();
  void scopedReference();
  void index();
  void literal();
  void orderBy();
  void format();

  std::minstd_rand _random;
  Vocabulary _vocabulary;
  std::vector<std::string> _tokens;
  std::vector<std::string> _from;  // the names of FROM, decided before the select list is made
  bool _isCondition = false;
};

#endif
