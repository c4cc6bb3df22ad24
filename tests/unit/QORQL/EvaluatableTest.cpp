// The base of nodes: what it does where a node has nothing of its own to do.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "ParserSupport.h"

namespace {

TEST(Evaluatable, HasNoValueAndLeavesTablesAlone) {
  QORQL_SymbolTable symbols(nullptr);
  QORSmrPtr<QORQL_DataRow> row(new QORQL_DataRow());
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  table->addRow(row);
  QORSmrPtr<QORQL_DataTable> other(new QORQL_DataTable());
  QORQL_Evaluatable node;
  EXPECT_TRUE(node.evaluate(symbols, row).IsNull());
  node.evaluate(symbols, table, "root/cimv2");
  node.evaluateOR(symbols, table, other, "root/cimv2");
  EXPECT_EQ(table->getRowCount(), 1U);
  EXPECT_EQ(other->getRowCount(), 0U);
}

TEST(Evaluatable, IsTakenForNothingButWhatItIs) {
  const auto parsed = parsertest::Parsed("a + b", parsertest::Level::Arithmetic).tree;
  EXPECT_EQ(QORQL_nodeAs<QORQL_Arithmetic>(parsed), parsed.Get());
  EXPECT_EQ(QORQL_nodeAs<QORQL_Comparison>(parsed), nullptr);
  EXPECT_EQ(QORQL_nodeAs<QORQL_Arithmetic>(QORSmrPtr<QORQL_Evaluatable>()), nullptr);
  EXPECT_EQ(QORQL_Evaluatable().kind(), QORQL_NodeKind::Other);
}

}  // namespace
