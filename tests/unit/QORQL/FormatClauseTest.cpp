// FORMAT AS: its three names.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_FormatClause.h"
#include "ParserSupport.h"

namespace {

using parsertest::Parsed;
using parsertest::thrownBy;

TEST(FormatClause, TakesThreeNames) {
  const auto formatOf = [](const char* text) {
    Parsed parsed(text);
    const QORQL_FormatID format = QORQL_FormatClause::parse(parsed.symbols, parsed.lexer)->getFormatID();
    EXPECT_EQ(parsed.lexer.getCurrent().getType(), TokenEOF);
    return format;
  };
  EXPECT_EQ(formatOf("FORMAT AS XML"), XML);
  EXPECT_EQ(formatOf("format as html"), HTML);
  EXPECT_EQ(formatOf("FORMAT AS csv"), CSV);
  EXPECT_EQ(XML, 0);
  EXPECT_EQ(QORQL_FormatClause(QORIOBJECT).getFormatID(), 3);
}

TEST(FormatClause, IsEnteredOnItsKeyword) {
  Parsed parsed("AS XML");
  EXPECT_EQ(thrownBy([&] { QORQL_FormatClause::parse(parsed.symbols, parsed.lexer); }), "parse 2@1: 'FORMAT' expected");
}

}  // namespace
