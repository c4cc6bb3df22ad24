// Statements: the clauses, their order, and what each of them leaves behind.
#include <gtest/gtest.h>

#include <string>

#include "Cimom/QORQL/QORQL_FormatClause.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "ParserSupport.h"

namespace {

using parsertest::Parsed;
using parsertest::plain;
using parsertest::print;
using parsertest::Statement;
using parsertest::statementError;
using parsertest::thrownBy;

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

struct Fault {
  const char* name;
  const char* text;
  const char* thrown;
};

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

// --- FROM -----------------------------------------------------------------------------

const QORQL_FromClause& fromOf(const Statement& statement) {
  return static_cast<const QORQL_FromClause&>(*statement.query().getFromClause());
}

TEST(FromClause, EntersClassesAndAliasesInUpperCase) {
  const Statement statement("SELECT CIM_B.x FROM cim_A AS p, Cim_b");
  const QORSmrPtr<QORQL_Symbol> symbol = statement.symbols.lookup("CIM_A");
  const QORSmrPtr<QORQL_Symbol> alias = statement.symbols.lookup("P");
  ASSERT_FALSE(symbol.IsNull());
  ASSERT_FALSE(alias.IsNull());
  EXPECT_FALSE(symbol->isAlias());
  EXPECT_EQ(plain(symbol->getAlias()), "P");
  EXPECT_TRUE(alias->isAlias());
  EXPECT_EQ(plain(alias->getClassName()), "CIM_A");
  EXPECT_TRUE(alias->getClassInfo() == symbol->getClassInfo());
  EXPECT_EQ(plain(statement.symbols.lookup("CIM_B")->getAlias()), "");
  EXPECT_TRUE(statement.symbols.isSymbolTableUpdated());
}

TEST(FromClause, KeepsItsSpecifiersInOrder) {
  const Statement statement("SELECT b.x FROM b, a AS q, b AS r");
  const QORQL_FromClause::SpecifierList list = fromOf(statement).getFromSpecifierList();
  ASSERT_EQ(list->entries(), 3U);
  EXPECT_EQ(plain(list->at(0)->getTableName()), "B");
  EXPECT_EQ(plain(list->at(0)->getAlias()), "");
  EXPECT_EQ(plain(list->at(1)->getTableName()), "A");
  EXPECT_EQ(plain(list->at(1)->getAlias()), "Q");
  EXPECT_TRUE(list->at(1)->getSubQuery().IsNull());
  EXPECT_EQ(plain(statement.symbols.lookup("B")->getAlias()), "R");
}

TEST(FromClause, AnAliasEqualToItsClassIsNoSecondSymbol) {
  const Statement statement("SELECT a.x FROM a AS A");
  EXPECT_EQ(statement.symbols.getSymbolHashMap().entries(), 1U);
  EXPECT_FALSE(statement.symbols.lookup("A")->isAlias());
  EXPECT_EQ(plain(fromOf(statement).getFromSpecifierList()->first()->getAlias()), "A");
}

TEST(FromClause, SelectAllNeedsAllProperties) {
  const Statement all("SELECT * FROM a AS p, b");
  EXPECT_TRUE(fromOf(all).isSelectAll());
  EXPECT_EQ(all.requested("A"), "*");
  EXPECT_EQ(all.requested("P"), "*");
  EXPECT_EQ(all.requested("B"), "*");
  const Statement some("SELECT *, a.x FROM a");
  EXPECT_FALSE(fromOf(some).isSelectAll());
  EXPECT_EQ(some.requested("A"), "x");
}

TEST(FromClause, IsEnteredOnItsKeyword) {
  Parsed parsed("x");
  QORSmrPtr<QORQL_SelectList> list;
  EXPECT_EQ(thrownBy([&] { QORQL_FromClause::parse(parsed.symbols, parsed.lexer, list, "", ""); }),
            "parse 8@1: 'FROM' expected");
}

// --- WHERE, ORDER BY, FORMAT -------------------------------------------------------------

TEST(WhereClause, TakesArraysAndRestoresTheFlag) {
  const Statement statement("SELECT C.x FROM C WHERE ANY C.a[] = 1 AND C.b[2] = 1");
  EXPECT_EQ(print(statement.where()), "(ANY< (C.a = 1) AND (C.b = 1))");
  EXPECT_TRUE(statement.symbols.isSymbolTableUpdated());
}

TEST(WhereClause, RestoresTheFlagAfterAFault) {
  Parsed parsed("SELECT C.x FROM C WHERE C.a[");
  EXPECT_EQ(thrownBy([&] { QORQL_Query::parse(parsed.symbols, parsed.lexer, false, "", "", "ns"); }),
            "parse 0@1: Invalid array index list");
  EXPECT_TRUE(parsed.symbols.isSymbolTableUpdated());
}

TEST(WhereClause, ItsQualifiersNeedNotBeFromNames) {
  EXPECT_EQ(statementError("SELECT C.x FROM C WHERE SourceInstance.CIM_X::P <> Other.P"), "nothing");
}

TEST(OrderByClause, TakesItsDirectionInAnyCaseAndAlsoQuoted) {
  const auto isAscending = [](const char* direction) {
    const Statement statement(QORString("SELECT C.x FROM C ORDER BY C.x ") + direction);
    return static_cast<const QORQL_OrderByClause&>(*statement.query().getOrderByClause()).isSortAscending();
  };
  EXPECT_TRUE(isAscending("ASC"));
  EXPECT_TRUE(isAscending("asc"));
  EXPECT_TRUE(isAscending("'Asc'"));
  EXPECT_FALSE(isAscending("DESC"));
  EXPECT_FALSE(isAscending("Desc"));
}

TEST(OrderByClause, TakesArrays) { EXPECT_EQ(statementError("SELECT C.x FROM C ORDER BY C.a[0] ASC"), "nothing"); }

TEST(FormatClause, TakesThreeNames) {
  const auto formatOf = [](const char* text) {
    Parsed parsed(text);
    const QORQL_FormatID format = QORQL_FormatClause::parse(parsed.symbols, parsed.lexer)->getFormatID();
    EXPECT_EQ(parsed.lexer.getCurrent().getType(), TokenEOF);
    return format;
  };
  EXPECT_EQ(formatOf("FORMAT AS XML"), XML);
  EXPECT_EQ(formatOf("format as html"), HTML);
  EXPECT_EQ(formatOf("FORMAT AS csv"), CSV);
  EXPECT_EQ(XML, 0);
  EXPECT_EQ(QORQL_FormatClause(QORIOBJECT).getFormatID(), 3);
}

TEST(FormatClause, IsEnteredOnItsKeyword) {
  Parsed parsed("AS XML");
  EXPECT_EQ(thrownBy([&] { QORQL_FormatClause::parse(parsed.symbols, parsed.lexer); }), "parse 2@1: 'FORMAT' expected");
}

}  // namespace
