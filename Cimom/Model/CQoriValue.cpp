// Values: construction, conversion and access. Arithmetic and comparison have files of their own.
// SPDX-License-Identifier: Apache-2.0
#include "cimom/CQoriValue.h"

#include "Cimom/Model/CQoriValueComplex.h"
#include "Cimom/Model/ModelError.h"
#include "Cimom/Model/ModelMof.h"
#include "Cimom/Model/ModelScalar.h"

namespace {

using Code = CQoriType::Code;
using Kind = QoriScalarKind;

[[noreturn]] void raiseConversion(const QORString& from, const QORString& to) {
  model::raiseValueError("convert", "Cannot convert " + from + " to " + to);
}

const QORSmrPtr<IQoriType>& checkedType(const QORSmrPtr<IQoriType>& type) {
  if (type.IsNull()) model::raiseValueError("CQoriValue", "A value needs a type");
  return type;
}

// The scalar as `type` holds it; `from` names what it was.
QoriScalar typed(QoriScalar scalar, const QORSmrPtr<IQoriType>& type, const char* from) {
  checkedType(type);
  if (type->isArray() || !model::convertScalar(scalar, CQoriType::codeOf(*type))) {
    raiseConversion(from, model::typeText(*type));
  }
  return scalar;
}

bool isTextCode(Code code) noexcept { return code == Code::String || code == Code::DateTime; }

QoriScalar textScalar(const QORString& text, Code code) noexcept {
  QoriScalar scalar;
  scalar.kind = code == Code::DateTime ? Kind::DateTime : Kind::Text;
  scalar.text = &text;
  return scalar;
}

QoriScalar complexScalar(const IQoriValue& value) noexcept {
  QoriScalar scalar;
  scalar.kind = Kind::Complex;
  scalar.value = &value;
  return scalar;
}

QORSmrPtr<IQoriType> arrayTypeOf(const QORSmrPtr<IQoriType>& type) {
  return checkedType(type)->isArray() ? type : CQoriType::arrayOf(type);
}

bool isSameType(const IQoriType& a, const IQoriType& b) noexcept {
  if (&a == &b) return true;
  return a.isArray() == b.isArray() && a.getName().isEqualCaseInsensitive(b.getName());
}

// The elements as values of `element`; null elements stay.
QORSmrPtr<IQoriValue::List> convertElements(const IQoriValue::List& elements, const QORSmrPtr<IQoriType>& element) {
  QORSmrPtr<IQoriValue::List> converted(new IQoriValue::List);
  QORValSlistIterator<QORSmrPtr<IQoriValue>> it(elements);
  while (++it) {
    converted->append(it.key().IsNull() ? QORSmrPtr<IQoriValue>()
                                        : QORSmrPtr<IQoriValue>::Make<CQoriValue>(*it.key(), element));
  }
  return converted;
}

QORString arrayText(const IQoriValue::List& elements) {
  QORString text = QORString::emptyString();
  bool first = true;
  QORValSlistIterator<QORSmrPtr<IQoriValue>> it(elements);
  while (++it) {
    if (!first) text += ',';
    first = false;
    if (!it.key().IsNull()) text += it.key()->toString();
  }
  return text;
}

}  // namespace

CQoriValue::CQoriValue(bool value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::booleanScalar(value), type, "boolean")) {}
CQoriValue::CQoriValue(char value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::char16Scalar(static_cast<unsigned char>(value)), type, "char16")) {}
CQoriValue::CQoriValue(signed char value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::signedScalar(value), type, "sint8")) {}
CQoriValue::CQoriValue(unsigned char value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::unsignedScalar(value), type, "uint8")) {}
CQoriValue::CQoriValue(short value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::signedScalar(value), type, "sint16")) {}
CQoriValue::CQoriValue(unsigned short value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::unsignedScalar(value), type, "uint16")) {}
CQoriValue::CQoriValue(int value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::signedScalar(value), type, "sint32")) {}
CQoriValue::CQoriValue(unsigned int value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::unsignedScalar(value), type, "uint32")) {}
CQoriValue::CQoriValue(long value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::signedScalar(value), type, "sint64")) {}
CQoriValue::CQoriValue(unsigned long value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::unsignedScalar(value), type, "uint64")) {}
CQoriValue::CQoriValue(long long value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::signedScalar(value), type, "sint64")) {}
CQoriValue::CQoriValue(unsigned long long value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::unsignedScalar(value), type, "uint64")) {}
CQoriValue::CQoriValue(double value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::realScalar(value), type, "real64")) {}
CQoriValue::CQoriValue(char16_t value, const QORSmrPtr<IQoriType>& type)
    : _type(type), _scalar(typed(model::char16Scalar(value), type, "char16")) {}

CQoriValue::CQoriValue(const QORString& value)
    : _type(CQoriType::string), _scalar(textScalar(_text, Code::String)), _text(value) {}

CQoriValue::CQoriValue(const QORString& value, const QORSmrPtr<IQoriType>& type) : _type(checkedType(type)) {
  const Code code = CQoriType::codeOf(*type);
  if (type->isArray() || !isTextCode(code)) raiseConversion("string", model::typeText(*type));
  _text = value;
  _scalar = textScalar(_text, code);
}

CQoriValue::CQoriValue(const QORSmrPtr<IQoriInstanceName>& name)
    : _type(CQoriType::reference), _scalar(complexScalar(*this)), _complex(new Complex{{}, name, {}}) {}

CQoriValue::CQoriValue(const QORSmrPtr<IQoriObject>& object)
    : _type(CQoriType::object), _scalar(complexScalar(*this)), _complex(new Complex{{}, {}, object}) {}

CQoriValue::CQoriValue(const QORSmrPtr<List>& elements, const QORSmrPtr<IQoriType>& type)
    : _type(arrayTypeOf(type)),
      _scalar(complexScalar(*this)),
      _complex(new Complex{elements.IsNull() ? QORSmrPtr<List>(new List) : elements, {}, {}}) {}

CQoriValue::CQoriValue(const CQoriValue& other) : CQoriValue(static_cast<const IQoriValue&>(other)) {}

CQoriValue::CQoriValue(const IQoriValue& other) : _type(other.getType()), _scalar(other.scalar()) {
  if (_scalar.kind == Kind::Complex) {
    _complex = new Complex{other.getArray(), other.getReference(), other.getObject()};
    _scalar.value = this;
  } else if (_scalar.kind == Kind::Text || _scalar.kind == Kind::DateTime) {
    _text = *_scalar.text;
    _scalar.text = &_text;
  }
}

// Delegates first, so that the destructor runs when the conversion fails.
CQoriValue::CQoriValue(const IQoriValue& other, const QORSmrPtr<IQoriType>& type) : CQoriValue(other) {
  if (isSameType(*_type, *checkedType(type))) {
    _type = type;
    return;
  }
  const Code target = CQoriType::codeOf(*type);
  const Code source = CQoriType::codeOf(*_type);
  if (_type->isArray() && type->isArray()) {
    _complex->elements = convertElements(*_complex->elements, CQoriType::find(type->getName(), false));
  } else if (!_type->isArray() && !type->isArray() && target == Code::String && _complex == nullptr) {
    _text = model::scalarText(_scalar, source);
    _scalar = textScalar(_text, target);
  } else if (!type->isArray() && isTextCode(source) && target == Code::DateTime && _complex == nullptr) {
    _scalar = textScalar(_text, target);
  } else if (type->isArray() || !model::convertScalar(_scalar, target)) {
    raiseConversion(model::typeText(*_type), model::typeText(*type));
  }
  _type = type;
}

CQoriValue::~CQoriValue() { delete _complex; }

QORString CQoriValue::toString() const {
  if (_complex == nullptr) return model::scalarText(_scalar, CQoriType::codeOf(*_type));
  const model::NestingGuard guard("toString");
  if (!_complex->elements.IsNull()) return arrayText(*_complex->elements);
  if (!_complex->reference.IsNull()) return _complex->reference->toString();
  return _complex->object.IsNull() ? QORString::emptyString() : model::mofText(*_complex->object);
}

bool CQoriValue::isArray() const noexcept { return _complex != nullptr && !_complex->elements.IsNull(); }

QORSmrPtr<IQoriValue::List> CQoriValue::getArray() const {
  return _complex == nullptr ? QORSmrPtr<List>() : _complex->elements;
}

QORSmrPtr<IQoriInstanceName> CQoriValue::getReference() const {
  return _complex == nullptr ? QORSmrPtr<IQoriInstanceName>() : _complex->reference;
}

QORSmrPtr<IQoriObject> CQoriValue::getObject() const {
  return _complex == nullptr ? QORSmrPtr<IQoriObject>() : _complex->object;
}

namespace {

// The value's scalar as `target`, for the getters.
QoriScalar converted(const CQoriValue& value, Code target, const char* targetName) {
  QoriScalar scalar = value.scalar();
  if (!model::convertScalar(scalar, target)) raiseConversion(model::typeText(*value.getType()), targetName);
  return scalar;
}

}  // namespace

QORsint8 CQoriValue::getSint8() const { return static_cast<QORsint8>(converted(*this, Code::Sint8, "sint8").s); }
QORuint8 CQoriValue::getUint8() const { return static_cast<QORuint8>(converted(*this, Code::Uint8, "uint8").u); }
QORsint16 CQoriValue::getSint16() const { return static_cast<QORsint16>(converted(*this, Code::Sint16, "sint16").s); }
QORuint16 CQoriValue::getUint16() const { return static_cast<QORuint16>(converted(*this, Code::Uint16, "uint16").u); }
QORsint32 CQoriValue::getSint32() const { return static_cast<QORsint32>(converted(*this, Code::Sint32, "sint32").s); }
QORuint32 CQoriValue::getUint32() const { return static_cast<QORuint32>(converted(*this, Code::Uint32, "uint32").u); }
QORsint64 CQoriValue::getSint64() const { return converted(*this, Code::Sint64, "sint64").s; }
QORuint64 CQoriValue::getUint64() const { return converted(*this, Code::Uint64, "uint64").u; }
QORreal32 CQoriValue::getReal32() const { return static_cast<QORreal32>(converted(*this, Code::Real32, "real32").r); }
QORreal64 CQoriValue::getReal64() const { return converted(*this, Code::Real64, "real64").r; }
char16_t CQoriValue::getChar16() const { return converted(*this, Code::Char16, "char16").c; }

bool CQoriValue::getBoolean() const noexcept {
  switch (_scalar.kind) {
    case Kind::Boolean:
      return _scalar.b;
    case Kind::Unsigned:
      return _scalar.u != 0;
    case Kind::Signed:
      return _scalar.s != 0;
    case Kind::Real:
      return _scalar.r != 0.0;
    case Kind::Text: {
      bool value = false;
      return model::readBoolean(_text, value) && value;
    }
    default:
      return false;
  }
}
