// What a table holds instead of rows: lazy rows, and for a projected table what
// the projection keeps of each object.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_LAZYTABLE_H
#define QORQL_LAZYTABLE_H

#include <memory>

#include "Cimom/QORQL/Lazy/QORQL_LazyResults.h"
#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"
#include "Cimom/QORQL/QORQL_DataRow.h"
#include "cmpbase.h"

// One cell of a projected row.
struct QORQL_LazyCell {
  QORuint32 sourceColumn = 0;
  bool allProperties = false;
  QORQL_FewList<QORString, 4> properties;  // kept ones, when not all
  // The same as a list, made when the first object needs it.
  mutable QORSmrPtr<QORValSlist<QORString>> propertyList;
};

class QORQL_LazyTable {
 public:
  using Cells = QORQL_FewList<QORQL_LazyCell, 2>;

  explicit QORQL_LazyTable(std::shared_ptr<QORQL_LazyRows> lazyRows) : _rows(std::move(lazyRows)) {}

  const std::shared_ptr<QORQL_LazyRows>& rows() const noexcept { return _rows; }
  // The table's rows, unshared: changing them affects this table only.
  QORQL_LazyRows& ownRows();

  // The projection: cells in cell order, behind them that of the function results where there are any; REQUIRES a cell
  // or results. The rows of a table with results are one block.
  void project(Cells&& cells, std::shared_ptr<QORQL_LazyResults> results);
  const Cells& cells() const noexcept { return _cells; }
  std::size_t cellCount() const noexcept {
    return isProjected() ? _cells.size() + (_results == nullptr ? 0 : 1) : _rows->columnCount();
  }
  // Whether the cell is that of the function results; it has no source.
  bool hasResults(QORuint32 cell) const noexcept { return _results != nullptr && cell == _cells.size(); }
  QORuint32 sourceColumn(QORuint32 cell) const noexcept { return isProjected() ? _cells[cell].sourceColumn : cell; }
  // Null when no function was projected.
  const std::shared_ptr<QORQL_LazyResults>& results() const noexcept { return _results; }
  // Unshared, as ownRows().
  QORQL_LazyResults& ownResults();

  // The object of one cell as the row would hold it.
  QORSmrPtr<IQoriObject> cellObject(const QORQL_RowView& row, QORuint32 cell) const;
  // A row of the view's objects, unrestricted: enough to evaluate on.
  void fillRow(const QORQL_RowView& view, QORQL_DataRow& row) const;
  // A row as it comes into being.
  QORSmrPtr<QORQL_DataRow> makeRow(const QORQL_RowView& view) const;

 private:
  bool isProjected() const noexcept { return !_cells.empty() || _results != nullptr; }

  std::shared_ptr<QORQL_LazyRows> _rows;
  Cells _cells;
  std::shared_ptr<QORQL_LazyResults> _results;
};

#endif
