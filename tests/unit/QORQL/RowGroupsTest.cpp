// Rows that agree but for some columns are one group.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "Cimom/QORQL/Run/QORQL_RowGroups.h"
#include "TableSupport.h"

namespace {

using tabletest::makeObject;
using tabletest::tableOf;
using testing::ElementsAre;

// A table of three columns whose cells are objects of these names; "" for none.
QORSmrPtr<QORQL_DataTable> filled(std::initializer_list<std::vector<const char*>> rows) {
  QORSmrPtr<QORQL_DataTable> table(tableOf(3));
  for (const std::vector<const char*>& names : rows) {
    QORSmrPtr<QORQL_DataRow> row(new QORQL_DataRow());
    for (const char* const name : names) {
      row->addCell(row->getCellCount(), *name == '\0' ? tabletest::Object() : makeObject(name));
    }
    table->addRow(row);
  }
  return table;
}

std::string shown(const QORQL_DataRow& row) {
  std::string text;
  for (QORuint32 column = 0; column < 3; ++column) {
    const tabletest::Object cell(QORQL_cellOf(row, column));
    text += cell.IsNull() ? "-" : QueryWorld::textOf(cell->getProperty("Name", true)->getValue()->toString());
  }
  return text;
}

// Each group's rows, joined by blanks.
std::vector<std::string> groups(QORQL_DataTable& table, const std::vector<QORuint32>& left) {
  std::vector<std::string> texts;
  for (const auto& group : QORQL_groupRows(table, table.getRows(), left)) {
    std::string text;
    for (const auto& row : group) text += (text.empty() ? "" : " ") + shown(*row);
    texts.push_back(text);
  }
  return texts;
}

TEST(RowGroups, HoldRowsOfTheSameInstances) {
  const auto table = filled({{"a", "x", "1"}, {"b", "x", "1"}, {"a", "y", "2"}, {"b", "y", "3"}, {"a", "x", "4"}});
  EXPECT_THAT(groups(*table, {1, 2}), ElementsAre("ax1 ay2 ax4", "bx1 by3"));
  EXPECT_THAT(groups(*table, {2}), ElementsAre("ax1 ax4", "bx1", "ay2", "by3"));
}

TEST(RowGroups, TakeObjectsOfOnePathForOneInstanceAndNoneForNone) {
  const auto table = filled({{"", "x", "1"}, {"a", "x", "1"}, {"", "x", "2"}});
  EXPECT_THAT(groups(*table, {2}), ElementsAre("-x1 -x2", "ax1"));
}

TEST(RowGroups, OfARowWithNullsKeepTheOtherCells) {
  const auto table = filled({{"a", "b", "c"}});
  const auto row = QORQL_withNulls(*table->getRow(0), *table, {0, 2});
  EXPECT_EQ(shown(*row), "-b-");
  EXPECT_EQ(shown(*table->getRow(0)), "abc");
}

TEST(RowGroups, ACellBeyondTheRowIsNull) {
  QORQL_DataRow row;
  EXPECT_TRUE(QORQL_cellOf(row, 0).IsNull());
}

}  // namespace
