// Scalars by CIM type: making, converting and writing them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Model/ModelScalar.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace model {

namespace {

using Code = CQoriType::Code;
using Kind = QoriScalarKind;

template <class Integer>
Integer realToInteger(double value) noexcept {
  // The bounds are powers of two (or one below, which only rounds up to one), so exact as reals.
  constexpr double kBelow = static_cast<double>(std::numeric_limits<Integer>::min());
  const double above = std::ldexp(1.0, std::numeric_limits<Integer>::digits);
  if (std::isnan(value)) return 0;
  if (value <= kBelow) return std::numeric_limits<Integer>::min();
  if (value >= above) return std::numeric_limits<Integer>::max();
  return static_cast<Integer>(value);
}

template <class Integer>
Integer toInteger(const QoriScalar& scalar) noexcept {
  switch (scalar.kind) {
    case Kind::Unsigned:
      return static_cast<Integer>(scalar.u);
    case Kind::Signed:
      return static_cast<Integer>(scalar.s);
    case Kind::Real:
      return realToInteger<Integer>(scalar.r);
    case Kind::Boolean:
      return static_cast<Integer>(scalar.b ? 1 : 0);
    default:
      return static_cast<Integer>(scalar.c);
  }
}

double toReal(const QoriScalar& scalar) noexcept {
  switch (scalar.kind) {
    case Kind::Unsigned:
      return static_cast<double>(scalar.u);
    case Kind::Signed:
      return static_cast<double>(scalar.s);
    case Kind::Real:
      return scalar.r;
    case Kind::Boolean:
      return scalar.b ? 1.0 : 0.0;
    default:
      return static_cast<double>(scalar.c);
  }
}

// To the nearest real32; beyond its range infinite.
double roundToReal32(double value) noexcept {
  constexpr double kGreatest = static_cast<double>(std::numeric_limits<float>::max());
  if (std::abs(value) <= kGreatest || !std::isfinite(value)) return static_cast<double>(static_cast<float>(value));
  return std::copysign(std::numeric_limits<double>::infinity(), value);
}

bool isConvertible(Kind kind) noexcept {
  return kind == Kind::Unsigned || kind == Kind::Signed || kind == Kind::Real || kind == Kind::Boolean ||
         kind == Kind::Char16;
}

template <class Number>
QORString numberText(Number value) {
  char buffer[32];
  const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return QORString(buffer, static_cast<std::size_t>(result.ptr - buffer));
}

QORString char16Text(char16_t value) {
  const unsigned code = value >= 0xD800 && value <= 0xDFFF ? 0xFFFDU : value;
  char bytes[3];
  std::size_t count = 0;
  if (code < 0x80) {
    bytes[count++] = static_cast<char>(code);
  } else {
    if (code < 0x800) {
      bytes[count++] = static_cast<char>(0xC0 | (code >> 6));
    } else {
      bytes[count++] = static_cast<char>(0xE0 | (code >> 12));
      bytes[count++] = static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    }
    bytes[count++] = static_cast<char>(0x80 | (code & 0x3F));
  }
  return QORString(bytes, count);
}

bool isContinuation(char byte) noexcept { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

QoriScalar booleanScalar(bool value) noexcept {
  QoriScalar scalar;
  scalar.kind = Kind::Boolean;
  scalar.b = value;
  return scalar;
}

QoriScalar unsignedScalar(QORuint64 value) noexcept {
  QoriScalar scalar;
  scalar.kind = Kind::Unsigned;
  scalar.u = value;
  return scalar;
}

QoriScalar signedScalar(QORsint64 value) noexcept {
  QoriScalar scalar;
  scalar.kind = Kind::Signed;
  scalar.s = value;
  return scalar;
}

QoriScalar realScalar(QORreal64 value) noexcept {
  QoriScalar scalar;
  scalar.kind = Kind::Real;
  scalar.r = value;
  return scalar;
}

QoriScalar char16Scalar(char16_t value) noexcept {
  QoriScalar scalar;
  scalar.kind = Kind::Char16;
  scalar.c = value;
  return scalar;
}

bool convertScalar(QoriScalar& scalar, Code target) noexcept {
  if (!isConvertible(scalar.kind)) return false;
  switch (target) {
    case Code::Sint8:
      scalar = signedScalar(toInteger<QORsint8>(scalar));
      return true;
    case Code::Uint8:
      scalar = unsignedScalar(toInteger<QORuint8>(scalar));
      return true;
    case Code::Sint16:
      scalar = signedScalar(toInteger<QORsint16>(scalar));
      return true;
    case Code::Uint16:
      scalar = unsignedScalar(toInteger<QORuint16>(scalar));
      return true;
    case Code::Sint32:
      scalar = signedScalar(toInteger<QORsint32>(scalar));
      return true;
    case Code::Uint32:
      scalar = unsignedScalar(toInteger<QORuint32>(scalar));
      return true;
    case Code::Sint64:
      scalar = signedScalar(toInteger<QORsint64>(scalar));
      return true;
    case Code::Uint64:
      scalar = unsignedScalar(toInteger<QORuint64>(scalar));
      return true;
    case Code::Real32:
      scalar = realScalar(roundToReal32(toReal(scalar)));
      return true;
    case Code::Real64:
      scalar = realScalar(toReal(scalar));
      return true;
    case Code::Boolean:
      scalar = booleanScalar(toReal(scalar) != 0.0);
      return true;
    case Code::Char16:
      scalar = char16Scalar(static_cast<char16_t>(toInteger<QORuint16>(scalar)));
      return true;
    default:
      return false;
  }
}

QORString scalarText(const QoriScalar& scalar, Code code) {
  switch (scalar.kind) {
    case Kind::Boolean:
      return scalar.b ? "TRUE" : "FALSE";
    case Kind::Unsigned:
      return numberText(scalar.u);
    case Kind::Signed:
      return numberText(scalar.s);
    case Kind::Real:
      // A real32's shortest form is that of a float: 0.1, not 0.10000000149011612.
      return code == Code::Real32 ? numberText(static_cast<float>(scalar.r)) : numberText(scalar.r);
    case Kind::Char16:
      return char16Text(scalar.c);
    default:
      return *scalar.text;
  }
}

bool readBoolean(const QORString& text, bool& value) noexcept {
  value = QORString::equalIgnoringCase(text.view(), "TRUE");
  return value || QORString::equalIgnoringCase(text.view(), "FALSE");
}

bool readChar16(const QORString& text, char16_t& value) noexcept {
  const auto byte = [&text](std::size_t i) { return static_cast<unsigned>(static_cast<unsigned char>(text[i])); };
  if (text.length() == 1 && byte(0) < 0x80) {
    value = static_cast<char16_t>(byte(0));
    return true;
  }
  if (text.length() == 2 && byte(0) >= 0xC2 && byte(0) <= 0xDF && isContinuation(text[1])) {
    value = static_cast<char16_t>((byte(0) & 0x1F) << 6 | (byte(1) & 0x3F));
    return true;
  }
  if (text.length() == 3 && byte(0) >= 0xE0 && byte(0) <= 0xEF && isContinuation(text[1]) && isContinuation(text[2])) {
    value = static_cast<char16_t>((byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F));
    return value >= 0x800;
  }
  return false;
}

}  // namespace model
