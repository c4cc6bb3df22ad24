// Where the names of a statement stand. That errors of parsing and running point
// there is in FaultTest.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_StatementPlaces.h"
#include "MarkedStatement.h"
#include "ParserSupport.h"
#include "QueryWorld.h"

namespace {

using parsertest::Selected;

constexpr QORuint32 kNowhere = QORQL_Fault::kNowhere;

TEST(StatementPlaces, OfBareNamesOfTheSelectList) {
  const MarkedStatement marked("SELECT A.x, 'x' AS x, ^X + 1 AS n, x FROM");
  const Selected selected(QORString(marked.text));
  EXPECT_EQ(QORQL_findBareName(selected.list(), "x"), marked.offset);
  EXPECT_EQ(QORQL_findBareName(selected.list(), "n"), kNowhere);
  EXPECT_EQ(QORQL_findBareName(selected.list(), "A"), kNowhere);
}

TEST(StatementPlaces, OfTheClassInAFunction) {
  const MarkedStatement marked("SELECT OBJECTPATH(^x) AS p, x.y FROM");
  EXPECT_EQ(QORQL_findBareName(Selected(QORString(marked.text)).list(), "X"), marked.offset);
}

TEST(StatementPlaces, OfQualifiersOfTheSelectList) {
  const MarkedStatement marked("SELECT x, y.x, y AS x, ^X.* FROM");
  const Selected selected(QORString(marked.text));
  EXPECT_EQ(QORQL_findQualifier(selected.list(), "x"), marked.offset);
  EXPECT_EQ(QORQL_findQualifier(selected.list(), "z"), kNowhere);
}

TEST(StatementPlaces, OfClassesOfFrom) {
  const MarkedStatement marked("FROM A AS b,\n^B AS a, b");
  Selected selected("SELECT x FROM");
  const QORString text(marked.text);
  QORQL_Lexer lexer(text, false);
  QORSmrPtr<QORQL_SelectList> list = selected.executable.StaticCast<QORQL_SelectList>();
  const auto from = QORQL_FromClause::parse(selected.symbols, lexer, list, text, "CQL").StaticCast<QORQL_FromClause>();
  EXPECT_EQ(QORQL_findClass(*from, "b"), marked.offset);
  EXPECT_EQ(QORQL_findClass(*from, "c"), kNowhere);
}

// In the clause that runs first, and of a path the step that the class should have.
TEST(StatementPlaces, OfPropertiesAndPaths) {
  const QueryWorld world("class A { [key] uint32 x; };");
  for (const char* const text :
       {"SELECT x, a.x.Emb, a.^Emb.x FROM A AS a", "SELECT a.Emb FROM A AS a ORDER BY a.^Emb.x ASC",
        "SELECT a.Emb.x FROM A AS a WHERE a.x = 1 AND a.^Emb.y.z = 2 ORDER BY a.Emb ASC"}) {
    const MarkedStatement marked(text);
    const parsertest::Statement statement{QORString(marked.text)};
    EXPECT_EQ(marked.markedAt(QORQL_findProperty(statement.query(), "a", "Emb")), text);
    EXPECT_EQ(QORQL_findProperty(statement.query(), "a", "Nope"), kNowhere);
  }
}

}  // namespace
