// Conditions and arithmetic that do not mean what someone who knows SQL expects.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ExplanationWorld.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using NodeSurprises = ExplanationWorld;

TEST_F(NodeSurprises, MultiplicationBeforeADivision) {
  EXPECT_THAT(rules("SELECT Size * 100 / Load AS P, Name FROM Disk"), IsEmpty());  // a real is not cut off
  EXPECT_THAT(rules("SELECT Size * 100 / 3 AS P FROM Disk"), ElementsAre("ARITH-2"));
  EXPECT_THAT(surprise("SELECT Size * 2 * 100 / 3 AS P FROM Disk"), testing::HasSubstr("\"Size * (2 * (100 / 3))\""));
  EXPECT_THAT(surprise("SELECT Size - 1 - 2 - 3 AS P FROM Disk"), testing::HasSubstr("\"Size - (1 - (2 - 3))\""));
}

TEST_F(NodeSurprises, LikeSurprisesByWildcardsAlone) {
  const std::string select = "SELECT Name FROM Disk WHERE Name LIKE ";
  for (const char* text : {"'d%'", "'d_'", "'*d'", "('%')"}) EXPECT_THAT(rules(select + text), ElementsAre("LIKE-1"));
  for (const char* text : {"'d'", "'a?.b'", "Kind"}) EXPECT_THAT(rules(select + text), IsEmpty()) << text;
}

// rule: ISA-1
TEST_F(NodeSurprises, IsaOfAClassThatThereIsNot) {
  const std::string select = "SELECT Name FROM Disk AS d WHERE ";
  EXPECT_THAT(rules(select + "d ISA Nope"), ElementsAre("ISA-1"));
  EXPECT_THAT(surprise(select + "Size > 1 AND NOT d ISA 'Nope'"),
              testing::HasSubstr("\"d ISA Nope\" is never true: there is no class Nope"));
  for (const char* condition : {"d ISA Disk", "d ISA fasthost", "d ISA 'Host'"}) {
    EXPECT_THAT(rules(select + condition), IsEmpty()) << condition;
  }
  EXPECT_THAT(rules(select + "d ISA d"), ElementsAre("ISA-1"));  // an alias is no class
}

TEST_F(NodeSurprises, ArraysAgainstSingleValues) {
  const std::string select = "SELECT Name FROM Disk WHERE ";
  EXPECT_THAT(surprise(select + "Ports = 3"), testing::HasSubstr("write 3 = ANY Ports"));
  EXPECT_THAT(surprise(select + "Ports < Size"), testing::HasSubstr("write Size > ANY Ports"));
  EXPECT_THAT(surprise(select + "3 <= Ports"), testing::HasSubstr("write 3 <= ANY Ports"));
  EXPECT_THAT(surprise(select + "Ports <> 3"), testing::HasSubstr("write NOT EVERY Ports = 3"));
  EXPECT_THAT(surprise(select + "(ANY Ports) = 3"), testing::HasSubstr(": Ports is an array. To ask its elements write "
                                                                       "3 = ANY Ports"));
  EXPECT_THAT(surprise(select + "Ports < Ports"), testing::HasSubstr("arrays have no order"));
  EXPECT_THAT(rules("SELECT h.Name FROM Host AS h, Disk AS d WHERE h.Memory =* d.Ports"), ElementsAre("ARR-7"));
  EXPECT_THAT(rules(select + "ANY Size = 3"), ElementsAre("ARR-5"));
  for (const char* condition :
       {"Ports = Ports", "Ports[0] = 3", "3 = ANY Ports", "Ports IS NULL", "Unknown::Name = 'a'"}) {
    EXPECT_THAT(rules(select + condition), testing::Not(testing::Contains(testing::StartsWith("ARR")))) << condition;
  }
}

TEST_F(NodeSurprises, Real32BesideALiteralThatItCannotHold) {
  const std::string select = "SELECT Name FROM Host WHERE ";
  for (const char* condition : {"Heat = 0.1", "-0.1 < Heat", "Heat <> 16777217", "Heat < 1.0e300"}) {
    EXPECT_THAT(rules(select + condition), ElementsAre("CMP-2")) << condition;
  }
  EXPECT_THAT(surprise(select + "Heat = 0.1"), testing::HasSubstr("the nearest is 0.10000000149011612"));
  for (const char* condition : {"Heat = 0.5", "Heat > 16777216", "Memory = 0.1", "0.1 = 0.1", "Heat = Memory"}) {
    EXPECT_THAT(rules(select + condition), IsEmpty()) << condition;
  }
}

// rule: ASSOC-6
TEST_F(NodeSurprises, JoinClassesThatTieNothing) {
  const std::string select = "SELECT h.Name, d.Name FROM Host AS h, Disk AS d, On AS o WHERE ";
  EXPECT_THAT(rules(select + "On = h AND On = d"), IsEmpty());
  EXPECT_THAT(rules(select + "o = h AND o = d"), IsEmpty());
  EXPECT_THAT(surprise(select + "Onn = h AND Onn = d"), testing::HasSubstr("there is no class Onn"));
  EXPECT_THAT(surprise(select + "Spare = h AND Spare = d"), testing::HasSubstr("Spare is not an association"));
  EXPECT_THAT(rules(select + "OBJECTPATH(h) = OBJECTPATH(d) AND OBJECTPATH(h) = OBJECTPATH(d)"),
              ElementsAre("ASSOC-6"));
}

TEST_F(NodeSurprises, ScopesOfAnotherClass) {
  EXPECT_THAT(surprise("SELECT Name FROM Disk WHERE Host::Kind = 'a'"), testing::HasSubstr("reads Kind of Disk"));
  EXPECT_THAT(rules("SELECT FastHost::Memory FROM Host"), ElementsAre("NAME-6"));
  EXPECT_THAT(rules("SELECT Host::Memory FROM FastHost WHERE fasthost::Memory = 1"), IsEmpty());
}

TEST_F(NodeSurprises, CountOfACondition) {
  for (const char* argument : {"Size > 1", "(Size > 1)", "Kind IS NULL", "Size OR Load", "NOT Size"}) {
    EXPECT_THAT(rules("SELECT COUNT(" + std::string(argument) + ") AS C FROM Disk"), ElementsAre("AGG-2")) << argument;
  }
  EXPECT_THAT(rules("SELECT COUNT(Size * 2) AS C, COUNT(d) AS D FROM Disk AS d"), IsEmpty());
}

TEST_F(NodeSurprises, NegationOfUnsigned) {
  for (const char* value : {"-(Memory + 1)", "-(2 * 3)", "-SUM(Memory)", "-COUNT(Name)", "-(-(Memory + 1))"}) {
    EXPECT_THAT(rules("SELECT " + std::string(value) + " AS X FROM Host"), ElementsAre("ARITH-6")) << value;
  }
  EXPECT_THAT(rules("SELECT -MAX(Memory) AS X FROM Host"), IsEmpty());
  EXPECT_THAT(surprise("SELECT -(Memory + 1) AS X FROM Host"), testing::HasSubstr("Write 0 - (Memory + 1)"));
  EXPECT_THAT(rules("SELECT -Size AS X FROM Disk"), ElementsAre("ARITH-6"));
  EXPECT_THAT(rules("SELECT -Memory AS X, -(Memory - 1) AS Y, -5 AS Z FROM Host"), IsEmpty());
}

TEST_F(NodeSurprises, LiteralsBelowTheLeast) {
  EXPECT_THAT(rules("SELECT Name FROM Disk WHERE Size > -9223372036854775808"), ElementsAre("LEX-6"));
  EXPECT_THAT(rules("SELECT Name FROM Disk WHERE Size > -9223372036854775807"), IsEmpty());
}

TEST_F(NodeSurprises, LiteralsAboveTheGreatest) {
  for (const char* literal :
       {"18446744073709551616", "99999999999999999999", "100000000000000000000", "00018446744073709551616"}) {
    EXPECT_EQ(surprise("SELECT Name FROM Disk WHERE Size = " + std::string(literal)),
              std::string(literal) + " is greater than any integer type holds: it stands for 18446744073709551615");
  }
  for (const char* literal :
       {"18446744073709551615", "0000018446744073709551615", "18446744073709551614", "0", "18446744073709551616.0"}) {
    EXPECT_THAT(rules("SELECT Name FROM Disk WHERE Size = " + std::string(literal)), IsEmpty()) << literal;
  }
}

}  // namespace
