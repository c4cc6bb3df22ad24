// The AND level of a condition as it is parsed.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "ParserSupport.h"

namespace {

using parsertest::Level;
using parsertest::Parsed;
using parsertest::print;

const QORQL_ExpressionTerm& termOf(const Parsed& parsed) {
  return static_cast<const QORQL_ExpressionTerm&>(
      *static_cast<const QORQL_Expression&>(*parsed.tree).getExpressionTerm());
}

TEST(ExpressionTerm, HoldsAConditionAndTheRestBehindAnd) {
  const Parsed parsed("a = 1 AND NOT b = 2 AND c = 3 OR d = 4", Level::Expression);
  const QORQL_ExpressionTerm& term = termOf(parsed);
  EXPECT_EQ(term.getOperator(), QORQL_OperatorAND);
  EXPECT_EQ(print(term.getExpressionFactor()), "(a = 1)");
  EXPECT_EQ(print(term.getExpressionTerm()), "((NOT (b = 2)) AND (c = 3))");
}

TEST(ExpressionTerm, OfOneConditionHasNoOperator) {
  const Parsed parsed("a = 1", Level::Expression);
  EXPECT_EQ(termOf(parsed).getOperator(), QORQL_OperatorNONE);
  EXPECT_TRUE(termOf(parsed).getExpressionTerm().IsNull());
}

TEST(ExpressionTerm, HoldsAnAssociationAsOneOperand) {
  Parsed parsed("Assoc = S AND Assoc = D AND a = 1");
  parsed.know({"S", "D"});
  parsed.parse(Level::Expression);
  EXPECT_NE(QORQL_nodeAs<QORQL_Association>(termOf(parsed).getExpressionFactor()), nullptr);
  EXPECT_EQ(print(termOf(parsed).getExpressionTerm()), "(a = 1)");
}

}  // namespace
