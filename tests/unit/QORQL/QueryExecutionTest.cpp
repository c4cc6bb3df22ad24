// The driver of a query: which clauses run, and on what.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <sstream>

#include "QueryWorld.h"

namespace {

constexpr char kModel[] = R"(
class A { [key] uint32 Id; uint32 K; };
instance of A { Id = 1; K = 5; };
instance of A { Id = 2; K = 4; };
instance of A { Id = 3; K = 3; };
)";

struct QueryExecution : testing::Test {
  QORSmrPtr<QORQL_DataTable> execute(const char* statement, bool isNested, std::ostream* out) {
    const QORString text(statement);
    QORQL_Lexer lexer(text, false);
    QORQL_SymbolTable symbols(nullptr);
    const auto query = QORQL_Query::parse(symbols, lexer, isNested, text, "DMTF:CQL", "root/cimv2");
    QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
    query->execute(symbols, table, out, "root/cimv2");
    return table;
  }
  QueryWorld world{kModel};
};

TEST_F(QueryExecution, FiltersSortsAndProjects) {
  std::ostringstream out;
  const auto table = execute("SELECT Id FROM A WHERE Id > 1 ORDER BY K ASC", false, &out);
  ASSERT_EQ(table->getRowCount(), 2U);
  EXPECT_TRUE(table->isProjected());
  EXPECT_EQ(table->getRow(0)->getPropertyValueByName("A", "Id")->toString(), "3");
  EXPECT_EQ(table->getRow(0)->getCell(0U)->getPropertyCount(), 1U);
  EXPECT_LT(out.str().find("<VALUE>3</VALUE>"), out.str().find("<VALUE>2</VALUE>"));
}

TEST_F(QueryExecution, WritesNothingWithoutAStream) {
  EXPECT_EQ(execute("SELECT Id FROM A", false, nullptr)->getRowCount(), 3U);
}

TEST_F(QueryExecution, LeavesANestedQuerysTableUnprojected) {
  std::ostringstream out;
  const auto table = execute("SELECT Id FROM A WHERE Id > 1 ORDER BY K ASC", true, &out);
  ASSERT_EQ(table->getRowCount(), 2U);
  EXPECT_FALSE(table->isProjected());
  EXPECT_EQ(table->getRow(0)->getPropertyValueByName("A", "Id")->toString(), "2") << "it is not sorted";
  EXPECT_EQ(out.str(), "");
}

}  // namespace
