// Walks over expression trees: what is visited, and in which order.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "ParserSupport.h"

namespace {

using parsertest::Level;
using parsertest::Node;
using parsertest::Parsed;
using parsertest::plain;

// Writes a letter per visited node: O(r), A(nd), F(actor of an expression),
// C(omparison), S(um), P(roduct), the name of a plain factor, f(unction), a(ssociation).
class Recorder : public QORQL_ExpressionVisitor {
 public:
  void visitExpression(const QORQL_Expression&) override { trace += "O "; }
  void visitExpressionTerm(const QORQL_ExpressionTerm&) override { trace += "A "; }
  void visitExpressionFactor(const QORQL_ExpressionFactor&) override { trace += "F "; }
  void visitComparison(const QORQL_Comparison&) override { trace += "C "; }
  void visitArithmetic(const QORQL_Arithmetic&) override { trace += "S "; }
  void visitTerm(const QORQL_Term&) override { trace += "P "; }
  void visitFactor(const QORQL_Factor& factor) override {
    trace += (factor.getPropertyName().IsNull() ? "'" : plain(*factor.getPropertyName())) + " ";
  }
  void visitAssociation(const QORQL_Association&) override { trace += "a "; }
  void visitFunction(const QORQL_Function&) override { trace += "f "; }
  std::string trace;
};

std::string traceOf(const Node& tree) {
  Recorder* const recorder = new Recorder;
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(recorder);
  tree->accept(visitor);
  return recorder->trace;
}

std::string traceOf(const char* text, Level level) { return traceOf(Parsed(text, level).tree); }

TEST(Walk, VisitsChildrenBeforeTheirParent) {
  EXPECT_EQ(traceOf("x", Level::Expression), "x P S C F A O ");
  EXPECT_EQ(traceOf("a = b", Level::Comparison), "a P S b P S C ");
}

TEST(Walk, VisitsAChainFromItsEndBack) {
  EXPECT_EQ(traceOf("a - b - c", Level::Arithmetic), "a P b P c P S S S ");
  EXPECT_EQ(traceOf("a * b / c", Level::Arithmetic), "a b c P P P S ");
  EXPECT_EQ(traceOf("a AND b", Level::Expression), "a P S C F b P S C F A A O ");
  EXPECT_EQ(traceOf("a OR b", Level::Expression), "a P S C F A b P S C F A O O ");
}

TEST(Walk, PassesThroughWrappingFactors) {
  EXPECT_EQ(traceOf("-(a)", Level::Factor), "a P S C ");
  EXPECT_EQ(traceOf("--5", Level::Factor), "' ");
  EXPECT_EQ(traceOf("COUNT(x)", Level::Factor), "x P S C F A O f ");
}

TEST(Walk, DoesNotEnterAnAssociation) {
  Parsed parsed("A = S AND A = S");
  parsed.know({"S"});
  parsed.parse(Level::Expression);
  EXPECT_EQ(traceOf(parsed.tree), "a A O ");
}

TEST(Walk, SkipsMissingChildren) {
  const auto bare = [](QORQL_Evaluatable* node) { return traceOf(Node(node)); };
  EXPECT_EQ(bare(new QORQL_Expression(nullptr, nullptr, QORQL_OperatorNONE)), "O ");
  EXPECT_EQ(bare(new QORQL_ExpressionTerm(nullptr, nullptr, QORQL_OperatorNONE)), "A ");
  EXPECT_EQ(bare(new QORQL_Comparison(nullptr, nullptr, QORQL_OperatorNONE)), "C ");
  EXPECT_EQ(bare(new QORQL_Arithmetic(nullptr, nullptr, QORQL_OperatorNONE)), "S ");
  EXPECT_EQ(bare(new QORQL_Term(nullptr, nullptr, QORQL_OperatorNONE)), "P ");
}

TEST(Walk, EntersARightOperandOfAnotherKind) {
  const Node factor = Parsed("x", Level::Factor).tree;
  EXPECT_EQ(traceOf(Node(new QORQL_Arithmetic(factor, factor, QORQL_OperatorPLUS))), "x x S ");
}

TEST(Walk, TheBaseVisitorDoesNothing) {
  Parsed parsed("A = S AND A = S AND NOT COUNT(-x) = 1 + 2 * 3 OR y");
  parsed.know({"S"});
  parsed.parse(Level::Expression);
  const std::string before = parsertest::print(parsed.tree);
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(new QORQL_ExpressionVisitor);
  parsed.tree->accept(visitor);
  EXPECT_EQ(parsertest::print(parsed.tree), before);
}

}  // namespace
