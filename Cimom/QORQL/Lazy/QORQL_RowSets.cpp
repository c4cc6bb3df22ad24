// The sets of rows of a table, and the look-ups in them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_RowSets.h"

#include <algorithm>
#include <numeric>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"

QORsint32 QORQL_RowSets::columnOf(const QORString& name) const noexcept {
  const auto found = std::find_if(columns.begin(), columns.end(), [&name](const QORSmrPtr<QORQL_TableHeader>& column) {
    return !column.IsNull() && column->isNamed(name);
  });
  return found == columns.end() ? -1 : static_cast<QORsint32>(found - columns.begin());
}

std::size_t QORQL_RowSets::blockOf(QORuint32 column) const noexcept {
  const auto found = std::find_if(blocks.begin(), blocks.end(), [column](const QORQL_ColumnList& block) {
    return std::binary_search(block.begin(), block.end(), column);
  });
  return static_cast<std::size_t>(found - blocks.begin());
}

QORQL_RowSets QORQL_rowSetsOf(const QORQL_DataTable& table) {
  QORQL_RowSets sets;
  const QORQL_DataTable::HeaderList list(table.getColumnHeaderList());
  QORValSlistIterator<QORSmrPtr<QORQL_TableHeader>> headers(*list);
  while (++headers) sets.columns.push_back(headers.key());
  if (table.lazy() != nullptr) {
    for (const QORQL_RowBlock& block : table.lazy()->rows()->blocks()) sets.blocks.push_back(block.columns);
  } else if (!sets.columns.empty()) {
    sets.blocks.resize(1);
    sets.blocks.front().resize(sets.columns.size());
    std::iota(sets.blocks.front().begin(), sets.blocks.front().end(), QORuint32{0});
  }
  return sets;
}
