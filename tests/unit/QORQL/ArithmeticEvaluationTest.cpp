// Sums and products on one row.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "EvaluationWorld.h"

namespace {

using ArithmeticEvaluation = EvaluationWorld;

using testing::HasSubstr;

TEST_F(ArithmeticEvaluation, ChainsGroupToTheRight) {
  EXPECT_EQ(value("10 - 4 - 3"), "9");
  EXPECT_EQ(value("8 / 4 / 2"), "4");
  EXPECT_EQ(value("U8 - U32 - 1"), "4");
  EXPECT_EQ(value("2 * 3 + 4 * 5"), "26");
  EXPECT_EQ(value("(2 + 3) * 4"), "20");
}

TEST_F(ArithmeticEvaluation, StringsAddAndNothingElse) {
  EXPECT_EQ(value("'ab' + 'cd'"), "abcd");
  EXPECT_EQ(value("S + T"), "abcdefcde");
  EXPECT_EQ(value("'ab' + 1"), "NULL");
  EXPECT_EQ(value("1 + 'ab'"), "NULL");
  EXPECT_EQ(value("'ab' - 'a'"), "NULL");
  EXPECT_EQ(value("'ab' * 'a'"), "NULL");
  EXPECT_EQ(value("B + 1"), "NULL");
}

TEST_F(ArithmeticEvaluation, NullOperandsGiveNull) {
  EXPECT_EQ(value("Absent + 1"), "NULL");
  EXPECT_EQ(value("1 - Absent"), "NULL");
  EXPECT_EQ(value("Absent * 2"), "NULL");
  EXPECT_EQ(value("-Absent"), "NULL");
}

TEST_F(ArithmeticEvaluation, DivisionByZeroIsTheValueLibrarysError) {
  EXPECT_THAT(error("1 / (U32 - 7) = 1"), HasSubstr("CIM_Value: "));
}

}  // namespace
