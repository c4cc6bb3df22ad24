// Conditions: the grammar's levels, their precedence, and the checks of arrays.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "ParserSupport.h"

namespace {

using parsertest::Level;
using parsertest::Node;
using parsertest::Parsed;
using parsertest::plain;
using parsertest::print;
using parsertest::thrownBy;

struct Tree {
  const char* name;
  const char* text;
  const char* tree;
};

class ExpressionTree : public testing::TestWithParam<Tree> {};

TEST_P(ExpressionTree, IsGrouped) {
  Parsed parsed(GetParam().text, Level::Expression);
  EXPECT_EQ(print(parsed.tree), GetParam().tree);
  EXPECT_EQ(parsed.lexer.getCurrent().getType(), TokenEOF);
}

INSTANTIATE_TEST_SUITE_P(
    Trees, ExpressionTree,
    testing::Values(
        Tree{"MinusToTheRight", "a - b - c", "(a - (b - c))"}, Tree{"DivisionToTheRight", "a / b / c", "(a / (b / c))"},
        Tree{"MixedSums", "a + b - c + d", "(a + (b - (c + d)))"},
        Tree{"MixedProducts", "a * b / c * d", "(a * (b / (c * d)))"},
        Tree{"OrToTheRight", "a OR b OR c", "(a OR (b OR c))"},
        Tree{"AndToTheRight", "a AND b AND c", "(a AND (b AND c))"},
        Tree{"AndBeforeOr", "a AND b OR c AND d", "((a AND b) OR (c AND d))"},
        Tree{"NotOfOneComparison", "NOT a = 1 OR b = 2", "((NOT (a = 1)) OR (b = 2))"},
        Tree{"NotBeforeAnd", "NOT a = 1 AND b = 2", "((NOT (a = 1)) AND (b = 2))"},
        Tree{"Parentheses", "(a - b) - c", "({(a - b)} - c)"}, Tree{"IsNull", "x IS NULL", "(x IS NULL)"},
        Tree{"IsNotNull", "x + 1 IS NOT NULL", "((x + 1) IS NOT NULL)"},
        Tree{"Isa", "x ISA CIM_Foo", "(x ISA CIM_Foo)"}, Tree{"IsaText", "x ISA 'CIM_Foo'", "(x ISA CIM_Foo)"},
        Tree{"AnyLeft", "ANY a = b", "ANY< (a = b)"}, Tree{"AnyRight", "a = ANY b", "ANY> (a = b)"},
        Tree{"EveryLeft", "EVERY a = b", "EVERY< (a = b)"}, Tree{"EveryRight", "a <> EVERY b", "EVERY> (a <> b)"},
        Tree{"NotAny", "NOT ANY a = b", "(NOT ANY< (a = b))"}, Tree{"AnyOfNull", "ANY a IS NULL", "ANY< (a IS NULL)"},
        Tree{"WholeArrays", "a[] = b[*]", "(a = b)"},
        Tree{"FunctionArgument", "COUNT(a = 1 OR b AND NOT c)", "{COUNT(((a = 1) OR (b AND (NOT c))))}"}),
    [](const auto& info) { return info.param.name; });

TEST(Expression, AlwaysBuildsEveryLevel) {
  const Parsed parsed("x", Level::Expression);
  const auto& expression = dynamic_cast<const QORQL_Expression&>(*parsed.tree);
  EXPECT_EQ(expression.getOperator(), QORQL_OperatorNONE);
  EXPECT_TRUE(expression.getExpression().IsNull());
  const auto& term = dynamic_cast<const QORQL_ExpressionTerm&>(*expression.getExpressionTerm());
  EXPECT_EQ(term.getOperator(), QORQL_OperatorNONE);
  EXPECT_TRUE(term.getExpressionTerm().IsNull());
  const auto& factor = dynamic_cast<const QORQL_ExpressionFactor&>(*term.getExpressionFactor());
  EXPECT_EQ(factor.getOperator(), QORQL_OperatorNONE);
  const auto& comparison = dynamic_cast<const QORQL_Comparison&>(*factor.getComparison());
  EXPECT_EQ(comparison.getOperator(), QORQL_OperatorNONE);
  EXPECT_TRUE(comparison.getRHSArithmeticExpression().IsNull());
  EXPECT_EQ(comparison.getArrayComp(), QORQL_Comparison::ArrayCompNone);
  const auto& arithmetic = dynamic_cast<const QORQL_Arithmetic&>(*comparison.getLHSArithmeticExpression());
  EXPECT_EQ(arithmetic.getOperator(), QORQL_OperatorNONE);
  EXPECT_TRUE(arithmetic.getArithmetic().IsNull());
  ASSERT_NE(arithmetic.getTermCasted(), nullptr);
  EXPECT_EQ(arithmetic.getTermCasted()->getOperator(), QORQL_OperatorNONE);
  EXPECT_TRUE(arithmetic.getTermCasted()->getTerm().IsNull());
  EXPECT_NE(arithmetic.getTermCasted()->getFactorCasted(), nullptr);
}

TEST(Expression, CastsOnlyWhatIsThere) {
  const Parsed parsed("x", Level::Factor);
  EXPECT_EQ(QORQL_Arithmetic(parsed.tree, nullptr, QORQL_OperatorNONE).getTermCasted(), nullptr);
  EXPECT_EQ(QORQL_Term(nullptr, nullptr, QORQL_OperatorNONE).getFactorCasted(), nullptr);
}

// --- operators --------------------------------------------------------------------

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

// Binary operators, each once, from the loosest level to the tightest.
const std::vector<std::pair<std::string, int>>& binaryOperators() {
  static const std::vector<std::pair<std::string, int>> kOperators = {
      {"OR", 0}, {"AND", 1}, {"=", 2},   {"<>", 2},  {"<", 2}, {">", 2}, {"<=", 2}, {">=", 2}, {"LIKE", 2},
      {"*=", 2}, {"=*", 2},  {"*=*", 2}, {"ISA", 2}, {"+", 3}, {"-", 3}, {"*", 4},  {"/", 4}};
  return kOperators;
}

constexpr int kComparisonLevel = 2;

// How `a first b second c` groups, told from the levels alone.
std::string expectedGrouping(const std::pair<std::string, int>& first, const std::pair<std::string, int>& second) {
  const bool isRightTighter = second.second > first.second || second.second == first.second;
  const std::string left = "(a " + first.first + " b)";
  const std::string right = "(b " + second.first + " c)";
  return isRightTighter ? "(a " + first.first + " " + right + ")" : "(" + left + " " + second.first + " c)";
}

TEST(Precedence, HoldsForEveryPairOfOperators) {
  std::set<std::pair<std::string, std::string>> untested;
  for (const auto& first : binaryOperators()) {
    for (const auto& second : binaryOperators()) untested.emplace(first.first, second.first);
  }
  for (const auto& first : binaryOperators()) {
    for (const auto& second : binaryOperators()) {
      const std::string text = "a " + first.first + " b " + second.first + " c";
      Parsed parsed(text.c_str(), Level::Expression);
      if (first.second == kComparisonLevel && second.second == kComparisonLevel) {
        // At most one comparison operator: the second one is left to the caller.
        EXPECT_EQ(print(parsed.tree), "(a " + first.first + " b)") << text;
        EXPECT_EQ(plain(parsed.lexer.getCurrent().getValue()), second.first);
      } else {
        EXPECT_EQ(print(parsed.tree), expectedGrouping(first, second)) << text;
        EXPECT_EQ(parsed.lexer.getCurrent().getType(), TokenEOF) << text;
      }
      untested.erase({first.first, second.first});
    }
  }
  EXPECT_TRUE(untested.empty());
}

TEST(Precedence, HoldsForPrefixAndPostfixOperators) {
  for (const auto& [op, level] : binaryOperators()) {
    const std::string not_ = level < kComparisonLevel ? "((NOT a) " + op + " b)" : "(NOT (a " + op + " b))";
    EXPECT_EQ(print(Parsed(("NOT a " + op + " b").c_str(), Level::Expression).tree), not_);
    EXPECT_EQ(print(Parsed(("-a " + op + " b").c_str(), Level::Expression).tree), "(-{a} " + op + " b)");
    if (op != "ISA") {
      EXPECT_EQ(print(Parsed(("a " + op + " -b").c_str(), Level::Expression).tree), "(a " + op + " -{b})");
    }
    for (const std::string postfix : {"IS NULL", "IS NOT NULL"}) {
      Parsed parsed(("a " + op + " b " + postfix).c_str(), Level::Expression);
      std::string expected = "((a " + op + " b) " + postfix + ")";
      if (level < kComparisonLevel) expected = "(a " + op + " (b " + postfix + "))";
      if (level == kComparisonLevel) expected = "(a " + op + " b)";
      EXPECT_EQ(print(parsed.tree), expected);
      EXPECT_EQ(parsed.lexer.getCurrent().getType(), level == kComparisonLevel ? TokenIS : TokenEOF);
    }
  }
}

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

// --- faults -------------------------------------------------------------------------

constexpr const char* kIs = "runtime 6: Invalid syntax specified for 'IS' operator";
constexpr const char* kIsa = "runtime 6: Invalid syntax specified for 'ISA' operator";
constexpr const char* kTwice = "runtime 5: ANY|EVERY cannot be on both sides of array-comp";
constexpr const char* kAnyArrays =
    "runtime 6: One side of array-comp MUST be non-complete array when ANY|EVERY is used on the other side.";
constexpr const char* kMixed =
    "runtime 6: A comparison between an array property and non-array property is illegal if neither ANY or EVERY is "
    "used.";

struct Fault {
  const char* name;
  const char* text;
  const char* thrown;
};

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
