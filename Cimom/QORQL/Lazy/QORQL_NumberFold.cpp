// The fold's arithmetic: exact in 128 bits, then fitted into the type that the
// sum has, or into the other 64-bit type, or into none.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_NumberFold.h"

#include <algorithm>
#include <limits>

#include "cimom/CQoriValue.h"

namespace {

using ScalarKind = QoriScalarKind;
__extension__ using Wide = __int128;

double real(const QoriScalar& number) noexcept {
  if (number.kind == ScalarKind::Real) return number.r;
  return number.kind == ScalarKind::Unsigned ? static_cast<double>(number.u) : static_cast<double>(number.s);
}

Wide wide(const QoriScalar& number) noexcept {
  return number.kind == ScalarKind::Unsigned ? static_cast<Wide>(number.u) : static_cast<Wide>(number.s);
}

QoriScalar realNumber(double value) noexcept {
  QoriScalar number;
  number.kind = ScalarKind::Real;
  number.r = value;
  return number;
}

QoriScalar fitted(Wide value, bool prefersUnsigned) noexcept {
  const bool fitsSigned =
      value >= std::numeric_limits<QORsint64>::min() && value <= std::numeric_limits<QORsint64>::max();
  const bool fitsUnsigned = value >= 0 && value <= std::numeric_limits<QORuint64>::max();
  QoriScalar number;
  if (fitsUnsigned && (prefersUnsigned || !fitsSigned)) {
    number.kind = ScalarKind::Unsigned;
    number.u = static_cast<QORuint64>(value);
  } else if (fitsSigned) {
    number.kind = ScalarKind::Signed;
    number.s = static_cast<QORsint64>(value);
  }
  return number;
}

// NULL and numbers, told without a branch for each.
bool isTaken(ScalarKind kind) noexcept {
  constexpr auto bitOf = [](ScalarKind taken) { return 1U << static_cast<unsigned>(taken); };
  constexpr unsigned kTaken =
      bitOf(ScalarKind::Null) | bitOf(ScalarKind::Unsigned) | bitOf(ScalarKind::Signed) | bitOf(ScalarKind::Real);
  return (kTaken >> static_cast<unsigned>(kind) & 1U) != 0;
}

}  // namespace

template <class Values>
bool QORQL_NumberFold::takesRun(const Values& values, std::size_t count) const noexcept {
  if (_functionID == QORQL_FUNCTIONID_COUNT) return true;
  bool areTaken = true;
  for (std::size_t i = 0; i < count; ++i) areTaken &= isTaken(values[i].kind);
  return areTaken;
}

template <class Values>
std::size_t QORQL_NumberFold::addRun(const Values& values, std::size_t count, QORuint64 firstRow) noexcept {
  std::size_t present = 0;
  _hasRows = _hasRows || count != 0;
  if (_functionID == QORQL_FUNCTIONID_COUNT) {
    for (std::size_t i = 0; i < count; ++i) present += values[i].isNull() ? 0 : 1;
    _count += present;
    return present;
  }
  for (std::size_t i = 0; i < count;) {
    const std::size_t fast = addAlike(values, i, count, firstRow);
    present += fast;
    i += fast;
    if (i == count) break;
    if (!values[i].isNull()) {
      ++present;
      addNumber(values[i], firstRow + i);
    }
    ++i;
  }
  return present;
}

template <class Values>
std::size_t QORQL_NumberFold::addAlike(const Values& values, std::size_t first, std::size_t count,
                                       QORuint64 firstRow) noexcept {
  const bool wantsExtreme = _functionID == QORQL_FUNCTIONID_MIN || _functionID == QORQL_FUNCTIONID_MAX;
  if (_isStarted && _folded.kind == ScalarKind::Unsigned) return addUnsigned(values, first, count, firstRow);
  if (!_isStarted || _folded.kind != ScalarKind::Real || wantsExtreme) return 0;
  double sum = _folded.r;
  std::size_t i = first;
  for (; i < count; ++i) {
    const QoriScalar& value = values[i];
    if (value.kind != ScalarKind::Real) break;
    sum += value.r;
  }
  _folded.r = sum;
  return i - first;
}

template <class Values, class IsBetter>
std::size_t QORQL_NumberFold::addToExtreme(const Values& values, std::size_t first, std::size_t count,
                                           QORuint64 firstRow, const IsBetter& isBetter) noexcept {
  QORuint64 extreme = _folded.u;
  std::size_t place = count;  // of the extreme among the values; count: it is none of them
  std::size_t i = first;
  for (; i < count; ++i) {
    const QoriScalar& value = values[i];
    if (value.kind != ScalarKind::Unsigned) break;
    if (!isBetter(value.u, extreme)) continue;
    extreme = value.u;
    place = i;
  }
  if (place != count) {
    _folded.u = extreme;
    _row = firstRow + place;
    _isRowsOwn = true;
  }
  return i - first;
}

template <class Values>
std::size_t QORQL_NumberFold::addUnsigned(const Values& values, std::size_t first, std::size_t count,
                                          QORuint64 firstRow) noexcept {
  if (_functionID == QORQL_FUNCTIONID_MIN) {
    return addToExtreme(values, first, count, firstRow, [](QORuint64 a, QORuint64 b) { return a < b; });
  }
  if (_functionID == QORQL_FUNCTIONID_MAX) {
    return addToExtreme(values, first, count, firstRow, [](QORuint64 a, QORuint64 b) { return a > b; });
  }
  std::size_t i = first;
  QORuint64 sum = _folded.u;
  for (; i < count; ++i) {
    const QoriScalar& value = values[i];
    QORuint64 next = 0;
    if (value.kind != ScalarKind::Unsigned || __builtin_add_overflow(sum, value.u, &next)) break;
    sum = next;
  }
  _folded.u = sum;
  return i - first;
}

template bool QORQL_NumberFold::takesRun(const QoriScalar* const& values, std::size_t count) const noexcept;
template bool QORQL_NumberFold::takesRun(const QORQL_PlacedCells& values, std::size_t count) const noexcept;
template bool QORQL_NumberFold::takesRun(const QORQL_DenseCells& values, std::size_t count) const noexcept;
template std::size_t QORQL_NumberFold::addRun(const QoriScalar* const& values, std::size_t count,
                                              QORuint64 firstRow) noexcept;
template std::size_t QORQL_NumberFold::addRun(const QORQL_PlacedCells& values, std::size_t count,
                                              QORuint64 firstRow) noexcept;
template std::size_t QORQL_NumberFold::addRun(const QORQL_DenseCells& values, std::size_t count,
                                              QORuint64 firstRow) noexcept;

void QORQL_NumberFold::addToSum(const QoriScalar& value) noexcept {
  if (_folded.isNull()) return;
  if (_folded.kind == ScalarKind::Real || value.kind == ScalarKind::Real) {
    _folded = realNumber(real(_folded) + real(value));
  } else {
    _folded = fitted(wide(_folded) + wide(value), _folded.kind == ScalarKind::Unsigned);
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
    case ScalarKind::Unsigned:
      return QORSmrPtr<IQoriValue>(new CQoriValue(_folded.u, CQoriType::uint64));
    case ScalarKind::Signed:
      return QORSmrPtr<IQoriValue>(new CQoriValue(_folded.s, CQoriType::sint64));
    case ScalarKind::Real:
      return QORSmrPtr<IQoriValue>(new CQoriValue(_folded.r, CQoriType::real64));
    default:
      return {};
  }
}
