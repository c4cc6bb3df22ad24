// A server over a model, asked with messages; each reply must be valid.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_SERVER_MESSAGEFIXTURE_H
#define QORQL_TESTS_UNIT_SERVER_MESSAGEFIXTURE_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "CimXmlJudge.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Server/CimXmlService.h"

namespace messagetest {

inline std::string text(const std::string& name, const std::string& value) {
  return "<IPARAMVALUE NAME=\"" + name + "\"><VALUE>" + value + "</VALUE></IPARAMVALUE>";
}
inline std::string parameter(const std::string& name, const std::string& content) {
  return "<IPARAMVALUE NAME=\"" + name + "\">" + content + "</IPARAMVALUE>";
}
inline std::string className(const std::string& name, const std::string& parameterName = "ClassName") {
  return parameter(parameterName, "<CLASSNAME NAME=\"" + name + "\"/>");
}
inline std::string propertyList(std::initializer_list<const char*> names) {
  std::string values;
  for (const char* const name : names) values += std::string("<VALUE>") + name + "</VALUE>";
  return parameter("PropertyList", "<VALUE.ARRAY>" + values + "</VALUE.ARRAY>");
}
// INSTANCENAME with one key, which is a text.
inline std::string path(const std::string& className, const std::string& key, const std::string& value) {
  return "<INSTANCENAME CLASSNAME=\"" + className + "\"><KEYBINDING NAME=\"" + key +
         "\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">" + value + "</KEYVALUE></KEYBINDING></INSTANCENAME>";
}

inline std::string message(const std::string& call) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">"
         "<MESSAGE ID=\"17\" PROTOCOLVERSION=\"1.0\">" +
         call + "</MESSAGE></CIM>";
}
inline std::string operationCall(const std::string& operation, const std::string& parameters,
                                 const std::string& nameSpace = "root/cimv2") {
  std::string steps;
  for (std::string_view rest = nameSpace; !rest.empty();) {
    const std::size_t end = std::min(rest.find('/'), rest.size());
    steps += "<NAMESPACE NAME=\"" + std::string(rest.substr(0, end)) + "\"/>";
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return message("<SIMPLEREQ><IMETHODCALL NAME=\"" + operation + "\"><LOCALNAMESPACEPATH>" + steps +
                 "</LOCALNAMESPACEPATH>" + parameters + "</IMETHODCALL></SIMPLEREQ>");
}

// The whole body, in pieces of a few bytes.
inline std::string bodyOf(ServerReply& reply, std::size_t about = 50) {
  std::string body;
  for (std::size_t before = 1; before != body.size();) {
    before = body.size();
    reply.append(body, about);
  }
  return body;
}

class MessageTest : public ::testing::Test {
 protected:
  MessageTest() { _manager->makeCurrent(); }

  void load(const std::string& mof) { MofLoader(_manager->sink()).loadText(mof, "test.mof"); }
  EmbeddedObjectManager& manager() { return *_manager; }
  const std::shared_ptr<EmbeddedObjectManager>& sharedManager() { return _manager; }
  ServerOperations& operations() { return _operations; }

  static HttpRequest post(const std::string& body) {
    return {"POST", "/cimom", {{"Host", "example:5988"}}, body, {"127.0.0.1", ""}};
  }
  HttpReply serve(const HttpRequest& request) {
    return CimXmlService(_operations, [this] { return _manager; }).serve(request);
  }
  // The content of the reply to an operation: what IRETURNVALUE holds, or the ERROR.
  std::string ask(const std::string& operation, const std::string& parameters,
                  const std::string& nameSpace = "root/cimv2") {
    const HttpReply reply = serve(post(operationCall(operation, parameters, nameSpace)));
    EXPECT_EQ(reply.status, 200U);
    const std::string body = bodyOf(*reply.body);
    EXPECT_EQ(_judge.verdict(body), "");
    EXPECT_THAT(body, ::testing::HasSubstr("<MESSAGE ID=\"17\""));
    return between(body, "<IMETHODRESPONSE NAME=\"" + operation + "\">", "</IMETHODRESPONSE>");
  }
  // The values alone.
  std::string valuesOf(const std::string& operation, const std::string& parameters,
                       const std::string& nameSpace = "root/cimv2") {
    return between(ask(operation, parameters, nameSpace), "<IRETURNVALUE>", "</IRETURNVALUE>");
  }
  // "5: there is no class X".
  std::string refusalOf(const std::string& operation, const std::string& parameters,
                        const std::string& nameSpace = "root/cimv2") {
    const std::string content = ask(operation, parameters, nameSpace);
    return between(content, "<ERROR CODE=\"", "\"") + ": " + between(content, "DESCRIPTION=\"", "\"/>");
  }
  static std::string between(const std::string& text, const std::string& begin, const std::string& end) {
    const std::size_t from = text.find(begin);
    if (from == std::string::npos) return "no " + begin + " in " + text;
    const std::size_t at = from + begin.size();
    return text.substr(at, text.find(end, at) - at);
  }
  const CimXmlJudge& judge() const { return _judge; }

 private:
  const std::shared_ptr<EmbeddedObjectManager> _manager = std::make_shared<EmbeddedObjectManager>();
  ServerOperations _operations;
  const CimXmlJudge _judge;
};

}  // namespace messagetest

#endif
