// Comparisons as they are parsed: their operators, and the checks of arrays.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "ParserSupport.h"

namespace {

using parsertest::Fault;
using parsertest::Level;
using parsertest::Parsed;
using parsertest::plain;
using parsertest::print;
using parsertest::thrownBy;

struct Spelled {
  const char* text;
  QORQL_Operator op;
  int value;
  QORQL_JoinType join;
};

class ComparisonOperator : public testing::TestWithParam<Spelled> {};

TEST_P(ComparisonOperator, HasItsValueAndJoinType) {
  const Spelled& spelled = GetParam();
  const Parsed parsed(QORString("a ") + spelled.text + " b", Level::Comparison);
  const auto& comparison = static_cast<const QORQL_Comparison&>(*parsed.tree);
  EXPECT_EQ(comparison.getOperator(), spelled.op);
  EXPECT_EQ(static_cast<int>(spelled.op), spelled.value);
  EXPECT_EQ(comparison.getJoinType(), spelled.join);
  EXPECT_FALSE(comparison.getRHSArithmeticExpression().IsNull());
}

INSTANTIATE_TEST_SUITE_P(All, ComparisonOperator,
                         testing::Values(Spelled{"=", QORQL_OperatorEQUAL, 1, QORQL_JOIN_TYPE_INNER},
                                         Spelled{"<>", QORQL_OperatorNOTEQUAL, 2, QORQL_JOIN_TYPE_INNER},
                                         Spelled{"!=", QORQL_OperatorNOTEQUAL, 2, QORQL_JOIN_TYPE_INNER},
                                         Spelled{"<", QORQL_OperatorLESS, 3, QORQL_JOIN_TYPE_INNER},
                                         Spelled{">", QORQL_OperatorGREATER, 4, QORQL_JOIN_TYPE_INNER},
                                         Spelled{"<=", QORQL_OperatorLESSEQUAL, 5, QORQL_JOIN_TYPE_INNER},
                                         Spelled{">=", QORQL_OperatorGREATEREQUAL, 6, QORQL_JOIN_TYPE_INNER},
                                         Spelled{"LIKE", QORQL_OperatorLIKE, 16, QORQL_JOIN_TYPE_INNER},
                                         Spelled{"*=", QORQL_OperatorLEFTJOIN, 17, QORQL_JOIN_TYPE_LEFT_OUTER},
                                         Spelled{"=*", QORQL_OperatorRIGHTJOIN, 18, QORQL_JOIN_TYPE_RIGHT_OUTER},
                                         Spelled{"*=*", QORQL_OperatorFULLOUTERJOIN, 19, QORQL_JOIN_TYPE_FULL_OUTER},
                                         Spelled{"ISA", QORQL_OperatorISA, 22, QORQL_JOIN_TYPE_INNER}));

TEST(Comparison, TildaIsNoOperator) {
  Parsed parsed("x ~ 1", Level::Comparison);
  EXPECT_EQ(print(parsed.tree), "x");
  EXPECT_EQ(parsed.lexer.getCurrent().getType(), TokenTILDA);
}

TEST(Comparison, TakesAClassNameAfterIsaAsText) {
  const Parsed parsed("x ISA CIM_Foo", Level::Comparison);
  const auto& comparison = static_cast<const QORQL_Comparison&>(*parsed.tree);
  const QORQL_Factor* right = parsertest::leadingFactor(comparison.getRHSArithmeticExpression());
  ASSERT_NE(right, nullptr);
  EXPECT_EQ(plain(right->getLiteral()->toString()), "CIM_Foo");
  EXPECT_EQ(parsed.requested(""), "x");
}

TEST(Comparison, ArrayModesHaveTheirValues) {
  const auto modeOf = [](const char* text) {
    const Parsed parsed(text, Level::Comparison);
    return static_cast<int>(static_cast<const QORQL_Comparison&>(*parsed.tree).getArrayComp());
  };
  EXPECT_EQ(modeOf("a = b"), 0);
  EXPECT_EQ(modeOf("ANY a = b"), 1);
  EXPECT_EQ(modeOf("a = ANY b"), 2);
  EXPECT_EQ(modeOf("EVERY a = b"), 3);
  EXPECT_EQ(modeOf("a = EVERY b"), 4);
}

constexpr const char* kIs = "runtime 6: Invalid syntax specified for 'IS' operator";
constexpr const char* kIsa = "runtime 6: Invalid syntax specified for 'ISA' operator";
constexpr const char* kTwice = "runtime 5: ANY|EVERY cannot be on both sides of array-comp";
constexpr const char* kAnyArrays =
    "runtime 6: One side of array-comp MUST be non-complete array when ANY|EVERY is used on the other side.";
constexpr const char* kMixed =
    "runtime 6: A comparison between an array property and non-array property is illegal if neither ANY or EVERY is "
    "used.";

class ComparisonFault : public testing::TestWithParam<Fault> {};

TEST_P(ComparisonFault, IsReported) {
  Parsed parsed(GetParam().text);
  EXPECT_EQ(thrownBy([&] { parsed.parse(Level::Expression); }), GetParam().thrown);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, ComparisonFault,
    testing::Values(Fault{"IsNumber", "x IS 5", kIs}, Fault{"IsNotNumber", "x IS NOT 5", kIs},
                    Fault{"IsNothing", "x IS", kIs}, Fault{"IsNotNot", "x IS NOT NOT NULL", kIs},
                    Fault{"IsaNumber", "x ISA 5", kIsa}, Fault{"IsaNothing", "x ISA", kIsa},
                    Fault{"IsaAny", "x ISA ANY y", kIsa}, Fault{"IsaParenthesis", "x ISA (y)", kIsa},
                    Fault{"AnyTwice", "ANY a = EVERY b", kTwice}, Fault{"EveryTwice", "EVERY a = ANY b", kTwice},
                    Fault{"AnyAgainstEmptyBrackets", "ANY a = b[]", kAnyArrays},
                    Fault{"AnyAgainstWholeArray", "ANY a = C.b[*]", kAnyArrays},
                    Fault{"EveryAgainstWholeArray", "EVERY a[] = b[*]", kAnyArrays},
                    Fault{"WholeArrayAgainstAny", "b[*] = ANY a", kAnyArrays},
                    Fault{"EmptyBracketsAgainstEvery", "b[] = EVERY a", kAnyArrays},
                    Fault{"ArrayAgainstScalar", "a[] = b", kMixed}, Fault{"ScalarAgainstArray", "a = b[*]", kMixed},
                    Fault{"ArrayAgainstLiteral", "a[*] = 1", kMixed}, Fault{"ArrayLikeText", "a[] LIKE 'x'", kMixed},
                    Fault{"ElementAgainstArray", "a[1] = b[]", kMixed},
                    Fault{"NotTwice", "NOT NOT a", "parse 2@1: unexpected token 'NOT' found"},
                    Fault{"OrOfNothing", "a OR", "parse 2@1: unexpected token '' found"},
                    Fault{"AndOfNothing", "a AND\n\n", "parse 2@3: unexpected token '' found"}),
    [](const auto& info) { return info.param.name; });

TEST(ArrayChecks, LookAtLeadingFactorsAlone) {
  for (const char* text : {"1 + a[] = b", "a[0] = b[1]", "ANY a[] = b[1]", "(a[]) = b", "a[] IS NULL"}) {
    Parsed parsed(text);
    EXPECT_EQ(thrownBy([&] { parsed.parse(Level::Expression); }), "nothing") << text;
  }
}

TEST(ArrayChecks, PassWhenAnOperandHasNoFactor) {
  QORQL_Arithmetic empty(nullptr, nullptr, QORQL_OperatorNONE);
  Parsed parsed("a[]", Level::Arithmetic);
  QORQL_Arithmetic* array = static_cast<QORQL_Arithmetic*>(parsed.tree.Get());
  EXPECT_EQ(thrownBy([&] { QORQL_Comparison::validateAnyArray(&empty); }), "nothing");
  EXPECT_EQ(thrownBy([&] { QORQL_Comparison::validateScalarArray(&empty, array); }), "nothing");
  EXPECT_EQ(thrownBy([&] { QORQL_Comparison::validateAnyArray(array); }), kAnyArrays);
}

}  // namespace
