// Qualifiers and classes.
// SPDX-License-Identifier: Apache-2.0
#include "MofFixture.h"

namespace {

using moftest::MofTest;

class MofClass : public MofTest {
 protected:
  CimPropertyDeclaration property(const char* className, const char* name) {
    CimPropertyDeclaration found;
    EXPECT_TRUE(_manager.sink().describeProperty("root/cimv2", className, name, found)) << className << '.' << name;
    return found;
  }
  CimClassDeclaration declared(const char* className) {
    CimClassDeclaration found;
    EXPECT_TRUE(_manager.describeClass("root/cimv2", className, found)) << className;
    return found;
  }
};

TEST_F(MofClass, DeclaresPropertiesOfEveryType) {
  load(
      "class T { [Key] string A; uint8 B; sint8 C; uint16 D; sint16 E; uint32 F; sint32 G; uint64 H; sint64 I;\n"
      "  real32 J; real64 K; boolean L; datetime M; char16 N; UINT32 O; string P[]; uint8 Q[4]; };");
  EXPECT_STREQ(property("T", "H").type->getName().c_str(), "uint64");
  EXPECT_STREQ(property("T", "O").type->getName().c_str(), "uint32");
  EXPECT_STREQ(property("T", "N").type->getName().c_str(), "char16");
  EXPECT_TRUE(property("T", "P").type->isArray());
  EXPECT_EQ(property("T", "P").arraySize, -1);
  EXPECT_EQ(property("T", "Q").arraySize, 4);
  EXPECT_TRUE(property("T", "A").hasFlag("Key"));
}

// Without a declaration those of the standard have its types and flavors; others pass to subclasses and may be
// overridden.
TEST_F(MofClass, StandardQualifiersNeedNoDeclaration) {
  struct Row {
    const char* name;
    const char* value;
    const char* type;
    bool toSubclass;
    bool overridable;
    bool translatable;
  };
  const std::vector<Row> rows = {{"Abstract", "", "boolean", false, true, false},
                                 {"Aggregate", "", "boolean", true, false, false},
                                 {"Aggregation", "", "boolean", true, false, false},
                                 {"ArrayType", "(\"T\")", "string", true, false, false},
                                 {"Association", "", "boolean", true, false, false},
                                 {"BitMap", "{\"T\"}", "string[]", true, true, false},
                                 {"BitValues", "{\"T\"}", "string[]", true, true, true},
                                 {"Composition", "", "boolean", true, false, false},
                                 {"Deprecated", "{\"T\"}", "string[]", false, true, false},
                                 {"Description", "(\"T\")", "string", true, true, true},
                                 {"DisplayName", "(\"T\")", "string", true, true, true},
                                 {"EmbeddedInstance", "(\"T\")", "string", true, true, false},
                                 {"EmbeddedObject", "", "boolean", true, false, false},
                                 {"Exception", "", "boolean", true, false, false},
                                 {"Experimental", "", "boolean", false, true, false},
                                 {"Indication", "", "boolean", true, false, false},
                                 {"Key", "", "boolean", true, false, false},
                                 {"MappingStrings", "{\"T\"}", "string[]", true, true, false},
                                 {"Max", "(1)", "uint32", true, true, false},
                                 {"MaxLen", "(1)", "uint32", true, true, false},
                                 {"MaxValue", "(-1)", "sint64", true, true, false},
                                 {"Min", "(1)", "uint32", true, true, false},
                                 {"MinLen", "(1)", "uint32", true, true, false},
                                 {"MinValue", "(-1)", "sint64", true, true, false},
                                 {"ModelCorrespondence", "{\"T\"}", "string[]", true, true, false},
                                 {"OctetString", "", "boolean", true, false, false},
                                 {"Propagated", "(\"T\")", "string", true, false, false},
                                 {"Required", "", "boolean", true, false, false},
                                 {"Terminal", "", "boolean", false, true, false},
                                 {"ValueMap", "{\"T\"}", "string[]", true, true, false},
                                 {"Values", "{\"T\"}", "string[]", true, true, true},
                                 {"Version", "(\"T\")", "string", false, true, true},
                                 {"Weak", "", "boolean", true, false, false},
                                 {"OfOnesOwn", "", "boolean", true, true, false},
                                 {"Several", "{\"T\"}", "string[]", true, true, false}};
  std::string mof = "class T { [Key] string K;";
  for (const Row& row : rows) mof += std::string(" [") + row.name + row.value + "] string With" + row.name + ";";
  load(mof + " };");
  for (const Row& row : rows) {
    const CimPropertyDeclaration found = property("T", (std::string("With") + row.name).c_str());
    ASSERT_EQ(found.qualifiers.size(), 1U) << row.name;
    const CimQualifier& qualifier = found.qualifiers.front();
    EXPECT_EQ(qualifier.toSubclass, row.toSubclass) << row.name;
    EXPECT_EQ(qualifier.overridable, row.overridable) << row.name;
    EXPECT_EQ(qualifier.translatable, row.translatable) << row.name;
    if (qualifier.value.IsNull()) continue;
    const QORString& type = qualifier.value->getType()->getName();
    EXPECT_EQ(std::string(type.view()) + (qualifier.value->isArray() ? "[]" : ""), row.type) << row.name;
  }
}

TEST_F(MofClass, TakesDefaultsInstancesDoNotGive) {
  load(
      "class T { [Key] string K = \"main\"; uint8 N = 7; string S[] = {\"a\", \"b\"}; boolean B = TRUE; uint8 U; };\n"
      "instance of T { }; instance of T { K = \"other\"; N = NULL; };");
  const auto instances = instancesOf("T");
  ASSERT_EQ(instances.size(), 2U);
  EXPECT_EQ(pathOf(instances[0]), "root/cimv2:T.K=\"main\"");
  EXPECT_EQ(textOf(instances[0], "N"), "7");
  EXPECT_EQ(textOf(instances[0], "S"), "a,b");
  EXPECT_EQ(textOf(instances[0], "B"), "TRUE");
  EXPECT_EQ(textOf(instances[0], "U"), "NULL");
  EXPECT_EQ(textOf(instances[1], "N"), "NULL");
}

TEST_F(MofClass, InheritsInAnyOrder) {
  load(
      "instance of Leaf { K = \"a\"; B = 2; };\n"
      "class Leaf : Middle { uint8 C; };\n"
      "class Middle : Root { uint8 B; };\n"
      "class Root { [Key] string K; uint8 A; };");
  EXPECT_EQ(instancesOf("Root").size(), 1U);
  EXPECT_STREQ(declared("Leaf").superClass.c_str(), "Middle");
}

TEST_F(MofClass, DeclaresAssociationsAndIndications) {
  load(
      "class A { [Key] string K; };\n"
      "[Association] class Link { [Key] A REF From; [Key] A ref To; };\n"
      "[Indication, Abstract] class Ind { string S; };");
  EXPECT_TRUE(_manager.isAssociation("root/cimv2", "Link"));
  EXPECT_STREQ(property("Link", "From").referenceClass.c_str(), "A");
  EXPECT_STREQ(property("Link", "From").type->getName().c_str(), "reference");
  EXPECT_NE(declared("Ind").qualifiers.size(), 0U);
}

TEST_F(MofClass, DeclaresMethodsWithParameters) {
  load(
      "class A { [Key] string K; };\n"
      "class T { [Key] string K;\n"
      "  [Description(\"x\")] uint32 Start([In] uint16 Mode, [In(false), Out] string Log[], A REF Where, A REF "
      "All[3]);\n"
      "  boolean Stop(); };");
  const CimClassDeclaration found = declared("T");
  ASSERT_EQ(found.methods.size(), 2U);
  const CimMethodDeclaration& start = found.methods[0];
  EXPECT_STREQ(start.returnType->getName().c_str(), "uint32");
  ASSERT_EQ(start.parameters.size(), 4U);
  EXPECT_TRUE(start.parameters[0].hasFlag("In"));
  EXPECT_FALSE(start.parameters[1].hasFlag("In"));
  EXPECT_TRUE(start.parameters[1].hasFlag("Out"));
  EXPECT_TRUE(start.parameters[1].type->isArray());
  EXPECT_STREQ(start.parameters[2].referenceClass.c_str(), "A");
  EXPECT_EQ(start.parameters[3].arraySize, 3);
  EXPECT_TRUE(found.methods[1].parameters.empty());
}

TEST_F(MofClass, DeclaresQualifiersWithScopesAndFlavors) {
  load(
      "Qualifier Tag : string[] = {\"a\"}, Scope(class, Property, METHOD), Flavor(DisableOverride, Restricted, "
      "Translatable);\n"
      "Qualifier Level : uint8 = 3, Scope(any);");
  CimQualifierDeclaration tag;
  ASSERT_TRUE(_manager.sink().describeQualifier("root/cimv2", "tag", tag));
  EXPECT_TRUE(tag.type->isArray());
  ASSERT_EQ(tag.scopes.size(), 3U);
  EXPECT_STREQ(tag.scopes[2].c_str(), "method");
  EXPECT_FALSE(tag.overridable);
  EXPECT_FALSE(tag.toSubclass);
  EXPECT_TRUE(tag.translatable);
  EXPECT_STREQ(tag.defaultValue->toString().c_str(), "a");
  CimQualifierDeclaration level;
  ASSERT_TRUE(_manager.sink().describeQualifier("root/cimv2", "Level", level));
  EXPECT_STREQ(level.defaultValue->getType()->getName().c_str(), "uint8");
  EXPECT_TRUE(level.overridable);
  EXPECT_TRUE(level.toSubclass);
}

TEST_F(MofClass, GivesQualifiersTheirDeclaredTypeAndFlavors) {
  load(
      "Qualifier Level : uint8 = 3, Scope(property), Flavor(DisableOverride, Restricted);\n"
      "class T { [Key, Level] string A; [Level(4) : EnableOverride ToSubclass] string B; };");
  const CimPropertyDeclaration a = property("T", "A");
  EXPECT_STREQ(a.findQualifier("Level")->value->toString().c_str(), "3");
  EXPECT_FALSE(a.findQualifier("Level")->toSubclass);
  EXPECT_FALSE(a.findQualifier("Level")->overridable);
  const CimPropertyDeclaration b = property("T", "B");
  EXPECT_STREQ(b.findQualifier("Level")->value->toString().c_str(), "4");
  EXPECT_TRUE(b.findQualifier("Level")->toSubclass);
  EXPECT_TRUE(b.findQualifier("Level")->overridable);
}

TEST_F(MofClass, KnowsTheStandardQualifiersUndeclared) {
  load(
      "[Abstract, Version(\"1.0\"), Description(\"a\" \"b\")] class Base { [Key, MaxLen(5)] string K; };\n"
      "class Derived : Base { [Values{\"a\"}, ValueMap{\"1\"}] uint8 V; [Own(5), Flag] uint8 W; };\n"
      "instance of Derived { K = \"k\"; };");
  EXPECT_EQ(instancesOf("Base").size(), 1U);
  EXPECT_STREQ(property("Base", "K").findQualifier("MaxLen")->value->getType()->getName().c_str(), "uint32");
  EXPECT_STREQ(property("Derived", "W").findQualifier("Own")->value->toString().c_str(), "5");
  EXPECT_TRUE(property("Derived", "W").hasFlag("Flag"));
}

TEST_F(MofClass, ABooleanQualifierOfNullIsNotSet) {
  load("class T { [Key] string A; [Counter(NULL)] uint8 B; [Counter(false)] uint8 C; [Counter] uint8 D; };");
  EXPECT_FALSE(property("T", "B").hasFlag("Counter"));
  EXPECT_FALSE(property("T", "C").hasFlag("Counter"));
  EXPECT_TRUE(property("T", "D").hasFlag("Counter"));
}

TEST_F(MofClass, AcceptsAnEqualDeclarationAgain) {
  const char* const text = "Qualifier Tag : string, Scope(any); class T { [Key, Tag(\"x\")] string A; };";
  load(text);
  EXPECT_NO_THROW(load(text));
  EXPECT_EQ(_manager.classNames("root/cimv2").size(), 1U);
}

TEST_F(MofClass, RefusesMissingAndCircularSuperclasses) {
  EXPECT_EQ(faultOf("class A : Nothing { };"),
            "1:11: superclass Nothing of class A is not declared in namespace root/cimv2");
  EXPECT_EQ(faultOf("class A : B { }; class B : C { }; class C : A { };"), "1:7: class A is its own superclass");
  EXPECT_EQ(faultOf("class A : A { };"), "1:7: class A is its own superclass");
}

TEST_F(MofClass, OneFaultIsToldOnce) {
  EXPECT_EQ(faultOf("class A : Nothing { [Key] string K; };\n"
                    "class B : A { };\n"
                    "instance of B as $b { K = \"x\"; };\n"
                    "[Association] class L { [Key] B REF X; [Key] B REF Y; };\n"
                    "instance of L { X = $b; Y = \"B.K=\\\"x\\\"\"; };"),
            "1:11: superclass Nothing of class A is not declared in namespace root/cimv2");
}

TEST_F(MofClass, RefusesWhatContradictsItself) {
  EXPECT_EQ(faultOf("class T { uint8 A; uint8 a; };"), "1:26: class T: property a is declared twice");
  EXPECT_EQ(faultOf("class T { uint8 A(); uint8 A(); };"), "1:28: class T declares method A twice");
  EXPECT_EQ(faultOf("class T { uint9 A; };"), "1:11: unknown type \"uint9\"");
  EXPECT_EQ(faultOf("class T { uint9 A(); };"), "1:11: unknown type \"uint9\"");
  EXPECT_EQ(faultOf("class T { uint8 A(uint9 b); };"), "1:19: unknown type \"uint9\"");
  EXPECT_EQ(faultOf("class T { reference A; };"), "1:11: unknown type \"reference\"");
  EXPECT_EQ(faultOf("class T { [Key, key] string A; };"), "1:17: qualifier key is given twice");
  std::string many = " {\n[";
  for (int i = 0; i < 20; ++i) many += "Own" + std::to_string(i) + ", ";
  EXPECT_NO_THROW(load("class Sound" + many + "Last] string A; };"));
  EXPECT_EQ(faultOf("class T" + many + "\noWN7] string A; };"), "3:1: qualifier oWN7 is given twice");
  EXPECT_EQ(faultOf("class T { [MaxLen(\"x\")] string A; };"), "1:19: found a string, expected a value of type uint32");
  EXPECT_EQ(faultOf("class T { [Values(\"x\")] uint8 A; };"),
            "1:19: found a string, expected a value of type string[]");
  EXPECT_EQ(faultOf("class T { uint8 A = 256; };"), "1:21: 256 is out of the range of uint8 (0 to 255)");
  EXPECT_EQ(faultOf("class T { T REF A; };"), "1:17: class T: reference A outside an association");
  EXPECT_EQ(faultOf("[Association] class T { T REF A[]; };"), "1:31: a reference property cannot be an array");
  EXPECT_EQ(faultOf("class T { [EmbeddedObject] string A = \"x\"; };"),
            "1:39: the default of a property that holds an embedded instance can only be NULL");
}

TEST_F(MofClass, RefusesQualifiersOutOfTheirScope) {
  EXPECT_EQ(faultOf("Qualifier Tag : boolean, Scope(property, method); [Tag] class T { };"),
            "1:52: qualifier Tag cannot stand on a class: its scope is property, method");
  EXPECT_EQ(faultOf("Qualifier Tag : boolean, Scope(reference); class T { [Tag] uint8 A; };"),
            "1:55: qualifier Tag cannot stand on a property: its scope is reference");
  EXPECT_EQ(faultOf("Qualifier Tag : boolean, Scope(class); class T { [Tag] uint8 A(); };"),
            "1:51: qualifier Tag cannot stand on a method: its scope is class");
  EXPECT_EQ(faultOf("Qualifier Tag : boolean, Scope(class); class T { uint8 A([Tag] uint8 b); };"),
            "1:59: qualifier Tag cannot stand on a parameter: its scope is class");
}

TEST_F(MofClass, RefusesMalformedQualifierDeclarations) {
  EXPECT_EQ(faultOf("Qualifier Tag : boolean;"), "1:24: found \";\", expected \"Scope\"");
  EXPECT_EQ(faultOf("Qualifier Tag : boolean, Scope(planet);"),
            "1:32: found \"planet\", expected a scope such as \"class\", \"property\" or \"any\"");
  EXPECT_EQ(faultOf("Qualifier Tag : boolean, Scope(any), Flavor(Sweet);"),
            "1:45: found \"Sweet\", expected a flavor such as \"EnableOverride\" or \"ToSubclass\"");
  EXPECT_EQ(faultOf("Qualifier Tag : colour, Scope(any);"), "1:17: \"colour\" is not a qualifier type");
  EXPECT_EQ(faultOf("Qualifier Tag : uint8 = 300, Scope(any);"), "1:25: 300 is out of the range of uint8 (0 to 255)");
}

TEST_F(MofClass, RefusesAnotherDeclarationOfTheSameName) {
  load("class T { [Key] string A; }; Qualifier Tag : string, Scope(any);");
  EXPECT_EQ(faultOf("class T { [Key] string B; };"), "1:7: class T is declared already, with another declaration");
  EXPECT_EQ(faultOf("Qualifier Tag : uint8, Scope(any);"),
            "1:11: qualifier Tag is declared already, with another declaration");
  EXPECT_EQ(faultOf("class U { };\nclass U { uint8 A; };"),
            "2:7: class U is declared already, with another declaration, at test.mof:1:7");
  EXPECT_EQ(faultOf("Qualifier Q : string, Scope(any);\n\n  Qualifier Q : uint8, Scope(any);"),
            "3:13: qualifier Q is declared already, with another declaration, at test.mof:1:11");
}

}  // namespace
