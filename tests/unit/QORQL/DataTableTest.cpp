// Rows, headers and tables: the checks of adding, the look-ups by name, the pre-filter state.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "QueryWorld.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using Row = QORSmrPtr<QORQL_DataRow>;
using testing::ElementsAre;

constexpr char kTooGreat[] =
    "Error occured when adding a cell to a row. The index of column specified was greater than the maximum number of "
    "columns in the table";
constexpr char kInconsistent[] =
    "Error occured when adding a cell to a row. The row boundary was inconsistent with the table.";
constexpr char kColumnTooGreat[] =
    "Error occured when adding a column to a row. The header index specified was greater than the boundary limit.";
constexpr char kOutside[] =
    "Error occured when adding a cell to a row. The cell location specified was outside the table boundary.";

Object makeObject(const char* name) {
  QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList());
  properties->append(new CQoriProperty("Name", new CQoriValue(QORString(name)), true));
  return Object(new CQoriBaseObject("root/cimv2", "CIM_Disk", "Name", properties));
}

// An object that cannot be read.
class FailingObject : public IQoriObject {
 public:
  const QORString& getClassName() const noexcept override { return QORString::emptyString(); }
  QORSmrPtr<IQoriInstanceName> getInstanceName() const override { throw std::runtime_error("no name"); }
  QORString getNameSpace() const override { return {}; }
  QORuint32 getPropertyCount() const noexcept override { return 0; }
  QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32) const override { throw std::runtime_error("no property"); }
  QORSmrPtr<IQoriProperty> getProperty(const QORString&, bool) const override {
    throw QoriBaseException("Failing", "Object", QORString(), "no property", 7);
  }
};

QORSmrPtr<QORQL_TableHeader> header(const char* name, const char* alias = "") {
  return QORSmrPtr<QORQL_TableHeader>(new QORQL_TableHeader(name, alias, ""));
}

// A table with columns C0, C1, ...
QORSmrPtr<QORQL_DataTable> tableOf(QORuint32 columns) {
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  for (QORuint32 i = 0; i < columns; ++i) {
    table->addColumn(header((std::string("C") + std::to_string(i)).c_str()), i, false);
  }
  return table;
}

std::vector<std::string> namesOf(const QORQL_DataTable& table) {
  std::vector<std::string> names;
  for (QORuint32 i = 0; i < table.getColumnCount(); ++i) {
    names.push_back(QueryWorld::textOf(table.getColumnHeader(i)->getName()));
  }
  return names;
}

template <class Action>
std::string internalError(Action action) {
  try {
    action();
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getCode(), 3U);
    return QueryWorld::textOf(error.getMessage());
  }
  return "";
}

TEST(DataRow, addingPastTheEndFillsTheGapWithNullCells) {
  QORQL_DataRow row;
  row.addCell(5, makeObject("x"));
  ASSERT_EQ(row.getCellCount(), 6U);
  for (QORuint32 i = 0; i < 5; ++i) EXPECT_TRUE(row.getCell(i).IsNull());
  EXPECT_FALSE(row.getCell(5).IsNull());
}

TEST(DataRow, addingAtAnExistingPlaceInserts) {
  const Object a(makeObject("a"));
  const Object b(makeObject("b"));
  const Object x(makeObject("x"));
  QORQL_DataRow row;
  row.addCell(0, a);
  row.addCell(1, b);
  row.addCell(0, x);
  ASSERT_EQ(row.getCellCount(), 3U);
  EXPECT_EQ(row.getCell(0U).Get(), x.Get());
  EXPECT_EQ(row.getCell(1U).Get(), a.Get());
  EXPECT_EQ(row.getCell(2U).Get(), b.Get());
}

TEST(DataRow, copyHasItsOwnListOfTheSameObjects) {
  QORQL_DataRow row;
  row.addCell(0, makeObject("a"));
  QORQL_DataRow copy(row);
  copy.addCell(1, makeObject("b"));
  EXPECT_EQ(row.getCellCount(), 1U);
  EXPECT_EQ(copy.getCell(0U).Get(), row.getCell(0U).Get());
}

TEST(DataRow, cellIndexPastTheTablesColumnsIsRefused) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(2));
  QORQL_DataRow row;
  row.setParentTable(table.Get());
  EXPECT_EQ(internalError([&] { row.addCell(3, makeObject("x")); }), kTooGreat);
  EXPECT_EQ(row.getCellCount(), 0U);
  row.addCell(2, makeObject("x"));  // equal to the column count passes
  EXPECT_EQ(internalError([&] { row.addCell(0, makeObject("y")); }), kInconsistent);
}

TEST(DataRow, cellByNameIsNullWithoutParentNameColumnOrCell) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(2));
  QORQL_DataRow row;
  row.addCell(0, makeObject("a"));
  EXPECT_TRUE(row.getCell(QORString("C0")).IsNull());
  row.setParentTable(table.Get());
  EXPECT_FALSE(row.getCell(QORString("c0")).IsNull());
  EXPECT_TRUE(row.getCell(QORString("C1")).IsNull());
  EXPECT_TRUE(row.getCell(QORString("C9")).IsNull());
  EXPECT_TRUE(row.getCell(QORString("")).IsNull());
}

TEST(DataRow, missingPropertyNamesPropertyAndClass) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(1));
  QORQL_DataRow row;
  row.setParentTable(table.Get());
  row.addCell(0, makeObject("a"));
  try {
    row.getPropertyByName("C0", "Size");
    FAIL();
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getCode(), 0U);
    EXPECT_EQ(error.getCIMErrorCode(), 4U);
    EXPECT_EQ(error.getMessage(), "A non-existent property - 'Size' was requested from class - 'C0'");
  }
  EXPECT_EQ(row.getPropertyValueByName("C0", "name")->toString(), "a");
}

TEST(DataRow, anObjectThatCannotBeReadIsLoggedAndGivesNull) {
  QueryWorld world("");
  std::vector<std::string> log;
  world.manager().setLogSink(
      [&log](const QORString& who, const QORString& message, QORuint32 severity) {
        log.push_back(QueryWorld::textOf(who) + "/" + std::to_string(severity) + ": " + QueryWorld::textOf(message));
      },
      QoriTraceLog::kTrace);
  const QORSmrPtr<QORQL_DataTable> table(tableOf(1));
  QORQL_DataRow row;
  row.setParentTable(table.Get());
  row.addCell(0, new FailingObject());
  EXPECT_TRUE(row.getPropertyByName("C0", "Size").IsNull());
  EXPECT_TRUE(row.getPropertyValueByName("C0", "Size").IsNull());
  EXPECT_TRUE(row.getFullInstanceName("C0").IsNull());
  const std::string property =
      "CQL/1: An unknown exception occured when retrieving the property - 'Size' from class 'C0'";
  EXPECT_THAT(log, ElementsAre(property, property,
                               "CQL/1: An unknown exception occured when retrieving instance name for class 'C0'"));
}

TEST(DataRow, instanceNamesAreEqualReferences) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(1));
  QORQL_DataRow row;
  row.setParentTable(table.Get());
  row.addCell(0, makeObject("a"));
  const QORSmrPtr<IQoriValue> name(row.getInstanceName("C0"));
  const QORSmrPtr<IQoriValue> full(row.getFullInstanceName("C0"));
  EXPECT_EQ(name->getType()->getName(), "reference");
  EXPECT_EQ(name->relate(QoriRelation::Equal, *full), QoriTruth::True);
  EXPECT_TRUE(row.getInstanceName("C7").IsNull());
}

TEST(DataRow, addressesAreTheTables) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(1));
  table->setServerAddressInfo("host", "5988");
  QORQL_DataRow row;
  EXPECT_EQ(row.GetHostAddress(), "");
  row.setParentTable(table.Get());
  EXPECT_EQ(row.GetHostAddress(), "host");
  EXPECT_EQ(row.GetHostPort(), "5988");
}

TEST(DataTable, constructorFromHeadersHasNoColumns) {
  QORQL_DataTable::HeaderList headers(new QORValSlist<QORSmrPtr<QORQL_TableHeader>>());
  headers->append(header("A"));
  EXPECT_EQ(QORQL_DataTable(headers).getColumnCount(), 0U);
}

TEST(DataTable, addColumnsReversesWithFlagFalseAndFillsTheSecondPlaceWithFlagTrue) {
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

TEST(DataTable, columnPastTheEndIsRefused) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(2));
  EXPECT_EQ(internalError([&] { table->addColumn(header("X"), 3, true); }), kColumnTooGreat);
  table->addColumn(QORSmrPtr<QORQL_TableHeader>(), 9, true);  // a null header is ignored
  EXPECT_EQ(table->getColumnCount(), 2U);
}

TEST(DataTable, columnWithRowsGivesEveryRowANullCell) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(2));
  Row row(new QORQL_DataRow());
  row->addCell(0, makeObject("a"));
  row->addCell(1, makeObject("b"));
  table->addRow(row);
  table->addColumn(header("X"), 2, true);
  ASSERT_EQ(row->getCellCount(), 3U);
  EXPECT_TRUE(row->getCell(2U).IsNull());
}

TEST(DataTable, rowWithMoreCellsThanColumnsIsRefused) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(2));
  Row row(new QORQL_DataRow());
  row->addCell(2, makeObject("x"));
  EXPECT_EQ(internalError([&] { table->addRow(row); }), kInconsistent);
  EXPECT_EQ(table->getRowCount(), 0U);
  table->addRow(Row());
  EXPECT_EQ(table->getRowCount(), 0U);
}

TEST(DataTable, aRowMadeOfCellsSharesThem) {
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

TEST(DataTable, cellPositionMayEqualTheCountsButNotPassThem) {
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

TEST(DataTable, settingACellInserts) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(2));
  Row row(new QORQL_DataRow());
  row->addCell(0, makeObject("a"));
  table->addRow(row);
  const Object x(makeObject("x"));
  table->addRowCell(0, 0, x);
  EXPECT_EQ(row->getCellCount(), 2U);
  EXPECT_EQ(row->getCell(0U).Get(), x.Get());
}

TEST(DataTable, columnIsFoundByNameOrAliasIgnoringCase) {
  QORQL_DataTable table;
  table.addColumn(header("CIM_Disk", "D"), 0, false);
  table.addColumn(header("CIM_Pool", "P"), 1, false);
  EXPECT_EQ(table.getColumnIndex("cim_disk"), 0);
  EXPECT_EQ(table.getColumnIndex("p"), 1);
  EXPECT_EQ(table.getColumnIndex("x"), -1);
  EXPECT_EQ(table.getColumnHeaderByName("d")->getName(), "CIM_Disk");
  EXPECT_TRUE(table.getColumnHeaderByName("x").IsNull());
}

TEST(DataTable, preFilterStateNeverReturns) {
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

TEST(DataTable, rowsThatOutliveTheTableForgetIt) {
  Row row(new QORQL_DataRow());
  row->addCell(0, makeObject("a"));
  {
    const QORSmrPtr<QORQL_DataTable> table(tableOf(1));
    table->addRow(row);
    EXPECT_EQ(row->getParentTable(), table.Get());
  }
  EXPECT_EQ(row->getParentTable(), nullptr);
}

TEST(DataTable, setRowsReplacesTheRows) {
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
