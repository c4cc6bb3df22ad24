// The select list at work: kept properties, the order of headers and cells, functions.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ProjectionWorld.h"
#include "QueryWorld.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST_F(Projection, CellsKeepOnlyWhatIsSelected) {
  EXPECT_EQ(shapeOf("SELECT X.P, X.Name FROM X"), "[X/X] X{P,Name}");
  EXPECT_EQ(shapeOf("SELECT a.P FROM X AS a"), "[X/A] X{P}");
  EXPECT_EQ(shapeOf("SELECT P + 1 AS Q2 FROM X"), "[X/X] X{P}");
  EXPECT_EQ(shapeOf("SELECT X.P + Y.Q AS Sum2 FROM X, Y"), "[Y/Y X/X] X{P} Y{Q}");
  EXPECT_EQ(shapeOf("SELECT X.P, Y.* FROM X, Y"), "[Y/Y X/X] X{P} Y{Id,Q}");
  EXPECT_EQ(shapeOf("SELECT X FROM X"), "[X/X] X{Id,P,S,R,Name,Big,Small,Flag}");
  EXPECT_EQ(shapeOf("SELECT * FROM Y, X"), "[X/X Y/Y] Y{Id,Q} X{Id,P,S,R,Name,Big,Small,Flag}");
}

TEST_F(Projection, FunctionsAreInAPseudoObjectWhoseColumnIsFirstAndCellLast) {
  EXPECT_EQ(shapeOf("SELECT X.P, OBJECTPATH(X) AS OP FROM X"), "[VALUES/ X/X] X{P} VALUES{OP}");
  EXPECT_EQ(shapeOf("SELECT OBJECTPATH(X) AS OP FROM X"), "[VALUES/] VALUES{OP}");
  EXPECT_THAT(world.rows("SELECT X.P, OBJECTPATH(X) AS OP FROM X WHERE Id = 2"), ElementsAre("30|root/cimv2:X.Id=2"));
}

TEST_F(Projection, WhatTheSortKeyNeedsIsDroppedByTheSecondRun) {
  EXPECT_EQ(shapeOf("SELECT X.Name FROM X, Y WHERE P IS NOT NULL ORDER BY X.P + Y.Q ASC"), "[X/X] X{Name}");
}

TEST_F(Projection, AClassNamedOnlyBySelectIsAnUnknownSymbol) {
  EXPECT_EQ(world.error("SELECT Y.Q FROM X"), "runtime 4: Invalid symbol specified in the select clause -'Y'");
}

TEST_F(Projection, ColumnNames) {
  EXPECT_THAT(world.run("SELECT X.Id, Y.Id, P AS price, X.Name FROM X, Y").columns,
              ElementsAre("X.Id", "Y.Id", "PRICE", "Name"));
}

TEST_F(Projection, StarWithAnotherEntryIsNoSelectAll) {
  const QueryOutcome outcome = world.run("SELECT *, P FROM X");
  EXPECT_EQ(outcome.rows.size(), 4U);
  const QueryOutcome all = world.run("SELECT P, * FROM X");
  EXPECT_EQ(all.columns.size(), 10U);  // P, eight of X, Extra
}

TEST_F(Projection, FirstLimitsTheStreamAndNotTheTable) {
  const QueryOutcome outcome = world.run("SELECT FIRST 2 Id FROM X");
  EXPECT_THAT(outcome.rows, ElementsAre("1", "2"));
  EXPECT_EQ(outcome.tableRows, 4U);
  EXPECT_THAT(world.run("SELECT FIRST 0 Id FROM X").rows, IsEmpty());
  EXPECT_EQ(world.run("SELECT FIRST 9 Id FROM X").rows.size(), 4U);
}

TEST_F(Projection, InstanceOfFetchesTheWholeInstanceOncePerRow) {
  const QueryOutcome outcome = world.run("SELECT X.Id, INSTANCEOF(X) AS I FROM X WHERE X.Id = 3 ORDER BY X.Id ASC");
  ASSERT_EQ(outcome.rows.size(), 1U);
  EXPECT_THAT(outcome.rows.front(), HasSubstr("Extra"));
  world.manager().resetStatistics();
  world.runIn("SELECT INSTANCEOF(X) AS I, X.Id FROM X ORDER BY X.Id ASC", QORQL_DataTable::kExecutionLazy);
  EXPECT_EQ(world.manager().statistics().getInstanceCalls, 4U);
  world.manager().resetStatistics();
  world.runIn("SELECT INSTANCEOF(X) AS I, X.* FROM X", QORQL_DataTable::kExecutionLazy);
  EXPECT_EQ(world.manager().statistics().getInstanceCalls, 0U);  // everything is there already
}

}  // namespace
