// Functions on one row.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Function.h"
#include "EvaluationWorld.h"

namespace {

using testing::HasSubstr;

using FunctionEvaluationInQueries = EvaluationWorld;

TEST(FunctionEvaluation, AggregatesHaveNoValueOnOneRow) {
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

TEST_F(FunctionEvaluationInQueries, ObjectPathIsAReference) {
  EXPECT_EQ(value("OBJECTPATH(V)"), "root/cimv2:V.Id=1");
  EXPECT_TRUE(holds("OBJECTPATH(V) = 'root/cimv2:V.Id=1'"));
}

TEST_F(FunctionEvaluationInQueries, InstanceOfIsTheWholeInstance) {
  const QueryOutcome outcome = world.run("SELECT INSTANCEOF(V) AS X FROM V");
  ASSERT_EQ(outcome.rows.size(), 1U);
  EXPECT_THAT(outcome.rows.front(), HasSubstr("abcdef"));
}

}  // namespace
