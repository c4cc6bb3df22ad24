// Cells become slots without a value object between, but for arrays.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/RowPlan.h"

#include <functional>
#include <limits>
#include <string>

#include "Cimom/Embedded/DeclarationHelpers.h"
#include "Cimom/Model/ModelDateTime.h"
#include "Cimom/Model/ModelInstance.h"
#include "Cimom/Model/ModelScalar.h"
#include "cimom/CQoriValue.h"

namespace embedded {

namespace {

using Code = CQoriType::Code;

// Arrays that are remembered; where there are many more different ones, few are found again.
constexpr std::size_t kArraysKept = 4096;

// Of an integer type: its bits, negative for a signed one; 0 for other types.
int bitsOf(Code code) noexcept {
  switch (code) {
    case Code::Uint8:
      return 8;
    case Code::Uint16:
      return 16;
    case Code::Uint32:
      return 32;
    case Code::Uint64:
      return 64;
    case Code::Sint8:
      return -8;
    case Code::Sint16:
      return -16;
    case Code::Sint32:
      return -32;
    case Code::Sint64:
      return -64;
    default:
      return 0;
  }
}

bool isReal(Code code) noexcept { return code == Code::Real32 || code == Code::Real64; }

bool readReal(double value, Code code, QoriScalar& scalar) noexcept {
  constexpr double kGreatest = std::numeric_limits<QORreal32>::max();
  if (code == Code::Real32 && !(value >= -kGreatest && value <= kGreatest)) return false;
  scalar = model::realScalar(value);
  return model::convertScalar(scalar, code);
}

bool readUnsigned(QORuint64 value, Code code, QoriScalar& scalar) noexcept {
  if (isReal(code)) return readReal(static_cast<double>(value), code, scalar);
  const int bits = bitsOf(code);
  if (bits > 0) {
    scalar = model::unsignedScalar(value);
    return value <= std::numeric_limits<QORuint64>::max() >> (64 - bits);
  }
  scalar = model::signedScalar(static_cast<QORsint64>(value));
  return bits < 0 && value <= std::numeric_limits<QORuint64>::max() >> (65 + bits);
}

bool readSigned(QORsint64 value, Code code, QoriScalar& scalar) noexcept {
  if (value >= 0) return readUnsigned(static_cast<QORuint64>(value), code, scalar);
  if (isReal(code)) return readReal(static_cast<double>(value), code, scalar);
  const int bits = bitsOf(code);
  scalar = model::signedScalar(value);
  return bits < 0 && value >= std::numeric_limits<QORsint64>::min() >> (64 + bits);
}

// A cell of a number or a boolean as the property holds it.
bool readScalar(const CimCell& cell, Code code, QoriScalar& scalar) noexcept {
  switch (cell.kind) {
    case CimCellKind::False:
    case CimCellKind::True:
      scalar = model::booleanScalar(cell.kind == CimCellKind::True);
      return code == Code::Boolean;
    case CimCellKind::Unsigned:
      return readUnsigned(cell.u, code, scalar);
    case CimCellKind::Signed:
      return readSigned(cell.s, code, scalar);
    case CimCellKind::Real:
      return isReal(code) && readReal(cell.r, code, scalar);
    default:
      return false;
  }
}

bool isText(Code code) noexcept { return code == Code::String || code == Code::DateTime; }

bool isPlain(Code code) noexcept { return bitsOf(code) != 0 || isReal(code) || isText(code) || code == Code::Boolean; }

QORSmrPtr<IQoriValue> valueOf(const QoriScalar& scalar, const QORSmrPtr<IQoriType>& type) {
  switch (scalar.kind) {
    case QoriScalarKind::Boolean:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(scalar.b, type);
    case QoriScalarKind::Unsigned:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(scalar.u, type);
    case QoriScalarKind::Signed:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(scalar.s, type);
    default:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(scalar.r, type);
  }
}

}  // namespace

bool RowPlan::addColumn(QORuint32 position) {
  const CQoriClass& model = _entry.model();
  const IQoriType& type = *model.type(position);
  const Code code = CQoriType::codeOf(type);
  for (const Column& column : _columns) {
    if (column.position == position) return false;
  }
  if (!isPlain(code)) return false;
  const CimPropertyDeclaration& declared = model.properties()[position];
  const QORSmrPtr<IQoriType> scalar = CQoriType::find(type.getName(), false);
  _columns.push_back({position, code, model.isKey(position), type.isArray(), declared.arraySize, scalar});
  return true;
}

bool RowPlan::readColumns(const std::vector<QORString>& propertyNames) {
  const CQoriClass& model = _entry.model();
  if (model.keyPositions().empty()) return false;
  std::vector<bool> isGiven(model.properties().size(), false);
  for (const QORString& name : propertyNames) {
    const QORsint32 position = model.position(name);
    if (position < 0 || !addColumn(static_cast<QORuint32>(position))) return false;
    isGiven[static_cast<std::size_t>(position)] = true;
  }
  for (QORuint32 i = 0; i < isGiven.size(); ++i) {
    const QORSmrPtr<IQoriValue>& value = model.properties()[i].defaultValue;
    if (isGiven[i] || (value.IsNull() && !model.isKey(i))) continue;
    if (value.IsNull() || model.isKey(i)) return false;
    _defaults.push_back({i, value});
  }
  return true;
}

QORSmrPtr<IQoriObject> RowPlan::makeObject(std::string_view row, QORuint64 identity) {
  return ModelInstance::createFilled(_shape, identity, [this, row](ModelSlot* slots) {
    return fill([slots](QORuint32 position) { return slots + position; }, row);
  });
}

bool RowPlan::fillSlot(const Column& column, const CimCell& cell, CimRowReader& reader, ModelSlot* slot) {
  if (cell.kind == CimCellKind::Null) return !column.isKey;
  if (column.isArray) return cell.kind == CimCellKind::Array && fillArray(column, cell, reader, slot);
  if (cell.kind == CimCellKind::Text) {
    if (!isTextOf(column, cell.text)) return false;
    const QoriScalarKind kind = column.code == Code::DateTime ? QoriScalarKind::DateTime : QoriScalarKind::Text;
    if (slot != nullptr) slot->setText(QORString(cell.text, _texts), kind);
    return true;
  }
  QoriScalar scalar;
  if (!readScalar(cell, column.code, scalar)) return false;
  if (slot != nullptr) slot->setScalar(scalar);
  return true;
}

// Arrays are states more often than not: few different ones, which instances share.
bool RowPlan::fillArray(const Column& column, const CimCell& cell, CimRowReader& reader, ModelSlot* slot) {
  if (column.arraySize >= 0 && cell.count > static_cast<QORuint32>(column.arraySize)) return false;
  CimRowReader ahead(reader);
  CimCell element;
  for (QORuint32 i = 0; i < cell.count; ++i) {
    if (!ahead.next(element) || !isElement(column, element)) return false;
  }
  if (slot != nullptr) slot->setComplex(arrayOf(column, cell, reader, ahead.place()));
  reader = ahead;
  return true;
}

bool RowPlan::isTextOf(const Column& column, std::string_view text) const noexcept {
  if (column.code == Code::DateTime) return !_checksDateTimes || model::isDateTime(text);
  return column.code == Code::String;
}

bool RowPlan::isElement(const Column& column, const CimCell& element) const noexcept {
  QoriScalar scalar;
  if (element.kind == CimCellKind::Text) return isTextOf(column, element.text);
  return element.kind == CimCellKind::Null || readScalar(element, column.code, scalar);
}

QORSmrPtr<IQoriValue> RowPlan::arrayOf(const Column& column, const CimCell& cell, CimRowReader& reader,
                                       const char* end) {
  const std::string_view cells(reader.place(), static_cast<std::size_t>(end - reader.place()));
  KnownArray& known = placeOf(column, cells);
  if (known.value.IsNull() || known.position != column.position || known.cells != cells) {
    known = {std::string(cells), column.position, makeArray(column, cell, reader)};
  }
  return known.value;
}

RowPlan::KnownArray& RowPlan::placeOf(const Column& column, std::string_view cells) {
  if (_arrays.empty()) _arrays.resize(kArraysKept);
  return _arrays[(std::hash<std::string_view>()(cells) + column.position) % kArraysKept];
}

// REQUIRES elements of the type.
QORSmrPtr<IQoriValue> RowPlan::makeArray(const Column& column, const CimCell& cell, CimRowReader reader) {
  const QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List());
  CimCell element;
  for (QORuint32 i = 0; i < cell.count && reader.next(element); ++i) {
    QoriScalar scalar;
    if (element.kind == CimCellKind::Null) {
      elements->append(QORSmrPtr<IQoriValue>());
    } else if (element.kind == CimCellKind::Text) {
      elements->append(QORSmrPtr<IQoriValue>::Make<CQoriValue>(QORString(element.text), column.scalar));
    } else if (readScalar(element, column.code, scalar)) {
      elements->append(valueOf(scalar, column.scalar));
    }
  }
  return QORSmrPtr<IQoriValue>::Make<CQoriValue>(elements, CQoriType::arrayOf(column.scalar));
}

}  // namespace embedded
