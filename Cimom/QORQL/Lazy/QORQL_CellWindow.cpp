// Filling the window: one row at first, more while the rows are read in order, and of many objects those to come.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_CellWindow.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <utility>

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
  const bool hasMany = std::any_of(_columns.begin(), _columns.end(), [](const QORQL_PropertyColumn& column) {
    return column.objectCount() >= kManyObjects;
  });
  const std::size_t size = _columns.size() * kBatch;
  _memory = std::make_unique_for_overwrite<std::byte[]>((hasMany ? 2 : 1) * size * sizeof(QoriScalar));
  _cells = reinterpret_cast<QoriScalar*>(_memory.get());
  if (hasMany) _ahead = _cells + size;
  _readsCells = std::all_of(_columns.begin(), _columns.end(),
                            [](const QORQL_PropertyColumn& column) { return column.readsCells(); });
}

// Where there is no memory to find the objects, the window is left without rows, or without those ahead.
void QORQL_CellWindow::fill(const QORQL_RowBlock& block, QORuint64 row) {
  constexpr std::size_t kGrowth = 8;
  if (_cells == nullptr) begin();
  const bool isNext = row == _first + _count;
  const std::size_t wanted = isNext ? std::min(kBatch, _count * kGrowth + 1) : 1;
  const std::size_t ahead = std::exchange(_aheadCount, 0);
  _first = row;
  if (isNext && ahead != 0) {
    _count = ahead;
    std::swap(_cells, _ahead);
  } else {
    _count = 0;
    const std::size_t count = static_cast<std::size_t>(std::min<QORuint64>(wanted, block.rowCount - row));
    read(block, _first, count, _cells);
    _count = count;
  }
  if (_ahead != nullptr && _count == kBatch) readAhead(block);
}

// Cells are asked for only where they are at hand: in a list, one would have to go back for the next rows.
void QORQL_CellWindow::readAhead(const QORQL_RowBlock& block) {
  const auto countFrom = [&block](QORuint64 first) {
    return static_cast<std::size_t>(std::min<QORuint64>(kBatch, block.rowCount - first));
  };
  const QORuint64 next = _first + _count;
  const std::size_t nextCount = countFrom(next);
  if (nextCount == 0) return;
  read(block, next, nextCount, _ahead);
  _aheadCount = nextCount;
  const QORuint64 later = next + _aheadCount;
  const std::size_t count = countFrom(later);
  const bool areAtHand =
      _readsCells && std::all_of(_columns.begin(), _columns.end(),
                                 [](const QORQL_PropertyColumn& column) { return column.allCells() != nullptr; });
  if (!areAtHand || count == 0) return;
  forEachColumn(block, later, count, [&](std::size_t number, const char* const* cells) {
    const QORuint32 offset = _columns[number].offset();
    for (std::size_t i = 0; i < count; ++i) __builtin_prefetch(&QORQL_PropertyColumn::viewIn(cells[i], offset));
  });
}

void QORQL_CellWindow::read(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QoriScalar* out) const {
  if (!_readsCells) return readObjects(block, first, count, out);
  forEachColumn(block, first, count, [&](std::size_t number, const char* const* cells) {
    _columns[number].read(cells, count, out + offsetOf(number));
  });
}

template <class Use>
void QORQL_CellWindow::forEachColumn(const QORQL_RowBlock& block, QORuint64 first, std::size_t count,
                                     const Use& use) const {
  std::array<const char*, kBatch> buffer;
  const char* const* cells = nullptr;
  for (std::size_t number = 0; number < _columns.size(); ++number) {
    if (!isFetched(number)) cells = _columns[number].fetchCells(block, first, count, buffer.data());
    use(number, cells);
  }
}

void QORQL_CellWindow::readObjects(const QORQL_RowBlock& block, QORuint64 first, std::size_t count,
                                   QoriScalar* out) const {
  std::array<const IQoriObject*, kBatch> objects;
  for (std::size_t number = 0; number < _columns.size(); ++number) {
    if (!isFetched(number)) _columns[number].fetch(block, first, count, objects.data());
    _columns[number].read(objects.data(), count, out + offsetOf(number));
  }
}
