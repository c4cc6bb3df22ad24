// How the errors of parsing are thrown: their texts, and what their faults say of them.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Messages.h"
#include "ParserSupport.h"

namespace {

using parsertest::plain;
using parsertest::thrownBy;

constexpr QORuint32 kNowhere = QORQL_Fault::kNowhere;

TEST(Messages, NameTheirArgument) {
  EXPECT_EQ(thrownBy([] { QORQL_raise(QORQL_Messages::kPropertyUnknown, 0, kNowhere, QORString("Size")); }),
            "parse 12@0: property 'Size' not found in any class");
  EXPECT_EQ(thrownBy([] { QORQL_raise(QORQL_Messages::kUnexpectedToken, 7, 70, QORString("x")); }),
            "parse 2@7: unexpected token 'x' found");
  EXPECT_EQ(thrownBy([] { QORQL_raise(QORQL_Messages::kSymbolInvalid, kNowhere, QORString("D")); }),
            "runtime 4: Invalid symbol specified in the select clause -'D'");
  EXPECT_EQ(thrownBy([] { QORQL_raise(QORQL_Messages::kIsInvalid, 3); }),
            "runtime 6: Invalid syntax specified for 'IS' operator");
}

TEST(Messages, AnArgumentIsTakenAsItIs) {
  EXPECT_EQ(thrownBy([] { QORQL_raise(QORQL_Messages::kPropertyUnknown, 0, kNowhere, QORString("%s")); }),
            "parse 12@0: property '%s' not found in any class");
}

TEST(Messages, GiveTheFaultTheirKindTheArgumentAndThePlace) {
  try {
    QORQL_raise(QORQL_Messages::kPropertyAmbiguous, 0, 42, QORString("a 'b"));
  } catch (const QORQL_ParseException& error) {
    EXPECT_EQ(error.getFault().kind, QORQL_Fault::kPropertyAmbiguous);
    EXPECT_EQ(plain(error.getFault().name), "a 'b");
    EXPECT_EQ(error.getFault().offset, 42U);
  }
  try {
    QORQL_raise(QORQL_Messages::kSymbolInvalid, kNowhere, QORString("D"));
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getFault().kind, QORQL_Fault::kFromNameUnknown);
    EXPECT_EQ(plain(error.getFault().name), "D");
    EXPECT_FALSE(error.getFault().hasPlace());
  }
}

TEST(Messages, OfTheProgramsOwnErrorsNameNothing) {
  try {
    QORQL_raise(QORQL_Messages::kWhereCastFailed, kNowhere, QORString("std::bad_cast"));
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(plain(error.getMessage()),
              "Unexpected std::bad_cast exception while updating WHERE classes: std::bad_cast");
    EXPECT_EQ(error.getFault().kind, QORQL_Fault::kOther);
    EXPECT_TRUE(error.getFault().name.isEmpty());
  }
}

}  // namespace
