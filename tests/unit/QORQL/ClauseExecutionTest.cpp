// FROM and WHERE as they run: what is fetched, and what is left of it.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Cimom/QORQL/QORQL_FromClause.h"
#include "FetchedStatement.h"

namespace {

using testing::ElementsAre;

constexpr char kModel[] = R"(
class A { [key] uint32 Id; };
class B { [key] uint32 Id; };
instance of A { Id = 1; };
instance of A { Id = 2; };
instance of B { Id = 7; };
)";

struct ClauseExecution : testing::Test {
  static std::vector<std::string> columns(const QORQL_DataTable& table) {
    std::vector<std::string> names;
    for (QORuint32 i = 0; i < table.getColumnCount(); ++i) {
      names.push_back(QueryWorld::textOf(table.getColumnHeader(i)->getAlias()));
    }
    return names;
  }
  QueryWorld world{kModel};
};

TEST_F(ClauseExecution, FromBringsItsClassesInOrder) {
  EXPECT_THAT(columns(*FetchedStatement("SELECT * FROM B AS x, A").table), ElementsAre("X", "A"));
}

TEST_F(ClauseExecution, FromLeavesOutWhatAnAssociationBrings) {
  FetchedStatement fetched("SELECT * FROM A, B");
  QORValSlist<QORString> skipped;
  skipped.append("B");
  auto& from = static_cast<QORQL_FromClause&>(*fetched.query->getFromClause());
  from.setSkippedClasses(skipped);
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  from.execute(fetched.symbols, table, nullptr, "root/cimv2");
  EXPECT_THAT(columns(*table), ElementsAre("A"));
}

TEST_F(ClauseExecution, WhereFiltersTheTable) {
  FetchedStatement fetched("SELECT * FROM A, B WHERE A.Id = 2");
  ASSERT_EQ(fetched.table->getRowCount(), 2U);
  fetched.query->getWhereClause()->execute(fetched.symbols, fetched.table, nullptr, "root/cimv2");
  ASSERT_EQ(fetched.table->getRowCount(), 1U);
  EXPECT_EQ(fetched.table->getRow(0)->getPropertyValueByName("A", "Id")->toString(), "2");
}

}  // namespace
