// Lenient loads: what is sound is stored, everything else is told; and the
// Windows forms, which only they read.
// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "MofFixture.h"

namespace {

namespace fs = std::filesystem;
using moftest::MofTest;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MofLenient : public MofTest {
 protected:
  // The faults of a lenient load of a text, each with its place.
  std::vector<std::string> leftOutOf(const std::string& text) {
    MofLoader loader(_manager.sink());
    loader.setLenient(true);
    loader.loadText(text, "test.mof");
    EXPECT_EQ(loader.getFaults().count, loader.getFaults().shown.size());
    return placesOf(loader.getFaults());
  }
  static std::vector<std::string> placesOf(const MofFaults& faults) {
    std::vector<std::string> places;
    for (const MofDiagnostic& fault : faults.shown) places.push_back(place(fault));
    return places;
  }
  std::vector<std::string> classes(const char* nameSpace = "root/cimv2") {
    std::vector<std::string> names;
    for (const QORString& name : _manager.classNames(nameSpace)) names.emplace_back(name.view());
    return names;
  }
  std::vector<std::string> keys(const char* className, const char* nameSpace = "root/cimv2") {
    std::vector<std::string> values;
    for (const auto& instance : instancesOf(className, nameSpace)) values.push_back(textOf(instance, "K"));
    return values;
  }
};

TEST_F(MofLenient, ASoundTextHasNoFaults) {
  EXPECT_THAT(leftOutOf("class T { [Key] string K; };\ninstance of T { K = \"a\"; };"), IsEmpty());
  EXPECT_THAT(keys("T"), ElementsAre("a"));
}

TEST_F(MofLenient, StoresWhatIsSoundAroundAFault) {
  EXPECT_THAT(leftOutOf("class T { [Key] string K; uint8 N; };\n"
                        "instance of T { K = \"a\"; };\n"
                        "instance of T { K = \"b\"; N = 256; };\n"
                        "klass X { uint8 A; };\n"
                        "instance of T { K = \"c\"; }; instance of T { K = 5; }; instance of T { K = \"d\"; };\n"),
              ElementsAre("3:30: 256 is out of the range of uint8 (0 to 255)",
                          "4:1: found \"klass\", expected a declaration: \"class\", \"instance of\", \"Qualifier\" or "
                          "\"#pragma\"",
                          "5:49: found an integer, expected a value of type string"));
  EXPECT_THAT(keys("T"), ElementsAre("a", "c", "d"));
}

TEST_F(MofLenient, AfterASyntaxFaultItGoesOnAfterTheNextSemicolonOutsideBraces) {
  EXPECT_THAT(leftOutOf("class A { uint8 ; uint8 B; }; class C { };\nclass D { uint8 X\nclass E { };\n").size(), 2U);
  EXPECT_THAT(classes(), ElementsAre("C", "E"));
}

TEST_F(MofLenient, AStrictLoadOfTheSameStoresNothing) {
  EXPECT_EQ(faultsOf("class T { }; klass X; class U { };").size(), 1U);
  EXPECT_THAT(classes(), IsEmpty());
}

TEST_F(MofLenient, AClassBelowOneThatIsLeftOutIsAFaultOfItsOwn) {
  EXPECT_THAT(
      leftOutOf("class A { uint9 X; };\nclass B : A { };\nclass C : B { };\nclass D { };\nclass E : Nobody { };\n"
                "class F : E { };\n"),
      ElementsAre("1:11: unknown type \"uint9\"", "2:11: superclass A of class B is left out",
                  "3:11: superclass B of class C is left out",
                  "5:11: superclass Nobody of class E is not declared in namespace root/cimv2",
                  "6:11: superclass E of class F is left out"));
  EXPECT_THAT(classes(), ElementsAre("D"));
}

TEST_F(MofLenient, ACircleOfClassesIsLeftOut) {
  EXPECT_THAT(leftOutOf("class A : B { };\nclass B : A { };\nclass C { };\n"),
              ElementsAre("1:7: class A is its own superclass", "2:11: superclass A of class B is left out"));
  EXPECT_THAT(classes(), ElementsAre("C"));
}

TEST_F(MofLenient, InstancesOfAClassThatIsLeftOutAreOneFaultWithTheirNumber) {
  EXPECT_THAT(
      leftOutOf("class A { [Key] string K; uint9 X; };\ninstance of A { K = \"1\"; };\ninstance of A { };\n"
                "instance of Nobody { };\ninstance of Nobody { };\ninstance of Nobody { };\n"),
      ElementsAre("1:27: unknown type \"uint9\"", "2:13: class A is left out, and what needs it (first of 2 places)",
                  "4:13: class Nobody is not declared in namespace root/cimv2 (first of 3 places)"));
}

TEST_F(MofLenient, TheFirstOfTwoDeclarationsIsStored) {
  EXPECT_THAT(
      leftOutOf("class T { [Key] string K; };\nclass T { [Key] uint8 K; };\nclass U : T { };\n"
                "instance of U { K = \"u\"; };\nQualifier Q : string, Scope(any);\nQualifier Q : uint8, Scope(any);\n"
                "instance of U { K = \"u\"; };\n"),
      ElementsAre("2:7: class T is declared already, with another declaration, at test.mof:1:7",
                  "6:11: qualifier Q is declared already, with another declaration, at test.mof:5:11",
                  "7:13: instance root/cimv2:U.K=\"u\" exists already, declared at test.mof:4:13"));
  EXPECT_THAT(keys("T"), ElementsAre("u"));
}

TEST_F(MofLenient, ASoundDeclarationAfterOneWithAFaultIsStored) {
  EXPECT_EQ(leftOutOf("class T { uint9 X; };\nclass T { [Key] string K; };\ninstance of T { K = \"a\"; };\n").size(),
            1U);
  EXPECT_THAT(keys("T"), ElementsAre("a"));
}

TEST_F(MofLenient, AClassWithAReferenceToAWrongClassIsLeftOut) {
  EXPECT_THAT(leftOutOf("class A { [Key] string K; };\nclass B { [Key] string K; };\n"
                        "[Association] class L { [Key] A REF R; };\n[Association] class M : L { [Key] B REF R; };\n"
                        "[Association] class N : L { [Key] Late REF R; };\nclass Late : A { };\n"),
              ElementsAre("4:35: reference R is inherited as one to A, expected that class or one derived from it"));
  EXPECT_THAT(classes(), ElementsAre("A", "B", "L", "N", "Late"));
}

TEST_F(MofLenient, AReferenceToAnAliasThatIsLeftOutIsTold) {
  const std::string classes =
      "class T { [Key] string K; uint8 N; };\n[Association] class L { [Key] T REF R; [Key] uint8 I; };\n";
  EXPECT_THAT(leftOutOf(classes + "instance of L { R = $a; I = 1; };\ninstance of L { R = $a; I = 2; };\n"
                                  "instance of T as $a { K = 5; };\ninstance of L { R = $b; I = 3; };\n"
                                  "instance of T as $b { K = ; };\ninstance of L { R = $c; I = 4; };\n"),
              ElementsAre("3:21: the path of $a has a fault", "4:21: the path of $a has a fault",
                          "5:27: found an integer, expected a value of type string",
                          "6:21: the instance of alias $b is left out, and what refers to it",
                          "7:27: found \";\", expected a value", "8:21: unknown alias $c"));
  EXPECT_THAT(instancesOf("L"), IsEmpty());
}

TEST_F(MofLenient, AReferenceByAPathStaysWhenItsInstanceIsLeftOut) {
  EXPECT_EQ(leftOutOf("class T { [Key] string K; uint8 N; };\n[Association] class L { [Key] T REF R; };\n"
                      "instance of T as $a { K = \"a\"; N = 256; };\ninstance of L { R = $a; };\n")
                .size(),
            1U);
  EXPECT_EQ(textOf(instancesOf("L").at(0), "R"), "root/cimv2:T.K=\"a\"");
}

TEST_F(MofLenient, AnAliasWithTwoInstancesIsToldWhereItIsUsed) {
  EXPECT_THAT(leftOutOf("class T { [Key] string K; };\n[Association] class L { [Key] T REF R; };\n"
                        "instance of T as $a { K = \"1\"; };\ninstance of T as $a { K = \"2\"; };\n"
                        "instance of L { R = $a; };\n"),
              ElementsAre("5:21: alias $a is defined twice, at test.mof:3:18 and at test.mof:4:18"));
  EXPECT_THAT(keys("T"), ElementsAre("1", "2"));
}

TEST_F(MofLenient, AQualifierThatIsLeftOutMeansWhatItDoesUndeclared) {
  EXPECT_THAT(
      leftOutOf("Qualifier Tag : uint9, Scope(any);\n[Tag(\"a\")] class T { };\n[Tag(5), Tag(6)] class U { };\n"),
      ElementsAre("1:17: \"uint9\" is not a qualifier type", "3:10: qualifier Tag is given twice"));
  EXPECT_THAT(classes(), ElementsAre("T"));
}

TEST_F(MofLenient, AFaultInsideAnEmbeddedTextLeavesTheInstanceOut) {
  EXPECT_THAT(leftOutOf("class T { [Key] string K; [EmbeddedInstance(\"T\")] string E; };\n"
                        "instance of T { K = \"a\"; E = \"instance of T { K = 5; };\"; };\n"
                        "instance of T { K = \"b\"; E = instance of T { K = 5; }; };\ninstance of T { K = \"c\"; };\n"),
              ElementsAre("2:30: in line 1, column 21 of the embedded text: found an integer, expected a value of type "
                          "string",
                          "3:50: found an integer, expected a value of type string"));
  EXPECT_THAT(keys("T"), ElementsAre("c"));
}

TEST_F(MofLenient, ShowsAHundredFaultsAndCountsTheOthers) {
  std::string text = "class T { [Key] string K; };\n";
  for (int i = 0; i < 250; ++i)
    text += "instance of T { K = 5; };\ninstance of T { K = \"" + std::to_string(i) + "\"; };\n";
  for (int i = 0; i < 7; ++i) text += "instance of Nobody { };\n";
  MofLoader loader(_manager.sink());
  loader.setLenient(true);
  loader.loadText(text, "test.mof");
  EXPECT_EQ(loader.getFaults().shown.size(), MofFaults::kMaximumShown);
  EXPECT_EQ(loader.getFaults().count, 251U);
  EXPECT_EQ(keys("T").size(), 250U);
  loader.loadText("instance of T { K = \"more\"; };", "more.mof");
  EXPECT_EQ(loader.getFaults().count, 0U);
}

TEST_F(MofLenient, ManyFaultsTakeTimeInProportion) {
  std::string text = "class T { [Key] string K; };\n[Association] class L { [Key] T REF R; };\n";
  for (int i = 0; i < 20000; ++i) {
    text += "instance of T as $a { K = \"1\"; };\ninstance of L { R = $a; };\ninstance of Nobody { };\nx;\n";
  }
  MofLoader loader(_manager.sink());
  loader.setLenient(true);
  loader.loadText(text, "test.mof");
  EXPECT_EQ(loader.getFaults().count, 19999U + 1U + 1U + 20000U);
}

TEST_F(MofLenient, InstancesThatAreNotStoredAreReadWhereTheyAreSound) {
  load("class T { [Key] string K; };");
  MofLoader loader(_manager.sink());
  loader.setLenient(true);
  const auto objects = loader.readInstances(
      "instance of T { K = \"a\"; };\ninstance of T { K = 5; };\nclass X { };\ninstance of T { K = \"c\"; };",
      "test.mof");
  EXPECT_EQ(objects.size(), 2U);
  EXPECT_THAT(placesOf(loader.getFaults()), ElementsAre("2:21: found an integer, expected a value of type string",
                                                        "3:7: a class cannot be declared here, only instances"));
}

// --- Windows forms

TEST_F(MofLenient, ReadsNamespacesWithBackslashes) {
  const char* const kPaths[] = {R"(\\\\.\\root\\x)", R"(\\.\root\x)", R"(root\\x)",
                                R"(root\x)",         R"(//./root/x)", "root/x"};
  std::string text;
  for (const char* const path : kPaths) text += "#pragma namespace (\"" + std::string(path) + "\")\nclass T { };\n";
  EXPECT_THAT(leftOutOf(text), IsEmpty());
  EXPECT_THAT(classes("root/x"), ElementsAre("T"));
  EXPECT_THAT(classes(), IsEmpty());
  EXPECT_EQ(faultOf("#pragma namespace (\"\\\\\\\\.\\\\root\\\\y\")\nclass T { };"),
            "1:20: \"\\\\.\\root\\y\" is not a namespace; a lenient load (--lenient) reads it");
}

TEST_F(MofLenient, WhatFollowsANamespaceWithAFaultIsLeftOut) {
  EXPECT_THAT(leftOutOf("class A { };\n#pragma namespace (\"a b\")\nclass B { };\nQualifier Q : string, Scope(any);\n"
                        "#pragma include (\"nothing.mof\")\n#pragma namespace (\"root/x\")\nclass C { };\n"
                        "#pragma namespace \"root/y\"\nclass D { };\n"),
              ElementsAre("2:20: \"a b\" is not a namespace; what follows is left out, up to the next namespace",
                          "8:19: found the string \"root/y\", expected \"(\"; what follows is left out, up to the next "
                          "namespace"));
  EXPECT_THAT(classes(), ElementsAre("A"));
  EXPECT_THAT(classes("root/x"), ElementsAre("C"));
}

TEST_F(MofLenient, ReadsTheFlavorsOfWindows) {
  const std::string text =
      "Qualifier Tag : string, Scope(any), Flavor(ToInstance, EnableOverride);\n"
      "[Tag(\"a\") : Amended ToSubclass toinstance] class T { [Key : ToInstance ToSubclass DisableOverride] string K; "
      "};\n";
  EXPECT_EQ(faultsOf(text).size(), 2U);
  EXPECT_THAT(leftOutOf(text), IsEmpty());
  EXPECT_THAT(leftOutOf("[Tag(\"a\") : Sweet] class U { };"),
              ElementsAre("1:13: found \"Sweet\", expected a flavor such as \"EnableOverride\" or \"ToSubclass\""));
}

TEST_F(MofLenient, IsNamedWhereAStrictLoadRefusesAFormOfWindows) {
  const std::string reads = "; a lenient load (--lenient) reads it";
  EXPECT_EQ(faultOf("\n#pragma autorecover\nclass T { };"), "2:20: found the end of the line, expected \"(\"" + reads);
  EXPECT_EQ(faultOf("#pragma classflags(\"forceupdate\", 5)"), "1:33: found \",\", expected \")\"" + reads);
  EXPECT_EQ(faultOf("#pragma x (5)"), "1:12: found \"5\", expected a string" + reads);
  const std::string nameless = ": found the end of the line, expected the name of a pragma";
  EXPECT_EQ(faultOf("#pragma\nclass T { };"), "1:8" + nameless);
  EXPECT_EQ(faultOf("class S { };\n#pragma  // what?\nclass V { };"), "2:8" + nameless);
  EXPECT_EQ(faultOf("#pragma"), "1:8" + nameless);
  EXPECT_EQ(faultOf("#pragma x"), "1:10: found the end of the line, expected \"(\"" + reads);
  EXPECT_EQ(faultOf("#pragma include (5)"), "1:18: found \"5\", expected a string");
  EXPECT_EQ(faultOf("#pragma namespace (\"a\\\\b c\")"), "1:20: \"a\\b c\" is not a namespace");
  for (const char* const flavors : {"Amended", "ToSubclass Amended"}) {
    const std::string fault = faultOf("[Key : " + std::string(flavors) + "] class T { };");
    EXPECT_THAT(fault, testing::HasSubstr("found \"Amended\", expected a flavor"));
    EXPECT_THAT(fault, testing::EndsWith(reads));
  }
}

TEST_F(MofLenient, PassesOverOtherPragmasWhateverTheyLookLike) {
  const std::string text =
      "#pragma autorecover\n#pragma classflags(\"forceupdate\", 5)\n#pragma deleteclass(\"T\", NOFAIL)\n#pragma x @ % "
      "&\n"
      "#pragma y (\n  \")\"\n)\nclass T { };\n#pragma z";
  EXPECT_EQ(faultsOf(text).size(), 5U);
  EXPECT_THAT(leftOutOf(text), IsEmpty());
  EXPECT_THAT(classes(), ElementsAre("T"));
  EXPECT_THAT(leftOutOf("#pragma open (\nclass U { };"), IsEmpty());
  EXPECT_THAT(leftOutOf("#pragma open (; class V { };").size(), 1U);
  EXPECT_THAT(leftOutOf("#pragma include\nclass W { };"),
              ElementsAre("1:16: found the end of the line, expected \"(\""));
  EXPECT_THAT(leftOutOf("#pragma 5\nclass X { };").size(), 1U);
  EXPECT_THAT(leftOutOf("#pragma\nclass Y { };").size(), 1U);
  EXPECT_THAT(classes(), ElementsAre("T", "U", "V", "W", "X", "Y"));
}

// --- files

class MofLenientFiles : public MofLenient {
 protected:
  MofLenientFiles() {
    std::string pattern = (fs::temp_directory_path() / "mofXXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    _folder = pattern;
  }
  ~MofLenientFiles() override { fs::remove_all(_folder); }
  std::string write(const std::string& name, const std::string& text) {
    std::ofstream(_folder / name, std::ios::binary) << text;
    return (_folder / name).string();
  }
  std::vector<std::string> leftOutOfFiles(const std::vector<std::string>& paths) {
    MofLoader loader(_manager.sink());
    loader.setLenient(true);
    loader.loadFiles(paths);
    std::vector<std::string> places;
    for (const MofDiagnostic& fault : loader.getFaults().shown) {
      places.push_back(fs::path(fault.file).filename().string() + ':' + place(fault));
    }
    return places;
  }

  fs::path _folder;
};

TEST_F(MofLenientFiles, AnIncludeThatIsMissingIsAFaultAndSoIsWhatNeedsIt) {
  const std::string main =
      write("main.mof",
            "#pragma include (\"no.mof\")\nclass A : B { };\nclass C { [Key] string K; };\n"
            "instance of B { };\n[Association] class L { [Key] C REF R; };\ninstance of L { R = $c; };\n");
  EXPECT_THAT(leftOutOfFiles({main}),
              ElementsAre("main.mof:1:18: cannot read " + (_folder / "no.mof").string() + ": there is no such file",
                          "main.mof:2:11: superclass B of class A is not declared in namespace root/cimv2 (first of 2 "
                          "places)",
                          "main.mof:6:21: unknown alias $c"));
  EXPECT_THAT(classes(), ElementsAre("C", "L"));
}

TEST_F(MofLenientFiles, WhatIsNamedAndCannotBeReadIsRefused) {
  MofLoader loader(_manager.sink());
  loader.setLenient(true);
  try {
    loader.loadFiles({write("good.mof", "class T { };"), (_folder / "gone.mof").string()});
    ADD_FAILURE() << "not refused";
  } catch (const MofException& refusal) {
    ASSERT_EQ(refusal.getDiagnostics().size(), 1U);
    EXPECT_EQ(refusal.getDiagnostics()[0].message, "cannot be read: there is no such file");
  }
  EXPECT_THAT(classes(), IsEmpty());
}

TEST_F(MofLenientFiles, AFileOfAFolderThatCannotBeReadIsLeftOut) {
  write("a.mof", "class A { };");
  fs::resize_file(write("b.mof", ""), 513U << 20U);  // a hole, which takes no room
  write("c.mof", "class C { };");
  EXPECT_THAT(leftOutOfFiles({_folder.string()}), ElementsAre("b.mof:0:0: cannot be read: it is larger than 512 MB"));
  EXPECT_THAT(classes(), ElementsAre("A", "C"));
}

TEST_F(MofLenientFiles, AFileThatIsNoTextIsLeftOut) {
  EXPECT_THAT(leftOutOfFiles({write("a.mof", std::string("class\0", 6)), write("b.mof", "class B { };"),
                              write("c.mof",
                                    "\xFF\xFE"
                                    "c")}),
              ElementsAre("a.mof:0:0: this is not text: it contains zero bytes",
                          "c.mof:1:1: the text is UTF-16 with half of a character here"));
  EXPECT_THAT(classes(), ElementsAre("B"));
}

}  // namespace
