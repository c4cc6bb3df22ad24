// A CIM value: scalar, array, reference or embedded object, with its type; and the
// values that the engine makes, which the default implementations of its operations use.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_IQORIVALUE_H
#define QORQL_CIMOM_IQORIVALUE_H

#include <atomic>
#include <cmath>
#include <limits>

#include "cimom/CQoriType.h"
#include "cimom/IQoriType.h"
#include "cimom/QoriScalar.h"
#include "cmpbase.h"

class IQoriInstanceName;
class IQoriObject;

// A text that is made when it is first asked for, and then kept. Threads may share one.
class QoriMadeText {
 public:
  QoriMadeText() noexcept = default;
  // A copy makes a text of its own.
  QoriMadeText(const QoriMadeText& /*other*/) noexcept {}
  QoriMadeText& operator=(const QoriMadeText& /*other*/) noexcept {
    delete _text.exchange(nullptr, std::memory_order_acq_rel);
    return *this;
  }
  ~QoriMadeText() { delete _text.load(std::memory_order_acquire); }

  // When several threads make it at once, one text is kept.
  template <class Make>
  const QORString& get(const Make& make) const {
    if (const QORString* const text = _text.load(std::memory_order_acquire)) return *text;
    const QORString* const made = new QORString(make());
    const QORString* expected = nullptr;
    if (_text.compare_exchange_strong(expected, made, std::memory_order_acq_rel)) return *made;
    delete made;
    return *expected;
  }

 private:
  mutable std::atomic<const QORString*> _text{nullptr};  // OWNS
};

// Immutable; threads may share one. SQL NULL is not such a value but a
// null pointer. A null element of an array is a null pointer in its list.
//
// An object manager must implement type, text, elements, reference, object and the
// scalars. Operations that are not pure have a default that uses those; values may
// override it with a faster one.
class IQoriValue {
 public:
  using Pointer = QORSmrPtr<IQoriValue>;
  using List = QORValSlist<QORSmrPtr<IQoriValue>>;

  virtual ~IQoriValue() = default;

  // Never null.
  virtual const QORSmrPtr<IQoriType>& getType() const noexcept = 0;

  // The value's text: integers decimal, reals in the shortest form that reads
  // back, TRUE / FALSE, strings and datetimes as they are, references as the
  // instance path, embedded objects as MOF instance text, arrays as the
  // elements joined by ",".
  virtual QORString toString() const = 0;

  // What the type says.
  virtual bool isArray() const noexcept = 0;
  // The elements in order, shared; null when this is no array. Do not change the list.
  virtual QORSmrPtr<List> getArray() const = 0;
  // Null when this is no reference.
  virtual QORSmrPtr<IQoriInstanceName> getReference() const = 0;
  // Null when this is no embedded object.
  virtual QORSmrPtr<IQoriObject> getObject() const = 0;

  // A borrowed view, valid while this value lives; kind Complex, pointing at
  // this value, for arrays, references and embedded objects. Never Null.
  virtual QoriScalar scalar() const;

  // The value as one scalar type. Integers wrap as C++ conversions do, reals
  // truncate and saturate, booleans are 0 or 1. THROW QoriBaseException (type
  // "CIM_Value") naming both types when the value is no number, boolean or char16.
  virtual QORsint8 getSint8() const = 0;
  virtual QORuint8 getUint8() const = 0;
  virtual QORsint16 getSint16() const = 0;
  virtual QORuint16 getUint16() const = 0;
  virtual QORsint32 getSint32() const = 0;
  virtual QORuint32 getUint32() const = 0;
  virtual QORsint64 getSint64() const = 0;
  virtual QORuint64 getUint64() const = 0;
  virtual QORreal32 getReal32() const;
  virtual QORreal64 getReal64() const = 0;
  virtual char16_t getChar16() const = 0;
  // The value as a condition: a boolean as it is, the text TRUE or FALSE in any
  // case, a number when it is not zero; anything else is false. Never throws.
  virtual bool getBoolean() const noexcept = 0;

  // Exact arithmetic, or a null pointer when the result cannot be represented
  // or an operand is an array. A real operand gives real64; + * / of two
  // unsigned give uint64 and otherwise sint64; - gives sint64; a uint64 left
  // operand with a result that is not negative stays uint64; a result that fits
  // only the other 64-bit type takes that. Two strings concatenate. THROW
  // QoriBaseException (type "CIM_Value") on division by zero and on non-numbers.
  virtual Pointer add(const IQoriValue& other) const;
  virtual Pointer subtract(const IQoriValue& other) const;
  virtual Pointer multiply(const IQoriValue& other) const;
  virtual Pointer divide(const IQoriValue& other) const;
  // uint8 gives sint16, uint16 sint32, uint32 sint64; a signed type stays; a
  // result that does not fit is a null pointer. THROWS as above, for uint64 too.
  virtual Pointer negate() const;

  // Whether `this relation other` holds. Numbers compare by mathematical value
  // across all types; strings byte by byte; booleans with booleans and with the
  // texts TRUE and FALSE; datetimes with datetimes and datetime text; references by
  // path, also with path text, which may lack the quotes at its end; embedded objects
  // by class and properties; char16 with char16 and with text of one character. Arrays
  // are equal when length and elements are; other relations on arrays, arrays of
  // different types other than numbers, and array against scalar, are Null. THROWS QoriBaseException (type "CIM_Value")
  // naming both types for any other pair. Allocates nothing for numbers, booleans and strings.
  virtual QoriTruth relate(QoriRelation relation, const IQoriValue& other) const;

  // The order that sorting uses: relate() with Less or Greater, Null taken as false.
  bool operator<(const IQoriValue& other) const { return relate(QoriRelation::Less, other) == QoriTruth::True; }
  bool operator>(const IQoriValue& other) const { return relate(QoriRelation::Greater, other) == QoriTruth::True; }

 private:
  QoriMadeText _shownText;  // what scalar() shows of a text
};

// Immutable. A constructor that takes a type converts the given scalar to it
// (integers wrap, reals truncate) and takes it as the value's type; a null type
// or one that holds no such scalar THROWS QoriBaseException (type "CIM_Value").
class CQoriValue : public IQoriValue {
 public:
  // A scalar of a C++ type as a value of a CIM type.
  CQoriValue(bool value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(char value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(signed char value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(unsigned char value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(short value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(unsigned short value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(int value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(unsigned int value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(long value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(unsigned long value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(long long value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(unsigned long long value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(double value, const QORSmrPtr<IQoriType>& type);
  CQoriValue(char16_t value, const QORSmrPtr<IQoriType>& type);
  // A string; with a type, "string" or "datetime" (the text is taken as it is).
  explicit CQoriValue(const QORString& value);
  CQoriValue(const QORString& value, const QORSmrPtr<IQoriType>& type);
  // A reference.
  explicit CQoriValue(const QORSmrPtr<IQoriInstanceName>& name);
  // An embedded object.
  explicit CQoriValue(const QORSmrPtr<IQoriObject>& object);
  // An array of `type` (the element's scalar type or the array type); shares the list.
  CQoriValue(const QORSmrPtr<List>& elements, const QORSmrPtr<IQoriType>& type);
  // A copy, and a copy converted to another scalar type.
  CQoriValue(const CQoriValue& other);
  explicit CQoriValue(const IQoriValue& other);
  CQoriValue(const IQoriValue& other, const QORSmrPtr<IQoriType>& type);
  CQoriValue& operator=(const CQoriValue&) = delete;
  ~CQoriValue() override;

  const QORSmrPtr<IQoriType>& getType() const noexcept override { return _type; }
  QORString toString() const override;
  bool isArray() const noexcept override;
  QORSmrPtr<List> getArray() const override;
  QORSmrPtr<IQoriInstanceName> getReference() const override;
  QORSmrPtr<IQoriObject> getObject() const override;
  QoriScalar scalar() const noexcept override { return _scalar; }
  QORsint8 getSint8() const override;
  QORuint8 getUint8() const override;
  QORsint16 getSint16() const override;
  QORuint16 getUint16() const override;
  QORsint32 getSint32() const override;
  QORuint32 getUint32() const override;
  QORsint64 getSint64() const override;
  QORuint64 getUint64() const override;
  QORreal32 getReal32() const override;
  QORreal64 getReal64() const override;
  char16_t getChar16() const override;
  bool getBoolean() const noexcept override;
  Pointer add(const IQoriValue& other) const override;
  Pointer subtract(const IQoriValue& other) const override;
  Pointer multiply(const IQoriValue& other) const override;
  Pointer divide(const IQoriValue& other) const override;
  Pointer negate() const override;
  QoriTruth relate(QoriRelation relation, const IQoriValue& other) const override;

 private:
  // The parts that only arrays, references and embedded objects have.
  struct Complex;

  QORSmrPtr<IQoriType> _type;
  QoriScalar _scalar;  // its text points at _text, its value at this object
  QORString _text;
  Complex* _complex = nullptr;  // OWNS; null for scalars
};

// --- defaults for object managers that do not override an operation ---

namespace qori {

// The kind of a type's scalars, by its name ignoring case; Complex for a type that has none.
inline QoriScalarKind kindOfType(const QORString& typeName) noexcept {
  using Kind = QoriScalarKind;
  constexpr struct {
    const char* name;
    Kind kind;
  } kKinds[] = {{"uint8", Kind::Unsigned},    {"uint16", Kind::Unsigned}, {"uint32", Kind::Unsigned},
                {"uint64", Kind::Unsigned},   {"sint8", Kind::Signed},    {"sint16", Kind::Signed},
                {"sint32", Kind::Signed},     {"sint64", Kind::Signed},   {"real32", Kind::Real},
                {"real64", Kind::Real},       {"boolean", Kind::Boolean}, {"string", Kind::Text},
                {"datetime", Kind::DateTime}, {"char16", Kind::Char16}};
  for (const auto& known : kKinds) {
    if (QORString::equalIgnoringCase(typeName.view(), known.name)) return known.kind;
  }
  return Kind::Complex;
}

}  // namespace qori

inline QoriScalar IQoriValue::scalar() const {
  using Kind = QoriScalarKind;
  QoriScalar view;
  view.kind = isArray() ? Kind::Complex : qori::kindOfType(getType()->getName());
  switch (view.kind) {
    case Kind::Unsigned:
      view.u = getUint64();
      break;
    case Kind::Signed:
      view.s = getSint64();
      break;
    case Kind::Real:
      view.r = getReal64();
      break;
    case Kind::Boolean:
      view.b = getBoolean();
      break;
    case Kind::Char16:
      view.c = getChar16();
      break;
    case Kind::Text:
    case Kind::DateTime:
      view.text = &_shownText.get([this] { return toString(); });
      break;
    default:
      view.value = this;
  }
  return view;
}

inline QORreal32 IQoriValue::getReal32() const {
  const QORreal64 value = getReal64();
  constexpr QORreal64 kGreatest = static_cast<QORreal64>(std::numeric_limits<QORreal32>::max());
  if (std::isfinite(value) && std::abs(value) > kGreatest) {
    return std::copysign(std::numeric_limits<QORreal32>::infinity(), value < 0 ? -1.0F : 1.0F);
  }
  return static_cast<QORreal32>(value);
}

inline IQoriValue::Pointer IQoriValue::add(const IQoriValue& other) const { return CQoriValue(*this).add(other); }
inline IQoriValue::Pointer IQoriValue::subtract(const IQoriValue& other) const {
  return CQoriValue(*this).subtract(other);
}
inline IQoriValue::Pointer IQoriValue::multiply(const IQoriValue& other) const {
  return CQoriValue(*this).multiply(other);
}
inline IQoriValue::Pointer IQoriValue::divide(const IQoriValue& other) const { return CQoriValue(*this).divide(other); }
inline IQoriValue::Pointer IQoriValue::negate() const { return CQoriValue(*this).negate(); }
inline QoriTruth IQoriValue::relate(QoriRelation relation, const IQoriValue& other) const {
  return CQoriValue(*this).relate(relation, other);
}

#endif
