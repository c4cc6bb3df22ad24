// The rows of a table before anyone looks at them: extents of objects, and
// blocks of index tuples whose cross product is the row set.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_LAZYROWS_H
#define QORQL_LAZYROWS_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "Cimom/QORQL/QORQL_FewList.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// The objects that one enumeration gave for one column. Belongs to one thread.
class QORQL_Extent {
 public:
  using ObjectList = QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>>;

  explicit QORQL_Extent(const ObjectList& list);

  QORuint32 size() const noexcept { return _list.Get()->entries(); }
  // Whether the list has null elements; such an extent cannot be used further.
  bool hasNull() const noexcept { return _hasNull; }
  // An object by its place. Except for a few of those that have been read in runs,
  // this makes an array of all of them.
  const IQoriObject* object(QORuint32 index) const {
    return _objects == nullptr ? objectInList(index) : _objects[index];
  }
  // The objects from `first` on, without the array as long as runs follow one
  // another, except for a few that go back. REQUIRES that there are so many.
  void copyRun(QORuint32 first, std::size_t count, const IQoriObject** out) const {
    if (_objects == nullptr && !moveCursor(first)) makeObjects();
    if (_objects != nullptr) {
      std::copy_n(_objects + first, count, out);
    } else {
      forRunInList(count, [&out](const IQoriObject& object) { *out++ = &object; });
    }
  }
  // The same of the objects' cells: where they stand already, or in the buffer. REQUIRES hasCells().
  const char* const* cellsOfRun(QORuint32 first, std::size_t count, const char** buffer) const;
  // REQUIRES hasCells().
  const char* cells(QORuint32 index) const {
    return _cells == nullptr ? object(index)->getCells().cells : _cells[index];
  }
  // BORROWS: the cells of all objects, by their places; null where there are many objects. REQUIRES hasCells().
  const char* const* allCells() const noexcept { return _cells; }
  // The objects' layouts, as cellsOfRun() has their cells. REQUIRES hasLayouts().
  const IQoriLayout* const* layoutsOfRun(QORuint32 first, std::size_t count, const IQoriLayout** buffer) const;
  // The layout of an object. REQUIRES as above.
  const IQoriLayout* layout(QORuint32 index) const {
    if (hasOneLayout()) return _layouts.front();
    return _layoutsOfObjects == nullptr ? object(index)->getLayout() : _layoutsOfObjects[index];
  }
  // The list's own pointer to an object.
  const QORSmrPtr<IQoriObject>& pointer(QORuint32 index) const;
  // The distinct layouts in order of appearance.
  const std::vector<const IQoriLayout*>& layouts() const noexcept { return _layouts; }
  // True when every object has a layout, so that positions may be bound.
  bool hasLayouts() const noexcept { return _layouts.empty() || _layouts.front() != nullptr; }
  // True when every object has cells: each layout tells then where in them a property lies.
  bool hasCells() const noexcept { return _hasCells; }

 private:
  // Makes the arrays and notes what the objects tell.
  void makeArrays();
  // Makes only those that objects of one layout need; false when they are not of one.
  bool fillTwoArrays();
  void setArrays(std::size_t distance) noexcept;
  void noteSomeObjects();
  void noteArrays();
  // Notes what the objects tell, without arrays.
  void lookAtObjects();
  // An object, which may be null, with its layout, which is none of the last two.
  void noteObject(const IQoriObject* object, const IQoriLayout* layout);
  // Calls take(object) for the objects from `first` on.
  template <class Take>
  void forRun(QORuint32 first, std::size_t count, const Take& take) const;
  void noteLayout(const IQoriLayout* layout);
  // REQUIRES no null objects.
  bool hasOneLayout() const noexcept { return _layouts.size() == 1 && hasLayouts(); }
  void makeObjects() const;
  const IQoriObject* objectInList(QORuint32 index) const;
  // Puts the cursor before the object at `first`; false when the array would be faster.
  bool moveCursor(QORuint32 first) const;
  // Calls use(object) for the next `count` objects, and moves the cursor behind them.
  template <class Use>
  void forRunInList(std::size_t count, const Use& use) const {
    for (std::size_t i = 0; i < count; ++i, ++_nextOfCursor) {
      if (_nextOfCursor == _marks.size() * kMarkDistance) _marks.push_back(*_cursor);
      if (!++*_cursor) return;
      use(*_cursor->key().Get());
    }
  }

  using Cursor = QORValSlistIterator<QORSmrPtr<IQoriObject>>;
  // A list has no access to its middle: copies of the cursor serve as marks there, as
  // long as they are rarely needed.
  static constexpr QORuint32 kMarkDistance = 4096;
  static constexpr QORuint32 kFewMoves = 64;

  ObjectList _list;
  bool _hasNull = false;
  bool _hasCells = true;
  std::vector<const IQoriLayout*> _layouts;
  mutable std::optional<Cursor> _cursor;  // after the last run; always set
  mutable QORuint32 _nextOfCursor = 0;
  mutable std::vector<Cursor> _marks;  // before the first, the 4,096th object, and so on
  mutable QORuint32 _moves = 0;
  mutable std::unique_ptr<std::byte[]> _memory;          // of the arrays
  mutable const IQoriObject* const* _objects = nullptr;  // null where there are many, until somebody needs it
  // Of the objects; null where there are many.
  const char* const* _cells = nullptr;
  const IQoriLayout* const* _layoutsOfObjects = nullptr;  // null also where all have one
  mutable std::vector<const QORSmrPtr<IQoriObject>*> _pointers;
};

// Index of an absent object.
inline constexpr QORuint32 QORQL_kNoObject = 0xffffffffU;

// Numbers of columns, and of blocks.
using QORQL_ColumnList = QORQL_FewList<QORuint32, 4>;
using QORQL_BlockList = QORQL_FewList<std::size_t, 4>;

// Tuples over some of the columns, in row order. A block over one column
// without tuples of its own stands for all objects of the extent.
struct QORQL_RowBlock {
  QORQL_ColumnList columns;       // ascending
  std::vector<QORuint32> tuples;  // rowCount x columns.size(), unless isWholeExtent
  bool isWholeExtent = false;
  QORuint64 rowCount = 0;

  // Calls use(index) with one column's index in each of `count` rows from `first` on. REQUIRES tuples.
  template <class Use>
  void forEachIndex(QORuint32 column, QORuint64 first, std::size_t count, const Use& use) const {
    const std::size_t width = columns.size();
    const QORuint32* index = tuples.data() + first * width;
    if (width == 1) {
      for (std::size_t i = 0; i < count; ++i) use(index[i]);
      return;
    }
    index += std::lower_bound(columns.begin(), columns.end(), column) - columns.begin();
    for (std::size_t i = 0; i < count; ++i, index += width) use(*index);
  }

  QORuint32 index(QORuint64 row, std::size_t place) const noexcept {
    return isWholeExtent ? static_cast<QORuint32>(row) : tuples[row * columns.size() + place];
  }
  // One column's objects in `count` rows from `first` on; null for none. REQUIRES a column of the block, with its
  // extent.
  void fetch(const QORQL_Extent& extent, QORuint32 column, QORuint64 first, std::size_t count,
             const IQoriObject** objects) const;
  // The same of the objects' cells: where they stand already, or in the buffer. REQUIRES as above, and cells.
  const char* const* fetchCells(const QORQL_Extent& extent, QORuint32 column, QORuint64 first, std::size_t count,
                                const char** buffer) const;
  // The same of the objects' layouts. REQUIRES layouts.
  const IQoriLayout* const* fetchLayouts(const QORQL_Extent& extent, QORuint32 column, QORuint64 first,
                                         std::size_t count, const IQoriLayout** buffer) const;
};

// While there are several blocks, each is in ascending order of its tuples, and
// the row order is ascending over all columns. A single block may have any order.
class QORQL_LazyRows {
 public:
  using Blocks = QORQL_FewList<QORQL_RowBlock, 2>;

  // The cross product with a further column. REQUIRES a list without null elements.
  void addExtent(std::shared_ptr<const QORQL_Extent> extent);

  std::size_t columnCount() const noexcept { return _extents.size(); }
  QORuint64 rowCount() const noexcept;
  const QORQL_Extent& extent(std::size_t column) const noexcept { return *_extents[column]; }
  Blocks& blocks() noexcept { return _blocks; }
  const Blocks& blocks() const noexcept { return _blocks; }

  const IQoriObject* object(QORuint32 column, QORuint32 index) const {
    return index == QORQL_kNoObject ? nullptr : _extents[column]->object(index);
  }
  QORSmrPtr<IQoriObject> pointer(QORuint32 column, QORuint32 index) const {
    return index == QORQL_kNoObject ? QORSmrPtr<IQoriObject>() : _extents[column]->pointer(index);
  }

  // Joins two or more blocks into one that holds their product in row order. Returns the number that it has then.
  std::size_t multiply(const QORQL_BlockList& blockNumbers);
  // Replaces two or more blocks by the given one. Returns the number that it has then.
  std::size_t replaceBlocks(const QORQL_BlockList& blockNumbers, QORQL_RowBlock&& block);
  // Leaves one block over all columns, in row order.
  void flatten();
  // The columns of some blocks, ascending.
  QORQL_ColumnList columnsOf(const QORQL_BlockList& blockNumbers) const;

  // Puts a block's tuples into ascending order.
  static void sortTuples(QORQL_RowBlock& block);

 private:
  std::vector<std::shared_ptr<const QORQL_Extent>> _extents;
  Blocks _blocks;
};

// One row of lazy rows: an object for each column that has been selected. That of a
// single column needs no memory of its own.
class QORQL_RowView {
 public:
  explicit QORQL_RowView(const QORQL_LazyRows& lazyRows) : _rows(&lazyRows) {
    if (lazyRows.columnCount() > 1) _cells.resize(lazyRows.columnCount());
  }

  void select(QORuint32 column, QORuint32 index) { cell(column) = {_rows->object(column, index), index}; }
  void select(const QORQL_RowBlock& block, QORuint64 row) {
    _number = row;
    for (std::size_t place = 0; place < block.columns.size(); ++place) {
      select(block.columns[place], block.index(row, place));
    }
  }

  const QORQL_LazyRows& rows() const noexcept { return *_rows; }
  // Of the row in the block that was selected last.
  QORuint64 number() const noexcept { return _number; }
  // The object of a column and its place there; null and QORQL_kNoObject until one is selected.
  const IQoriObject* object(QORuint32 column) const noexcept { return cell(column).object; }
  QORuint32 index(QORuint32 column) const noexcept { return cell(column).index; }

 private:
  struct Cell {
    const IQoriObject* object = nullptr;
    QORuint32 index = QORQL_kNoObject;
  };
  const Cell& cell(QORuint32 column) const noexcept { return _cells.empty() ? _onlyCell : _cells[column]; }
  Cell& cell(QORuint32 column) noexcept { return _cells.empty() ? _onlyCell : _cells[column]; }

  const QORQL_LazyRows* _rows;
  Cell _onlyCell;
  std::vector<Cell> _cells;  // empty for one column
  QORuint64 _number = 0;
};

#endif
