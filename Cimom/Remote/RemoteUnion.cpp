// Numbers get a type that has those of all servers; what cannot be settled here is noticed when a value comes.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteUnion.h"

#include <algorithm>
#include <utility>

#include "Cimom/CimXml/CimXmlValues.h"
#include "Cimom/Embedded/CQoriClass.h"
#include "Cimom/Embedded/DeclarationHelpers.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

using Code = CQoriType::Code;

bool isSigned(Code code) noexcept { return static_cast<int>(code) % 2 == 0; }

Code commonCode(Code low, Code high) noexcept {
  if (high >= Code::Real32) return low < Code::Real32 ? Code::Real64 : high;
  if (isSigned(low) == isSigned(high) || isSigned(high)) return high;
  return high == Code::Uint64 ? Code::Sint64 : static_cast<Code>(static_cast<int>(high) + 1);
}

// The narrowest type for the numbers of both; null unless both are numbers, or arrays of numbers. No integer has all
// those of 64 bits with and without a sign: one that sint64 has not is refused when it comes.
QORSmrPtr<IQoriType> commonNumber(const IQoriType& one, const IQoriType& other) {
  const auto [low, high] = std::minmax({CQoriType::codeOf(one), CQoriType::codeOf(other)});
  if (high > Code::Real64 || one.isArray() != other.isArray()) return {};
  const QORSmrPtr<IQoriType>& scalar = cimxml::scalarType(commonCode(low, high));
  return one.isArray() ? CQoriType::arrayOf(scalar) : scalar;
}

void changeType(CimPropertyDeclaration& property, const QORSmrPtr<IQoriType>& type) {
  property.type = type;
  property.defaultValue = QORSmrPtr<IQoriValue>();  // of the type before; instances come with their values
}

void settle(CimPropertyDeclaration& known, const CimPropertyDeclaration& other) {
  const QORSmrPtr<IQoriType> common = commonNumber(*known.type, *other.type);
  if (!common.IsNull() && !embedded::sameType(*common, *known.type)) changeType(known, common);
}

bool contains(const std::vector<QORString>& names, const QORString& name) {
  return std::any_of(names.begin(), names.end(),
                     [&name](const QORString& one) { return one.isEqualCaseInsensitive(name); });
}

void addSuperClass(RemoteUnion& all, const QORString& name) {
  if (!name.isEmpty() && !contains(all.superClasses, name)) all.superClasses.push_back(name);
}

// Whether a class is the other one or derives from it.
bool isA(const CimDeclarationSink& sink, const QORString& nameSpace, QORString className, const QORString& other) {
  while (!className.isEmpty() && !className.isEqualCaseInsensitive(other)) {
    const QORSmrPtr<IQoriClass> declared = sink.findClass(nameSpace, className);
    className = declared.IsNull() ? QORString::emptyString() : declared->getSuperClassName();
  }
  return !className.isEmpty();
}

void addPropertiesOf(const CimDeclarationSink& sink, const QORString& nameSpace, const QORString& className,
                     CimClassDeclaration& declaration) {
  const QORSmrPtr<IQoriClass> declared = sink.findClass(nameSpace, className);
  CimPropertyDeclaration inherited;
  for (const CimPropertyDeclaration& property : static_cast<const CQoriClass&>(*declared).properties()) {
    const bool isInherited = sink.describeProperty(nameSpace, declaration.superClass, property.name, inherited);
    if (!isInherited && remote::findProperty(declaration, property.name) == nullptr)
      declaration.properties.push_back(property);
  }
}

}  // namespace

namespace remote {

CimPropertyDeclaration* findProperty(CimClassDeclaration& declaration, const QORString& name) {
  const auto found =
      std::find_if(declaration.properties.begin(), declaration.properties.end(),
                   [&name](const CimPropertyDeclaration& own) { return own.name.isEqualCaseInsensitive(name); });
  return found == declaration.properties.end() ? nullptr : &*found;
}

RemoteUnion unionOf(std::vector<CimClassDeclaration>&& declarations) {
  RemoteUnion all{std::move(declarations.front()), {}};
  addSuperClass(all, all.declaration.superClass);
  for (std::size_t i = 1; i < declarations.size(); ++i) {
    addSuperClass(all, declarations[i].superClass);
    for (CimPropertyDeclaration& property : declarations[i].properties) {
      CimPropertyDeclaration* const known = findProperty(all.declaration, property.name);
      if (known != nullptr) {
        settle(*known, property);
      } else {
        all.declaration.properties.push_back(std::move(property));
      }
    }
  }
  return all;
}

void settleInheritance(const CimDeclarationSink& sink, const QORString& nameSpace,
                       const std::vector<QORString>& superClasses, CimClassDeclaration& declaration) {
  if (superClasses.empty()) return;
  declaration.superClass = superClasses.front();
  for (const QORString& other : superClasses) {
    if (isA(sink, nameSpace, other, declaration.superClass)) declaration.superClass = other;
  }
  for (const QORString& other : superClasses) {
    if (!isA(sink, nameSpace, declaration.superClass, other)) addPropertiesOf(sink, nameSpace, other, declaration);
  }
  CimPropertyDeclaration inherited;
  for (CimPropertyDeclaration& property : declaration.properties) {
    if (!sink.describeProperty(nameSpace, declaration.superClass, property.name, inherited)) continue;
    if (!embedded::sameType(*inherited.type, *property.type)) changeType(property, inherited.type);
  }
}

}  // namespace remote
