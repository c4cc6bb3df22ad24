// A borrowed, allocation-free view of one CIM value, and the exact comparison of numbers.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_QORISCALAR_H
#define QORQL_CIMOM_QORISCALAR_H

#include <compare>
#include <cstdint>

#include "cmpbase.h"

class IQoriValue;

enum class QoriScalarKind : QORuint8 {
  Null,      // no value
  Boolean,   // b
  Unsigned,  // u: uint8 to uint64
  Signed,    // s: sint8 to sint64
  Real,      // r: real32 and real64
  Char16,    // c
  Text,      // text: string
  DateTime,  // text: datetime
  Complex    // value: array, reference or embedded object
};

// Trivially copied. `text` and `value` are borrowed from the object or value
// that gave the view and are valid while that lives.
struct QoriScalar {
  QoriScalarKind kind = QoriScalarKind::Null;
  union {
    QORuint64 u = 0;
    QORsint64 s;
    QORreal64 r;
    bool b;
    char16_t c;
    const QORString* text;
    const IQoriValue* value;
  };

  // Cheap looks at the kind.
  bool isNull() const noexcept { return kind == QoriScalarKind::Null; }
  bool isNumber() const noexcept {
    return kind == QoriScalarKind::Unsigned || kind == QoriScalarKind::Signed || kind == QoriScalarKind::Real;
  }
};

namespace qori {

// An integer against a real, exactly; unordered with a NaN.
inline std::partial_ordering compareUnsignedReal(QORuint64 a, double b) noexcept {
  constexpr double kTwoTo64 = 18446744073709551616.0;
  if (b != b) return std::partial_ordering::unordered;
  if (b < 0) return std::partial_ordering::greater;
  if (b >= kTwoTo64) return std::partial_ordering::less;
  const QORuint64 whole = static_cast<QORuint64>(b);
  if (a != whole) return a <=> whole;
  return 0.0 <=> (b - static_cast<double>(whole));
}

// The same for a signed one.
inline std::partial_ordering compareSignedReal(QORsint64 a, double b) noexcept {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  if (b != b) return std::partial_ordering::unordered;
  if (b < -kTwoTo63) return std::partial_ordering::greater;
  if (b >= kTwoTo63) return std::partial_ordering::less;
  const QORsint64 whole = static_cast<QORsint64>(b);
  if (a != whole) return a <=> whole;
  return 0.0 <=> (b - static_cast<double>(whole));
}

// The order of two numbers by mathematical value, exact across 64-bit integers
// and reals; unordered only when a NaN takes part. REQUIRES isNumber() of both.
inline std::partial_ordering compareNumbers(const QoriScalar& a, const QoriScalar& b) noexcept {
  using Kind = QoriScalarKind;
  if (a.kind == Kind::Unsigned) {
    if (b.kind == Kind::Unsigned) return a.u <=> b.u;
    if (b.kind == Kind::Real) return compareUnsignedReal(a.u, b.r);
    return b.s < 0 ? std::partial_ordering::greater : std::partial_ordering(a.u <=> static_cast<QORuint64>(b.s));
  }
  if (a.kind == Kind::Signed) {
    if (b.kind == Kind::Signed) return a.s <=> b.s;
    if (b.kind == Kind::Real) return compareSignedReal(a.s, b.r);
    return a.s < 0 ? std::partial_ordering::less : std::partial_ordering(static_cast<QORuint64>(a.s) <=> b.u);
  }
  if (b.kind == Kind::Real) return a.r <=> b.r;
  const std::partial_ordering reversed =
      b.kind == Kind::Unsigned ? compareUnsignedReal(b.u, a.r) : compareSignedReal(b.s, a.r);
  return 0 <=> reversed;
}

}  // namespace qori

// The relational operations of values.
enum class QoriRelation : QORuint8 { Equal, NotEqual, Less, Greater, LessEqual, GreaterEqual };

// Three-valued truth.
enum class QoriTruth : QORuint8 { False, True, Null };

namespace qori {

// Never Null.
constexpr QoriTruth truth(bool value) noexcept { return value ? QoriTruth::True : QoriTruth::False; }

// Whether an order satisfies a relation; unordered satisfies NotEqual alone.
constexpr bool satisfies(std::partial_ordering order, QoriRelation relation) noexcept {
  switch (relation) {
    case QoriRelation::Equal:
      return order == 0;
    case QoriRelation::NotEqual:
      return order != 0;
    case QoriRelation::Less:
      return order < 0;
    case QoriRelation::Greater:
      return order > 0;
    case QoriRelation::LessEqual:
      return order <= 0;
    case QoriRelation::GreaterEqual:
      return order >= 0;
  }
  return false;
}

}  // namespace qori

#endif
