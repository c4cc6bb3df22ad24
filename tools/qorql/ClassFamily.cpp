// A class of the schema together with the classes below it.
// SPDX-License-Identifier: Apache-2.0
#include "ClassFamily.h"

#include "Cimom/QORQL/Face/QORQL_Suggestion.h"

QORSmrPtr<IQoriClass> ClassFamily::find(const QORString& className) const {
  return _manager.sink().findClass(_nameSpace, className);
}

bool ClassFamily::isA(const QORString& className, const QORString& ancestor) const {
  QORString name = className;
  while (!name.isEmpty() && !name.isEqualCaseInsensitive(ancestor)) name = _manager.superClassName(_nameSpace, name);
  return !name.isEmpty();
}

QORString ClassFamily::holderOf(const QORString& className, const QORString& property) const {
  const QORSmrPtr<IQoriClass> model(find(className));
  if (!model.IsNull() && model->getProperty(property, true) != nullptr) return model->getClassName();
  for (const QORString& name : _manager.classNames(_nameSpace)) {
    if (!isA(name, className)) continue;
    const QORSmrPtr<IQoriClass> candidate(find(name));
    if (!candidate.IsNull() && candidate->getProperty(property, true) != nullptr) return name;
  }
  return {};
}

std::string ClassFamily::nearestProperty(const QORString& className, std::string_view property) const {
  QORQL_Suggestion suggestion(property);
  for (const CimPropertyDeclaration& known : _manager.allProperties(_nameSpace, className)) {
    suggestion.consider(known.name.view());
  }
  return suggestion.best();
}

std::string ClassFamily::nearestClass(std::string_view name) const {
  QORQL_Suggestion suggestion(name);
  for (const QORString& known : _manager.classNames(_nameSpace)) suggestion.consider(known.view());
  return suggestion.best();
}
