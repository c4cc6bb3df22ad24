// The properties that an expression refers to, and the steps of a path.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Cimom/QORQL/Filter/CQLReferences.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "FilterWorld.h"

namespace {

using testing::ElementsAre;

// An expression as it is parsed, with unresolved names.
struct Parsed {
  explicit Parsed(const char* source) : text(source), lexer(text, false), map(QORQL_newProjectionMap(lexer.slabs())) {
    tree = QORQL_Expression::parse(symbols, lexer, map, text, "CQL");
  }
  QORString text;
  QORQL_SymbolTable symbols{nullptr};
  QORQL_Lexer lexer;
  QORQL_ProjectionMap map;
  QORSmrPtr<QORQL_Evaluatable> tree;
};

std::vector<std::string> referencesOf(const char* text) {
  const Parsed parsed(text);
  std::vector<std::string> found;
  for (const CQLReference& reference : CQLReferencesOf(parsed.tree)) {
    found.push_back(QueryWorld::textOf(reference.className) + "/" + QueryWorld::textOf(reference.propertyName) +
                    (reference.isPath() ? " by " + QueryWorld::textOf(reference.chain) : ""));
  }
  return found;
}

TEST(CQLReferences, StandInTheOrderOfTheText) {
  EXPECT_THAT(referencesOf("C.a = 1 AND (D.b + C.c > 2) OR NOT C.a.b.d = ANY C.e"),
              ElementsAre("C/a", "D/b", "C/c", "C/d by C.a.b", "C/e"));
}

TEST(CQLReferences, OfNoExpressionAreNone) {
  EXPECT_TRUE(CQLReferencesOf(QORSmrPtr<QORQL_Evaluatable>()).empty());
  EXPECT_TRUE(CQLIsaTestsOf(QORSmrPtr<QORQL_Evaluatable>()).empty());
}

TEST(CQLReferences, FindTestsOfAClassInParenthesesToo) {
  const Parsed parsed("a ISA C AND (b ISA D) AND c = 1");
  const auto tests = CQLIsaTestsOf(parsed.tree);
  ASSERT_EQ(tests.size(), 2U);
  for (const QORQL_Comparison* const test : tests) EXPECT_EQ(test->getOperator(), QORQL_OperatorISA);
}

TEST(CQLReferences, CutAPathAtItsFirstStep) {
  EXPECT_EQ(CQLFirstStep("i.SourceInstance.Name"), "i");
  EXPECT_EQ(CQLBehindFirstStep("i.SourceInstance.Name"), "SourceInstance.Name");
  EXPECT_EQ(CQLFirstStep("i"), "i");
  EXPECT_TRUE(CQLBehindFirstStep("i").isEmpty());
}

}  // namespace
