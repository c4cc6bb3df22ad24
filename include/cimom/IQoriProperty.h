// A named, typed value of an object or of a class declaration.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_IQORIPROPERTY_H
#define QORQL_CIMOM_IQORIPROPERTY_H

#include "cimom/IQoriType.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

// Immutable; threads may share one.
class IQoriProperty {
 public:
  virtual ~IQoriProperty() = default;
  // In the spelling of its class.
  virtual const QORString& getName() const noexcept = 0;
  // The declared type; never null.
  virtual const QORSmrPtr<IQoriType>& getType() const noexcept = 0;
  // Null for a property without value (or, in a class, without default).
  virtual const QORSmrPtr<IQoriValue>& getValue() const noexcept = 0;
};

#endif
