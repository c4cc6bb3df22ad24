// Factors on one row that have no value.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Factor.h"
#include "EvaluationWorld.h"
#include "cimom/CQoriValue.h"

namespace {

using FactorEvaluationInQueries = EvaluationWorld;

TEST(FactorEvaluation, NothingToEvaluateIsAnInvalidFactor) {
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

TEST(FactorEvaluation, NestedOperatorMustBeMinusOrNone) {
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

TEST(FactorEvaluation, AChainOfSeveralStepsIsAnInvalidFactor) {
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

TEST_F(FactorEvaluationInQueries, Negation) {
  EXPECT_EQ(value("-U8"), "-10");
  EXPECT_EQ(value("-S64"), "5");
  EXPECT_EQ(value("-(U8)"), "-10");
  EXPECT_EQ(error("-U64 < 0"), "runtime 6: Can't apply operator MINUS to an uint64 value");
}

TEST_F(FactorEvaluationInQueries, ArrayElements) {
  EXPECT_TRUE(holds("A[0] = 1"));
  EXPECT_TRUE(holds("A[2] = 5"));
  EXPECT_EQ(error("A[3] = 5"), "runtime 6: Out of Bounds");
  EXPECT_FALSE(holds("None[*] = A[*]"));
  EXPECT_TRUE(holds("A[*] = A[]"));
  EXPECT_FALSE(holds("A[*] <> A[*]"));
  EXPECT_FALSE(holds("A[*] < A[*]"));
}

}  // namespace
