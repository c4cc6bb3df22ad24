// Literals and the values that they make.
// SPDX-License-Identifier: Apache-2.0
#include "MofFixture.h"

namespace {

using moftest::MofTest;

class MofValue : public MofTest {
 protected:
  // The fault of a value, at its place in "class ... V = <literal>".
  std::string refused(const std::string& type, const std::string& literal) {
    const std::string fault =
        faultOf("class T { [Key] string K; " + type + " V; };\ninstance of T { K = \"k\"; V =\n" + literal + "; };");
    return fault;
  }
};

TEST_F(MofValue, ReadsIntegersInEveryBase) {
  EXPECT_EQ(read("uint32", "0"), "0");
  EXPECT_EQ(read("uint32", "42"), "42");
  EXPECT_EQ(read("uint32", "+42"), "42");
  EXPECT_EQ(read("sint32", "-42"), "-42");
  EXPECT_EQ(read("uint8", "1010b"), "10");
  EXPECT_EQ(read("uint8", "1B"), "1");
  EXPECT_EQ(read("sint8", "-101b"), "-5");
  EXPECT_EQ(read("uint8", "017"), "15");
  EXPECT_EQ(read("uint8", "0x1F"), "31");
  EXPECT_EQ(read("uint8", "0X1f"), "31");
  EXPECT_EQ(read("uint32", "0xBEEB"), "48875");
  EXPECT_EQ(read("sint16", "-0x10"), "-16");
}

TEST_F(MofValue, TakesTheLimitsOfEveryIntegerType) {
  EXPECT_EQ(read("uint8", "255"), "255");
  EXPECT_EQ(read("uint16", "65535"), "65535");
  EXPECT_EQ(read("uint32", "4294967295"), "4294967295");
  EXPECT_EQ(read("uint64", "18446744073709551615"), "18446744073709551615");
  EXPECT_EQ(read("sint8", "-128"), "-128");
  EXPECT_EQ(read("sint8", "127"), "127");
  EXPECT_EQ(read("sint16", "-32768"), "-32768");
  EXPECT_EQ(read("sint32", "-2147483648"), "-2147483648");
  EXPECT_EQ(read("sint64", "-9223372036854775808"), "-9223372036854775808");
  EXPECT_EQ(read("sint64", "9223372036854775807"), "9223372036854775807");
}

TEST_F(MofValue, RefusesIntegersOutOfRange) {
  EXPECT_EQ(refused("uint8", "256"), "3:1: 256 is out of the range of uint8 (0 to 255)");
  EXPECT_EQ(refused("uint8", "-1"), "3:1: -1 is out of the range of uint8 (0 to 255)");
  EXPECT_EQ(refused("uint16", "0x10000"), "3:1: 0x10000 is out of the range of uint16 (0 to 65535)");
  EXPECT_EQ(refused("sint8", "128"), "3:1: 128 is out of the range of sint8 (-128 to 127)");
  EXPECT_EQ(refused("sint8", "-129"), "3:1: -129 is out of the range of sint8 (-128 to 127)");
  EXPECT_EQ(refused("sint64", "9223372036854775808"),
            "3:1: 9223372036854775808 is out of the range of sint64 (-9223372036854775808 to 9223372036854775807)");
  EXPECT_EQ(refused("uint64", "18446744073709551616"), "3:1: \"18446744073709551616\" does not fit 64 bits");
}

TEST_F(MofValue, ReadsReals) {
  EXPECT_EQ(read("real64", "1.5"), "1.5");
  EXPECT_EQ(read("real64", "-.25"), "-0.25");
  EXPECT_EQ(read("real64", "1.0E-3"), "0.001");
  EXPECT_EQ(read("real64", "2.5e+2"), "250");
  EXPECT_EQ(read("real64", "3"), "3");
  EXPECT_EQ(read("real32", "0.25"), "0.25");
}

TEST_F(MofValue, RefusesRealsOutOfRange) {
  EXPECT_EQ(refused("real32", "1.0e39"), "3:1: 1.0e39 is out of the range of real32 (-3.4028235e+38 to 3.4028235e+38)");
  EXPECT_EQ(refused("real64", "1.0e999"), "3:1: \"1.0e999\" does not fit a 64-bit real number");
}

TEST_F(MofValue, RefusesMalformedNumbers) {
  EXPECT_EQ(refused("uint8", "08"), "3:1: \"08\" is not a number (a leading 0 means octal)");
  EXPECT_EQ(refused("uint8", "12x"), "3:1: \"12x\" is not a number");
  EXPECT_EQ(refused("uint8", "12b"), "3:1: \"12b\" is not a number");
  EXPECT_EQ(refused("uint8", "0xG"), "3:1: \"0xG\" is not a number");
  EXPECT_EQ(refused("real64", "1.2.3"), "3:1: \"1.2.3\" is not a number");
  EXPECT_EQ(refused("real64", "1.2e"), "3:1: \"1.2e\" is not a number");
}

TEST_F(MofValue, ReadsBooleansAndNullInAnyCase) {
  EXPECT_EQ(read("boolean", "TRUE"), "TRUE");
  EXPECT_EQ(read("boolean", "false"), "FALSE");
  EXPECT_EQ(read("uint8", "NULL"), "NULL");
  EXPECT_EQ(read("string", "null"), "NULL");
}

TEST_F(MofValue, ReadsStringsWithEscapes) {
  EXPECT_EQ(read("string", R"("a\tb\nc\"d\\e\'f\b\f\r")"), "a\tb\nc\"d\\e'f\b\f\r");
  EXPECT_EQ(read("string", R"("\x41\X0042\x43")"), "ABC");
  EXPECT_EQ(read("string", R"("\x20AC")"), "\xE2\x82\xAC");
  EXPECT_EQ(read("string", R"("\xD83D\xDE00")"), "\xF0\x9F\x98\x80");
  EXPECT_EQ(read("string", "\"\xC3\xA4\""), "\xC3\xA4");
  EXPECT_EQ(read("string", "\"\""), "");
}

TEST_F(MofValue, JoinsAdjacentStringsAndKeepsLinesInside) {
  EXPECT_EQ(read("string", "\"a\" \"b\"\n  // between\n  \"c\""), "abc");
  EXPECT_EQ(read("string", "\"one\ntwo\""), "one\ntwo");
  EXPECT_EQ(read("string", "\"// no comment /* here */\""), "// no comment /* here */");
}

TEST_F(MofValue, RefusesBadEscapesAndBytes) {
  EXPECT_EQ(refused("string", R"("ab\q")"),
            "3:4: unknown escape \"\\q\"; known are \\b \\t \\n \\f \\r \\\" \\' \\\\ and \\xhhhh");
  EXPECT_EQ(refused("string", R"("\x0000")"), "3:2: the escape \"\\x0000\" names no character");
  EXPECT_EQ(refused("string", R"("\xD800x")"), "3:2: the escape \"\\xD800\" names no character");
  EXPECT_EQ(refused("string", R"("\x")"),
            "3:2: unknown escape \"\\x\"; known are \\b \\t \\n \\f \\r \\\" \\' \\\\ and \\xhhhh");
  EXPECT_EQ(refused("string", "\"a\xFF\""), "3:3: the text is not UTF-8");
  EXPECT_EQ(refused("string", "\"\xC0\x80\""), "3:2: the text is not UTF-8");
  EXPECT_EQ(refused("string", "\"\xED\xA0\x80\""), "3:2: the text is not UTF-8");
}

TEST_F(MofValue, ReadsCharacters) {
  EXPECT_EQ(read("char16", "'x'"), "x");
  EXPECT_EQ(read("char16", R"('\'')"), "'");
  EXPECT_EQ(read("char16", R"('\x20AC')"), "\xE2\x82\xAC");
  EXPECT_EQ(read("char16", "65"), "A");
  EXPECT_EQ(refused("char16", "'xy'"), "3:1: a character literal holds exactly one character up to U+FFFF");
  EXPECT_EQ(refused("char16", "''"), "3:1: a character literal holds exactly one character up to U+FFFF");
  EXPECT_EQ(refused("char16", "'x"), "3:1: unterminated character literal");
}

TEST_F(MofValue, ReadsDateTimesAndIntervals) {
  for (const std::string text : {"20260704123000.123456+120", "20260704123000.123456-000", "20240229000000.000000+000",
                                 "20260704123000.******+120", "20260704123000.1234**+120", "2026**********.******+***",
                                 "00000090123000.000000:000", "00000001******.******:000"}) {
    EXPECT_EQ(read("datetime", '"' + text + '"'), text);
  }
}

TEST_F(MofValue, RefusesMalformedDateTimes) {
  const auto fault = [this](const std::string& text) {
    const std::string whole = refused("datetime", '"' + text + '"');
    const std::string start = "3:1: malformed datetime \"" + text + "\": ";
    return whole.rfind(start, 0) == 0 ? whole.substr(start.size()) : whole;
  };
  EXPECT_EQ(fault("yesterday"), "it is not 25 characters long");
  EXPECT_EQ(fault("20261301000000.000000+000"), "its month is not 01 to 12");
  EXPECT_EQ(fault("20260230000000.000000+000"), "its day does not exist");
  EXPECT_EQ(fault("20250229000000.000000+000"), "its day does not exist");
  EXPECT_EQ(fault("20260101240000.000000+000"), "its hour is not 00 to 23");
  EXPECT_EQ(fault("20260101006000.000000+000"), "its minute is not 00 to 59");
  EXPECT_EQ(fault("20260101000060.000000+000"), "its second is not 00 to 59");
  EXPECT_EQ(fault("20260101000000,000000+000"), "it has no \".\" before the microseconds");
  EXPECT_EQ(fault("20260101000000.00000x+000"), "its microseconds are not 6 digits");
  EXPECT_EQ(fault("20260101000000.000000z000"), "it has no \"+\", \"-\" or \":\" after the microseconds");
  EXPECT_EQ(fault("20260101000000.000000+0x0"), "its offset from UTC is not 3 digits");
  EXPECT_EQ(fault("20260101000000.000000:001"), "an interval ends with \":000\"");
  EXPECT_EQ(fault("20**0101000000.000000+000"), "its year is not 4 digits");
  EXPECT_EQ(fault("202601**000000.000000+000"), "digits follow asterisks");
}

TEST_F(MofValue, ReadsArraysWithNullElements) {
  EXPECT_EQ(read("uint8[]", "{1, 2, 3}"), "1,2,3");
  EXPECT_EQ(read("string[]", "{\"a\" \"b\", \"c\"}"), "ab,c");
  EXPECT_EQ(read("uint8[3]", "{1, 2}"), "1,2");
  EXPECT_EQ(read("uint8[]", "{}"), "");
  EXPECT_EQ(read("boolean[]", "NULL"), "NULL");
  load("class T { [Key] string K; uint8 V[]; }; instance of T { K = \"k\"; V = {1, NULL}; };");
  const moftest::Value value = valueOf(instancesOf("T").at(0), "V");
  ASSERT_TRUE(value->isArray());
  EXPECT_EQ(value->getArray()->entries(), 2U);
  EXPECT_TRUE(value->getArray()->last().IsNull());
}

TEST_F(MofValue, RefusesArraysThatDoNotFit) {
  EXPECT_EQ(faultOf("class T { [Key] string K; uint8 V[2]; }; instance of T { K = \"k\"; V = {1,2,3}; };"),
            "1:71: the array holds 3 elements, at most 2 are declared");
  EXPECT_EQ(faultOf("class T { [Key] string K; uint8 V[]; }; instance of T { K = \"k\"; V = 1; };"),
            "1:70: found an integer, expected a value of type uint8[]");
  EXPECT_EQ(faultOf("class T { [Key] string K; uint8 V[0]; };"),
            "1:35: the size of an array is a number from 1 to 2147483647");
}

TEST_F(MofValue, RefusesValuesOfAnotherKind) {
  EXPECT_EQ(refused("uint8", "\"5\""), "3:1: found a string, expected a value of type uint8");
  EXPECT_EQ(refused("uint8", "1.5"), "3:1: found a real number, expected a value of type uint8");
  EXPECT_EQ(refused("uint8", "TRUE"), "3:1: found a boolean, expected a value of type uint8");
  EXPECT_EQ(refused("string", "5"), "3:1: found an integer, expected a value of type string");
  EXPECT_EQ(refused("boolean", "1"), "3:1: found an integer, expected a value of type boolean");
  EXPECT_EQ(refused("datetime", "1"), "3:1: found an integer, expected a value of type datetime");
  EXPECT_EQ(refused("string", "{\"a\"}"), "3:1: found an array, expected a value of type string");
  EXPECT_EQ(refused("string", "instance of T { K = \"x\"; }"),
            "3:1: found an instance, expected a value of type string");
}

// Texts are looked at several bytes at a time: what is special may stand at any place among them.
TEST_F(MofValue, ReadsStringsWithAnythingAtAnyPlace) {
  const std::string letters = "abcdefghijklmnopqrstuvwxyz";
  for (std::size_t place = 0; place <= letters.size(); ++place) {
    const auto with = [&](const std::string& inside) { return std::string(letters).insert(place, inside); };
    const std::string column = std::to_string(place + 2);
    EXPECT_EQ(read("string", '"' + with("\\\"") + '"'), with("\""));
    EXPECT_EQ(read("string", '"' + with("\\x41;\\\\") + '"'), with("A;\\"));
    EXPECT_EQ(read("string", '"' + with("\xC3\xA4") + '"'), with("\xC3\xA4"));
    EXPECT_EQ(read("string", '"' + with("//") + '"'), with("//"));
    EXPECT_EQ(refused("string", '"' + with("\xFF") + '"'), "3:" + column + ": the text is not UTF-8");
    EXPECT_EQ(refused("string", '"' + with("\\q") + '"').substr(0, 5 + column.size()), "3:" + column + ": u");
    EXPECT_EQ(refused("string", '\'' + with("\n") + '\''), "3:1: unterminated character literal");
    EXPECT_EQ(refused("string", '\'' + with("\\'") + "\n'"), "3:1: unterminated character literal");
  }
}

}  // namespace
