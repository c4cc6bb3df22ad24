// How trees of expressions are taken apart.
// SPDX-License-Identifier: Apache-2.0
#include "AllocationCount.h"
#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "ParserSupport.h"

namespace {

using parsertest::Level;
using parsertest::Node;
using parsertest::Parsed;
using parsertest::plain;

template <class Kind>
const Kind& as(const Node& node) {
  return dynamic_cast<const Kind&>(*node);
}

// The one comparison of a condition.
const Node& comparisonOf(const Node& condition) {
  const auto& term = as<QORQL_ExpressionTerm>(QORQL_operandOf(as<QORQL_Expression>(condition)));
  return as<QORQL_ExpressionFactor>(QORQL_operandOf(term)).getComparison();
}

std::string nameOf(const QORQL_Factor* factor) {
  if (factor == nullptr) return "null";
  return factor->getPropertyName().IsNull() ? "no name" : plain(*factor->getPropertyName());
}

template <class Chain>
std::string operators(const Node& first) {
  std::string text;
  for (const Chain& link : QORQL_linksOf(as<Chain>(first))) {
    text += QORQL_operandOf(link).IsNull() ? "?" : "x";
    text += QORQL_operatorText(link.getOperator());
  }
  return text;
}

TEST(ExpressionShape, LinksComeFromTheLeftWithTheirOperators) {
  const Parsed sum("a + b - c", Level::Arithmetic);
  EXPECT_EQ(operators<QORQL_Arithmetic>(sum.tree), "x+x-x");
  const Parsed product("a * b / c", Level::Arithmetic);
  EXPECT_EQ(operators<QORQL_Term>(QORQL_operandOf(as<QORQL_Arithmetic>(product.tree))), "x*x/x");
  const Parsed condition("a = 1 OR b = 2 AND c = 3 AND d = 4 OR e = 5", Level::Expression);
  EXPECT_EQ(operators<QORQL_Expression>(condition.tree), "xORxORx");
  const auto& second = *QORQL_nextLink(as<QORQL_Expression>(condition.tree));
  EXPECT_EQ(operators<QORQL_ExpressionTerm>(QORQL_operandOf(second)), "xANDxANDx");
}

TEST(ExpressionShape, OneOperandIsAChainOfOneLink) {
  const Parsed sum("a", Level::Arithmetic);
  EXPECT_EQ(operators<QORQL_Arithmetic>(sum.tree), "x");
  EXPECT_FALSE(QORQL_continues(as<QORQL_Arithmetic>(sum.tree)));
  EXPECT_EQ(QORQL_nextLink(as<QORQL_Arithmetic>(sum.tree)), nullptr);
}

TEST(ExpressionShape, ARestThatIsNoLinkEndsTheChain) {
  const Parsed term("a", Level::Arithmetic);
  const Node inner = QORQL_operandOf(as<QORQL_Arithmetic>(term.tree));
  const Node odd(new QORQL_Arithmetic(inner, inner, QORQL_OperatorPLUS));
  EXPECT_EQ(operators<QORQL_Arithmetic>(odd), "x+");
  EXPECT_EQ(QORQL_restOf(as<QORQL_Arithmetic>(odd)).Get(), inner.Get());
}

TEST(ExpressionShape, TheLastOperandOfOrDecides) {
  const auto decides = [](const char* text) {
    const Parsed condition(text, Level::Expression);
    const QORQL_Evaluatable* const operand = QORQL_decidingOperand(condition.tree.Get());
    const QORQL_Evaluatable* const bare = QORQL_peel(operand);
    return nameOf(QORQL_leadingFactor(dynamic_cast<const QORQL_Arithmetic&>(
        *dynamic_cast<const QORQL_Comparison&>(*bare).getLHSArithmeticExpression())));
  };
  EXPECT_EQ(decides("a = 1"), "a");
  EXPECT_EQ(decides("a = 1 OR b = 2"), "b");
  EXPECT_EQ(decides("a = 1 OR b = 2 OR c = 3"), "c");
}

TEST(ExpressionShape, WhatIsNoConditionHasNoDecidingOperand) {
  const Parsed sum("a + 1", Level::Arithmetic);
  EXPECT_EQ(QORQL_decidingOperand(sum.tree.Get()), nullptr);
  EXPECT_EQ(QORQL_decidingOperand(nullptr), nullptr);
  const Parsed condition("a = 1", Level::Expression);
  const Node broken(new QORQL_Expression(condition.tree, Node(), QORQL_OperatorOR));
  EXPECT_EQ(QORQL_decidingOperand(broken.Get()), nullptr);
}

TEST(ExpressionShape, PeelTakesOffWhatSaysNothing) {
  const auto kindOf = [](const char* text) {
    const Parsed condition(text, Level::Expression);
    return QORQL_peel(condition.tree.Get())->kind();
  };
  EXPECT_EQ(kindOf("a"), QORQL_NodeKind::Factor);
  EXPECT_EQ(kindOf("((a))"), QORQL_NodeKind::Factor);
  EXPECT_EQ(kindOf("-a"), QORQL_NodeKind::Factor);
  EXPECT_EQ(kindOf("(OBJECTPATH(A))"), QORQL_NodeKind::Function);
  EXPECT_EQ(kindOf("(a + 1)"), QORQL_NodeKind::Arithmetic);
  EXPECT_EQ(kindOf("(a * 2)"), QORQL_NodeKind::Term);
  EXPECT_EQ(kindOf("(a = 1)"), QORQL_NodeKind::Comparison);
  EXPECT_EQ(kindOf("NOT a"), QORQL_NodeKind::ExpressionFactor);
  EXPECT_EQ(kindOf("a = 1 AND b = 2"), QORQL_NodeKind::ExpressionTerm);
  EXPECT_EQ(kindOf("a = 1 OR b = 2"), QORQL_NodeKind::Expression);
  EXPECT_EQ(QORQL_peel(nullptr), nullptr);
}

TEST(ExpressionShape, ALeafIsFoundThroughParenthesesButNotThroughAMinusOrACall) {
  const auto leafOf = [](const char* text) {
    const Parsed sum(text, Level::Arithmetic);
    return nameOf(QORQL_peeledLeaf(sum.tree.Get()));
  };
  EXPECT_EQ(leafOf("a"), "a");
  EXPECT_EQ(leafOf("((a))"), "a");
  EXPECT_EQ(leafOf("(5)"), "no name");
  EXPECT_EQ(leafOf("-a"), "null");
  EXPECT_EQ(leafOf("(-a)"), "null");
  EXPECT_EQ(leafOf("a + 1"), "null");
  EXPECT_EQ(leafOf("(a = 1)"), "null");
  EXPECT_EQ(leafOf("OBJECTPATH(A)"), "null");
}

TEST(ExpressionShape, ALoneFactorHasNothingAroundIt) {
  const auto loneOf = [](const char* text, Level level) {
    const Parsed parsed(text, level);
    return nameOf(QORQL_loneFactor(parsed.tree));
  };
  EXPECT_EQ(loneOf("a", Level::Arithmetic), "a");
  EXPECT_EQ(loneOf("a", Level::Comparison), "a");
  EXPECT_EQ(loneOf("(a)", Level::Arithmetic), "no name");
  EXPECT_EQ(loneOf("-a", Level::Comparison), "no name");
  EXPECT_EQ(loneOf("a * 2", Level::Arithmetic), "null");
  EXPECT_EQ(loneOf("a + 2", Level::Comparison), "null");
  EXPECT_EQ(loneOf("a = 2", Level::Comparison), "null");
  EXPECT_EQ(loneOf("ANY a", Level::Comparison), "null");
  EXPECT_EQ(nameOf(QORQL_loneFactor(Node())), "null");
}

TEST(ExpressionShape, ASoleLeafIsALoneFactorThatWrapsNothing) {
  const auto soleOf = [](const char* text) {
    const Parsed sum(text, Level::Arithmetic);
    return nameOf(QORQL_soleLeaf(sum.tree));
  };
  EXPECT_EQ(soleOf("a"), "a");
  EXPECT_EQ(soleOf("'text'"), "no name");
  EXPECT_EQ(soleOf("(a)"), "null");
  EXPECT_EQ(soleOf("-a"), "null");
  EXPECT_EQ(soleOf("OBJECTPATH(A)"), "null");
}

TEST(ExpressionShape, TheLeadingFactorStandsBeforeEveryOperator) {
  const Parsed sum("a * 2 + b", Level::Arithmetic);
  EXPECT_EQ(nameOf(QORQL_leadingFactor(as<QORQL_Arithmetic>(sum.tree))), "a");
  const Node hollow(new QORQL_Arithmetic(Node(), Node(), QORQL_OperatorNONE));
  EXPECT_EQ(QORQL_leadingFactor(as<QORQL_Arithmetic>(hollow)), nullptr);
}

TEST(ExpressionShape, AComparisonInParenthesesIsFoundOneLevelAtATime) {
  const auto depthOf = [](const char* text) {
    const Parsed parsed(text, Level::Comparison);
    int depth = 0;
    for (const Node* inner = &parsed.tree; (inner = QORQL_parenthesised(*inner)) != nullptr;) ++depth;
    return depth;
  };
  EXPECT_EQ(depthOf("a = 1"), 0);
  EXPECT_EQ(depthOf("(a = 1)"), 1);
  EXPECT_EQ(depthOf("((a = 1))"), 2);
  EXPECT_EQ(depthOf("-(a = 1)"), 0);
  EXPECT_EQ(depthOf("(a = 1) = 2"), 0);
  EXPECT_EQ(QORQL_parenthesised(Node()), nullptr);
}

TEST(ExpressionShape, PathsAndIndexesOfReferences) {
  const auto refer = [](const char* text) {
    const Parsed sum(text, Level::Arithmetic);
    const QORQL_Factor& leaf = *QORQL_soleLeaf(sum.tree);
    return std::string(QORQL_hasPath(leaf) ? "path " : "") + (QORQL_hasIndex(leaf) ? "index" : "");
  };
  EXPECT_EQ(refer("a"), "");
  EXPECT_EQ(refer("A.b"), "");
  EXPECT_EQ(refer("C::b"), "");
  EXPECT_EQ(refer("A.b.c"), "path ");
  EXPECT_EQ(refer("a[2]"), "index");
  EXPECT_EQ(refer("a[]"), "index");
  EXPECT_EQ(refer("a[*]"), "");
  EXPECT_EQ(refer("A.b.c[0]"), "path index");
}

// Whoever asks is told that it throws nothing.
TEST(ExpressionShape, WhetherAReferenceIsAPathIsAskedWithoutMemory) {
  const Parsed sum("A.b.c", Level::Arithmetic);
  const QORQL_Factor& leaf = *QORQL_soleLeaf(sum.tree);
  const unsigned long before = allocationCount();
  EXPECT_TRUE(QORQL_hasPath(leaf));
  EXPECT_EQ(allocationCount(), before);
}

TEST(ExpressionShape, TheOwnPropertyOfAReferenceStandsAfterTheClass) {
  const auto ownProperty = [](const char* text) {
    const Parsed sum(text, Level::Arithmetic);
    return plain(QORQL_ownProperty(*QORQL_soleLeaf(sum.tree)));
  };
  EXPECT_EQ(ownProperty("a"), "a");
  EXPECT_EQ(ownProperty("A.b"), "b");
  EXPECT_EQ(ownProperty("A.C::b"), "b");
  EXPECT_EQ(ownProperty("A.b.c"), "b");
  EXPECT_EQ(ownProperty("A.b.c.d.E::f"), "b");
  EXPECT_EQ(ownProperty("1"), "");
}

TEST(ExpressionShape, NamesIgnoreCaseAndWordsForEndsDoNot) {
  EXPECT_TRUE(QORQL_isName(new QORString("Name"), "nAME"));
  EXPECT_FALSE(QORQL_isName(new QORString("Names"), "Name"));
  EXPECT_FALSE(QORQL_isName({}, ""));
  EXPECT_TRUE(QORQL_isAssociationEnd("firstref"));
  EXPECT_TRUE(QORQL_isAssociationEnd("secondref"));
  EXPECT_FALSE(QORQL_isAssociationEnd("FirstRef"));
}

TEST(ExpressionShape, ATreeIsSearchedAtEveryDepth) {
  const Parsed calling("1 + (2 * INSTANCEOF(A)) = 3 AND b = 2", Level::Expression);
  EXPECT_TRUE(QORQL_containsInstanceOf(*calling.tree));
  EXPECT_FALSE(QORQL_containsOuterJoin(*calling.tree));
  const Parsed joining("a = 1 OR (A.x *= B.y) = 2", Level::Expression);
  EXPECT_TRUE(QORQL_containsOuterJoin(*joining.tree));
  EXPECT_FALSE(QORQL_containsInstanceOf(*joining.tree));
  const Parsed pathing("OBJECTPATH(A) = 1", Level::Expression);
  EXPECT_FALSE(QORQL_containsInstanceOf(*pathing.tree));
}

TEST(ExpressionShape, AssociationsAreFound) {
  Parsed tying("Tie = A AND Tie = B");
  tying.know({"A", "B"});
  tying.parse(Level::Expression);
  EXPECT_TRUE(QORQL_containsAssociation(*tying.tree));
  const Parsed plainOne("a = 1", Level::Expression);
  EXPECT_FALSE(QORQL_containsAssociation(*plainOne.tree));
}

struct AsksText {
  bool operator()(const QORQL_Comparison& comparison) const { return comparison.getOperator() == QORQL_OperatorLIKE; }
  bool operator()(const QORQL_Factor& leaf) const {
    return !leaf.getLiteral().IsNull() && leaf.getLiteral()->getType()->getName() == "string";
  }
};

TEST(ExpressionShape, OneTestMayAskNodesOfSeveralKinds) {
  const auto asks = [](const char* text) {
    const Parsed condition(text, Level::Expression);
    return QORQL_contains(*condition.tree, AsksText());
  };
  EXPECT_TRUE(asks("a = 1 AND b LIKE c"));
  EXPECT_TRUE(asks("a = 'x'"));
  EXPECT_FALSE(asks("a = 1 AND b = c"));
}

TEST(ExpressionShape, TheInnermostComparisonIsTheOneThatAConditionConsistsOf) {
  const Parsed condition("((a = 1))", Level::Expression);
  const Node* comparison = &comparisonOf(condition.tree);
  while (const Node* const inner = QORQL_parenthesised(*comparison)) comparison = inner;
  EXPECT_EQ(QORQL_peel(condition.tree.Get()), comparison->Get());
}

}  // namespace
