// A condition that compares a property of the instance itself with a number or
// a text, decided in a few instructions where the property is of that kind.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLQUICKCHECK_H
#define QORQL_CQLQUICKCHECK_H

#include <atomic>

#include "cimom/IQoriObject.h"
#include "cimom/QoriScalar.h"
#include "cmpbase.h"

// Threads may share one.
class CQLQuickCheck {
 public:
  enum class Outcome : QORuint8 { Fails, Holds, Undecided };

  // A check that decides nothing.
  CQLQuickCheck() noexcept = default;
  // BORROWS what the constant shows. REQUIRES canDecide(constant).
  CQLQuickCheck(const QORString& property, QoriRelation relation, const QoriScalar& constant) noexcept;
  CQLQuickCheck(CQLQuickCheck&& other) noexcept;
  CQLQuickCheck& operator=(CQLQuickCheck&&) = delete;

  static bool canDecide(const QoriScalar& constant) noexcept {
    const bool isOrderedReal = constant.kind == QoriScalarKind::Real && constant.r == constant.r;
    return constant.kind == QoriScalarKind::Unsigned || isOrderedReal || constant.kind == QoriScalarKind::Text;
  }

  // `layout` is the instance's own, which may be null, and `serial` its number.
  Outcome check(const IQoriObject& instance, const IQoriLayout* layout, QORuint64 serial) const noexcept {
    QORuint64 place = _place.load(std::memory_order_relaxed);
    if (place >> kPositionBits != serial && !find(layout, serial, place)) return Outcome::Undecided;
    const QoriScalar value = instance.getScalarAt(static_cast<QORuint32>(place & kPositionMask));
    if (value.kind != _constant.kind) return Outcome::Undecided;
    switch (value.kind) {
      case QoriScalarKind::Unsigned:
        return decide(value.u == _constant.u, value.u > _constant.u);
      case QoriScalarKind::Real:
        if (value.r != value.r) return Outcome::Undecided;
        return decide(value.r == _constant.r, value.r > _constant.r);
      case QoriScalarKind::Text:
        return checkText(*value.text);
      default:
        return Outcome::Undecided;
    }
  }

 private:
  // A layout's number with the property's position in it: together, so that
  // threads always see both of one layout.
  static constexpr QORuint32 kPositionBits = 16;
  static constexpr QORuint64 kPositionMask = (1U << kPositionBits) - 1;
  static constexpr QORuint64 kNowhere = ~QORuint64{0};

  bool find(const IQoriLayout* layout, QORuint64 serial, QORuint64& place) const noexcept;
  Outcome checkText(const QORString& text) const noexcept;
  Outcome decide(bool isEqual, bool isGreater) const noexcept {
    const unsigned order = (isEqual ? 1U : 0U) | (isGreater ? 2U : 0U);
    return (_orders >> order & 1U) != 0 ? Outcome::Holds : Outcome::Fails;
  }

  QORString _property;
  QoriScalar _constant;
  unsigned _orders = 0;  // bit 0: holds for less, bit 1: for equal, bit 2: for greater
  mutable std::atomic<QORuint64> _place{kNowhere};
};

#endif
