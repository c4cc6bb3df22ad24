// Working out a class: properties keep the positions that the superclass gave
// them, so that one position serves a class and all its subclasses' own fields
// follow; a declaration of the same name replaces the inherited one in place.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/CQoriClass.h"

#include <algorithm>

#include "Cimom/Embedded/ClassRules.h"
#include "Cimom/Embedded/DeclarationHelpers.h"
#include "Cimom/Embedded/NameMap.h"
#include "Cimom/Embedded/RepositoryError.h"
#include "cimom/CQoriType.h"

using embedded::CimStatus;
using embedded::refuse;

namespace {

// Adds the inherited qualifiers that reach subclasses and are not declared again.
void inheritQualifiers(std::vector<CimQualifier>& own, const std::vector<CimQualifier>& inherited) {
  const std::size_t ownCount = own.size();
  for (const CimQualifier& qualifier : inherited) {
    const bool isDeclaredAnew =
        std::any_of(own.begin(), own.begin() + static_cast<std::ptrdiff_t>(ownCount),
                    [&](const CimQualifier& mine) { return mine.name.isEqualCaseInsensitive(qualifier.name); });
    if (embedded::reachesSubclasses(qualifier) && !isDeclaredAnew) own.push_back(qualifier);
  }
}

void dropRestricted(std::vector<CimQualifier>& qualifiers) {
  std::erase_if(qualifiers, [](const CimQualifier& qualifier) { return !embedded::reachesSubclasses(qualifier); });
}

void overrideProperty(CimPropertyDeclaration& inherited, const CimPropertyDeclaration& declared) {
  CimPropertyDeclaration effective = declared;
  if (!effective.isDefaultNull && effective.defaultValue.IsNull()) effective.defaultValue = inherited.defaultValue;
  inheritQualifiers(effective.qualifiers, inherited.qualifiers);
  inherited = std::move(effective);
}

bool isReference(const CimPropertyDeclaration& property) noexcept {
  return property.type->getName() == CQoriType::reference->getName();
}

}  // namespace

CQoriClass::CQoriClass(const QORString& nameSpace, const CimClassDeclaration& declaration, const CQoriClass* superClass)
    : _declaration(declaration), _qualifiersInForce(declaration.qualifiers) {
  if (superClass != nullptr) inheritFrom(*superClass);
  embedded::ClassRules(_declaration, superClass).check();
  addQualifiers();
  addOwnProperties(superClass);
  addOwnMethods();
  finish(nameSpace);
}

CQoriClass::~CQoriClass() = default;

void CQoriClass::inheritFrom(const CQoriClass& superClass) {
  if (superClass._depth + 1 > kMaximumDepth) {
    refuse(CimStatus::InvalidSuperclass, {"class ", getClassName().view(), ": inheritance is nested too deeply"});
  }
  _depth = superClass._depth + 1;
  _declaration.superClass = superClass.getClassName();
  _properties = superClass._properties;
  for (CimPropertyDeclaration& property : _properties) dropRestricted(property.qualifiers);
  _methods = superClass._methods;
  inheritQualifiers(_qualifiersInForce, superClass._qualifiersInForce);
}

void CQoriClass::addQualifiers() {
  for (const CimQualifier& qualifier : _qualifiersInForce) _qualifiers.emplace_back(qualifier);
  _isAssociation = embedded::hasFlag(_qualifiersInForce, "Association");
  _isAbstract = embedded::hasFlag(_declaration.qualifiers, "Abstract");
}

// The rules have refused a name that is declared twice.
void CQoriClass::addOwnProperties(const CQoriClass* superClass) {
  _isOwn.assign(_properties.size(), false);
  for (const CimPropertyDeclaration& declared : _declaration.properties) {
    const QORsint32 inherited = superClass == nullptr ? -1 : superClass->position(declared.name);
    if (inherited < 0) {
      _properties.push_back(declared);
      _isOwn.push_back(true);
      continue;
    }
    const std::size_t place = static_cast<std::size_t>(inherited);
    overrideProperty(_properties[place], declared);
    _isOwn[place] = true;
  }
}

void CQoriClass::addOwnMethods() {
  if (_declaration.methods.empty()) return;
  embedded::NameMap<std::size_t> positions;
  for (const auto& method : _methods) positions.emplace(method->name.view(), positions.size());
  for (const CimMethodDeclaration& declared : _declaration.methods) {
    auto own = std::make_shared<CimMethodDeclaration>(declared);
    const auto [found, isNew] = positions.emplace(own->name.view(), _methods.size());
    if (isNew) {
      _methods.push_back(std::move(own));
      continue;
    }
    inheritQualifiers(own->qualifiers, _methods[found->second]->qualifiers);
    _methods[found->second] = std::move(own);
  }
}

void CQoriClass::finish(const QORString& nameSpace) {
  std::vector<ModelLayout::Column> columns;
  columns.reserve(_properties.size());
  std::vector<QORuint32> keyPositions;
  for (const CimPropertyDeclaration& property : _properties) {
    const QORuint32 position = static_cast<QORuint32>(columns.size());
    const QORSmrPtr<IQoriType> type = embedded::typeInInstances(property);
    columns.push_back({property.name, type});
    _propertyViews.emplace_back(property.name, type, property.defaultValue);
    if (property.hasFlag("Key")) keyPositions.push_back(position);
    if (isReference(property) && !property.type->isArray()) _referencePositions.push_back(position);
  }
  const QORSmrPtr<ModelLayout> layout(new ModelLayout(columns));
  _shape = QORSmrPtr<ModelShape>(new ModelShape{nameSpace, _declaration.name, layout, keyPositions});
}

bool CQoriClass::isKey(QORuint32 position) const noexcept {
  const std::vector<QORuint32>& keys = keyPositions();
  return std::find(keys.begin(), keys.end(), position) != keys.end();
}

const IQoriQualifier* CQoriClass::getQualifier(const QORString& name, bool includeInherited) const noexcept {
  const std::size_t count = includeInherited ? _qualifiers.size() : _declaration.qualifiers.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (_qualifiers[i].getName().isEqualCaseInsensitive(name)) return &_qualifiers[i];
  }
  return nullptr;
}

const IQoriProperty* CQoriClass::getProperty(const QORString& name, bool includeInherited) const noexcept {
  const QORsint32 found = position(name);
  if (found < 0) return nullptr;
  const std::size_t at = static_cast<std::size_t>(found);
  return includeInherited || _isOwn[at] ? &_propertyViews[at] : nullptr;
}
