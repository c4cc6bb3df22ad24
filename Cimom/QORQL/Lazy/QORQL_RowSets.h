// Which columns of a table lie in one set of rows.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_ROWSETS_H
#define QORQL_ROWSETS_H

#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_TableHeader.h"
#include "cmpbase.h"

// A table without its rows, as far as it decides how a condition is done: lazy rows are the product of their blocks,
// rows that exist are one set. A value.
struct QORQL_RowSets {
  QORQL_FewList<QORSmrPtr<QORQL_TableHeader>, 2> columns;
  // The columns of each set, ascending. Every column lies in one set.
  QORQL_FewList<QORQL_ColumnList, 2> blocks;

  // The first column of that class or alias, ignoring case; -1 when there is none.
  QORsint32 columnOf(const QORString& name) const noexcept;
  // The number of blocks when the column lies in none.
  std::size_t blockOf(QORuint32 column) const noexcept;
};

// Those of a table, whether its rows exist or not. Makes no rows.
QORQL_RowSets QORQL_rowSetsOf(const QORQL_DataTable& table);

#endif
