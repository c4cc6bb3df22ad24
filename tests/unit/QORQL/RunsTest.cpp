// Rows that are read in runs, and keys and sums that are kept as bare numbers:
// what they give is what the plain algorithm gives, beyond one run, at its
// edges, and where the numbers end.
#include <gtest/gtest.h>

#include "QueryWorld.h"

namespace {

using Strings = std::vector<std::string>;

constexpr char kNullAggregate[] = "parse 15 line 0: Aggregate functions must contain a valid expression.";

constexpr char kClasses[] = R"(
class N { [key] uint32 k; uint64 u; sint64 s; real64 r; string t; boolean b; uint16 g; uint16 a[]; };
class M { [key] uint32 k; sint64 s; real64 r; uint64 u; string t; };
class Sub : M { uint32 more; };
class Z { [key] uint32 k; };
)";

// 150 rows: two whole runs and a part of one.
std::string model() {
  std::string mof = kClasses;
  for (int i = 0; i < 150; ++i) {
    const std::string k = std::to_string(i);
    const std::string odd = i % 2 != 0 ? "-" : "";
    mof += "instance of N { k = " + k + "; u = " + std::to_string(i * 37 % 101) + "; s = " + odd + k + "; r = " + odd +
           std::to_string(i / 4) + ".25; t = \"text" + std::to_string(i * 7 % 13) +
           "\"; b = " + (i % 3 == 0 ? "TRUE" : "FALSE") + "; g = " + std::to_string(i % 5) + "; };\n";
  }
  mof += "instance of N { k = 150; };\n";
  for (int i = 0; i < 40; ++i) {
    const std::string k = std::to_string(i);
    mof += "instance of " + std::string(i % 3 == 0 ? "Sub" : "M") + " { k = " + k + "; s = " + std::to_string(i - 20) +
           "; r = " + std::to_string(i - 20) + ".5; u = " + std::to_string(i * 11) + "; t = \"text" +
           std::to_string(i) + "\"; };\n";
  }
  return mof;
}

struct Runs : testing::Test {
  QueryWorld world{model()};
};

TEST_F(Runs, everyRelationOfEveryKindWithALiteral) {
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

TEST_F(Runs, nullTestsAndSearches) {
  EXPECT_EQ(world.rows("SELECT k FROM N WHERE u IS NULL"), (Strings{"150"}));
  EXPECT_EQ(world.rows("SELECT k FROM N WHERE t IS NOT NULL").size(), 150U);
  EXPECT_EQ(world.rows("SELECT k FROM N WHERE k < 150 AND t LIKE 'xt12'").size(), 11U);
}

TEST_F(Runs, anErrorBehindWholeRunsIsTheErrorOfItsRow) {
  EXPECT_NE(world.error("SELECT k FROM N WHERE t LIKE 'text'"), "");  // the last row's t is NULL
  EXPECT_NE(world.error("SELECT k FROM N WHERE k > 70 AND b = 'maybe'"), "");
  EXPECT_EQ(world.error("SELECT k FROM N WHERE k = 150 AND b = 'maybe'"), "");  // NULL is compared with nothing
  EXPECT_NE(world.error("SELECT k FROM M WHERE more = 3"), "");
}

TEST_F(Runs, joinsByEveryRelationAndKind) {
  for (const char* const relation : {"=", "<>", "<", ">", "<=", ">=", "*=", "=*", "*=*"}) {
    for (const char* const sides : {"N.u # M.u", "N.s # M.s", "N.u # M.s", "N.s # M.u", "N.r # M.r", "N.s # M.r",
                                    "N.t # M.t", "M.s # N.s", "M.r # N.u", "N.u # M.t"}) {
      std::string condition = sides;
      condition.replace(condition.find('#'), 1, relation);
      world.run("SELECT N.k, M.k FROM N, M WHERE N.k > 140 AND " + condition);
      world.run("SELECT N.k, M.k FROM N, M WHERE N.k > 140 AND M.k > 30 AND " + condition);
    }
  }
}

// Keys that most rows share, so that a run of rows has more pairs than rows; keys that come late, and wrong ones that
// do.
TEST(RunJoins, manyPairsAndKeysBehindWholeRuns) {
  std::string mof =
      "class A { [key] uint32 k; uint16 g; string late; string text; uint32 n; uint32 a[]; };\n"
      "class B { [key] uint32 k; uint16 g; string text; uint32 n; };\n";
  for (int i = 0; i < 140; ++i) {
    const std::string k = std::to_string(i);
    const std::string common = "; g = " + std::to_string(i % 3 == 0 ? 7 : i) + "; text = \"a text of some length " +
                               std::to_string(i % 5) + "\"; n = " + k + ";";
    mof += "instance of A { k = " + k + common + (i < 130 ? "" : " late = \"" + std::to_string(i) + "\"; a = {1};") +
           " };\n";
    if (i % 2 == 0) mof += "instance of B { k = " + k + common + " };\n";
  }
  QueryWorld world(mof);
  for (const char* const relation : {"=", "*=", "=*", "*=*"}) {
    for (const char* const sides :
         {"A.g # B.g", "B.text # A.text", "A.n + 1 # B.n", "A.late # B.n", "B.n # A.late", "A.a # B.n"}) {
      std::string condition = sides;
      condition.replace(condition.find('#'), 1, relation);
      world.run("SELECT A.k, B.k FROM A, B WHERE " + condition);
      world.run("SELECT A.k, B.k FROM B, A WHERE " + condition);
    }
  }
  EXPECT_EQ(world.rows("SELECT A.k, B.k FROM A, B WHERE A.text = B.text").size(), 140U * 14U);
}

TEST_F(Runs, outerJoinsOfNothing) {
  for (const char* const condition : {"M.k = 99 AND N.k *= M.k", "M.k = 99 AND N.k =* M.k", "N.k = 999 AND N.k *= M.k",
                                      "N.k = 999 AND N.k =* M.k", "N.k > 148 AND M.k > 38 AND N.k *=* M.k"}) {
    world.run(std::string("SELECT N.k, M.k FROM N, M WHERE ") + condition);
  }
  world.run("SELECT N.k FROM N, Z WHERE N.k *= Z.k");
}

TEST_F(Runs, aggregatesOfEveryKind) {
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

TEST(RunSums, whereTheNumbersEnd) {
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

TEST_F(Runs, sortsOfEveryKindBothWays) {
  for (const char* const key : {"u", "s", "r", "t", "g", "u - 50", "k * 2", "-s", "b"}) {
    for (const char* const order : {"ASC", "DESC"}) {
      world.run("SELECT k FROM N WHERE k < 150 ORDER BY " + std::string(key) + " " + order);
      world.run("SELECT FIRST 3 k FROM N WHERE k < 150 ORDER BY " + std::string(key) + " " + order);
    }
  }
  world.run("SELECT k FROM N ORDER BY u ASC");  // one key is NULL
}

TEST_F(Runs, objectsOfSeveralClassesInOneColumn) {
  EXPECT_EQ(world.rows("SELECT k, t FROM M WHERE s < -10").size(), 10U);
  EXPECT_EQ(world.rows("SELECT M.* FROM M WHERE k < 2"),
            (Strings{"0|-20|-20.5|0|text0|NULL", "1|-19|-19.5|11|text1|NULL"}));
}

}  // namespace
