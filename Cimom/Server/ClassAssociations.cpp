// Looks at every association class of the namespace.
// Tested by tests/unit/Server/AssociationOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ClassAssociations.h"

#include <algorithm>

#include "Cimom/Server/ServerParameters.h"

using Class = ServerClasses::Class;

namespace {

bool isAnyOr(const QORString& wanted, const QORString& name) noexcept {
  return wanted.isEmpty() || wanted.isEqualCaseInsensitive(name);
}

void addOnce(std::vector<Class>& found, const Class& one) {
  const auto isIt = [&](const Class& each) { return each->getClassName() == one->getClassName(); };
  if (std::none_of(found.begin(), found.end(), isIt)) found.push_back(one);
}

}  // namespace

ClassAssociations::ClassAssociations(const CimXmlRequest& request, const ServerClasses& space)
    : _request(request),
      _space(space),
      _source(space.require(serverparameters::className(request, "ObjectName"))->getClassName()),
      _role(request.text("Role").value_or(QORString::emptyString())),
      _resultRole(request.text("ResultRole").value_or(QORString::emptyString())),
      _resultClass(classOf("ResultClass")) {}

QORString ClassAssociations::classOf(const char* parameter) const {
  const QORString name = _request.className(parameter).value_or(QORString::emptyString());
  return name.isEmpty() ? name : _space.require(name)->getClassName();
}

void ClassAssociations::forEachAssociation(const QORString& associationClass, const Meet& meet) const {
  for (const QORString& name : _space.namesBelow(QORString::emptyString(), true)) {
    const Class handle = _space.find(name);
    if (handle.IsNull() || !ServerClasses::modelOf(handle).isAssociation()) continue;
    if (!associationClass.isEmpty() && !_space.isA(name, associationClass)) continue;
    const CQoriClass& model = ServerClasses::modelOf(handle);
    for (const QORuint32 position : model.referencePositions()) {
      const CimPropertyDeclaration& reference = model.properties()[position];
      if (isAnyOr(_role, reference.name) && _space.isA(_source, reference.referenceClass)) meet(handle, position);
    }
  }
}

void ClassAssociations::addOtherEnds(const CQoriClass& model, QORuint32 sourcePosition,
                                     std::vector<Class>& found) const {
  for (const QORuint32 position : model.referencePositions()) {
    const CimPropertyDeclaration& reference = model.properties()[position];
    if (position == sourcePosition || !isAnyOr(_resultRole, reference.name)) continue;
    if (!_resultClass.isEmpty() && !_space.isA(reference.referenceClass, _resultClass)) continue;
    if (const Class end = _space.find(reference.referenceClass); !end.IsNull()) addOnce(found, end);
  }
}

std::vector<Class> ClassAssociations::associators() const {
  std::vector<Class> found;
  forEachAssociation(classOf("AssocClass"), [&](const Class& association, QORuint32 sourcePosition) {
    addOtherEnds(ServerClasses::modelOf(association), sourcePosition, found);
  });
  return found;
}

std::vector<Class> ClassAssociations::references() const {
  std::vector<Class> found;
  forEachAssociation(_resultClass,
                     [&](const Class& association, QORuint32 /*sourcePosition*/) { addOnce(found, association); });
  return found;
}
