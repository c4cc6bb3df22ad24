// Statements: the order of their clauses, and what is left of them.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "ParserSupport.h"

namespace {

using parsertest::Fault;
using parsertest::Parsed;
using parsertest::plain;
using parsertest::print;
using parsertest::Statement;
using parsertest::statementError;

TEST(Statement, HasItsClauses) {
  const Statement statement("SELECT C.x FROM C WHERE C.x = 1 ORDER BY C.x DESC FORMAT AS HTML");
  EXPECT_EQ(print(statement.where()), "(C.x = 1)");
  const auto& orderBy = dynamic_cast<const QORQL_OrderByClause&>(*statement.query().getOrderByClause());
  EXPECT_EQ(print(orderBy.getExpression()), "C.x");
  EXPECT_FALSE(orderBy.isSortAscending());
  EXPECT_TRUE(statement.selectList().getOrderByKey() == orderBy.getExpression());
  EXPECT_EQ(statement.query().getFormatClause()->getFormatID(), HTML);
  EXPECT_TRUE(statement.query().getQueryString() == statement.text);
  EXPECT_EQ(plain(statement.query().getQueryLanguage()), "CQL");
}

TEST(Statement, NeedsNoOptionalClause) {
  const Statement statement("SELECT * FROM C");
  EXPECT_TRUE(statement.query().getWhereClause().IsNull());
  EXPECT_TRUE(statement.query().getOrderByClause().IsNull());
  EXPECT_TRUE(statement.query().getFormatClause().IsNull());
}

TEST(Statement, OutlivesTheTextThatItWasParsedFrom) {
  QORSmrPtr<QORQL_Executable> query;
  QORQL_SymbolTable symbols(nullptr);
  {
    const QORString text("SELECT C.x FROM C WHERE C.x = 'v'");
    QORQL_Lexer lexer(text, false);
    query = QORQL_Query::parse(symbols, lexer, false, QORString("tempo") + "rary", QORString("C") + "QL", "ns");
  }
  EXPECT_EQ(plain(static_cast<QORQL_Query&>(*query).getQueryString()), "temporary");
}

TEST(Statement, ANestedOneLeavesWhatFollowsToItsCaller) {
  Parsed parsed("SELECT C.x FROM C ) rest");
  QORQL_Query::parse(parsed.symbols, parsed.lexer, true, "", "", "ns");
  EXPECT_EQ(parsed.lexer.getCurrent().getType(), TokenCLOSEPAREN);
}

class StatementFault : public testing::TestWithParam<Fault> {};

TEST_P(StatementFault, IsReported) { EXPECT_EQ(statementError(GetParam().text), GetParam().thrown); }

constexpr const char* kNoAlias = "parse 2@1: unexpected token 'b' found";
constexpr const char* kNested =
    "parse 2@1: Unexpected token '('. Nested queries are not supported in the current version";

INSTANTIATE_TEST_SUITE_P(
    Faults, StatementFault,
    testing::Values(
        Fault{"NoFrom", "SELECT x", "parse 8@1: 'FROM' expected"},
        Fault{"NoFromButMore", "SELECT x\ny", "parse 8@2: 'FROM' expected"},
        Fault{"NestedQuery", "SELECT x FROM (SELECT y FROM a)", kNested},
        Fault{"ImplicitAlias", "SELECT x FROM a b", kNoAlias},
        Fault{"FromNothing", "SELECT x FROM",
              "parse 2@1: Unexpected token '' found in FROM clause. Expected class name"},
        Fault{"FromNumber", "SELECT x FROM 5",
              "parse 2@1: Unexpected token '5' found in FROM clause. Expected class name"},
        Fault{"FromCommaAtTheEnd", "SELECT x FROM a, WHERE",
              "parse 2@1: Unexpected token 'WHERE' found in FROM clause. Expected class name"},
        Fault{"AliasMissing", "SELECT x FROM a AS\n", "parse 16@2: Alias expected after 'AS' keyword in 'FROM' clause"},
        Fault{"AliasIsKeyword", "SELECT x FROM a AS where",
              "parse 16@1: Alias expected after 'AS' keyword in 'FROM' clause"},
        Fault{"OrderWithoutBy", "SELECT x FROM a ORDER x",
              "parse 19@1: Invalid ORDER BY clause.  ORDER specified without corresponding BY keyword."},
        Fault{"OrderByAggregates", "SELECT COUNT(x) AS n FROM a ORDER BY x ASC",
              "parse 15@1: Cannot combine ORDER BY clause with strictly aggregate functions."},
        Fault{"NoDirection", "SELECT x FROM a ORDER BY x",
              "parse 2@1: Unexpected token '' found.  Expected [ASC | DESC] following ORDER BY clause."},
        Fault{"WrongDirection", "SELECT x FROM a ORDER BY x up",
              "parse 2@1: Unexpected token 'up' found.  Expected [ASC | DESC] following ORDER BY clause."},
        Fault{"TwoKeys", "SELECT x FROM a ORDER BY x ASC, y ASC", "parse 2@1: unexpected token ',' found"},
        Fault{"TwoKeysWithoutDirection", "SELECT x FROM a ORDER BY x, y ASC",
              "parse 2@1: Unexpected token ',' found.  Expected [ASC | DESC] following ORDER BY clause."},
        Fault{"KeyIsNoComparison", "SELECT x FROM a ORDER BY x = 1 ASC",
              "parse 2@1: Unexpected token '=' found.  Expected [ASC | DESC] following ORDER BY clause."},
        Fault{"FormatWithoutAs", "SELECT x FROM a FORMAT XML", "parse 2@1: 'AS' expected"},
        Fault{"FormatObject", "SELECT x FROM a FORMAT AS QORIOBJECT",
              "parse 2@1: 'QORIOBJECT', 'XML', 'HTML' or 'CSV' expected"},
        Fault{"FormatNothing", "SELECT x FROM a FORMAT AS", "parse 2@1: 'QORIOBJECT', 'XML', 'HTML' or 'CSV' expected"},
        Fault{"FormatBeforeWhere", "SELECT x FROM a FORMAT AS XML WhErE y = 1",
              "parse 2@1: unexpected token 'WhErE' found"},
        Fault{"OrderBeforeWhere", "SELECT x FROM a ORDER BY x ASC WHERE y = 1",
              "parse 2@1: unexpected token 'WHERE' found"},
        Fault{"SecondComparison", "SELECT x FROM a WHERE x = 1 = 2", "parse 2@1: unexpected token '=' found"},
        Fault{"TildaComparison", "SELECT x FROM a WHERE x ~ 1", "parse 2@1: unexpected token '~' found"},
        Fault{"Semicolon", "SELECT x FROM a;", "parse 2@1: unexpected token ';' found"},
        Fault{"WhereNothing", "SELECT x FROM a WHERE", "parse 2@1: unexpected token '' found"}),
    [](const auto& info) { return info.param.name; });

TEST(Statement, ReadsAllOfTheTextBeforeItResolvesNames) {
  EXPECT_EQ(statementError("SELECT nowhere FROM a b"), kNoAlias);
  EXPECT_EQ(statementError("SELECT x.y FROM a WHERE z = 1 b"), kNoAlias);
}

}  // namespace
