// One property of the objects of one extent, read for many rows at a time.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROPERTYCOLUMN_H
#define QORQL_PROPERTYCOLUMN_H

#include <cstddef>
#include <optional>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"
#include "cimom/QoriScalar.h"
#include "cmpbase.h"

// Positions are found once for each layout. Reading a run of rows in one short
// loop lets the processor wait for many objects at once, where reading row by row
// waits for each.
class QORQL_PropertyColumn {
 public:
  // How many rows are read at a time: few enough for their cells to stay in the nearest cache.
  static constexpr std::size_t kBatch = 64;

  // BORROWS the rows' extent, which the rows share with every copy of them.
  // Nothing when an object of the extent has no layout.
  static std::optional<QORQL_PropertyColumn> bind(const QORQL_LazyRows& rows, QORuint32 column,
                                                  const QORString& propertyName);

  QORuint32 column() const noexcept { return _column; }
  // How many objects the extent has.
  QORuint32 objectCount() const noexcept { return _extent->size(); }
  // Whether every object of the extent has the property.
  bool isComplete() const noexcept { return _isComplete; }
  bool isSameAs(const QORQL_PropertyColumn& other) const noexcept;

  // The view of an object's property; Null for no object and for an object that lacks the property.
  QoriScalar view(const IQoriObject* object) const noexcept;
  // The value of an object's property; null as above.
  QORSmrPtr<IQoriValue> value(const IQoriObject* object) const;
  // BORROWS: the type of the row's value, as its object's layout tells it; null for no value, and for an array, a
  // reference and an object.
  const IQoriType* type(const QORQL_RowView& row) const noexcept;
  // The column's objects in `count` rows of the block that has it, from `first` on; null for none.
  void fetch(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, const IQoriObject** objects) const;
  // Whether the property lies at one offset in the cells of every object, so that reading it makes no call.
  bool readsCells() const noexcept { return _offset != kNoOffset; }
  // The cells of the column's objects: where they stand already, or in the buffer. REQUIRES as above, and readsCells().
  const char* const* fetchCells(const QORQL_RowBlock& block, QORuint64 first, std::size_t count,
                                const char** buffer) const {
    return block.fetchCells(*_extent, _column, first, count, buffer);
  }
  // BORROWS: the cells of all objects of the extent, by their places; null where they do not stand so. REQUIRES
  // readsCells().
  const char* const* allCells() const noexcept { return _extent->allCells(); }
  QORuint32 offset() const noexcept { return _offset; }
  // The view of the property with that offset in the cells that fetchCells() gave for a row.
  static const QoriScalar& viewIn(const char* cells, QORuint32 offset) noexcept {
    return cells == nullptr ? kNull : QoriCells::at(cells, offset);
  }
  // Has the text of a view, if any, fetched into the cache: its length, which stands before it, and as much of it as a
  // datetime has, which may reach into the next line. Inlined always: the compiler takes a function that does nothing
  // else for one without effect, and leaves its calls out.
  [[gnu::always_inline]] static void prefetchText(const QoriScalar& view) noexcept {
    constexpr std::ptrdiff_t kLengthBefore = 16;
    constexpr std::ptrdiff_t kDateTimeEnd = 24;
    if (view.kind != QoriScalarKind::Text && view.kind != QoriScalarKind::DateTime) return;
    __builtin_prefetch(view.text->data() - kLengthBefore);
    __builtin_prefetch(view.text->data() + kDateTimeEnd);
  }
  // The views of the property of `count` objects, or in as many cells.
  void read(const IQoriObject* const* objects, std::size_t count, QoriScalar* out) const noexcept;
  void read(const char* const* cells, std::size_t count, QoriScalar* out) const noexcept;
  // Fetches and reads. REQUIRES count <= kBatch.
  void read(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QoriScalar* out) const;

 private:
  static constexpr QORuint32 kNoOffset = ~QORuint32{0};
  static constexpr QoriScalar kNull{};

  struct Place {
    const IQoriLayout* layout;
    QORsint32 position;  // -1: the layout lacks the property
  };

  QORQL_PropertyColumn(const QORQL_Extent& extent, QORuint32 column, const QORString& propertyName);
  void findOffset() noexcept;
  QORsint32 positionIn(const IQoriObject& object) const noexcept;

  const QORQL_Extent* _extent;
  QORuint32 _column;
  bool _isComplete = true;
  QORsint32 _onlyPosition = -1;   // where it stands in all layouts alike, as in those of subclasses; otherwise -1
  QORuint32 _offset = kNoOffset;  // of its view in the cells of each object
  std::vector<Place> _places;     // in each layout, unless there is an only position
};

#endif
