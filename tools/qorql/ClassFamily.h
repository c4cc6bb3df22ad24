// A class of the schema together with the classes below it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_CLASSFAMILY_H
#define QORQL_TOOL_CLASSFAMILY_H

#include <string>
#include <string_view>

#include "Cimom/Embedded/EmbeddedObjectManager.h"

// What an object that is said to be of a class can have. BORROWS the manager.
class ClassFamily {
 public:
  ClassFamily(EmbeddedObjectManager& manager, const QORString& nameSpace) : _manager(manager), _nameSpace(nameSpace) {}

  // Null when there is none.
  QORSmrPtr<IQoriClass> find(const QORString& className) const;
  // Whether the first is the second or a class below it.
  bool isA(const QORString& className, const QORString& ancestor) const;
  // Whether the class, what it inherits from or a class below it has the property.
  bool has(const QORString& className, const QORString& property) const {
    return !holderOf(className, property).isEmpty();
  }
  // The first of these classes that has it, the class itself before those below it; empty when none has.
  QORString holderOf(const QORString& className, const QORString& property) const;
  // The property of the class with the most similar name; empty when none is similar.
  std::string nearestProperty(const QORString& className, std::string_view property) const;
  std::string nearestClass(std::string_view name) const;

 private:
  EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
};

#endif
