// The writer's declarations: classes, features and qualifiers.
// Tested by tests/unit/CimXml/CimXmlWriterTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <string>
#include <utility>

#include "Cimom/CimXml/CimXmlValues.h"
#include "Cimom/CimXml/CimXmlWriter.h"
#include "cimom/CQoriType.h"

using Code = CQoriType::Code;

namespace {

bool isReference(const CimPropertyDeclaration& feature) noexcept {
  return CQoriType::codeOf(*feature.type) == Code::Reference;
}

std::string_view declaredType(const IQoriType& type) noexcept {
  const Code code = CQoriType::codeOf(type);
  return cimxml::typeName(code >= Code::Reference ? Code::String : code);
}

// A boolean qualifier without a value means TRUE.
std::string_view qualifierType(const CimQualifier& qualifier) noexcept {
  return qualifier.value.IsNull() ? "boolean" : declaredType(*qualifier.value->getType());
}

}  // namespace

void CimXmlWriter::writeFlavors(bool overridable, bool toSubclass, bool translatable) {
  if (!overridable) writeAttribute("OVERRIDABLE", "false");
  if (!toSubclass) writeAttribute("TOSUBCLASS", "false");
  if (translatable) writeAttribute("TRANSLATABLE", "true");
}

void CimXmlWriter::writeQualifiers(const std::vector<CimQualifier>& qualifiers, bool withQualifiers) {
  if (!withQualifiers) return;
  for (const CimQualifier& qualifier : qualifiers) {
    _out += "<QUALIFIER";
    writeAttribute("NAME", qualifier.name.view());
    writeAttribute("TYPE", qualifierType(qualifier));
    writeFlavors(qualifier.overridable, qualifier.toSubclass, qualifier.translatable);
    _out += '>';
    if (qualifier.value.IsNull()) {
      _out += "<VALUE>TRUE</VALUE>";
    } else {
      writeValue(qualifier.value);
    }
    _out += "</QUALIFIER>";
  }
}

// REFERENCECLASS for references, TYPE for all others; the caller has chosen the element.
void CimXmlWriter::writeFeatureAttributes(const CimPropertyDeclaration& feature) {
  writeAttribute("NAME", feature.name.view());
  if (isReference(feature)) {
    if (!feature.referenceClass.isEmpty()) writeAttribute("REFERENCECLASS", feature.referenceClass.view());
  } else {
    writeAttribute("TYPE", declaredType(*feature.type));
  }
  if (feature.type->isArray() && feature.arraySize >= 0) {
    writeAttribute("ARRAYSIZE", std::to_string(feature.arraySize));
  }
}

void CimXmlWriter::writePropertyDeclaration(const CimPropertyDeclaration& property, bool withQualifiers) {
  const char* const element = isReference(property)      ? "PROPERTY.REFERENCE"
                              : property.type->isArray() ? "PROPERTY.ARRAY"
                                                         : "PROPERTY";
  _out.append("<").append(element);
  writeFeatureAttributes(property);
  _out += '>';
  writeQualifiers(property.qualifiers, withQualifiers);
  if (!property.defaultValue.IsNull()) {
    if (isReference(property)) {
      writeReference(*property.defaultValue->getReference());
    } else {
      writeValue(property.defaultValue);
    }
  }
  _out.append("</").append(element).append(">");
}

void CimXmlWriter::writeParameter(const CimPropertyDeclaration& parameter, bool withQualifiers) {
  const bool isArray = parameter.type->isArray();
  const char* const element = isReference(parameter) ? (isArray ? "PARAMETER.REFARRAY" : "PARAMETER.REFERENCE")
                              : isArray              ? "PARAMETER.ARRAY"
                                                     : "PARAMETER";
  _out.append("<").append(element);
  writeFeatureAttributes(parameter);
  _out += '>';
  writeQualifiers(parameter.qualifiers, withQualifiers);
  _out.append("</").append(element).append(">");
}

void CimXmlWriter::writeMethod(const CimMethodDeclaration& method, bool withQualifiers) {
  _out += "<METHOD";
  writeAttribute("NAME", method.name.view());
  writeAttribute("TYPE", declaredType(*method.returnType));
  _out += '>';
  writeQualifiers(method.qualifiers, withQualifiers);
  for (const CimPropertyDeclaration& parameter : method.parameters) writeParameter(parameter, withQualifiers);
  _out += "</METHOD>";
}

void CimXmlWriter::writeClass(const CimClassDeclaration& declaration, bool withQualifiers) {
  _out += "<CLASS";
  writeAttribute("NAME", declaration.name.view());
  if (!declaration.superClass.isEmpty()) writeAttribute("SUPERCLASS", declaration.superClass.view());
  _out += '>';
  writeQualifiers(declaration.qualifiers, withQualifiers);
  for (const CimPropertyDeclaration& property : declaration.properties) {
    writePropertyDeclaration(property, withQualifiers);
  }
  for (const CimMethodDeclaration& method : declaration.methods) writeMethod(method, withQualifiers);
  _out += "</CLASS>";
}

void CimXmlWriter::writeQualifierDeclaration(const CimQualifierDeclaration& declaration) {
  _out += "<QUALIFIER.DECLARATION";
  writeAttribute("NAME", declaration.name.view());
  writeAttribute("TYPE", declaredType(*declaration.type));
  writeAttribute("ISARRAY", declaration.type->isArray() ? "true" : "false");
  if (declaration.arraySize >= 0) writeAttribute("ARRAYSIZE", std::to_string(declaration.arraySize));
  writeFlavors(declaration.overridable, declaration.toSubclass, declaration.translatable);
  _out += "><SCOPE";
  const auto hasScope = [&declaration](std::string_view scope) {
    for (const QORString& given : declaration.scopes) {
      if (given.view() == scope || given.view() == "any") return true;
    }
    return false;
  };
  for (const auto& [attribute, scope] :
       {std::pair("CLASS", "class"), std::pair("ASSOCIATION", "association"), std::pair("REFERENCE", "reference"),
        std::pair("PROPERTY", "property"), std::pair("METHOD", "method"), std::pair("PARAMETER", "parameter"),
        std::pair("INDICATION", "indication")}) {
    if (hasScope(scope)) writeAttribute(attribute, "true");
  }
  _out += "/>";
  writeValue(declaration.defaultValue);
  _out += "</QUALIFIER.DECLARATION>";
}
