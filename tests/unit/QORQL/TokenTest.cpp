// One token: its kind and its text.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ParserSupport.h"

namespace {

using parsertest::plain;

TEST(Token, IsInvalidAndEmptyByDefault) {
  const QORQL_Token token;
  EXPECT_EQ(token.getType(), 256);
  EXPECT_TRUE(token.getValue().isEmpty());
}

TEST(Token, CopiesBothFields) {
  const QORQL_Token token("x", TokenID);
  QORQL_Token assigned;
  assigned = token;
  EXPECT_EQ(plain(QORQL_Token(token).getValue()), "x");
  EXPECT_EQ(QORQL_Token(token).getType(), TokenID);
  EXPECT_TRUE(assigned == token);
}

}  // namespace
