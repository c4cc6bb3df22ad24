// Schema look-ups against the object manager's class repository.
#include "Cimom/QORQL/CQLQueryValidator.h"

#include "cimom/QoriProviderPluginManager.h"

namespace {

// No chain of superclasses is longer, unless it is a circle.
constexpr QORuint32 kLongestChain = 10000;

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
  QORString name = className;
  for (QORuint32 step = 0; step < kLongestChain; ++step) {
    if (name.isEqualCaseInsensitive(superClassName)) return true;
    const QORSmrPtr<IQoriClass> found = classOf(nameSpace, name);
    if (found.IsNull() || found->getSuperClassName().isEmpty()) return false;
    name = found->getSuperClassName();
  }
  return false;
}
