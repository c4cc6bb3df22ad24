// Comparisons on one row: relations, LIKE, ISA, ANY and EVERY, and conditions that are no comparison.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "EvaluationWorld.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriValue.h"

namespace {

using ComparisonEvaluation = EvaluationWorld;

using testing::HasSubstr;

TEST_F(ComparisonEvaluation, ComparisonsOfNumbersAreExactAcrossTypes) {
  EXPECT_TRUE(holds("U64 > S64"));
  EXPECT_TRUE(holds("R > 2"));
  EXPECT_TRUE(holds("R < 3"));
  EXPECT_TRUE(holds("U64 = 18446744073709551615"));
  EXPECT_FALSE(holds("U64 = 18446744073709551616.0"));
}

TEST_F(ComparisonEvaluation, NullComparesToNothing) {
  for (const char* op : {"=", "<>", "<", ">", "<=", ">="}) {
    EXPECT_FALSE(holds(std::string("Absent ") + op + " 1")) << op;
    EXPECT_FALSE(holds(std::string("NOT Absent ") + op + " 1")) << op;
    EXPECT_FALSE(holds(std::string("1 ") + op + " Absent")) << op;
  }
  EXPECT_TRUE(holds("Absent IS NULL"));
  EXPECT_FALSE(holds("Absent IS NOT NULL"));
  EXPECT_TRUE(holds("U8 IS NOT NULL"));
  EXPECT_FALSE(holds("U8 IS NULL"));
}

TEST_F(ComparisonEvaluation, LikeIsAPlainSubstring) {
  EXPECT_TRUE(holds("S LIKE 'cde'"));
  EXPECT_TRUE(holds("S LIKE T"));
  EXPECT_TRUE(holds("S LIKE ''"));
  EXPECT_FALSE(holds("S LIKE 'c%'"));
  EXPECT_FALSE(holds("S LIKE 'CDE'"));
  EXPECT_EQ(error("5 LIKE '5'"), "runtime 6: Invalid data type specified for LIKE operator");
  EXPECT_EQ(error("S LIKE 5"), "runtime 6: Invalid data type specified for LIKE operator");
  EXPECT_EQ(error("S LIKE Flag + Absent"), "runtime 6: Invalid data type specified for LIKE operator");
}

// The superclass is looked for in the namespace of the query; without one, in that of the object.
TEST_F(ComparisonEvaluation, IsaAsksTheNamespaceOfTheQueryFirst) {
  const QORString text("SELECT Id FROM V WHERE V ISA Base");
  QORQL_Lexer lexer(text, false);
  QORQL_SymbolTable symbols(nullptr);
  const auto parsed = QORQL_Query::parse(symbols, lexer, false, text, "", "root/cimv2");
  const auto& where = dynamic_cast<const QORQL_WhereClause&>(*dynamic_cast<QORQL_Query&>(*parsed).getWhereClause());
  const auto& expression = dynamic_cast<const QORQL_Expression&>(*where.getExpression());
  const auto& term = dynamic_cast<const QORQL_ExpressionTerm&>(*expression.getExpressionTerm());
  const auto& factor = dynamic_cast<const QORQL_ExpressionFactor&>(*term.getExpressionFactor());
  const auto& comparison = dynamic_cast<const QORQL_Comparison&>(*factor.getComparison());
  const auto truthOf = [&](const char* objects, const char* queries) {
    const QORSmrPtr<IQoriObject> object(new CQoriBaseObject(objects, "V", "Id", nullptr));
    const QORSmrPtr<IQoriValue> left(new CQoriValue(object));
    return comparison.compareValues(left, QORSmrPtr<IQoriValue>(new CQoriValue(QORString("Base"))), queries);
  };
  EXPECT_EQ(truthOf("root/nowhere", "root/cimv2"), QoriTruth::True);
  EXPECT_EQ(truthOf("root/cimv2", "root/nowhere"), QoriTruth::False);
  EXPECT_EQ(truthOf("root/cimv2", ""), QoriTruth::True);
  EXPECT_EQ(truthOf("root/nowhere", ""), QoriTruth::False);
}

TEST_F(ComparisonEvaluation, IsaAsksTheClassOfTheObject) {
  EXPECT_TRUE(holds("V ISA V"));
  EXPECT_TRUE(holds("V ISA base"));
  EXPECT_TRUE(holds("V ISA 'Base'"));
  EXPECT_FALSE(holds("V ISA W"));
  EXPECT_FALSE(holds("V ISA Nowhere"));
  EXPECT_FALSE(holds("NOT V ISA Base"));
}

TEST_F(ComparisonEvaluation, AnyAndEveryCompareTheFixedOperandWithTheElements) {
  EXPECT_TRUE(holds("ANY A = 3"));
  EXPECT_FALSE(holds("EVERY A = 3"));
  EXPECT_TRUE(holds("4 < ANY A"));
  EXPECT_FALSE(holds("4 < EVERY A"));
  EXPECT_TRUE(holds("0 < EVERY A"));
  EXPECT_TRUE(holds("ANY A < 0"));  // 0 < element
  EXPECT_FALSE(holds("ANY None = 1"));
  EXPECT_FALSE(holds("EVERY None = 1"));
  EXPECT_TRUE(holds("NOT ANY None = 1"));  // false, not null
  EXPECT_FALSE(holds("ANY Absent = 1"));
  EXPECT_FALSE(holds("NOT ANY Absent = 1"));
  EXPECT_FALSE(holds("NOT ANY A = Absent"));
  EXPECT_FALSE(holds("NOT ANY U8 = 10"));  // no array: null
  EXPECT_TRUE(holds("ANY SA = 'z'"));
  EXPECT_FALSE(holds("EVERY SA = 'x'"));
}

TEST_F(ComparisonEvaluation, ArrayNotEqualKeepsTheRowsWhereItIsFalse) {
  EXPECT_FALSE(holds("ANY A <> 3"));
  EXPECT_TRUE(holds("EVERY A <> 3"));
  EXPECT_TRUE(holds("ANY None <> 3"));
  EXPECT_FALSE(holds("NOT ANY A <> 3"));
}

TEST_F(ComparisonEvaluation, ErrorsInsideAnArrayComparisonAreInvalidData) {
  EXPECT_THAT(error("ANY A = 'x'"), HasSubstr("runtime 6: "));
  EXPECT_THAT(error("A[0] = 'x'"), HasSubstr("CIM_Value: "));
}

TEST_F(ComparisonEvaluation, ConditionWithoutComparison) {
  EXPECT_TRUE(holds("B"));
  EXPECT_TRUE(holds("U8"));
  EXPECT_TRUE(holds("Flag"));
  EXPECT_FALSE(holds("S"));
  EXPECT_FALSE(holds("0"));
  EXPECT_FALSE(holds("Absent"));
  EXPECT_TRUE(holds("NOT S"));
}

TEST_F(ComparisonEvaluation, BooleansCompareWithTheirTexts) {
  EXPECT_TRUE(holds("B = TRUE"));
  EXPECT_TRUE(holds("B = true"));
  EXPECT_TRUE(holds("B <> FALSE"));
  EXPECT_THAT(error("B = 'maybe'"), HasSubstr("boolean"));
}

TEST_F(ComparisonEvaluation, DatetimesCompareWithText) {
  EXPECT_TRUE(holds("When = '20260101000000.000000+000'"));
  EXPECT_TRUE(holds("When > '20251231000000.000000+000'"));
}

TEST_F(ComparisonEvaluation, AComparisonIsAColumn) {
  EXPECT_EQ(value("U8 = 10"), "TRUE");
  EXPECT_EQ(value("U8 = 11"), "FALSE");
  EXPECT_EQ(value("Absent = 11"), "NULL");
}

}  // namespace
