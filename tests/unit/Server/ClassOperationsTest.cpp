// Classes and qualifiers as clients ask for them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlReply.h"
#include "Cimom/Server/ClassOperations.h"
#include "MessageFixture.h"

namespace {

using namespace messagetest;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kModel =
    "Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);\n"
    "Qualifier Override : string = NULL, Scope(property, method), Flavor(EnableOverride, Restricted);\n"
    "Qualifier Note : string = \"n\", Scope(any), Flavor(EnableOverride, ToSubclass);\n"
    "Qualifier Own : string = \"o\", Scope(any), Flavor(EnableOverride, Restricted);\n"
    "[Note(\"base\"), Own(\"base\")] class Base { [Key, Note(\"id\")] string Id; [Own(\"x\")] uint8 Size = 3;\n"
    "  [Note(\"run\")] uint32 Run([Note(\"p\")] uint8 P); uint32 Stop(); };\n"
    "[Own(\"mid\")] class Mid : Base { [Override(\"Size\"), Note(\"size\")] uint8 Size; string Extra[]; };\n"
    "class Leaf : Mid { [Override(\"Stop\")] uint32 Stop(); };\n"
    "class Other { string A; [EmbeddedInstance(\"Base\")] string One; [EmbeddedObject] string Any[]; };\n";

class ClassOperations : public MessageTest {
 protected:
  ClassOperations() {
    addClassOperations(operations());
    load(kModel);
  }
};

TEST_F(ClassOperations, AClassHasItsOwnFeaturesUnlessAllAreAskedFor) {
  EXPECT_EQ(valuesOf("GetClass", className("mid") + text("IncludeQualifiers", "false")),
            "<CLASS NAME=\"Mid\" SUPERCLASS=\"Base\"><PROPERTY NAME=\"Size\" TYPE=\"uint8\"><VALUE>3</VALUE></PROPERTY>"
            "<PROPERTY.ARRAY NAME=\"Extra\" TYPE=\"string\"></PROPERTY.ARRAY></CLASS>");
  EXPECT_EQ(valuesOf("GetClass", className("Mid") + text("LocalOnly", "FALSE") + text("IncludeQualifiers", "FALSE")),
            "<CLASS NAME=\"Mid\" SUPERCLASS=\"Base\"><PROPERTY NAME=\"Id\" TYPE=\"string\" PROPAGATED=\"true\">"
            "</PROPERTY><PROPERTY NAME=\"Size\" TYPE=\"uint8\"><VALUE>3</VALUE></PROPERTY>"
            "<PROPERTY.ARRAY NAME=\"Extra\" TYPE=\"string\"></PROPERTY.ARRAY>"
            "<METHOD NAME=\"Run\" TYPE=\"uint32\" PROPAGATED=\"true\"><PARAMETER NAME=\"P\" TYPE=\"uint8\"></PARAMETER>"
            "</METHOD><METHOD NAME=\"Stop\" TYPE=\"uint32\" PROPAGATED=\"true\"></METHOD></CLASS>");
}

TEST_F(ClassOperations, ADefaultThatIsNotOverriddenIsInForce) {
  load("class Nil : Base { [Override(\"Size\")] uint8 Size = NULL; };");
  const auto sizeOf = [&](const std::string& name, const std::string& isLocalOnly) {
    return between(valuesOf("GetClass", className(name) + text("LocalOnly", isLocalOnly) +
                                            text("IncludeQualifiers", "false") + propertyList({"Size"})),
                   "<PROPERTY NAME=\"Size\" TYPE=\"uint8\">", "</PROPERTY>");
  };
  EXPECT_EQ(sizeOf("Mid", "true"), "<VALUE>3</VALUE>");
  EXPECT_EQ(sizeOf("Mid", "false"), "<VALUE>3</VALUE>");
  EXPECT_EQ(sizeOf("Nil", "true"), "");
}

TEST_F(ClassOperations, PropertiesTellThatTheyHoldObjectsWithAndWithoutQualifiers) {
  for (const char* const withQualifiers : {"true", "false"}) {
    const std::string told = valuesOf("GetClass", className("Other") + text("IncludeQualifiers", withQualifiers));
    EXPECT_THAT(told, HasSubstr("<PROPERTY NAME=\"A\" TYPE=\"string\">"));
    EXPECT_THAT(told, HasSubstr("<PROPERTY NAME=\"One\" TYPE=\"string\" EmbeddedObject=\"instance\">"));
    EXPECT_THAT(told, HasSubstr("<PROPERTY.ARRAY NAME=\"Any\" TYPE=\"string\" EmbeddedObject=\"object\">"));
  }
}

TEST_F(ClassOperations, OriginsAreTheClassesThatDeclareOrOverrideLast) {
  const std::string told =
      valuesOf("GetClass", className("Leaf") + text("LocalOnly", "false") + text("IncludeQualifiers", "false") +
                               text("IncludeClassOrigin", "true"));
  EXPECT_THAT(told, HasSubstr("NAME=\"Id\" TYPE=\"string\" CLASSORIGIN=\"Base\" PROPAGATED=\"true\""));
  EXPECT_THAT(told, HasSubstr("NAME=\"Size\" TYPE=\"uint8\" CLASSORIGIN=\"Mid\" PROPAGATED=\"true\""));
  EXPECT_THAT(told, HasSubstr("<METHOD NAME=\"Run\" TYPE=\"uint32\" CLASSORIGIN=\"Base\" PROPAGATED=\"true\">"));
  EXPECT_THAT(told, HasSubstr("<METHOD NAME=\"Stop\" TYPE=\"uint32\" CLASSORIGIN=\"Leaf\">"));
}

TEST_F(ClassOperations, InheritedQualifiersAreMarkedAndRestrictedOnesAreNotInherited) {
  const std::string told = valuesOf("GetClass", className("Mid") + text("LocalOnly", "false"));
  EXPECT_THAT(told, HasSubstr("<CLASS NAME=\"Mid\" SUPERCLASS=\"Base\"><QUALIFIER NAME=\"Own\" TYPE=\"string\" "
                              "TOSUBCLASS=\"false\"><VALUE>mid</VALUE></QUALIFIER><QUALIFIER NAME=\"Note\" "
                              "TYPE=\"string\" PROPAGATED=\"true\"><VALUE>base</VALUE></QUALIFIER>"));
  EXPECT_THAT(told, Not(HasSubstr("<VALUE>x</VALUE>")));
  EXPECT_THAT(told, HasSubstr("<QUALIFIER NAME=\"Note\" TYPE=\"string\"><VALUE>size</VALUE></QUALIFIER>"));
  EXPECT_THAT(valuesOf("GetClass", className("Mid")), Not(HasSubstr("PROPAGATED")));
}

TEST_F(ClassOperations, AClassThatWasToldIsDeclaredAsItWas) {
  const std::string whole =
      bodyOf(*serve(post(operationCall("GetClass", className("Mid") + text("LocalOnly", "false")))).body);
  CimXmlReply reply(
      [rest = std::string_view(whole)](char* buffer, std::size_t capacity) mutable {
        const std::size_t count = std::min(capacity, rest.size());
        std::copy_n(rest.data(), count, buffer);
        rest.remove_prefix(count);
        return count;
      },
      "GetClass", "17", "root/cimv2");
  ASSERT_EQ(reply.next(), CimXmlReply::Item::Class);
  const CimClassDeclaration& told = reply.classDeclaration();
  ASSERT_EQ(told.properties.size(), 2U);
  EXPECT_EQ(told.properties[0].name, QORString("Size"));
  EXPECT_TRUE(told.methods.empty());
  EXPECT_EQ(told.qualifiers.size(), 1U);
}

TEST_F(ClassOperations, APropertyListChoosesPropertiesIgnoringCase) {
  const std::string rest = className("Base") + text("IncludeQualifiers", "false");
  const std::string chosen = valuesOf("GetClass", rest + propertyList({"SIZE", "Nothing", "size"}));
  EXPECT_THAT(chosen, HasSubstr("<CLASS NAME=\"Base\"><PROPERTY NAME=\"Size\" TYPE=\"uint8\"><VALUE>3</VALUE>"
                                "</PROPERTY><METHOD NAME=\"Run\""));
  EXPECT_THAT(valuesOf("GetClass", rest + propertyList({})), HasSubstr("<CLASS NAME=\"Base\"><METHOD NAME=\"Run\""));
  EXPECT_THAT(valuesOf("GetClass", rest + parameter("PropertyList", "")), HasSubstr("\"Id\""));
}

TEST_F(ClassOperations, NamesOfClassesBelowOne) {
  EXPECT_EQ(valuesOf("EnumerateClassNames", ""), "<CLASSNAME NAME=\"Base\"/><CLASSNAME NAME=\"Other\"/>");
  EXPECT_EQ(valuesOf("EnumerateClassNames", className("base")), "<CLASSNAME NAME=\"Mid\"/>");
  EXPECT_EQ(valuesOf("EnumerateClassNames", className("Base") + text("DeepInheritance", "true")),
            "<CLASSNAME NAME=\"Mid\"/><CLASSNAME NAME=\"Leaf\"/>");
  EXPECT_EQ(valuesOf("EnumerateClassNames", text("DeepInheritance", "true")),
            "<CLASSNAME NAME=\"Base\"/><CLASSNAME NAME=\"Mid\"/><CLASSNAME NAME=\"Leaf\"/>"
            "<CLASSNAME NAME=\"Other\"/>");
  EXPECT_EQ(valuesOf("EnumerateClassNames", className("Leaf")), "");
}

TEST_F(ClassOperations, ClassesBelowOne) {
  const std::string told = valuesOf(
      "EnumerateClasses", className("Base") + text("DeepInheritance", "TRUE") + text("IncludeQualifiers", "FALSE"));
  EXPECT_THAT(told, ::testing::StartsWith("<CLASS NAME=\"Mid\" SUPERCLASS=\"Base\">"));
  EXPECT_THAT(told, HasSubstr("</CLASS><CLASS NAME=\"Leaf\" SUPERCLASS=\"Mid\">"));
  EXPECT_THAT(valuesOf("EnumerateClasses", ""), HasSubstr("<CLASS NAME=\"Other\">"));
}

TEST_F(ClassOperations, Qualifiers) {
  EXPECT_EQ(valuesOf("GetQualifier", text("QualifierName", "note")),
            "<QUALIFIER.DECLARATION NAME=\"Note\" TYPE=\"string\" ISARRAY=\"false\"><SCOPE CLASS=\"true\" "
            "ASSOCIATION=\"true\" REFERENCE=\"true\" PROPERTY=\"true\" METHOD=\"true\" PARAMETER=\"true\" "
            "INDICATION=\"true\"/><VALUE>n</VALUE></QUALIFIER.DECLARATION>");
  const std::string all = valuesOf("EnumerateQualifiers", "");
  std::size_t at = 0;
  for (const char* const name : {"Key", "Note", "Override", "Own"}) {
    const std::size_t found = all.find("NAME=\"" + std::string(name) + "\"", at);
    ASSERT_NE(found, std::string::npos) << name;
    at = found;
  }
  EXPECT_EQ(refusalOf("GetQualifier", text("QualifierName", "None")), "6: there is no qualifier None");
}

TEST_F(ClassOperations, WhatIsNotThereIsRefused) {
  for (const char* const operation : {"GetClass", "EnumerateClasses", "EnumerateClassNames"}) {
    EXPECT_EQ(refusalOf(operation, className("None")), "5: there is no class None");
    EXPECT_EQ(refusalOf(operation, className("Base"), "root/none"), "3: there is no namespace root/none");
  }
  for (const char* const operation : {"EnumerateQualifiers", "GetQualifier"}) {
    EXPECT_EQ(refusalOf(operation, "", "root/none"), "3: there is no namespace root/none");
  }
  for (const std::string& wrong : {text("Colour", "red"), text("LocalOnly", "maybe")}) {
    EXPECT_EQ(refusalOf("GetClass", className("Base") + wrong, "root/none"), "3: there is no namespace root/none");
  }
}

TEST_F(ClassOperations, ParametersAreThoseOfTheOperation) {
  EXPECT_EQ(refusalOf("GetClass", ""), "4: GetClass needs the parameter ClassName");
  EXPECT_EQ(refusalOf("GetQualifier", ""), "4: GetQualifier needs the parameter QualifierName");
  EXPECT_EQ(refusalOf("GetClass", className("Base") + text("DeepInheritance", "true")),
            "4: GetClass has no parameter DeepInheritance");
  EXPECT_EQ(refusalOf("GetClass", text("ClassName", "Base")), "4: ClassName is not the name of a class");
  EXPECT_EQ(refusalOf("GetClass", className("Base") + text("LocalOnly", "maybe")), "4: LocalOnly is not a boolean");
  EXPECT_EQ(refusalOf("EnumerateQualifiers", className("Base")), "4: EnumerateQualifiers has no parameter ClassName");
}

}  // namespace
