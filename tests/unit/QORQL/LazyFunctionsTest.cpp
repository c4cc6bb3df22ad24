// Row functions over lazy rows: what is computed at once, what is left to the reader, and what makes rows.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "ProjectionWorld.h"

namespace {

using testing::ElementsAre;

struct LazyFunctions : Projection {
  // Whether the projected rows do not exist yet.
  bool isLazy(const char* statement) {
    EXPECT_EQ(world.error(statement), "");
    return tableOf(statement, QORQL_DataTable::kExecutionLazy)->lazy() != nullptr;
  }
};

TEST_F(LazyFunctions, LeaveTheRowsToTheReader) {
  EXPECT_TRUE(isLazy("SELECT OBJECTPATH(X) AS A FROM X"));
  EXPECT_TRUE(isLazy("SELECT Id, OBJECTPATH(X) AS A, INSTANCEOF(X) AS B FROM X ORDER BY Id * 0 DESC"));
  EXPECT_TRUE(isLazy("SELECT X.Id, OBJECTPATH(Y) AS A, INSTANCEOF(X) IS NULL AS B FROM X, Y WHERE X.Id > 1"));
  EXPECT_TRUE(isLazy("SELECT X.*, OBJECTPATH(X) AS A FROM X"));
}

TEST_F(LazyFunctions, MakeRowsWhereNamesCannotTellThemApart) {
  EXPECT_FALSE(isLazy("SELECT OBJECTPATH(X) AS A, INSTANCEOF(X) AS A FROM X"));
  EXPECT_FALSE(isLazy("SELECT *, OBJECTPATH(X) AS A FROM X"));
  EXPECT_FALSE(isLazy("SELECT Id, OBJECTPATH(VALUES) AS A FROM X AS VALUES"));
}

TEST_F(LazyFunctions, HaveTheRowsThatThePlainWayHas) {
  EXPECT_EQ(shapeOf("SELECT X.P, OBJECTPATH(X) AS Way, INSTANCEOF(X) AS Whole FROM X"),
            "[VALUES/ X/X] X{P} VALUES{WAY,WHOLE}");
  for (const char* const statement :
       {"SELECT Id, OBJECTPATH(X) AS A FROM X ORDER BY A DESC", "SELECT INSTANCEOF(X) AS W, Id FROM X ORDER BY W ASC",
        "SELECT INSTANCEOF(X) AS W, OBJECTPATH(X) AS A FROM X WHERE Id > 9",
        "SELECT FIRST 2 OBJECTPATH(X) AS A, Id FROM X ORDER BY Id DESC",
        "SELECT OBJECTPATH(Y) AS A, OBJECTPATH(X) AS B, INSTANCEOF(Y) AS C FROM X, Y ORDER BY X.Id * -1 ASC",
        "SELECT Id, OBJECTPATH(X) LIKE Name AS A FROM X", "SELECT OBJECTPATH(X) ISA XX AS A, Extra FROM X"}) {
    world.run(statement);
  }
}

TEST_F(LazyFunctions, FollowTheRowsOfASort) {
  EXPECT_THAT(world.rows("SELECT Id, OBJECTPATH(X) AS A, OBJECTPATH(X) > 'root/cimv2:X.Id=1' AS B FROM X "
                         "WHERE Id <> 3 ORDER BY Id DESC"),
              ElementsAre("4|root/cimv2:X.Id=4|TRUE", "2|root/cimv2:X.Id=2|TRUE", "1|root/cimv2:X.Id=1|FALSE"));
}

}  // namespace
