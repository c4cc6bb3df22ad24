// Schema look-ups against the object manager's class repository.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/CQLQueryValidator.h"

#include "Cimom/QORQL/CQLSuperClasses.h"
#include "cimom/QoriProviderPluginManager.h"

namespace {

QORSmrPtr<IQoriClass> classOf(const QORString& nameSpace, const QORString& className) {
  const QORSmrPtr<IQoriRepository> repository =
      QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository();
  return repository.IsNull() ? QORSmrPtr<IQoriClass>() : repository->getClass(nameSpace, className);
}

}  // namespace

bool CQLQueryValidator::findClass(const QORString& nameSpace, const QORString& className) {
  return !classOf(nameSpace, className).IsNull();
}

bool CQLQueryValidator::findProperty(const QORString& nameSpace, const QORString& className,
                                     const QORString& propertyName, bool includeInherited) {
  const QORSmrPtr<IQoriClass> found = classOf(nameSpace, className);
  return !found.IsNull() && found->getProperty(propertyName, includeInherited) != nullptr;
}

bool CQLQueryValidator::findProperty(const QORString& className, const QORString& propertyName, bool includeInherited) {
  const QORSmrPtr<QORValSlist<QORString>> nameSpaces =
      QoriProviderPluginManager::getQoriProviderPluginManager()->getNamespaceList();
  QORValSlistIterator<QORString> names(*nameSpaces);
  while (++names) {
    if (findClass(names.key(), className)) {
      return findProperty(names.key(), className, propertyName, includeInherited);
    }
  }
  return false;
}

bool CQLQueryValidator::isSubClass(const QORString& nameSpace, const QORString& className,
                                   const QORString& superClassName) {
  if (className.isEqualCaseInsensitive(superClassName)) return true;
  CQLSuperClasses superClasses(nameSpace);
  const QORString* name = &className;
  for (QORuint32 step = 0; step < CQLSuperClasses::kLongestChain; ++step) {
    name = &superClasses.of(*name);
    if (name->isEmpty()) return false;
    if (name->isEqualCaseInsensitive(superClassName)) return true;
  }
  return false;
}
