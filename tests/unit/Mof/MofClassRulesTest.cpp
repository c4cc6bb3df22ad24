// What a class may say against its superclass: keys, overriding, flavors.
// SPDX-License-Identifier: Apache-2.0
#include "MofFixture.h"
#include "cimom/CQoriValue.h"

namespace {

using moftest::MofTest;
using ::testing::ElementsAre;

class MofClassRules : public MofTest {
 protected:
  void SetUp() override {
    load(
        "Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);\n"
        "Qualifier Override : string = null, Scope(property, reference, method), Flavor(EnableOverride, Restricted);\n"
        "Qualifier Kind : string = \"none\", Scope(any), Flavor(DisableOverride, ToSubclass);\n"
        "Qualifier Note : string = null, Scope(any), Flavor(EnableOverride, ToSubclass);\n"
        "Qualifier Local : string = null, Scope(any), Flavor(DisableOverride, Restricted);\n"
        "[Kind(\"base\"), Local(\"base\")] class Base {\n"
        "  [Key] string Id; [Note(\"n\"), Kind(\"k\"), Local(\"l\")] uint8 Size = 5; };\n"
        "class Bare { uint8 Size; string Name; string Names[]; };\n"
        "class Part : Base { };\n"
        "[Association] class Holds { [Key] Base REF Owner; [Key] Part REF Owned; };\n");
  }
  std::vector<std::string> placesOf(const std::string& text) {
    std::vector<std::string> places;
    for (const MofDiagnostic& fault : faultsOf(text)) places.push_back(place(fault));
    return places;
  }
};

TEST_F(MofClassRules, KeysComeFromOneClassOfALine) {
  EXPECT_EQ(faultOf("class T : Base {\n  [Key] uint8 Number; };"),
            "2:15: class T: key Number cannot be added: superclass Base has its keys already (Id)");
  EXPECT_EQ(faultOf("class T : Part {\n  [Key, Override(\"Size\")] uint8 Size; };"),
            "2:33: class T: key Size cannot be added: superclass Part has its keys already (Id)");
  EXPECT_EQ(faultOf("[Association] class T : Holds { [Key] uint8 Rank; };"),
            "1:45: class T: key Rank cannot be added: superclass Holds has its keys already (Owner, ...)");
  EXPECT_NO_THROW(load("class Keyed : Bare { [Key, Override(\"Name\")] string Name; [Key] uint8 Number; };"));
  EXPECT_NO_THROW(load("class Same : Base { [Key, Override(\"Id\")] string Id; };"));
}

TEST_F(MofClassRules, AKeyIsOneValueThatHasAText) {
  EXPECT_EQ(faultOf("class T { [Key] string Ids[]; };"), "1:24: class T: key Ids is an array");
  EXPECT_EQ(faultOf("class T { [Key, EmbeddedObject] string Id; };"), "1:40: class T: key Id is an embedded object");
}

TEST_F(MofClassRules, AnOverrideNamesAnInheritedProperty) {
  EXPECT_EQ(faultOf("class T : Base { [Override(\"Weight\")] uint8 Weight; };"),
            "1:45: class T: property Weight overrides nothing: no superclass declares it");
  EXPECT_EQ(faultOf("class T { [Override(\"Weight\")] uint8 Weight; };"),
            "1:38: class T: property Weight overrides nothing: no superclass declares it");
  EXPECT_EQ(faultOf("class T : Base { [Override(\"Size\")] uint8 Weight; };"),
            "1:43: class T: property Weight overrides Size, which has another name");
  EXPECT_EQ(faultOf("class T : Base { [Override(\"Size\")] uint16 Size; };"),
            "1:44: class T: property Size is redeclared as uint16, it is inherited as uint8");
  EXPECT_EQ(faultOf("class T : Bare { [Override(\"Names\")] string Names; };"),
            "1:45: class T: property Names is redeclared as string, it is inherited as string[]");
  EXPECT_NO_THROW(load("class Fine : Base { [Override(\"Base.SIZE\")] uint8 Size = 6; };"));
}

TEST_F(MofClassRules, AQualifierThatDisablesOverridingKeepsItsValue) {
  EXPECT_EQ(faultOf("class T : Base { [Override(\"Size\"), Kind(\"other\")] uint8 Size; };"),
            "1:58: class T: qualifier Kind of Size cannot be changed: superclass Base gives it with flavor "
            "DisableOverride");
  EXPECT_EQ(faultOf("class T : Base { [Override(\"Id\"), Key(false)] string Id; };"),
            "1:54: class T: qualifier Key of Id cannot be changed: superclass Base gives it with flavor "
            "DisableOverride");
  EXPECT_EQ(faultOf("[Kind(\"mine\")] class T : Part { };"),
            "1:22: class T: qualifier Kind cannot be changed: superclass Part gives it with flavor DisableOverride");
  EXPECT_EQ(faultOf("[Association(false)] class T : Holds { };"),
            "1:28: class T: qualifier Association cannot be changed: superclass Holds gives it with flavor "
            "DisableOverride");
  EXPECT_NO_THROW(load("[Kind(\"base\")] class Equal : Part { };"));
  EXPECT_NO_THROW(load("[Local(\"own\")] class Free : Base { [Note(\"m\"), Local(\"m\")] uint8 Size; };"));
}

TEST_F(MofClassRules, AnOverridingMethodKeepsWhatItsCallersNeed) {
  load(
      "class Tool : Bare { [Kind(\"k\")] uint32 Run([In] string How, [Out] uint8 Results[], Base REF Which); };\n"
      "class Heir : Tool { };");
  const std::string head = "class T : Heir {\n  ";
  EXPECT_EQ(faultOf(head + "[Override(\"Run\")] string Run(string How, uint8 Results[], Base REF Which); };"),
            "2:28: class T: method Run is redeclared as string, it is inherited as uint32");
  EXPECT_EQ(faultOf(head + "uint32 Run(string How, uint8 Results, Base REF Which); };"),
            "2:10: class T: parameter Results of method Run is redeclared as uint8, it is inherited as uint8[]");
  EXPECT_EQ(faultOf(head + "uint32 Run(string How, uint8 Results[], string Which); };"),
            "2:10: class T: parameter Which of method Run is redeclared as string, it is inherited as Base reference");
  EXPECT_EQ(faultOf(head + "uint32 Run(string How, Base REF Which); };"),
            "2:10: class T: method Run lacks the inherited parameter Results");
  EXPECT_EQ(faultOf(head + "[Override(\"Walk\")] uint32 Walk(); };"),
            "2:29: class T: method Walk overrides nothing: no superclass declares it");
  EXPECT_EQ(faultOf(head + "[Override(\"Run\")] uint32 Walk(); };"),
            "2:28: class T: method Walk overrides Run, which has another name");
  EXPECT_EQ(faultOf(head + "[Kind(\"other\")] uint32 Run(string How, uint8 Results[], Base REF Which); };"),
            "2:26: class T: qualifier Kind of Run cannot be changed: superclass Heir gives it with flavor "
            "DisableOverride");
  EXPECT_NO_THROW(
      load("class Fine : Heir { [Override(\"RUN\")] uint32 run(string how, uint8 Results[], Part REF Which, "
           "uint8 More); };"));
  EXPECT_EQ(faultOf("class T : Fine { uint32 Run(string How, uint8 Results[], Base REF Which); };"),
            "1:25: class T: method Run lacks the inherited parameter More");
}

TEST_F(MofClassRules, NothingIsDerivedFromATerminalClass) {
  load("[Terminal] class End { };");
  EXPECT_EQ(faultOf("class T : End { };"), "1:7: class T: no class can be derived from End, which is Terminal");
}

TEST_F(MofClassRules, AnOverridingReferenceIsNarrowedAlsoToAClassThatComesLater) {
  EXPECT_EQ(faultOf("[Association] class T : Holds {\n  Bare REF Owned; };"),
            "2:3: reference Owned is inherited as one to Part, expected that class or one derived from it");
  EXPECT_NO_THROW(load("[Association] class Narrow : Holds { Late REF Owned; };\nclass Late : Part { };"));
}

TEST_F(MofClassRules, AllFaultsOfAClassAreToldInTheirPlaces) {
  EXPECT_THAT(placesOf("class T : Base {\n  [Key] uint8 A;\n  Base REF B;\n  uint16 Size;\n  uint8 C;\n  uint8 c;\n  "
                       "[Key] uint9 D;\n};"),
              ElementsAre("2:15: class T: key A cannot be added: superclass Base has its keys already (Id)",
                          "3:12: class T: reference B outside an association",
                          "4:10: class T: property Size is redeclared as uint16, it is inherited as uint8",
                          "6:9: class T: property c is declared twice", "7:9: unknown type \"uint9\""));
}

// --- class definitions as values ------------------------------------------------

class MofEmbeddedClass : public MofClassRules {
 protected:
  void SetUp() override {
    MofClassRules::SetUp();
    load("class Event { [Key] uint8 Id; [EmbeddedObject] string What; [EmbeddedObject] string Both[]; };");
  }
};

TEST_F(MofEmbeddedClass, ShowsItsPropertiesWithTheirDefaults) {
  load(
      "instance of Event { Id = 1;\n"
      "  What = \"class Fresh : Base { string Colour = \\\"red\\\"; uint8 Count(uint8 by); };\"; };");
  const moftest::Object definition = valueOf(instancesOf("Event").at(0), "What")->getObject();
  EXPECT_STREQ(definition->getClassName().c_str(), "Fresh");
  EXPECT_EQ(textOf(definition, "Colour"), "red");
  EXPECT_EQ(textOf(definition, "Size"), "5");
  EXPECT_EQ(textOf(definition, "Id"), "NULL");
  EXPECT_TRUE(definition->getInstanceName().IsNull());
  EXPECT_EQ(definition->getPropertyCount(), 3U);
  EXPECT_TRUE(_manager.sink().findClass("root/cimv2", "Fresh").IsNull()) << "an embedded class is not declared";
}

TEST_F(MofEmbeddedClass, ItsTextReadsBack) {
  load(
      "instance of Event { Id = 1; What = \"[Note(\\\"x\\\")] class Fresh { [Key] uint8 K; uint8 D[3] = {1, 2}; };\";\n"
      "  Both = {\"class A { }\", \"instance of Part { Id = \\\"p\\\"; }\"}; };");
  const moftest::Object event = instancesOf("Event").at(0);
  EXPECT_EQ(textOf(event, "What"),
            "[Note(\"x\")]\nclass Fresh {\n    [Key]\n    uint8 K;\n    uint8 D[3] = {1, 2};\n};\n");
  const QORString text = CQoriValue(event).toString();
  const auto read = MofLoader(_manager.sink()).readInstances(text.view(), "again.mof");
  ASSERT_EQ(read.size(), 1U);
  EXPECT_EQ(textOf(read[0], "What"), textOf(event, "What"));
  EXPECT_EQ(textOf(read[0], "Both"), textOf(event, "Both"));
}

TEST_F(MofEmbeddedClass, ItsFaultsTellBothPlaces) {
  EXPECT_EQ(
      faultOf("instance of Event { Id = 1; What = \"class A : Nothing { }\"; };"),
      "1:36: in line 1, column 11 of the embedded text: superclass Nothing of class A is not declared in namespace "
      "root/cimv2");
  EXPECT_EQ(faultOf("instance of Event { Id = 1; What = \"class A { [Key] uint8 K[]; }\"; };"),
            "1:36: in line 1, column 23 of the embedded text: class A: key K is an array");
  EXPECT_EQ(
      faultOf("instance of Event { Id = 1; What = \"class A { } class B { }\"; };"),
      "1:36: in line 1, column 13 of the embedded text: found \"class\", expected the end of the embedded object");
  EXPECT_EQ(faultOf("instance of Event { Id = 1; What = \"Disk\"; };"),
            "1:36: in line 1, column 1 of the embedded text: found \"Disk\", expected \"instance\" or \"class\"");
}

class MofRedeclaration : public MofTest {
 protected:
  // The value that an instance of T gets for a property that its class redeclares, of a superclass whose property has
  // a default.
  std::string defaultOf(const std::string& property) {
    EmbeddedObjectManager fresh;
    fresh.makeCurrent();
    MofLoader(fresh.sink())
        .loadText("class Base { [Key] string Id; uint8 Size = 5; };\nclass T : Base { " + property +
                      " };\nclass Below : T { };\ninstance of Below { Id = \"a\"; };",
                  "test.mof");
    const std::string text = textOf(instancesOf("Below").at(0), "Size");
    _manager.makeCurrent();
    return text;
  }
};

TEST_F(MofRedeclaration, AnOverridingPropertyWithoutADefaultKeepsTheInheritedOne) {
  EXPECT_EQ(defaultOf("[Override(\"Size\")] uint8 Size;"), "5");
  EXPECT_EQ(defaultOf("[Override(\"Size\")] uint8 Size = 6;"), "6");
}

TEST_F(MofRedeclaration, ADefaultOfNullTakesTheInheritedOneAway) {
  EXPECT_EQ(defaultOf("[Override(\"Size\")] uint8 Size = NULL;"), "NULL");
}

TEST_F(MofRedeclaration, WithoutOverrideItMeansTheSame) {
  EXPECT_EQ(defaultOf("uint8 Size;"), "5");
  EXPECT_EQ(defaultOf("uint8 Size = 6;"), "6");
  EXPECT_EQ(defaultOf("uint8 Size = NULL;"), "NULL");
  load(
      "class Base { [Key] string Id; uint8 Size = 5; };\nclass T : Base { string Id; };\ninstance of T { Id = \"a\"; "
      "};");
  EXPECT_EQ(pathOf(instancesOf("T").at(0)), "root/cimv2:T.Id=\"a\"");
  EXPECT_EQ(faultOf("class U : Base { uint16 Size; };"),
            "1:25: class U: property Size is redeclared as uint16, it is inherited as uint8");
}

TEST_F(MofRedeclaration, ADefaultOfNullIsWrittenAndReadAgain) {
  const std::string classes = "class Base { [Key] string Id; uint8 Size = 5; };\n";
  load(classes + "class T : Base { uint8 Size = NULL; };\nclass Free { [Key] string Id; uint8 Size = NULL; };");
  const std::string text(_manager.classMof("root/cimv2", "T", false).view());
  EXPECT_NE(text.find("uint8 Size = NULL;"), std::string::npos) << text;
  EXPECT_NO_THROW(load(text));
  EXPECT_NO_THROW(load("class Free { [Key] string Id; uint8 Size; };"));
  EXPECT_EQ(faultOf("class T : Base { uint8 Size; };"), "1:7: class T is declared already, with another declaration");
}

TEST_F(MofClassRules, AReferenceMayBeNarrowedToAClassThatNobodyDeclares) {
  EXPECT_NO_THROW(load("[Association] class Keeps : Holds { [Key, Override(\"Owned\")] Later REF Owned; };"));
}

}  // namespace
