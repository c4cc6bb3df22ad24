// Joins of every relation and kind, with more pairs than a run has rows.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "QueryWorld.h"
#include "RunsWorld.h"

namespace {

using LazyJoin = RunsWorld;

TEST_F(LazyJoin, JoinsByEveryRelationAndKind) {
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
TEST(RunJoins, ManyPairsAndKeysBehindWholeRuns) {
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

TEST_F(LazyJoin, OuterJoinsOfNothing) {
  for (const char* const condition : {"M.k = 99 AND N.k *= M.k", "M.k = 99 AND N.k =* M.k", "N.k = 999 AND N.k *= M.k",
                                      "N.k = 999 AND N.k =* M.k", "N.k > 148 AND M.k > 38 AND N.k *=* M.k"}) {
    world.run(std::string("SELECT N.k, M.k FROM N, M WHERE ") + condition);
  }
  world.run("SELECT N.k FROM N, Z WHERE N.k *= Z.k");
}

}  // namespace
