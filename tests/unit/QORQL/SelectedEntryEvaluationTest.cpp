// The value of a column on a row.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "FetchedStatement.h"

namespace {

constexpr char kModel[] = R"(
class A { [key] uint32 Id; uint32 K; };
instance of A { Id = 1; K = 10; };
instance of A { Id = 2; };
)";

struct SelectedEntryEvaluation : testing::Test {
  // The column's value in the first rows of the table.
  QORSmrPtr<IQoriValue> value(FetchedStatement& fetched, QORuint32 row = 0) {
    QORSmrPtr<QORQL_DataRow> existing(fetched.table->getRow(row));
    return fetched.entry(0)->evaluate(fetched.symbols, existing);
  }
  QueryWorld world{kModel};
};

TEST_F(SelectedEntryEvaluation, ReadsAPropertyAndComputesTheRest) {
  FetchedStatement property("SELECT K FROM A");
  EXPECT_EQ(value(property)->toString(), "10");
  EXPECT_TRUE(value(property, 1).IsNull());
  FetchedStatement computed("SELECT K + 1 AS X FROM A");
  EXPECT_EQ(value(computed)->toString(), "11");
}

TEST_F(SelectedEntryEvaluation, OfAStarIsNone) {
  FetchedStatement all("SELECT * FROM A");
  EXPECT_TRUE(value(all).IsNull());
}

// After the projection a function is not called again: its result is in the row.
TEST_F(SelectedEntryEvaluation, ReadsAFunctionsResultWhereTheRowHasOne) {
  FetchedStatement fetched("SELECT OBJECTPATH(A) AS P FROM A");
  fetched.table = QORSmrPtr<QORQL_DataTable>(new QORQL_DataTable());
  fetched.query->execute(fetched.symbols, fetched.table, nullptr, "root/cimv2");
  ASSERT_GE(fetched.table->getFunctionColumn(), 0);
  EXPECT_EQ(value(fetched)->toString(), "root/cimv2:A.Id=1");
}

}  // namespace
