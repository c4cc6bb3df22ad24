// The relation of a run of rows is that of each of its rows.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/Lazy/QORQL_RunRelation.h"
#include "FetchedStatement.h"

namespace {

std::string model() {
  std::string mof = "class A { [key] uint32 Id; uint32 K; sint32 S; sint64 N; string T; };";
  for (int i = 0; i < 64; ++i) {
    const std::string id = std::to_string(i);
    mof += "instance of A { Id = " + id + (i % 5 == 0 ? "" : "; K = " + std::to_string(i % 9)) +
           (i % 2 == 0 ? "" : "; N = " + std::to_string(2 - i % 6)) + "; S = " + std::to_string(i - 30) + "; T = \"" +
           id + "\"; };";
  }
  return mof;
}

struct RunRelation : testing::Test {
  QueryWorld world{model()};
};

TEST_F(RunRelation, IsThatOfEachRow) {
  FetchedStatement fetched(
      "SELECT K, S, T, 4 AS Four, -4 AS Less, 4.5 AS Real, 'x' AS Text, Id, N, "
      "0 AS Zero, 18446744073709551615 AS Greatest FROM A");
  const QORQL_Binder binder(*fetched.table);
  const QORQL_RowBlock& block = fetched.rows().blocks().front();
  int pairs = 0;
  for (QORuint32 l = 0; l < 11; ++l) {
    for (QORuint32 r = 0; r < 11; ++r) {
      const auto leftValue = binder.bindEntry(*fetched.entry(l));
      const auto rightValue = binder.bindEntry(*fetched.entry(r));
      QORQL_RunOperand left(*leftValue);
      QORQL_RunOperand right(*rightValue);
      if (!left.isReadable() || !right.isReadable()) continue;
      ++pairs;
      left.read(block, 0, 64);
      right.read(block, 0, 64);
      for (const QoriRelation relation : {QoriRelation::Equal, QoriRelation::NotEqual, QoriRelation::Less,
                                          QoriRelation::Greater, QoriRelation::LessEqual, QoriRelation::GreaterEqual}) {
        QORQL_RunTruths truths;
        QORQL_relateRun(left, relation, right, 64, truths);
        for (std::size_t i = 0; i < 64; ++i) {
          ASSERT_EQ(truths[i], QORQL_relateViews(left[i], relation, right[i])) << l << " and " << r << " in row " << i;
        }
      }
    }
  }
  EXPECT_GE(pairs, 100);  // a literal behind a minus may have to be computed
}

TEST_F(RunRelation, ReadsNothingThatMustBeComputed) {
  FetchedStatement fetched("SELECT K + 1 AS X FROM A");
  const auto value = QORQL_Binder(*fetched.table).bindEntry(*fetched.entry(0));
  EXPECT_FALSE(QORQL_RunOperand(*value).isReadable());
}

}  // namespace
