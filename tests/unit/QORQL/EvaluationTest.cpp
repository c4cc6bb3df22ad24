// Values and truths on one row: arithmetic, array elements, comparisons, LIKE,
// ISA, ANY and EVERY, conditions that are no comparison, row functions.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "QueryWorld.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriValue.h"

namespace {

using testing::HasSubstr;

constexpr char kModel[] = R"(
class Base { [key] uint32 Id; };
class V : Base {
  uint8 U8; uint32 U32; uint64 U64; sint64 S64; real64 R; string S; string T; boolean B; uint16 A[]; string SA[];
  uint32 Absent; uint16 None[]; datetime When; string Flag;
};
class W { [key] uint32 Id; };
instance of V {
  Id = 1; U8 = 10; U32 = 7; U64 = 18446744073709551615; S64 = -5; R = 2.5; S = "abcdef"; T = "cde"; B = TRUE;
  A = {1, 3, 5}; SA = {"x", NULL, "z"}; None = {}; When = "20260101000000.000000+000"; Flag = "true";
};
)";

class Evaluation : public testing::Test {
 protected:
  std::string value(const std::string& expression) {
    const std::vector<std::string> rows = world.rows("SELECT " + expression + " AS X FROM V");
    return rows.size() == 1 ? rows.front() : "no row";
  }
  bool holds(const std::string& condition) { return world.rows("SELECT Id FROM V WHERE " + condition).size() == 1; }
  std::string error(const std::string& condition) { return world.error("SELECT Id FROM V WHERE " + condition); }

  QueryWorld world{kModel};
};

TEST_F(Evaluation, chainsGroupToTheRight) {
  EXPECT_EQ(value("10 - 4 - 3"), "9");
  EXPECT_EQ(value("8 / 4 / 2"), "4");
  EXPECT_EQ(value("U8 - U32 - 1"), "4");
  EXPECT_EQ(value("2 * 3 + 4 * 5"), "26");
  EXPECT_EQ(value("(2 + 3) * 4"), "20");
}

TEST_F(Evaluation, stringsAddAndNothingElse) {
  EXPECT_EQ(value("'ab' + 'cd'"), "abcd");
  EXPECT_EQ(value("S + T"), "abcdefcde");
  EXPECT_EQ(value("'ab' + 1"), "NULL");
  EXPECT_EQ(value("1 + 'ab'"), "NULL");
  EXPECT_EQ(value("'ab' - 'a'"), "NULL");
  EXPECT_EQ(value("'ab' * 'a'"), "NULL");
  EXPECT_EQ(value("B + 1"), "NULL");
}

TEST_F(Evaluation, nullOperandsGiveNull) {
  EXPECT_EQ(value("Absent + 1"), "NULL");
  EXPECT_EQ(value("1 - Absent"), "NULL");
  EXPECT_EQ(value("Absent * 2"), "NULL");
  EXPECT_EQ(value("-Absent"), "NULL");
}

TEST_F(Evaluation, negation) {
  EXPECT_EQ(value("-U8"), "-10");
  EXPECT_EQ(value("-S64"), "5");
  EXPECT_EQ(value("-(U8)"), "-10");
  EXPECT_EQ(error("-U64 < 0"), "runtime 6: Can't apply operator MINUS to an uint64 value");
}

TEST_F(Evaluation, divisionByZeroIsTheValueLibrarysError) {
  EXPECT_THAT(error("1 / (U32 - 7) = 1"), HasSubstr("CIM_Value: "));
}

TEST_F(Evaluation, arrayElements) {
  EXPECT_TRUE(holds("A[0] = 1"));
  EXPECT_TRUE(holds("A[2] = 5"));
  EXPECT_EQ(error("A[3] = 5"), "runtime 6: Out of Bounds");
  EXPECT_FALSE(holds("None[*] = A[*]"));
  EXPECT_TRUE(holds("A[*] = A[]"));
  EXPECT_FALSE(holds("A[*] <> A[*]"));
  EXPECT_FALSE(holds("A[*] < A[*]"));
}

TEST_F(Evaluation, comparisonsOfNumbersAreExactAcrossTypes) {
  EXPECT_TRUE(holds("U64 > S64"));
  EXPECT_TRUE(holds("R > 2"));
  EXPECT_TRUE(holds("R < 3"));
  EXPECT_TRUE(holds("U64 = 18446744073709551615"));
  EXPECT_FALSE(holds("U64 = 18446744073709551616.0"));
}

TEST_F(Evaluation, nullComparesToNothing) {
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

TEST_F(Evaluation, likeIsAPlainSubstring) {
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
TEST_F(Evaluation, isaAsksTheNamespaceOfTheQueryFirst) {
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

TEST_F(Evaluation, isaAsksTheClassOfTheObject) {
  EXPECT_TRUE(holds("V ISA V"));
  EXPECT_TRUE(holds("V ISA base"));
  EXPECT_TRUE(holds("V ISA 'Base'"));
  EXPECT_FALSE(holds("V ISA W"));
  EXPECT_FALSE(holds("V ISA Nowhere"));
  EXPECT_FALSE(holds("NOT V ISA Base"));
}

TEST_F(Evaluation, anyAndEveryCompareTheFixedOperandWithTheElements) {
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

TEST_F(Evaluation, arrayNotEqualKeepsTheRowsWhereItIsFalse) {
  EXPECT_FALSE(holds("ANY A <> 3"));
  EXPECT_TRUE(holds("EVERY A <> 3"));
  EXPECT_TRUE(holds("ANY None <> 3"));
  EXPECT_FALSE(holds("NOT ANY A <> 3"));
}

TEST_F(Evaluation, errorsInsideAnArrayComparisonAreInvalidData) {
  EXPECT_THAT(error("ANY A = 'x'"), HasSubstr("runtime 6: "));
  EXPECT_THAT(error("A[0] = 'x'"), HasSubstr("CIM_Value: "));
}

TEST_F(Evaluation, conditionWithoutComparison) {
  EXPECT_TRUE(holds("B"));
  EXPECT_TRUE(holds("U8"));
  EXPECT_TRUE(holds("Flag"));
  EXPECT_FALSE(holds("S"));
  EXPECT_FALSE(holds("0"));
  EXPECT_FALSE(holds("Absent"));
  EXPECT_TRUE(holds("NOT S"));
}

TEST_F(Evaluation, booleansCompareWithTheirTexts) {
  EXPECT_TRUE(holds("B = TRUE"));
  EXPECT_TRUE(holds("B = true"));
  EXPECT_TRUE(holds("B <> FALSE"));
  EXPECT_THAT(error("B = 'maybe'"), HasSubstr("boolean"));
}

TEST_F(Evaluation, datetimesCompareWithText) {
  EXPECT_TRUE(holds("When = '20260101000000.000000+000'"));
  EXPECT_TRUE(holds("When > '20251231000000.000000+000'"));
}

TEST_F(Evaluation, logicalOperatorsHaveNoValueOnOneRow) {
  EXPECT_EQ(value("COUNT(U8 = 10)"), "1");
  EXPECT_EQ(value("COUNT(U8 = 10 OR 1 = 1)"), "0");
  EXPECT_EQ(value("COUNT(U8 = 10 AND 1 = 1)"), "0");
  EXPECT_EQ(value("COUNT(NOT U8 = 10)"), "0");
}

TEST_F(Evaluation, aComparisonIsAColumn) {
  EXPECT_EQ(value("U8 = 10"), "TRUE");
  EXPECT_EQ(value("U8 = 11"), "FALSE");
  EXPECT_EQ(value("Absent = 11"), "NULL");
}

TEST_F(Evaluation, objectPathIsAReference) {
  EXPECT_EQ(value("OBJECTPATH(V)"), "root/cimv2:V.Id=1");
  EXPECT_TRUE(holds("OBJECTPATH(V) = 'root/cimv2:V.Id=1'"));
}

TEST_F(Evaluation, instanceOfIsTheWholeInstance) {
  const QueryOutcome outcome = world.run("SELECT INSTANCEOF(V) AS X FROM V");
  ASSERT_EQ(outcome.rows.size(), 1U);
  EXPECT_THAT(outcome.rows.front(), HasSubstr("abcdef"));
}

TEST(FactorEvaluation, nothingToEvaluateIsAnInvalidFactor) {
  QORQL_SymbolTable symbols(nullptr);
  QORSmrPtr<QORQL_DataRow> row(new QORQL_DataRow());
  const QORSmrPtr<QORString> none;
  QORQL_Factor empty(QORSmrPtr<QORQL_Evaluatable>(), none, none, QORSmrPtr<IQoriValue>(), QORQL_OperatorNONE, false);
  try {
    empty.evaluate(symbols, row);
    FAIL();
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getCode(), 3U);
    EXPECT_EQ(error.getMessage(), "Invalid factor");
  }
}

TEST(FactorEvaluation, nestedOperatorMustBeMinusOrNone) {
  QORQL_SymbolTable symbols(nullptr);
  QORSmrPtr<QORQL_DataRow> row(new QORQL_DataRow());
  const QORSmrPtr<QORString> none;
  const QORSmrPtr<QORQL_Evaluatable> literal(new QORQL_Factor(
      QORSmrPtr<QORQL_Evaluatable>(), none, none, new CQoriValue(5, CQoriType::sint32), QORQL_OperatorNONE, false));
  QORQL_Factor wrapped(literal, none, none, QORSmrPtr<IQoriValue>(), QORQL_OperatorQUERYFUNCTION, false);
  EXPECT_EQ(wrapped.evaluate(symbols, row)->toString(), "5");
  QORQL_Factor wrong(literal, none, none, QORSmrPtr<IQoriValue>(), QORQL_OperatorPLUS, false);
  try {
    wrong.evaluate(symbols, row);
    FAIL();
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getMessage(), "Invalid operator in factor");
  }
}

TEST(FactorEvaluation, aChainOfSeveralStepsIsAnInvalidFactor) {
  QORQL_SymbolTable symbols(nullptr);
  QORSmrPtr<QORQL_DataRow> row(new QORQL_DataRow());
  QORQL_Factor chained(QORSmrPtr<QORQL_Evaluatable>(), new QORString("A"), new QORString("c"), QORSmrPtr<IQoriValue>(),
                       QORQL_OperatorNONE, new QORString("A.b"), QORSmrPtr<QORString>(), -1);
  try {
    chained.evaluate(symbols, row);
    FAIL();
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getMessage(), "Invalid factor");
  }
}

TEST(FunctionEvaluation, aggregatesHaveNoValueOnOneRow) {
  QORQL_SymbolTable symbols(nullptr);
  QORSmrPtr<QORQL_DataRow> row(new QORQL_DataRow());
  QORQL_Function::ParameterList parameters(new QORValSlist<QORSmrPtr<QORQL_Evaluatable>>());
  QORQL_Function function(parameters, QORQL_FUNCTIONID_MIN);
  try {
    function.evaluate(symbols, row);
    FAIL();
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getCode(), 3U);
    EXPECT_EQ(error.getMessage(), "Invalid function specified");
  }
}

}  // namespace
