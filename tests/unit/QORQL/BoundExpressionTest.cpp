// A bound expression has the value that its tree has on the row.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/Lazy/QORQL_BoundExpression.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "FetchedStatement.h"

namespace {

constexpr char kModel[] = R"(
class A { [key] uint32 Id; uint32 K; string S; uint16 L[]; };
instance of A { Id = 1; K = 10; S = "x"; L = {1, 2}; };
instance of A { Id = 2; S = "y"; };
)";

std::string shown(const QORSmrPtr<IQoriValue>& value) {
  return value.IsNull() ? "null" : QueryWorld::textOf(value->toString());
}

struct BoundExpression : testing::Test {
  // The values of the first column, row by row, bound and by its tree; "unbound" when it cannot be bound.
  std::string bound(const char* expression) {
    FetchedStatement fetched((std::string("SELECT ") + expression + " AS X FROM A").c_str());
    const auto value = QORQL_Binder(*fetched.table).bind(fetched.entry(0)->getExpression());
    if (value == nullptr) return "unbound";
    std::string texts;
    const QORQL_RowBlock& block = fetched.rows().blocks().front();
    for (QORuint64 row = 0; row < block.rowCount; ++row) {
      QORQL_RowView view(fetched.rows());
      view.select(block, row);
      texts += shown(value->value(view)) + " ";
    }
    return texts;
  }
  std::string onRows(const char* expression) {
    FetchedStatement fetched((std::string("SELECT ") + expression + " AS X FROM A").c_str(),
                             QORQL_DataTable::kExecutionPlain);
    std::string texts;
    for (QORuint32 i = 0; i < fetched.table->getRowCount(); ++i) {
      QORSmrPtr<QORQL_DataRow> row(fetched.table->getRow(i));
      texts += shown(fetched.entry(0)->getExpression()->evaluate(fetched.symbols, row)) + " ";
    }
    return texts;
  }
  QueryWorld world{kModel};
};

TEST_F(BoundExpression, HasTheValuesOfItsTree) {
  for (const char* expression :
       {"K", "K + 1", "2 * K - Id", "-K", "S + 'z'", "S + 1", "'text'", "OBJECTPATH(A)", "L"}) {
    EXPECT_EQ(bound(expression), onRows(expression)) << expression;
  }
  EXPECT_EQ(bound("2 * K - Id"), "19 null ");
}

TEST_F(BoundExpression, IsNoneOfWhatNeedsARow) {
  for (const char* expression : {"K = 1", "INSTANCEOF(A)", "COUNT(K)"})
    EXPECT_EQ(bound(expression), "unbound") << expression;
}

TEST_F(BoundExpression, TellsColumnsAndConstants) {
  FetchedStatement fetched("SELECT K AS X, 5 AS Y, K + 1 AS Z FROM A");
  const QORQL_Binder binder(*fetched.table);
  const auto column = binder.bindEntry(*fetched.entry(0));
  const auto constant = binder.bindEntry(*fetched.entry(1));
  const auto computed = binder.bindEntry(*fetched.entry(2));
  EXPECT_NE(column->propertyColumn(), nullptr);
  EXPECT_EQ(column->constant(), nullptr);
  ASSERT_NE(constant->constant(), nullptr);
  EXPECT_EQ(constant->constant()->u, 5U);
  EXPECT_EQ(computed->propertyColumn(), nullptr);
  EXPECT_EQ(computed->constant(), nullptr);
}

}  // namespace
