// Keys of numbers that stand in the order of the numbers.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>

#include "Cimom/QORQL/Lazy/QORQL_NumberOrder.h"
#include "NumberViews.h"

namespace {

// The keys in ascending order of the numbers; empty when they have none.
std::vector<QORuint64> keysOf(const std::vector<QoriScalar>& numbers) {
  QORQL_NumberOrder order;
  std::vector<QORuint64> keys;
  for (const QoriScalar& one : numbers) keys.push_back(order.note(one));
  if (!order.isUniform()) return {};
  for (QORuint64& key : keys) key = order.keyOf(key);
  return keys;
}

TEST(NumberOrder, KeysStandAsTheNumbersDo) {
  const auto ascends = [](const std::vector<QORuint64>& keys) {
    return !keys.empty() && std::is_sorted(keys.begin(), keys.end()) &&
           std::adjacent_find(keys.begin(), keys.end()) == keys.end();
  };
  EXPECT_TRUE(ascends(keysOf({number(0ULL), number(7ULL), number(~0ULL)})));
  EXPECT_TRUE(ascends(keysOf({number(-9LL), number(-1LL), number(0ULL), number(1LL), number(2ULL)})));
  EXPECT_TRUE(ascends(keysOf({number(-1e300), number(-1.5), number(0.0), number(1e-300), number(2.0), number(1e300)})));
  const std::vector<QORuint64> zeros = keysOf({number(-0.0), number(0.0)});
  EXPECT_EQ(zeros[0], zeros[1]);
}

TEST(NumberOrder, MixedNumbersHaveNone) {
  EXPECT_TRUE(keysOf({number(1ULL), number(1.0)}).empty());
  EXPECT_TRUE(keysOf({number(-1LL), number(~0ULL)}).empty());
  EXPECT_TRUE(keysOf({number(1.0), number(0.0 / 0.0 * 0.0)}).empty());
}

}  // namespace
