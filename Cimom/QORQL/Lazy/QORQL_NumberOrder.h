// Numbers as 64-bit keys that stand in the same order.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_NUMBERORDER_H
#define QORQL_NUMBERORDER_H

#include <bit>

#include "cimom/QoriScalar.h"
#include "cmpbase.h"

// First every number is noted, which gives its bits; when all of them go
// together, keyOf() makes keys of the bits. Equal numbers have equal keys.
class QORQL_NumberOrder {
 public:
  // The number's bits. REQUIRES isNumber().
  QORuint64 note(const QoriScalar& number) noexcept {
    switch (number.kind) {
      case QoriScalarKind::Unsigned:
        _hasInteger = true;
        _hasHuge = _hasHuge || number.u > kGreatestSigned;
        return number.u;
      case QoriScalarKind::Signed:
        _hasInteger = true;
        _hasNegative = _hasNegative || number.s < 0;
        return static_cast<QORuint64>(number.s);
      default:
        _hasReal = true;
        _hasNaN = _hasNaN || number.r != number.r;
        return std::bit_cast<QORuint64>(number.r);
    }
  }
  // Whether one kind of key holds all numbers that were noted.
  bool isUniform() const noexcept { return !_hasNaN && !(_hasReal && _hasInteger) && !(_hasNegative && _hasHuge); }
  QORuint64 keyOf(QORuint64 bits) const noexcept {
    if (!_hasReal) return _hasNegative ? bits ^ kSign : bits;
    if (bits == kSign) return kSign;  // minus zero is zero
    return (bits & kSign) != 0 ? ~bits : bits | kSign;
  }

 private:
  static constexpr QORuint64 kSign = QORuint64{1} << 63U;
  static constexpr QORuint64 kGreatestSigned = kSign - 1;

  bool _hasInteger = false;
  bool _hasReal = false;
  bool _hasNaN = false;
  bool _hasNegative = false;
  bool _hasHuge = false;  // beyond the signed integers
};

#endif
