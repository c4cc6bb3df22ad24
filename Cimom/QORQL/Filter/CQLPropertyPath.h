// Where a filter finds a value on an instance.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLPROPERTYPATH_H
#define QORQL_CQLPROPERTYPATH_H

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "Cimom/QORQL/Filter/CQLScope.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "cimom/IQoriObject.h"

// A property of the instance, or one reached through properties that hold
// embedded objects, and a place in it. Threads may share one. BORROWS the scope.
class CQLPropertyPath {
 public:
  CQLPropertyPath(const CQLScope& scope, const QORQL_Factor& factor);
  // A property of the instance itself.
  CQLPropertyPath(const CQLScope& scope, const QORString& property);

  // Null when any step is missing, of another class than the scope asks for, or
  // no object. An index outside the array is missing too.
  QORSmrPtr<IQoriValue> value(const IQoriObject& instance) const;
  // A view of the same, valid while the instance, `object` and `holder` live.
  // Allocates nothing where the objects have layouts.
  QoriScalar view(const IQoriObject& instance, QORSmrPtr<IQoriObject>& object, QORSmrPtr<IQoriValue>& holder) const;
  // The name when this is a property of the instance itself, as a whole; null otherwise.
  const QORString* ownProperty() const noexcept {
    return _steps.size() == 1 && _index < 0 ? &_steps.front()->name : nullptr;
  }
  // As a person would write it.
  std::string text() const;

 private:
  // One step, with the place where the property was last found: a guess that is
  // checked by name, so that threads and classes may share it.
  struct Step {
    explicit Step(const QORString& property) : name(property) {}
    QORString name;
    mutable std::atomic<QORuint32> place{0};
  };

  void addSteps(const QORString& path, const CQLScope& scope);
  QORsint32 placeOf(const Step& step, const IQoriLayout& layout) const;
  QORSmrPtr<IQoriValue> read(const IQoriObject& object, const Step& step) const;
  // The object that holds the last property; null when a step is missing.
  const IQoriObject* follow(const IQoriObject& instance, QORSmrPtr<IQoriObject>& object) const;
  QORSmrPtr<IQoriValue> elementOf(const IQoriValue& array) const;

  const CQLScope& _scope;
  std::vector<std::unique_ptr<Step>> _steps;  // empty: nothing can be read
  QORString _requiredClass;                   // the class that the last object must be of; empty: any
  QORsint32 _index = QORQL_Factor::kNoArray;
};

#endif
