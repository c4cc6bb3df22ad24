// The places that a nested query would take, which the parser refuses: what
// they do when a caller builds one.
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_FromSpecifier.h"
#include "QueryWorld.h"

namespace {

// A query that leaves one mark on its table.
class Marking : public QORQL_Executable {
 public:
  void execute(QORQL_SymbolTable&, QORSmrPtr<QORQL_DataTable>& table, std::ostream*, const QORString&) override {
    table->setUpdatedByNestedExpression(true);
  }
};

struct NestedQuery : testing::Test {
  QORSmrPtr<QORQL_DataTable> table{new QORQL_DataTable()};
  QORQL_SymbolTable symbols{nullptr};
  QORQL_FromSpecifier specifier{"INNER", QORSmrPtr<QORQL_Executable>(new Marking()), ""};
};

TEST_F(NestedQuery, needsASymbolForItsName) {
  try {
    specifier.execute(symbols, table, nullptr, "root/cimv2");
    FAIL() << "no error";
  } catch (const QORQL_Exception& error) {
    EXPECT_EQ(error.getCode(), QORQL_Exception::QORQL_UNDEFINED_SYMBOL);
    EXPECT_EQ(error.getMessage(), "unable to locate the symbol for 'INNER'");
  }
}

TEST_F(NestedQuery, runsOnATableOfItsOwnWithItsOwnNames) {
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
