// The envelopes.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlMessages.h"

#include <utility>

namespace {

void beginMessage(std::string& text, CimXmlWriter& writer, std::string_view messageId) {
  text +=
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE";
  writer.writeAttribute("ID", messageId);
  text += " PROTOCOLVERSION=\"1.0\">";
}

// The elements around a reply's content.
struct ResponseElements {
  const char* outer;
  const char* inner;
};

ResponseElements elementsOf(CimXmlRequest::Kind kind) noexcept {
  switch (kind) {
    case CimXmlRequest::Kind::Method:
      return {"SIMPLERSP", "METHODRESPONSE"};
    case CimXmlRequest::Kind::Export:
      return {"SIMPLEEXPRSP", "EXPMETHODRESPONSE"};
    default:
      return {"SIMPLERSP", "IMETHODRESPONSE"};
  }
}

}  // namespace

CimXmlCall::CimXmlCall(std::string_view messageId, std::string_view operation, const QORString& nameSpace)
    : _writer(_text) {
  beginMessage(_text, _writer, messageId);
  _text += "<SIMPLEREQ><IMETHODCALL";
  _writer.writeAttribute("NAME", operation);
  _text += '>';
  _writer.writeLocalNameSpace(nameSpace);
}

void CimXmlCall::beginParameter(const char* name) {
  _text += "<IPARAMVALUE";
  _writer.writeAttribute("NAME", name);
  _text += '>';
}

void CimXmlCall::endParameter() { _text += "</IPARAMVALUE>"; }

void CimXmlCall::addText(const char* name, std::string_view value) {
  beginParameter(name);
  _writer.writeText(value);
  endParameter();
}

void CimXmlCall::addFlag(const char* name, bool value) { addText(name, value ? "TRUE" : "FALSE"); }

void CimXmlCall::addNumber(const char* name, QORuint64 value) { addText(name, std::to_string(value)); }

void CimXmlCall::addTexts(const char* name, std::span<const QORString> values) {
  beginParameter(name);
  _text += "<VALUE.ARRAY>";
  for (const QORString& value : values) _writer.writeText(value.view());
  _text += "</VALUE.ARRAY>";
  endParameter();
}

void CimXmlCall::addClassName(const char* name, const QORString& className) {
  beginParameter(name);
  _writer.writeClassName(className);
  endParameter();
}

void CimXmlCall::addInstanceName(const char* name, const IQoriInstanceName& instanceName) {
  beginParameter(name);
  _writer.writeInstanceName(instanceName);
  endParameter();
}

std::string CimXmlCall::finish() {
  _text += "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>\n";
  return std::move(_text);
}

CimXmlResponse::CimXmlResponse(std::string_view messageId, std::string_view operation, CimXmlRequest::Kind kind)
    : _kind(kind), _writer(_text) {
  const ResponseElements elements = elementsOf(kind);
  beginMessage(_text, _writer, messageId);
  _text.append("<").append(elements.outer).append("><").append(elements.inner);
  _writer.writeAttribute("NAME", operation);
  _text += '>';
}

CimXmlWriter& CimXmlResponse::values() {
  if (!std::exchange(_hasValues, true)) _text += "<IRETURNVALUE>";
  return _writer;
}

void CimXmlResponse::endValues() {
  if (_hasValues && !std::exchange(_valuesEnded, true)) _text += "</IRETURNVALUE>";
}

void CimXmlResponse::addOutput(const char* name, const char* type, std::string_view value) {
  endValues();
  _text += "<PARAMVALUE";
  _writer.writeAttribute("NAME", name);
  _writer.writeAttribute("PARAMTYPE", type);
  _text += '>';
  _writer.writeText(value);
  _text += "</PARAMVALUE>";
}

void CimXmlResponse::addOutput(const char* name, std::string_view value) { addOutput(name, "string", value); }

void CimXmlResponse::addOutputFlag(const char* name, bool value) {
  addOutput(name, "boolean", value ? "TRUE" : "FALSE");
}

void CimXmlResponse::addOutputClass(const char* name, const CimClassDeclaration& declaration) {
  endValues();
  _text += "<PARAMVALUE";
  _writer.writeAttribute("NAME", name);
  _text += '>';
  _writer.writeClass(declaration);
  _text += "</PARAMVALUE>";
}

void CimXmlResponse::setError(QORuint32 status, std::string_view description) {
  _text += "<ERROR";
  _writer.writeAttribute("CODE", std::to_string(status));
  _writer.writeAttribute("DESCRIPTION", description);
  _text += "/>";
}

std::string CimXmlResponse::take() { return std::exchange(_text, std::string()); }

std::string CimXmlResponse::finish() {
  const ResponseElements elements = elementsOf(_kind);
  endValues();
  _text.append("</").append(elements.inner).append("></").append(elements.outer).append("></MESSAGE></CIM>\n");
  return take();
}
