// What clients find of this server in its interop namespace.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ClassOperations.h"
#include "Cimom/Server/IndicationClasses.h"
#include "Cimom/Server/InstanceOperations.h"
#include "Cimom/Server/InteropModel.h"
#include "Cimom/Server/StoredInstanceWriter.h"
#include "MessageFixture.h"

namespace {

using namespace messagetest;
using ::testing::HasSubstr;

constexpr const char* kInterop = "root/interop";
constexpr const char* kMechanism = "CIM_ObjectManagerCommunicationMechanism";

std::string numbers(const std::string& name, std::initializer_list<int> values) {
  std::string told = "<PROPERTY.ARRAY NAME=\"" + name + "\" TYPE=\"uint16\"><VALUE.ARRAY>";
  for (const int value : values) told += "<VALUE>" + std::to_string(value) + "</VALUE>";
  return told + "</VALUE.ARRAY>";
}

class InteropModel : public MessageTest {
 protected:
  InteropModel() { addInstanceOperations(operations(), &_writer); }

  std::string namesOf(const char* name) { return valuesOf("EnumerateInstanceNames", className(name), kInterop); }
  static std::size_t countOf(const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = text.find("<INSTANCENAME "); at != std::string::npos;
         at = text.find("<INSTANCENAME ", at + 1)) {
      ++count;
    }
    return count;
  }

 private:
  ServerStore _store{""};
  StoredInstanceWriter _writer{_store, nullptr};
};

TEST_F(InteropModel, EachNamespaceIsAnInstance) {
  addInteropModel(manager(), {});
  EXPECT_EQ(countOf(namesOf("CIM_Namespace")), 2U);
  manager().sink().createNamespace("root/more");
  const std::string names = namesOf("CIM_Namespace");
  EXPECT_EQ(countOf(names), 3U);
  for (const char* const name : {"root/cimv2", "root/interop", "root/more"}) {
    EXPECT_THAT(names, HasSubstr("<KEYBINDING NAME=\"Name\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">" +
                                 std::string(name) + "</KEYVALUE>"));
  }
}

TEST_F(InteropModel, OneObjectManagerTellsItsNameAndItsLanguages) {
  addInteropModel(manager(), {});
  EXPECT_EQ(countOf(namesOf("CIM_ObjectManager")), 1U);
  EXPECT_THAT(valuesOf("EnumerateInstances", className("CIM_ObjectManager") + text("LocalOnly", "false"), kInterop),
              HasSubstr("<PROPERTY NAME=\"ElementName\" TYPE=\"string\"><VALUE>QORQL</VALUE></PROPERTY>"));
  EXPECT_THAT(
      valuesOf("EnumerateInstances", className("CIM_ObjectManagerCommunicationMechanism"), kInterop),
      HasSubstr("<VALUE>DMTF:CQL</VALUE><VALUE>CIM:CQL</VALUE><VALUE>CQL</VALUE><VALUE>WQL</VALUE></VALUE.ARRAY>"));
}

TEST_F(InteropModel, TheMechanismTellsWhatThisServerDoes) {
  addInteropModel(manager(), {});
  const std::string readOnly = valuesOf("EnumerateInstances", className(kMechanism), kInterop);
  EXPECT_THAT(readOnly, HasSubstr(numbers("FunctionalProfilesSupported", {2, 6, 7, 8})));
  EXPECT_THAT(readOnly, HasSubstr(numbers("AuthenticationMechanismsSupported", {2})));
}

TEST_F(InteropModel, TheMechanismOfAWritableServerWithUsersSaysSo) {
  addInteropModel(manager(), {true, true});
  const std::string told = valuesOf("EnumerateInstances", className(kMechanism), kInterop);
  EXPECT_THAT(told, HasSubstr(numbers("FunctionalProfilesSupported", {2, 5, 6, 7, 8, 9})));
  EXPECT_THAT(told, HasSubstr(numbers("AuthenticationMechanismsSupported", {3})));
}

TEST_F(InteropModel, NobodyChangesIt) {
  addInteropModel(manager(), {});
  const std::string name = namesOf("CIM_ObjectManager");
  EXPECT_THAT(refusalOf("DeleteInstance", parameter("InstanceName", name), kInterop), HasSubstr("7: "));
}

TEST_F(InteropModel, QualifiersOfItsClassesAreDeclared) {
  load("#pragma namespace(\"root/interop\")\nQualifier Abstract : boolean = false, Scope(class);\n");
  addInteropModel(manager(), {});
  declareIndicationClasses(manager());
  addClassOperations(operations());
  const std::string told = valuesOf("EnumerateQualifiers", "", kInterop);
  EXPECT_THAT(told, HasSubstr("NAME=\"Association\" TYPE=\"boolean\" ISARRAY=\"false\" OVERRIDABLE=\"false\">"
                              "<SCOPE ASSOCIATION=\"true\"/><VALUE>FALSE</VALUE>"));
  EXPECT_THAT(told, HasSubstr("NAME=\"Key\" TYPE=\"boolean\" ISARRAY=\"false\" OVERRIDABLE=\"false\">"
                              "<SCOPE REFERENCE=\"true\" PROPERTY=\"true\"/><VALUE>FALSE</VALUE>"));
  EXPECT_THAT(told, HasSubstr("NAME=\"Abstract\" TYPE=\"boolean\" ISARRAY=\"false\"><SCOPE CLASS=\"true\"/>"));
  const std::string key = "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\" OVERRIDABLE=\"false\">";
  EXPECT_THAT(valuesOf("GetClass", className("CIM_ObjectManager"), kInterop), HasSubstr(key));
  EXPECT_THAT(valuesOf("GetClass", className("CIM_IndicationSubscription"), kInterop), HasSubstr(key));
}

TEST_F(InteropModel, ClassesAndInstancesThatAreThereStay) {
  load(
      "#pragma namespace(\"root/interop\")\nclass CIM_Namespace { [Key] string Name; };\n"
      "instance of CIM_Namespace { Name = \"told\"; };\nclass CIM_ObjectManager { [Key] string Name; };\n");
  addInteropModel(manager(), {});
  EXPECT_EQ(namesOf("CIM_Namespace"), path("CIM_Namespace", "Name", "told"));
  EXPECT_EQ(countOf(namesOf("CIM_ObjectManager")), 1U);
}

}  // namespace
