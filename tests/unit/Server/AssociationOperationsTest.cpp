// From instances and from classes to those at the other ends of their associations.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/AssociationOperations.h"
#include "MessageFixture.h"

namespace {

using namespace messagetest;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kModel =
    "class Thing { [Key] string Id; uint8 Size; };\n"
    "class Pump : Thing { uint32 Power; };\n"
    "class Tank : Thing { };\n"
    "[Association] class Feeds { [Key] Pump REF Source; [Key] Tank REF Sink; string Pipe; };\n"
    "[Association] class FeedsHot : Feeds { uint8 Degrees; };\n"
    "[Association] class Near { [Key] Thing REF One; [Key] Thing REF Other; };\n"
    "instance of Pump as $p { Id = \"p\"; Power = 5; };\n"
    "instance of Tank as $t { Id = \"t\"; };\n"
    "instance of Tank as $u { Id = \"u\"; };\n"
    "instance of Feeds { Source = $p; Sink = $t; Pipe = \"x\"; };\n"
    "instance of FeedsHot { Source = $p; Sink = $u; Degrees = 80; };\n"
    "instance of Near { One = $t; Other = $u; };\n";

class AssociationOperations : public MessageTest {
 protected:
  AssociationOperations() {
    addAssociationOperations(operations());
    load(kModel);
  }

  static std::string of(const std::string& className, const std::string& id) {
    return parameter("ObjectName", path(className, "Id", id));
  }
  static std::string spacePath() {
    return "<NAMESPACEPATH><HOST>example:5988</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
           "<NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH></NAMESPACEPATH>";
  }
  static std::string objectPath(const std::string& className, const std::string& id) {
    return "<OBJECTPATH><INSTANCEPATH>" + spacePath() + path(className, "Id", id) + "</INSTANCEPATH></OBJECTPATH>";
  }
  static std::string classPath(const std::string& className) {
    return "<OBJECTPATH><CLASSPATH>" + spacePath() + "<CLASSNAME NAME=\"" + className + "\"/></CLASSPATH></OBJECTPATH>";
  }
  static std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
  }
};

TEST_F(AssociationOperations, PathsOfInstancesAtOtherEnds) {
  EXPECT_EQ(valuesOf("AssociatorNames", of("pump", "p")), objectPath("Tank", "t") + objectPath("Tank", "u"));
  EXPECT_EQ(valuesOf("AssociatorNames", of("Tank", "t") + className("feeds", "AssocClass")), objectPath("Pump", "p"));
  EXPECT_EQ(valuesOf("AssociatorNames", of("Pump", "p") + className("FeedsHot", "AssocClass")),
            objectPath("Tank", "u"));
  EXPECT_EQ(valuesOf("AssociatorNames", of("Tank", "t") + className("Tank", "ResultClass")), objectPath("Tank", "u"));
  EXPECT_EQ(valuesOf("AssociatorNames", of("Tank", "t") + text("Role", "sink")), objectPath("Pump", "p"));
  EXPECT_EQ(valuesOf("AssociatorNames", of("Tank", "t") + text("ResultRole", "Other")), objectPath("Tank", "u"));
  EXPECT_EQ(valuesOf("AssociatorNames", of("Tank", "u") + text("ResultRole", "Other")), "");
}

TEST_F(AssociationOperations, InstancesAtOtherEnds) {
  const std::string told =
      valuesOf("Associators", of("Tank", "t") + className("Pump", "ResultClass") + propertyList({"power", "Size"}) +
                                  text("IncludeClassOrigin", "true"));
  EXPECT_EQ(told, "<VALUE.OBJECTWITHPATH><INSTANCEPATH>" + spacePath() + path("Pump", "Id", "p") +
                      "</INSTANCEPATH><INSTANCE CLASSNAME=\"Pump\"><PROPERTY NAME=\"Size\" TYPE=\"uint8\" "
                      "CLASSORIGIN=\"Thing\" PROPAGATED=\"true\"></PROPERTY><PROPERTY NAME=\"Power\" TYPE=\"uint32\" "
                      "CLASSORIGIN=\"Pump\"><VALUE>5</VALUE></PROPERTY></INSTANCE></VALUE.OBJECTWITHPATH>");
}

TEST_F(AssociationOperations, Associations) {
  EXPECT_EQ(countOf(valuesOf("ReferenceNames", of("Pump", "p")), "<OBJECTPATH>"), 2U);
  EXPECT_EQ(countOf(valuesOf("ReferenceNames", of("Tank", "u")), "<OBJECTPATH>"), 2U);
  EXPECT_EQ(countOf(valuesOf("ReferenceNames", of("Tank", "u") + className("Near", "ResultClass")), "<OBJECTPATH>"),
            1U);
  EXPECT_EQ(valuesOf("ReferenceNames", of("Pump", "p") + text("Role", "Sink")), "");
  const std::string told =
      valuesOf("References", of("Pump", "p") + className("FeedsHot", "ResultClass") + propertyList({"Degrees"}));
  EXPECT_THAT(told, ::testing::EndsWith("<INSTANCE CLASSNAME=\"FeedsHot\"><PROPERTY NAME=\"Degrees\" TYPE=\"uint8\">"
                                        "<VALUE>80</VALUE></PROPERTY></INSTANCE></VALUE.OBJECTWITHPATH>"));
  EXPECT_EQ(countOf(told, "<INSTANCE "), 1U);
}

TEST_F(AssociationOperations, AClassIsTiedToClasses) {
  EXPECT_EQ(valuesOf("AssociatorNames", className("pump", "ObjectName")), classPath("Tank") + classPath("Thing"));
  EXPECT_EQ(valuesOf("AssociatorNames", className("Pump", "ObjectName") + className("Feeds", "AssocClass")),
            classPath("Tank"));
  EXPECT_EQ(valuesOf("AssociatorNames", className("Pump", "ObjectName") + className("Tank", "ResultClass")),
            classPath("Tank"));
  EXPECT_EQ(valuesOf("AssociatorNames", className("Pump", "ObjectName") + text("Role", "sink")), "");
  EXPECT_EQ(valuesOf("AssociatorNames", className("Pump", "ObjectName") + text("ResultRole", "SINK")),
            classPath("Tank"));
  EXPECT_EQ(valuesOf("AssociatorNames", className("Thing", "ObjectName")), classPath("Thing"));
  EXPECT_EQ(valuesOf("ReferenceNames", className("Tank", "ObjectName")),
            classPath("Feeds") + classPath("FeedsHot") + classPath("Near"));
  EXPECT_EQ(valuesOf("ReferenceNames", className("Tank", "ObjectName") + className("FeedsHot", "ResultClass")),
            classPath("FeedsHot"));
  EXPECT_EQ(valuesOf("ReferenceNames", className("Tank", "ObjectName") + text("Role", "One")), classPath("Near"));
}

TEST_F(AssociationOperations, ClassesAreToldWhole) {
  EXPECT_EQ(valuesOf("Associators", className("Tank", "ObjectName") + className("Feeds", "AssocClass") +
                                        text("IncludeClassOrigin", "true") + propertyList({"Size"})),
            "<VALUE.OBJECTWITHPATH><CLASSPATH>" + spacePath() +
                "<CLASSNAME NAME=\"Pump\"/></CLASSPATH><CLASS NAME=\"Pump\" SUPERCLASS=\"Thing\">"
                "<PROPERTY NAME=\"Size\" TYPE=\"uint8\" CLASSORIGIN=\"Thing\" PROPAGATED=\"true\"></PROPERTY></CLASS>"
                "</VALUE.OBJECTWITHPATH>");
  const std::string told = valuesOf("References", className("Tank", "ObjectName") + text("IncludeQualifiers", "true"));
  EXPECT_EQ(countOf(told, "<CLASS "), 3U);
  EXPECT_THAT(told, HasSubstr("<QUALIFIER NAME=\"Association\""));
  EXPECT_THAT(valuesOf("References", className("Tank", "ObjectName")), Not(HasSubstr("QUALIFIER")));
}

TEST_F(AssociationOperations, AClassOfAnotherNamespaceThanTheCallsIsRefused) {
  load("#pragma namespace(\"root/more\")\nclass Tank { [Key] string Id; };");
  const auto in = [](const std::string& nameSpace) {
    return parameter("ObjectName", "<LOCALCLASSPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"" +
                                       nameSpace +
                                       "\"/></LOCALNAMESPACEPATH><CLASSNAME NAME=\"Tank\"/></LOCALCLASSPATH>");
  };
  EXPECT_EQ(refusalOf("ReferenceNames", in("more")),
            "4: ObjectName is in namespace root/more, and the call in root/cimv2");
  EXPECT_EQ(countOf(valuesOf("ReferenceNames", in("CIMV2")), "<OBJECTPATH>"), 3U);
}

TEST_F(AssociationOperations, WhatIsNotThereIsRefused) {
  for (const char* const operation : {"Associators", "AssociatorNames", "References", "ReferenceNames"}) {
    EXPECT_THAT(refusalOf(operation, of("Tank", "t"), "root/none"), HasSubstr("3: ")) << operation;
    EXPECT_THAT(refusalOf(operation, className("Tank", "ObjectName"), "root/none"), HasSubstr("3: ")) << operation;
    EXPECT_THAT(refusalOf(operation, ""), HasSubstr("4: ")) << operation;
    EXPECT_THAT(refusalOf(operation, of("Tank", "t") + text("Colour", "red")), HasSubstr("4: ")) << operation;
    EXPECT_THAT(refusalOf(operation, of("None", "t")), HasSubstr("5: ")) << operation;
    EXPECT_THAT(refusalOf(operation, className("None", "ObjectName")), HasSubstr("5: ")) << operation;
    EXPECT_THAT(refusalOf(operation, of("Tank", "t") + className("None", "ResultClass")), HasSubstr("5: "));
    EXPECT_THAT(refusalOf(operation, className("Tank", "ObjectName") + className("None", "ResultClass")),
                HasSubstr("5: "));
    EXPECT_THAT(refusalOf(operation, of("Tank", "z")), HasSubstr("6: ")) << operation;
  }
  EXPECT_THAT(refusalOf("ReferenceNames", of("Tank", "t") + className("Feeds", "AssocClass")), HasSubstr("4: "));
  EXPECT_THAT(refusalOf("AssociatorNames", className("Tank", "ObjectName") + className("None", "AssocClass")),
              HasSubstr("5: "));
}

}  // namespace
