// Tables: the checks of adding, the look-ups by name, the pre-filter state.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "QueryWorld.h"
#include "TableSupport.h"

namespace {

using tabletest::header;
using tabletest::internalError;
using tabletest::kColumnTooGreat;
using tabletest::kInconsistent;
using tabletest::kOutside;
using tabletest::makeObject;
using tabletest::Object;
using tabletest::tableOf;
using Row = QORSmrPtr<QORQL_DataRow>;
using testing::ElementsAre;

std::vector<std::string> namesOf(const QORQL_DataTable& table) {
  std::vector<std::string> names;
  for (QORuint32 i = 0; i < table.getColumnCount(); ++i) {
    names.push_back(QueryWorld::textOf(table.getColumnHeader(i)->getName()));
  }
  return names;
}

TEST(DataTable, ConstructorFromHeadersHasNoColumns) {
  QORQL_DataTable::HeaderList headers(new QORValSlist<QORSmrPtr<QORQL_TableHeader>>());
  headers->append(header("A"));
  EXPECT_EQ(QORQL_DataTable(headers).getColumnCount(), 0U);
}

TEST(DataTable, AddColumnsReversesWithFlagFalseAndFillsTheSecondPlaceWithFlagTrue) {
  QORQL_DataTable::HeaderList headers(new QORValSlist<QORSmrPtr<QORQL_TableHeader>>());
  for (const char* name : {"A", "B", "C"}) headers->append(header(name));
  QORQL_DataTable reversed;
  reversed.addColumns(headers, false);
  EXPECT_THAT(namesOf(reversed), ElementsAre("C", "B", "A"));
  QORQL_DataTable second;
  second.addColumn(header("X"), 0, false);
  second.addColumns(headers, true);
  EXPECT_THAT(namesOf(second), ElementsAre("X", "C", "B", "A"));
  second.addColumns(QORQL_DataTable::HeaderList(), true);
  EXPECT_EQ(second.getColumnCount(), 4U);
}

TEST(DataTable, ColumnPastTheEndIsRefused) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(2));
  EXPECT_EQ(internalError([&] { table->addColumn(header("X"), 3, true); }), kColumnTooGreat);
  table->addColumn(QORSmrPtr<QORQL_TableHeader>(), 9, true);  // a null header is ignored
  EXPECT_EQ(table->getColumnCount(), 2U);
}

TEST(DataTable, ColumnWithRowsGivesEveryRowANullCell) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(2));
  Row row(new QORQL_DataRow());
  row->addCell(0, makeObject("a"));
  row->addCell(1, makeObject("b"));
  table->addRow(row);
  table->addColumn(header("X"), 2, true);
  ASSERT_EQ(row->getCellCount(), 3U);
  EXPECT_TRUE(row->getCell(2U).IsNull());
}

TEST(DataTable, RowWithMoreCellsThanColumnsIsRefused) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(2));
  Row row(new QORQL_DataRow());
  row->addCell(2, makeObject("x"));
  EXPECT_EQ(internalError([&] { table->addRow(row); }), kInconsistent);
  EXPECT_EQ(table->getRowCount(), 0U);
  table->addRow(Row());
  EXPECT_EQ(table->getRowCount(), 0U);
}

TEST(DataTable, ARowMadeOfCellsSharesThem) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(2));
  const QORQL_DataRow::CellList cells(new QORValSlist<Object>());
  cells->append(makeObject("a"));
  cells->append(Object());
  const Row row(new QORQL_DataRow(cells, table.Get()));
  EXPECT_EQ(row->getCell("C0").Get(), cells->first().Get());
  EXPECT_TRUE(row->getCell("C1").IsNull());
  EXPECT_TRUE(row->getPropertyValueByName("C1", "Name").IsNull());
  EXPECT_EQ(row->getPropertyValueByName("C0", "Name")->toString(), "a");
}

TEST(DataTable, CellPositionMayEqualTheCountsButNotPassThem) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(1));
  Row row(new QORQL_DataRow());
  row->addCell(0, makeObject("a"));
  table->addRow(row);
  EXPECT_FALSE(table->getCell(0, 0).IsNull());
  EXPECT_THROW(table->getCell(1, 0), QORBoundsException);
  EXPECT_THROW(table->getCell(0, 1), QORBoundsException);
  EXPECT_EQ(internalError([&] { table->getCell(2, 0); }), kOutside);
  EXPECT_EQ(internalError([&] { table->getCell(0, 2); }), kOutside);
  EXPECT_EQ(internalError([&] { table->addRowCell(2, 0, Object()); }), kOutside);
}

TEST(DataTable, SettingACellInserts) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(2));
  Row row(new QORQL_DataRow());
  row->addCell(0, makeObject("a"));
  table->addRow(row);
  const Object x(makeObject("x"));
  table->addRowCell(0, 0, x);
  EXPECT_EQ(row->getCellCount(), 2U);
  EXPECT_EQ(row->getCell(0U).Get(), x.Get());
}

TEST(DataTable, ColumnIsFoundByNameOrAliasIgnoringCase) {
  QORQL_DataTable table;
  table.addColumn(header("CIM_Disk", "D"), 0, false);
  table.addColumn(header("CIM_Pool", "P"), 1, false);
  EXPECT_EQ(table.getColumnIndex("cim_disk"), 0);
  EXPECT_EQ(table.getColumnIndex("p"), 1);
  EXPECT_EQ(table.getColumnIndex("x"), -1);
  EXPECT_EQ(table.getColumnHeaderByName("d")->getName(), "CIM_Disk");
  EXPECT_TRUE(table.getColumnHeaderByName("x").IsNull());
}

TEST(DataTable, PreFilterStateNeverReturns) {
  QORQL_DataTable table;
  EXPECT_FALSE(table.preFilterSet());
  table.setCellPreFiltered(true);
  EXPECT_TRUE(table.allCellsPreFiltered());
  table.setCellPreFiltered(false);
  EXPECT_FALSE(table.allCellsPreFiltered());
  table.setCellPreFiltered(true);
  EXPECT_FALSE(table.allCellsPreFiltered());
  EXPECT_TRUE(table.preFilterSet());
  QORQL_DataTable other;
  other.setCellPreFiltered(false);
  other.setCellPreFiltered(true);
  EXPECT_FALSE(other.allCellsPreFiltered());
  EXPECT_TRUE(other.preFilterSet());
}

TEST(DataTable, RowsThatOutliveTheTableForgetIt) {
  Row row(new QORQL_DataRow());
  row->addCell(0, makeObject("a"));
  {
    const QORSmrPtr<QORQL_DataTable> table(tableOf(1));
    table->addRow(row);
    EXPECT_EQ(row->getParentTable(), table.Get());
  }
  EXPECT_EQ(row->getParentTable(), nullptr);
}

TEST(DataTable, SetRowsReplacesTheRows) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(1));
  table->addRow(Row(new QORQL_DataRow()));
  QORQL_DataTable::RowList rows(new QORValSlist<Row>());
  rows->append(Row(new QORQL_DataRow()));
  rows->append(Row());
  rows->append(Row(new QORQL_DataRow()));
  table->setRows(rows);
  EXPECT_EQ(table->getRowCount(), 2U);
  EXPECT_EQ(table->getRow(0)->getParentTable(), table.Get());
}

}  // namespace
