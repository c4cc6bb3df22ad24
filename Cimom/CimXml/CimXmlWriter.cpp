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

// Objects of others may tell their namespace with the host in front, "//host/root/cimv2".
struct HostedNameSpace {
  explicit HostedNameSpace(const IQoriNameSpacePath& path) : host(path.getHost()), nameSpace(path.getNameSpace()) {
    const std::string_view text = path.getNameSpace().view();
    const std::size_t slash = text.starts_with("//") ? text.find('/', 2) : std::string_view::npos;
    if (slash == std::string_view::npos) return;
    host = QORString(text.substr(2, slash - 2));
    nameSpace = QORString(text.substr(slash + 1));
  }

  QORString host;
  QORString nameSpace;
};

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
  const HostedNameSpace path(*name.getNameSpacePath());
  _out += "<INSTANCEPATH>";
  writeNameSpacePath(path.host.isEmpty() ? host : path.host, path.nameSpace);
  writeInstanceName(name);
  _out += "</INSTANCEPATH>";
}

void CimXmlWriter::writeClassPath(const QORString& host, const QORString& nameSpace, const QORString& className) {
  _out += "<CLASSPATH>";
  writeNameSpacePath(host, nameSpace);
  writeClassName(className);
  _out += "</CLASSPATH>";
}

void CimXmlWriter::writeClassObjectPath(const QORString& host, const QORString& nameSpace, const QORString& className) {
  _out += "<OBJECTPATH>";
  writeClassPath(host, nameSpace, className);
  _out += "</OBJECTPATH>";
}

void CimXmlWriter::writeObjectPath(const IQoriInstanceName& name, const QORString& host) {
  _out += "<OBJECTPATH>";
  writeInstancePath(name, host);
  _out += "</OBJECTPATH>";
}

void CimXmlWriter::writeReference(const IQoriInstanceName& name) {
  const HostedNameSpace path(*name.getNameSpacePath());
  const bool isClass = name.getKeys()->isEmpty();
  const bool hasHost = !path.host.isEmpty();
  const bool hasNameSpace = !path.nameSpace.isEmpty();
  const std::string_view element =
      isClass ? (hasHost ? "CLASSPATH" : "LOCALCLASSPATH") : (hasHost ? "INSTANCEPATH" : "LOCALINSTANCEPATH");
  _out += "<VALUE.REFERENCE>";
  if (hasNameSpace) {
    _out.append("<").append(element).append(">");
    if (hasHost) {
      writeNameSpacePath(path.host, path.nameSpace);
    } else {
      writeLocalNameSpace(path.nameSpace);
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
  for (QORuint32 i = 0; i < object.getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriProperty> property(object.getPropertyAt(i));
    writeProperty(property->getName(), *property->getType(), property->getValue());
  }
  _out += "</CLASS>";
}

void CimXmlWriter::writeOrigin(const CimXmlFeatureMarks* marks) {
  if (marks == nullptr || marks->origin.isEmpty()) return;
  writeAttribute("CLASSORIGIN", marks->origin.view());
  if (marks->isPropagated) writeAttribute("PROPAGATED", "true");
}

void CimXmlWriter::beginProperty(const char* element, const QORString& name) {
  _out += element;
  _out += " NAME=\"";
  cimxml::appendAttributeText(_out, name.view());
  _out += '"';
}

void CimXmlWriter::writePropertyValue(const QORString& name, const IQoriType& type, const IQoriValue::Pointer& value,
                                      const CimXmlFeatureMarks* marks) {
  const bool isArray = type.isArray();
  if (isReference(type) && !isArray) {
    beginProperty("<PROPERTY.REFERENCE", name);
    writeOrigin(marks);
    _out += '>';
    if (!value.IsNull()) writeReference(*value->getReference());
    _out += "</PROPERTY.REFERENCE>";
    return;
  }
  beginProperty(isArray ? "<PROPERTY.ARRAY" : "<PROPERTY", name);
  writeAttribute("TYPE", attributeType(type));
  writeOrigin(marks);
  if (isObject(type)) writeAttribute("EmbeddedObject", holdsClass(value) ? "object" : "instance");
  _out += '>';
  writeValue(value);
  _out += isArray ? "</PROPERTY.ARRAY>" : "</PROPERTY>";
}

// A scalar of an object with a layout is written without making a value of it.
void CimXmlWriter::writePropertyAt(const IQoriObject& object, QORuint32 position, const CimXmlFeatureMarks* marks) {
  const IQoriLayout* const layout = object.getLayout();
  if (layout == nullptr) {
    const QORSmrPtr<IQoriProperty> property(object.getPropertyAt(position));
    return writePropertyValue(property->getName(), *property->getType(), property->getValue(), marks);
  }
  const IQoriType& type = *layout->getType(position);
  const Code code = CQoriType::codeOf(type);
  if (type.isArray() || code >= Code::Reference) {
    return writePropertyValue(layout->getName(position), type, object.getValueAt(position), marks);
  }
  beginProperty("<PROPERTY", layout->getName(position));
  _out += " TYPE=\"";
  _out += cimxml::typeName(code);
  _out += '"';
  writeOrigin(marks);
  _out += '>';
  const QoriScalar scalar = object.getScalarAt(position);
  if (scalar.kind != QoriScalarKind::Null) {
    _out += "<VALUE>";
    if (!cimxml::appendScalarText(_out, scalar, code)) cimxml::appendValueText(_out, *object.getValueAt(position));
    _out += "</VALUE>";
  }
  _out += "</PROPERTY>";
}

void CimXmlWriter::writeInstance(const IQoriObject& object) {
  _out += "<INSTANCE";
  writeAttribute("CLASSNAME", object.getClassName().view());
  _out += '>';
  const std::vector<CimXmlFeatureMarks>* const marks = _origins == nullptr ? nullptr : &_origins->marksOf(object);
  const QORuint32 count = object.getPropertyCount();
  for (QORuint32 i = 0; i < count; ++i) writePropertyAt(object, i, marks == nullptr ? nullptr : &(*marks)[i]);
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

void CimXmlWriter::beginObjectWithPath() { _out += "<VALUE.OBJECTWITHPATH>"; }

void CimXmlWriter::endObjectWithPath() { _out += "</VALUE.OBJECTWITHPATH>"; }

void CimXmlWriter::writeObjectWithPath(const IQoriObject& object, const QORString& host) {
  beginObjectWithPath();
  writeInstancePath(*object.getInstanceName(), host);
  writeInstance(object);
  endObjectWithPath();
}
