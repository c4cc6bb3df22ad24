// One property of many objects: read in runs, one by one, and where some objects lack it.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "Cimom/QORQL/Lazy/QORQL_PropertyColumn.h"
#include "FetchedStatement.h"

namespace {

std::string model() {
  std::string mof = "class A { [key] uint32 Id; uint32 K; }; class B : A { string More; };";
  for (int i = 0; i < 100; ++i) {
    const std::string id = std::to_string(i);
    mof += "instance of " + std::string(i % 3 == 0 ? "B" : "A") + " { Id = " + id +
           (i % 2 == 0 ? "; K = " + id + "; };" : "; };");
  }
  return mof;
}

struct PropertyColumn : testing::Test {
  QueryWorld world{model()};
  FetchedStatement fetched{"SELECT Id, K FROM A"};
};

TEST_F(PropertyColumn, ReadsRunsAsItReadsOneByOne) {
  const auto column = QORQL_PropertyColumn::bind(fetched.rows(), 0, "k");
  ASSERT_TRUE(column.has_value());
  EXPECT_TRUE(column->isComplete());
  const QORQL_RowBlock& block = fetched.rows().blocks().front();
  ASSERT_EQ(block.rowCount, 100U);
  for (const QORuint64 first : {0U, 20U, 1U, 36U}) {
    std::array<QoriScalar, QORQL_PropertyColumn::kBatch> cells;
    column->read(block, first, cells.size(), cells.data());
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const IQoriObject* const object = fetched.rows().object(0, block.index(first + i, 0));
      const QoriScalar one = column->view(object);
      EXPECT_EQ(cells[i].kind, one.kind) << first + i;
      EXPECT_EQ(cells[i].u, one.u) << first + i;
      EXPECT_EQ(column->value(object).IsNull(), one.isNull()) << first + i;
    }
  }
}

TEST_F(PropertyColumn, IsNullWhereAnObjectLacksTheProperty) {
  const auto column = QORQL_PropertyColumn::bind(fetched.rows(), 0, "More");
  ASSERT_TRUE(column.has_value());
  EXPECT_FALSE(column->isComplete());
  EXPECT_TRUE(column->view(nullptr).isNull());
  EXPECT_TRUE(column->value(nullptr).IsNull());
}

TEST_F(PropertyColumn, IsTheSameForTheSameProperty) {
  const auto column = QORQL_PropertyColumn::bind(fetched.rows(), 0, "K");
  EXPECT_TRUE(column->isSameAs(*QORQL_PropertyColumn::bind(fetched.rows(), 0, "K")));
  EXPECT_FALSE(column->isSameAs(*QORQL_PropertyColumn::bind(fetched.rows(), 0, "Id")));
}

}  // namespace
