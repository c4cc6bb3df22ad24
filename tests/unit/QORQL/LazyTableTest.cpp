// What a table holds instead of rows: shared rows, and rows cut down as a projection keeps them.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "FetchedStatement.h"

namespace {

constexpr char kModel[] = R"(
class A { [key] uint32 Id; uint32 K; string S; };
class B { [key] uint32 Id; };
instance of A { Id = 1; K = 10; S = "x"; };
instance of B { Id = 7; };
)";

struct LazyTable : testing::Test {
  QueryWorld world{kModel};
  FetchedStatement fetched{"SELECT * FROM A, B"};
  QORQL_RowView firstRow() {
    QORQL_RowView view(fetched.rows());
    for (const QORQL_RowBlock& block : fetched.rows().blocks()) view.select(block, 0);
    return view;
  }
};

TEST_F(LazyTable, MakesRowsOfWholeObjects) {
  const auto row = fetched.table->lazy()->makeRow(firstRow());
  ASSERT_EQ(row->getCellCount(), 2U);
  EXPECT_EQ(row->getCell(0U)->getPropertyCount(), 3U);
  EXPECT_EQ(row->getCell(1U)->getClassName(), "B");
}

TEST_F(LazyTable, MakesRowsOfWhatAProjectionKeeps) {
  QORQL_LazyTable projected(fetched.table->lazy()->rows());
  QORQL_LazyCell all;
  all.sourceColumn = 1;
  all.allProperties = true;
  QORQL_LazyCell one;
  one.properties = {"K"};
  projected.project({all, one}, nullptr);
  EXPECT_EQ(projected.cellCount(), 2U);
  EXPECT_EQ(projected.sourceColumn(0), 1U);
  const auto row = projected.makeRow(firstRow());
  EXPECT_EQ(row->getCell(0U)->getClassName(), "B");
  ASSERT_EQ(row->getCell(1U)->getPropertyCount(), 1U);
  EXPECT_EQ(row->getCell(1U)->getPropertyAt(0)->getName(), "K");
}

TEST_F(LazyTable, ChangesRowsOfItsOwn) {
  QORQL_LazyTable other(fetched.table->lazy()->rows());
  other.ownRows().flatten();
  EXPECT_EQ(other.rows()->blocks().size(), 1U);
  EXPECT_EQ(fetched.rows().blocks().size(), 2U);
}

}  // namespace
