// One stored value.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Model/ModelSlot.h"

#include <memory>
#include <new>

#include "cimom/CQoriValue.h"

namespace {

using Kind = QoriScalarKind;

bool isText(Kind kind) noexcept { return kind == Kind::Text || kind == Kind::DateTime; }

bool isOfType(const IQoriValue& value, const QORSmrPtr<IQoriType>& type) noexcept {
  const IQoriType& own = *value.getType().Get();
  return &own == type.Get() ||
         (own.isArray() == type->isArray() && own.getName().isEqualCaseInsensitive(type->getName()));
}

}  // namespace

void ModelSlot::set(const QORSmrPtr<IQoriValue>& value, const QORSmrPtr<IQoriType>& type) {
  if (value.IsNull()) return;
  if (!isOfType(*value, type)) return set(QORSmrPtr<IQoriValue>::Make<CQoriValue>(*value, type), type);
  const QoriScalar scalar = value->scalar();
  if (isText(scalar.kind)) {
    holdText(*scalar.text, scalar.kind);
  } else if (scalar.kind == Kind::Complex) {
    holdValue(value);
  } else {
    _scalar = scalar;
  }
}

void ModelSlot::copy(const ModelSlot& other) {
  if (isText(other._scalar.kind)) {
    holdText(other._text, other._scalar.kind);
  } else if (other._scalar.kind == Kind::Complex) {
    holdValue(other._value);
  } else {
    _scalar = other._scalar;
  }
}

void ModelSlot::holdText(const QORString& text, Kind kind) noexcept {
  new (&_text) QORString(text);
  _scalar.kind = kind;
  _scalar.text = &_text;
}

void ModelSlot::holdValue(const QORSmrPtr<IQoriValue>& value) noexcept {
  new (&_value) QORSmrPtr<IQoriValue>(value);
  _scalar.kind = Kind::Complex;
  _scalar.value = value.Get();
}

ModelSlot::~ModelSlot() {
  if (isText(_scalar.kind)) _text.~QORString();
  if (_scalar.kind == Kind::Complex) std::destroy_at(&_value);
}

QORSmrPtr<IQoriValue> ModelSlot::value(const QORSmrPtr<IQoriType>& type) const {
  switch (_scalar.kind) {
    case Kind::Null:
      return {};
    case Kind::Boolean:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(_scalar.b, type);
    case Kind::Unsigned:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(_scalar.u, type);
    case Kind::Signed:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(_scalar.s, type);
    case Kind::Real:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(_scalar.r, type);
    case Kind::Char16:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(_scalar.c, type);
    case Kind::Complex:
      return _value;
    default:
      return QORSmrPtr<IQoriValue>::Make<CQoriValue>(_text, type);
  }
}
