// Statements by chance over the models disks.mof and boxes.mof.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_RANDOMSTATEMENT_H
#define QORQL_TESTS_RANDOMSTATEMENT_H

#include <cstdint>
#include <random>
#include <string>
#include <vector>

// Most parse; many fail while they run, since types are mixed on purpose. The
// same seed gives the same statements.
class RandomStatement {
 public:
  explicit RandomStatement(std::uint32_t seed) : _random(seed) {}

  std::string next();

 private:
  struct Source;

  unsigned below(unsigned limit) { return static_cast<unsigned>(_random() % limit); }
  bool chance(unsigned percent) { return below(100) < percent; }
  const Source& anySource();
  std::string property();
  std::string reference();
  std::string literal();
  std::string operand(int depth);
  std::string comparison();
  std::string arrayComparison();
  std::string join();
  std::string association();
  std::string condition();
  std::string entry(unsigned number);
  std::string aggregate(unsigned number);
  std::string selectList();
  std::string fromClause() const;
  std::string orderClause();

  std::minstd_rand _random;
  std::vector<const Source*> _from;
};

#endif
