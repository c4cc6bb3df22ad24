// Groups of rows that agree except in some columns.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_ROWGROUPS_H
#define QORQL_ROWGROUPS_H

#include <vector>

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "cmpbase.h"

// The row's cell in a column; null where the row has fewer cells.
QORSmrPtr<IQoriObject> QORQL_cellOf(const QORQL_DataRow& row, QORuint32 column);

// A new row of the table: the given row with null cells in some columns.
QORSmrPtr<QORQL_DataRow> QORQL_withNulls(const QORQL_DataRow& row, QORQL_DataTable& table,
                                         const std::vector<QORuint32>& columns);

// Groups of rows whose cells outside some columns name the same instances, in the order of their first rows; within a
// group the rows' own order. Linear in the cells, besides a look-up in a tree for each row.
std::vector<std::vector<QORSmrPtr<QORQL_DataRow>>> QORQL_groupRows(const QORQL_DataTable& table,
                                                                   const QORQL_DataTable::RowList& rows,
                                                                   const std::vector<QORuint32>& left);

#endif
