// Nesting is bounded, length is not: long chains and lists parse, resolve, are
// walked and freed without recursion per term and in linear time.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_ParseContext.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "ParserSupport.h"

namespace {

using parsertest::Level;
using parsertest::Parsed;
using parsertest::Statement;
using parsertest::statementError;
using parsertest::thrownBy;

constexpr int kMany = 100'000;

std::string repeated(const std::string& part, int times) {
  std::string text;
  text.reserve(part.size() * static_cast<std::size_t>(times));
  for (int i = 0; i < times; ++i) text += part;
  return text;
}

QORuint32 factorsIn(const parsertest::Node& tree) {
  QORQL_IdentifierFinder* const finder = new QORQL_IdentifierFinder;
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  tree->accept(visitor);
  return finder->getFactorCount();
}

class LongChain : public testing::TestWithParam<const char*> {};

TEST_P(LongChain, IsParsedWalkedAndFreed) {
  const std::string text = "C.x" + repeated(GetParam(), kMany);
  Parsed parsed(text.c_str(), Level::Expression);
  EXPECT_EQ(parsed.lexer.getCurrent().getType(), TokenEOF);
  EXPECT_EQ(factorsIn(parsed.tree), kMany + 1U);
}

INSTANTIATE_TEST_SUITE_P(Operators, LongChain,
                         testing::Values(" OR C.x", " AND C.x", " + C.x", " - C.x", " * C.x", " / C.x", " OR NOT C.x"));

TEST(LongStatement, ResolvesAChainOfConditions) {
  const std::string text = "SELECT C.x FROM C WHERE C.x = 1" + repeated(" AND C.y < 2 OR C.x = 3", kMany / 2) +
                           " ORDER BY C.z" + repeated(" + C.z", kMany) + " DESC";
  const Statement statement(text.c_str());
  EXPECT_EQ(statement.requested("C"), "x,y,z");
}

TEST(LongStatement, TakesManySelectEntriesAndClasses) {
  std::string text = "SELECT C.p";
  for (int i = 0; i < 20'000; ++i) text += ", C.p" + std::to_string(i);
  text += " FROM C";
  for (int i = 0; i < 20'000; ++i) text += ", D" + std::to_string(i) + " AS e" + std::to_string(i);
  const Statement statement(text.c_str());
  EXPECT_EQ(statement.selectList().getSelectedEntries()->entries(), 20'001U);
  EXPECT_EQ(statement.symbols.lookup("C")->getClassInfo()->getPropertyList()->entries(), 20'001U);
}

TEST(LongStatement, TakesManyArgumentsAndDots) {
  EXPECT_EQ(thrownBy([] { Parsed(("SUM(C.x" + repeated(", C.x", kMany) + ")").c_str(), Level::Factor); }),
            "parse 17@1: Incorrect number of arguments specified for the following method - 'SUM'");
  const Parsed parsed(("a" + repeated(".b", kMany)).c_str(), Level::Factor);
  EXPECT_EQ(parsed.requested("a"), "b");
}

TEST(LongStatement, ReportsAFaultAfterManyTerms) {
  EXPECT_EQ(thrownBy([] { Parsed(("C.x" + repeated("\nOR C.x", kMany) + " OR").c_str(), Level::Expression); }),
            "parse 2@100001: unexpected token '' found");
}

// --- nesting ------------------------------------------------------------------------------

constexpr int kBound = static_cast<int>(QORQL_kMaximumNesting);
constexpr const char* kTooDeep = "parse 2@1: expression nested too deeply";

struct Nest {
  const char* name;
  const char* open;
  const char* close;
  QORuint32 factorsPerLevel;
};

std::string nested(const Nest& nest, int levels) {
  return repeated(nest.open, levels) + "C.x" + repeated(nest.close, levels);
}

class Nesting : public testing::TestWithParam<Nest> {};

TEST_P(Nesting, IsTakenUpToTheBound) {
  Parsed parsed(nested(GetParam(), kBound).c_str(), Level::Expression);
  EXPECT_EQ(parsed.lexer.getCurrent().getType(), TokenEOF);
  EXPECT_EQ(factorsIn(parsed.tree), 1U + QORQL_kMaximumNesting * GetParam().factorsPerLevel);
}

TEST_P(Nesting, IsRefusedBeyondTheBound) {
  EXPECT_EQ(thrownBy([] { Parsed(nested(GetParam(), kBound + 1).c_str(), Level::Expression); }), kTooDeep);
  EXPECT_EQ(thrownBy([] { Parsed(repeated(GetParam().open, kMany).c_str(), Level::Expression); }), kTooDeep);
}

TEST_P(Nesting, IsResolvedUpToTheBound) {
  const std::string text = "SELECT C.x FROM C WHERE " + nested(GetParam(), kBound) + " = 1";
  EXPECT_EQ(statementError(text.c_str()), "nothing");
}

INSTANTIATE_TEST_SUITE_P(Kinds, Nesting,
                         testing::Values(Nest{"Parentheses", "(", ")", 0}, Nest{"Minus", "-", "", 0},
                                         Nest{"Calls", "COUNT(", ")", 0},
                                         Nest{"CallsInChains", "1 OR 1 AND 1 + 1 * COUNT(", ")", 4}),
                         [](const auto& info) { return info.param.name; });

TEST(Nesting, CountsAllKindsTogether) {
  const int third = kBound / 4;
  const std::string open = repeated("(", third) + repeated("-", third) + repeated("COUNT(", third);
  EXPECT_EQ(thrownBy([&] { Parsed((open + repeated("(", kBound - 3 * third + 1)).c_str(), Level::Expression); }),
            kTooDeep);
}

TEST(Nesting, IsCountedPerExpressionNotInAll) {
  const std::string text = "C.x" + repeated(" + (C.x)", 3 * kBound);
  EXPECT_EQ(thrownBy([&] { Parsed(text.c_str(), Level::Expression); }), "nothing");
}

TEST(Nesting, StartsAnewAfterAFault) {
  Parsed parsed((repeated("(", kBound + 1) + "C.x").c_str());
  EXPECT_EQ(thrownBy([&] { parsed.parse(Level::Factor); }), kTooDeep);
  EXPECT_EQ(thrownBy([&] { parsed.parse(Level::Factor); }), "parse 2@1: ')' expected");
}

}  // namespace
