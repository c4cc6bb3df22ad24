// Conditions: the grammar's levels and their precedence.
// SPDX-License-Identifier: Apache-2.0
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
using parsertest::Parsed;
using parsertest::plain;
using parsertest::print;

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

}  // namespace
