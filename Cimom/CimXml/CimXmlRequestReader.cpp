// CIM, MESSAGE, then the kind of call and the call; its parameters as the document gives them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlRequestReader.h"

#include <utility>

#include "Cimom/CimXml/CimXmlClassReader.h"
#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlInstanceReader.h"
#include "Cimom/CimXml/CimXmlObjects.h"
#include "Cimom/CimXml/CimXmlPathReader.h"
#include "Cimom/CimXml/XmlPull.h"
#include "cimom/CQoriInstanceName.h"

using cimxml::Element;
using cimxml::XmlAttributes;
using cimxml::XmlPull;

namespace {

using ParameterKind = CimXmlParameter::Kind;

constexpr QORuint32 kInvalidRequest = 4;  // CIM_ERR_INVALID_PARAMETER

[[noreturn]] void raiseFound(const XmlPull& xml, Element found, Element expected) {
  const std::string what = found == Element::None ? "the end of its element" : std::string(xml.aheadName());
  xml.raise("found " + what + ", expected " + std::string(elementName(expected)));
}

XmlAttributes enter(XmlPull& xml, Element element) {
  const Element found = xml.peek();
  if (found != element) raiseFound(xml, found, element);
  return xml.open();
}

// The attribute, which must be there.
std::string required(const XmlPull& xml, const XmlAttributes& attributes, const char* name) {
  const std::string_view* const value = attributes.find(name);
  if (value == nullptr) xml.raise(std::string("the attribute ") + name + " is missing");
  return std::string(*value);
}

void requireVersion(const std::string& version, char major, const char* what, const char* word) {
  if (version.starts_with(std::string{major, '.'})) return;
  throw CimXmlRequestRefusal(word, std::string(what) + " is \"" + version + "\", expected " + major + ".x");
}

// Reads the parameters of a call, whose namespace is known by then.
class ParameterReader {
 public:
  ParameterReader(XmlPull& xml, const CimXmlMakeClassObject& makeClassObject, CimXmlRequest& out)
      : _xml(xml),
        _makeClassObject(makeClassObject),
        _out(out),
        _objects(out.nameSpace),
        _instances(xml, out.nameSpace, _objects, [this](XmlPull& document) { return embeddedClass(document); }) {}

  void readAll(Element element) {
    while (_xml.peek() != Element::None) readParameter(element);
  }
  // The object that a method is called on.
  void readObject() {
    CimXmlParameter parameter;
    parameter.name = "ObjectName";
    readPath(parameter);
    _out.nameSpace = parameter.path->getNameSpacePath()->getNameSpace();
    _out.parameters.push_back(std::move(parameter));
  }

 private:
  QORSmrPtr<IQoriObject> embeddedClass(XmlPull& document) {
    if (!_makeClassObject) document.raise("an embedded class is not accepted here");
    CimXmlInstanceReader values(document, _out.nameSpace, _objects);
    CimClassDeclaration declaration;
    CimXmlClassReader(document, values).readClass(declaration);
    return _makeClassObject(_out.nameSpace, declaration);
  }

  void readParameter(Element element) {
    CimXmlParameter parameter;
    parameter.name = required(_xml, enter(_xml, element), "NAME");
    for (const CimXmlParameter& each : _out.parameters) {
      if (!QORString::equalIgnoringCase(each.name, parameter.name)) continue;
      throw CimStatusException(kInvalidRequest, parameter.name + " is given twice");
    }
    readContent(parameter);
    _xml.close();
    _out.parameters.push_back(std::move(parameter));
  }

  void readContent(CimXmlParameter& parameter) {
    const Element element = _xml.peek();
    switch (element) {
      case Element::None:
        return;
      case Element::Value:
        parameter.kind = ParameterKind::Text;
        _xml.open();
        parameter.text = QORString(_xml.closeText());
        return;
      case Element::ValueArray:
        return readTexts(parameter);
      case Element::ClassName:
        return readClassName(parameter);
      case Element::Instance:
      case Element::ValueNamedInstance:
      case Element::ValueInstanceWithPath:
        parameter.kind = ParameterKind::Instance;
        return _instances.readNamedInstance(parameter.instance);
      case Element::Class:
        parameter.kind = ParameterKind::Class;
        return CimXmlClassReader(_xml, _instances).readClass(parameter.classes);
      case Element::QualifierDeclaration:
        parameter.kind = ParameterKind::Qualifier;
        return CimXmlClassReader(_xml, _instances).readQualifierDeclaration(parameter.qualifiers);
      default:
        return readPath(parameter);
    }
  }

  void readTexts(CimXmlParameter& parameter) {
    parameter.kind = ParameterKind::Texts;
    _xml.open();
    while (_xml.peek() != Element::None) {
      if (_xml.peek() == Element::ValueNull) {
        throw CimStatusException(kInvalidRequest, parameter.name + " has an element that is NULL");
      }
      enter(_xml, Element::Value);
      parameter.texts.emplace_back(_xml.closeText());
    }
    _xml.close();
  }

  // An empty name says that there is no class, as NULL does.
  void readClassName(CimXmlParameter& parameter) {
    const QORString name(required(_xml, _xml.open(), "NAME"));
    _xml.close();
    if (name.isEmpty()) return;
    parameter.kind = ParameterKind::ClassName;
    parameter.text = name;
    const QORSmrPtr<IQoriNameSpacePath> space(new CQoriNameSpacePath(QORString::emptyString(), _out.nameSpace));
    parameter.path = QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(name, {}, space));
  }

  void readPath(CimXmlParameter& parameter) {
    Element element = _xml.peek();
    if (element == Element::ValueReference) {
      parameter.path = _instances.paths().readReference();
      element = parameter.path->getKeys()->isEmpty() ? Element::ClassName : Element::InstanceName;
    } else {
      if (!CimXmlPathReader::isPath(element)) raiseFound(_xml, element, Element::Value);
      parameter.path = _instances.paths().readPath();
    }
    const bool isClass = element == Element::ClassName || element == Element::ClassPath ||
                         element == Element::LocalClassPath ||
                         (element == Element::ObjectPath && parameter.path->getKeys()->isEmpty());
    parameter.kind = isClass ? ParameterKind::ClassName : ParameterKind::InstanceName;
    if (isClass) parameter.text = parameter.path->getClassName();
  }

  XmlPull& _xml;
  const CimXmlMakeClassObject& _makeClassObject;
  CimXmlRequest& _out;
  CimXmlObjects _objects;
  CimXmlInstanceReader _instances;
};

// One message, from its first element to its last.
class MessageReader {
 public:
  MessageReader(std::string_view message, const CimXmlMakeClassObject& makeClassObject, CimXmlRequest& out)
      : _xml(message, XmlPull::Limits()), _makeClassObject(makeClassObject), _out(out) {}

  void read() {
    readHead();
    const Element around = _xml.peek();
    if (around == Element::MultiReq || around == Element::MultiExpReq) {
      throw CimXmlRequestRefusal("multiple-requests-unsupported", "a message with several calls is not accepted");
    }
    if (around != Element::SimpleReq && around != Element::SimpleExpReq) raiseFound(_xml, around, Element::SimpleReq);
    _xml.open();
    while (_xml.peek() == Element::Correlator) _xml.skip();
    readCall(around == Element::SimpleExpReq);
    // The call, the request, the message and the document around it.
    for (int i = 0; i < 4; ++i) _xml.close();
    _xml.finish();
  }

 private:
  void readHead() {
    const XmlAttributes document = enter(_xml, Element::Cim);
    requireVersion(required(_xml, document, "CIMVERSION"), '2', "CIMVERSION", "unsupported-cim-version");
    requireVersion(required(_xml, document, "DTDVERSION"), '2', "DTDVERSION", "unsupported-dtd-version");
    const XmlAttributes message = enter(_xml, Element::Message);
    _out.messageId = required(_xml, message, "ID");
    requireVersion(required(_xml, message, "PROTOCOLVERSION"), '1', "PROTOCOLVERSION", "unsupported-protocol-version");
  }

  void readCall(bool isExport) {
    const bool isMethod = !isExport && _xml.peek() == Element::MethodCall;
    const Element call = isExport ? Element::ExpMethodCall : isMethod ? Element::MethodCall : Element::IMethodCall;
    _out.kind = isExport   ? CimXmlRequest::Kind::Export
                : isMethod ? CimXmlRequest::Kind::Method
                           : CimXmlRequest::Kind::Operation;
    _out.operation = required(_xml, enter(_xml, call), "NAME");
    if (isMethod) return readMethod();
    if (!isExport) _out.nameSpace = CimXmlPathReader(_xml, QORString::emptyString()).readLocalNameSpace();
    ParameterReader(_xml, _makeClassObject, _out).readAll(isExport ? Element::ExpParamValue : Element::IParamValue);
  }

  void readMethod() {
    ParameterReader(_xml, _makeClassObject, _out).readObject();
    while (_xml.peek() == Element::ParamValue) _xml.skip();
  }

  XmlPull _xml;
  const CimXmlMakeClassObject& _makeClassObject;
  CimXmlRequest& _out;
};

// A fault of the structure is found before what follows is looked at, which may be no XML at all.
bool isWellFormed(std::string_view message) {
  try {
    XmlPull xml(message, XmlPull::Limits());
    if (xml.peek() != Element::None) xml.skip();
    xml.finish();
    return true;
  } catch (const CimXmlException& fault) {
    return fault.getKind() != CimXmlException::Kind::Form;
  }
}

}  // namespace

CimXmlRequestRefusal::CimXmlRequestRefusal(const char* word, const std::string& message)
    : QoriBaseException("CIM_Request", "CimXml", "readCimXmlRequest", QORString(message), 1), _word(word) {}

CimXmlRequestRefusal::~CimXmlRequestRefusal() = default;

void readCimXmlRequest(std::string_view message, const CimXmlMakeClassObject& makeClassObject, CimXmlRequest& out) {
  try {
    MessageReader(message, makeClassObject, out).read();
  } catch (const CimXmlException& fault) {
    const std::string text(fault.getMessage().view());
    if (fault.getKind() == CimXmlException::Kind::Value) throw CimStatusException(kInvalidRequest, text);
    throw CimXmlRequestRefusal(isWellFormed(message) ? "request-not-valid" : "request-not-well-formed", text);
  }
}
