// Rows and tables made by hand, and the messages of what they refuse.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_QORQL_TABLESUPPORT_H
#define QORQL_TESTS_UNIT_QORQL_TABLESUPPORT_H

#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "QueryWorld.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

namespace tabletest {

using Object = QORSmrPtr<IQoriObject>;

inline constexpr char kTooGreat[] =
    "Error occured when adding a cell to a row. The index of column specified was greater than the maximum number of "
    "columns in the table";
inline constexpr char kInconsistent[] =
    "Error occured when adding a cell to a row. The row boundary was inconsistent with the table.";
inline constexpr char kColumnTooGreat[] =
    "Error occured when adding a column to a row. The header index specified was greater than the boundary limit.";
inline constexpr char kOutside[] =
    "Error occured when adding a cell to a row. The cell location specified was outside the table boundary.";

inline Object makeObject(const char* name) {
  QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList());
  properties->append(new CQoriProperty("Name", new CQoriValue(QORString(name)), true));
  return Object(new CQoriBaseObject("root/cimv2", "CIM_Disk", "Name", properties));
}

inline QORSmrPtr<QORQL_TableHeader> header(const char* name, const char* alias = "") {
  return QORSmrPtr<QORQL_TableHeader>(new QORQL_TableHeader(name, alias, ""));
}

// A table with columns C0, C1, ...
inline QORSmrPtr<QORQL_DataTable> tableOf(QORuint32 columns) {
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  for (QORuint32 i = 0; i < columns; ++i) {
    table->addColumn(header((std::string("C") + std::to_string(i)).c_str()), i, false);
  }
  return table;
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

}  // namespace tabletest

#endif
