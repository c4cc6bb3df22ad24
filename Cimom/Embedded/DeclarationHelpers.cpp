// Qualifier look-up, equality of declarations and type questions.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/DeclarationHelpers.h"

#include <algorithm>

#include "cimom/CQoriType.h"

namespace embedded {

namespace {

bool sameName(const QORString& a, const QORString& b) noexcept { return a.isEqualCaseInsensitive(b); }

bool sameScalar(const QORSmrPtr<IQoriValue>& a, const QORSmrPtr<IQoriValue>& b) {
  if (a.IsNull() || b.IsNull()) return a.IsNull() == b.IsNull();
  return sameType(*a->getType(), *b->getType()) && a->toString() == b->toString();
}

// Qualifiers of the metamodel whose inheritance does not depend on how (or
// whether) a schema declares them.
bool isAlwaysInherited(const QORString& name) noexcept {
  const auto is = [&name](const char* other) { return QORString::equalIgnoringCase(name.view(), other); };
  return is("Key") || is("Association") || is("Indication");
}

bool isNeverInherited(const QORString& name) noexcept {
  const auto is = [&name](const char* other) { return QORString::equalIgnoringCase(name.view(), other); };
  return is("Abstract") || is("Override");
}

bool sameTypePointer(const QORSmrPtr<IQoriType>& a, const QORSmrPtr<IQoriType>& b) {
  if (a.IsNull() || b.IsNull()) return a.IsNull() == b.IsNull();
  return sameType(*a, *b);
}

template <class T, class Same>
bool sameLists(const std::vector<T>& a, const std::vector<T>& b, Same same) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
}

bool sameQualifier(const CimQualifier& a, const CimQualifier& b) {
  return sameName(a.name, b.name) && sameValue(a.value, b.value) && a.toSubclass == b.toSubclass &&
         a.overridable == b.overridable && a.translatable == b.translatable;
}

bool sameProperty(const CimPropertyDeclaration& a, const CimPropertyDeclaration& b) {
  return sameName(a.name, b.name) && sameTypePointer(a.type, b.type) && sameName(a.referenceClass, b.referenceClass) &&
         a.arraySize == b.arraySize && a.isDefaultNull == b.isDefaultNull &&
         sameValue(a.defaultValue, b.defaultValue) && sameLists(a.qualifiers, b.qualifiers, sameQualifier);
}

bool sameMethod(const CimMethodDeclaration& a, const CimMethodDeclaration& b) {
  return sameName(a.name, b.name) && sameTypePointer(a.returnType, b.returnType) &&
         sameLists(a.parameters, b.parameters, sameProperty) && sameLists(a.qualifiers, b.qualifiers, sameQualifier);
}

}  // namespace

bool reachesSubclasses(const CimQualifier& qualifier) noexcept {
  return !isNeverInherited(qualifier.name) && (qualifier.toSubclass || isAlwaysInherited(qualifier.name));
}

// Element by element: the joined text of an array does not tell where its elements end.
bool sameValue(const QORSmrPtr<IQoriValue>& a, const QORSmrPtr<IQoriValue>& b) {
  if (!sameScalar(a, b)) return false;
  if (a.IsNull() || !a->isArray()) return true;
  const QORSmrPtr<IQoriValue::List> left = a->getArray();
  const QORSmrPtr<IQoriValue::List> right = b->getArray();
  if (left->entries() != right->entries()) return false;
  QORValSlistIterator<QORSmrPtr<IQoriValue>> x(*left);
  QORValSlistIterator<QORSmrPtr<IQoriValue>> y(*right);
  while (++x && ++y) {
    if (!sameScalar(x.key(), y.key())) return false;
  }
  return true;
}

const CimQualifier* findQualifier(const std::vector<CimQualifier>& qualifiers, std::string_view name) noexcept {
  for (const CimQualifier& qualifier : qualifiers) {
    if (QORString::equalIgnoringCase(qualifier.name.view(), name)) return &qualifier;
  }
  return nullptr;
}

bool hasFlag(const std::vector<CimQualifier>& qualifiers, std::string_view name) noexcept {
  const CimQualifier* const qualifier = findQualifier(qualifiers, name);
  return qualifier != nullptr && (qualifier->value.IsNull() || qualifier->value->getBoolean());
}

bool sameDeclaration(const CimClassDeclaration& a, const CimClassDeclaration& b) {
  return sameName(a.name, b.name) && sameName(a.superClass, b.superClass) &&
         sameLists(a.qualifiers, b.qualifiers, sameQualifier) && sameLists(a.properties, b.properties, sameProperty) &&
         sameLists(a.methods, b.methods, sameMethod);
}

bool sameDeclaration(const CimQualifierDeclaration& a, const CimQualifierDeclaration& b) {
  return sameName(a.name, b.name) && sameTypePointer(a.type, b.type) && sameValue(a.defaultValue, b.defaultValue) &&
         a.arraySize == b.arraySize && sameLists(a.scopes, b.scopes, sameName) && a.toSubclass == b.toSubclass &&
         a.overridable == b.overridable && a.translatable == b.translatable;
}

bool sameType(const IQoriType& a, const IQoriType& b) noexcept {
  return &a == &b || (a.isArray() == b.isArray() && sameName(a.getName(), b.getName()));
}

QORString typeText(const IQoriType& type) { return type.isArray() ? type.getName() + "[]" : type.getName(); }

QORSmrPtr<IQoriType> typeInInstances(const CimPropertyDeclaration& property) {
  if (property.type->getName() != CQoriType::string->getName()) return property.type;
  const bool isEmbedded = property.findQualifier("EmbeddedInstance") != nullptr || property.hasFlag("EmbeddedObject");
  if (!isEmbedded) return property.type;
  return property.type->isArray() ? CQoriType::arrayOf(CQoriType::object) : CQoriType::object;
}

}  // namespace embedded
