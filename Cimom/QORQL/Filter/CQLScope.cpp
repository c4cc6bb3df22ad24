// Looking up a filter's names.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLScope.h"

#include <algorithm>

#include "Cimom/QORQL/CQLQueryValidator.h"

void CQLScope::addFrom(const QORString& className, const QORString& alias) {
  _classNames.push_back(className);
  for (const QORString& name : {className, alias}) {
    _names.emplace(std::string(QORString::toUpperCase(name).view()), className);
  }
}

QORString CQLScope::fromClassOf(const QORString& name) const {
  if (name.isEmpty()) return {};
  const auto found = _names.find(std::string(QORString::toUpperCase(name).view()));
  return found == _names.end() ? QORString() : found->second;
}

bool CQLScope::isSubClass(const QORString& className, const QORString& superClassName) const {
  return CQLQueryValidator::isSubClass(_nameSpace, className, superClassName);
}

bool CQLScope::hasProperty(const QORString& className, const QORString& property) const {
  return CQLQueryValidator::findProperty(_nameSpace, className, property, true);
}

bool CQLScope::isPropertyOfFrom(const QORString& property) const {
  return std::any_of(_classNames.begin(), _classNames.end(),
                     [&](const QORString& className) { return hasProperty(className, property); });
}

bool CQLScope::isOfFrom(const QORString& className) const {
  return std::any_of(_classNames.begin(), _classNames.end(),
                     [&](const QORString& wanted) { return isSubClass(className, wanted); });
}
