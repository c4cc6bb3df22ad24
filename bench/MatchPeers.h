// Filters on one instance: the engine's filter statement, a SQLite statement with
// bound parameters, and a predicate written by hand.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_MATCHPEERS_H
#define QORQL_BENCH_MATCHPEERS_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cimom/IQoriObject.h"
#include "cmpbase.h"

namespace bench {

using Instances = std::vector<QORSmrPtr<IQoriObject>>;

// How many of the five conditions a filter has; they stand in this order:
// Size > x, Status = 2, BlockSize = 512, Load < 0.9, Name <> 'abc'.
enum class Conditions { One = 1, Two = 2, Five = 5 };

// Answers how many of the instances match.
class Matcher {
 public:
  virtual ~Matcher() = default;
  virtual std::uint64_t run(const Instances& instances) = 0;
};

std::unique_ptr<Matcher> makeNativeMatcher(Conditions conditions);
std::unique_ptr<Matcher> makeSqliteMatcher(Conditions conditions);
std::unique_ptr<Matcher> makeEngineMatcher(Conditions conditions);
// Filters with `Size > x AND Status = s`, each with numbers of its own.
std::unique_ptr<Matcher> makeManyFilters(std::size_t count);

// Disks of the current world, at most `count`: those that satisfy all five
// conditions, or those that fail the first one.
Instances matchingDisks(std::size_t count);
Instances missingDisks(std::size_t count);

}  // namespace bench

#endif
