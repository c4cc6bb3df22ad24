// How the errors of parsing are thrown, and how a text is known to be one of them.
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Messages.h"
#include "ParserSupport.h"

namespace {

using parsertest::plain;
using parsertest::thrownBy;

TEST(Messages, NameTheirArgument) {
  EXPECT_EQ(thrownBy([] { QORQL_raise(QORQL_Messages::kPropertyUnknown, QORString("Size")); }),
            "parse 12@0: property 'Size' not found in any class");
  EXPECT_EQ(thrownBy([] { QORQL_raise(QORQL_Messages::kUnexpectedToken, 7, QORString("x")); }),
            "parse 2@7: unexpected token 'x' found");
  EXPECT_EQ(thrownBy([] { QORQL_raise(QORQL_Messages::kSymbolInvalid, QORString("D")); }),
            "runtime 4: Invalid symbol specified in the select clause -'D'");
  EXPECT_EQ(thrownBy([] { QORQL_raise(QORQL_Messages::kIsInvalid); }),
            "runtime 6: Invalid syntax specified for 'IS' operator");
}

TEST(Messages, AnArgumentIsTakenAsItIs) {
  EXPECT_EQ(thrownBy([] { QORQL_raise(QORQL_Messages::kPropertyUnknown, QORString("%s")); }),
            "parse 12@0: property '%s' not found in any class");
}

TEST(Messages, AreKnownByTheirTexts) {
  QORString argument;
  EXPECT_TRUE(
      QORQL_isMessage(QORQL_Messages::kPropertyUnknown.text, "property 'a b' not found in any class", argument));
  EXPECT_EQ(plain(argument), "a b");
  EXPECT_FALSE(QORQL_isMessage(QORQL_Messages::kPropertyUnknown.text, "property 'a'", argument));
  EXPECT_FALSE(QORQL_isMessage(QORQL_Messages::kPropertyUnknown.text, "", argument));
  EXPECT_FALSE(QORQL_isMessage(QORQL_Messages::kFromExpected.text, QORQL_Messages::kFromExpected.text, argument));
}

}  // namespace
