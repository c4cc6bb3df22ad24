// Declarations, feature by feature.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlClassReader.h"

#include <charconv>
#include <string>
#include <string_view>
#include <utility>

#include "Cimom/CimXml/CimXmlValues.h"
#include "cimom/CQoriValue.h"

using cimxml::Element;
using cimxml::XmlAttributes;
using Code = CQoriType::Code;

namespace {

bool isTrue(std::string_view text) noexcept { return QORString::equalIgnoringCase(text, "true"); }

bool isPropagated(const XmlAttributes& attributes) noexcept { return isTrue(attributes.get("PROPAGATED")); }

// A flavor that is not given has its default.
bool flavor(const XmlAttributes& attributes, std::string_view name, bool byDefault) noexcept {
  const std::string_view* const value = attributes.find(name);
  return value == nullptr ? byDefault : isTrue(*value);
}

template <class Declaration>
void readFlavors(const XmlAttributes& attributes, Declaration& out) noexcept {
  out.toSubclass = flavor(attributes, "TOSUBCLASS", true);
  out.overridable = flavor(attributes, "OVERRIDABLE", true);
  out.translatable = flavor(attributes, "TRANSLATABLE", false);
}

// The number in ARRAYSIZE, or -1, a declaration's sign for an array of any size, when none is given or it is no number.
QORsint32 arraySize(const XmlAttributes& attributes) noexcept {
  const std::string_view text = attributes.get("ARRAYSIZE");
  QORsint32 size = -1;
  const bool isRead = std::from_chars(text.data(), text.data() + text.size(), size).ec == std::errc();
  return isRead ? size : -1;
}

bool isArrayElement(Element element) noexcept {
  return element == Element::PropertyArray || element == Element::ParameterArray ||
         element == Element::ParameterRefArray;
}

bool isReferenceElement(Element element) noexcept {
  return element == Element::PropertyReference || element == Element::ParameterReference ||
         element == Element::ParameterRefArray;
}

// Makes a qualifier of an attribute that says the same.
void markEmbedded(CimPropertyDeclaration& out) {
  if (out.findQualifier("EmbeddedObject") != nullptr || out.findQualifier("EmbeddedInstance") != nullptr) return;
  CimQualifier qualifier;
  qualifier.name = "EmbeddedObject";
  qualifier.value = IQoriValue::Pointer(new CQoriValue(true, CQoriType::boolean));
  out.qualifiers.push_back(std::move(qualifier));
}

}  // namespace

QORSmrPtr<IQoriType> CimXmlClassReader::typeOf(const XmlAttributes& attributes, bool isArray) const {
  const std::string_view name = attributes.get("TYPE");
  const Code code = cimxml::typeOf(name);
  if (code >= Code::Reference) _xml.raise("found \"" + std::string(name) + "\" as the type of a declaration");
  const QORSmrPtr<IQoriType>& type = cimxml::scalarType(code);
  return isArray ? CQoriType::arrayOf(type) : type;
}

void CimXmlClassReader::readClass(CimClassDeclaration& out) {
  if (_xml.peek() != Element::Class) _xml.raise("found " + std::string(_xml.aheadName()) + ", expected CLASS");
  const XmlAttributes attributes = _xml.open();
  out = CimClassDeclaration();
  out.name = QORString(attributes.get("NAME"));
  out.superClass = QORString(attributes.get("SUPERCLASS"));
  if (out.name.isEmpty()) _xml.raise("a CLASS has no NAME");
  for (Element element = _xml.peek(); element != Element::None; element = _xml.peek()) {
    switch (element) {
      case Element::Qualifier:
        readQualifier(out.qualifiers);
        break;
      case Element::Property:
      case Element::PropertyArray:
      case Element::PropertyReference:
        readProperty(out.properties);
        break;
      case Element::Method:
        readMethod(out.methods);
        break;
      default:
        _xml.raise(std::string(_xml.aheadName()) + " is not allowed within CLASS");
    }
  }
  _xml.close();
}

void CimXmlClassReader::readQualifier(std::vector<CimQualifier>& out) {
  const XmlAttributes attributes = _xml.open();
  CimQualifier qualifier;
  qualifier.name = QORString(attributes.get("NAME"));
  readFlavors(attributes, qualifier);
  const bool isOwn = !isPropagated(attributes);
  const Code type = cimxml::typeOf(attributes.get("TYPE"));
  if (qualifier.name.isEmpty() || type >= Code::Reference) _xml.raise("a QUALIFIER needs a NAME and a TYPE");
  if (_xml.peek() != Element::None) qualifier.value = _instances.readValue(type, qualifier.name.view());
  _xml.close();
  if (isOwn) out.push_back(std::move(qualifier));
}

void CimXmlClassReader::readFeature(const XmlAttributes& attributes, Element element, CimPropertyDeclaration& out) {
  out.name = QORString(attributes.get("NAME"));
  if (out.name.isEmpty()) _xml.raise("a declaration has no NAME");
  out.arraySize = arraySize(attributes);
  if (isReferenceElement(element)) {
    out.referenceClass = QORString(attributes.get("REFERENCECLASS"));
    out.type = isArrayElement(element) ? CQoriType::arrayOf(CQoriType::reference) : CQoriType::reference;
  } else {
    out.type = typeOf(attributes, isArrayElement(element));
  }
}

void CimXmlClassReader::readContent(CimPropertyDeclaration& out) {
  for (Element element = _xml.peek(); element != Element::None; element = _xml.peek()) {
    if (element == Element::Qualifier) {
      readQualifier(out.qualifiers);
    } else if (element == Element::ValueReference) {
      out.defaultValue = IQoriValue::Pointer(new CQoriValue(_instances.paths().readReference()));
    } else {
      out.defaultValue = _instances.readValue(CQoriType::codeOf(*out.type), out.name.view());
    }
  }
  _xml.close();
}

void CimXmlClassReader::readProperty(std::vector<CimPropertyDeclaration>& out) {
  const Element element = _xml.peek();
  const XmlAttributes attributes = _xml.open();
  CimPropertyDeclaration property;
  readFeature(attributes, element, property);
  const bool isOwn = !isPropagated(attributes);
  const bool holdsObject = attributes.find("EmbeddedObject") != nullptr || attributes.find("EMBEDDEDOBJECT") != nullptr;
  readContent(property);
  if (holdsObject) markEmbedded(property);
  if (isOwn) out.push_back(std::move(property));
}

void CimXmlClassReader::readMethod(std::vector<CimMethodDeclaration>& out) {
  const XmlAttributes attributes = _xml.open();
  CimMethodDeclaration method;
  method.name = QORString(attributes.get("NAME"));
  if (method.name.isEmpty()) _xml.raise("a METHOD has no NAME");
  // A method without a type returns nothing; the declaration's form needs one.
  method.returnType = attributes.find("TYPE") == nullptr ? CQoriType::uint32 : typeOf(attributes, false);
  const bool isOwn = !isPropagated(attributes);
  for (Element element = _xml.peek(); element != Element::None; element = _xml.peek()) {
    if (element == Element::Qualifier) {
      readQualifier(method.qualifiers);
    } else {
      readParameter(method.parameters);
    }
  }
  _xml.close();
  if (isOwn) out.push_back(std::move(method));
}

void CimXmlClassReader::readParameter(std::vector<CimPropertyDeclaration>& out) {
  const Element element = _xml.peek();
  const bool isParameter = element == Element::Parameter || isArrayElement(element) || isReferenceElement(element);
  if (!isParameter) _xml.raise(std::string(_xml.aheadName()) + " is not allowed within METHOD");
  CimPropertyDeclaration parameter;
  readFeature(_xml.open(), element, parameter);
  readContent(parameter);
  out.push_back(std::move(parameter));
}

void CimXmlClassReader::readQualifierDeclaration(CimQualifierDeclaration& out) {
  if (_xml.peek() != Element::QualifierDeclaration) {
    _xml.raise("found " + std::string(_xml.aheadName()) + ", expected QUALIFIER.DECLARATION");
  }
  const XmlAttributes attributes = _xml.open();
  out = CimQualifierDeclaration();
  out.name = QORString(attributes.get("NAME"));
  if (out.name.isEmpty()) _xml.raise("a QUALIFIER.DECLARATION has no NAME");
  out.arraySize = arraySize(attributes);
  readFlavors(attributes, out);
  const bool isArray = isTrue(attributes.get("ISARRAY")) || out.arraySize >= 0;
  out.type = typeOf(attributes, isArray);
  for (Element element = _xml.peek(); element != Element::None; element = _xml.peek()) {
    if (element == Element::Scope) {
      readScopes(out.scopes);
      continue;
    }
    out.defaultValue = _instances.readValue(CQoriType::codeOf(*out.type), out.name.view());
    if (out.defaultValue->isArray() && !out.type->isArray()) out.type = CQoriType::arrayOf(out.type);
  }
  _xml.close();
}

void CimXmlClassReader::readScopes(std::vector<QORString>& out) {
  const XmlAttributes attributes = _xml.open();
  constexpr std::pair<std::string_view, const char*> kScopes[] = {
      {"CLASS", "class"},         {"ASSOCIATION", "association"}, {"INDICATION", "indication"},
      {"PROPERTY", "property"},   {"REFERENCE", "reference"},     {"METHOD", "method"},
      {"PARAMETER", "parameter"},
  };
  for (const auto& [attribute, scope] : kScopes) {
    if (isTrue(attributes.get(attribute))) out.emplace_back(scope);
  }
  _xml.close();
}
