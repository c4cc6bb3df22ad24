// The proxies. What an operation must never return, by its contract, it still
// returns here when it cannot throw: a null type, an empty name.
// SPDX-License-Identifier: Apache-2.0
#include "FaultyModel.h"

#include "FaultPlan.h"
#include "cimom/CQoriValue.h"

namespace {

const QORSmrPtr<IQoriType> kNoType;
const QORSmrPtr<IQoriValue> kNoValue;
const QORSmrPtr<IQoriNameSpacePath> kNoPath;

// The values that come in place of others.
const QORSmrPtr<IQoriValue>& garbage() {
  static const QORSmrPtr<IQoriValue> kElements[] = {QORSmrPtr<IQoriValue>(new CQoriValue(QORString("garbage"))),
                                                    QORSmrPtr<IQoriValue>(),
                                                    QORSmrPtr<IQoriValue>(new CQoriValue(true, CQoriType::boolean))};
  static const QORSmrPtr<IQoriValue> value = [] {
    const QORSmrPtr<IQoriValue::List> list(new IQoriValue::List);
    for (const QORSmrPtr<IQoriValue>& element : kElements) list->append(element);
    return QORSmrPtr<IQoriValue>(new CQoriValue(list, CQoriType::string));
  }();
  return value;
}

class Value final : public IQoriValue {
 public:
  explicit Value(const QORSmrPtr<IQoriValue>& inner) : _inner(inner) {}

  const QORSmrPtr<IQoriType>& getType() const noexcept override {
    return FaultPlan::strikesQuietly() ? kNoType : _inner->getType();
  }
  QORString toString() const override { return FaultPlan::strikes() ? QORString() : _inner->toString(); }
  bool isArray() const noexcept override { return FaultPlan::strikesWithGarbage() != _inner->isArray(); }
  QORSmrPtr<List> getArray() const override { return FaultPlan::strikes() ? QORSmrPtr<List>() : _inner->getArray(); }
  QORSmrPtr<IQoriInstanceName> getReference() const override {
    return FaultPlan::strikes() ? QORSmrPtr<IQoriInstanceName>() : faulty::wrap(_inner->getReference());
  }
  QORSmrPtr<IQoriObject> getObject() const override {
    return FaultPlan::strikes() ? QORSmrPtr<IQoriObject>() : faulty::wrap(_inner->getObject(), false);
  }
  QoriScalar scalar() const noexcept override {
    QoriScalar scalar = FaultPlan::strikesWithGarbage() ? garbage()->scalar() : _inner->scalar();
    if (scalar.kind == QoriScalarKind::Complex && scalar.value == _inner.Get()) scalar.value = this;
    return scalar;
  }
  QORsint8 getSint8() const override { return number(&IQoriValue::getSint8); }
  QORuint8 getUint8() const override { return number(&IQoriValue::getUint8); }
  QORsint16 getSint16() const override { return number(&IQoriValue::getSint16); }
  QORuint16 getUint16() const override { return number(&IQoriValue::getUint16); }
  QORsint32 getSint32() const override { return number(&IQoriValue::getSint32); }
  QORuint32 getUint32() const override { return number(&IQoriValue::getUint32); }
  QORsint64 getSint64() const override { return number(&IQoriValue::getSint64); }
  QORuint64 getUint64() const override { return number(&IQoriValue::getUint64); }
  QORreal32 getReal32() const override { return number(&IQoriValue::getReal32); }
  QORreal64 getReal64() const override { return number(&IQoriValue::getReal64); }
  char16_t getChar16() const override { return number(&IQoriValue::getChar16); }
  bool getBoolean() const noexcept override { return _inner->getBoolean(); }
  Pointer add(const IQoriValue& other) const override { return combined(&IQoriValue::add, other); }
  Pointer subtract(const IQoriValue& other) const override { return combined(&IQoriValue::subtract, other); }
  Pointer multiply(const IQoriValue& other) const override { return combined(&IQoriValue::multiply, other); }
  Pointer divide(const IQoriValue& other) const override { return combined(&IQoriValue::divide, other); }
  Pointer negate() const override { return FaultPlan::strikes() ? Pointer() : _inner->negate(); }
  QoriTruth relate(QoriRelation relation, const IQoriValue& other) const override {
    return FaultPlan::strikes() ? QoriTruth::Null : _inner->relate(relation, other);
  }

 private:
  template <class Number>
  Number number(Number (IQoriValue::*get)() const) const {
    return FaultPlan::strikes() ? Number() : ((*_inner).*get)();
  }
  Pointer combined(Pointer (IQoriValue::*operation)(const IQoriValue&) const, const IQoriValue& other) const {
    return FaultPlan::strikes() ? Pointer() : ((*_inner).*operation)(other);
  }

  QORSmrPtr<IQoriValue> _inner;
};

class Property final : public IQoriProperty {
 public:
  explicit Property(const QORSmrPtr<IQoriProperty>& inner) : _inner(inner), _value(faulty::wrap(inner->getValue())) {}
  const QORString& getName() const noexcept override {
    return FaultPlan::strikesQuietly() ? QORString::emptyString() : _inner->getName();
  }
  const QORSmrPtr<IQoriType>& getType() const noexcept override {
    return FaultPlan::strikesQuietly() ? kNoType : _inner->getType();
  }
  const QORSmrPtr<IQoriValue>& getValue() const noexcept override {
    if (FaultPlan::strikesWithGarbage()) return garbage();
    return FaultPlan::strikesQuietly() ? kNoValue : _value;
  }

 private:
  QORSmrPtr<IQoriProperty> _inner;
  QORSmrPtr<IQoriValue> _value;
};

class Name final : public IQoriInstanceName {
 public:
  explicit Name(const QORSmrPtr<IQoriInstanceName>& inner) : _inner(inner) {}
  const QORString& getClassName() const noexcept override {
    return FaultPlan::strikesQuietly() ? QORString::emptyString() : _inner->getClassName();
  }
  const QORSmrPtr<IQoriNameSpacePath>& getNameSpacePath() const noexcept override {
    return FaultPlan::strikesQuietly() ? kNoPath : _inner->getNameSpacePath();
  }
  const QORSmrPtr<KeyList>& getKeys() const override {
    static const QORSmrPtr<KeyList> none;
    return FaultPlan::strikes() ? none : _inner->getKeys();
  }
  QORString toString() const override { return FaultPlan::strikes() ? QORString() : _inner->toString(); }

 private:
  QORSmrPtr<IQoriInstanceName> _inner;
};

// Operations by position answer rightly or throw: a layout's promise is what lets the engine use them unasked.
class Object final : public IQoriObject {
 public:
  Object(const QORSmrPtr<IQoriObject>& inner, bool keepsLayout) : _inner(inner), _keepsLayout(keepsLayout) {}
  const QORString& getClassName() const noexcept override {
    return FaultPlan::strikesQuietly() ? QORString::emptyString() : _inner->getClassName();
  }
  QORSmrPtr<IQoriInstanceName> getInstanceName() const override {
    return FaultPlan::strikes() ? QORSmrPtr<IQoriInstanceName>() : faulty::wrap(_inner->getInstanceName());
  }
  QORString getNameSpace() const override { return FaultPlan::strikes() ? QORString() : _inner->getNameSpace(); }
  QORuint32 getPropertyCount() const noexcept override {
    return FaultPlan::strikesQuietly() ? 0 : _inner->getPropertyCount();
  }
  QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const override {
    return FaultPlan::strikes() ? QORSmrPtr<IQoriProperty>() : faulty::wrap(_inner->getPropertyAt(position));
  }
  QORSmrPtr<IQoriProperty> getProperty(const QORString& name, bool includeInherited) const override {
    return FaultPlan::strikes() ? QORSmrPtr<IQoriProperty>()
                                : faulty::wrap(_inner->getProperty(name, includeInherited));
  }
  const IQoriLayout* getLayout() const noexcept override { return _keepsLayout ? _inner->getLayout() : nullptr; }
  QoriScalar getScalarAt(QORuint32 position) const noexcept override {
    if (FaultPlan::strikesWithGarbage()) return garbage()->scalar();
    return FaultPlan::strikesQuietly() ? QoriScalar() : _inner->getScalarAt(position);
  }
  QORSmrPtr<IQoriValue> getValueAt(QORuint32 position) const override {
    if (FaultPlan::strikesWithGarbage()) return garbage();
    return FaultPlan::strikesQuietly() ? QORSmrPtr<IQoriValue>() : faulty::wrap(_inner->getValueAt(position));
  }

 private:
  QORSmrPtr<IQoriObject> _inner;
  bool _keepsLayout;
};

class Class final : public IQoriClass {
 public:
  explicit Class(const QORSmrPtr<IQoriClass>& inner) : _inner(inner) {}
  const QORString& getClassName() const noexcept override {
    return FaultPlan::strikesQuietly() ? QORString::emptyString() : _inner->getClassName();
  }
  const QORString& getSuperClassName() const noexcept override {
    return FaultPlan::strikesQuietly() ? QORString::emptyString() : _inner->getSuperClassName();
  }
  const IQoriQualifier* getQualifier(const QORString& name, bool includeInherited) const noexcept override {
    return FaultPlan::strikesQuietly() ? nullptr : _inner->getQualifier(name, includeInherited);
  }
  const IQoriProperty* getProperty(const QORString& name, bool includeInherited) const noexcept override {
    return FaultPlan::strikesQuietly() ? nullptr : _inner->getProperty(name, includeInherited);
  }

 private:
  QORSmrPtr<IQoriClass> _inner;
};

class Repository final : public IQoriRepository {
 public:
  explicit Repository(const QORSmrPtr<IQoriRepository>& inner) : _inner(inner) {}
  QORSmrPtr<IQoriClass> getClass(const QORString& nameSpace, const QORString& className) const override {
    return FaultPlan::strikes() ? QORSmrPtr<IQoriClass>() : faulty::wrap(_inner->getClass(nameSpace, className));
  }

 private:
  QORSmrPtr<IQoriRepository> _inner;
};

template <class Proxy, class Interface, class... Arguments>
QORSmrPtr<Interface> proxyOf(const QORSmrPtr<Interface>& inner, Arguments... arguments) {
  return inner.IsNull() ? inner : QORSmrPtr<Interface>(new Proxy(inner, arguments...));
}

}  // namespace

namespace faulty {

QORSmrPtr<IQoriValue> wrap(const QORSmrPtr<IQoriValue>& value) { return proxyOf<Value>(value); }
QORSmrPtr<IQoriProperty> wrap(const QORSmrPtr<IQoriProperty>& property) { return proxyOf<Property>(property); }
QORSmrPtr<IQoriInstanceName> wrap(const QORSmrPtr<IQoriInstanceName>& name) { return proxyOf<Name>(name); }
QORSmrPtr<IQoriObject> wrap(const QORSmrPtr<IQoriObject>& object, bool keepsLayout) {
  return proxyOf<Object>(object, keepsLayout);
}
QORSmrPtr<IQoriClass> wrap(const QORSmrPtr<IQoriClass>& declaration) { return proxyOf<Class>(declaration); }
QORSmrPtr<IQoriRepository> wrap(const QORSmrPtr<IQoriRepository>& repository) {
  return proxyOf<Repository>(repository);
}

}  // namespace faulty
