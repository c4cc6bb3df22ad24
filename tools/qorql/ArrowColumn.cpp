// The values of one column as the arrays of an Arrow batch.
// SPDX-License-Identifier: Apache-2.0
#include "ArrowColumn.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "Cimom/Mof/MofLiterals.h"
#include "Cimom/Server/ColumnTypes.h"
#include "DisplayText.h"
#include "JsonValue.h"
#include "cimom/CQoriType.h"
#include "cimom/QoriDateTime.h"

namespace {

using Kind = ArrowType::Kind;

constexpr std::size_t kMostOffset = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t kShownText = 60;  // columns of a text in a message

// Bytes that are no UTF-8 become U+FFFD.
std::string soundText(std::string_view text) { return nlohmann::json::parse(jsonText(text)).get<std::string>(); }

template <class Number>
bool fits(const QoriScalar& scalar) noexcept {
  return scalar.kind == QoriScalarKind::Signed ? std::in_range<Number>(scalar.s) : std::in_range<Number>(scalar.u);
}

template <class Number>
Number numberOf(const QoriScalar& scalar) noexcept {
  return scalar.kind == QoriScalarKind::Signed ? static_cast<Number>(scalar.s) : static_cast<Number>(scalar.u);
}

template <class Number>
bool appendFitting(ArrowArray& array, const QoriScalar& scalar) {
  if (!fits<Number>(scalar)) return false;
  array.appendFixed(numberOf<Number>(scalar));
  return true;
}

// The number as a real, when a real holds it exactly.
std::optional<double> exactReal(const QoriScalar& scalar) noexcept {
  constexpr QORsint64 kMost = QORsint64{1} << std::numeric_limits<double>::digits;
  if (scalar.kind == QoriScalarKind::Real) return scalar.r;
  if (scalar.kind == QoriScalarKind::Signed && scalar.s >= -kMost && scalar.s <= kMost) {
    return static_cast<double>(scalar.s);
  }
  if (scalar.kind == QoriScalarKind::Unsigned && scalar.u <= static_cast<QORuint64>(kMost)) {
    return static_cast<double>(scalar.u);
  }
  return std::nullopt;
}

bool isExactFloat(double value) noexcept {
  return std::isnan(value) || static_cast<double>(static_cast<float>(value)) == value;
}

std::string_view bytesOf(const std::vector<std::int32_t>& offsets) noexcept {
  return {reinterpret_cast<const char*>(offsets.data()), offsets.size() * sizeof offsets[0]};
}

}  // namespace

void ArrowArray::appendBit(std::string& bits, std::int64_t index, bool isSet) {
  const auto place = static_cast<unsigned>(index % 8);
  if (place == 0) bits += '\0';
  if (isSet) bits.back() = static_cast<char>(static_cast<unsigned char>(bits.back()) | 1U << place);
}

void ArrowArray::mark(bool isValid) {
  appendBit(_validity, _length, isValid);
  ++_length;
  if (!isValid) ++_nulls;
}

void ArrowArray::appendOffset(std::size_t offset) {
  if (offset > kMostOffset) {
    throw QoriBaseException("tool", "qorql", "", "a value is longer than Arrow's lists and texts can be", 0);
  }
  _offsets.push_back(static_cast<std::int32_t>(offset));
}

void ArrowArray::appendText(std::string_view text) {
  _bytes += text;
  appendOffset(_bytes.size());
}

void ArrowArray::clear() {
  _length = _nulls = 0;
  _validity.clear();
  _offsets = {0};
  _bytes.clear();
}

void ArrowArray::take(ArrowBatch& batch, bool hasOffsets, bool hasBytes) {
  batch.addArray(_length, _nulls);
  batch.addBuffer(_nulls == 0 ? std::string_view() : std::string_view(_validity));
  if (hasOffsets) batch.addBuffer(bytesOf(_offsets));
  if (hasBytes) batch.addBuffer(_bytes);
  clear();
}

void ArrowArray::takeWithoutBuffers(ArrowBatch& batch) {
  batch.addArray(_length, _nulls);
  clear();
}

ArrowColumn::ArrowColumn(const ResultColumn& column, std::string name)
    : _field{soundText(name), arrowTypeOf(column), column.typeName + (column.isArray ? "[]" : "")},
      _hasValueTexts(column.hasValueTexts),
      _dateTimes(column.dateTimes),
      _code(CQoriType::codeOf(CQoriType(QORString(column.typeName), false))) {}

void ArrowColumn::append(const IQoriValue* value) {
  if (!_field.type.isList) return appendScalar(_array, value);
  if (value != nullptr) appendList(*value);
  _array.mark(value != nullptr);
  _array.appendOffset(static_cast<std::size_t>(_elements.length()));
}

void ArrowColumn::appendList(const IQoriValue& value) {
  if (!value.isArray()) refuse(value);
  const QORSmrPtr<IQoriValue::List> elements = value.getArray();
  QORValSlistIterator<IQoriValue::Pointer> it(*elements);
  while (++it) appendScalar(_elements, it.key().Get());
}

void ArrowColumn::appendScalar(ArrowArray& array, const IQoriValue* value) {
  if (value == nullptr) return appendNull(array);
  if (value->isArray()) refuse(*value);
  switch (_field.type.kind) {
    case Kind::Boolean: {
      const QoriScalar scalar = value->scalar();
      if (scalar.kind != QoriScalarKind::Boolean) refuse(*value);
      array.appendBit(scalar.b);
      return array.mark(true);
    }
    case Kind::Unsigned:
    case Kind::Signed:
    case Kind::Real:
      return appendNumber(array, *value);
    case Kind::Text:
      return appendText(array, *value);
    case Kind::Timestamp:
    case Kind::Duration:
      return appendMoment(array, *value);
    case Kind::Null:
      break;
  }
  refuse(*value);
}

void ArrowColumn::appendNull(ArrowArray& array) const {
  switch (_field.type.kind) {
    case Kind::Null:
      break;
    case Kind::Boolean:
      array.appendBit(false);
      break;
    case Kind::Text:
      array.appendText({});
      break;
    default:
      array.appendZeros(static_cast<std::size_t>(_field.type.bits) / 8);
  }
  array.appendNull();
}

void ArrowColumn::appendNumber(ArrowArray& array, const IQoriValue& value) {
  const QoriScalar scalar = value.scalar();
  if (!scalar.isNumber()) refuse(value);
  if (_field.type.kind == Kind::Real) return appendReal(array, value);
  if (scalar.kind == QoriScalarKind::Real) refuse(value);
  appendInteger(array, value);
}

void ArrowColumn::appendInteger(ArrowArray& array, const IQoriValue& value) {
  const QoriScalar scalar = value.scalar();
  const bool isSigned = _field.type.kind == Kind::Signed;
  bool isAppended = false;
  switch (_field.type.bits) {
    case 8:
      isAppended = isSigned ? appendFitting<std::int8_t>(array, scalar) : appendFitting<std::uint8_t>(array, scalar);
      break;
    case 16:
      isAppended = isSigned ? appendFitting<std::int16_t>(array, scalar) : appendFitting<std::uint16_t>(array, scalar);
      break;
    case 32:
      isAppended = isSigned ? appendFitting<std::int32_t>(array, scalar) : appendFitting<std::uint32_t>(array, scalar);
      break;
    default:
      isAppended = isSigned ? appendFitting<std::int64_t>(array, scalar) : appendFitting<std::uint64_t>(array, scalar);
  }
  if (!isAppended) refuse(value);
}

void ArrowColumn::appendReal(ArrowArray& array, const IQoriValue& value) {
  const std::optional<double> real = exactReal(value.scalar());
  const bool isFloat = _field.type.bits == 32;
  if (!real || (isFloat && !isExactFloat(*real))) refuse(value);
  if (isFloat) {
    array.appendFixed(static_cast<float>(*real));
  } else {
    array.appendFixed(*real);
  }
}

void ArrowColumn::appendMoment(ArrowArray& array, const IQoriValue& value) {
  const QoriScalar scalar = value.scalar();
  if (scalar.kind != QoriScalarKind::DateTime || dateTimesOf(scalar.text->view()) != _dateTimes) refuse(value);
  array.appendFixed(qori::readDateTime(scalar.text->view()).microseconds);
}

// An embedded object may be declared as a string.
bool ArrowColumn::holdsText(const IQoriValue& value) const {
  using Code = CQoriType::Code;
  const Code given = CQoriType::codeOf(*value.getType());
  return _hasValueTexts || _code == given || (_code == Code::String && given == Code::Object);
}

void ArrowColumn::appendText(ArrowArray& array, const IQoriValue& value) {
  if (!holdsText(value)) refuse(value);
  const QORString text = value.toString();
  if (isUtf8(text.view())) {
    array.appendText(text.view());
  } else {
    array.appendText(soundText(text.view()));
  }
  array.mark(true);
}

void ArrowColumn::take(ArrowBatch& batch) {
  if (!_field.type.isList) return takeArray(_array, batch);
  _array.take(batch, true, false);
  takeArray(_elements, batch);
}

void ArrowColumn::takeArray(ArrowArray& array, ArrowBatch& batch) const {
  if (_field.type.kind == Kind::Null) return array.takeWithoutBuffers(batch);
  array.take(batch, _field.type.kind == Kind::Text, true);
}

void ArrowColumn::refuse(const IQoriValue& value) const {
  const IQoriType& type = *value.getType();
  const std::string given = std::string(type.getName().view()) + (type.isArray() ? "[]" : "");
  const std::string shown = cutText(printableText(value.toString().view()), kShownText, "...");
  const std::string own = _field.cimType.empty() ? "of no type" : _field.cimType;
  throw QoriBaseException("tool", "qorql", "",
                          QORString("column " + _field.name + " is " + own + ", which does not hold " + shown + " (" +
                                    given + "): -o jsonl or csv can tell both"),
                          0);
}
