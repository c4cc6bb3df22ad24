// ORDER BY as it is parsed: its direction and its key.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "ParserSupport.h"

namespace {

using parsertest::Statement;
using parsertest::statementError;

TEST(OrderByClause, TakesItsDirectionInAnyCaseAndAlsoQuoted) {
  const auto isAscending = [](const char* direction) {
    const Statement statement(QORString("SELECT C.x FROM C ORDER BY C.x ") + direction);
    return static_cast<const QORQL_OrderByClause&>(*statement.query().getOrderByClause()).isSortAscending();
  };
  EXPECT_TRUE(isAscending("ASC"));
  EXPECT_TRUE(isAscending("asc"));
  EXPECT_TRUE(isAscending("'Asc'"));
  EXPECT_FALSE(isAscending("DESC"));
  EXPECT_FALSE(isAscending("Desc"));
}

TEST(OrderByClause, TakesArrays) { EXPECT_EQ(statementError("SELECT C.x FROM C ORDER BY C.a[0] ASC"), "nothing"); }

}  // namespace
