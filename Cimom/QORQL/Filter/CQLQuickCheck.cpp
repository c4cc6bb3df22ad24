// What the quick check does once for each layout, and the comparison of texts.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLQuickCheck.h"

#include <compare>
#include <utility>

CQLQuickCheck::CQLQuickCheck(const QORString& property, QoriRelation relation, const QoriScalar& constant) noexcept
    : _property(property), _constant(constant) {
  const std::partial_ordering orders[] = {std::partial_ordering::less, std::partial_ordering::equivalent,
                                          std::partial_ordering::greater};
  for (unsigned order = 0; order < 3; ++order) _orders |= qori::satisfies(orders[order], relation) ? 1U << order : 0U;
}

CQLQuickCheck::CQLQuickCheck(CQLQuickCheck&& other) noexcept
    : _property(std::move(other._property)),
      _constant(other._constant),
      _orders(other._orders),
      _place(other._place.load(std::memory_order_relaxed)) {}

// Layouts without a number, and positions that the number has no room for, are
// left to the condition itself.
bool CQLQuickCheck::find(const IQoriLayout* layout, QORuint64 serial, QORuint64& place) const noexcept {
  if (serial == 0 || _property.isEmpty()) return false;
  const QORsint32 position = layout->getPosition(_property);
  if (position < 0 || static_cast<QORuint64>(position) > kPositionMask) return false;
  place = serial << kPositionBits | static_cast<QORuint64>(position);
  _place.store(place, std::memory_order_relaxed);
  return true;
}

CQLQuickCheck::Outcome CQLQuickCheck::checkText(const QORString& text) const noexcept {
  const int order = text.view().compare(_constant.text->view());
  return decide(order == 0, order > 0);
}
