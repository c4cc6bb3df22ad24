// Instances as clients read and change them.
// SPDX-License-Identifier: Apache-2.0
#include <thread>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Embedded/OuterSource.h"
#include "Cimom/Server/InstanceOperations.h"
#include "Cimom/Server/ServerModel.h"
#include "Cimom/Server/StoredInstanceWriter.h"
#include "MessageFixture.h"
#include "cimom/CQoriValue.h"

namespace {

using namespace messagetest;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kModel =
    "class Part { [Key] string Id; uint8 Size = 3; string Note; };\n"
    "class Big : Part { uint32 Weight; boolean Old[]; [EmbeddedInstance(\"Part\")] string Inner; };\n"
    "[Abstract] class Dream { [Key] string Id; };\n"
    "class Live { [Key] string Id; };\n"
    "[Association] class Link { [Key] Part REF From; [Key] Part REF To; };\n"
    "instance of Part as $a { Id = \"a\"; Size = 1; };\n"
    "instance of Big as $b { Id = \"b\"; Note = \"n <&>\"; Weight = 7; Old = {true, NULL}; };\n"
    "instance of Link { From = $a; To = $b; };\n";

// Has one instance, which nobody can change.
class OneInstance final : public InstanceProvider {
 public:
  QORString getClassName() const override { return "Live"; }
  void enumerate(const Request& request, const Emit& emit) override {
    std::vector<QORSmrPtr<IQoriValue>> values;
    for (std::size_t i = 0; i < request.propertyNames.size(); ++i) {
      values.emplace_back(new CQoriValue(QORString("one")));
    }
    emit(std::move(values));
  }
};

std::string property(const std::string& name, const std::string& type, const std::string& value) {
  return "<PROPERTY NAME=\"" + name + "\" TYPE=\"" + type + "\"><VALUE>" + value + "</VALUE></PROPERTY>";
}
std::string instance(const std::string& className, const std::string& properties) {
  return "<INSTANCE CLASSNAME=\"" + className + "\">" + properties + "</INSTANCE>";
}

class InstanceOperations : public MessageTest {
 protected:
  InstanceOperations() {
    addInstanceOperations(operations(), &_writer);
    load(kModel);
    manager().registerProvider("root/cimv2", std::make_shared<OneInstance>());
  }

  std::string get(const std::string& className, const std::string& id, const std::string& more = "") {
    return valuesOf("GetInstance",
                    parameter("InstanceName", path(className, "Id", id)) + text("LocalOnly", "false") + more);
  }
  static std::string newInstance(const std::string& className, const std::string& properties) {
    return parameter("NewInstance", instance(className, properties));
  }
  static std::string modified(const std::string& className, const std::string& id, const std::string& properties) {
    return parameter("ModifiedInstance", "<VALUE.NAMEDINSTANCE>" + path(className, "Id", id) +
                                             instance(className, properties) + "</VALUE.NAMEDINSTANCE>");
  }

 private:
  ServerStore _store{""};
  StoredInstanceWriter _writer{_store, nullptr};
};

TEST_F(InstanceOperations, AnInstanceWithAllOrOwnOrListedProperties) {
  const std::string all =
      instance("Big", property("Id", "string", "b") + property("Size", "uint8", "3") +
                          property("Note", "string", "n &lt;&amp;&gt;") + property("Weight", "uint32", "7") +
                          "<PROPERTY.ARRAY NAME=\"Old\" TYPE=\"boolean\"><VALUE.ARRAY><VALUE>TRUE"
                          "</VALUE><VALUE.NULL/></VALUE.ARRAY></PROPERTY.ARRAY>"
                          "<PROPERTY NAME=\"Inner\" TYPE=\"string\" EmbeddedObject=\"instance\">"
                          "</PROPERTY>");
  EXPECT_EQ(get("big", "b"), all);
  const std::string own = valuesOf("GetInstance", parameter("InstanceName", path("Big", "Id", "b")));
  EXPECT_THAT(own, HasSubstr("<INSTANCE CLASSNAME=\"Big\"><PROPERTY NAME=\"Weight\""));
  EXPECT_THAT(own, Not(HasSubstr("\"Id\"")));
  EXPECT_EQ(get("Big", "b", propertyList({"SIZE", "None", "size"})), instance("Big", property("Size", "uint8", "3")));
  EXPECT_EQ(get("Big", "b", propertyList({})), instance("Big", ""));
  EXPECT_EQ(get("Big", "b", text("IncludeQualifiers", "true")), all);
  EXPECT_EQ(
      valuesOf("GetInstance", parameter("InstanceName", path("Big", "Id", "b")) + propertyList({"Size", "weight"})),
      instance("Big", property("Weight", "uint32", "7")));
}

TEST_F(InstanceOperations, OriginsAreToldWhereTheyAreAskedFor) {
  EXPECT_EQ(get("Big", "b", propertyList({"Size", "Weight"}) + text("IncludeClassOrigin", "true")),
            "<INSTANCE CLASSNAME=\"Big\"><PROPERTY NAME=\"Size\" TYPE=\"uint8\" CLASSORIGIN=\"Part\" "
            "PROPAGATED=\"true\"><VALUE>3</VALUE></PROPERTY><PROPERTY NAME=\"Weight\" TYPE=\"uint32\" "
            "CLASSORIGIN=\"Big\"><VALUE>7</VALUE></PROPERTY></INSTANCE>");
  EXPECT_THAT(valuesOf("EnumerateInstances", className("Part") + text("IncludeClassOrigin", "true") +
                                                 text("LocalOnly", "false") + propertyList({"Note"})),
              HasSubstr("<INSTANCE CLASSNAME=\"Big\"><PROPERTY NAME=\"Note\" TYPE=\"string\" CLASSORIGIN=\"Part\" "
                        "PROPAGATED=\"true\">"));
}

TEST_F(InstanceOperations, InstancesOfAClassAndThoseBelow) {
  EXPECT_EQ(valuesOf("EnumerateInstances", className("part") + propertyList({"Weight"}) + text("LocalOnly", "false")),
            "<VALUE.NAMEDINSTANCE>" + path("Part", "Id", "a") + instance("Part", "") +
                "</VALUE.NAMEDINSTANCE><VALUE.NAMEDINSTANCE>" + path("Big", "Id", "b") +
                instance("Big", property("Weight", "uint32", "7")) + "</VALUE.NAMEDINSTANCE>");
  const std::string narrow =
      valuesOf("EnumerateInstances", className("Part") + text("DeepInheritance", "FALSE") + text("LocalOnly", "FALSE"));
  EXPECT_THAT(narrow, HasSubstr("<INSTANCE CLASSNAME=\"Big\"><PROPERTY NAME=\"Id\""));
  EXPECT_THAT(narrow, Not(HasSubstr("Weight")));
  EXPECT_THAT(valuesOf("EnumerateInstances", className("Big")), Not(HasSubstr("PROPERTY NAME=\"Id\"")));
  EXPECT_EQ(valuesOf("EnumerateInstanceNames", className("Part")), path("Part", "Id", "a") + path("Big", "Id", "b"));
  EXPECT_EQ(valuesOf("EnumerateInstanceNames", className("Live")), path("Live", "Id", "one"));
  EXPECT_EQ(valuesOf("EnumerateInstances", className("Dream")), "");
}

TEST_F(InstanceOperations, ReferencesTellNamespaces) {
  const auto end = [](const char* className, const char* id) {
    return "<VALUE.REFERENCE><LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE "
           "NAME=\"cimv2\"/></LOCALNAMESPACEPATH>" +
           path(className, "Id", id) + "</LOCALINSTANCEPATH></VALUE.REFERENCE>";
  };
  const std::string name = "<INSTANCENAME CLASSNAME=\"Link\"><KEYBINDING NAME=\"From\">" + end("Part", "a") +
                           "</KEYBINDING><KEYBINDING NAME=\"To\">" + end("Big", "b") + "</KEYBINDING></INSTANCENAME>";
  EXPECT_EQ(valuesOf("EnumerateInstanceNames", className("Link")), name);
  EXPECT_THAT(valuesOf("GetInstance", parameter("InstanceName", name)),
              HasSubstr("<PROPERTY.REFERENCE NAME=\"From\">" + end("Part", "a")));
  const std::string bare = "<INSTANCENAME CLASSNAME=\"link\"><KEYBINDING NAME=\"to\"><VALUE.REFERENCE>" +
                           path("big", "ID", "b") + "</VALUE.REFERENCE></KEYBINDING><KEYBINDING NAME=\"FROM\">" +
                           "<VALUE.REFERENCE>" + path("part", "id", "a") +
                           "</VALUE.REFERENCE></KEYBINDING></INSTANCENAME>";
  EXPECT_THAT(valuesOf("GetInstance", parameter("InstanceName", bare)), HasSubstr("<INSTANCE CLASSNAME=\"Link\">"));
}

TEST_F(InstanceOperations, KeysWithoutATypeAreReadAsTheClassDeclaresThem) {
  load(
      "class Slot { [Key] uint64 Number; [Key] boolean Left; [Key] datetime Since; };\n"
      "instance of Slot { Number = 18446744073709551615; Left = true; Since = \"20260102030405.000000+000\"; };\n");
  const auto named = [](const std::string& number, const std::string& left) {
    const auto key = [](const std::string& name, const std::string& value) {
      return "<KEYBINDING NAME=\"" + name + "\"><KEYVALUE>" + value + "</KEYVALUE></KEYBINDING>";
    };
    return parameter("InstanceName", "<INSTANCENAME CLASSNAME=\"slot\">" + key("number", number) + key("Left", left) +
                                         key("Since", "20260102030405.000000+000") + "</INSTANCENAME>");
  };
  EXPECT_THAT(valuesOf("GetInstance", named("18446744073709551615", "TRUE")),
              HasSubstr("<INSTANCE CLASSNAME=\"Slot\">"));
  EXPECT_THAT(refusalOf("GetInstance", named("7", "true")), HasSubstr("6: "));
  EXPECT_THAT(refusalOf("GetInstance", named("seven", "true")), HasSubstr("6: "));
  EXPECT_THAT(refusalOf("GetInstance", named("18446744073709551615", "perhaps")), HasSubstr("6: "));
}

TEST_F(InstanceOperations, AKeyWithoutANameIsTheOneThatTheClassHas) {
  load("class Pair { [Key] string A; [Key] string B; }; instance of Pair { A = \"a\"; B = \"b\"; };");
  const auto bare = [](const std::string& className, const std::string& keys) {
    return parameter("InstanceName", "<INSTANCENAME CLASSNAME=\"" + className + "\">" + keys + "</INSTANCENAME>");
  };
  const std::string key = "<KEYVALUE VALUETYPE=\"string\">a</KEYVALUE>";
  EXPECT_THAT(valuesOf("GetInstance", bare("part", key)), HasSubstr("<INSTANCE CLASSNAME=\"Part\">"));
  EXPECT_THAT(refusalOf("GetInstance", bare("Part", "<KEYVALUE>z</KEYVALUE>")), HasSubstr("6: "));
  EXPECT_EQ(refusalOf("GetInstance", bare("Pair", key)),
            "4: a key without a name does not do for class Pair, which has 2 keys");
  EXPECT_EQ(ask("DeleteInstance", bare("Part", key)), "");
  EXPECT_THAT(refusalOf("GetInstance", bare("Part", key)), HasSubstr("6: "));
}

TEST_F(InstanceOperations, KeysOfPathsWithinPathsAreReadAsTheirClassesDeclareThem) {
  load(
      "class Slot { [Key] uint64 Number; };\n"
      "[Association] class Fits { [Key] Slot REF In; [Key] Part REF What; };\n"
      "instance of Slot { Number = 7; };\n");
  const auto end = [](const std::string& className, const std::string& key) {
    return "<VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"" + className + "\">" + key +
           "</INSTANCENAME></VALUE.REFERENCE>";
  };
  const std::string in = end("slot", "<KEYBINDING NAME=\"NUMBER\"><KEYVALUE>7</KEYVALUE></KEYBINDING>");
  const std::string what = end("part", "<KEYVALUE>a</KEYVALUE>");
  const auto reference = [](const std::string& name, const std::string& value) {
    return "<PROPERTY.REFERENCE NAME=\"" + name + "\">" + value + "</PROPERTY.REFERENCE>";
  };
  EXPECT_THAT(valuesOf("CreateInstance", newInstance("Fits", reference("In", in) + reference("What", what))),
              HasSubstr("<KEYBINDING NAME=\"Number\"><KEYVALUE VALUETYPE=\"numeric\" TYPE=\"uint64\">7<"));
  const std::string name = "<INSTANCENAME CLASSNAME=\"Fits\"><KEYBINDING NAME=\"In\">" + in +
                           "</KEYBINDING><KEYBINDING NAME=\"What\">" + what + "</KEYBINDING></INSTANCENAME>";
  EXPECT_THAT(valuesOf("GetInstance", parameter("InstanceName", name)), HasSubstr("<INSTANCE CLASSNAME=\"Fits\">"));
}

TEST_F(InstanceOperations, AParameterOfAnotherTypeIsRefusedByItsNameThoughNobodyNeedsIt) {
  const std::string changed = modified("Part", "a", property("Note", "string", "new"));
  EXPECT_EQ(refusalOf("ModifyInstance", changed + text("IncludeQualifiers", "perhaps")),
            "4: IncludeQualifiers is not a boolean");
  EXPECT_EQ(refusalOf("EnumerateInstances", className("Part") + text("LocalOnly", "") + text("DeepInheritance", "2")),
            "4: LocalOnly is not a boolean");
  EXPECT_EQ(refusalOf("GetInstance", parameter("InstanceName", path("None", "Id", "a")) + text("PropertyList", "Id")),
            "4: PropertyList is not an array of texts");
}

TEST_F(InstanceOperations, WhatIsNotThereIsRefused) {
  const std::string name = parameter("InstanceName", path("Part", "Id", "z"));
  for (const char* const operation : {"GetInstance", "DeleteInstance"}) {
    EXPECT_THAT(refusalOf(operation, name, "root/none"), HasSubstr("3: ")) << operation;
    EXPECT_THAT(refusalOf(operation, parameter("InstanceName", path("None", "Id", "a"))), HasSubstr("5: "));
    EXPECT_THAT(refusalOf(operation, name), HasSubstr("6: ")) << operation;
    EXPECT_THAT(refusalOf(operation, parameter("InstanceName", path("Part", "Key", "a"))), HasSubstr("6: "));
    EXPECT_THAT(refusalOf(operation, ""), HasSubstr("4: ")) << operation;
    EXPECT_THAT(refusalOf(operation, name + text("Colour", "red")), HasSubstr("4: ")) << operation;
  }
  for (const char* const operation : {"EnumerateInstances", "EnumerateInstanceNames"}) {
    EXPECT_THAT(refusalOf(operation, className("Part"), "root/none"), HasSubstr("3: ")) << operation;
    EXPECT_THAT(refusalOf(operation, className("None")), HasSubstr("5: ")) << operation;
    EXPECT_THAT(refusalOf(operation, ""), HasSubstr("4: ")) << operation;
    EXPECT_THAT(refusalOf(operation, className("Part") + text("Colour", "red")), HasSubstr("4: ")) << operation;
  }
}

TEST_F(InstanceOperations, AnInstanceIsCreated) {
  EXPECT_EQ(valuesOf("CreateInstance",
                     newInstance("big", property("id", "string", "c") + property("Weight", "uint32", "9") +
                                            "<PROPERTY.ARRAY NAME=\"Old\" TYPE=\"boolean\"><VALUE.ARRAY><VALUE>false"
                                            "</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>")),
            path("Big", "Id", "c"));
  const std::string made = get("Big", "c");
  EXPECT_THAT(made, HasSubstr(property("Size", "uint8", "3")));
  EXPECT_THAT(made, HasSubstr(property("Weight", "uint32", "9")));
  EXPECT_THAT(made, HasSubstr("<VALUE.ARRAY><VALUE>FALSE</VALUE></VALUE.ARRAY>"));
  EXPECT_THAT(refusalOf("CreateInstance", newInstance("Big", property("Id", "string", "c"))), HasSubstr("11: "));
}

TEST_F(InstanceOperations, EmbeddedInstancesAndReferencesComeInAndGoOut) {
  const std::string inner =
      "&lt;INSTANCE CLASSNAME=\"Part\"&gt;&lt;PROPERTY NAME=\"id\" TYPE=\"string\"&gt;"
      "&lt;VALUE&gt;in&lt;/VALUE&gt;&lt;/PROPERTY&gt;&lt;/INSTANCE&gt;";
  EXPECT_EQ(valuesOf("CreateInstance",
                     newInstance("Big", property("Id", "string", "e") +
                                            "<PROPERTY NAME=\"Inner\" TYPE=\"string\" EmbeddedObject=\"instance\">"
                                            "<VALUE>" +
                                            inner + "</VALUE></PROPERTY>")),
            path("Big", "Id", "e"));
  EXPECT_THAT(get("Big", "e"),
              HasSubstr("&lt;PROPERTY NAME=&quot;Size&quot; TYPE=&quot;uint8&quot;&gt;&lt;VALUE&gt;3&lt;/VALUE&gt;"));
  const std::string reference = "<PROPERTY.REFERENCE NAME=\"From\"><VALUE.REFERENCE>" + path("part", "ID", "a") +
                                "</VALUE.REFERENCE></PROPERTY.REFERENCE>";
  const std::string other =
      "<PROPERTY.REFERENCE NAME=\"To\"><VALUE.REFERENCE><INSTANCEPATH><NAMESPACEPATH><HOST>here"
      "</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/>"
      "</LOCALNAMESPACEPATH></NAMESPACEPATH>" +
      path("Part", "Id", "a") + "</INSTANCEPATH></VALUE.REFERENCE></PROPERTY.REFERENCE>";
  EXPECT_THAT(valuesOf("CreateInstance", newInstance("Link", reference + other)),
              HasSubstr("<NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>" + path("Part", "Id", "a")));
  EXPECT_THAT(refusalOf("CreateInstance", newInstance("Link", reference + other)), HasSubstr("11: "));
}

TEST_F(InstanceOperations, WhatDoesNotFitTheClassIsNotCreated) {
  const std::string id = property("Id", "string", "x");
  EXPECT_THAT(refusalOf("CreateInstance", newInstance("Part", id), "root/none"), HasSubstr("3: "));
  EXPECT_THAT(refusalOf("CreateInstance", ""), HasSubstr("4: "));
  EXPECT_THAT(refusalOf("CreateInstance", newInstance("None", id)), HasSubstr("5: "));
  EXPECT_THAT(refusalOf("CreateInstance", newInstance("Dream", id)), HasSubstr("5: "));
  EXPECT_THAT(refusalOf("CreateInstance", newInstance("Live", id)), HasSubstr("7: "));
  EXPECT_THAT(refusalOf("CreateInstance", newInstance("Part", "")), HasSubstr("4: "));
  EXPECT_THAT(refusalOf("CreateInstance", newInstance("Part", id + id)), HasSubstr("4: "));
  EXPECT_THAT(refusalOf("CreateInstance", newInstance("Part", id + property("Colour", "string", "red"))),
              HasSubstr("12: class Part has no property Colour"));
  EXPECT_EQ(refusalOf("CreateInstance", newInstance("Part", id + property("Size", "string", "4"))),
            "13: instance of Part: property Size is uint8, the given value is string");
  EXPECT_THAT(refusalOf("CreateInstance", newInstance("Part", id + "<PROPERTY.ARRAY NAME=\"Size\" TYPE=\"uint8\">"
                                                                   "<VALUE.ARRAY/></PROPERTY.ARRAY>")),
              HasSubstr("13: "));
  EXPECT_THAT(refusalOf("CreateInstance", newInstance("Part", id + property("Size", "uint8", "256"))),
              HasSubstr("4: "));
  EXPECT_THAT(refusalOf("GetInstance", parameter("InstanceName", path("Part", "Id", "x"))), HasSubstr("6: "));
}

TEST_F(InstanceOperations, WhatIsWrittenFitsWhatTheClassSaysOfReferencesArraysAndEmbeddedObjects) {
  load(
      "class Slot { [Key] string Id; uint16 Two[2]; [EmbeddedInstance(\"Big\")] string Held; };"
      "[Association] class Fits { [Key] Big REF From; [Key] Part REF To; };");
  const auto reference = [](const std::string& name, const std::string& value) {
    return "<PROPERTY.REFERENCE NAME=\"" + name + "\"><VALUE.REFERENCE>" + value +
           "</VALUE.REFERENCE></PROPERTY.REFERENCE>";
  };
  const auto link = [&](const std::string& from) {
    return newInstance("Fits", reference("From", from) + reference("To", path("Big", "Id", "b")));
  };
  EXPECT_EQ(refusalOf("CreateInstance", link(path("Part", "Id", "a"))),
            "4: instance of Fits: property From refers to a Big, the given value to &quot;root/cimv2:Part.Id=&quot;a"
            "&quot;&quot;");
  EXPECT_THAT(refusalOf("CreateInstance", link(path("None", "Id", "a"))), HasSubstr("whose class is not there"));
  EXPECT_EQ(refusalOf("CreateInstance", link("<CLASSNAME NAME=\"Big\"/>")),
            "4: instance of Fits: property From refers to an instance, and &quot;root/cimv2:Big&quot; is none");
  EXPECT_THAT(valuesOf("CreateInstance", link(path("Big", "Id", "to come"))), HasSubstr("<KEYBINDING NAME=\"From\">"));
  const auto slot = [](const std::string& values) {
    return newInstance("Slot", property("Id", "string", "s") + values);
  };
  const auto numbers = [](const std::string& values) {
    return "<PROPERTY.ARRAY NAME=\"Two\" TYPE=\"uint16\"><VALUE.ARRAY>" + values + "</VALUE.ARRAY></PROPERTY.ARRAY>";
  };
  const std::string one = "<VALUE>1</VALUE>";
  EXPECT_EQ(refusalOf("CreateInstance", slot(numbers(one + one + one))),
            "13: instance of Slot: property Two has 2 elements, 3 are given");
  const auto held = [](const std::string& element) {
    return "<PROPERTY NAME=\"Held\" TYPE=\"string\" EmbeddedObject=\"object\"><VALUE><![CDATA[" + element +
           "]]></VALUE></PROPERTY>";
  };
  EXPECT_EQ(refusalOf("CreateInstance", slot(held(instance("Part", property("Id", "string", "in"))))),
            "13: instance of Slot: property Held holds a Big, the given value is a Part");
  EXPECT_EQ(refusalOf("CreateInstance", slot(held("<CLASS NAME=\"Big\"/>"))),
            "13: instance of Slot: property Held holds a Big, the given value is the class Big");
  EXPECT_THAT(refusalOf("CreateInstance", slot(held(instance("None", "")))), HasSubstr("5: "));
  EXPECT_EQ(valuesOf("CreateInstance", slot(numbers(one) + held(instance("Big", property("Id", "string", "in"))))),
            path("Slot", "Id", "s"));
}

TEST_F(InstanceOperations, AKeyThatNoPathCouldTellIsRefused) {
  const std::string longest(std::size_t{1} << 16, 'x');
  EXPECT_EQ(refusalOf("CreateInstance", newInstance("Part", property("Id", "string", longest + "x"))),
            "4: instance of Part: key Id is longer than 65536 bytes");
  EXPECT_EQ(valuesOf("CreateInstance", newInstance("Part", property("Id", "string", longest))),
            path("Part", "Id", longest));
  EXPECT_EQ(ask("DeleteInstance", parameter("InstanceName", path("Part", "Id", longest))), "");
}

TEST_F(InstanceOperations, AnInstanceIsModified) {
  EXPECT_EQ(ask("ModifyInstance", modified("part", "a", property("Note", "string", "new"))), "");
  EXPECT_THAT(get("Part", "a"), HasSubstr(property("Size", "uint8", "1") + property("Note", "string", "new")));
  EXPECT_EQ(ask("ModifyInstance",
                modified("Part", "a", property("Note", "string", "other")) + propertyList({"SIZE", "size"})),
            "");
  EXPECT_THAT(get("Part", "a"), HasSubstr(property("Size", "uint8", "3") + property("Note", "string", "new")));
  EXPECT_EQ(ask("ModifyInstance", modified("Part", "a", property("Note", "string", "x")) + propertyList({})), "");
  EXPECT_THAT(get("Part", "a"), HasSubstr(property("Note", "string", "new")));
  EXPECT_EQ(ask("ModifyInstance", modified("Part", "a", "<PROPERTY NAME=\"Note\" TYPE=\"string\"/>")), "");
  EXPECT_THAT(get("Part", "a"), HasSubstr("<PROPERTY NAME=\"Note\" TYPE=\"string\"></PROPERTY>"));
}

TEST_F(InstanceOperations, WhatCannotBeModifiedIsRefused) {
  const std::string note = property("Note", "string", "new");
  EXPECT_THAT(refusalOf("ModifyInstance", modified("Part", "a", note), "root/none"), HasSubstr("3: "));
  EXPECT_THAT(refusalOf("ModifyInstance", ""), HasSubstr("4: "));
  EXPECT_THAT(refusalOf("ModifyInstance", parameter("ModifiedInstance", instance("Part", note))), HasSubstr("4: "));
  EXPECT_THAT(refusalOf("ModifyInstance", modified("None", "a", note)), HasSubstr("5: "));
  EXPECT_THAT(refusalOf("ModifyInstance", modified("Part", "z", note)), HasSubstr("6: "));
  EXPECT_THAT(refusalOf("ModifyInstance", modified("Live", "one", property("Id", "string", "one"))), HasSubstr("7: "));
  EXPECT_THAT(refusalOf("ModifyInstance", modified("Part", "a", property("Id", "string", "b"))), HasSubstr("4: "));
  EXPECT_THAT(refusalOf("ModifyInstance", modified("Part", "a", property("Colour", "string", "b"))), HasSubstr("12: "));
  EXPECT_THAT(refusalOf("ModifyInstance", modified("Part", "a", note) + propertyList({"Colour"})), HasSubstr("12: "));
  EXPECT_THAT(refusalOf("ModifyInstance", modified("Part", "a", property("Size", "sint8", "1"))), HasSubstr("13: "));
}

TEST_F(InstanceOperations, AnInstanceIsDeleted) {
  EXPECT_EQ(ask("DeleteInstance", parameter("InstanceName", path("part", "id", "a"))), "");
  EXPECT_EQ(valuesOf("EnumerateInstanceNames", className("Part")), path("Big", "Id", "b"));
  EXPECT_THAT(refusalOf("DeleteInstance", parameter("InstanceName", path("Live", "Id", "one"))), HasSubstr("7: "));
}

TEST_F(InstanceOperations, APathOfAnotherNamespaceThanTheCallsIsRefused) {
  load(
      "#pragma namespace(\"root/more\")\nclass Part { [Key] string Id; string Note; }; instance of Part { Id = \"a\"; "
      "};");
  const auto in = [](const std::string& nameSpace) {
    return "<LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"" + nameSpace +
           "\"/></LOCALNAMESPACEPATH>" + path("Part", "Id", "a") + "</LOCALINSTANCEPATH>";
  };
  for (const char* const operation : {"GetInstance", "DeleteInstance"}) {
    EXPECT_THAT(
        refusalOf(operation, parameter("InstanceName", "<VALUE.REFERENCE>" + in("more") + "</VALUE.REFERENCE>")),
        HasSubstr("4: the path root/more:Part.Id"));
  }
  const std::string changed =
      "<VALUE.INSTANCEWITHPATH><INSTANCEPATH><NAMESPACEPATH><HOST>h</HOST><LOCALNAMESPACEPATH><NAMESPACE "
      "NAME=\"root\"/>"
      "<NAMESPACE NAME=\"more\"/></LOCALNAMESPACEPATH></NAMESPACEPATH>" +
      path("Part", "Id", "a") + "</INSTANCEPATH>" + instance("Part", property("Note", "string", "new")) +
      "</VALUE.INSTANCEWITHPATH>";
  EXPECT_THAT(refusalOf("ModifyInstance", parameter("ModifiedInstance", changed)), HasSubstr("4: "));
  EXPECT_EQ(valuesOf("EnumerateInstanceNames", className("Part"), "root/more"), path("Part", "Id", "a"));
  EXPECT_EQ(ask("DeleteInstance", parameter("InstanceName", "<VALUE.REFERENCE>" + in("CIMV2") + "</VALUE.REFERENCE>")),
            "");
}

// Has nothing, and looks whether another object manager could take the place of the one that asks.
class ReplacingSource final : public OuterSource {
 public:
  explicit ReplacingSource(CountedModel& model) : _model(model) {}
  bool provideClass(CimDeclarationSink&, const QORString&, const QORString&) override { return true; }
  void provideQualifiers(CimDeclarationSink&, const QORString&) override {}
  std::vector<QORString> classNames(const QORString&) override { return look(), std::vector<QORString>(); }
  Objects instances(CimDeclarationSink&, const Request&) override { return look(), Objects(); }
  QORSmrPtr<IQoriObject> instance(CimDeclarationSink&, const Request&, const IQoriInstanceName&) override {
    return look(), QORSmrPtr<IQoriObject>();
  }
  Associations associations(CimDeclarationSink&, const Request&) override { return {}; }
  Objects references(CimDeclarationSink&, const Request&, const IQoriInstanceName&) override { return {}; }

  std::vector<bool> couldReplace;

 private:
  void look() {
    couldReplace.push_back(_model.replace(
        _model.lease(), [] {}, std::chrono::milliseconds(0)));
  }

  CountedModel& _model;
};

TEST_F(InstanceOperations, WhileOthersAreAskedAnotherModelCanTakeThePlace) {
  CountedModel model(sharedManager());
  const auto outer = std::make_shared<ReplacingSource>(model);
  manager().setOuterSource(outer);
  CimXmlService service(
      operations(), [&] { return model.lease(); }, [&] { return model.leaseForChange(); });
  const auto isDone = [&](const char* operation, const std::string& parameters) {
    const HttpReply reply = service.serve(post(operationCall(operation, parameters)));
    return reply.note.status == 0;
  };
  EXPECT_TRUE(isDone("CreateInstance", newInstance("Part", property("Id", "string", "x"))));
  EXPECT_FALSE(isDone("ModifyInstance", modified("Part", "none", "")));
  EXPECT_FALSE(isDone("DeleteInstance", parameter("InstanceName", path("Part", "Id", "none"))));
  EXPECT_EQ(outer->couldReplace, std::vector<bool>(3, true));
}

// Has instances for seconds.
class ManyInstances final : public InstanceProvider {
 public:
  QORString getClassName() const override { return "Long"; }
  void enumerate(const Request& request, const Emit& emit) override {
    for (int i = 0; i < 10000; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      emit(std::vector<QORSmrPtr<IQoriValue>>(
          request.propertyNames.size(), QORSmrPtr<IQoriValue>(new CQoriValue(QORString(std::to_string(i).c_str())))));
    }
    isThrough = true;
  }

  bool isThrough = false;
};

TEST_F(InstanceOperations, ALongEnumerationOfLiveInstancesEndsWithItsTimeAndWithItsClient) {
  load("class Long { [Key] string Id; };");
  const auto many = std::make_shared<ManyInstances>();
  manager().registerProvider("root/cimv2", many);
  ServerOperations hasty(std::chrono::milliseconds(20));
  ServerOperations patient;
  for (ServerOperations* const each : {&hasty, &patient}) addInstanceOperations(*each, nullptr);
  HttpRequest request = post(operationCall("EnumerateInstances", className("Long")));
  HttpReply late = CimXmlService(hasty, [this] { return sharedManager(); }).serve(request);
  EXPECT_EQ(late.note.status, 27U);
  EXPECT_EQ(late.note.statusText, "the operation was stopped: it took more than 0 seconds");
  request.client.stopReason = [] { return StopReason::ClientGone; };
  HttpReply gone = CimXmlService(patient, [this] { return sharedManager(); }).serve(request);
  EXPECT_EQ(gone.note.status, 1U);
  EXPECT_EQ(gone.note.statusText, "the client has gone");
  EXPECT_FALSE(many->isThrough);
}

TEST_F(InstanceOperations, AReadOnlyServerRefusesChanges) {
  addInstanceOperations(operations(), nullptr);
  const std::string name = parameter("InstanceName", path("Part", "Id", "a"));
  EXPECT_EQ(refusalOf("DeleteInstance", name),
            "2: this server is read-only; it takes changes when it is started with --writable");
  EXPECT_THAT(refusalOf("CreateInstance", newInstance("Part", property("Id", "string", "x"))), HasSubstr("2: "));
  EXPECT_THAT(refusalOf("ModifyInstance", modified("Part", "a", "")), HasSubstr("2: "));
  EXPECT_THAT(get("Part", "a"), HasSubstr("<INSTANCE"));
}

}  // namespace
