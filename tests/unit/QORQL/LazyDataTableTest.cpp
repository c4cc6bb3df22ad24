// How rows that do not exist yet come into a table, and how they become real ones.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FetchedStatement.h"

namespace {

using testing::ElementsAre;

constexpr char kModel[] = R"(
class A { [key] uint32 Id; };
class B { [key] uint32 Id; };
class None { [key] uint32 Id; };
instance of A { Id = 1; };
instance of A { Id = 2; };
instance of B { Id = 7; };
instance of B { Id = 8; };
)";

struct LazyDataTable : testing::Test {
  QueryWorld world{kModel};
};

TEST_F(LazyDataTable, CountsRowsWithoutMakingThem) {
  FetchedStatement fetched("SELECT * FROM A, B");
  ASSERT_NE(fetched.table->lazy(), nullptr);
  EXPECT_EQ(fetched.table->getRowCount(), 4U);
  EXPECT_NE(fetched.table->lazy(), nullptr);
}

TEST_F(LazyDataTable, MakesRowsInTheOrderOfTheProduct) {
  FetchedStatement fetched("SELECT * FROM A, B");
  std::vector<std::string> rows;
  for (QORuint32 i = 0; i < fetched.table->getRowCount(); ++i) {
    const auto row = fetched.table->getRow(i);
    EXPECT_EQ(row->getParentTable(), fetched.table.Get());
    rows.push_back(QueryWorld::textOf(row->getPropertyValueByName("A", "Id")->toString()) +
                   QueryWorld::textOf(row->getPropertyValueByName("B", "Id")->toString()));
  }
  EXPECT_THAT(rows, ElementsAre("17", "18", "27", "28"));
  EXPECT_EQ(fetched.table->lazy(), nullptr);
}

TEST_F(LazyDataTable, ForgetsThemForOthers) {
  FetchedStatement fetched("SELECT * FROM A");
  const QORQL_DataTable::RowList rows(new QORValSlist<QORSmrPtr<QORQL_DataRow>>());
  rows->append(new QORQL_DataRow());
  fetched.table->setRows(rows);
  EXPECT_EQ(fetched.table->lazy(), nullptr);
  EXPECT_EQ(fetched.table->getRowCount(), 1U);
}

}  // namespace
