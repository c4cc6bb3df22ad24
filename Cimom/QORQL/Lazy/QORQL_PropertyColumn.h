// One property of the objects of one extent, read for many rows at a time.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROPERTYCOLUMN_H
#define QORQL_PROPERTYCOLUMN_H

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
  // Whether every object of the extent has the property.
  bool isComplete() const noexcept { return _isComplete; }
  bool isSameAs(const QORQL_PropertyColumn& other) const noexcept;

  // The view of an object's property; Null for no object and for an object that lacks the property.
  QoriScalar view(const IQoriObject* object) const noexcept;
  // The value of an object's property; null as above.
  QORSmrPtr<IQoriValue> value(const IQoriObject* object) const;
  // The column's objects in `count` rows of the block that has it, from `first` on; null for none.
  void fetch(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, const IQoriObject** objects) const;
  // The views of the property of `count` objects.
  void read(const IQoriObject* const* objects, std::size_t count, QoriScalar* out) const noexcept;
  // Both. REQUIRES count <= kBatch.
  void read(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QoriScalar* out) const;

 private:
  struct Place {
    const IQoriLayout* layout;
    QORsint32 position;  // -1: the layout lacks the property
  };

  QORQL_PropertyColumn(const QORQL_Extent& extent, QORuint32 column, const QORString& propertyName);
  QORsint32 positionIn(const IQoriObject& object) const noexcept;

  const QORQL_Extent* _extent;
  QORuint32 _column;
  bool _isComplete = true;
  QORsint32 _onlyPosition = -1;  // where it stands in all layouts alike, as in those of subclasses; otherwise -1
  std::vector<Place> _places;
};

#endif
