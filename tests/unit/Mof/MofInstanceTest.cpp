// Instances: aliases, references and embedded objects.
// SPDX-License-Identifier: Apache-2.0
#include "MofFixture.h"
#include "cimom/CQoriValue.h"

namespace {

using moftest::MofTest;
using moftest::Object;

constexpr const char* kModel =
    "class Disk { [Key] string Name; uint64 Size; };\n"
    "class FastDisk : Disk { uint32 Speed; };\n"
    "class Slot { [Key] uint16 Number; [Key] boolean Rear; [Key] string Bay; };\n"
    "[Association] class Holds { [Key] Slot REF Where; [Key] Disk REF What; uint8 Bolts; };\n"
    "[Association] class Checks { [Key] Holds REF Held; [Key] Disk REF By; };\n"
    "class Report { [Key] uint8 Id; [EmbeddedInstance(\"Disk\")] string One; [EmbeddedInstance(\"Disk\")] string "
    "Many[];\n"
    "  [EmbeddedObject] string Any; };\n"
    "[Abstract] class Ghost { [Key] string Name; };\n";

class MofInstance : public MofTest {
 protected:
  MofInstance() { load(kModel); }
};

TEST_F(MofInstance, KeepsTheOrderOfTheText) {
  load(
      "instance of FastDisk { Name = \"c\"; }; instance of Disk { Name = \"a\"; }; instance of Disk { Name = \"b\"; "
      "};");
  const auto disks = instancesOf("Disk");
  ASSERT_EQ(disks.size(), 3U);
  EXPECT_EQ(textOf(disks[0], "Name"), "c");
  EXPECT_EQ(textOf(disks[1], "Name"), "a");
  EXPECT_EQ(textOf(disks[2], "Name"), "b");
}

TEST_F(MofInstance, ResolvesAliasesBeforeAndAfterTheirInstances) {
  load(
      "instance of Holds { Where = $slot; What = $disk; };\n"
      "instance of Disk as $disk { Name = \"sda\"; };\n"
      "instance of Slot as $slot { Bay = \"x\"; number = 0x10; REAR = TRUE; };\n"
      "instance of Holds { Where = $SLOT; What = $other; };\n"
      "instance of Disk as $other { Name = \"sdb\"; };");
  const auto held = instancesOf("Holds");
  ASSERT_EQ(held.size(), 2U);
  EXPECT_EQ(textOf(held[0], "Where"), "root/cimv2:Slot.Bay=\"x\",Number=16,Rear=TRUE");
  EXPECT_EQ(textOf(held[0], "What"), "root/cimv2:Disk.Name=\"sda\"");
  EXPECT_EQ(textOf(held[1], "Where"), textOf(held[0], "Where"));
  EXPECT_EQ(textOf(held[0], "Where"), pathOf(instancesOf("Slot").at(0)));
  EXPECT_EQ(textOf(held[1], "What"), pathOf(instancesOf("Disk").at(1)));
}

TEST_F(MofInstance, ReferencesInKeysMayGoInACircleOfInstances) {
  load(
      "class Node { [Key] string K; };\n"
      "[Association] class Next { [Key] string K; Node REF A; Next REF B; };\n"
      "instance of Next as $x { K = \"x\"; B = $y; }; instance of Next as $y { K = \"y\"; B = $x; };");
  EXPECT_EQ(textOf(instancesOf("Next").at(0), "B"), "root/cimv2:Next.K=\"y\"");
  EXPECT_EQ(textOf(instancesOf("Next").at(1), "B"), "root/cimv2:Next.K=\"x\"");
}

TEST_F(MofInstance, CanonicalisesPathTexts) {
  load(
      "instance of Disk { Name = \"a\\\"b\\\\c\"; }; instance of Slot { Number = 1; Rear = FALSE; Bay = \"y\"; };\n"
      "instance of Holds { Where = \"SLOT.rear=false, bay = \\\"y\\\", NUMBER=01\"; \n"
      "   What = \"//./root/CIMV2:disk.NAME=\\\"a\\\\\\\"b\\\\\\\\c\\\"\"; };\n");
  const Object held = instancesOf("Holds").at(0);
  EXPECT_EQ(textOf(held, "Where"), pathOf(instancesOf("Slot").at(0)));
  EXPECT_EQ(textOf(held, "What"), pathOf(instancesOf("Disk").at(0)));
}

TEST_F(MofInstance, ReadsPathsWhoseKeysAreReferences) {
  load(
      "instance of Disk as $d { Name = \"a\"; }; instance of Slot as $s { Number = 1; Rear = FALSE; Bay = \"y\"; };\n"
      "instance of Checks { Held = $h; By = $d; };\n"
      "instance of Holds as $h { Where = $s; What = $d; };\n");
  const std::string path = textOf(instancesOf("Checks").at(0), "Held");
  EXPECT_EQ(path, pathOf(instancesOf("Holds").at(0)));
  std::string literal;
  for (const char c : path) {
    if (c == '"' || c == '\\') literal += '\\';
    literal += c;
  }
  load("instance of Disk { Name = \"b\"; }; instance of Checks { By = \"Disk.Name=\\\"b\\\"\"; Held = \"" + literal +
       "\"; };");
  EXPECT_EQ(textOf(instancesOf("Checks").at(1), "Held"), path);
}

TEST_F(MofInstance, ReadsPathsWithKeysOfEveryKind) {
  load(
      "class K { [Key] char16 C; [Key] boolean B; [Key] sint8 N; [Key] string S; };\n"
      "[Association] class L { [Key] K REF One; [Key] K REF Two; };\n"
      "instance of K { C = 'x'; B = TRUE; N = -5; S = \"a,b\"; };\n"
      "instance of L { One = \"K.C='x',B=TRUE,N=-5,S=\\\"a,b\\\"\"; Two = \"K.C='y',B=false,N=5,S=\\\"\\\"\"; };\n");
  const auto ties = instancesOf("L");
  EXPECT_EQ(textOf(ties.at(0), "One"), pathOf(instancesOf("K").at(0)));
  EXPECT_EQ(textOf(ties.at(0), "Two"), "root/cimv2:K.B=FALSE,C=\"y\",N=5,S=\"\"");
}

TEST_F(MofInstance, APathIntoAnotherNamespaceStays) {
  load(
      "instance of Disk as $d { Name = \"a\"; };\n"
      "[Association] class Far { [Key] Disk REF Here; [Key] Disk REF There; };\n"
      "instance of Far { Here = $d; There = \"root/far:Disk.Name=\\\"z\\\",Id=5\"; };");
  EXPECT_EQ(textOf(instancesOf("Far").at(0), "There"), "root/far:Disk.Id=5,Name=\"z\"");
}

TEST_F(MofInstance, NullReferencesAreNull) {
  load(
      "[Association] class Maybe { [Key] string K; Disk REF D; Disk REF E; };\n"
      "instance of Maybe { K = \"k\"; D = NULL; };");
  EXPECT_EQ(textOf(instancesOf("Maybe").at(0), "D"), "NULL");
  EXPECT_EQ(textOf(instancesOf("Maybe").at(0), "E"), "NULL");
}

TEST_F(MofInstance, ReadsEmbeddedInstancesFromTextAndDirectly) {
  load(
      "instance of Report { Id = 1;\n"
      "  One = \"instance of FastDisk { Name = \\\"a\\\"; Speed = 5; };\";\n"
      "  Many = {\"instance of Disk { \" \"Name = \\\"b\\\"; }\", instance of Disk { Name = \"c\"; }, NULL};\n"
      "  Any = instance of Report { Id = 2; One = \"instance of Disk { Size = 7; };\"; }; };");
  const Object report = instancesOf("Report").at(0);
  const Object one = valueOf(report, "One")->getObject();
  EXPECT_STREQ(one->getClassName().c_str(), "FastDisk");
  EXPECT_EQ(textOf(one, "Speed"), "5");
  EXPECT_STREQ(valueOf(report, "One")->getType()->getName().c_str(), "object");
  const auto many = valueOf(report, "Many")->getArray();
  ASSERT_EQ(many->entries(), 3U);
  EXPECT_EQ(textOf(many->at(0)->getObject(), "Name"), "b");
  EXPECT_EQ(textOf(many->at(1)->getObject(), "Name"), "c");
  EXPECT_TRUE(many->at(2).IsNull());
  const Object inner = valueOf(valueOf(report, "Any")->getObject(), "One")->getObject();
  EXPECT_EQ(textOf(inner, "Size"), "7");
  EXPECT_EQ(instancesOf("Disk").size(), 0U);
}

TEST_F(MofInstance, FaultsInEmbeddedTextsTellBothPlaces) {
  EXPECT_EQ(faultOf("instance of Report { Id = 1;\n  One = \"instance of Disk {\\n Nam = \\\"a\\\"; };\"; };"),
            "2:9: in line 2, column 2 of the embedded text: class Disk has no property Nam; did you mean Name?");
  EXPECT_EQ(faultOf("instance of Report { Id = 1; One = \"instance of Disk\"; };"),
            "1:36: in line 1, column 17 of the embedded text: found the end of the text, expected \"{\"");
  EXPECT_EQ(faultOf("instance of Report { Id = 1; One = \"class X { };\"; };"),
            "1:36: in line 1, column 7 of the embedded text: found a class, expected an instance of Disk");
  EXPECT_EQ(faultOf("instance of Report { Id = 1; One = instance of Slot { }; };"),
            "1:48: found an instance of Slot, expected one of Disk or of a class derived from it");
  EXPECT_EQ(faultOf("instance of Report { Id = 1; One = 5; };"),
            "1:36: found an integer, expected an embedded instance of Disk: a string or \"instance of\"");
}

TEST_F(MofInstance, AValueInThePlaceOfAnArrayOfObjectsNamesTheClass) {
  load("class Rack { [Key] uint8 Id; [EmbeddedInstance(\"Disk\")] string Disks[]; [EmbeddedObject] string All[]; };");
  EXPECT_EQ(faultOf("instance of Rack { Id = 1; Disks = instance of Disk { Name = \"a\"; }; };"),
            "1:36: found an instance, expected an array of embedded instances of Disk, in braces");
  EXPECT_EQ(faultOf("instance of Rack { Id = 1; All = \"instance of Disk { };\"; };"),
            "1:34: found a string, expected an array of embedded objects, in braces");
  EXPECT_EQ(faultOf("instance of Rack { Id = 1; All = { 5 }; };"),
            "1:36: found an integer, expected an embedded object: a string or \"instance of\"");
  EXPECT_NO_THROW(load("instance of Rack { Id = 1; Disks = { instance of Disk { Name = \"a\"; } }; All = NULL; };"));
}

TEST_F(MofInstance, RefusesUnknownNames) {
  EXPECT_EQ(faultOf("instance of Disc { };"), "1:13: class Disc is not declared in namespace root/cimv2");
  EXPECT_EQ(faultOf("instance of Disk { Name = \"a\"; Sise = 5; };"),
            "1:32: class Disk has no property Sise; did you mean Size?");
  EXPECT_EQ(faultOf("instance of Disk { Name = \"a\"; Colour = 5; };"), "1:32: class Disk has no property Colour");
  EXPECT_EQ(faultOf("instance of Ghost { Name = \"a\"; };"), "1:13: instance of Ghost: the class is abstract");
  EXPECT_EQ(faultOf("instance of Checks { Held = $nobody; By = NULL; };"), "1:29: unknown alias $nobody");
}

TEST_F(MofInstance, RefusesMissingAndDuplicateKeys) {
  const auto faults = faultsOf("instance of Slot { Number = 1; Rear = NULL; };\n");
  ASSERT_EQ(faults.size(), 2U);
  EXPECT_EQ(place(faults[0]), "1:13: the instance of Slot has no value for its key Rear");
  EXPECT_EQ(place(faults[1]), "1:13: the instance of Slot has no value for its key Bay");
  EXPECT_EQ(faultOf("instance of Disk { Name = \"a\"; }; instance of Disk { Name = \"a\"; Size = 1; };"),
            "1:47: instance root/cimv2:Disk.Name=\"a\" exists already, declared at test.mof:1:13");
  EXPECT_EQ(faultOf("instance of Disk { Name = \"a\"; NAME = \"b\"; };"), "1:32: property Name is given twice");
  EXPECT_EQ(instancesOf("Disk").size(), 0U);
}

TEST_F(MofInstance, AnEarlierInstanceIsNamedHoweverItsPathIsWritten) {
  const std::string text =
      "instance of Disk as $a { Name = \"a\"; };\ninstance of Slot as $s { Number = 1; Rear = FALSE; Bay = \"y\"; };\n"
      "instance of Holds { Where = $s; What = $a; };\n"
      "instance of Holds { Where = \"Slot.Bay=\\\"y\\\",Number=1,Rear=FALSE\"; What = \"disk.name=\\\"a\\\"\"; };";
  EXPECT_THAT(faultOf(text), ::testing::EndsWith("exists already, declared at test.mof:3:13"));
}

TEST_F(MofInstance, AnAliasDefinedTwiceIsAFaultWhereItIsUsed) {
  const std::string twice =
      "instance of Disk as $a { Name = \"a\"; };\ninstance of Disk as $A { Name = \"b\"; };\n"
      "instance of Slot as $s { Number = 1; Rear = FALSE; Bay = \"y\"; };\n";
  EXPECT_EQ(faultOf(twice + "instance of Holds { Where = $s; What = $a; };"),
            "4:40: alias $a is defined twice, at test.mof:1:21 and at test.mof:2:21");
  EXPECT_EQ(
      faultOf(twice + "instance of Holds { Where = $s; What = $a; };\ninstance of Holds { Where = $s; What = $A; };"),
      "4:40: alias $a is defined twice, at test.mof:1:21 and at test.mof:2:21 (first of 2 places)");
  load(twice);
  EXPECT_EQ(instancesOf("Disk").size(), 2U);
}

TEST_F(MofInstance, AnAliasOfTwoNamespacesMeansTheOneInTheNamespaceOfItsUse) {
  const std::string classes =
      "class T { [Key] string K; };\n[Association] class L { [Key] T REF R; };\ninstance of T as $t { K = ";
  const std::string text = "#pragma namespace (\"root/a\")\n" + classes +
                           "\"a\"; };\n#pragma namespace (\"root/b\")\n" + classes +
                           "\"b\"; };\ninstance of L { R = $t; };\n#pragma namespace (\"root/a\")\n"
                           "instance of L { R = $t; };\n";
  load(text);
  EXPECT_EQ(textOf(instancesOf("L", "root/a").at(0), "R"), "root/a:T.K=\"a\"");
  EXPECT_EQ(textOf(instancesOf("L", "root/b").at(0), "R"), "root/b:T.K=\"b\"");
  EXPECT_THAT(
      faultOf("#pragma namespace (\"root/a\")\ninstance of T as $t { K = \"3\"; };\n#pragma namespace "
              "(\"root/b\")\ninstance of T as $t { K = \"4\"; };\n#pragma namespace (\"root/c\")\n"
              "class T { [Key] string K; }; [Association] class L { [Key] T REF R; }; instance of L { R = $t; };"),
      ::testing::StartsWith("6:92: alias $t is defined twice, at test.mof:"));
}

TEST_F(MofInstance, RefusesAliasesOnThemselves) {
  EXPECT_EQ(faultOf("[Association] class Loop { [Key] Loop REF L; }; instance of Loop as $l { L = $l; };"),
            "1:78: the path of $l depends on itself");
}

TEST_F(MofInstance, AnUndeclaredClassIsOneFaultWithTheNumberOfItsPlaces) {
  load("instance of Slot as $s { Number = 1; Rear = FALSE; Bay = \"y\"; };");
  std::string text = "instance of Slot as $t { Number = 2; Rear = FALSE; Bay = \"y\"; };\n";
  for (int i = 0; i < 120; ++i) text += "instance of Disc { Name = \"" + std::to_string(i) + "\"; };\n";
  EXPECT_EQ(faultOf(text), "2:13: class Disc is not declared in namespace root/cimv2 (first of 120 places)");
  EXPECT_EQ(faultOf(text + "class Late : Disc { };"),
            "2:13: class Disc is not declared in namespace root/cimv2 (first of 121 places)");
  EXPECT_EQ(faultOf(text + "instance of Holds { Where = $t; What = \"disc.Name=\\\"a\\\"\"; };"),
            "2:13: class Disc is not declared in namespace root/cimv2 (first of 121 places)");
  std::string full;
  for (int i = 0; i < 30; ++i) full += "instance of Disc { };\ninstance of Disk { Name = 5; };\n";
  const auto faults = faultsOf(full);
  EXPECT_EQ(place(faults.at(0)),
            "1:13: class Disc is not declared in namespace root/cimv2 (first of at least 19 places)");
}

TEST_F(MofInstance, RefusesReferencesToTheWrongClass) {
  load("instance of Slot { Number = 1; Rear = FALSE; Bay = \"y\"; };");
  EXPECT_EQ(faultOf("instance of Disk as $d { Name = \"a\"; };\ninstance of Holds { Where = $d; What = $d; };"),
            "2:29: found an instance of Disk, expected one of Slot or of a class derived from it");
  EXPECT_EQ(faultOf("instance of Holds { Where = 5; What = \"FastDisk.Name=\\\"a\\\"\"; };"),
            "1:29: found an integer, expected a reference: an alias or the text of an instance path");
}

TEST_F(MofInstance, RefusesMalformedPaths) {
  const auto fault = [this](const std::string& path) {
    return faultOf("[Association] class P { [Key] string K; Disk REF D; };\ninstance of P { K = \"k\"; D =\n\"" + path +
                   "\"; };");
  };
  EXPECT_EQ(fault("Disk"),
            "3:1: malformed instance path \"Disk\": \".\" and the keys are missing after the class name");
  EXPECT_EQ(fault("Disk.Name"), "3:1: malformed instance path \"Disk.Name\": \"=\" is missing after the key Name");
  EXPECT_EQ(fault("Disk.Name=a"), "3:1: malformed instance path \"Disk.Name=a\": the text \"a\" is not quoted");
  EXPECT_EQ(fault("Disk.Name=\\\"a"), "3:1: malformed instance path \"Disk.Name=\"a\": a closing quote is missing");
  EXPECT_EQ(fault(".Name=1"), "3:1: malformed instance path \".Name=1\": a class name is missing");
  EXPECT_EQ(fault("Disk.Name=-"), "3:1: \"-\" is not a number");
  EXPECT_EQ(fault("Disk.Name=5"), "3:1: found an integer, expected a value of type string");
  EXPECT_EQ(fault("Disk.Size=5"), "3:1: class Disk has no key Size");
  EXPECT_EQ(fault("Slot.Number=5"), "3:1: the referenced instance of Slot has no value for its key Rear");
  EXPECT_EQ(fault("Disc.Name=\\\"a\\\""), "3:1: class Disc is not declared in namespace root/cimv2");
  EXPECT_EQ(fault("a b:Disk.Name=\\\"a\\\""),
            "3:1: malformed instance path \"a b:Disk.Name=\"a\"\": its namespace is malformed");
}

TEST_F(MofInstance, BoundsTheNestingOfInstances) {
  const auto nested = [](int levels) {
    std::string text = "instance of Report { Id = 1; }";
    for (int i = 0; i < levels; ++i) text = "instance of Report { Id = 1; Any = " + text + "; }";
    return text + ';';
  };
  EXPECT_NO_THROW(load(nested(32)));
  EXPECT_NE(faultOf(nested(33)).find("instances nested too deeply: more than 32 levels"), std::string::npos);
}

TEST_F(MofInstance, BoundsThePathsOfReferencesInKeys) {
  std::string text =
      "[Association] class Chain { [Key] Chain REF Last; [Key] uint8 N; };\n"
      "instance of Chain as $c0 { Last = \"root/far:Chain.N=1\"; N = 0; };\n";
  for (int i = 1; i < 60; ++i) {
    text += "instance of Chain as $c" + std::to_string(i) + " { Last = $c" + std::to_string(i - 1) +
            "; N = " + std::to_string(i) + "; };\n";
  }
  const auto faults = faultsOf(text);
  ASSERT_FALSE(faults.empty());
  EXPECT_EQ(faults[0].message, "the path in key Last is longer than 16384 bytes");
}

TEST_F(MofInstance, ReadsInstancesWithoutStoringThem) {
  MofLoader loader(_manager.sink());
  const auto objects = loader.readInstances(
      "instance of Disk { Size = 5; };\n"
      "instance of Holds { What = $d; Bolts = 4; };\n"
      "instance of FastDisk as $d { Name = \"q\"; };",
      "events.mof");
  ASSERT_EQ(objects.size(), 3U);
  EXPECT_EQ(textOf(objects[0], "Size"), "5");
  EXPECT_EQ(textOf(objects[1], "What"), "root/cimv2:FastDisk.Name=\"q\"");
  EXPECT_STREQ(objects[2]->getClassName().c_str(), "FastDisk");
  EXPECT_EQ(instancesOf("Disk").size(), 0U);
  try {
    loader.readInstances("class New { };\nQualifier Q : string, Scope(any);\ninstance of Disc { };", "events.mof");
    FAIL();
  } catch (const MofException& refusal) {
    ASSERT_EQ(refusal.getDiagnostics().size(), 3U);
    EXPECT_EQ(place(refusal.getDiagnostics()[0]), "1:7: a class cannot be declared here, only instances");
    EXPECT_EQ(place(refusal.getDiagnostics()[1]), "2:11: a qualifier cannot be declared here, only instances");
    EXPECT_EQ(place(refusal.getDiagnostics()[2]), "3:13: class Disc is not declared in namespace root/cimv2");
  }
}

TEST_F(MofInstance, AFaultInAKeyIsToldOnceHoweverOftenItsAliasIsUsed) {
  std::string text;
  for (int i = 0; i < 3000; ++i) text += "instance of Holds { Where = $s; What = \"Disk.Name=\\\"d\\\"\"; };\n";
  text += "instance of Slot as $s { Number = 70000; Rear = TRUE; Bay = \"b\"; };";
  EXPECT_EQ(place(faultsOf(text).at(0)), "3001:35: 70000 is out of the range of uint16 (0 to 65535)");
  EXPECT_EQ(faultsOf(text).size(), 1U);
}

TEST_F(MofInstance, ManyFaultsInOneInstanceAreBounded) {
  std::string text = "instance of Disk {\n";
  for (int i = 0; i < 100000; ++i) text += "  Sizes = 5;\n";
  EXPECT_EQ(faultsOf(text + "};").size(), 20U);
}

TEST_F(MofInstance, TheTextOfAnObjectReadsBack) {
  load(
      "class All { [Key] string S; uint64 U; sint64 I; real64 R; real32 F; boolean B; datetime D; char16 C; string "
      "L[];\n"
      "  uint8 N[]; [EmbeddedObject] string E; datetime T; };\n"
      "instance of All { S = \"q\\\"\\\\\\n\\x20AC;{}\"; U = 18446744073709551615; I = -9223372036854775808; R = "
      "-1.5e-300;\n"
      "  F = 0.1; B = FALSE; D = \"20260704123000.123456+120\"; C = '\\''; L = {\"a,b\", NULL, \"\"}; N = {}; \n"
      "  E = instance of All { S = \"in\"; E = instance of Disk { Name = \"d\"; }; }; };");
  const Object object = instancesOf("All").at(0);
  const std::string text = QORSmrPtr<IQoriValue>(new CQoriValue(object))->toString().c_str();
  const auto again = MofLoader(_manager.sink()).readInstances(text, "again");
  ASSERT_EQ(again.size(), 1U) << text;
  for (const char* const name : {"S", "U", "I", "R", "F", "B", "D", "C", "L", "N", "E", "T"}) {
    EXPECT_EQ(textOf(again[0], name), textOf(object, name)) << name << " in " << text;
  }
}

}  // namespace
