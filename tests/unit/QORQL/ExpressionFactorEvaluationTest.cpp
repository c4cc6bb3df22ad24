// One condition of WHERE: filtering and joining tables.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "WhereWorld.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using FiltersAndJoins = WhereWorld;

TEST_F(FiltersAndJoins, NotKeepsTheRowsWhereTheComparisonIsFalse) {
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE NOT K = 10"), ElementsAre("2"));
  EXPECT_THAT(world.rows("SELECT Id FROM A WHERE NOT K = 10 AND Id = 2"), ElementsAre("2"));
}

TEST_F(FiltersAndJoins, AConditionWithoutClassHoldsForAllRowsOrNone) {
  EXPECT_THAT(world.rows("SELECT A.Id, C.Id FROM A, C WHERE 1 = 1"),
              ElementsAre("1|1", "1|2", "2|1", "2|2", "3|1", "3|2"));
  EXPECT_THAT(world.rows("SELECT A.Id, C.Id FROM A, C WHERE 1 = 2"), IsEmpty());
}

TEST_F(FiltersAndJoins, EqualityJoinKeepsTheOrderOfTheProduct) {
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K = B.K"), ElementsAre("1|2", "2|1", "2|3"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM B, A WHERE A.K = B.K"), ElementsAre("2|1", "1|2", "2|3"));
}

TEST_F(FiltersAndJoins, OtherRelationsJoinToo) {
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K < B.K"), ElementsAre("1|1", "1|3"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K <> B.K"), ElementsAre("1|1", "1|3", "2|2"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K + 10 = B.K"), ElementsAre("1|1", "1|3"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K - B.K = 0"), ElementsAre("1|2", "2|1", "2|3"));
}

TEST_F(FiltersAndJoins, ThreeClassesJoinInTheOrderOfTheProduct) {
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id, C.Id FROM A, B, C WHERE A.K = C.K"),
              ElementsAre("2|1|1", "2|2|1", "2|3|1", "2|4|1"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id, C.Id FROM A, B, C WHERE A.K = C.K AND B.K = A.K"),
              ElementsAre("2|1|1", "2|3|1"));
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id, C.Id FROM A, B, C WHERE A.K < C.K AND B.Id = 1"),
              ElementsAre("1|1|1", "1|1|2", "2|1|2"));
}

TEST_F(FiltersAndJoins, MismatchedKeysRaiseTheErrorOfTheFirstPair) {
  EXPECT_THAT(world.error("SELECT A.Id, B.Id FROM A, B WHERE A.Text = B.K"), HasSubstr("CIM_Value: "));
}

TEST_F(FiltersAndJoins, NothingIsEvaluatedOverNoRows) {
  EXPECT_THAT(world.rows("SELECT E.Id FROM E WHERE Id LIKE 'x'"), IsEmpty());
}

TEST(ExpressionFactor, WhatIsNoComparisonIsRefused) {
  QORQL_SymbolTable symbols(nullptr);
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  QORQL_ExpressionFactor factor(QORSmrPtr<QORQL_Evaluatable>(), QORQL_OperatorNONE, "", "");
  try {
    factor.evaluate(symbols, table, "root/cimv2");
    FAIL();
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getCode(), 3U);
    EXPECT_EQ(error.getMessage(), "Unable to evaluate the expression - comparison object was NULL");
  }
}

TEST(ExpressionFactor, AnotherOperatorDoesNothing) {
  QORQL_SymbolTable symbols(nullptr);
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  QORQL_ExpressionFactor factor(QORSmrPtr<QORQL_Evaluatable>(), QORQL_OperatorPLUS, "", "");
  factor.evaluate(symbols, table, "root/cimv2");
  EXPECT_EQ(table->getRowCount(), 0U);
}

}  // namespace
