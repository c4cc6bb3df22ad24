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

  // `found` is what the instance's getCells() gives, and `serial` the number of its layout, 0 for none.
  Outcome check(const IQoriObject& instance, const QoriCells& found, QORuint64 serial) const noexcept;
  // The same, but undecided unless instances of that layout were the last that check() found the property in.
  Outcome checkKnown(const char* cells, QORuint64 serial) const noexcept {
    const QORuint64 place = _offset.load(std::memory_order_relaxed);
    if (place >> kPlaceBits != serial) return Outcome::Undecided;
    const QoriScalar& value = QoriCells::at(cells, static_cast<QORuint32>(place & kPlaceMask));
    if (value.kind != _constant.kind) return Outcome::Undecided;
    return value.kind == QoriScalarKind::Unsigned ? decideNumber(value.u) : decideOther(value);
  }

 private:
  // A layout's number with the property's position or offset in it: together, so
  // that threads always see both of one layout.
  static constexpr QORuint32 kPlaceBits = 16;
  static constexpr QORuint64 kPlaceMask = (1U << kPlaceBits) - 1;
  static constexpr QORuint64 kNowhere = ~QORuint64{0};

  bool find(const QoriCells& found, QORuint64 serial, QORuint64& place) const noexcept;
  void findNumbers() noexcept;
  // Of the constant's kind, which is not Unsigned.
  Outcome decideOther(const QoriScalar& value) const noexcept;
  Outcome decideNumber(QORuint64 value) const noexcept {
    return (value - _least <= _width) != _isOutside ? Outcome::Holds : Outcome::Fails;
  }
  Outcome decideOrder(bool isEqual, bool isGreater) const noexcept {
    const unsigned order = (isEqual ? 1U : 0U) | (isGreater ? 2U : 0U);
    return (_orders >> order & 1U) != 0 ? Outcome::Holds : Outcome::Fails;
  }

  mutable std::atomic<QORuint64> _offset{kNowhere};  // of the view in an instance's cells
  QoriScalar _constant;
  // For an unsigned constant: those numbers for which the condition holds, or all others.
  QORuint64 _least = 0;
  QORuint64 _width = 0;
  bool _isOutside = false;
  QORString _property;
  unsigned _orders = 0;                                // bit 0: holds for less, bit 1: for equal, bit 2: for greater
  mutable std::atomic<QORuint64> _position{kNowhere};  // of the property, for instances without cells
};

#endif
