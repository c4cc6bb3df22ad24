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

// What the texts of a property hold; null where they are texts. Declarations that came as CIM-XML tell it by a
// qualifier.
const char* heldObject(const CimPropertyDeclaration& property) {
  if (property.findQualifier("EmbeddedInstance") != nullptr) return "instance";
  if (property.hasFlag("EmbeddedObject")) return "object";
  return CQoriType::codeOf(*property.type) == Code::Object ? "instance" : nullptr;
}

}  // namespace

void CimXmlWriter::writeFlavors(bool overridable, bool toSubclass, bool translatable) {
  if (!overridable) writeAttribute("OVERRIDABLE", "false");
  if (!toSubclass) writeAttribute("TOSUBCLASS", "false");
  if (translatable) writeAttribute("TRANSLATABLE", "true");
}

// The first `own` ones are the class's own, the others inherited.
void CimXmlWriter::writeQualifiers(const std::vector<CimQualifier>& qualifiers, const CimXmlClassMarks& marks,
                                   std::size_t own) {
  if (!marks.hasQualifiers) return;
  for (std::size_t i = 0; i < qualifiers.size(); ++i) {
    const CimQualifier& qualifier = qualifiers[i];
    _out += "<QUALIFIER";
    writeAttribute("NAME", qualifier.name.view());
    writeAttribute("TYPE", qualifierType(qualifier));
    if (i >= own) writeAttribute("PROPAGATED", "true");
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

void CimXmlWriter::writeMarks(const CimXmlClassMarks& marks, const CimXmlFeatureMarks& own) {
  if (marks.hasOrigins && !own.origin.isEmpty()) writeAttribute("CLASSORIGIN", own.origin.view());
  if (own.isPropagated) writeAttribute("PROPAGATED", "true");
}

void CimXmlWriter::writePropertyDeclaration(const CimPropertyDeclaration& property, const CimXmlClassMarks& marks,
                                            const CimXmlFeatureMarks& own) {
  const char* const element = isReference(property)      ? "PROPERTY.REFERENCE"
                              : property.type->isArray() ? "PROPERTY.ARRAY"
                                                         : "PROPERTY";
  _out.append("<").append(element);
  writeFeatureAttributes(property);
  writeMarks(marks, own);
  if (const char* const held = heldObject(property)) writeAttribute("EmbeddedObject", held);
  _out += '>';
  writeQualifiers(property.qualifiers, marks, own.ownQualifiers);
  if (!property.defaultValue.IsNull()) {
    if (isReference(property)) {
      writeReference(*property.defaultValue->getReference());
    } else {
      writeValue(property.defaultValue);
    }
  }
  _out.append("</").append(element).append(">");
}

void CimXmlWriter::writeParameter(const CimPropertyDeclaration& parameter, const CimXmlClassMarks& marks) {
  const bool isArray = parameter.type->isArray();
  const char* const element = isReference(parameter) ? (isArray ? "PARAMETER.REFARRAY" : "PARAMETER.REFERENCE")
                              : isArray              ? "PARAMETER.ARRAY"
                                                     : "PARAMETER";
  _out.append("<").append(element);
  writeFeatureAttributes(parameter);
  _out += '>';
  writeQualifiers(parameter.qualifiers, marks, parameter.qualifiers.size());
  _out.append("</").append(element).append(">");
}

void CimXmlWriter::writeMethod(const CimMethodDeclaration& method, const CimXmlClassMarks& marks,
                               const CimXmlFeatureMarks& own) {
  _out += "<METHOD";
  writeAttribute("NAME", method.name.view());
  writeAttribute("TYPE", declaredType(*method.returnType));
  writeMarks(marks, own);
  _out += '>';
  writeQualifiers(method.qualifiers, marks, own.ownQualifiers);
  for (const CimPropertyDeclaration& parameter : method.parameters) writeParameter(parameter, marks);
  _out += "</METHOD>";
}

void CimXmlWriter::writeClass(const CimClassDeclaration& declaration, bool withQualifiers) {
  CimXmlClassMarks marks;
  marks.hasQualifiers = withQualifiers;
  marks.ownQualifiers = declaration.qualifiers.size();
  for (const CimPropertyDeclaration& each : declaration.properties) {
    marks.properties.push_back({{}, false, each.qualifiers.size()});
  }
  for (const CimMethodDeclaration& each : declaration.methods) {
    marks.methods.push_back({{}, false, each.qualifiers.size()});
  }
  writeClass(declaration, marks);
}

void CimXmlWriter::writeClass(const CimClassDeclaration& declaration, const CimXmlClassMarks& marks) {
  _out += "<CLASS";
  writeAttribute("NAME", declaration.name.view());
  if (!declaration.superClass.isEmpty()) writeAttribute("SUPERCLASS", declaration.superClass.view());
  _out += '>';
  writeQualifiers(declaration.qualifiers, marks, marks.ownQualifiers);
  for (std::size_t i = 0; i < declaration.properties.size(); ++i) {
    writePropertyDeclaration(declaration.properties[i], marks, marks.properties[i]);
  }
  for (std::size_t i = 0; i < declaration.methods.size(); ++i) {
    writeMethod(declaration.methods[i], marks, marks.methods[i]);
  }
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
