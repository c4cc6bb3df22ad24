// CIM, MESSAGE, SIMPLERSP, IMETHODRESPONSE; in it an ERROR, or IRETURNVALUE and
// then output parameters. The reply to an export has names of its own.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlReply.h"

#include <charconv>
#include <utility>

#include "Cimom/CimXml/CimXmlException.h"

using cimxml::Element;
using cimxml::XmlAttributes;

CimXmlReply::CimXmlReply(cimxml::XmlPull::Source source, std::string_view operation, std::string_view messageId,
                         const QORString& nameSpace)
    : _xml(std::move(source)),
      _operation(operation),
      _messageId(messageId),
      _objects(nameSpace),
      _instances(_xml, nameSpace, _objects,
                 [this, nameSpace](cimxml::XmlPull& document) {
                   if (!_makeClassObject) document.raise("an embedded class is not accepted here");
                   CimXmlInstanceReader values(document, nameSpace, _objects);
                   CimClassDeclaration declaration;
                   CimXmlClassReader(document, values).readClass(declaration);
                   return _makeClassObject(declaration);
                 }),
      _classes(_xml, _instances) {}

CimXmlReply::~CimXmlReply() = default;

CimXmlReply::Item CimXmlReply::next() {
  if (_state == State::Start) begin();
  if (_state == State::Values) {
    if (_xml.peek() != Element::None) return readValue();
    _xml.close();
    _state = State::Outputs;
  }
  if (_state == State::Outputs) return _xml.peek() == Element::ParamValue ? readOutput() : finish();
  return Item::End;
}

void CimXmlReply::begin() {
  if (_xml.peek() != Element::Cim) _xml.raise("found " + std::string(_xml.aheadName()) + ", expected CIM");
  requireVersion(_xml.open().get("CIMVERSION"), '2', "CIMVERSION");
  if (_xml.peek() != Element::Message) enter(Element::Message);
  const XmlAttributes message = _xml.open();
  if (message.get("ID") != _messageId) {
    _xml.raise("the reply is to message \"" + std::string(message.get("ID")) + "\", expected \"" + _messageId + '"');
  }
  requireVersion(message.get("PROTOCOLVERSION"), '1', "PROTOCOLVERSION");
  _state = enterResponse() ? State::Values : State::Outputs;
}

void CimXmlReply::enter(Element element) {
  const Element found = _xml.peek();
  if (found != element) {
    const std::string what = found == Element::None ? "the end of its element" : std::string(_xml.aheadName());
    _xml.raise("found " + what + ", expected " + std::string(elementName(element)));
  }
  _xml.open();
}

void CimXmlReply::requireVersion(std::string_view version, char major, const char* what) const {
  if (version.starts_with(std::string{major, '.'})) return;
  _xml.raise(std::string(what) + " is \"" + std::string(version) + "\", expected " + major + ".x");
}

// True when values follow, with their element open.
bool CimXmlReply::enterResponse() {
  const bool isExport = _xml.peek() == Element::SimpleExpRsp;
  enter(isExport ? Element::SimpleExpRsp : Element::SimpleRsp);
  const Element response = isExport ? Element::ExpMethodResponse : Element::IMethodResponse;
  if (_xml.peek() != response) enter(response);
  const std::string_view name = _xml.open().get("NAME");
  if (!QORString::equalIgnoringCase(name, _operation)) {
    _xml.raise("the reply is to " + std::string(name) + ", expected " + _operation);
  }
  if (_xml.peek() == Element::Error) raiseStatus();
  if (_xml.peek() != Element::IReturnValue) return false;
  _xml.open();
  return true;
}

// The message is read to its end first, so that a reply that was cut off is reported as that.
void CimXmlReply::raiseStatus() {
  const XmlAttributes attributes = _xml.open();
  const std::string_view code = attributes.get("CODE");
  QORuint32 status = 0;
  const std::from_chars_result result = std::from_chars(code.data(), code.data() + code.size(), status);
  if (result.ec != std::errc() || result.ptr != code.data() + code.size() || status == 0) {
    _xml.raise("found \"" + std::string(code) + "\" as the CODE of an ERROR, expected a CIM status");
  }
  const std::string description(attributes.get("DESCRIPTION"));
  while (_xml.peek() != Element::None) _xml.skip();
  _xml.close();
  finish();
  throw CimStatusException(status, description);
}

CimXmlReply::Item CimXmlReply::readValue() {
  const Element element = _xml.peek();
  switch (element) {
    case Element::Class:
      _classes.readClass(_class);
      return Item::Class;
    case Element::QualifierDeclaration:
      _classes.readQualifierDeclaration(_qualifier);
      return Item::Qualifier;
    case Element::Instance:
    case Element::ValueNamedInstance:
    case Element::ValueInstanceWithPath:
    case Element::ValueObject:
    case Element::ValueNamedObject:
    case Element::ValueObjectWithPath:
    case Element::ValueObjectWithLocalPath:
      _instances.readNamedInstance(_instance);
      return Item::Instance;
    default:
      if (!CimXmlPathReader::isPath(element)) {
        _xml.raise(std::string(_xml.aheadName()) + " is not allowed within IRETURNVALUE");
      }
      _name = _instances.paths().readPath();
      return Item::Name;
  }
}

// Only texts are of use here; an output that is an object is skipped.
CimXmlReply::Item CimXmlReply::readOutput() {
  _outputName = std::string(_xml.open().get("NAME"));
  _outputText.clear();
  while (_xml.peek() != Element::None) {
    if (_xml.peek() != Element::Value) {
      _xml.skip();
      continue;
    }
    _xml.open();
    _outputText = std::string(_xml.closeText());
  }
  _xml.close();
  return Item::Output;
}

CimXmlReply::Item CimXmlReply::finish() {
  // The response, the simple response, the message and the document around it.
  for (int i = 0; i < 4; ++i) _xml.close();
  _xml.finish();
  _state = State::Done;
  return Item::End;
}
