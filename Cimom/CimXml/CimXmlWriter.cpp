// Elements and attributes in the order of the document type definition.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlWriter.h"

#include <algorithm>

#include "Cimom/CimXml/CimXmlValues.h"
#include "Cimom/Model/ModelClassObject.h"
#include "Cimom/Model/ModelError.h"

using Code = CQoriType::Code;

namespace {

bool isReference(const IQoriType& type) noexcept { return CQoriType::codeOf(type) == Code::Reference; }

bool isObject(const IQoriType& type) noexcept { return CQoriType::codeOf(type) == Code::Object; }

// The type as attributes name it: embedded objects travel as text, and so do
// arrays of references, which CIM-XML lacks.
std::string_view attributeType(const IQoriType& type) noexcept {
  const Code code = CQoriType::codeOf(type);
  return cimxml::typeName(code >= Code::Reference ? Code::String : code);
}

const char* keyValueType(const IQoriType& type) noexcept {
  const Code code = CQoriType::codeOf(type);
  if (code == Code::Boolean) return "boolean";
  return code < Code::Boolean ? "numeric" : "string";
}

const IQoriObject* embeddedObject(const IQoriValue& value, QORSmrPtr<IQoriObject>& holder) {
  holder = value.getObject();
  return holder.Get();
}

// Whether the value is, or holds, classes in place of instances.
bool holdsClass(const IQoriValue::Pointer& value) {
  if (value.IsNull()) return false;
  if (!value->isArray()) return dynamic_cast<const ModelClassObject*>(value->getObject().Get()) != nullptr;
  QORValSlistIterator<IQoriValue::Pointer> it(*value->getArray());
  while (++it) {
    if (holdsClass(it.key())) return true;
  }
  return false;
}

}  // namespace

void CimXmlWriter::writeAttribute(const char* name, std::string_view value) {
  _out += ' ';
  _out += name;
  _out += "=\"";
  cimxml::appendAttributeText(_out, value);
  _out += '"';
}

void CimXmlWriter::writeLocalNameSpace(const QORString& nameSpace) {
  _out += "<LOCALNAMESPACEPATH>";
  std::string_view rest = nameSpace.view();
  do {
    const std::size_t end = std::min(rest.find('/'), rest.size());
    _out += "<NAMESPACE";
    writeAttribute("NAME", rest.substr(0, end));
    _out += "/>";
    rest.remove_prefix(std::min(end + 1, rest.size()));
  } while (!rest.empty());
  _out += "</LOCALNAMESPACEPATH>";
}

void CimXmlWriter::writeNameSpacePath(const QORString& host, const QORString& nameSpace) {
  _out += "<NAMESPACEPATH><HOST>";
  cimxml::appendText(_out, host.view());
  _out += "</HOST>";
  writeLocalNameSpace(nameSpace);
  _out += "</NAMESPACEPATH>";
}

void CimXmlWriter::writeClassName(const QORString& className) {
  _out += "<CLASSNAME";
  writeAttribute("NAME", className.view());
  _out += "/>";
}

void CimXmlWriter::writeInstanceName(const IQoriInstanceName& name) {
  _out += "<INSTANCENAME";
  writeAttribute("CLASSNAME", name.getClassName().view());
  _out += '>';
  QORValSlistIterator<QORSmrPtr<IQoriProperty>> it(*name.getKeys());
  while (++it) writeKey(*it.key());
  _out += "</INSTANCENAME>";
}

void CimXmlWriter::writeKey(const IQoriProperty& key) {
  _out += "<KEYBINDING";
  writeAttribute("NAME", key.getName().view());
  _out += '>';
  const IQoriValue::Pointer& value = key.getValue();
  const QORSmrPtr<IQoriInstanceName> reference =
      value.IsNull() ? QORSmrPtr<IQoriInstanceName>() : value->getReference();
  if (!reference.IsNull()) {
    writeReference(*reference);
  } else {
    const IQoriType& type = value.IsNull() ? *key.getType() : *value->getType();
    _out += "<KEYVALUE";
    writeAttribute("VALUETYPE", keyValueType(type));
    writeAttribute("TYPE", attributeType(type));
    _out += '>';
    if (!value.IsNull()) cimxml::appendValueText(_out, *value);
    _out += "</KEYVALUE>";
  }
  _out += "</KEYBINDING>";
}

void CimXmlWriter::writeInstancePath(const IQoriInstanceName& name, const QORString& host) {
  const IQoriNameSpacePath& path = *name.getNameSpacePath();
  _out += "<INSTANCEPATH>";
  writeNameSpacePath(path.getHost().isEmpty() ? host : path.getHost(), path.getNameSpace());
  writeInstanceName(name);
  _out += "</INSTANCEPATH>";
}

void CimXmlWriter::writeReference(const IQoriInstanceName& name) {
  const IQoriNameSpacePath& path = *name.getNameSpacePath();
  const bool isClass = name.getKeys()->isEmpty();
  const bool hasHost = !path.getHost().isEmpty();
  const bool hasNameSpace = !path.getNameSpace().isEmpty();
  const std::string_view element =
      isClass ? (hasHost ? "CLASSPATH" : "LOCALCLASSPATH") : (hasHost ? "INSTANCEPATH" : "LOCALINSTANCEPATH");
  _out += "<VALUE.REFERENCE>";
  if (hasNameSpace) {
    _out.append("<").append(element).append(">");
    if (hasHost) {
      writeNameSpacePath(path.getHost(), path.getNameSpace());
    } else {
      writeLocalNameSpace(path.getNameSpace());
    }
  }
  if (isClass) {
    writeClassName(name.getClassName());
  } else {
    writeInstanceName(name);
  }
  if (hasNameSpace) _out.append("</").append(element).append(">");
  _out += "</VALUE.REFERENCE>";
}

void CimXmlWriter::writeScalar(const IQoriValue& value) {
  _out += "<VALUE>";
  QORSmrPtr<IQoriObject> holder;
  if (const IQoriObject* const object = embeddedObject(value, holder)) {
    writeEmbedded(*object);
  } else {
    cimxml::appendValueText(_out, value);
  }
  _out += "</VALUE>";
}

void CimXmlWriter::writeElements(const IQoriValue& array) {
  _out += "<VALUE.ARRAY>";
  const QORSmrPtr<IQoriValue::List> elements = array.getArray();
  QORValSlistIterator<IQoriValue::Pointer> it(*elements);
  while (++it) {
    if (it.key().IsNull()) {
      _out += "<VALUE.NULL/>";
    } else {
      writeScalar(*it.key());
    }
  }
  _out += "</VALUE.ARRAY>";
}

void CimXmlWriter::writeText(std::string_view text) {
  _out += "<VALUE>";
  cimxml::appendText(_out, text);
  _out += "</VALUE>";
}

void CimXmlWriter::writeValue(const IQoriValue::Pointer& value) {
  if (value.IsNull()) return;
  if (value->isArray()) {
    writeElements(*value);
  } else {
    writeScalar(*value);
  }
}

// The element of the object, as the escaped text of a value.
void CimXmlWriter::writeEmbedded(const IQoriObject& object) {
  const model::NestingGuard guard("CimXmlWriter::writeEmbedded");
  std::string element;
  CimXmlWriter(element).writeObjectElement(object);
  cimxml::appendText(_out, element);
}

void CimXmlWriter::writeObjectElement(const IQoriObject& object) {
  if (dynamic_cast<const ModelClassObject*>(&object) != nullptr) {
    writeClassObject(object);
  } else {
    writeInstance(object);
  }
}

// What such an object knows of its class: properties with their defaults.
void CimXmlWriter::writeClassObject(const IQoriObject& object) {
  _out += "<CLASS";
  writeAttribute("NAME", object.getClassName().view());
  _out += '>';
  for (QORuint32 i = 0; i < object.getPropertyCount(); ++i) writeProperty(*object.getPropertyAt(i));
  _out += "</CLASS>";
}

void CimXmlWriter::writeProperty(const IQoriProperty& property) {
  const IQoriType& type = *property.getType();
  const IQoriValue::Pointer& value = property.getValue();
  const bool isArray = type.isArray();
  if (isReference(type) && !isArray) {
    _out += "<PROPERTY.REFERENCE";
    writeAttribute("NAME", property.getName().view());
    _out += '>';
    if (!value.IsNull()) writeReference(*value->getReference());
    _out += "</PROPERTY.REFERENCE>";
    return;
  }
  _out += isArray ? "<PROPERTY.ARRAY" : "<PROPERTY";
  writeAttribute("NAME", property.getName().view());
  writeAttribute("TYPE", attributeType(type));
  if (isObject(type)) writeAttribute("EmbeddedObject", holdsClass(value) ? "object" : "instance");
  _out += '>';
  writeValue(value);
  _out += isArray ? "</PROPERTY.ARRAY>" : "</PROPERTY>";
}

void CimXmlWriter::writeInstance(const IQoriObject& object) {
  _out += "<INSTANCE";
  writeAttribute("CLASSNAME", object.getClassName().view());
  _out += '>';
  for (QORuint32 i = 0; i < object.getPropertyCount(); ++i) writeProperty(*object.getPropertyAt(i));
  _out += "</INSTANCE>";
}

void CimXmlWriter::writeNamedInstance(const IQoriObject& object) {
  _out += "<VALUE.NAMEDINSTANCE>";
  writeInstanceName(*object.getInstanceName());
  writeInstance(object);
  _out += "</VALUE.NAMEDINSTANCE>";
}

void CimXmlWriter::writeInstanceWithPath(const IQoriObject& object, const QORString& host) {
  _out += "<VALUE.INSTANCEWITHPATH>";
  writeInstancePath(*object.getInstanceName(), host);
  writeInstance(object);
  _out += "</VALUE.INSTANCEWITHPATH>";
}

void CimXmlWriter::writeObjectWithPath(const IQoriObject& object, const QORString& host) {
  _out += "<VALUE.OBJECTWITHPATH>";
  writeInstancePath(*object.getInstanceName(), host);
  writeInstance(object);
  _out += "</VALUE.OBJECTWITHPATH>";
}

void CimXmlWriter::writeObject(const IQoriObject& object) {
  _out += "<VALUE.OBJECT>";
  writeObjectElement(object);
  _out += "</VALUE.OBJECT>";
}
