// Expressions as text again, with the grouping that they have.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ExplanationWorld.h"

namespace {

using ExpressionText = ExplanationWorld;

TEST_F(ExpressionText, TextsShowTheGrouping) {
  EXPECT_EQ(condition("Size - 1 - 2 + 3 = 4"), "Size - (1 - (2 + 3)) = 4");
  EXPECT_EQ(condition("Size / 2 * 3 = 1"), "Size / (2 * 3) = 1");
  EXPECT_EQ(condition("Size * 100 / 3 = 1"), "Size * (100 / 3) = 1");
  EXPECT_EQ(condition("Size + 1 - 2 = 4"), "Size + (1 - 2) = 4");
  EXPECT_EQ(condition("Size * 2 * 3 = 4"), "Size * 2 * 3 = 4");
  EXPECT_EQ(condition("Size > -9223372036854775808"), "Size > -9223372036854775808");
  EXPECT_EQ(condition("Size + 1 + 2 * 3 = 4"), "Size + 1 + 2 * 3 = 4");
  EXPECT_EQ(condition("(Size - 1) - 2 = 4"), "(Size - 1) - 2 = 4");
  EXPECT_EQ(condition("-(Size + 1) < -2"), "-(Size + 1) < -2");
  EXPECT_EQ(condition("NOT ANY Ports[*] <> 3"), "NOT ANY Ports[*] <> 3");
  EXPECT_EQ(condition("3 >= EVERY Ports"), "3 >= EVERY Ports");
  EXPECT_EQ(condition("Name IS NOT NULL"), "Name IS NOT NULL");
  EXPECT_EQ(condition("OBJECTPATH(Disk) ISA Host"), "OBJECTPATH(Disk) ISA Host");
  EXPECT_EQ(condition("Kind = 'a b' "), "Kind = 'a b'");
}

TEST_F(ExpressionText, LongChainsAndDeepNestingAreRead) {
  std::string chain = "Size";
  for (int i = 0; i < 50000; ++i) chain += " - 1";
  EXPECT_THAT(condition(chain + " = 1"), testing::EndsWith(")) = 1"));
  EXPECT_THAT(condition(std::string(900, '(') + "Size" + std::string(900, ')') + " = 1"), testing::StartsWith("((("));
}

}  // namespace
