// The function that stands in an expression.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_FunctionFinder.h"
#include "ParserSupport.h"

namespace {

using parsertest::Level;
using parsertest::Parsed;

QORuint32 functionIn(const char* text) {
  const Parsed parsed(text, Level::Expression);
  QORQL_FunctionFinder* const finder = new QORQL_FunctionFinder;
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  parsed.tree->accept(visitor);
  return finder->getFunctionID();
}

TEST(FunctionFinder, FindsTheLastFunctionVisited) {
  EXPECT_EQ(functionIn("x"), 0U);
  EXPECT_EQ(functionIn("SUM(x)"), 6U);
  EXPECT_EQ(functionIn("MAX(MIN(x))"), 3U);
  EXPECT_EQ(functionIn("MAX(x) + MIN(y)"), 2U);
}

}  // namespace
