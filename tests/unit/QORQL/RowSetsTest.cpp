// Which columns lie in one set of rows, of tables whose rows exist or not.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/Lazy/QORQL_RowSets.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

QORSmrPtr<QORQL_TableHeader> header(const char* name, const char* alias) {
  return QORSmrPtr<QORQL_TableHeader>(new QORQL_TableHeader(name, alias, ""));
}

// Two columns of extents without objects.
std::unique_ptr<QORQL_DataTable> lazyTable() {
  auto table = std::make_unique<QORQL_DataTable>();
  const QORQL_Extent::ObjectList none(new QORValSlist<QORSmrPtr<IQoriObject>>);
  table->addExtent(header("CIM_A", "A1"), std::make_shared<const QORQL_Extent>(none));
  table->addExtent(header("CIM_B", "CIM_B"), std::make_shared<const QORQL_Extent>(none));
  return table;
}

TEST(RowSets, ATableWithoutColumnsHasNone) {
  const QORQL_RowSets sets = QORQL_rowSetsOf(QORQL_DataTable());
  EXPECT_THAT(sets.columns, IsEmpty());
  EXPECT_THAT(sets.blocks, IsEmpty());
}

TEST(RowSets, LazyRowsHaveTheirBlocks) {
  const auto table = lazyTable();
  EXPECT_THAT(QORQL_rowSetsOf(*table).blocks, ElementsAre(ElementsAre(0), ElementsAre(1)));
  EXPECT_NE(table->lazy(), nullptr) << "no rows are made";
  table->lazy()->ownRows().flatten();
  EXPECT_THAT(QORQL_rowSetsOf(*table).blocks, ElementsAre(ElementsAre(0, 1)));
}

TEST(RowSets, RowsThatExistAreOneSet) {
  const auto table = lazyTable();
  table->materialise();
  EXPECT_THAT(QORQL_rowSetsOf(*table).blocks, ElementsAre(ElementsAre(0, 1)));
}

TEST(RowSets, ColumnsAreFoundByClassOrAlias) {
  const auto table = lazyTable();
  const QORQL_RowSets sets = QORQL_rowSetsOf(*table);
  EXPECT_EQ(sets.columnOf("cim_a"), 0);
  EXPECT_EQ(sets.columnOf("a1"), 0);
  EXPECT_EQ(sets.columnOf("CIM_B"), 1);
  EXPECT_EQ(sets.columnOf("B"), -1);
  EXPECT_EQ(sets.columnOf(""), -1);
}

TEST(RowSets, TheBlockOfAColumn) {
  QORQL_RowSets sets;
  sets.blocks = {{1}, {0, 3}, {2}};
  EXPECT_EQ(sets.blockOf(0), 1U);
  EXPECT_EQ(sets.blockOf(1), 0U);
  EXPECT_EQ(sets.blockOf(2), 2U);
  EXPECT_EQ(sets.blockOf(3), 1U);
  EXPECT_EQ(sets.blockOf(4), 3U);
}

}  // namespace
