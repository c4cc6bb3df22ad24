// The name (object path) of an instance, and the host and namespace it lies in.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_IQORIINSTANCENAME_H
#define QORQL_CIMOM_IQORIINSTANCENAME_H

#include "cimom/IQoriProperty.h"
#include "cmpbase.h"

// Immutable; threads may share one.
class IQoriNameSpacePath {
 public:
  virtual ~IQoriNameSpacePath() = default;
  // Empty where nobody tells it.
  virtual const QORString& getHost() const noexcept { return QORString::emptyString(); }
  virtual const QORString& getNameSpace() const noexcept = 0;
};

// Immutable; threads may share one.
class IQoriInstanceName {
 public:
  using KeyList = QORValSlist<QORSmrPtr<IQoriProperty>>;

  virtual ~IQoriInstanceName() = default;
  // The class in the path.
  virtual const QORString& getClassName() const noexcept = 0;
  // Never null.
  virtual const QORSmrPtr<IQoriNameSpacePath>& getNameSpacePath() const noexcept = 0;
  // The key properties in ascending name order, ignoring case. Never null; do not
  // change the list. May be empty: the engine uses toString() to identify instances.
  virtual const QORSmrPtr<KeyList>& getKeys() const {
    static const QORSmrPtr<KeyList>& noKeys = *new QORSmrPtr<KeyList>(new KeyList);  // also while the process ends
    return noKeys;
  }
  // The canonical path `namespace:Class.Key1="v",Key2=2`: keys in ascending name
  // order ignoring case, text quoted with `"` and `\` escaped, numbers and
  // booleans bare, no host. Two names are the same instance exactly when these
  // texts are equal. Made once, then a cheap copy.
  virtual QORString toString() const = 0;
};

#endif
