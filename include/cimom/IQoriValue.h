// A CIM value: scalar, array, reference or embedded object, with its type.
#ifndef QORQL_CIMOM_IQORIVALUE_H
#define QORQL_CIMOM_IQORIVALUE_H

#include "cimom/IQoriType.h"
#include "cimom/QoriScalar.h"
#include "cmpbase.h"

class IQoriInstanceName;
class IQoriObject;

// Immutable; threads may share one. SQL NULL is no value of this kind but a
// null pointer. A null element of an array is a null pointer in its list.
class IQoriValue {
 public:
  using Pointer = QORSmrPtr<IQoriValue>;
  using List = QORValSlist<QORSmrPtr<IQoriValue>>;

  virtual ~IQoriValue() = default;

  virtual const QORSmrPtr<IQoriType>& getType() const noexcept = 0;

  // The value's text: integers decimal, reals in the shortest form that reads
  // back, TRUE / FALSE, strings and datetimes as they are, references as the
  // instance path, embedded objects as MOF instance text, arrays as the
  // elements joined by ",".
  virtual QORString toString() const = 0;

  virtual bool isArray() const noexcept = 0;
  // The elements in order, shared; null when this is no array. Do not change the list.
  virtual QORSmrPtr<List> getArray() const = 0;
  // Null when this is no reference.
  virtual QORSmrPtr<IQoriInstanceName> getReference() const = 0;
  // Null when this is no embedded object.
  virtual QORSmrPtr<IQoriObject> getObject() const = 0;

  // A borrowed view, valid while this value lives; kind Complex, pointing at
  // this value, for arrays, references and embedded objects. Never Null.
  virtual QoriScalar scalar() const noexcept = 0;

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
  virtual QORreal32 getReal32() const = 0;
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
  virtual Pointer add(const IQoriValue& other) const = 0;
  virtual Pointer subtract(const IQoriValue& other) const = 0;
  virtual Pointer multiply(const IQoriValue& other) const = 0;
  virtual Pointer divide(const IQoriValue& other) const = 0;
  // uint8 gives sint16, uint16 sint32, uint32 sint64; a signed type stays; a
  // result that does not fit is a null pointer. THROWS as above, for uint64 too.
  virtual Pointer negate() const = 0;

  // Whether `this relation other` holds. Numbers compare by mathematical value
  // across all types; strings byte by byte; booleans with booleans and with the
  // texts TRUE and FALSE; datetimes with datetimes and datetime text; references
  // by path, also with path text; embedded objects by class and properties;
  // char16 with char16 and with text of one character. Arrays are equal when
  // length and elements are; other relations on arrays, arrays of other types (but for numbers), and array against
  // scalar, are Null. THROWS QoriBaseException (type "CIM_Value") naming both
  // types for any other pair. Allocates nothing for numbers, booleans and strings.
  virtual QoriTruth relate(QoriRelation relation, const IQoriValue& other) const = 0;

  // The order that sorting uses: relate() with Less or Greater, Null taken as false.
  bool operator<(const IQoriValue& other) const { return relate(QoriRelation::Less, other) == QoriTruth::True; }
  bool operator>(const IQoriValue& other) const { return relate(QoriRelation::Greater, other) == QoriTruth::True; }
};

#endif
