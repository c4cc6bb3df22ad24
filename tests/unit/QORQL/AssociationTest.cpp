// Association conditions, as they are parsed.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_Association.h"
#include "ParserSupport.h"

namespace {

using parsertest::Fault;
using parsertest::Level;
using parsertest::Parsed;
using parsertest::plain;
using parsertest::print;
using parsertest::thrownBy;

std::string conditionOf(const char* text) {
  Parsed parsed(text);
  parsed.know({"S", "D", "A1"});
  parsed.parse(Level::Expression);
  EXPECT_EQ(parsed.lexer.getCurrent().getType(), TokenEOF) << text;
  return print(parsed.tree);
}

struct Condition {
  const char* name;
  const char* text;
  const char* tree;
};

class AssociationCondition : public testing::TestWithParam<Condition> {};

TEST_P(AssociationCondition, IsRecognised) { EXPECT_EQ(conditionOf(GetParam().text), GetParam().tree); }

INSTANTIATE_TEST_SUITE_P(
    Recognised, AssociationCondition,
    testing::Values(
        Condition{"BareNames", "Assoc = S AND Assoc = D", "assoc(Assoc: S -> D)"},
        Condition{"AnyCase", "Assoc = s AND ASSOC = d", "assoc(Assoc: s -> d)"},
        Condition{"LeftOuter", "Assoc *= S AND Assoc = D", "assoc(Assoc: S *> D)"},
        Condition{"SecondJoinIsNotLookedAt", "Assoc = S AND Assoc *=* D", "assoc(Assoc: S -> D)"},
        Condition{"References", "Assoc.firstref = OBJECTPATH(S) AND Assoc.secondref = OBJECTPATH(D)",
                  "assoc(Assoc: S -> D)"},
        Condition{"ReferencesOfUnknownClasses", "Assoc.firstref = OBJECTPATH(x) AND Assoc.secondref = OBJECTPATH(y)",
                  "assoc(Assoc: X -> Y)"},
        Condition{"ReferenceAndBareName", "Assoc.secondref = S AND Assoc = D", "assoc(Assoc: S -> D)"},
        Condition{"AssociationInFrom", "A1 = S AND A1 = D", "assoc(A1: S -> D)"},
        Condition{"AmongOthers", "a = 1 AND Assoc = S AND Assoc = D AND b = 2",
                  "((a = 1) AND (assoc(Assoc: S -> D) AND (b = 2)))"},
        Condition{"InOr", "a = 1 OR Assoc = S AND Assoc = D", "((a = 1) OR assoc(Assoc: S -> D))"},
        Condition{"TwoInARow", "P = S AND P = D AND Q = D AND Q = S", "(assoc(P: S -> D) AND assoc(Q: D -> S))"}),
    [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Ordinary, AssociationCondition,
    testing::Values(Condition{"UnknownName", "Assoc = x AND Assoc = y", "((Assoc = x) AND (Assoc = y))"},
                    Condition{"ReferenceProperty", "Antecedent = OBJECTPATH(S)", "(Antecedent = {OBJECTPATH(S.NONE)})"},
                    Condition{"Negated", "NOT Assoc = S", "(NOT (Assoc = S))"},
                    Condition{"OtherOperator", "Assoc <> S", "(Assoc <> S)"},
                    Condition{"Any", "ANY Assoc = S", "ANY< (Assoc = S)"},
                    Condition{"QualifiedLeft", "C.Assoc = S", "(C.Assoc = S)"},
                    Condition{"QualifiedRight", "Assoc = S.x", "(Assoc = S.x)"},
                    Condition{"Computed", "Assoc = S + 1", "(Assoc = (S + 1))"},
                    Condition{"ComputedLeft", "Assoc * 2 = S", "((Assoc * 2) = S)"},
                    Condition{"FromNameOnTheLeftAlone", "S = x", "(S = x)"},
                    Condition{"Literal", "Assoc = 'S'", "(Assoc = S)"},
                    Condition{"NoRightSide", "S IS NULL", "(S IS NULL)"}),
    [](const auto& info) { return info.param.name; });

class AssociationFault : public testing::TestWithParam<Fault> {};

TEST_P(AssociationFault, IsReported) {
  Parsed parsed(GetParam().text);
  parsed.know({"S", "D"});
  EXPECT_EQ(thrownBy([&] { parsed.parse(Level::Expression); }), GetParam().thrown);
}

constexpr const char* kSyntax = "parse 14@1: Invalid syntax specified for an Association";
constexpr const char* kJoin = "parse 14@1: Right and Full outer joins are not supported on associations";

INSTANTIATE_TEST_SUITE_P(
    Faults, AssociationFault,
    testing::Values(Fault{"EndsEarly", "Assoc = S", "parse 6@1: 'AND' expected for an association"},
                    Fault{"OrInstead", "Assoc = S\nOR Assoc = D", "parse 6@2: 'AND' expected for an association"},
                    Fault{"SecondIsOrdinary", "Assoc = S AND a = 1", kSyntax},
                    Fault{"SecondIsNegated", "Assoc = S AND NOT Assoc = D", kSyntax},
                    Fault{"NamesDiffer", "Assoc = S AND Other = D", kSyntax},
                    Fault{"RightJoin", "Assoc =* S AND Assoc = D", kJoin},
                    Fault{"FullJoin", "Assoc *=* S AND Assoc = D", kJoin},
                    Fault{"NamesDifferBeforeJoin", "Assoc =* S AND Other = D", kSyntax}),
    [](const auto& info) { return info.param.name; });

TEST(Association, HasItsParts) {
  const QORQL_Association association("S", "D", "Assoc", QORQL_JOIN_TYPE_LEFT_OUTER, "text", "CQL");
  EXPECT_EQ(plain(association.getSource()), "S");
  EXPECT_EQ(plain(association.getDestination()), "D");
  EXPECT_EQ(plain(association.getAssociationName()), "Assoc");
  EXPECT_EQ(association.getJoinType(), QORQL_JOIN_TYPE_LEFT_OUTER);
}

}  // namespace
