// One pass over the class and its properties. A fault does not stop it, so that
// a person sees all of them at once.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/ClassRules.h"

#include "Cimom/Embedded/CQoriClass.h"
#include "Cimom/Embedded/DeclarationHelpers.h"
#include "Cimom/Embedded/NameMap.h"
#include "cimom/CQoriType.h"

namespace embedded {

namespace {

bool isReference(const CimPropertyDeclaration& property) noexcept {
  return property.type->getName() == CQoriType::reference->getName();
}

// A flag without value is set.
bool sameQualifierValue(const CimQualifier& a, const CimQualifier& b) {
  if (!a.value.IsNull() && !b.value.IsNull()) return sameValue(a.value, b.value);
  const auto isSet = [](const CimQualifier& flag) { return flag.value.IsNull() || flag.value->getBoolean(); };
  return isSet(a) == isSet(b);
}

bool becomesAssociation(const CimClassDeclaration& declaration, const CQoriClass* superClass) noexcept {
  const CimQualifier* const own = findQualifier(declaration.qualifiers, "Association");
  if (own != nullptr) return hasFlag(declaration.qualifiers, "Association");
  return superClass != nullptr && superClass->isAssociation();
}

// The name that an Override qualifier gives, without a class in front of it; empty when it gives none.
std::string_view overriddenName(const std::vector<CimQualifier>& qualifiers) noexcept {
  const CimQualifier* const qualifier = findQualifier(qualifiers, "Override");
  if (qualifier == nullptr || qualifier->value.IsNull()) return {};
  const QoriScalar scalar = qualifier->value->scalar();
  if (scalar.kind != QoriScalarKind::Text) return {};
  const std::string_view name = scalar.text->view();
  return name.substr(name.rfind('.') + 1);
}

// For messages: "uint32", "string[]", "Base ref".
QORString typeOf(const CimPropertyDeclaration& declared) {
  const QORString type = typeText(*declared.type);
  return declared.referenceClass.isEmpty() ? type : joined({declared.referenceClass.view(), " ", type.view()});
}

}  // namespace

ClassRules::ClassRules(const CimClassDeclaration& declaration, const CQoriClass* superClass)
    : _declaration(declaration), _superClass(superClass), _isAssociation(becomesAssociation(declaration, superClass)) {}

void ClassRules::addFault(CimStatus status, const QORString& feature, Parts message) {
  const QORString text = joined({"class ", _declaration.name.view(), ": "}) + joined(message);
  _faults.push_back({feature, text, static_cast<QORuint32>(status)});
}

void ClassRules::check() {
  checkClass();
  NameMap<bool> names;
  for (const CimPropertyDeclaration& declared : _declaration.properties) {
    if (!declared.name.isEmpty() && !names.emplace(declared.name.view(), true).second) {
      addFault(CimStatus::AlreadyExists, declared.name, {"property ", declared.name.view(), " is declared twice"});
    } else {
      checkProperty(declared);
    }
  }
  checkMethods();
  if (!_faults.empty()) throw CimDeclarationRefusal(std::move(_faults));
}

void ClassRules::checkClass() {
  if (_superClass == nullptr) return;
  if (hasFlag(_superClass->declaration().qualifiers, "Terminal")) {
    addFault(CimStatus::InvalidSuperclass, {},
             {"no class can be derived from ", _superClass->getClassName().view(), ", which is Terminal"});
  }
  checkQualifiers({}, _declaration.qualifiers, _superClass->qualifiersInForce());
}

void ClassRules::checkProperty(const CimPropertyDeclaration& declared) {
  if (declared.name.isEmpty()) return addFault(CimStatus::InvalidParameter, {}, {"a property has no name"});
  if (declared.type.IsNull()) {
    return addFault(CimStatus::TypeMismatch, declared.name, {"property ", declared.name.view(), " has no type"});
  }
  if (isReference(declared) && !_isAssociation) {
    addFault(CimStatus::InvalidParameter, declared.name,
             {"reference ", declared.name.view(), " outside an association"});
  }
  const CimPropertyDeclaration* const inherited = inheritedProperty(declared.name);
  checkOverride(declared, inherited);
  checkDefault(declared);
  checkKey(declared, inherited);
}

void ClassRules::checkMethods() {
  if (_declaration.methods.empty()) return;
  NameMap<const CimMethodDeclaration*> known;
  if (_superClass != nullptr) {
    for (const auto& method : _superClass->methods()) known.emplace(method->name.view(), method.get());
  }
  for (const CimMethodDeclaration& declared : _declaration.methods) {
    const auto inherited = known.find(declared.name.view());
    checkMethod(declared, inherited == known.end() ? nullptr : inherited->second);
  }
}

void ClassRules::checkMethod(const CimMethodDeclaration& declared, const CimMethodDeclaration* inherited) {
  const std::size_t faults = _faults.size();
  if (declared.returnType.IsNull()) {
    addFault(CimStatus::TypeMismatch, declared.name, {"method ", declared.name.view(), " has no type"});
  }
  for (const CimPropertyDeclaration& parameter : declared.parameters) {
    if (!parameter.type.IsNull()) continue;
    addFault(CimStatus::TypeMismatch, declared.name,
             {"parameter ", parameter.name.view(), " of method ", declared.name.view(), " has no type"});
  }
  if (_faults.size() != faults) return;
  checkOverriddenName("method", declared.name, declared.qualifiers, inherited != nullptr);
  if (inherited == nullptr) return;
  checkSignature(declared, *inherited);
  checkQualifiers(declared.name, declared.qualifiers, inherited->qualifiers);
}

// A caller of the superclass's method must be able to call this one.
void ClassRules::checkSignature(const CimMethodDeclaration& declared, const CimMethodDeclaration& inherited) {
  const std::string_view name = declared.name.view();
  if (!sameType(*declared.returnType, *inherited.returnType)) {
    addFault(CimStatus::TypeMismatch, declared.name,
             {"method ", name, " is redeclared as ", typeText(*declared.returnType).view(), ", it is inherited as ",
              typeText(*inherited.returnType).view()});
  }
  NameMap<const CimPropertyDeclaration*> parameters;
  for (const CimPropertyDeclaration& parameter : declared.parameters) {
    parameters.emplace(parameter.name.view(), &parameter);
  }
  for (const CimPropertyDeclaration& known : inherited.parameters) {
    const auto own = parameters.find(known.name.view());
    if (own == parameters.end()) {
      addFault(CimStatus::InvalidParameter, declared.name,
               {"method ", name, " lacks the inherited parameter ", known.name.view()});
    } else if (!sameType(*own->second->type, *known.type)) {
      addFault(CimStatus::TypeMismatch, declared.name,
               {"parameter ", known.name.view(), " of method ", name, " is redeclared as ", typeOf(*own->second).view(),
                ", it is inherited as ", typeOf(known).view()});
    }
  }
}

void ClassRules::checkDefault(const CimPropertyDeclaration& declared) {
  if (declared.defaultValue.IsNull()) return;
  const IQoriType& given = *declared.defaultValue->getType();
  if (sameType(given, *typeInInstances(declared))) return;
  addFault(CimStatus::TypeMismatch, declared.name,
           {"property ", declared.name.view(), " is ", typeText(*declared.type).view(), ", its default value is ",
            typeText(given).view()});
}

// The keys of a class are settled where they are first declared: a subclass
// takes over all of them and adds none.
void ClassRules::checkKey(const CimPropertyDeclaration& declared, const CimPropertyDeclaration* inherited) {
  if (!declared.hasFlag("Key")) return;
  const std::string_view name = declared.name.view();
  if (declared.type->isArray()) {
    return addFault(CimStatus::InvalidParameter, declared.name, {"key ", name, " is an array"});
  }
  if (!sameType(*declared.type, *typeInInstances(declared))) {
    return addFault(CimStatus::InvalidParameter, declared.name, {"key ", name, " is an embedded object"});
  }
  const bool isInherited = inherited != nullptr && inherited->hasFlag("Key");
  if (isInherited || _superClass == nullptr || _superClass->keyPositions().empty()) return;
  const QORString& first = _superClass->shape()->layout->getName(_superClass->keyPositions().front());
  addFault(CimStatus::InvalidParameter, declared.name,
           {"key ", name, " cannot be added: superclass ", _superClass->getClassName().view(),
            " has its keys already (", first.view(), _superClass->keyPositions().size() > 1 ? ", ...)" : ")"});
}

void ClassRules::checkOverriddenName(std::string_view kind, const QORString& name,
                                     const std::vector<CimQualifier>& qualifiers, bool isInherited) {
  const std::string_view overridden = overriddenName(qualifiers);
  if (overridden.empty()) return;
  if (!QORString::equalIgnoringCase(overridden, name.view())) {
    addFault(CimStatus::InvalidParameter, name,
             {kind, " ", name.view(), " overrides ", overridden, ", which has another name"});
  } else if (!isInherited) {
    addFault(CimStatus::InvalidParameter, name,
             {kind, " ", name.view(), " overrides nothing: no superclass declares it"});
  }
}

void ClassRules::checkOverride(const CimPropertyDeclaration& declared, const CimPropertyDeclaration* inherited) {
  const std::string_view name = declared.name.view();
  checkOverriddenName("property", declared.name, declared.qualifiers, inherited != nullptr);
  if (inherited == nullptr) return;
  if (!sameType(*inherited->type, *declared.type)) {
    return addFault(CimStatus::TypeMismatch, declared.name,
                    {"property ", name, " is redeclared as ", typeText(*declared.type).view(), ", it is inherited as ",
                     typeText(*inherited->type).view()});
  }
  checkQualifiers(declared.name, declared.qualifiers, inherited->qualifiers);
}

void ClassRules::checkQualifiers(const QORString& feature, const std::vector<CimQualifier>& own,
                                 const std::vector<CimQualifier>& inherited) {
  for (const CimQualifier& qualifier : own) {
    const CimQualifier* const above = findQualifier(inherited, qualifier.name.view());
    if (above == nullptr || above->overridable || !reachesSubclasses(*above)) continue;
    if (sameQualifierValue(qualifier, *above)) continue;
    addFault(CimStatus::InvalidParameter, feature,
             {"qualifier ", qualifier.name.view(), feature.isEmpty() ? "" : " of ", feature.view(),
              " cannot be changed: superclass ", _superClass->getClassName().view(),
              " gives it with flavor DisableOverride"});
  }
}

const CimPropertyDeclaration* ClassRules::inheritedProperty(const QORString& name) const {
  const QORsint32 position = _superClass == nullptr ? -1 : _superClass->position(name);
  return position < 0 ? nullptr : &_superClass->properties()[static_cast<std::size_t>(position)];
}

}  // namespace embedded
