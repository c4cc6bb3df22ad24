// Messages of calls, read or refused with the word that HTTP answers.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlMessages.h"
#include "Cimom/CimXml/CimXmlRequestReader.h"

namespace {

using Kind = CimXmlParameter::Kind;
using ::testing::HasSubstr;

std::string message(const std::string& content) {
  return "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.4\"><MESSAGE ID=\"17\" PROTOCOLVERSION=\"1.4\">" + content +
         "</MESSAGE></CIM>";
}
std::string call(const std::string& parameters) {
  return message(
      "<SIMPLEREQ><IMETHODCALL NAME=\"GetClass\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
      "<NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>" +
      parameters + "</IMETHODCALL></SIMPLEREQ>");
}
std::string parameter(const std::string& content) { return "<IPARAMVALUE NAME=\"P\">" + content + "</IPARAMVALUE>"; }

CimXmlRequest read(const std::string& document) {
  CimXmlRequest request;
  readCimXmlRequest(document, {}, request);
  return request;
}
CimXmlParameter readParameter(const std::string& content) {
  const CimXmlRequest request = read(call(parameter(content)));
  EXPECT_EQ(request.parameters.size(), 1U);
  EXPECT_EQ(request.parameters.at(0).name, "P");
  return request.parameters.at(0);
}
// "word: message", or the status that is answered.
std::string refusalOf(const std::string& document) {
  try {
    read(document);
  } catch (const CimXmlRequestRefusal& refusal) {
    return std::string(refusal.getWord()) + ": " + std::string(refusal.getMessage().view());
  } catch (const CimStatusException& status) {
    return std::to_string(status.getCode()) + ": " + std::string(status.getDescription().view());
  }
  return "none";
}

TEST(CimXmlRequestReader, AnOperationHasMessageNameAndNamespace) {
  const CimXmlRequest request = read(call(""));
  EXPECT_EQ(request.kind, CimXmlRequest::Kind::Operation);
  EXPECT_EQ(request.messageId, "17");
  EXPECT_EQ(request.operation, "GetClass");
  EXPECT_EQ(request.nameSpace, QORString("root/cimv2"));
  EXPECT_TRUE(request.parameters.empty());
}

TEST(CimXmlRequestReader, WhatTheCallWritesIsRead) {
  CimXmlCall written("1", "EnumerateInstances", "root/interop");
  written.addClassName("ClassName", "A");
  written.addFlag("LocalOnly", false);
  written.addNumber("MaxObjectCount", 5);
  const QORString names[] = {"X", "Y"};
  written.addTexts("PropertyList", names);
  const CimXmlRequest request = read(written.finish());
  EXPECT_EQ(request.className("ClassName"), QORString("A"));
  EXPECT_FALSE(request.flag("LocalOnly", true));
  EXPECT_EQ(request.number("MaxObjectCount"), 5U);
  EXPECT_EQ(request.texts("PropertyList")->size(), 2U);
}

TEST(CimXmlRequestReader, ParametersHaveTheirKinds) {
  EXPECT_EQ(readParameter("").kind, Kind::Null);
  EXPECT_EQ(readParameter("<VALUE> a </VALUE>").text, QORString(" a "));
  EXPECT_EQ(readParameter("<VALUE.ARRAY/>").kind, Kind::Texts);
  EXPECT_EQ(readParameter("<CLASSNAME NAME=\"A\"/>").text, QORString("A"));
  const std::string name =
      "<INSTANCENAME CLASSNAME=\"A\"><KEYBINDING NAME=\"K\"><KEYVALUE>1</KEYVALUE></KEYBINDING></INSTANCENAME>";
  EXPECT_EQ(readParameter(name).path->toString(), QORString("root/cimv2:A.K=\"1\""));
  EXPECT_EQ(readParameter("<VALUE.REFERENCE>" + name + "</VALUE.REFERENCE>").kind, Kind::InstanceName);
  EXPECT_EQ(readParameter("<INSTANCENAME CLASSNAME=\"A\"/>").kind, Kind::InstanceName);
  const CimXmlParameter instance =
      readParameter("<VALUE.NAMEDINSTANCE>" + name +
                    "<INSTANCE CLASSNAME=\"A\"><PROPERTY NAME=\"V\" TYPE=\"uint8\"><VALUE>7</VALUE></PROPERTY>"
                    "</INSTANCE></VALUE.NAMEDINSTANCE>");
  EXPECT_EQ(instance.kind, Kind::Instance);
  EXPECT_EQ(instance.instance.className, QORString("A"));
  EXPECT_EQ(instance.instance.properties().size(), 1U);
  EXPECT_FALSE(instance.instance.name.IsNull());
  EXPECT_EQ(readParameter("<CLASS NAME=\"C\"/>").classes.name, QORString("C"));
  EXPECT_EQ(readParameter("<QUALIFIER.DECLARATION NAME=\"Q\" TYPE=\"boolean\"/>").qualifiers.name, QORString("Q"));
}

TEST(CimXmlRequestReader, AClassWithoutANameIsNoClass) {
  EXPECT_EQ(readParameter("<CLASSNAME NAME=\"\"/>").kind, Kind::Null);
  EXPECT_THAT(refusalOf(call(parameter("<CLASSNAME/>"))), HasSubstr("request-not-valid: "));
  EXPECT_THAT(refusalOf(call(parameter("<CLASSPATH><NAMESPACEPATH><HOST>h</HOST><LOCALNAMESPACEPATH>"
                                       "<NAMESPACE NAME=\"r\"/></LOCALNAMESPACEPATH></NAMESPACEPATH>"
                                       "<CLASSNAME NAME=\"\"/></CLASSPATH>"))),
              HasSubstr("request-not-valid: "));
}

TEST(CimXmlRequestReader, AMethodHasItsObject) {
  const CimXmlRequest request = read(
      message("<SIMPLEREQ><METHODCALL NAME=\"Stop\"><LOCALCLASSPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
              "</LOCALNAMESPACEPATH><CLASSNAME NAME=\"A\"/></LOCALCLASSPATH><PARAMVALUE NAME=\"X\"><VALUE>1</VALUE>"
              "</PARAMVALUE></METHODCALL></SIMPLEREQ>"));
  EXPECT_EQ(request.kind, CimXmlRequest::Kind::Method);
  EXPECT_EQ(request.operation, "Stop");
  EXPECT_EQ(request.nameSpace, QORString("root"));
  EXPECT_EQ(request.className("ObjectName"), QORString("A"));
}

TEST(CimXmlRequestReader, AnExportHasItsInstance) {
  const CimXmlRequest request =
      read(message("<SIMPLEEXPREQ><CORRELATOR NAME=\"c\" TYPE=\"string\"><VALUE>1</VALUE></CORRELATOR>"
                   "<EXPMETHODCALL NAME=\"ExportIndication\"><EXPPARAMVALUE NAME=\"NewIndication\">"
                   "<INSTANCE CLASSNAME=\"A\"/></EXPPARAMVALUE></EXPMETHODCALL></SIMPLEEXPREQ>"));
  EXPECT_EQ(request.kind, CimXmlRequest::Kind::Export);
  EXPECT_EQ(request.instance("NewIndication")->className, QORString("A"));
}

TEST(CimXmlRequestReader, AnEmbeddedClassIsMadeByWhoeverCan) {
  const std::string document =
      call(parameter("<INSTANCE CLASSNAME=\"A\"><PROPERTY NAME=\"V\" TYPE=\"string\" EmbeddedObject=\"object\">"
                     "<VALUE>&lt;CLASS NAME=\"C\"/&gt;</VALUE></PROPERTY></INSTANCE>"));
  EXPECT_THAT(refusalOf(document), HasSubstr("4: the object in V cannot be read"));
  CimXmlRequest request;
  std::string made;
  readCimXmlRequest(
      document,
      [&](const QORString& nameSpace, const CimClassDeclaration& declaration) {
        made = std::string(nameSpace.view()) + ":" + std::string(declaration.name.view());
        return QORSmrPtr<IQoriObject>();
      },
      request);
  EXPECT_EQ(made, "root/cimv2:C");
}

TEST(CimXmlRequestReader, WhatIsNotWellFormedIsToldFromWhatIsNotValid) {
  for (const char* const cut : {"", "<CIM", "no XML", "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"></MIC>"}) {
    EXPECT_THAT(refusalOf(cut), ::testing::StartsWith("request-not-well-formed: ")) << cut;
  }
  EXPECT_THAT(refusalOf(call("") + "<CIM/>"), ::testing::StartsWith("request-not-well-formed: "));
  for (const std::string& wrong :
       {std::string("<MIC/>"), message("<SIMPLERSP/>"), message("<SIMPLEREQ><IMETHODCALL/></SIMPLEREQ>"),
        message("<SIMPLEREQ><IMETHODCALL NAME=\"X\"/></SIMPLEREQ>"), call("<PARAMVALUE NAME=\"A\"/>"),
        call("<IPARAMVALUE/>"), call(parameter("<MESSAGE/>")), call(parameter("<VALUE>1</VALUE><VALUE>2</VALUE>")),
        "<!DOCTYPE CIM>" + call("")}) {
    EXPECT_THAT(refusalOf(wrong), ::testing::StartsWith("request-not-valid: ")) << wrong;
  }
}

TEST(CimXmlRequestReader, OtherVersionsAndSeveralCallsAreRefused) {
  EXPECT_EQ(refusalOf("<CIM CIMVERSION=\"3.0\" DTDVERSION=\"2.0\"/>"),
            "unsupported-cim-version: CIMVERSION is \"3.0\", expected 2.x");
  EXPECT_EQ(refusalOf("<CIM CIMVERSION=\"2.0\" DTDVERSION=\"1.0\"/>"),
            "unsupported-dtd-version: DTDVERSION is \"1.0\", expected 2.x");
  EXPECT_EQ(refusalOf("<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" PROTOCOLVERSION=\"2.0\"/></CIM>"),
            "unsupported-protocol-version: PROTOCOLVERSION is \"2.0\", expected 1.x");
  EXPECT_THAT(refusalOf(message("<MULTIREQ/>")), HasSubstr("multiple-requests-unsupported: "));
  EXPECT_THAT(refusalOf(message("<MULTIEXPREQ/>")), HasSubstr("multiple-requests-unsupported: "));
}

TEST(CimXmlRequestReader, AValueThatIsNoneIsAnInvalidParameterOfTheCall) {
  EXPECT_THAT(refusalOf(call(parameter("<INSTANCE CLASSNAME=\"A\"><PROPERTY NAME=\"V\" TYPE=\"uint8\">"
                                       "<VALUE>300</VALUE></PROPERTY></INSTANCE>"))),
              HasSubstr("4: found \"300\" for V, expected a uint8"));
  EXPECT_EQ(refusalOf(call(parameter("<VALUE.ARRAY><VALUE.NULL/></VALUE.ARRAY>"))), "4: P has an element that is NULL");
  EXPECT_EQ(refusalOf(call(parameter("") + "<IPARAMVALUE NAME=\"p\"/>")), "4: p is given twice");
  CimXmlRequest request;
  EXPECT_THROW(readCimXmlRequest(call(parameter("") + parameter("")), {}, request), CimStatusException);
  EXPECT_EQ(request.messageId, "17");
}

TEST(CimXmlRequestReader, DeepDocumentsAreRefused) {
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<VALUE.REFERENCE>";
  EXPECT_THAT(refusalOf(call(parameter(deep))), HasSubstr("request-not-valid: "));
}

}  // namespace
