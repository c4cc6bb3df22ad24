// WHERE as it is parsed: arrays, and names that are none of FROM.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ParserSupport.h"

namespace {

using parsertest::Parsed;
using parsertest::print;
using parsertest::Statement;
using parsertest::statementError;
using parsertest::thrownBy;

TEST(WhereClause, TakesArraysAndRestoresTheFlag) {
  const Statement statement("SELECT C.x FROM C WHERE ANY C.a[] = 1 AND C.b[2] = 1");
  EXPECT_EQ(print(statement.where()), "(ANY< (C.a = 1) AND (C.b = 1))");
  EXPECT_TRUE(statement.symbols.isSymbolTableUpdated());
}

TEST(WhereClause, RestoresTheFlagAfterAFault) {
  Parsed parsed("SELECT C.x FROM C WHERE C.a[");
  EXPECT_EQ(thrownBy([&] { QORQL_Query::parse(parsed.symbols, parsed.lexer, false, "", "", "ns"); }),
            "parse 0@1: Invalid array index list");
  EXPECT_TRUE(parsed.symbols.isSymbolTableUpdated());
}

TEST(WhereClause, ItsQualifiersNeedNotBeFromNames) {
  EXPECT_EQ(statementError("SELECT C.x FROM C WHERE SourceInstance.CIM_X::P <> Other.P"), "nothing");
}

}  // namespace
