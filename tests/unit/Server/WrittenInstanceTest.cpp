// What clients write is held to what its class says of NULL, of values that are required, and of writing.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/InstanceOperations.h"
#include "Cimom/Server/StoredInstanceWriter.h"
#include "MessageFixture.h"

namespace {

using namespace messagetest;
using ::testing::HasSubstr;

constexpr const char* kModel =
    "class Part { [Key] string Id; uint8 Size = 3; uint16 Codes[]; [EmbeddedInstance(\"Part\")] string Inner; };\n"
    "class Strict { [Key, Required] string Id; [Required] string Must; [Required] uint8 Count = 1;\n"
    "  [Required(false)] string May; [Write(false)] uint8 Fixed; [Write] uint8 Loose; };\n"
    "instance of Part { Id = \"a\"; };\n"
    "instance of Strict { Id = \"a\"; Must = \"m\"; Fixed = 4; Loose = 5; };\n";

std::string valueless(const std::string& name, const std::string& type) {
  return "<PROPERTY NAME=\"" + name + "\" TYPE=\"" + type + "\"/>";
}
std::string property(const std::string& name, const std::string& type, const std::string& value) {
  return "<PROPERTY NAME=\"" + name + "\" TYPE=\"" + type + "\"><VALUE>" + value + "</VALUE></PROPERTY>";
}
std::string instance(const std::string& className, const std::string& properties) {
  return "<INSTANCE CLASSNAME=\"" + className + "\">" + properties + "</INSTANCE>";
}

class WrittenInstance : public MessageTest {
 protected:
  WrittenInstance() {
    addInstanceOperations(operations(), &_writer);
    load(kModel);
  }

  std::string refusalOfNew(const std::string& className, const std::string& properties) {
    return refusalOf("CreateInstance", parameter("NewInstance", instance(className, properties)));
  }
  std::string create(const std::string& className, const std::string& properties) {
    return valuesOf("CreateInstance", parameter("NewInstance", instance(className, properties)));
  }
  static std::string modified(const std::string& className, const std::string& properties) {
    return parameter("ModifiedInstance", "<VALUE.NAMEDINSTANCE>" + path(className, "Id", "a") +
                                             instance(className, properties) + "</VALUE.NAMEDINSTANCE>");
  }
  // Empty: it was done.
  std::string modify(const std::string& properties, const std::string& more = "") {
    return ask("ModifyInstance", modified("Strict", properties) + more);
  }
  std::string refusalOfChange(const std::string& properties, const std::string& more = "") {
    return refusalOf("ModifyInstance", modified("Strict", properties) + more);
  }
  std::string now() {
    return valuesOf("GetInstance", parameter("InstanceName", path("Strict", "Id", "a")) + text("LocalOnly", "false"));
  }

 private:
  ServerStore _store{""};
  StoredInstanceWriter _writer{_store, nullptr};
};

TEST_F(WrittenInstance, NullHasTheTypeOfItsElement) {
  const std::string id = property("Id", "string", "n");
  EXPECT_EQ(refusalOfNew("Part", id + valueless("Size", "string")),
            "13: instance of Part: property Size is uint8, the given value is string");
  EXPECT_EQ(refusalOfNew("Part", id + "<PROPERTY.ARRAY NAME=\"Size\" TYPE=\"uint8\"/>"),
            "13: instance of Part: property Size is uint8, the given value is uint8[]");
  EXPECT_EQ(refusalOfNew("Part", id + valueless("Codes", "uint16")),
            "13: instance of Part: property Codes is uint16[], the given value is uint16");
  EXPECT_EQ(refusalOfNew("Part", id + "<PROPERTY.REFERENCE NAME=\"Size\"/>"),
            "13: instance of Part: property Size is uint8, the given value is reference");
  EXPECT_EQ(create("Part", id + valueless("Size", "uint8") + valueless("Inner", "string") +
                               "<PROPERTY.ARRAY NAME=\"Codes\" TYPE=\"uint16\"/>"),
            path("Part", "Id", "n"));
  EXPECT_EQ(create("Part", property("Id", "string", "o") + "<PROPERTY NAME=\"Codes\"/>"), path("Part", "Id", "o"));
}

TEST_F(WrittenInstance, WhatIsRequiredHasAValueWhenAnInstanceIsCreated) {
  const std::string id = property("Id", "string", "n");
  const std::string must = property("Must", "string", "m");
  EXPECT_EQ(refusalOfNew("Strict", id), "4: instance of Strict: property Must is required and has no value");
  EXPECT_THAT(refusalOfNew("Strict", id + valueless("Must", "string")), HasSubstr("Must is required"));
  EXPECT_THAT(refusalOfNew("Strict", id + must + valueless("Count", "uint8")), HasSubstr("Count is required"));
  EXPECT_EQ(create("Strict", id + must + property("Fixed", "uint8", "7")), path("Strict", "Id", "n"));
}

TEST_F(WrittenInstance, WhatIsRequiredIsNotSetToNull) {
  const std::string before = now();
  EXPECT_EQ(refusalOfChange(valueless("Must", "string")),
            "4: instance of Strict: property Must is required and has no value");
  EXPECT_THAT(refusalOfChange("", propertyList({"must"})), HasSubstr("Must is required"));
  EXPECT_EQ(now(), before);
  EXPECT_EQ(modify(valueless("May", "string") + property("Must", "string", "n")), "");
  EXPECT_EQ(modify("", propertyList({"Count"})), "");
}

TEST_F(WrittenInstance, WhatIsDeclaredAsNotWrittenStaysAsItIs) {
  const std::string before = now();
  EXPECT_EQ(refusalOfChange(property("Fixed", "uint8", "9") + property("Loose", "uint8", "9")),
            "4: instance of Strict: property Fixed is not written: its class declares Write(false)");
  EXPECT_THAT(refusalOfChange(valueless("Fixed", "uint8")), HasSubstr("4: "));
  EXPECT_THAT(refusalOfChange("", propertyList({"Fixed"})), HasSubstr("4: "));
  EXPECT_EQ(now(), before);
  EXPECT_EQ(modify(property("Fixed", "uint8", "4") + property("Loose", "uint8", "6")), "");
  EXPECT_THAT(now(), HasSubstr(property("Fixed", "uint8", "4") + property("Loose", "uint8", "6")));
}

TEST_F(WrittenInstance, AKeyThatIsListedAndNotGivenStays) {
  EXPECT_EQ(modify(property("Loose", "uint8", "7"), propertyList({"id", "Loose"})), "");
  EXPECT_THAT(now(), HasSubstr(property("Id", "string", "a")));
  EXPECT_THAT(now(), HasSubstr(property("Loose", "uint8", "7")));
  EXPECT_THAT(refusalOfChange(property("Id", "string", "b"), propertyList({"Id"})), HasSubstr("keys cannot change"));
}

TEST_F(WrittenInstance, AnInstanceThatIsNotThereIsToldOfFirst) {
  const std::string none = parameter(
      "ModifiedInstance", "<VALUE.NAMEDINSTANCE>" + path("Strict", "Id", "none") +
                              instance("Strict", valueless("Must", "string") + property("Fixed", "uint8", "1")) +
                              "</VALUE.NAMEDINSTANCE>");
  EXPECT_THAT(refusalOf("ModifyInstance", none), HasSubstr("6: "));
}

}  // namespace
