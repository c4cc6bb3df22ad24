// Comments, line ends, syntax faults, recovery, and texts that are no MOF.
// SPDX-License-Identifier: Apache-2.0
#include <chrono>

#include "Cimom/Mof/MofBytes.h"
#include "MofFixture.h"

namespace {

using moftest::MofTest;

class MofSyntax : public MofTest {
 protected:
  std::vector<std::string> placesOf(const std::string& text) {
    std::vector<std::string> places;
    for (const MofDiagnostic& fault : faultsOf(text)) places.push_back(place(fault));
    return places;
  }
};

using ::testing::ElementsAre;

TEST_F(MofSyntax, PassesOverCommentsAndAcceptsEveryLineEnd) {
  load(
      "// first\r\nclass /* in\r\nthe middle */ T { // why\r\n  [Key] string K;\r\n};\r\n"
      "/**/instance of T { K = \"/*no*/\"; };/***/ // last");
  EXPECT_EQ(textOf(instancesOf("T").at(0), "K"), "/*no*/");
}

TEST_F(MofSyntax, AcceptsAByteOrderMarkAndNamesBeyondAscii) {
  load(
      "\xEF\xBB\xBF"
      "class Gr\xC3\xB6\xC3\x9F"
      "e { [Key] string K; };");
  ASSERT_EQ(_manager.classNames("root/cimv2").size(), 1U);
  EXPECT_EQ(faultOf("\xEF\xBB\xBF"
                    "klass T { };")
                .substr(0, 4),
            "1:1:");
}

TEST_F(MofSyntax, RefusesNamesThatAreNoUtf8AndTakesSuchComments) {
  EXPECT_EQ(faultOf("class Kl\xE4s { };"), "1:7: the name is not UTF-8");
  EXPECT_EQ(faultOf("instance of T as $\xC3 { };"), "1:18: the name is not UTF-8");
  EXPECT_NO_THROW(load("// caf\xE9\nclass Good { };"));
}

TEST_F(MofSyntax, PassesOverPragmasWithoutMeaningHere) {
  load(
      "#pragma locale (\"en_US\")\n#pragma instancelocale(\"de_DE\")\n"
      "#pragma nonlocal (\"http://host/root/cimv2:C\")\n# pragma Unknown(\"a\" \"b\")\nclass T { };");
  EXPECT_FALSE(_manager.sink().findClass("root/cimv2", "T").IsNull());
}

TEST_F(MofSyntax, KeywordsIgnoreCaseAndMayBeNames) {
  load(
      "CLASS T { [KEY] STRING Class; uint8 Instance; uint8 of; boolean as; uint8 Qualifier; uint8 ref; };\n"
      "INSTANCE OF T AS $class { class = \"k\"; instance = 1; OF = 2; As = true; qualifier = 3; Ref = 4; };");
  EXPECT_EQ(textOf(instancesOf("T").at(0), "ref"), "4");
}

TEST_F(MofSyntax, AnEmptyTextIsSound) {
  EXPECT_NO_THROW(load(""));
  EXPECT_NO_THROW(load(" \n// nothing\n"));
}

TEST_F(MofSyntax, ShowsTheLineWithACaret) {
  try {
    load("class T {\n\tstring \xC3\xA4 b;\n};");
    FAIL();
  } catch (const MofException& refusal) {
    EXPECT_STREQ(refusal.getType().c_str(), "MOF");
    EXPECT_EQ(refusal.getCode(), 4U);
    EXPECT_STREQ(refusal.getMessage().c_str(),
                 "test.mof:2:11: found \"b\", expected \";\"\n  \tstring \xC3\xA4 b;\n  \t         ^");
    EXPECT_EQ(refusal.getDiagnostics().at(0).sourceLine, "\tstring \xC3\xA4 b;");
    EXPECT_EQ(refusal.getDiagnostics().at(0).caret, 10U);
  }
}

TEST_F(MofSyntax, CutsLongLinesAroundTheFault) {
  const MofDiagnostic fault =
      faultsOf("class T { string a; " + std::string(500, ' ') + "5 " + std::string(500, 'x') + "; };").at(0);
  EXPECT_EQ(fault.column, 521U);
  EXPECT_LT(fault.sourceLine.size(), 200U);
  EXPECT_EQ(fault.sourceLine.substr(0, 3), "...");
  EXPECT_EQ(fault.sourceLine[fault.caret], '5');
}

TEST_F(MofSyntax, TellsWhatIsFoundAndExpected) {
  EXPECT_EQ(faultOf("klass T { };"),
            "1:1: found \"klass\", expected a declaration: \"class\", \"instance of\", \"Qualifier\" or \"#pragma\"");
  EXPECT_EQ(faultOf("class { };"), "1:7: found \"{\", expected the name of a class");
  EXPECT_EQ(faultOf("class T : { };"), "1:11: found \"{\", expected the name of the superclass");
  EXPECT_EQ(faultOf("class T { string; };"), "1:17: found \";\", expected the name of a property or method");
  EXPECT_EQ(faultOf("class T { string A = ; };"), "1:22: found \";\", expected a value");
  EXPECT_EQ(faultOf("class T { uint8 A[x]; };"), "1:19: found \"x\", expected the size of the array or \"]\"");
  EXPECT_EQ(faultOf("class T { uint8 A(uint8); };"), "1:24: found \")\", expected the name of a parameter");
  EXPECT_EQ(faultOf("class T { uint8 A(uint8 b; };"), "1:26: found \";\", expected \",\" or \")\"");
  EXPECT_EQ(faultOf("[Key class T { };"), "1:6: found \"class\", expected \",\" or \"]\"");
  EXPECT_EQ(faultOf("class T { [Values{\"a\" 5}] uint8 A; };"), "1:23: found \"5\", expected \",\" or \"}\"");
  EXPECT_EQ(faultOf("instance of T as x { };"), "1:18: found \"x\", expected an alias such as $a");
  EXPECT_EQ(faultOf("instance of T { 5 = 6; };"), "1:17: found \"5\", expected the name of a property or \"}\"");
  EXPECT_EQ(faultOf("class T { string A \"text\"; };"), "1:20: found the string \"text\", expected \";\"");
  EXPECT_EQ(faultOf("class T { }"), "1:12: found the end of the text, expected \";\"");
  EXPECT_EQ(faultOf("class T {\n\n"), "1:10: found the end of the text, expected a property, a method or \"}\"");
  EXPECT_EQ(faultOf("#pragma include 5"), "1:17: found \"5\", expected \"(\"");
  EXPECT_EQ(faultOf("class T { uint8 A; @ };"), "1:20: unexpected \"@\"");
  EXPECT_EQ(faultOf("class T { uint8 A; \x01 };"), "1:20: unexpected byte 0x01");
}

TEST_F(MofSyntax, TellsOfUnterminatedCommentsAndStrings) {
  EXPECT_EQ(faultOf("class T { };\n  /* and so on\n"), "2:3: unterminated comment: \"*/\" is missing");
  EXPECT_EQ(faultOf("instance of T { A = \"abc; };\n"), "1:21: unterminated string");
  EXPECT_EQ(faultOf("instance of T { A = \"abc\\"), "1:21: unterminated string");
  EXPECT_EQ(faultOf("class T { [Key] string A; uint8 B; };\n"
                    "instance of T { A = \"abc;\n  B = 5; };\ninstance of T { A = \"x\"; };"),
            "2:21: unterminated string: it runs on into the next lines, and what follows it does not fit (found \"x\", "
            "expected \";\")");
}

TEST_F(MofSyntax, ReadsOnBehindTheLineOfAStringThatRanOn) {
  const std::vector<MofDiagnostic> faults = faultsOf(
      "class T { [Key] string A; uint8 B; };\n"
      "instance of T { A = \"abc; B = 1; };\n"
      "class U { uint9 x; };\n"
      "instance of T { A = \"x\"; };\n");
  ASSERT_EQ(faults.size(), 2U);
  EXPECT_THAT(place(faults[0]), testing::StartsWith("2:21: unterminated string: it runs on"));
  EXPECT_THAT(place(faults[1]), testing::StartsWith("3:11: ")) << "a line that the string had swallowed";
}

TEST_F(MofSyntax, TellsAllIndependentFaultsInTheOrderOfTheLines) {
  EXPECT_THAT(
      placesOf("class A { uint9 x; };\n"
               "class B { string };\n"
               "class C { [Key] string K; uint8 N; };\n"
               "instance of C { K = 5; M = 1; N = 300; };\n"
               "instance of C as $a { K = \"ok\" };\n"
               "instance of C { K = \"a\"; N = $b; };\n"
               "class D : B { };\n"
               "class E { uint8 F() };\n"
               "instance of Z { };\n"),
      ElementsAre("1:11: unknown type \"uint9\"", "2:18: found \"}\", expected the name of a property or method",
                  "4:21: found an integer, expected a value of type string", "4:24: class C has no property M",
                  "4:35: 300 is out of the range of uint8 (0 to 255)", "5:32: found \"}\", expected \";\"",
                  "6:30: found an alias, expected a value of type uint8", "8:21: found \"}\", expected \";\"",
                  "9:13: class Z is not declared in namespace root/cimv2"));
}

TEST_F(MofSyntax, GoesOnAtTheNextDeclarationWhenABraceIsMissing) {
  EXPECT_THAT(
      placesOf("class A { uint8 x;\nclass B { uint9 y; };\n[Association]\nclass C { A REF a; };\n"),
      ElementsAre("2:1: found \"class\", expected a property, a method or \"}\"", "2:11: unknown type \"uint9\""));
  EXPECT_THAT(placesOf("class A { uint8 x; }\nclass B { uint9 y; };\n"),
              ElementsAre("2:1: found \"class\", expected \";\"", "2:11: unknown type \"uint9\""));
  EXPECT_THAT(placesOf("#pragma namespace\nclass B { uint9 y; };\n"),
              ElementsAre("1:18: found the end of the line, expected \"(\"", "2:11: unknown type \"uint9\""));
}

TEST_F(MofSyntax, StopsAtTwentyFaults) {
  std::string text;
  for (int i = 0; i < 50; ++i) text += "klass T { };\n";
  EXPECT_EQ(faultsOf(text).size(), 20U);
  text.clear();
  for (int i = 0; i < 50; ++i) text += "class A" + std::to_string(i) + " : None" + std::to_string(i) + " { };\n";
  EXPECT_EQ(faultsOf(text).size(), 20U);
}

TEST_F(MofSyntax, RefusesWhatIsNoMofQuickly) {
  const auto start = std::chrono::steady_clock::now();
  constexpr std::size_t kSize = 1U << 20U;  // what is quadratic takes minutes
  for (const char* const piece : {"[",
                                  "{",
                                  "(",
                                  ";",
                                  "}",
                                  "\"",
                                  "'",
                                  "/*",
                                  "$",
                                  "#",
                                  "\\",
                                  "\x80",
                                  "[a(",
                                  "a ",
                                  "class ",
                                  "class A {",
                                  "[a{\"x\"}]",
                                  "instance of A { B = ",
                                  "instance of A { B = {",
                                  "class\n",
                                  "\"\n",
                                  "#pragma ",
                                  "0",
                                  "\xFF\xFE",
                                  "\n[\n"}) {
    std::string text;
    while (text.size() < kSize) text += piece;
    EXPECT_GE(faultsOf(text).size(), 1U) << piece;
  }
  EXPECT_EQ(faultsOf(std::string("class A { };\0 class B { };", 25)).at(0).message,
            "this is not text: it contains zero bytes");
  const auto spent = std::chrono::steady_clock::now() - start;
  EXPECT_LT(std::chrono::duration_cast<std::chrono::seconds>(spent).count(), 120);
}

TEST_F(MofSyntax, ReadsLongTextsInLinearTime) {
  constexpr int kCount = 20000;
  std::string text = "class T { [Key] uint32 N; string S; uint8 A[]; };\ninstance of T { N = 0; S = ";
  for (int i = 0; i < kCount; ++i) text += "\"piece\"\n";
  text += "; A = {1";
  for (int i = 1; i < kCount; ++i) text += ",1";
  text += "}; };\n";
  for (int i = 1; i < kCount; ++i)
    text += "instance of T as $a" + std::to_string(i) + " { N = " + std::to_string(i) + "; };\n";
  load(text);
  EXPECT_EQ(instancesOf("T").size(), static_cast<std::size_t>(kCount));
  EXPECT_EQ(textOf(instancesOf("T").at(0), "S").size(), 5U * kCount);
}

// At each place of texts of each length up to some words of memory.
TEST_F(MofSyntax, ATextIsPlainWhoseBytesAllStandForThemselves) {
  for (std::size_t size = 0; size <= 26; ++size) {
    const std::string plain(size, 'p');
    EXPECT_TRUE(isPlainMofText(plain)) << size;
    for (std::size_t place = 0; place < size; ++place) {
      for (int code = 0; code < 256; ++code) {
        std::string text = plain;
        text[place] = static_cast<char>(code);
        const bool isExpected = code >= 0x20 && code < 0x80 && code != '\\';
        ASSERT_EQ(isPlainMofText(text), isExpected) << size << ' ' << place << ' ' << code;
      }
    }
  }
  EXPECT_TRUE(isPlainMofText("~ !#\x7f"));
  EXPECT_FALSE(isPlainMofText(std::string_view("\x01\x80zzzzzzzz")));
}

}  // namespace
