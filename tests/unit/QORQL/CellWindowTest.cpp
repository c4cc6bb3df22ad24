// Cells that are read ahead are those that would have been read alone.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "Cimom/QORQL/Lazy/QORQL_CellWindow.h"
#include "FetchedStatement.h"

namespace {

constexpr int kRows = 200;
constexpr int kManyRows = 5000;  // the window reads ahead of its caller

std::string model(int rows) {
  std::string mof = "class A { [key] uint32 Id; uint32 K; };";
  for (int i = 0; i < rows; ++i)
    mof += "instance of A { Id = " + std::to_string(i) + "; K = " + std::to_string(i * 7) + "; };";
  return mof;
}

struct CellWindow : testing::Test {
  explicit CellWindow(int rows = kRows) : world(model(rows)) {
    id = window.add(*QORQL_PropertyColumn::bind(fetched.rows(), 0, "Id"));
    k = window.add(*QORQL_PropertyColumn::bind(fetched.rows(), 0, "K"));
  }
  void expectCells(QORuint64 row) {
    const QORQL_RowBlock& block = fetched.rows().blocks().front();
    const QORuint64 number = window.cell(block, row, id).u;
    EXPECT_EQ(number, row);
    EXPECT_EQ(window.cell(block, row, k).u, number * 7);
  }
  QueryWorld world;
  FetchedStatement fetched{"SELECT Id, K FROM A"};
  QORQL_CellWindow window;
  std::size_t id = 0;
  std::size_t k = 0;
};

TEST_F(CellWindow, HasTheCellsOfRowsInOrder) {
  for (QORuint64 row = 0; row < 200; ++row) expectCells(row);
}

TEST_F(CellWindow, HasTheCellsOfRowsOutOfOrder) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 500; ++i) expectCells(random() % 200);
  for (const QORuint64 row : {199U, 0U, 1U, 2U, 64U, 63U, 65U, 199U, 198U}) expectCells(row);
}

struct CellWindowOfManyObjects : CellWindow {
  CellWindowOfManyObjects() : CellWindow(kManyRows) {}
};

TEST_F(CellWindowOfManyObjects, HasTheCellsOfRowsInOrderAgainAndAgain) {
  for (int round = 0; round < 2; ++round) {
    for (QORuint64 row = 0; row < kManyRows; ++row) expectCells(row);
  }
}

TEST_F(CellWindowOfManyObjects, HasTheCellsOfRowsThatTheCallerLeavesAndComesBackTo) {
  std::mt19937_64 random(12);
  for (int i = 0; i < 100; ++i) {
    const QORuint64 start = random() % kManyRows;
    const QORuint64 end = std::min<QORuint64>(kManyRows, start + random() % 400);
    for (QORuint64 row = start; row < end; ++row) expectCells(row);
    expectCells(random() % kManyRows);
  }
}

TEST_F(CellWindowOfManyObjects, HasTheLastRows) {
  for (const QORuint64 start : {4800U, 4872U, 4935U, 4936U, 4999U}) {
    for (QORuint64 row = start; row < kManyRows; ++row) expectCells(row);
  }
}

TEST_F(CellWindow, TellsHowManyRowsAreAtHand) {
  const QORQL_RowBlock& block = fetched.rows().blocks().front();
  for (QORuint64 row = 0; row < 200;) {
    const std::size_t run = window.runFrom(block, row);
    ASSERT_GT(run, 0U);
    ASSERT_LE(row + run, 200U);
    const QoriScalar* const cells = window.cells(block, row) + QORQL_CellWindow::offsetOf(k);
    for (std::size_t i = 0; i < run; ++i) EXPECT_EQ(cells[i].u, (row + i) * 7);
    row += run;
  }
  EXPECT_EQ(window.runFrom(block, 7), 1U);
}

TEST_F(CellWindow, NumbersAPropertyOnce) {
  QORQL_CellWindow other;
  const std::size_t first = other.add(*QORQL_PropertyColumn::bind(fetched.rows(), 0, "K"));
  EXPECT_NE(other.add(*QORQL_PropertyColumn::bind(fetched.rows(), 0, "Id")), first);
  EXPECT_EQ(other.add(*QORQL_PropertyColumn::bind(fetched.rows(), 0, "K")), first);
}

}  // namespace
