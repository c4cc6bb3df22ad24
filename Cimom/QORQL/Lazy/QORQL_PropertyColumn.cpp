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
  for (const IQoriLayout* const layout : extent.layouts()) {
    _places.push_back({layout, layout->getPosition(propertyName)});
    _isComplete = _isComplete && _places.back().position >= 0;
  }
  const auto standsWhereTheFirstDoes = [this](const Place& place) {
    return place.position == _places.front().position;
  };
  const bool isEverywhereTheSame = std::all_of(_places.begin(), _places.end(), standsWhereTheFirstDoes);
  if (!_places.empty() && isEverywhereTheSame) _onlyPosition = _places.front().position;
}

bool QORQL_PropertyColumn::isSameAs(const QORQL_PropertyColumn& other) const noexcept {
  return _extent == other._extent && _column == other._column &&
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

void QORQL_PropertyColumn::fetch(const QORQL_RowBlock& block, QORuint64 first, std::size_t count,
                                 const IQoriObject** objects) const {
  block.fetch(*_extent, _column, first, count, objects);
}

void QORQL_PropertyColumn::read(const IQoriObject* const* objects, std::size_t count, QoriScalar* out) const noexcept {
  // Fetches the texts into the cache while the caller works on the first of them.
  if (_onlyPosition < 0) {
    for (std::size_t i = 0; i < count; ++i) out[i] = view(objects[i]);
  } else {
    const QORuint32 position = static_cast<QORuint32>(_onlyPosition);
    for (std::size_t i = 0; i < count; ++i) {
      out[i] = objects[i] == nullptr ? QoriScalar() : objects[i]->getScalarAt(position);
      const bool hasText = out[i].kind == QoriScalarKind::Text || out[i].kind == QoriScalarKind::DateTime;
      if (hasText) __builtin_prefetch(out[i].text->data());
    }
  }
}

void QORQL_PropertyColumn::read(const QORQL_RowBlock& block, QORuint64 first, std::size_t count,
                                QoriScalar* out) const {
  std::array<const IQoriObject*, kBatch> objects;
  fetch(block, first, count, objects.data());
  read(objects.data(), count, out);
}
