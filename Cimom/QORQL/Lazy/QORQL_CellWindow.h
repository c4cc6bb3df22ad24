// The cells of the next rows, read ahead column by column.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CELLWINDOW_H
#define QORQL_CELLWINDOW_H

#include <cstddef>
#include <memory>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_PropertyColumn.h"

// A caller that reads the rows in order finds most cells here. A row out of order is
// read alone, so that few cells are read in vain. Only properties are read: that makes
// no calls of the object manager, and nothing fails but for want of memory.
class QORQL_CellWindow {
 public:
  // Returns the column's number. A property that is one of the first few columns has the number of that one.
  // REQUIRES that no cell has been read.
  std::size_t add(const QORQL_PropertyColumn& column);

  // The cell of a row, valid while the row's object lives. REQUIRES row < block.rowCount.
  QoriScalar cell(const QORQL_RowBlock& block, QORuint64 row, std::size_t column) {
    return cells(block, row)[offsetOf(column)];
  }
  // All cells of a row, each at the offset of its column; valid until another row is asked for. REQUIRES as above, and
  // that there is a column.
  const QoriScalar* cells(const QORQL_RowBlock& block, QORuint64 row) {
    if (row - _first >= _count) fill(block, row);
    return &_cells[static_cast<std::size_t>(row - _first)];
  }
  // How many rows from this one on have their cells read: those of the next row stand right behind, column by column.
  std::size_t runFrom(const QORQL_RowBlock& block, QORuint64 row) {
    cells(block, row);
    return _count - static_cast<std::size_t>(row - _first);
  }
  static constexpr std::size_t offsetOf(std::size_t column) noexcept { return column * QORQL_PropertyColumn::kBatch; }

 private:
  static constexpr std::size_t kBatch = QORQL_PropertyColumn::kBatch;
  // So many objects of a column are more than the processor's caches hold: while the caller works on one window, the
  // next is read and the one after it asked for.
  static constexpr QORuint32 kManyObjects = 4096;

  // Before the first cell is read, when all columns are known.
  void begin();
  void fill(const QORQL_RowBlock& block, QORuint64 row);
  // Reads the rows behind the window, and asks for the cells of those behind these.
  void readAhead(const QORQL_RowBlock& block);
  // Reads the cells of some rows.
  void read(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QoriScalar* out) const;
  // Calls use(number, cells) for each column with what its objects give for some rows. REQUIRES that all read cells.
  template <class Use>
  void forEachColumn(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, const Use& use) const;
  void readObjects(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QoriScalar* out) const;
  // Whether the column's objects are those of the column before it.
  bool isFetched(std::size_t number) const noexcept {
    return number != 0 && _columns[number].column() == _columns[number - 1].column();
  }

  std::vector<QORQL_PropertyColumn> _columns;
  std::unique_ptr<std::byte[]> _memory;
  QoriScalar* _cells = nullptr;  // kBatch for each column, in that memory; none is looked at before it is read
  QoriScalar* _ahead = nullptr;  // as many, of the rows behind the window; null where no column has many objects
  QORuint64 _first = 0;
  std::size_t _count = 0;
  std::size_t _aheadCount = 0;  // how many rows behind the window have been read
  bool _readsCells = false;     // whether all columns do
};

#endif
