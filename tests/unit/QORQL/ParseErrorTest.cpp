// The errors of the engine: their words and their CIM status.
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_FunctionID.h"
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

TEST(FunctionNames, AreFoundInAnyCase) {
  for (QORuint32 id = QORQL_FUNCTIONID_OBJECTPATH; id <= QORQL_FUNCTIONID_INSTANCEOF; ++id) {
    EXPECT_EQ(QORQL_findFunction(QORQL_functionName(id)), static_cast<QORQL_FunctionID>(id));
  }
  EXPECT_EQ(QORQL_findFunction("cOuNt"), QORQL_FUNCTIONID_COUNT);
  EXPECT_EQ(QORQL_findFunction("UNKNOWN"), QORQL_FUNCTIONID_UNKNOWN);
  EXPECT_EQ(QORQL_findFunction(""), QORQL_FUNCTIONID_UNKNOWN);
  EXPECT_STREQ(QORQL_functionName(0), "UNKNOWN");
  EXPECT_STREQ(QORQL_functionName(8), "UNKNOWN");
}

TEST(FunctionNames, TellTheAggregates) {
  for (QORuint32 id = 0; id <= 9; ++id) EXPECT_EQ(QORQL_isAggregate(id), id >= 2 && id <= 6) << id;
}

}  // namespace
