// Conditions on one class that are decided for runs of rows.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "RunsWorld.h"

namespace {

using Strings = std::vector<std::string>;

using LazyFilter = RunsWorld;

TEST_F(LazyFilter, EveryRelationOfEveryKindWithALiteral) {
  for (const char* const relation : {"=", "<>", "<", ">", "<=", ">="}) {
    for (const char* const side : {"u # 50", "u # 50.5", "s # 0", "s # -20", "s # 99.5", "r # 10.25", "r # 3",
                                   "t # 'text5'", "50 # u", "b # 'true'", "u # s", "t # t", "k # u", "a # 3"}) {
      std::string condition = side;
      condition.replace(condition.find('#'), 1, relation);
      EXPECT_EQ(world.error("SELECT k FROM N WHERE " + condition), "") << condition;
      EXPECT_EQ(world.error("SELECT k FROM N WHERE NOT " + condition + " AND g = 3"), "") << condition;
    }
  }
}

TEST_F(LazyFilter, NullTestsAndSearches) {
  EXPECT_EQ(world.rows("SELECT k FROM N WHERE u IS NULL"), (Strings{"150"}));
  EXPECT_EQ(world.rows("SELECT k FROM N WHERE t IS NOT NULL").size(), 150U);
  EXPECT_EQ(world.rows("SELECT k FROM N WHERE k < 150 AND t LIKE 'xt12'").size(), 11U);
}

TEST_F(LazyFilter, AnErrorBehindWholeRunsIsTheErrorOfItsRow) {
  EXPECT_NE(world.error("SELECT k FROM N WHERE t LIKE 'text'"), "");  // the last row's t is NULL
  EXPECT_NE(world.error("SELECT k FROM N WHERE k > 70 AND b = 'maybe'"), "");
  EXPECT_EQ(world.error("SELECT k FROM N WHERE k = 150 AND b = 'maybe'"), "");  // NULL is compared with nothing
  EXPECT_NE(world.error("SELECT k FROM M WHERE more = 3"), "");
}

TEST_F(LazyFilter, ObjectsOfSeveralClassesInOneColumn) {
  EXPECT_EQ(world.rows("SELECT k, t FROM M WHERE s < -10").size(), 10U);
  EXPECT_EQ(world.rows("SELECT M.* FROM M WHERE k < 2"),
            (Strings{"0|-20|-20.5|0|text0|NULL", "1|-19|-19.5|11|text1|NULL"}));
}

}  // namespace
