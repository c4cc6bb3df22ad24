// The fold's arithmetic: exact in 128 bits, then fitted into the type that the
// sum has, or into the other 64-bit type, or into none.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_NumberFold.h"

#include <limits>

#include "cimom/CQoriValue.h"

namespace {

using Kind = QoriScalarKind;
__extension__ using Wide = __int128;

double real(const QoriScalar& number) noexcept {
  if (number.kind == Kind::Real) return number.r;
  return number.kind == Kind::Unsigned ? static_cast<double>(number.u) : static_cast<double>(number.s);
}

Wide wide(const QoriScalar& number) noexcept {
  return number.kind == Kind::Unsigned ? static_cast<Wide>(number.u) : static_cast<Wide>(number.s);
}

QoriScalar realNumber(double value) noexcept {
  QoriScalar number;
  number.kind = Kind::Real;
  number.r = value;
  return number;
}

QoriScalar fitted(Wide value, bool prefersUnsigned) noexcept {
  const bool fitsSigned =
      value >= std::numeric_limits<QORsint64>::min() && value <= std::numeric_limits<QORsint64>::max();
  const bool fitsUnsigned = value >= 0 && value <= std::numeric_limits<QORuint64>::max();
  QoriScalar number;
  if (fitsUnsigned && (prefersUnsigned || !fitsSigned)) {
    number.kind = Kind::Unsigned;
    number.u = static_cast<QORuint64>(value);
  } else if (fitsSigned) {
    number.kind = Kind::Signed;
    number.s = static_cast<QORsint64>(value);
  }
  return number;
}

}  // namespace

void QORQL_NumberFold::addToSum(const QoriScalar& value) noexcept {
  if (_folded.isNull()) return;
  if (_folded.kind == Kind::Real || value.kind == Kind::Real) {
    _folded = realNumber(real(_folded) + real(value));
  } else {
    _folded = fitted(wide(_folded) + wide(value), _folded.kind == Kind::Unsigned);
  }
}

bool QORQL_NumberFold::addNumber(const QoriScalar& value, QORuint64 row) noexcept {
  if (!_isStarted) {
    _isStarted = true;
    _folded = value;
    return true;
  }
  if (_functionID != QORQL_FUNCTIONID_MIN && _functionID != QORQL_FUNCTIONID_MAX) {
    addToSum(value);
    return true;
  }
  const std::partial_ordering order = qori::compareNumbers(value, _folded);
  if (_functionID == QORQL_FUNCTIONID_MIN ? order < 0 : order > 0) {
    _folded = value;
    _row = row;
    _isRowsOwn = true;
  }
  return true;
}

QORSmrPtr<IQoriValue> QORQL_NumberFold::madeValue() const {
  if (_functionID == QORQL_FUNCTIONID_COUNT) return QORSmrPtr<IQoriValue>(new CQoriValue(_count, CQoriType::uint64));
  switch (_folded.kind) {
    case Kind::Unsigned:
      return QORSmrPtr<IQoriValue>(new CQoriValue(_folded.u, CQoriType::uint64));
    case Kind::Signed:
      return QORSmrPtr<IQoriValue>(new CQoriValue(_folded.s, CQoriType::sint64));
    case Kind::Real:
      return QORSmrPtr<IQoriValue>(new CQoriValue(_folded.r, CQoriType::real64));
    default:
      return {};
  }
}
