// Reduces instances of any classes to the properties that a call asks for.
// Tested by tests/unit/Embedded/EnumerationTest.cpp, tests/unit/Model/CQoriBaseObjectTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_RESTRICTOR_H
#define QORQL_EMBEDDED_RESTRICTOR_H

#include <string>
#include <unordered_map>

#include "Cimom/Embedded/CQoriClass.h"
#include "Cimom/Model/ModelRestriction.h"
#include "cimom/CIMApi.h"

namespace embedded {

// One text for a property list: lists that differ in case alone share it, a
// null list has one of its own.
std::string propertyNamesKey(const CIMApi::PropertyNames& names);

// Looks names up once per class. Belongs to one call.
class Restrictor {
 public:
  explicit Restrictor(const CIMApi::PropertyNames& names) : _names(names) {}

  // REQUIRES an object of exactly that class. Returns the object itself when
  // all its properties are asked for.
  QORSmrPtr<IQoriObject> apply(const CQoriClass& model, const QORSmrPtr<IQoriObject>& object);

 private:
  void use(const CQoriClass& model);

  const CIMApi::PropertyNames _names;
  std::unordered_map<const CQoriClass*, QORSmrPtr<ModelRestriction>> _byClass;  // null: all properties
  const CQoriClass* _lastClass = nullptr;                                       // BORROWS
  const QORSmrPtr<ModelRestriction>* _last = nullptr;                           // BORROWS from _byClass
};

}  // namespace embedded

#endif
