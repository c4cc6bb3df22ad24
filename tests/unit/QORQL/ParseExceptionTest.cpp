// The errors of parsing: their words and their CIM status.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ParserSupport.h"

namespace {

using parsertest::plain;

TEST(ParseError, CarriesItsWords) {
  const QORQL_ParseException error(12, "text", 7);
  EXPECT_EQ(plain(error.getType()), "parse");
  EXPECT_EQ(plain(error.getWho()), "CQL");
  EXPECT_TRUE(error.getWhere().isNull());
  EXPECT_EQ(plain(error.getMessage()), "text");
  EXPECT_EQ(error.getCode(), 12U);
  EXPECT_EQ(error.getLineNr(), 7U);
}

TEST(ParseError, MapsItsCodeToACimStatus) {
  for (QORuint32 code = 0; code <= 30; ++code) {
    const QORuint32 expected = code > 19 || code == 13 || code == 18 ? 1 : 16;
    EXPECT_EQ(QORQL_ParseException(code, "", 0).getCIMErrorCode(), expected) << code;
  }
}

TEST(Errors, CanBeCopied) {
  const QORQL_ParseException error(2, "text", 3);
  const QORQL_ParseException copy(error);
  EXPECT_EQ(plain(copy.getMessage()), "text");
  EXPECT_EQ(copy.getLineNr(), 3U);
}

}  // namespace
