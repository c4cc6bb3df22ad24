// Where the words of an expression stand: the nodes' own words, their first
// words, and the names of references.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionPlaces.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "MarkedStatement.h"
#include "ParserSupport.h"

namespace {

using parsertest::Level;
using parsertest::Parsed;
using testing::ElementsAre;

// The condition with a sign before the first word of its top node.
std::string startOf(const std::string& condition) {
  const Parsed parsed(QORString(condition), Level::Expression);
  return MarkedStatement(condition).markedAt(QORQL_startOf(*parsed.tree));
}

// What lies at the places of all names of the first reference.
std::vector<std::string> namesOf(const std::string& condition) {
  Parsed parsed(QORString(condition), Level::Expression);
  std::vector<std::string> names;
  QORQL_findPlace(*parsed.tree, [&](const QORQL_Factor& factor) {
    if (!names.empty() || factor.getPropertyName().IsNull()) return QORQL_Fault::kNowhere;
    for (const QORuint32 place : QORQL_placesOfNames(condition, factor)) {
      names.push_back(condition.substr(place, condition.find_first_of(" .[:=)", place) - place));
    }
    return QORQL_Fault::kNowhere;
  });
  return names;
}

// The places of every node of one kind, marked, in the order of a walk.
class PlaceCollector : public QORQL_ExpressionVisitor {
 public:
  explicit PlaceCollector(const std::string& text) : _statement(text) {}

  void visitExpression(const QORQL_Expression& node) override { keep(node); }
  void visitExpressionTerm(const QORQL_ExpressionTerm& node) override { keep(node); }
  void visitExpressionFactor(const QORQL_ExpressionFactor& node) override { keep(node); }
  void visitComparison(const QORQL_Comparison& node) override { keep(node); }
  void visitArithmetic(const QORQL_Arithmetic& node) override { keep(node); }
  void visitTerm(const QORQL_Term& node) override { keep(node); }
  void visitFactor(const QORQL_Factor& node) override { keep(node); }
  void visitFunction(const QORQL_Function& node) override { keep(node); }

  std::vector<std::string> marked;

 private:
  template <class Node>
  void keep(const Node& node) {
    if (node.kind() == kind) marked.push_back(_statement.markedAt(node.getOffset()));
  }

  const MarkedStatement _statement;

 public:
  QORQL_NodeKind kind = QORQL_NodeKind::Other;
};

std::vector<std::string> placesOf(QORQL_NodeKind kind, const std::string& condition) {
  Parsed parsed(QORString(condition), Level::Expression);
  auto* const collector = new PlaceCollector(condition);
  collector->kind = kind;
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(collector);
  parsed.tree->accept(visitor);
  return collector->marked;
}

TEST(ExpressionPlaces, OperatorsHaveTheirSigns) {
  using Kind = QORQL_NodeKind;
  EXPECT_THAT(placesOf(Kind::Comparison, "a = 1 AND b <= 2"), ElementsAre("a ^= 1 AND b <= 2", "a = 1 AND b ^<= 2"));
  EXPECT_THAT(placesOf(Kind::Comparison, "a IS NOT NULL"), ElementsAre("a ^IS NOT NULL"));
  EXPECT_THAT(placesOf(Kind::Comparison, "ANY a[*] LIKE 'x'"), ElementsAre("ANY a[*] ^LIKE 'x'"));
  EXPECT_THAT(placesOf(Kind::Arithmetic, "a - b + c"), ElementsAre("a - b + ^c", "a - b ^+ c", "a ^- b + c"));
  EXPECT_THAT(placesOf(Kind::Term, "a * b / c"), ElementsAre("a * b / ^c", "a * b ^/ c", "a ^* b / c"));
  EXPECT_THAT(placesOf(Kind::Expression, "a = 1 OR b = 2"), ElementsAre("a = 1 OR b ^= 2", "a = 1 ^OR b = 2"));
  EXPECT_THAT(placesOf(Kind::ExpressionTerm, "a = 1 AND b = 2"), ElementsAre("a = 1 AND b ^= 2", "a = 1 ^AND b = 2"));
  EXPECT_THAT(placesOf(Kind::ExpressionFactor, "NOT a = 1"), ElementsAre("^NOT a = 1"));
}

TEST(ExpressionPlaces, LeavesHaveTheirFirstWords) {
  using Kind = QORQL_NodeKind;
  EXPECT_THAT(placesOf(Kind::Factor, "a.b[2].C::x = 'text'"),
              ElementsAre("^a.b[2].C::x = 'text'", "a.b[2].C::x = ^'text'"));
  EXPECT_THAT(placesOf(Kind::Factor, "a ISA Cls"), ElementsAre("^a ISA Cls", "a ISA ^Cls"));
  EXPECT_THAT(placesOf(Kind::Function, "1 = MAX( a )"), ElementsAre("1 = ^MAX( a )"));
}

TEST(ExpressionPlaces, AnExpressionStartsWithItsFirstWord) {
  EXPECT_EQ(startOf("  a = 1"), "  ^a = 1");
  EXPECT_EQ(startOf("(a) * 2 = 1 OR b = 2"), "^(a) * 2 = 1 OR b = 2");
  EXPECT_EQ(startOf("-a = 1 AND b = 1"), "^-a = 1 AND b = 1");
  EXPECT_EQ(startOf("NOT a = 1"), "^NOT a = 1");
  EXPECT_EQ(startOf("MAX(a) = 1"), "^MAX(a) = 1");
  EXPECT_EQ(startOf("ANY a = 1"), "ANY ^a = 1");
}

TEST(ExpressionPlaces, OfTheNamesOfAReference) {
  EXPECT_THAT(namesOf("x = 1"), ElementsAre("x"));
  EXPECT_THAT(namesOf("C.x = 1"), ElementsAre("C", "x"));
  EXPECT_THAT(namesOf("C::x = 1"), ElementsAre("C", "x"));
  EXPECT_THAT(namesOf("a [ 2 ] . b[*] . C :: x[] = y[]"), ElementsAre("a", "b", "C", "x"));
  EXPECT_THAT(namesOf("a1.b_2.x3 = 1"), ElementsAre("a1", "b_2", "x3"));
  EXPECT_THAT(namesOf("a\n.\n\tb = 1"), ElementsAre("a\n", "b"));
}

TEST(ExpressionPlaces, FindsTheReferenceAndNotItsSpelling) {
  const MarkedStatement marked("A.x = 'B.x' AND x = 1 AND B.^x = B.x");
  const Parsed parsed(QORString(marked.text), Level::Expression);
  EXPECT_EQ(QORQL_findProperty(*parsed.tree, "b", "X", marked.text), marked.offset);
  EXPECT_EQ(QORQL_findProperty(*parsed.tree, "c", "X", marked.text), QORQL_Fault::kNowhere);
}

// What lies below it is not a property of the class.
TEST(ExpressionPlaces, FindsTheStepOfAPathAfterTheClass) {
  for (const char* const text : {"A.x = 1 AND A . ^Emb.x = 1", "A.x.Emb = 1 AND A.^emb[2].y.C::Emb = 1",
                                 "A.B::^Emb = 1", "A.^Emb = 1 AND A.Emb.x = 2"}) {
    const MarkedStatement marked(text);
    const Parsed parsed(QORString(marked.text), Level::Expression);
    EXPECT_EQ(marked.markedAt(QORQL_findProperty(*parsed.tree, "a", "Emb", marked.text)), text);
  }
}

TEST(ExpressionPlaces, APathWithoutItsTextIsToldByItsFirstName) {
  const MarkedStatement marked("1 = ^A.Emb.x");
  const Parsed parsed(QORString(marked.text), Level::Expression);
  EXPECT_EQ(QORQL_findProperty(*parsed.tree, "A", "Emb", ""), marked.offset);
}

TEST(ExpressionPlaces, FindsAFromName) {
  const MarkedStatement marked("x.B = 1 AND ^b.x = 1");
  const Parsed parsed(QORString(marked.text), Level::Expression);
  EXPECT_EQ(QORQL_findFromName(*parsed.tree, "B"), marked.offset);
  EXPECT_EQ(QORQL_findFromName(*parsed.tree, "c"), QORQL_Fault::kNowhere);
}

}  // namespace
