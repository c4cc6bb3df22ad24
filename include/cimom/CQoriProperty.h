// A property that the engine or the object manager creates.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_CQORIPROPERTY_H
#define QORQL_CIMOM_CQORIPROPERTY_H

#include "cimom/IQoriProperty.h"
#include "cmpbase.h"

// Immutable; threads may share one.
class CQoriProperty : public IQoriProperty {
 public:
  // The type is the value's, "string" for a null value. The flag marks a
  // property that is no key; names compare ignoring case either way.
  CQoriProperty(const QORString& name, const QORSmrPtr<IQoriValue>& value, bool flag);
  // With a declared type, for a property whose value may be null.
  CQoriProperty(const QORString& name, const QORSmrPtr<IQoriType>& type, const QORSmrPtr<IQoriValue>& value);
  ~CQoriProperty() override;

  const QORString& getName() const noexcept override { return _name; }
  const QORSmrPtr<IQoriType>& getType() const noexcept override { return _type; }
  const QORSmrPtr<IQoriValue>& getValue() const noexcept override { return _value; }

 private:
  QORString _name;
  QORSmrPtr<IQoriType> _type;
  QORSmrPtr<IQoriValue> _value;
};

#endif
