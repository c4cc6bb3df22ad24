// What the quick check does once for each layout, and the comparison of texts.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLQuickCheck.h"

#include <compare>
#include <utility>

namespace {

using Outcome = CQLQuickCheck::Outcome;

}  // namespace

CQLQuickCheck::CQLQuickCheck(const QORString& property, QoriRelation relation, const QoriScalar& constant) noexcept
    : _constant(constant), _property(property) {
  const std::partial_ordering orders[] = {std::partial_ordering::less, std::partial_ordering::equivalent,
                                          std::partial_ordering::greater};
  for (unsigned order = 0; order < 3; ++order) _orders |= qori::satisfies(orders[order], relation) ? 1U << order : 0U;
  if (constant.kind == QoriScalarKind::Unsigned) findNumbers();
}

CQLQuickCheck::CQLQuickCheck(CQLQuickCheck&& other) noexcept
    : _offset(other._offset.load(std::memory_order_relaxed)),
      _constant(other._constant),
      _least(other._least),
      _width(other._width),
      _isOutside(other._isOutside),
      _property(std::move(other._property)),
      _orders(other._orders),
      _position(other._position.load(std::memory_order_relaxed)) {}

// The numbers that hold, or those that do not, are a range in which the constant is.
void CQLQuickCheck::findNumbers() noexcept {
  constexpr QORuint64 kGreatest = ~QORuint64{0};
  const auto holds = [this](unsigned order) { return (_orders >> order & 1U) != 0; };
  _isOutside = !holds(1);
  const bool reachesDown = holds(0) != _isOutside;
  const bool reachesUp = holds(2) != _isOutside;
  _least = reachesDown ? 0 : _constant.u;
  _width = (reachesUp ? kGreatest : _constant.u) - _least;
}

Outcome CQLQuickCheck::check(const IQoriObject& instance, const QoriCells& found, QORuint64 serial) const noexcept {
  const bool hasCells = found.cells != nullptr;
  QORuint64 place = (hasCells ? _offset : _position).load(std::memory_order_relaxed);
  if (place >> kPlaceBits != serial && !find(found, serial, place)) return Outcome::Undecided;
  const QORuint32 number = static_cast<QORuint32>(place & kPlaceMask);
  const QoriScalar value = hasCells ? QoriCells::at(found.cells, number) : instance.getScalarAt(number);
  if (value.kind != _constant.kind) return Outcome::Undecided;
  return value.kind == QoriScalarKind::Unsigned ? decideNumber(value.u) : decideOther(value);
}

// Layouts without a number, and places that the number has no room for, are left
// to the condition itself.
bool CQLQuickCheck::find(const QoriCells& found, QORuint64 serial, QORuint64& place) const noexcept {
  if (serial == 0 || _property.isEmpty()) return false;
  const QORsint32 position = found.layout->getPosition(_property);
  if (position < 0) return false;
  const bool hasCells = found.cells != nullptr;
  const QORuint32 number =
      hasCells ? found.layout->getCellOffset(static_cast<QORuint32>(position)) : static_cast<QORuint32>(position);
  if (number > kPlaceMask) return false;
  place = serial << kPlaceBits | number;
  (hasCells ? _offset : _position).store(place, std::memory_order_relaxed);
  return true;
}

Outcome CQLQuickCheck::decideOther(const QoriScalar& value) const noexcept {
  if (value.kind == QoriScalarKind::Text) {
    const int order = value.text->view().compare(_constant.text->view());
    return decideOrder(order == 0, order > 0);
  }
  if (value.kind != QoriScalarKind::Real || value.r != value.r) return Outcome::Undecided;
  return decideOrder(value.r == _constant.r, value.r > _constant.r);
}
