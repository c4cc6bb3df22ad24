// Filling the window: one row at first, more while the rows are read in order.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_CellWindow.h"

#include <algorithm>
#include <array>
#include <cassert>

std::size_t QORQL_CellWindow::add(const QORQL_PropertyColumn& column) {
  constexpr std::size_t kFew = 16;
  for (std::size_t number = 0; number < std::min(_columns.size(), kFew); ++number) {
    if (_columns[number].isSameAs(column)) return number;
  }
  assert(_cells == nullptr);
  if (_columns.empty()) _columns.reserve(kFew / 4);
  _columns.push_back(column);
  return _columns.size() - 1;
}

void QORQL_CellWindow::begin() {
  _memory = std::make_unique_for_overwrite<std::byte[]>(_columns.size() * kBatch * sizeof(QoriScalar));
  _cells = reinterpret_cast<QoriScalar*>(_memory.get());
  _readsCells = std::all_of(_columns.begin(), _columns.end(),
                            [](const QORQL_PropertyColumn& column) { return column.readsCells(); });
}

void QORQL_CellWindow::fill(const QORQL_RowBlock& block, QORuint64 row) {
  constexpr std::size_t kGrowth = 8;
  if (_cells == nullptr) begin();
  const bool isNext = row == _first + _count;
  const std::size_t wanted = isNext ? std::min(kBatch, _count * kGrowth + 1) : 1;
  _first = row;
  _count = static_cast<std::size_t>(std::min<QORuint64>(wanted, block.rowCount - row));
  _readsCells ? readCells(block) : readObjects(block);
}

void QORQL_CellWindow::readCells(const QORQL_RowBlock& block) {
  std::array<const char*, kBatch> buffer;
  const char* const* cells = nullptr;
  for (std::size_t number = 0; number < _columns.size(); ++number) {
    if (!isFetched(number)) cells = _columns[number].fetchCells(block, _first, _count, buffer.data());
    _columns[number].read(cells, _count, &_cells[number * kBatch]);
  }
}

void QORQL_CellWindow::readObjects(const QORQL_RowBlock& block) {
  std::array<const IQoriObject*, kBatch> objects;
  for (std::size_t number = 0; number < _columns.size(); ++number) {
    if (!isFetched(number)) _columns[number].fetch(block, _first, _count, objects.data());
    _columns[number].read(objects.data(), _count, &_cells[number * kBatch]);
  }
}
