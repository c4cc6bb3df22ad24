// The errors of running a query: their words and their CIM status.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ParserSupport.h"

namespace {

using parsertest::plain;

TEST(RuntimeError, CarriesItsWords) {
  const QORQL_Exception error(QORQL_Exception::QORQL_UNDEFINED_SYMBOL, "text");
  EXPECT_EQ(plain(error.getType()), "CQL_Runtime");
  EXPECT_EQ(plain(error.getWho()), "CQL");
  EXPECT_TRUE(error.getWhere().isNull());
  EXPECT_EQ(plain(error.getMessage()), "text");
  EXPECT_EQ(error.getCode(), 4U);
  EXPECT_STREQ(error.what(), "text");
}

TEST(RuntimeError, MapsItsCodeToACimStatus) {
  const auto statusOf = [](int code) {
    return QORQL_Exception(static_cast<QORQL_Exception::QORQL_ExceptionCode>(code), "").getCIMErrorCode();
  };
  EXPECT_EQ(statusOf(QORQL_Exception::QORQL_INVALID_COLUMN_NAME), 4U);
  EXPECT_EQ(statusOf(QORQL_Exception::QORQL_ROW_COLUMN_ENTRIES_MISMATCH), 4U);
  EXPECT_EQ(statusOf(QORQL_Exception::QORQL_INCORRECT_SELECT_STATEMENT), 16U);
  EXPECT_EQ(statusOf(QORQL_Exception::QORQL_INTERNAL_ERROR), 1U);
  EXPECT_EQ(statusOf(QORQL_Exception::QORQL_UNDEFINED_SYMBOL), 16U);
  EXPECT_EQ(statusOf(QORQL_Exception::QORQL_UNIDENTIFIED_IDENTIFIER), 16U);
  EXPECT_EQ(statusOf(QORQL_Exception::QORQL_INVALID_DATA_TYPE), 16U);
  EXPECT_EQ(statusOf(7), 1U);
}

}  // namespace
