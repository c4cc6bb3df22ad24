// One class of FROM as it is parsed; and the places that a nested query would take, which
// the parser refuses: what they do when a caller builds one.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_FromSpecifier.h"
#include "ParserSupport.h"
#include "QueryWorld.h"

namespace {

// A query that leaves one mark on its table.
class Marking : public QORQL_Executable {
 public:
  void execute(QORQL_SymbolTable&, QORSmrPtr<QORQL_DataTable>& table, std::ostream*, const QORString&) override {
    table->setUpdatedByNestedExpression(true);
  }
};

using parsertest::Parsed;
using parsertest::plain;
using parsertest::thrownBy;

TEST(FromSpecifier, KeepsItsNamesInUpperCase) {
  Parsed parsed("cim_Disk AS dIsk, b");
  const auto specifier = QORQL_FromSpecifier::parse(parsed.symbols, parsed.lexer, false);
  EXPECT_EQ(plain(specifier->getTableName()), "CIM_DISK");
  EXPECT_EQ(plain(specifier->getAlias()), "DISK");
  EXPECT_TRUE(specifier->getSubQuery().IsNull());
  EXPECT_EQ(parsed.lexer.getCurrent().getType(), TokenCOMMA);
}

TEST(FromSpecifier, RefusesWhatIsNoClass) {
  const auto thrown = [](const char* text) {
    Parsed parsed(text);
    return thrownBy([&] { QORQL_FromSpecifier::parse(parsed.symbols, parsed.lexer, false); });
  };
  EXPECT_EQ(thrown("5"), "parse 2@1: Unexpected token '5' found in FROM clause. Expected class name");
  EXPECT_EQ(thrown("(SELECT"),
            "parse 2@1: Unexpected token '('. Nested queries are not supported in the current version");
  EXPECT_EQ(thrown("C AS 5"), "parse 16@1: Alias expected after 'AS' keyword in 'FROM' clause");
}

struct NestedQuery : testing::Test {
  QORSmrPtr<QORQL_DataTable> table{new QORQL_DataTable()};
  QORQL_SymbolTable symbols{nullptr};
  QORQL_FromSpecifier specifier{"INNER", QORSmrPtr<QORQL_Executable>(new Marking()), ""};
};

TEST_F(NestedQuery, NeedsASymbolForItsName) {
  try {
    specifier.execute(symbols, table, nullptr, "root/cimv2");
    FAIL() << "no error";
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getCode(), QORQL_Exception::QORQL_UNDEFINED_SYMBOL);
    EXPECT_EQ(error.getMessage(), "unable to locate the symbol for 'INNER'");
  }
}

TEST_F(NestedQuery, RunsOnATableOfItsOwnWithItsOwnNames) {
  QORSmrPtr<QORQL_ClassInfo> info;
  const QORSmrPtr<QORQL_SymbolTable> names(new QORQL_SymbolTable(&symbols));
  symbols.insert("INNER",
                 QORSmrPtr<QORQL_Symbol>(new QORQL_Symbol(QORQL_SYMBOLTYPE_SUBQUERY_NAME, "INNER", "", info, names)));
  table->setServerAddressInfo("host", "5988");
  const QORSmrPtr<QORQL_DataTable> outer(table);
  specifier.execute(symbols, table, nullptr, "root/cimv2");
  EXPECT_FALSE(table == outer);
  EXPECT_TRUE(table->isUpdatedByNestedExpression());
  EXPECT_FALSE(outer->isUpdatedByNestedExpression());
  EXPECT_EQ(table->GetHostAddress(), "host");
}

}  // namespace
