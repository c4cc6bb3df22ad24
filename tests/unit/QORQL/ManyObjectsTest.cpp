// Over so many objects that cells are read ahead of their reader, both ways of running still show the same.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <random>
#include <string>

#include "tests/support/QueryRun.h"

namespace {

constexpr int kObjects = 5000;

std::string randomDate(std::mt19937& random) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04u%02u%02u%02u%02u%02u.%06u+%03u",
                static_cast<unsigned>(2000 + random() % 30), static_cast<unsigned>(1 + random() % 12),
                static_cast<unsigned>(1 + random() % 28), static_cast<unsigned>(random() % 24),
                static_cast<unsigned>(random() % 60), static_cast<unsigned>(random() % 60),
                static_cast<unsigned>(random() % 1000000), static_cast<unsigned>(random() % 3 * 60));
  return text.data();
}

// A class and a subclass, mixed, with a property that half of the objects lack; and a class of few objects.
std::string model() {
  std::mt19937 random(7);
  std::string mof =
      "class A { [key] uint32 K; uint32 X; string S; datetime D; sint32 H; };\n"
      "class AA : A { uint8 W; };\nclass B { [key] uint32 K; string S; };\n";
  for (int i = 0; i < kObjects; ++i) {
    mof += random() % 3 == 0 ? "instance of AA" : "instance of A";
    mof += " { K = " + std::to_string(i) + "; X = " + std::to_string(random() % kObjects) + "; S = \"a text, number " +
           std::to_string(random() % 700) + "\"; D = \"" + randomDate(random) + "\";";
    if (random() % 2 == 0) mof += " H = " + std::to_string(static_cast<int>(random() % 100) - 50) + ";";
    mof += " };\n";
  }
  for (int i = 0; i < 20; ++i) {
    mof += "instance of B { K = " + std::to_string(3 * i) + "; S = \"b" + std::to_string(i) + "\"; };\n";
  }
  return mof;
}

struct ManyObjects : testing::Test {
  static void SetUpTestSuite() { world = new QueryRun(model()); }
  static void TearDownTestSuite() { delete world; }
  static void expectSame(const std::string& query) {
    const QueryOutcome plain = world->runIn(query, QORQL_DataTable::kExecutionPlain, false);
    EXPECT_FALSE(plain.rows.empty()) << query << ": " << plain.error;
    EXPECT_TRUE(world->runIn(query, QORQL_DataTable::kExecutionLazy, false) == plain) << query;
  }
  static QueryRun* world;
};

QueryRun* ManyObjects::world = nullptr;

TEST_F(ManyObjects, AreReadInOrder) {
  expectSame("SELECT K, X, S, D, H FROM A");
  expectSame("SELECT * FROM A");
  expectSame("SELECT OBJECTPATH(A) AS P, D FROM A WHERE X < 100");
  expectSame("SELECT COUNT(K) AS C, MIN(X) AS M, MAX(H) AS G, SUM(X) AS T, AVG(H) AS V FROM A");
}

TEST_F(ManyObjects, AreReadInTheOrderOfASort) {
  expectSame("SELECT K, S FROM A ORDER BY X ASC");
  expectSame("SELECT K, D FROM A ORDER BY D DESC");
  expectSame("SELECT FIRST 4500 K, S FROM A ORDER BY S ASC");
}

TEST_F(ManyObjects, AreReadBesideThoseOfAJoin) {
  expectSame("SELECT A.K, B.S, A.D FROM A, B WHERE A.X = B.K");
  expectSame("SELECT A.K, B.S FROM A, B WHERE A.X *= B.K");
  expectSame("SELECT A.S, B.S FROM A, B WHERE A.X =* B.K");
  expectSame("SELECT A.K, B.K, A.S FROM A, B WHERE A.X < B.K");
}

TEST_F(ManyObjects, AreFiltered) {
  expectSame("SELECT K, S, X + H AS N FROM A WHERE X > 1000 AND H < 10 ORDER BY X ASC");
  expectSame("SELECT K, W FROM AA WHERE S LIKE '7'");
  expectSame("SELECT A.K, A.S FROM A WHERE A ISA AA");
}

}  // namespace
