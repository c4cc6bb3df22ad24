// What the names in a filter stand for: its FROM classes, and the namespace that
// they are of.
// Tested by tests/unit/Filters/CQLPropertyListsTest.cpp, tests/unit/Filters/CQLPropertyPathTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLSCOPE_H
#define QORQL_CQLSCOPE_H

#include <string>
#include <unordered_map>
#include <vector>

#include "cmpbase.h"

// Made by one thread; then any number may ask. The class repository is asked at
// each call that needs it.
class CQLScope {
 public:
  explicit CQLScope(const QORString& nameSpace) : _nameSpace(nameSpace) {}
  // The next class of FROM; an empty alias is none. Of equal names the first one counts.
  void addFrom(const QORString& className, const QORString& alias);

  const QORString& nameSpace() const noexcept { return _nameSpace; }
  // The classes of FROM in their order, as they are written.
  const std::vector<QORString>& classNames() const noexcept { return _classNames; }
  // The class that a FROM name in any case stands for; empty when it is none.
  QORString fromClassOf(const QORString& name) const;

  // As CQLQueryValidator says, in this namespace.
  bool isSubClass(const QORString& className, const QORString& superClassName) const;
  // Inherited properties count.
  bool hasProperty(const QORString& className, const QORString& property) const;
  // Whether a class of FROM has the property.
  bool isPropertyOfFrom(const QORString& property) const;
  // Whether the class, itself or by a superclass, is one of FROM.
  bool isOfFrom(const QORString& className) const;

 private:
  const QORString _nameSpace;
  std::vector<QORString> _classNames;
  std::unordered_map<std::string, QORString> _names;  // classes by their names and aliases, in upper case
};

#endif
