// A class of the repository with its qualifiers, properties and superclass.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_IQORICLASS_H
#define QORQL_CIMOM_IQORICLASS_H

#include "cimom/IQoriProperty.h"
#include "cmpbase.h"

// Immutable; threads may share one.
class IQoriQualifier {
 public:
  virtual ~IQoriQualifier() = default;
  // May be empty: the engine only asks whether a qualifier exists.
  virtual const QORString& getName() const noexcept { return QORString::emptyString(); }
  // Null when the qualifier has no value.
  virtual const QORSmrPtr<IQoriValue>& getValue() const noexcept {
    static const QORSmrPtr<IQoriValue> none;
    return none;
  }
};

// Immutable; threads may share one. Names are found ignoring case; what is
// returned is borrowed and valid while the class lives.
class IQoriClass {
 public:
  virtual ~IQoriClass() = default;
  // In the repository's spelling.
  virtual const QORString& getClassName() const noexcept = 0;
  // Empty for a class at the root.
  virtual const QORString& getSuperClassName() const noexcept = 0;
  // Null when absent. The flag includes inherited ones.
  virtual const IQoriQualifier* getQualifier(const QORString& name, bool includeInherited) const noexcept = 0;
  virtual const IQoriProperty* getProperty(const QORString& name, bool includeInherited) const noexcept = 0;
};

#endif
