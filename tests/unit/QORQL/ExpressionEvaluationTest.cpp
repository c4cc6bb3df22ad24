// OR, AND and NOT on one row, and over a table.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "EvaluationWorld.h"
#include "WhereWorld.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using ExpressionEvaluation = EvaluationWorld;
using Conditions = WhereWorld;

TEST_F(ExpressionEvaluation, LogicalOperatorsHaveNoValueOnOneRow) {
  EXPECT_EQ(value("COUNT(U8 = 10)"), "1");
  EXPECT_EQ(value("COUNT(U8 = 10 OR 1 = 1)"), "0");
  EXPECT_EQ(value("COUNT(U8 = 10 AND 1 = 1)"), "0");
  EXPECT_EQ(value("COUNT(NOT U8 = 10)"), "0");
}

TEST_F(Conditions, OrIsDecidedByItsLastOperand) {
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE K = 10 OR K = 20"), ElementsAre("2"));
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE K = 10 OR K = 20 OR Id = 3"), ElementsAre("3"));
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE K = 10 OR K = 20 AND Id = 3"), IsEmpty());
}

TEST_F(Conditions, ErrorsOfTheOtherOperandsStillHappen) {
  EXPECT_EQ(world.error("SELECT Id FROM A WHERE Id LIKE 'x' OR K = 20"),
            "runtime 6: Invalid data type specified for LIKE operator");
}

TEST_F(Conditions, TheRightOperandOfOrRunsFirst) {
  EXPECT_THAT(world.error("SELECT Id FROM A WHERE Id LIKE 'x' OR 1 / (Id - 1) = 1"), HasSubstr("CIM_Value"));
}

TEST_F(Conditions, AndIsSuccessiveFiltering) {
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE K > 5 AND K < 15"), ElementsAre("1"));
  // The second condition is not evaluated on rows that are gone.
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE Id > 1 AND 1 / (Id - 1) = 1"), ElementsAre("2"));
}

}  // namespace
