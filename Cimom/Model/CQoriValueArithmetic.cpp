// Arithmetic of values: exact, or no value at all.
//
// Integers are computed in 128 bits and then fitted into the 64-bit type that
// the operands call for, or else into the other one when the result fits that.
// One real operand makes the operation one of real64.
// SPDX-License-Identifier: Apache-2.0
#include <functional>
#include <limits>

#include "Cimom/Model/ModelError.h"
#include "Cimom/Model/ModelScalar.h"
#include "cimom/CQoriValue.h"

namespace {

using Code = CQoriType::Code;
using Kind = QoriScalarKind;
using Pointer = IQoriValue::Pointer;
__extension__ using Wide = __int128;

Pointer makeUnsigned(QORuint64 value) { return QORSmrPtr<IQoriValue>::Make<CQoriValue>(value, CQoriType::uint64); }
Pointer makeSigned(QORsint64 value) { return QORSmrPtr<IQoriValue>::Make<CQoriValue>(value, CQoriType::sint64); }
Pointer makeReal(double value) { return QORSmrPtr<IQoriValue>::Make<CQoriValue>(value, CQoriType::real64); }

Wide wide(const QoriScalar& scalar) noexcept {
  return scalar.kind == Kind::Unsigned ? static_cast<Wide>(scalar.u) : static_cast<Wide>(scalar.s);
}

double real(const QoriScalar& scalar) noexcept {
  if (scalar.kind == Kind::Real) return scalar.r;
  return scalar.kind == Kind::Unsigned ? static_cast<double>(scalar.u) : static_cast<double>(scalar.s);
}

Pointer fit(Wide value, bool preferUnsigned) {
  const bool fitsSigned =
      value >= std::numeric_limits<QORsint64>::min() && value <= std::numeric_limits<QORsint64>::max();
  const bool fitsUnsigned = value >= 0 && value <= std::numeric_limits<QORuint64>::max();
  if (fitsUnsigned && (preferUnsigned || !fitsSigned)) return makeUnsigned(static_cast<QORuint64>(value));
  if (fitsSigned) return makeSigned(static_cast<QORsint64>(value));
  return {};
}

// Whether the result is to be a uint64 where it fits one: when the left operand is
// a uint64, and when both operands are unsigned and it is no difference.
bool prefersUnsigned(const IQoriValue& left, const QoriScalar& a, const QoriScalar& b, bool isDifference) noexcept {
  if (a.kind != Kind::Unsigned) return false;
  return CQoriType::codeOf(*left.getType()) == Code::Uint64 || (!isDifference && b.kind == Kind::Unsigned);
}

struct Operation {
  const char* name;
  const char* verb;         // "Cannot <verb> A <preposition> B"
  const char* preposition;  // null: "Cannot <verb> B from A"
};

[[noreturn]] void raiseOperands(const Operation& operation, const IQoriValue& left, const IQoriValue& right) {
  const QORString a = model::typeText(*left.getType());
  const QORString b = model::typeText(*right.getType());
  const QORString start = QORString("Cannot ") + operation.verb + " ";
  model::raiseValueError(operation.name, operation.preposition == nullptr
                                             ? start + b + " from " + a
                                             : start + a + " " + operation.preposition + " " + b);
}

// What every operation does around its own computation; false when there is no result.
bool checkOperands(const Operation& operation, const IQoriValue& left, const IQoriValue& right, QoriScalar& a,
                   QoriScalar& b) {
  a = left.scalar();
  b = right.scalar();
  if (model::holdsArray(a) || model::holdsArray(b)) return false;
  if (!a.isNumber() || !b.isNumber()) raiseOperands(operation, left, right);
  return true;
}

bool isReal(const QoriScalar& a, const QoriScalar& b) noexcept { return a.kind == Kind::Real || b.kind == Kind::Real; }

constexpr Operation kAdd{"add", "add", "and"};
constexpr Operation kSubtract{"subtract", "subtract", nullptr};
constexpr Operation kMultiply{"multiply", "multiply", "by"};
constexpr Operation kDivide{"divide", "divide", "by"};

}  // namespace

Pointer CQoriValue::add(const IQoriValue& other) const {
  QoriScalar a = scalar();
  QoriScalar b = other.scalar();
  if (a.kind == Kind::Text && b.kind == Kind::Text) return QORSmrPtr<IQoriValue>::Make<CQoriValue>(*a.text + *b.text);
  if (!checkOperands(kAdd, *this, other, a, b)) return {};
  if (isReal(a, b)) return makeReal(real(a) + real(b));
  return fit(wide(a) + wide(b), prefersUnsigned(*this, a, b, false));
}

Pointer CQoriValue::subtract(const IQoriValue& other) const {
  QoriScalar a;
  QoriScalar b;
  if (!checkOperands(kSubtract, *this, other, a, b)) return {};
  if (isReal(a, b)) return makeReal(real(a) - real(b));
  return fit(wide(a) - wide(b), prefersUnsigned(*this, a, b, true));
}

Pointer CQoriValue::multiply(const IQoriValue& other) const {
  QoriScalar a;
  QoriScalar b;
  if (!checkOperands(kMultiply, *this, other, a, b)) return {};
  if (isReal(a, b)) return makeReal(real(a) * real(b));
  Wide product = 0;
  // Two large uint64 exceed even 128 signed bits.
  if (__builtin_mul_overflow(wide(a), wide(b), &product)) return {};
  return fit(product, prefersUnsigned(*this, a, b, false));
}

Pointer CQoriValue::divide(const IQoriValue& other) const {
  QoriScalar a;
  QoriScalar b;
  if (!checkOperands(kDivide, *this, other, a, b)) return {};
  if (real(b) == 0.0) model::raiseValueError(kDivide.name, "Division by zero");
  if (isReal(a, b)) return makeReal(real(a) / real(b));
  return fit(wide(a) / wide(b), prefersUnsigned(*this, a, b, false));
}

Pointer CQoriValue::negate() const {
  const QoriScalar a = scalar();
  if (model::holdsArray(a)) return {};
  const auto narrow = [](Wide value, QORsint64 least, const QORSmrPtr<IQoriType>& type) {
    // Only one result does not fit: the negation of the least number.
    return value > -(static_cast<Wide>(least) + 1) ? Pointer()
                                                   : Pointer::Make<CQoriValue>(static_cast<QORsint64>(value), type);
  };
  switch (CQoriType::codeOf(*_type)) {
    case Code::Sint8:
      return narrow(-wide(a), std::numeric_limits<QORsint8>::min(), CQoriType::sint8);
    case Code::Sint16:
      return narrow(-wide(a), std::numeric_limits<QORsint16>::min(), CQoriType::sint16);
    case Code::Sint32:
      return narrow(-wide(a), std::numeric_limits<QORsint32>::min(), CQoriType::sint32);
    case Code::Sint64:
      return narrow(-wide(a), std::numeric_limits<QORsint64>::min(), CQoriType::sint64);
    case Code::Uint8:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(-static_cast<QORsint64>(a.u), CQoriType::sint16);
    case Code::Uint16:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(-static_cast<QORsint64>(a.u), CQoriType::sint32);
    case Code::Uint32:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(-static_cast<QORsint64>(a.u), CQoriType::sint64);
    case Code::Real32:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(-a.r, CQoriType::real32);
    case Code::Real64:
      return makeReal(-a.r);
    default:
      model::raiseValueError("negate", "Cannot negate " + model::typeText(*_type));
  }
}
