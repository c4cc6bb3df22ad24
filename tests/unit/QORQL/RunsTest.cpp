// Sums and sorts of values that are read in runs of rows.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "QueryWorld.h"
#include "RunsWorld.h"

namespace {

using Strings = std::vector<std::string>;

using Runs = RunsWorld;

TEST_F(Runs, AggregatesOfEveryKind) {
  for (const char* const property : {"u", "s", "r", "k", "g"}) {
    const std::string p = property;
    const std::string query = "SELECT COUNT(" + p + ") AS c, MIN(" + p + ") AS low, MAX(" + p + ") AS high, SUM(" + p +
                              ") AS total, AVG(" + p + ") AS mean FROM N";
    EXPECT_EQ(world.error(query), "") << query;
    EXPECT_EQ(world.error(query + " WHERE u = 999"), kNullAggregate) << query;
  }
  EXPECT_EQ(world.rows("SELECT COUNT(t) AS n, COUNT(b) AS m FROM N"), (Strings{"150|150"}));
  EXPECT_EQ(world.rows("SELECT MAX(k) AS most, MIN(s) AS least, SUM(s) + 1 AS more FROM N"), (Strings{"150|-149|-74"}));
  for (const char* const wrong : {"t", "b"}) {
    EXPECT_EQ(world.error(std::string("SELECT COUNT(k) AS n, SUM(") + wrong + ") AS x FROM N").rfind("runtime 6", 0),
              0U);
  }
  EXPECT_EQ(world.error("SELECT SUM(a) AS x, COUNT(k) AS n FROM N"), kNullAggregate);  // NULL in all rows
}

TEST(RunSums, WhereTheNumbersEnd) {
  QueryWorld world(R"(
    class C { [key] uint32 k; uint64 u; sint64 s; real32 r; };
    instance of C { k = 1; u = 18446744073709551615; s = 9223372036854775807; r = 0.1; };
    instance of C { k = 2; u = 0; s = 1; r = 0.1; };
    instance of C { k = 3; u = 1; s = -9223372036854775808; r = -3; };
  )");
  EXPECT_EQ(world.rows("SELECT SUM(u) AS a FROM C WHERE k < 3"), (Strings{"18446744073709551615"}));
  EXPECT_EQ(world.error("SELECT SUM(u) AS a, COUNT(u) AS n FROM C"), kNullAggregate);  // fits no 64-bit type
  EXPECT_EQ(world.rows("SELECT SUM(s) AS a FROM C WHERE k < 3"), (Strings{"9223372036854775808"}));
  EXPECT_EQ(world.rows("SELECT SUM(s) AS a FROM C WHERE k <> 1"), (Strings{"-9223372036854775807"}));
  EXPECT_EQ(world.error("SELECT MIN(r) AS a, MAX(r) AS b, SUM(r) AS c FROM C"), "");
  EXPECT_EQ(world.error("SELECT MAX(u) AS a FROM C"), "");
}

TEST_F(Runs, SortsOfEveryKindBothWays) {
  for (const char* const key : {"u", "s", "r", "t", "g", "u - 50", "k * 2", "-s", "b"}) {
    for (const char* const order : {"ASC", "DESC"}) {
      world.run("SELECT k FROM N WHERE k < 150 ORDER BY " + std::string(key) + " " + order);
      world.run("SELECT FIRST 3 k FROM N WHERE k < 150 ORDER BY " + std::string(key) + " " + order);
    }
  }
  world.run("SELECT k FROM N ORDER BY u ASC");  // one key is NULL
}

}  // namespace
