// Reading a property by its position in each layout.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_PropertyColumn.h"

#include <algorithm>
#include <array>

std::optional<QORQL_PropertyColumn> QORQL_PropertyColumn::bind(const QORQL_LazyRows& rows, QORuint32 column,
                                                               const QORString& propertyName) {
  const QORQL_Extent& extent = rows.extent(column);
  if (!extent.hasLayouts()) return std::nullopt;
  return QORQL_PropertyColumn(extent, column, propertyName);
}

QORQL_PropertyColumn::QORQL_PropertyColumn(const QORQL_Extent& extent, QORuint32 column, const QORString& propertyName)
    : _extent(&extent), _column(column) {
  const std::vector<const IQoriLayout*>& layouts = extent.layouts();
  const QORsint32 first = layouts.empty() ? -1 : layouts.front()->getPosition(propertyName);
  const bool isEverywhereTheSame = std::all_of(layouts.begin(), layouts.end(), [&](const IQoriLayout* layout) {
    return layout->getPosition(propertyName) == first;
  });
  if (isEverywhereTheSame && first >= 0) {
    _onlyPosition = first;
    if (extent.hasCells()) findOffset();
    return;
  }
  for (const IQoriLayout* const layout : layouts) {
    _places.push_back({layout, layout->getPosition(propertyName)});
    _isComplete = _isComplete && _places.back().position >= 0;
  }
}

void QORQL_PropertyColumn::findOffset() noexcept {
  const std::vector<const IQoriLayout*>& layouts = _extent->layouts();
  const auto offsetIn = [this](const IQoriLayout* layout) {
    return layout->getCellOffset(static_cast<QORuint32>(_onlyPosition));
  };
  const QORuint32 offset = offsetIn(layouts.front());
  const bool isEverywhereTheSame = std::all_of(layouts.begin(), layouts.end(),
                                               [&](const IQoriLayout* layout) { return offsetIn(layout) == offset; });
  if (isEverywhereTheSame) _offset = offset;
}

bool QORQL_PropertyColumn::isSameAs(const QORQL_PropertyColumn& other) const noexcept {
  return _extent == other._extent && _column == other._column && _onlyPosition == other._onlyPosition &&
         std::equal(_places.begin(), _places.end(), other._places.begin(), other._places.end(),
                    [](const Place& a, const Place& b) { return a.layout == b.layout && a.position == b.position; });
}

QORsint32 QORQL_PropertyColumn::positionIn(const IQoriObject& object) const noexcept {
  if (_onlyPosition >= 0) return _onlyPosition;
  const IQoriLayout* const layout = object.getLayout();
  for (const Place& place : _places) {
    if (place.layout == layout) return place.position;
  }
  return -1;
}

QoriScalar QORQL_PropertyColumn::view(const IQoriObject* object) const noexcept {
  const QORsint32 position = object == nullptr ? -1 : positionIn(*object);
  return position < 0 ? QoriScalar() : object->getScalarAt(static_cast<QORuint32>(position));
}

QORSmrPtr<IQoriValue> QORQL_PropertyColumn::value(const IQoriObject* object) const {
  const QORsint32 position = object == nullptr ? -1 : positionIn(*object);
  return position < 0 ? QORSmrPtr<IQoriValue>() : object->getValueAt(static_cast<QORuint32>(position));
}

const IQoriType* QORQL_PropertyColumn::type(const QORQL_RowView& row) const noexcept {
  const IQoriObject* const object = row.object(_column);
  const QORsint32 position = object == nullptr ? -1 : positionIn(*object);
  if (position < 0) return nullptr;
  const QoriScalarKind kind = object->getScalarAt(static_cast<QORuint32>(position)).kind;
  if (kind == QoriScalarKind::Null || kind == QoriScalarKind::Complex) return nullptr;
  return object->getLayout()->getType(static_cast<QORuint32>(position)).Get();
}

void QORQL_PropertyColumn::fetch(const QORQL_RowBlock& block, QORuint64 first, std::size_t count,
                                 const IQoriObject** objects) const {
  block.fetch(*_extent, _column, first, count, objects);
}

void QORQL_PropertyColumn::read(const IQoriObject* const* objects, std::size_t count, QoriScalar* out) const noexcept {
  if (_onlyPosition < 0) {
    for (std::size_t i = 0; i < count; ++i) out[i] = view(objects[i]);
  } else {
    const QORuint32 position = static_cast<QORuint32>(_onlyPosition);
    for (std::size_t i = 0; i < count; ++i) {
      out[i] = objects[i] == nullptr ? QoriScalar() : objects[i]->getScalarAt(position);
      prefetchText(out[i]);
    }
  }
}

void QORQL_PropertyColumn::read(const char* const* cells, std::size_t count, QoriScalar* out) const noexcept {
  const QORuint32 offset = _offset;
  for (std::size_t i = 0; i < count; ++i) {
    out[i] = viewIn(cells[i], offset);
    prefetchText(out[i]);
  }
}

void QORQL_PropertyColumn::read(const QORQL_RowBlock& block, QORuint64 first, std::size_t count,
                                QoriScalar* out) const {
  if (readsCells()) {
    std::array<const char*, kBatch> buffer;
    read(fetchCells(block, first, count, buffer.data()), count, out);
  } else {
    std::array<const IQoriObject*, kBatch> objects;
    fetch(block, first, count, objects.data());
    read(objects.data(), count, out);
  }
}
