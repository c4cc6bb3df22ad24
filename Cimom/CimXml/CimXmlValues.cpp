// Reading accepts other forms where the meaning is clear; writing follows the standard's forms.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlValues.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <system_error>

#include "Cimom/Model/ModelDateTime.h"
#include "Cimom/Model/ModelScalar.h"
#include "cimom/CIMUtil.h"
#include "cimom/CQoriValue.h"

namespace cimxml {

namespace {

using Code = CQoriType::Code;

struct NamedType {
  std::string_view name;
  const QORSmrPtr<IQoriType>& type;
};

// In the order of the codes.
const NamedType* types() noexcept {
  static const NamedType kTypes[] = {
      {"sint8", CQoriType::sint8},       {"uint8", CQoriType::uint8},     {"sint16", CQoriType::sint16},
      {"uint16", CQoriType::uint16},     {"sint32", CQoriType::sint32},   {"uint32", CQoriType::uint32},
      {"sint64", CQoriType::sint64},     {"uint64", CQoriType::uint64},   {"real32", CQoriType::real32},
      {"real64", CQoriType::real64},     {"boolean", CQoriType::boolean}, {"string", CQoriType::string},
      {"datetime", CQoriType::datetime}, {"char16", CQoriType::char16},   {"reference", CQoriType::reference},
      {"object", CQoriType::object},
  };
  static_assert(std::size(kTypes) == static_cast<std::size_t>(Code::Unknown));
  return kTypes;
}

std::string_view trimmed(std::string_view text) noexcept {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

// Takes a sign off the front.
bool takeMinus(std::string_view& text) noexcept {
  if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
  const bool isMinus = text.front() == '-';
  text.remove_prefix(1);
  return isMinus;
}

// The digits as a number; false when there are others, none, or too many.
bool readMagnitude(std::string_view digits, QORuint64& out) noexcept {
  const bool isHexadecimal = digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
  if (isHexadecimal) digits.remove_prefix(2);
  const char* const end = digits.data() + digits.size();
  const std::from_chars_result result = std::from_chars(digits.data(), end, out, isHexadecimal ? 16 : 10);
  return result.ec == std::errc() && result.ptr == end;
}

template <class Integer>
bool readInteger(std::string_view text, Integer& out) noexcept {
  using Limits = std::numeric_limits<Integer>;
  text = trimmed(text);
  const bool isMinus = takeMinus(text);
  QORuint64 magnitude = 0;
  if (!readMagnitude(text, magnitude)) return false;
  const QORuint64 greatest = static_cast<QORuint64>(Limits::max());
  if (!isMinus) {
    out = static_cast<Integer>(magnitude);
    return magnitude <= greatest;
  }
  // The magnitude of the least number is one more than the greatest number.
  out = static_cast<Integer>(QORuint64{0} - magnitude);
  return magnitude <= (Limits::is_signed ? greatest + 1 : 0);
}

bool readReal(std::string_view text, double& out) noexcept {
  text = trimmed(text);
  const bool isMinus = takeMinus(text);
  if (text.empty() || text.front() == '-') return false;
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, out);
  if (result.ec != std::errc() || result.ptr != end) return false;
  if (isMinus) out = -out;
  return true;
}

// Accepts what rounds to the greatest real32; false for a greater number.
bool toReal32(double& number) noexcept {
  constexpr double kGreatest = std::numeric_limits<QORreal32>::max();
  // Half a step of the greatest above it.
  constexpr double kFirstTooGreat = kGreatest + 0x1p103;
  if (!std::isfinite(number)) return true;
  if (std::abs(number) >= kFirstTooGreat) return false;
  number = std::clamp(number, -kGreatest, kGreatest);
  return true;
}

template <class Scalar>
IQoriValue::Pointer makeValue(Scalar scalar, Code type) {
  return IQoriValue::Pointer(new CQoriValue(scalar, scalarType(type)));
}

template <class Integer>
bool takeInteger(std::string_view text, Code type, IQoriValue::Pointer& out) {
  Integer number = 0;
  if (!readInteger(text, number)) return false;
  out = makeValue(number, type);
  return true;
}

bool takeReal(std::string_view text, Code type, IQoriValue::Pointer& out) {
  double number = 0;
  if (!readReal(text, number)) return false;
  if (type == Code::Real32 && !toReal32(number)) return false;
  out = makeValue(number, type);
  return true;
}

bool takeBoolean(std::string_view text, IQoriValue::Pointer& out) {
  bool isTrue = false;
  if (!model::readBoolean(QORString(trimmed(text)), isTrue)) return false;
  out = makeValue(isTrue, Code::Boolean);
  return true;
}

bool takeCharacter(std::string_view text, IQoriValue::Pointer& out) {
  char16_t character = 0;
  if (!model::readChar16(QORString(text), character)) return false;
  out = makeValue(character, Code::Char16);
  return true;
}

bool takeDateTime(std::string_view text, IQoriValue::Pointer& out) {
  text = trimmed(text);
  if (!model::isDateTime(text)) return false;
  out = IQoriValue::Pointer(new CQoriValue(QORString(text), CQoriType::datetime));
  return true;
}

// A real as the standard writes it: with a point, and with "E" before the exponent.
void appendReal(std::string& out, double value, bool isReal32) {
  if (std::isnan(value)) {
    out += "NaN";
    return;
  }
  if (std::isinf(value)) {
    out += value < 0 ? "-INF" : "INF";
    return;
  }
  char buffer[40];
  constexpr std::chars_format kFormat = std::chars_format::scientific;
  const std::to_chars_result result = isReal32
                                          ? std::to_chars(buffer, std::end(buffer), static_cast<float>(value), kFormat)
                                          : std::to_chars(buffer, std::end(buffer), value, kFormat);
  std::string_view text(buffer, static_cast<std::size_t>(result.ptr - buffer));
  const std::size_t exponent = text.find('e');
  out += text.substr(0, exponent);
  if (text.find('.') == std::string_view::npos) out += ".0";
  out += 'E';
  out += text.substr(exponent + 1);
}

// For each byte, whether it is a whole character that no escaping changes.
constexpr std::array<bool, 256> kMeansItself = [] {
  std::array<bool, 256> meansItself{};
  for (std::size_t byte = 0x20; byte < 0x80; ++byte) meansItself[byte] = true;
  for (const char c : {'&', '<', '>', '"', '\''}) meansItself[static_cast<unsigned char>(c)] = false;
  return meansItself;
}();

bool meansItself(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](char c) { return kMeansItself[static_cast<unsigned char>(c)]; });
}

// Escapes a text, with references for the characters among `blanks`. Most texts need neither.
void appendEncoded(std::string& out, std::string_view text, std::string_view blanks) {
  if (meansItself(text)) {
    out += text;
    return;
  }
  for (;;) {
    const std::size_t blank = std::min(text.find_first_of(blanks), text.size());
    CIMUtil::appendXmlEncoded(out, text.substr(0, blank));
    if (blank == text.size()) return;
    out += "&#" + std::to_string(static_cast<int>(text[blank])) + ';';
    text.remove_prefix(blank + 1);
  }
}

template <class Number>
void appendNumber(std::string& out, Number number) {
  char buffer[24];
  out.append(buffer, std::to_chars(buffer, std::end(buffer), number).ptr);
}

}  // namespace

CQoriType::Code typeOf(std::string_view name) noexcept {
  for (std::size_t i = 0; i < static_cast<std::size_t>(Code::Unknown); ++i) {
    if (QORString::equalIgnoringCase(types()[i].name, name)) return static_cast<Code>(i);
  }
  return Code::Unknown;
}

const QORSmrPtr<IQoriType>& scalarType(Code code) noexcept { return types()[static_cast<std::size_t>(code)].type; }

std::string_view typeName(Code code) noexcept { return types()[static_cast<std::size_t>(code)].name; }

bool readValue(std::string_view text, Code type, IQoriValue::Pointer& out) {
  switch (type) {
    case Code::Sint8:
      return takeInteger<QORsint8>(text, type, out);
    case Code::Uint8:
      return takeInteger<QORuint8>(text, type, out);
    case Code::Sint16:
      return takeInteger<QORsint16>(text, type, out);
    case Code::Uint16:
      return takeInteger<QORuint16>(text, type, out);
    case Code::Sint32:
      return takeInteger<QORsint32>(text, type, out);
    case Code::Uint32:
      return takeInteger<QORuint32>(text, type, out);
    case Code::Sint64:
      return takeInteger<QORsint64>(text, type, out);
    case Code::Uint64:
      return takeInteger<QORuint64>(text, type, out);
    case Code::Real32:
    case Code::Real64:
      return takeReal(text, type, out);
    case Code::Boolean:
      return takeBoolean(text, out);
    case Code::DateTime:
      return takeDateTime(text, out);
    case Code::Char16:
      return takeCharacter(text, out);
    default:
      out = IQoriValue::Pointer(new CQoriValue(QORString(text)));
      return true;
  }
}

IQoriValue::Pointer readKeyValue(std::string_view text, std::string_view valueType) {
  IQoriValue::Pointer value;
  if (valueType == "numeric") {
    for (const Code type : {Code::Uint64, Code::Sint64, Code::Real64}) {
      if (readValue(text, type, value)) return value;
    }
  }
  if (valueType == "boolean" && readValue(text, Code::Boolean, value)) return value;
  readValue(text, Code::String, value);
  return value;
}

void appendText(std::string& out, std::string_view text) { appendEncoded(out, text, "\r"); }

void appendAttributeText(std::string& out, std::string_view text) { appendEncoded(out, text, "\t\n\r"); }

bool appendScalarText(std::string& out, const QoriScalar& scalar, CQoriType::Code type) {
  switch (scalar.kind) {
    case QoriScalarKind::Unsigned:
      appendNumber(out, scalar.u);
      return true;
    case QoriScalarKind::Signed:
      appendNumber(out, scalar.s);
      return true;
    case QoriScalarKind::Real:
      appendReal(out, scalar.r, type == Code::Real32);
      return true;
    case QoriScalarKind::Boolean:
      out += scalar.b ? "TRUE" : "FALSE";
      return true;
    case QoriScalarKind::Text:
    case QoriScalarKind::DateTime:
      appendText(out, scalar.text->view());
      return true;
    default:
      return false;
  }
}

void appendValueText(std::string& out, const IQoriValue& value) {
  if (!appendScalarText(out, value.scalar(), CQoriType::codeOf(*value.getType()))) {
    appendText(out, value.toString().view());
  }
}

}  // namespace cimxml
