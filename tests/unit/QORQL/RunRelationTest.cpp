// The relation of a run of rows is that of each of its rows.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>
#include <vector>

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

// The rows of a block that hold, by each of their truths.
std::vector<QORuint32> held(const QORQL_PropertyColumn& column, QoriRelation relation, const QoriScalar& literal,
                            const QORQL_RowBlock& block) {
  std::vector<QORuint32> rows;
  for (QORuint64 row = 0; row < block.rowCount; ++row) {
    QoriScalar cell;
    column.read(block, row, 1, &cell);
    if (QORQL_relateViews(cell, relation, literal) == QORQL_ViewTruth::True) rows.push_back(block.index(row, 0));
  }
  return rows;
}

// All rows in their order, and some of them in another, of which one has no object.
std::vector<QORQL_RowBlock> blocksOf(const QORQL_RowBlock& whole) {
  QORQL_RowBlock some;
  some.columns = {0};
  for (QORuint32 i = 0; i < 50; ++i) some.tuples.push_back(i == 20 ? QORQL_kNoObject : i * 29 % 64);
  some.rowCount = some.tuples.size();
  return {whole, some};
}

// NULLs stand in K and N, integers of the other signedness in S and N; a text is none of the selection's business.
TEST_F(RunRelation, SelectsTheRowsOfWhichItIsTrue) {
  FetchedStatement fetched("SELECT K, S, N, Id, T, 4 AS Four, 0 AS Zero, 18446744073709551615 AS Greatest FROM A");
  const QORQL_Binder binder(*fetched.table);
  int selections = 0;
  for (const QORQL_RowBlock& block : blocksOf(fetched.rows().blocks().front())) {
    for (QORuint32 l = 0; l < 5; ++l) {
      for (QORuint32 r = 5; r < 8; ++r) {
        const auto left = binder.bindEntry(*fetched.entry(l));
        const auto right = binder.bindEntry(*fetched.entry(r));
        const QORQL_PropertyColumn& column = *left->propertyColumn();
        for (const QoriRelation relation :
             {QoriRelation::Equal, QoriRelation::NotEqual, QoriRelation::Less, QoriRelation::Greater,
              QoriRelation::LessEqual, QoriRelation::GreaterEqual}) {
          std::vector<QORuint32> out(block.rowCount + 1);
          const auto count =
              QORQL_selectRun(column, relation, *right->constant(), block, 0, block.rowCount, out.data());
          if (!count) continue;
          ++selections;
          out.resize(*count);
          EXPECT_EQ(out, held(column, relation, *right->constant(), block)) << l << " and " << r;
        }
      }
    }
  }
  // Of each block the unsigned K and Id with every literal, the signed S and N with two of them.
  EXPECT_EQ(selections, 2 * (2 * 3 + 2 * 2) * 6);
}

TEST_F(RunRelation, ReadsNothingThatMustBeComputed) {
  FetchedStatement fetched("SELECT K + 1 AS X FROM A");
  const auto value = QORQL_Binder(*fetched.table).bindEntry(*fetched.entry(0));
  EXPECT_FALSE(QORQL_RunOperand(*value).isReadable());
}

}  // namespace
