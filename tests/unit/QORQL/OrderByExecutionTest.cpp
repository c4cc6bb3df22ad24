// ORDER BY at work: between the two runs of the select list.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ProjectionWorld.h"
#include "QueryWorld.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct OrderBy : Projection {};

TEST_F(OrderBy, AscendingAndDescending) {
  EXPECT_THAT(world.rows("SELECT Id FROM X WHERE P IS NOT NULL ORDER BY P ASC"), ElementsAre("1", "4", "2"));
  EXPECT_THAT(world.rows("SELECT Id FROM X WHERE P IS NOT NULL ORDER BY P DESC"), ElementsAre("2", "4", "1"));
  EXPECT_THAT(world.rows("SELECT Id FROM X ORDER BY Name ASC"), ElementsAre("1", "3", "4", "2"));
}

TEST_F(OrderBy, EqualKeysComeOutReversed) {
  EXPECT_THAT(world.rows("SELECT Id FROM X ORDER BY 1 ASC"), ElementsAre("4", "3", "2", "1"));
  EXPECT_THAT(world.rows("SELECT Id FROM X ORDER BY 1 DESC"), ElementsAre("4", "3", "2", "1"));
}

TEST_F(OrderBy, TheKeyMayBeAnAliasOrAnExpression) {
  EXPECT_THAT(world.rows("SELECT Id, 0 - P AS Neg FROM X WHERE P IS NOT NULL ORDER BY neg ASC"),
              ElementsAre("2|-30", "4|-20", "1|-10"));
  EXPECT_THAT(world.rows("SELECT Id AS P FROM X ORDER BY P DESC"), ElementsAre("4", "3", "2", "1"));
  EXPECT_THAT(world.rows("SELECT Id FROM X ORDER BY Id * -1 ASC"), ElementsAre("4", "3", "2", "1"));
  EXPECT_THAT(world.rows("SELECT Id FROM X ORDER BY OBJECTPATH(X) DESC"), testing::SizeIs(4));
}

TEST_F(OrderBy, ANullKeyFailsTheSortOfTwoRows) {
  EXPECT_EQ(world.error("SELECT Id FROM X ORDER BY P ASC"), "runtime 3: Caught an exception while sorting the data.");
  EXPECT_THAT(world.rows("SELECT Id FROM X WHERE Id = 3 ORDER BY P ASC"), ElementsAre("3"));
  EXPECT_THAT(world.rows("SELECT Id FROM None ORDER BY P ASC"), IsEmpty());
}

TEST_F(OrderBy, ANameThatCannotBeBoundFailsTheSort) {
  EXPECT_EQ(world.error("SELECT Id FROM X ORDER BY Nope ASC"),
            "runtime 3: Caught an exception while sorting the data.");
}

TEST_F(OrderBy, ArraysAndMixedTypes) {
  EXPECT_EQ(world.error("SELECT Id FROM X ORDER BY Flag + 1 ASC"),
            "runtime 3: Caught an exception while sorting the data.");
}

}  // namespace
