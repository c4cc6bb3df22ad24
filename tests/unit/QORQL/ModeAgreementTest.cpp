// Places where rows that are made late could show something else than rows made at once.
#include <gtest/gtest.h>

#include "tests/support/QueryWorld.h"

namespace {

constexpr char kModel[] = R"(
class A { [key] uint32 k; uint32 x; string s; };
class B { [key] uint32 k; uint32 y; uint32 x; };
instance of A { k = 1; x = 10; s = "one"; };
instance of A { k = 2; x = 20; s = "two"; };
instance of B { k = 1; y = 10; x = 1; };
instance of B { k = 5; y = 20; x = 2; };
)";

using Strings = std::vector<std::string>;

TEST(ModeAgreement, TwoColumnsThatShareAnAlias) {
  QueryWorld world(kModel);
  // The name finds A's column, whose objects were fetched without k: no row can be built.
  const QueryOutcome outcome = world.run("SELECT p.k FROM A AS p, B AS p");
  EXPECT_EQ(outcome.tableRows, 0U);
  ASSERT_FALSE(outcome.log.empty());
  EXPECT_EQ(outcome.log.back(), "CQL/1: Caught an exception occured while building the results table.");
}

TEST(ModeAgreement, TheOtherAliasOfARepeatedClassKeepsNoProperties) {
  QueryWorld world(kModel);
  EXPECT_EQ(world.rows("SELECT p.x, q.y FROM B AS p, B AS q"), (Strings{"NULL|10", "NULL|20"}));
}

// The discarded side of OR works on reversed columns, so its null-extended rows
// hold an object of B and none of A.
TEST(ModeAgreement, OuterJoinOfUnclearSidesInADiscardedOperand) {
  QueryWorld world(kModel);
  EXPECT_EQ(world.error("SELECT A.k FROM A, B WHERE A.x + B.y *= A.k + B.k AND A.s LIKE 'q' OR A.k = 1"),
            "runtime 6: Invalid data type specified for LIKE operator");
  EXPECT_EQ(world.error("SELECT A.k FROM A, B WHERE A.k = 1 OR A.x + B.y *= A.k + B.k AND A.s LIKE 'q' OR A.k = 1"),
            "runtime 6: Invalid data type specified for LIKE operator");
}

}  // namespace
