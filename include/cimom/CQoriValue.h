// The values that the engine and the object manager create.
#ifndef QORQL_CIMOM_CQORIVALUE_H
#define QORQL_CIMOM_CQORIVALUE_H

#include "cimom/CQoriType.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

// Immutable. A constructor that takes a type converts the given scalar to it
// (integers wrap, reals truncate) and takes it as the value's type; a null type
// or one that holds no such scalar THROWS QoriBaseException (type "CIM_Value").
class CQoriValue : public IQoriValue {
 public:
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
  QoriScalar scalar() const noexcept override;
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

#endif
