// Lazy rows: products of blocks, kept in the order in which a plain cross
// product would have made the rows (ascending by the index in the first column,
// then the second, and so on).
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <numeric>
#include <utility>

#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"

namespace {

// Extents of up to this many objects get their arrays at once; they take three MiB.
constexpr QORuint32 kSmall = 131072;

// The last two layouts that were seen; before the first object, something that is no layout.
class LatestLayouts {
 public:
  explicit LatestLayouts(const void* none) noexcept : _latest(none), _earlier(none) {}
  // Without a branch on which of them it is: nobody could predict that where objects of a class and of its subclass
  // mix.
  bool has(const IQoriLayout* layout) const noexcept {
    return (static_cast<int>(layout == _latest) | static_cast<int>(layout == _earlier)) != 0;
  }
  void add(const IQoriLayout* layout) noexcept {
    _earlier = _latest;
    if (layout != nullptr) _latest = layout;
  }

 private:
  const void* _latest;
  const void* _earlier;
};

// Puts an object, which may be null, and its cells into two arrays, of which one place and their distance tell both: a
// loop over many objects then has hardly more values than the processor keeps at hand over a call.
inline QoriCells lookAt(const IQoriObject* object, std::byte* place, std::size_t distance) noexcept {
  *reinterpret_cast<const IQoriObject**>(place) = object;
  const QoriCells found = object == nullptr ? QoriCells() : object->getCells();
  *reinterpret_cast<const char**>(place + distance) = found.cells;
  return found;
}

// What the objects of a list add up to.
struct Seen {
  bool hasOneLayout;  // the one that was expected
  bool hasCells;
};

// Fills the two arrays from a list whose objects are expected to have one layout.
[[gnu::noinline]] Seen fillUniform(const QORValSlist<QORSmrPtr<IQoriObject>>& list, const IQoriLayout* layout,
                                   std::byte* place, std::size_t distance) noexcept {
  const std::uintptr_t expected = reinterpret_cast<std::uintptr_t>(layout);
  std::uintptr_t differences = 0;
  std::uintptr_t leastCells = ~std::uintptr_t{0};
  list.forEach([&](const QORSmrPtr<IQoriObject>& pointer) {
    const QoriCells found = lookAt(pointer.Get(), place, distance);
    differences |= reinterpret_cast<std::uintptr_t>(found.layout) ^ expected;
    leastCells = std::min(leastCells, reinterpret_cast<std::uintptr_t>(found.cells));
    place += sizeof(void*);
  });
  return {differences == 0, leastCells != 0};
}

// The same with a third array, of the layouts, where two of them are expected: those of a class and of its subclass.
// Tells whether there are no others, and all have cells; one value adds up both, for want of more at hand.
[[gnu::noinline]] bool fillMixed(const QORValSlist<QORSmrPtr<IQoriObject>>& list, const IQoriLayout* one,
                                 const IQoriLayout* other, std::byte* place, std::size_t distance) noexcept {
  std::uintptr_t least = ~std::uintptr_t{0};
  list.forEach([&](const QORSmrPtr<IQoriObject>& pointer) {
    const QoriCells found = lookAt(pointer.Get(), place, distance);
    *reinterpret_cast<const IQoriLayout**>(place + 2 * distance) = found.layout;
    const int isExpected = static_cast<int>(found.layout == one) | static_cast<int>(found.layout == other);
    least = std::min(least, reinterpret_cast<std::uintptr_t>(found.cells) & -static_cast<std::uintptr_t>(isExpected));
    place += sizeof(void*);
  });
  return least != 0;
}

}  // namespace

QORQL_Extent::QORQL_Extent(const ObjectList& list) : _list(list), _cursor(std::in_place, *list) {
  size() > kSmall ? lookAtObjects() : makeArrays();
}

void QORQL_Extent::noteSomeObjects() {
  constexpr int kFew = 16;
  LatestLayouts latest(this);
  const auto note = [&](const IQoriObject* object) {
    const IQoriLayout* const layout = object == nullptr ? nullptr : object->getLayout();
    if (latest.has(layout)) return;
    noteObject(object, layout);
    latest.add(layout);
  };
  Cursor cursor(*_list.Get());
  for (int i = 0; i < kFew && ++cursor; ++i) note(cursor.key().Get());
  if (size() > kFew) note(_list->last().Get());
}

// The first few objects and the last one tell which layouts are to be expected: those of a class and of its subclasses
// mix, or stand one class after the other. Only where there are others is every object's looked at.
void QORQL_Extent::makeArrays() {
  noteSomeObjects();
  if (hasOneLayout() && fillTwoArrays()) return;
  const std::size_t distance = size() * sizeof(void*);
  _memory = std::make_unique_for_overwrite<std::byte[]>(3 * distance);
  setArrays(distance);
  _layoutsOfObjects = reinterpret_cast<const IQoriLayout* const*>(_memory.get() + 2 * distance);
  const IQoriLayout* const one = _layouts.empty() ? nullptr : _layouts.front();
  const IQoriLayout* const other = _layouts.size() < 2 ? one : _layouts[1];
  const bool isTold = fillMixed(*_list.Get(), one, other, _memory.get(), distance) && one != nullptr;
  if (!isTold) noteArrays();
}

// Where all objects have one layout, that need not be kept for each.
bool QORQL_Extent::fillTwoArrays() {
  const std::size_t distance = size() * sizeof(void*);
  _memory = std::make_unique_for_overwrite<std::byte[]>(2 * distance);
  setArrays(distance);
  const Seen seen = fillUniform(*_list.Get(), _layouts.front(), _memory.get(), distance);
  _hasCells = seen.hasCells;
  return seen.hasOneLayout;
}

void QORQL_Extent::setArrays(std::size_t distance) noexcept {
  _objects = reinterpret_cast<const IQoriObject* const*>(_memory.get());
  _cells = reinterpret_cast<const char* const*>(_memory.get() + distance);
}

void QORQL_Extent::noteArrays() {
  const std::size_t count = size();
  _layouts.clear();
  _hasCells = std::find(_cells, _cells + count, nullptr) == _cells + count;
  LatestLayouts latest(this);
  for (std::size_t i = 0; i < count; ++i) {
    if (latest.has(_layoutsOfObjects[i])) continue;
    noteObject(_objects[i], _layoutsOfObjects[i]);
    latest.add(_layoutsOfObjects[i]);
  }
}

void QORQL_Extent::lookAtObjects() {
  LatestLayouts latest(this);
  _list->forEach([&](const QORSmrPtr<IQoriObject>& pointer) {
    const IQoriObject* const object = pointer.Get();
    const QoriCells found = object == nullptr ? QoriCells() : object->getCells();
    if (found.cells == nullptr) [[unlikely]]
      _hasCells = false;
    if (latest.has(found.layout)) return;
    noteObject(object, found.layout);
    latest.add(found.layout);
  });
}

void QORQL_Extent::noteObject(const IQoriObject* object, const IQoriLayout* layout) {
  _hasNull = _hasNull || object == nullptr;
  noteLayout(layout);
}

void QORQL_RowBlock::fetch(const QORQL_Extent& extent, QORuint32 column, QORuint64 first, std::size_t count,
                           const IQoriObject** objects) const {
  if (isWholeExtent) return extent.copyRun(static_cast<QORuint32>(first), count, objects);
  forEachIndex(column, first, count,
               [&](QORuint32 index) { *objects++ = index == QORQL_kNoObject ? nullptr : extent.object(index); });
}

const char* const* QORQL_RowBlock::fetchCells(const QORQL_Extent& extent, QORuint32 column, QORuint64 first,
                                              std::size_t count, const char** buffer) const {
  if (isWholeExtent) return extent.cellsOfRun(static_cast<QORuint32>(first), count, buffer);
  const char** place = buffer;
  if (const char* const* const all = extent.allCells(); all != nullptr) {
    forEachIndex(column, first, count,
                 [&](QORuint32 index) { *place++ = index == QORQL_kNoObject ? nullptr : all[index]; });
  } else {
    forEachIndex(column, first, count,
                 [&](QORuint32 index) { *place++ = index == QORQL_kNoObject ? nullptr : extent.cells(index); });
  }
  return buffer;
}

const IQoriLayout* const* QORQL_RowBlock::fetchLayouts(const QORQL_Extent& extent, QORuint32 column, QORuint64 first,
                                                       std::size_t count, const IQoriLayout** buffer) const {
  if (isWholeExtent) return extent.layoutsOfRun(static_cast<QORuint32>(first), count, buffer);
  const IQoriLayout** place = buffer;
  forEachIndex(column, first, count,
               [&](QORuint32 index) { *place++ = index == QORQL_kNoObject ? nullptr : extent.layout(index); });
  return buffer;
}

// One object without a layout is enough: the extent has none then.
void QORQL_Extent::noteLayout(const IQoriLayout* layout) {
  if (layout == nullptr) {
    _layouts.assign(1, nullptr);
  } else if (hasLayouts() && std::find(_layouts.begin(), _layouts.end(), layout) == _layouts.end()) {
    _layouts.push_back(layout);
  }
}

void QORQL_Extent::makeObjects() const {
  _memory = std::make_unique_for_overwrite<std::byte[]>(size() * sizeof(void*));
  const IQoriObject** object = reinterpret_cast<const IQoriObject**>(_memory.get());
  _objects = object;
  _list->forEach([&object](const QORSmrPtr<IQoriObject>& pointer) { *object++ = pointer.Get(); });
}

const IQoriObject* QORQL_Extent::objectInList(QORuint32 index) const {
  const std::size_t mark = index / kMarkDistance;
  if (mark >= _marks.size() || _moves == kFewMoves) {
    makeObjects();
    return _objects[index];
  }
  ++_moves;
  Cursor cursor(_marks[mark]);
  cursor += index % kMarkDistance + 1;
  return cursor.key().Get();
}

bool QORQL_Extent::moveCursor(QORuint32 first) const {
  if (first == _nextOfCursor) return true;
  const std::size_t mark = first / kMarkDistance;
  if (first != 0 && (mark >= _marks.size() || _moves == kFewMoves)) return false;
  if (first == 0) {
    _cursor.emplace(*_list);
  } else {
    ++_moves;
    _cursor.emplace(_marks[mark]);
    *_cursor += first % kMarkDistance;
  }
  _nextOfCursor = first;
  return true;
}

template <class Take>
void QORQL_Extent::forRun(QORuint32 first, std::size_t count, const Take& take) const {
  if (_objects == nullptr && !moveCursor(first)) makeObjects();
  if (_objects == nullptr) {
    forRunInList(count, take);
  } else {
    std::for_each_n(_objects + first, count, [&take](const IQoriObject* object) { take(*object); });
  }
}

const char* const* QORQL_Extent::cellsOfRun(QORuint32 first, std::size_t count, const char** buffer) const {
  if (_cells != nullptr) return _cells + first;
  const char** place = buffer;
  forRun(first, count, [&place](const IQoriObject& object) { *place++ = object.getCells().cells; });
  return buffer;
}

const IQoriLayout* const* QORQL_Extent::layoutsOfRun(QORuint32 first, std::size_t count,
                                                     const IQoriLayout** buffer) const {
  if (_layoutsOfObjects != nullptr) return _layoutsOfObjects + first;
  if (hasOneLayout()) {
    std::fill_n(buffer, count, _layouts.front());
    return buffer;
  }
  const IQoriLayout** place = buffer;
  forRun(first, count, [&place](const IQoriObject& object) { *place++ = object.getLayout(); });
  return buffer;
}

const QORSmrPtr<IQoriObject>& QORQL_Extent::pointer(QORuint32 index) const {
  if (_pointers.empty()) {
    _pointers.reserve(size());
    QORValSlistIterator<QORSmrPtr<IQoriObject>> iterator(*_list);
    while (++iterator) _pointers.push_back(&iterator.key());
  }
  return *_pointers[index];
}

QORuint64 QORQL_LazyRows::rowCount() const noexcept {
  if (_blocks.empty()) return 0;
  QORuint64 count = 1;
  for (const QORQL_RowBlock& block : _blocks) {
    if (__builtin_mul_overflow(count, block.rowCount, &count)) return ~QORuint64{0};
  }
  return count;
}

void QORQL_LazyRows::addExtent(std::shared_ptr<const QORQL_Extent> extent) {
  const QORuint32 column = static_cast<QORuint32>(_extents.size());
  const QORuint32 count = static_cast<QORuint32>(extent->size());
  const bool hadRows = rowCount() != 0;
  _extents.push_back(std::move(extent));
  QORQL_RowBlock block;
  block.columns = {column};
  if (hadRows && count == 0) {
    block.tuples = {QORQL_kNoObject};
    block.rowCount = 1;
  } else {
    block.isWholeExtent = true;
    block.rowCount = count;
  }
  if (hadRows || _blocks.empty() || count == 0) {
    _blocks.push_back(std::move(block));
    return;
  }
  // Earlier columns brought no rows: each object makes a row of its own, with
  // null cells before it.
  for (QORQL_RowBlock& earlier : _blocks) {
    earlier.isWholeExtent = false;
    earlier.tuples.assign(earlier.columns.size(), QORQL_kNoObject);
    earlier.rowCount = 1;
  }
  _blocks.push_back(std::move(block));
}

QORQL_ColumnList QORQL_LazyRows::columnsOf(const QORQL_BlockList& blockNumbers) const {
  QORQL_ColumnList columns;
  for (const std::size_t number : blockNumbers) {
    columns.append(_blocks[number].columns.begin(), _blocks[number].columns.end());
  }
  std::sort(columns.begin(), columns.end());
  return columns;
}

void QORQL_LazyRows::sortTuples(QORQL_RowBlock& block) {
  const std::size_t width = block.columns.size();
  const QORuint32* const tuples = block.tuples.data();
  std::vector<QORuint64> order(block.rowCount);
  std::iota(order.begin(), order.end(), QORuint64{0});
  const auto comesFirst = [tuples, width](QORuint64 a, QORuint64 b) {
    const QORuint32* const x = tuples + a * width;
    const QORuint32* const y = tuples + b * width;
    return std::lexicographical_compare(x, x + width, y, y + width);
  };
  if (std::is_sorted(order.begin(), order.end(), comesFirst)) return;
  std::sort(order.begin(), order.end(), comesFirst);
  std::vector<QORuint32> sorted;
  sorted.reserve(block.tuples.size());
  for (const QORuint64 row : order) sorted.insert(sorted.end(), tuples + row * width, tuples + (row + 1) * width);
  block.tuples = std::move(sorted);
}

namespace {

// Where a column of a product comes from.
struct ProductColumn {
  bool isFirst;
  std::size_t place;
};

std::vector<ProductColumn> productColumns(const QORQL_RowBlock& a, const QORQL_RowBlock& b,
                                          const QORQL_ColumnList& columns) {
  std::vector<ProductColumn> result;
  for (const QORuint32 column : columns) {
    const auto inA = std::lower_bound(a.columns.begin(), a.columns.end(), column);
    const bool isFirst = inA != a.columns.end() && *inA == column;
    const auto inB = std::lower_bound(b.columns.begin(), b.columns.end(), column);
    result.push_back({isFirst, static_cast<std::size_t>(isFirst ? inA - a.columns.begin() : inB - b.columns.begin())});
  }
  return result;
}

// The product of two blocks, in ascending order of its tuples. It grows row by
// row, so that the caller can stop one that is too large.
QORQL_RowBlock product(const QORQL_RowBlock& a, const QORQL_RowBlock& b) {
  QORQL_RowBlock result;
  result.columns = a.columns;
  result.columns.append(b.columns.begin(), b.columns.end());
  std::sort(result.columns.begin(), result.columns.end());
  const std::vector<ProductColumn> sources = productColumns(a, b, result.columns);
  if (__builtin_mul_overflow(a.rowCount, b.rowCount, &result.rowCount)) throw std::bad_alloc();
  QORQL_StopCheck stopCheck;
  stopCheck.hold(result.rowCount, sources.size() * sizeof(QORuint32));
  result.tuples.reserve(result.rowCount * sources.size());
  for (QORuint64 i = 0; i < a.rowCount; ++i) {
    stopCheck.count(b.rowCount);
    for (QORuint64 j = 0; j < b.rowCount; ++j) {
      for (const ProductColumn& source : sources) {
        result.tuples.push_back(source.isFirst ? a.index(i, source.place) : b.index(j, source.place));
      }
    }
  }
  if (a.columns.back() > b.columns.front()) QORQL_LazyRows::sortTuples(result);
  return result;
}

}  // namespace

std::size_t QORQL_LazyRows::multiply(const QORQL_BlockList& blockNumbers) {
  QORQL_RowBlock joined = _blocks[blockNumbers.front()];
  for (std::size_t i = 1; i < blockNumbers.size(); ++i) joined = product(joined, _blocks[blockNumbers[i]]);
  return replaceBlocks(blockNumbers, std::move(joined));
}

std::size_t QORQL_LazyRows::replaceBlocks(const QORQL_BlockList& blockNumbers, QORQL_RowBlock&& block) {
  Blocks kept;
  std::size_t place = 0;
  kept.reserve(_blocks.size());
  _blocks[blockNumbers.front()] = std::move(block);
  for (std::size_t number = 0; number < _blocks.size(); ++number) {
    const bool stays = number == blockNumbers.front() ||
                       std::find(blockNumbers.begin(), blockNumbers.end(), number) == blockNumbers.end();
    if (number == blockNumbers.front()) place = kept.size();
    if (stays) kept.push_back(std::move(_blocks[number]));
  }
  _blocks = std::move(kept);
  return place;
}

void QORQL_LazyRows::flatten() {
  if (_blocks.size() < 2) return;
  QORQL_BlockList all;
  all.resize(_blocks.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  if (rowCount() != 0) {
    multiply(all);
    return;
  }
  QORQL_RowBlock empty;
  empty.columns = columnsOf(all);
  replaceBlocks(all, std::move(empty));
}
