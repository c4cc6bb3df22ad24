// Outer joins: which objects without a partner get rows, and in which order.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "QueryWorld.h"
#include "WhereWorld.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

using OuterJoins = WhereWorld;

TEST_F(OuterJoins, LeftOuterJoinAddsARowForEachLeftObjectWhoseFirstRowFails) {
  const std::vector<std::string> rows = world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K *= B.K");
  ASSERT_EQ(rows.size(), 5U);
  EXPECT_THAT(std::vector<std::string>(rows.begin(), rows.begin() + 3), ElementsAre("1|2", "2|1", "2|3"));
  // A 1 matches B 2, but its row with B 1 came first and failed.
  EXPECT_THAT(std::vector<std::string>(rows.begin() + 3, rows.end()), UnorderedElementsAre("1|NULL", "3|NULL"));
}

TEST_F(OuterJoins, LeftOuterJoinWithEveryFirstRowMatchingAddsNothing) {
  EXPECT_THAT(world.rows("SELECT A.Id, C.Id FROM A, C WHERE A.Id *= C.Id AND A.Id = 1"), ElementsAre("1|1"));
}

TEST_F(OuterJoins, RightOuterJoinAddsRightObjectsWithoutAnyMatch) {
  const std::vector<std::string> rows = world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K =* B.K");
  EXPECT_THAT(rows, ElementsAre("1|2", "2|1", "2|3", "NULL|4"));
}

TEST_F(OuterJoins, FullOuterJoinAddsLeftRowsBeforeRightRows) {
  const std::vector<std::string> rows = world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K *=* B.K");
  ASSERT_EQ(rows.size(), 6U);
  EXPECT_EQ(rows.back(), "NULL|4");
  EXPECT_THAT(rows, Contains("3|NULL"));
}

TEST_F(OuterJoins, LeftOuterJoinWithAnEmptyClassKeepsEveryLeftObject) {
  EXPECT_THAT(world.rows("SELECT A.Id, E.Id FROM A, E WHERE A.K *= E.K"),
              UnorderedElementsAre("1|NULL", "2|NULL", "3|NULL"));
  EXPECT_THAT(world.rows("SELECT A.Id, E.Id FROM A, E WHERE E.K *= A.K"), IsEmpty());
}

// Objects of one bucket of the map by path stand in the order of their first rows,
// though the last rows of some come behind those of others.
TEST(OuterRows, OfOneBucketStandInTheOrderOfTheirFirstRows) {
  std::string mof =
      "class A { [key] uint32 Id; uint32 K; }; class B { [key] uint32 Id; uint32 K; };"
      "instance of A { Id = 1; K = 1; }; instance of A { Id = 2; K = 1; };";
  QORValMap<QORString, QORuint32> byPath(hashKeyQORString, 150);
  for (QORuint32 id = 1; id <= 300; ++id) {
    mof += "instance of B { Id = " + std::to_string(id) + "; K = 2; };";
    byPath.insert(QORString("root/cimv2:B.Id=" + std::to_string(id)), id);
  }
  std::vector<std::string> expected;
  QORValMapIterator<QORString, QORuint32> paths(byPath);
  while (++paths) expected.push_back(std::to_string(paths.value()));
  EXPECT_EQ(QueryWorld(mof).rows("SELECT B.Id FROM A, B WHERE A.Id * B.Id <= 300 AND A.K =* B.K"), expected);
}

TEST_F(OuterJoins, AnEmptyTableGetsNoOuterRows) {
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.Id = 99 AND A.K *= B.K"), IsEmpty());
}

TEST_F(OuterJoins, AnOuterRowIsNullInAThirdClassToo) {
  EXPECT_THAT(world.rows("SELECT A.Id, B.Id, C.Id FROM A, B, C WHERE A.K =* B.K AND B.Id IS NOT NULL"),
              ElementsAre("1|2|1", "1|2|2", "2|1|1", "2|1|2", "2|3|1", "2|3|2", "NULL|4|NULL"));
}

TEST_F(OuterJoins, AnOuterJoinWhoseSidesNameNoSingleClassUsesTheFirstColumn) {
  // Both sides' bookkeeping is on column 0: A 2 and A 3 never match, A 1 does in one of its rows.
  const std::vector<std::string> rows = world.rows("SELECT A.Id, B.Id FROM A, B WHERE A.K + B.K *= 20");
  EXPECT_THAT(rows, UnorderedElementsAre("1|2", "1|NULL", "2|NULL", "3|NULL"));
}

TEST_F(OuterJoins, NotBeforeAnOuterJoinKeepsTheRowsThatFail) {
  const std::vector<std::string> rows = world.rows("SELECT A.Id, C.Id FROM A, C WHERE NOT A.K *= C.K");
  EXPECT_THAT(rows, Contains("1|1"));
  EXPECT_THAT(rows, Not(Contains("2|1")));
}

}  // namespace
