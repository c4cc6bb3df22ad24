// Rows: the checks of adding, the look-ups by name, what happens when an object cannot be read.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "QueryWorld.h"
#include "TableSupport.h"

namespace {

using tabletest::internalError;
using tabletest::kInconsistent;
using tabletest::kTooGreat;
using tabletest::makeObject;
using tabletest::Object;
using tabletest::tableOf;
using testing::ElementsAre;

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

TEST(DataRow, AddingPastTheEndFillsTheGapWithNullCells) {
  QORQL_DataRow row;
  row.addCell(5, makeObject("x"));
  ASSERT_EQ(row.getCellCount(), 6U);
  for (QORuint32 i = 0; i < 5; ++i) EXPECT_TRUE(row.getCell(i).IsNull());
  EXPECT_FALSE(row.getCell(5).IsNull());
}

TEST(DataRow, AddingAtAnExistingPlaceInserts) {
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

TEST(DataRow, CopyHasItsOwnListOfTheSameObjects) {
  QORQL_DataRow row;
  row.addCell(0, makeObject("a"));
  QORQL_DataRow copy(row);
  copy.addCell(1, makeObject("b"));
  EXPECT_EQ(row.getCellCount(), 1U);
  EXPECT_EQ(copy.getCell(0U).Get(), row.getCell(0U).Get());
}

TEST(DataRow, CellIndexPastTheTablesColumnsIsRefused) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(2));
  QORQL_DataRow row;
  row.setParentTable(table.Get());
  EXPECT_EQ(internalError([&] { row.addCell(3, makeObject("x")); }), kTooGreat);
  EXPECT_EQ(row.getCellCount(), 0U);
  row.addCell(2, makeObject("x"));  // equal to the column count passes
  EXPECT_EQ(internalError([&] { row.addCell(0, makeObject("y")); }), kInconsistent);
}

TEST(DataRow, CellByNameIsNullWithoutParentNameColumnOrCell) {
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

TEST(DataRow, MissingPropertyNamesPropertyAndClass) {
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

TEST(DataRow, AnObjectThatCannotBeReadIsLoggedAndGivesNull) {
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

TEST(DataRow, InstanceNamesAreEqualReferences) {
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

TEST(DataRow, AddressesAreTheTables) {
  const QORSmrPtr<QORQL_DataTable> table(tableOf(1));
  table->setServerAddressInfo("host", "5988");
  QORQL_DataRow row;
  EXPECT_EQ(row.GetHostAddress(), "");
  row.setParentTable(table.Get());
  EXPECT_EQ(row.GetHostAddress(), "host");
  EXPECT_EQ(row.GetHostPort(), "5988");
}

}  // namespace
