// Places where rows that are made late could show something else than rows made at once.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/support/QueryWorld.h"

namespace {

constexpr char kModel[] = R"(
class A { [key] uint32 k; uint32 x; string s; };
class B { [key] uint32 k; uint32 y; uint32 x; };
instance of A { k = 1; x = 10; s = "one"; };
instance of A { k = 2; x = 20; s = "two"; };
instance of B { k = 1; y = 10; x = 1; };
instance of B { k = 5; y = 20; x = 2; };
)";

using Strings = std::vector<std::string>;

// What the cells of the projected table hold: "Class(property,property)", "-" for none; cells joined by "|".
Strings cellsOf(const std::string& query, QORQL_DataTable::ExecutionMode mode) {
  const QORString text(query.data(), query.size());
  QORQL_Lexer lexer(text, false);
  QORQL_SymbolTable symbols(nullptr);
  const QORSmrPtr<QORQL_Executable> parsed(QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", "root/cimv2"));
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  table->setExecutionMode(mode);
  parsed->execute(symbols, table, nullptr, "root/cimv2");
  Strings rows;
  for (QORuint32 row = 0; row < table->getRowCount(); ++row) {
    std::string cells;
    QORValSlistIterator<QORSmrPtr<IQoriObject>> objects(*table->getRow(row)->getAllCells());
    while (++objects) {
      if (!cells.empty()) cells += '|';
      if (objects.key().IsNull()) {
        cells += '-';
        continue;
      }
      cells += QueryWorld::textOf(objects.key()->getClassName()) + "(";
      for (QORuint32 i = 0; i < objects.key()->getPropertyCount(); ++i) {
        cells += (i == 0 ? "" : ",") + QueryWorld::textOf(objects.key()->getPropertyAt(i)->getName());
      }
      cells += ')';
    }
    rows.push_back(cells);
  }
  return rows;
}

void expectCells(const std::string& query, const Strings& expected) {
  EXPECT_EQ(cellsOf(query, QORQL_DataTable::kExecutionLazy), expected) << query;
  EXPECT_EQ(cellsOf(query, QORQL_DataTable::kExecutionPlain), expected) << query;
}

TEST(ModeAgreement, WhatTheCellsKeep) {
  QueryWorld world(kModel);
  expectCells("SELECT s, k FROM A", {"A(k,s)", "A(k,s)"});
  expectCells("SELECT k FROM A ORDER BY x ASC", {"A(k)", "A(k)"});
  expectCells("SELECT k + x AS n FROM A", {"A(k,x)", "A(k,x)"});
  expectCells("SELECT A.s, B.y FROM A, B WHERE A.k = B.k", {"A(s)|B(y)"});
  expectCells("SELECT B.y, A.s FROM A, B WHERE A.k = B.k", {"B(y)|A(s)"});
  expectCells("SELECT A.s, B.* FROM A, B WHERE A.k *= B.k", {"A(s)|B(k,y,x)", "A(s)|-"});
  expectCells("SELECT * FROM B WHERE k = 1", {"B(k,y,x)"});
  expectCells("SELECT A.k, OBJECTPATH(A) AS p FROM A WHERE k = 1", {"A(k)|VALUES(P)"});
  expectCells("SELECT OBJECTPATH(A) AS p, * FROM A WHERE k = 1 ORDER BY k ASC", {"A(k,x,s)|VALUES(P)"});
  expectCells("SELECT COUNT(k) AS n FROM A", {"VALUES(N)"});
  // What names no class keeps no cell, and what another alias of a repeated class names keeps no property.
  expectCells("SELECT 1 AS n FROM A", {"", ""});
  expectCells("SELECT p.x, q.y FROM B AS p, B AS q", {"B(y)", "B(y)"});
  expectCells("SELECT p.y, q.x FROM B AS p, B AS q WHERE q.y = 10", {"B(x)"});
}

TEST(ModeAgreement, TwoColumnsThatShareAnAlias) {
  QueryWorld world(kModel);
  // The name finds A's column, whose objects were fetched without k: no row can be built.
  const QueryOutcome outcome = world.run("SELECT p.k FROM A AS p, B AS p");
  EXPECT_EQ(outcome.tableRows, 0U);
  ASSERT_FALSE(outcome.log.empty());
  EXPECT_EQ(outcome.log.back(), "CQL/1: Caught an exception occured while building the results table.");
}

TEST(ModeAgreement, ConditionsOnColumnsThatShareAnAlias) {
  QueryWorld world(kModel);
  for (const char* const query :
       {"SELECT A.k FROM A AS p, B AS p WHERE p.x = 10", "SELECT A.k FROM A AS p, B AS p WHERE A.x = B.y",
        "SELECT p.x FROM A AS p, B AS p WHERE p.x = B.y ORDER BY p.x DESC", "SELECT B.k FROM A AS B, B WHERE B.k = 1",
        "SELECT * FROM A AS p, B AS p", "SELECT COUNT(p.x) AS n FROM A AS p, B AS p WHERE p.x *= B.y"}) {
    world.run(query);
  }
}

TEST(ModeAgreement, TheOtherAliasOfARepeatedClassKeepsNoProperties) {
  QueryWorld world(kModel);
  EXPECT_EQ(world.rows("SELECT p.x, q.y FROM B AS p, B AS q"), (Strings{"NULL|10", "NULL|20"}));
}

// The discarded side of OR works on reversed columns, so its null-extended rows
// hold an object of B and none of A.
TEST(ModeAgreement, OuterJoinOfUnclearSidesInADiscardedOperand) {
  QueryWorld world(kModel);
  EXPECT_EQ(world.error("SELECT A.k FROM A, B WHERE A.x + B.y *= A.k + B.k AND A.s LIKE 'q' OR A.k = 1"),
            "runtime 6: Invalid data type specified for LIKE operator");
  EXPECT_EQ(world.error("SELECT A.k FROM A, B WHERE A.k = 1 OR A.x + B.y *= A.k + B.k AND A.s LIKE 'q' OR A.k = 1"),
            "runtime 6: Invalid data type specified for LIKE operator");
}

}  // namespace
