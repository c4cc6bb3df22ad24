// One condition as it is parsed: its negation, and whether it ties an association.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "ParserSupport.h"

namespace {

using parsertest::Parsed;
using parsertest::plain;
using parsertest::print;

struct Condition : Parsed {
  explicit Condition(const char* source) : Parsed(source) {
    know({"S", "D"});
    tree = QORQL_ExpressionFactor::parse(symbols, lexer, map, text, "CQL");
  }
  const QORQL_ExpressionFactor& factor() const { return static_cast<const QORQL_ExpressionFactor&>(*tree); }
  // "join type: left name, right name"; "none" when it ties nothing.
  std::string tie() const {
    QORQL_JoinType joinType = QORQL_JOIN_TYPE_FULL_OUTER;
    QORString left;
    QORString right;
    if (!factor().isComparisonAnAssociation(joinType, left, right)) return "none";
    return std::to_string(joinType) + ": " + plain(left) + ", " + plain(right);
  }
};

TEST(ExpressionFactor, KeepsItsNegation) {
  Condition plainOne("a = 1 AND b");
  EXPECT_EQ(plainOne.factor().getOperator(), QORQL_OperatorNONE);
  EXPECT_EQ(plainOne.lexer.getCurrent().getType(), TokenAND);
  const Condition negated("NOT a = 1");
  EXPECT_EQ(negated.factor().getOperator(), QORQL_OperatorNOT);
  EXPECT_EQ(print(negated.factor().getComparison()), "(a = 1)");
}

TEST(ExpressionFactor, TellsWhatTiesAnAssociationToAClass) {
  EXPECT_EQ(Condition("Assoc = S").tie(), "0: Assoc, S");
  EXPECT_EQ(Condition("Assoc *= D").tie(), "1: Assoc, D");
  EXPECT_EQ(Condition("Assoc.firstref = OBJECTPATH(S)").tie(), "0: Assoc, S");
}

TEST(ExpressionFactor, TellsWhatTiesNothing) {
  for (const char* text : {"NOT Assoc = S", "a = 1", "Assoc = Unknown", "Assoc < S", "Assoc.x = S", "S IS NULL"}) {
    EXPECT_EQ(Condition(text).tie(), "none") << text;
  }
}

}  // namespace
