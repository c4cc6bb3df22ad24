// Aggregates: what they fold, and which type the result has.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_SelectList.h"
#include "ProjectionWorld.h"
#include "QueryWorld.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct Aggregates : Projection {};

TEST_F(Aggregates, CountSkipsNullsAndIsUint64) {
  EXPECT_THAT(world.rows("SELECT COUNT(P) AS N FROM X"), ElementsAre("3"));
  EXPECT_THAT(world.rows("SELECT COUNT(X) AS N FROM X"), ElementsAre("4"));
  EXPECT_THAT(world.rows("SELECT COUNT(Name) AS N FROM X"), ElementsAre("4"));
  EXPECT_THAT(world.run("SELECT COUNT(P) AS N FROM X").stream, HasSubstr("NAME=\"N\" TYPE=\"uint64\""));
}

TEST_F(Aggregates, MinMaxSumAvg) {
  EXPECT_THAT(world.rows("SELECT MIN(P) AS A, MAX(P) AS B, SUM(P) AS C FROM X"), ElementsAre("10|30|60"));
  EXPECT_THAT(world.rows("SELECT MIN(S) AS A, MAX(S) AS B, SUM(S) AS C FROM X"), ElementsAre("-1|3|4"));
  EXPECT_THAT(world.rows("SELECT MIN(R) AS A, MAX(R) AS B, SUM(R) AS C FROM X"), ElementsAre("0.5|1.5|2"));
  EXPECT_THAT(world.rows("SELECT AVG(P) AS A FROM X"), ElementsAre("20"));
  EXPECT_THAT(world.rows("SELECT AVG(R) AS A FROM X"), ElementsAre("1"));
}

TEST_F(Aggregates, TheDivisorOfAvgIsSharedAmongAggregates) {
  EXPECT_THAT(world.rows("SELECT AVG(P) AS A, COUNT(Name) AS N FROM X"),
              ElementsAre("8.571428571428571|4"));  // 60 / (3 + 4)
}

TEST_F(Aggregates, TheFirstValueIsWidenedAndALaterExtremeKeepsItsType) {
  EXPECT_THAT(world.run("SELECT MAX(Small) AS M FROM X WHERE Id = 1").stream, HasSubstr("TYPE=\"uint64\""));
  EXPECT_THAT(world.run("SELECT MAX(Small) AS M FROM X").stream, HasSubstr("TYPE=\"uint8\""));
}

TEST_F(Aggregates, AnArgumentMayBeComputed) {
  EXPECT_THAT(world.rows("SELECT SUM(P * 2) AS D FROM X"), ElementsAre("120"));
  EXPECT_THAT(world.rows("SELECT SUM(-S) AS D FROM X"), ElementsAre("-4"));
}

TEST_F(Aggregates, AnExpressionAroundOneAggregateIsApplied) {
  EXPECT_THAT(world.rows("SELECT MAX(P) / 3 AS M FROM X"), ElementsAre("10"));
  EXPECT_THAT(world.rows("SELECT -SUM(S) AS M FROM X"), ElementsAre("-4"));
  EXPECT_THAT(world.rows("SELECT COUNT(P) > 2 AS M FROM X"), ElementsAre("TRUE"));
  EXPECT_EQ(world.error("SELECT MAX(P) > 2 AS M FROM X"),
            "parse 15 line 0: Aggregate functions must contain an expression that results in a numeric value.");
}

TEST_F(Aggregates, SeveralInOneEntryAreNull) {
  EXPECT_EQ(world.error("SELECT MAX(P) - MIN(P) AS D FROM X"),
            "parse 15 line 0: Aggregate functions must contain a valid expression.");
}

TEST_F(Aggregates, ASumThatFitsNoTypeIsNull) {
  EXPECT_EQ(world.error("SELECT SUM(Big) AS B FROM X"),
            "parse 15 line 0: Aggregate functions must contain a valid expression.");
}

TEST_F(Aggregates, OverNoRowsTheOneRowIsNullAndCannotBeStreamed) {
  const QORSmrPtr<QORQL_DataTable> table(
      tableOf("SELECT COUNT(P) AS N, MAX(P) AS M FROM None", QORQL_DataTable::kExecutionLazy));
  ASSERT_EQ(table->getRowCount(), 1U);
  const QORSmrPtr<IQoriObject> values(table->getRow(0)->getCell(0U));
  EXPECT_EQ(values->getClassName(), "VALUES");
  EXPECT_TRUE(values->getProperty("N", true)->getValue().IsNull());
  EXPECT_EQ(world.error("SELECT COUNT(P) AS N FROM None"),
            "parse 15 line 0: Aggregate functions must contain a valid expression.");
}

TEST_F(Aggregates, OtherTypesAreRefused) {
  EXPECT_EQ(world.error("SELECT MIN(Name) AS M FROM X"),
            "runtime 6: Property data type must be numeric for function MIN");
  EXPECT_EQ(world.error("SELECT SUM(X) AS M FROM X"), "runtime 6: Property data type must be numeric for function SUM");
}

TEST_F(Aggregates, WithoutAliasTheSlotIsNamedAfterFunctionClassAndProperty) {
  QORQL_SelectedEntry entry("CIM_Disk", "Size", "", QORSmrPtr<QORQL_Evaluatable>(),
                            QORQL_SelectedEntry::ClassNameList(), false, true, QORQL_FUNCTIONID_COUNT);
  EXPECT_EQ(QORQL_SelectList::_functionID(entry), "COUNT_CIM_Disk_Size");
}

}  // namespace
