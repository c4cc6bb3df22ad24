// What is written: valid against the DMTF's document type definition, and read back as it was.
// SPDX-License-Identifier: Apache-2.0
#include "CimXmlFixture.h"
#include "CimXmlJudge.h"
#include "Cimom/CimXml/CimXmlPathReader.h"
#include "Cimom/CimXml/CimXmlValues.h"
#include "Cimom/Model/ModelInstance.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

namespace {

using cimxmltest::Object;

constexpr const char* kModel =
    "Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);\n"
    "Qualifier Note : string = \"n\", Scope(any), Flavor(EnableOverride, Restricted, Translatable);\n"
    "Qualifier Words : string[3] = {\"a\", \"b\"}, Scope(class, method);\n"
    "[Note(\"root <&> \\\"\")] class Root { [Key] string Id; };\n"
    "[Words{\"x\", NULL}] class Part : Root { uint8 A = 1; sint64 B = -9223372036854775808; real32 C = 1.5; real64 D;\n"
    "  boolean E = true; datetime F = \"20260101000000.000000+000\"; char16 G = 'x'; uint64 H = 18446744073709551615;\n"
    "  string I[] = {\"p\", NULL, \"q\"}; uint16 J[4]; [EmbeddedObject] string K; [EmbeddedObject] string L[];\n"
    "  sint8 M; uint16 N; sint16 O; uint32 P; sint32 Q; boolean R[]; real64 S[]; datetime T[]; char16 U[];\n"
    "  [Note] uint32 Run([Note(\"by\")] uint8 by, Part REF other, string words[2], Part REF all[]); boolean Stop(); "
    "};\n"
    "[Association] class Link { [Key] Root REF From; [Key] Part REF To; string Text; };\n"
    "instance of Part as $a { Id = \"\xC3\xA4\\n\\\"\\r\\t <&>'\"; A = 255; C = -0.1; D = 1e300; I = {}; J = {1, "
    "NULL};\n"
    "  K = \"instance of Part { Id = \\\"in <\\\"; K = \\\"instance of Part { D = 2.5; };\\\"; };\";\n"
    "  L = {NULL, \"instance of Root { Id = \\\"r\\\"; }\"};\n"
    "  M = -128; N = 65535; O = -32768; P = 4294967295; Q = -2147483648; R = {true, false, NULL}; S = {0.5, 1.0, "
    "NULL};\n"
    "  T = {\"00000001000000.000000:000\"}; U = {'\\xE4', 'b'}; };\n"
    "instance of Part as $b { Id = \"\"; A = NULL; };\n"
    "instance of Link { From = $a; To = $b; };\n"
    "instance of Link { From = $b; To = $b; };\n";

class CimXmlWriting : public cimxmltest::CimXmlTest {
 protected:
  CimXmlWriting() { load(kModel); }

  // A reply whose values `write` writes, which must be valid.
  template <class Write>
  std::string replyOf(const std::string& operation, Write write) {
    CimXmlResponse response("1", operation);
    write(response.values());
    std::string document = response.finish();
    EXPECT_EQ(_judge.verdict(document), "");
    return document;
  }

  template <class Write>
  void expectReadBack(Write write) {
    for (const char* className : {"Part", "Link"}) {
      for (const Object& object : instancesOf(className)) {
        const std::string document =
            replyOf("EnumerateInstances", [&](CimXmlWriter& writer) { write(writer, *object); });
        const std::vector<Object> copies = read(document);
        ASSERT_EQ(copies.size(), 1U);
        EXPECT_EQ(mof(copies[0]), mof(object));
      }
    }
  }

  CimClassDeclaration declarationOf(const char* className) {
    CimClassDeclaration declaration;
    EXPECT_TRUE(manager().describeClass("root/cimv2", className, declaration));
    return declaration;
  }

  const CimXmlJudge& judge() const { return _judge; }

 private:
  const CimXmlJudge _judge;
};

TEST_F(CimXmlWriting, WritesInstancesOfEveryTypeThatAreReadBackAsTheyWere) {
  expectReadBack([](CimXmlWriter& writer, const IQoriObject& object) { writer.writeInstance(object); });
}

TEST_F(CimXmlWriting, WritesNamedInstancesWhoseNamesAreReadBackAsTheyWere) {
  for (const Object& object : instancesOf("Link")) {
    const std::string document =
        replyOf("EnumerateInstances", [&](CimXmlWriter& writer) { writer.writeNamedInstance(*object); });
    EXPECT_EQ(pathOf(read(document).at(0)), pathOf(object));
  }
  expectReadBack([](CimXmlWriter& writer, const IQoriObject& object) { writer.writeNamedInstance(object); });
}

TEST_F(CimXmlWriting, WritesInstancesWithPaths) {
  expectReadBack([](CimXmlWriter& writer, const IQoriObject& object) { writer.writeInstanceWithPath(object, "h:1"); });
  expectReadBack([](CimXmlWriter& writer, const IQoriObject& object) { writer.writeObjectWithPath(object, "h:1"); });
  const Object object = instancesOf("Part").at(1);
  const std::string document =
      replyOf("OpenEnumerateInstances", [&](CimXmlWriter& writer) { writer.writeInstanceWithPath(*object, "h:1"); });
  EXPECT_THAT(document, ::testing::HasSubstr("<HOST>h:1</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
                                             "<NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>"));
}

TEST_F(CimXmlWriting, WritesClassesThatAreReadBackAsTheyWere) {
  for (const char* className : {"Root", "Part", "Link"}) {
    const CimClassDeclaration declaration = declarationOf(className);
    const std::string document = replyOf("GetClass", [&](CimXmlWriter& writer) { writer.writeClass(declaration); });
    CimXmlReply reply(cimxmltest::inPieces(document, 50), "GetClass", "1", "root/cimv2");
    ASSERT_EQ(reply.next(), CimXmlReply::Item::Class);
    std::string again;
    CimXmlWriter(again).writeClass(reply.classDeclaration());
    EXPECT_THAT(document, ::testing::HasSubstr("<IRETURNVALUE>" + again + "</IRETURNVALUE>"));
    EXPECT_EQ(reply.next(), CimXmlReply::Item::End);
  }
}

TEST_F(CimXmlWriting, WritesAnEmbeddedClassWithAllItsPropertiesAsItsOwn) {
  load("instance of Part { Id = \"c\"; K = \"class New : Root { uint8 X = 3; }\"; };");
  const Object object = instancesOf("Part").back();
  const std::string document =
      replyOf("EnumerateInstances", [&](CimXmlWriter& writer) { writer.writeInstance(*object); });
  EXPECT_THAT(document, ::testing::HasSubstr("EmbeddedObject=\"object\""));
  EXPECT_EQ(textOf(read(document).at(0), "K"), "class New {\n    string Id;\n    uint8 X = 3;\n};\n");
}

TEST_F(CimXmlWriting, ReadsWhatAClassDeclaresItselfAlone) {
  const std::string document = cimxmltest::replyTo(
      "GetClass",
      "<IRETURNVALUE><CLASS NAME=\"B\" SUPERCLASS=\"A\"><QUALIFIER NAME=\"Q\" TYPE=\"string\" PROPAGATED=\"true\"/>"
      "<PROPERTY NAME=\"Old\" TYPE=\"uint8\" CLASSORIGIN=\"A\" PROPAGATED=\"true\"/>"
      "<PROPERTY NAME=\"New\" TYPE=\"string\" EmbeddedObject=\"instance\"/>"
      "<METHOD NAME=\"M\" PROPAGATED=\"true\"/><METHOD NAME=\"N\" TYPE=\"uint32\"/></CLASS></IRETURNVALUE>");
  CimXmlReply reply(cimxmltest::inPieces(document, 999), "GetClass", "1", "root/cimv2");
  ASSERT_EQ(reply.next(), CimXmlReply::Item::Class);
  const CimClassDeclaration& declaration = reply.classDeclaration();
  EXPECT_EQ(declaration.superClass, "A");
  EXPECT_TRUE(declaration.qualifiers.empty());
  ASSERT_EQ(declaration.properties.size(), 1U);
  EXPECT_EQ(declaration.properties[0].name, "New");
  EXPECT_TRUE(declaration.properties[0].hasFlag("EmbeddedObject"));
  ASSERT_EQ(declaration.methods.size(), 1U);
  EXPECT_EQ(declaration.methods[0].name, "N");
}

TEST_F(CimXmlWriting, WritesClassesWithoutQualifiers) {
  const std::string document =
      replyOf("GetClass", [&](CimXmlWriter& writer) { writer.writeClass(declarationOf("Part"), false); });
  EXPECT_EQ(document.find("QUALIFIER"), std::string::npos);
}

TEST_F(CimXmlWriting, WritesQualifierDeclarationsThatAreReadBackAsTheyWere) {
  for (const char* name : {"Key", "Note", "Words"}) {
    CimQualifierDeclaration declaration;
    ASSERT_TRUE(manager().sink().describeQualifier("root/cimv2", name, declaration));
    const std::string document =
        replyOf("GetQualifier", [&](CimXmlWriter& writer) { writer.writeQualifierDeclaration(declaration); });
    CimXmlReply reply(cimxmltest::inPieces(document, 50), "GetQualifier", "1", "root/cimv2");
    ASSERT_EQ(reply.next(), CimXmlReply::Item::Qualifier);
    const CimQualifierDeclaration& copy = reply.qualifierDeclaration();
    EXPECT_EQ(copy.name, declaration.name);
    EXPECT_EQ(copy.type->getName(), declaration.type->getName());
    EXPECT_EQ(copy.type->isArray(), declaration.type->isArray());
    EXPECT_EQ(copy.arraySize, declaration.arraySize);
    EXPECT_EQ(copy.toSubclass, declaration.toSubclass);
    EXPECT_EQ(copy.overridable, declaration.overridable);
    EXPECT_EQ(copy.translatable, declaration.translatable);
    EXPECT_EQ(copy.defaultValue->toString(), declaration.defaultValue->toString());
    const bool isAny = declaration.scopes.size() == 1 && declaration.scopes[0] == "any";
    EXPECT_EQ(copy.scopes.size(), isAny ? 7U : declaration.scopes.size());
  }
}

TEST_F(CimXmlWriting, WritesReferencesInTheirSixForms) {
  const QORSmrPtr<IQoriInstanceName> part = instancesOf("Part").at(0)->getInstanceName();
  for (const char* host : {"", "h"}) {
    for (const char* nameSpace : {"", "root/x"}) {
      if (*nameSpace == '\0' && *host != '\0') continue;
      for (const bool isClass : {false, true}) {
        const QORSmrPtr<IQoriNameSpacePath> path(new CQoriNameSpacePath(host, nameSpace));
        const CQoriInstanceName name("Part", isClass ? QORSmrPtr<IQoriInstanceName::KeyList>() : part->getKeys(), path);
        std::string element;
        CimXmlWriter(element).writeReference(name);
        EXPECT_EQ(
            judge().verdict("<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\">"
                            "<SIMPLERSP><IMETHODRESPONSE NAME=\"X\"><IRETURNVALUE>" +
                            element + "</IRETURNVALUE></IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>"),
            "");
        cimxml::XmlPull xml(std::string_view(element), {});
        const QORSmrPtr<IQoriInstanceName> copy = CimXmlPathReader(xml, "").readReference();
        EXPECT_EQ(copy->toString(), name.toString());
        EXPECT_EQ(copy->getNameSpacePath()->getHost(), host);
      }
    }
  }
}

TEST_F(CimXmlWriting, WritesCallsThatAreValid) {
  CimXmlCall call("17", "OpenEnumerateInstances", "root/cimv2");
  call.addClassName("ClassName", "CIM_Disk");
  call.addFlag("DeepInheritance", true);
  call.addNumber("MaxObjectCount", 1000);
  const std::vector<QORString> names = {"Name", "Size"};
  call.addTexts("PropertyList", names);
  call.addText("FilterQuery", "a < \"b\"");
  call.addInstanceName("InstanceName", *instancesOf("Link").at(0)->getInstanceName());
  const std::string document = call.finish();
  EXPECT_EQ(judge().verdict(document), "");
  EXPECT_THAT(document, ::testing::HasSubstr("<IPARAMVALUE NAME=\"PropertyList\"><VALUE.ARRAY><VALUE>Name</VALUE>"
                                             "<VALUE>Size</VALUE></VALUE.ARRAY></IPARAMVALUE>"));
  EXPECT_THAT(document, ::testing::HasSubstr("<VALUE>a &lt; &quot;b&quot;</VALUE>"));
}

TEST_F(CimXmlWriting, WritesOutputsAndErrorsThatAreValid) {
  CimXmlResponse response("1", "OpenEnumerateInstances");
  response.values().writeInstanceWithPath(*instancesOf("Part").at(0), "h");
  response.addOutputFlag("EndOfSequence", false);
  response.addOutput("EnumerationContext", "a\n1");
  CimClassDeclaration result;
  result.name = "QueryResult";
  result.properties.emplace_back().name = "a.Size";
  result.properties.back().type = CQoriType::find("uint32", true);
  response.addOutputClass("QueryResultClass", result);
  EXPECT_EQ(judge().verdict(response.finish()), "");
  CimXmlResponse error("1", "GetClass");
  error.setError(5, "no class \"X\"\nin root/cimv2");
  const std::string document = error.finish();
  EXPECT_EQ(judge().verdict(document), "");
  try {
    CimXmlReply reply(cimxmltest::inPieces(document, 50), "GetClass", "1", "root/cimv2");
    reply.next();
    ADD_FAILURE() << "no exception";
  } catch (const CimStatusException& status) {
    EXPECT_EQ(status.getDescription(), "no class \"X\"\nin root/cimv2");
  }
}

TEST_F(CimXmlWriting, ReplacesCharactersThatXmlForbids) {
  std::string element;
  CimXmlWriter(element).writeText(std::string("a\x01") + "b\xFF\r\n");
  EXPECT_EQ(element,
            "<VALUE>a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD&#13;\n</VALUE>");
}

TEST_F(CimXmlWriting, WritesRealsWithPointAndExponent) {
  const auto written = [](double value, const QORSmrPtr<IQoriType>& type) {
    std::string text;
    cimxml::appendValueText(text, CQoriValue(value, type));
    return text;
  };
  EXPECT_EQ(written(1500, CQoriType::real64), "1.5E+03");
  EXPECT_EQ(written(0, CQoriType::real64), "0.0E+00");
  EXPECT_EQ(written(0.1, CQoriType::real32), "1.0E-01");
  EXPECT_EQ(written(-1.0 / 0.0, CQoriType::real64), "-INF");
  EXPECT_EQ(written(0.0 / 0.0, CQoriType::real64), "NaN");
}

TEST_F(CimXmlWriting, RefusesObjectsThatNestTooDeeply) {
  const QORSmrPtr<ModelLayout> layout(new ModelLayout({{"P", CQoriType::object}}));
  const QORSmrPtr<ModelShape> shape(new ModelShape("root/cimv2", "T", layout, {}));
  Object object = ModelInstance::create(shape, {});
  for (int i = 0; i < 70; ++i) {
    object = ModelInstance::create(shape, {IQoriValue::Pointer(new CQoriValue(object))});
  }
  std::string element;
  EXPECT_THROW(CimXmlWriter(element).writeInstance(*object), QoriBaseException);
}

}  // namespace
