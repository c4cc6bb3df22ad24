// The select list: FIRST, its entries, and the rules on mixing aggregates.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ParserSupport.h"

namespace {

using parsertest::Fault;
using parsertest::Parsed;
using parsertest::plain;
using parsertest::Selected;
using parsertest::thrownBy;

TEST(SelectList, KeepsItsEntriesInOrder) {
  const Selected selected("SELECT a, C.b AS q, COUNT FROM C");
  EXPECT_EQ(selected.list().getSelectedEntries()->entries(), 3U);
  EXPECT_EQ(plain(selected.entry(0).getPropertyName()), "a");
  EXPECT_EQ(plain(selected.entry(1).getClassName()), "C");
  EXPECT_EQ(plain(selected.entry(1).getAlias()), "Q");
  EXPECT_EQ(plain(selected.entry(2).getPropertyName()), "COUNT");
  EXPECT_EQ(selected.list().isFirstUsed(), false);
  EXPECT_EQ(selected.list().getFirstCount(), 0U);
  EXPECT_TRUE(selected.list().getOrderByKey().IsNull());
}

TEST(SelectList, LeavesTheTokenAfterItCurrent) {
  Selected selected("SELECT a, b FROM C");
  EXPECT_EQ(selected.lexer.getCurrent().getType(), TokenFROM);
}

TEST(SelectList, TakesFirstN) {
  const Selected selected("SELECT FIRST 5 * FROM C");
  EXPECT_TRUE(selected.list().isFirstUsed());
  EXPECT_EQ(selected.list().getFirstCount(), 5U);
  EXPECT_EQ(selected.list().getSelectedEntries()->entries(), 1U);
  EXPECT_TRUE(selected.entry(0).isSelectAll());
  EXPECT_EQ(Selected("SELECT FIRST 0 a FROM C").list().getFirstCount(), 0U);
  EXPECT_TRUE(Selected("SELECT FIRST 0 a FROM C").list().isFirstUsed());
  EXPECT_EQ(Selected("SELECT FIRST 99999999999 a FROM C").list().getFirstCount(), 2147483647U);
}

TEST(SelectList, IsSelectAllByItsLastEntry) {
  EXPECT_TRUE(Selected("SELECT * FROM C").list().isSelectAll());
  EXPECT_TRUE(Selected("SELECT C.P, * FROM C").list().isSelectAll());
  EXPECT_FALSE(Selected("SELECT *, C.P FROM C").list().isSelectAll());
}

TEST(SelectList, KnowsWhetherAllEntriesAreAggregates) {
  EXPECT_TRUE(Selected("SELECT COUNT(a) AS n, MAX(b) AS m FROM C").list().AreAllEntriesAggregates());
  EXPECT_FALSE(Selected("SELECT a FROM C").list().AreAllEntriesAggregates());
  EXPECT_FALSE(Selected("SELECT OBJECTPATH(a) AS p, INSTANCEOF(b) AS i FROM C").list().AreAllEntriesAggregates());
}

TEST(SelectList, NamesItsColumns) {
  const Selected selected("SELECT C.P, P + 1 AS Q, x FROM C");
  EXPECT_EQ(plain(QORQL_SelectList::_getCellName(selected.entry(0))), "C.P");
  EXPECT_EQ(plain(QORQL_SelectList::_getCellName(selected.entry(1))), "Q");
  EXPECT_EQ(plain(QORQL_SelectList::_getCellName(selected.entry(2))), ".x");
}

TEST(SelectList, CollectsItsNames) {
  const Selected selected("SELECT a, C.b, D::e, a + c AS s, C.f + 1 AS t, OBJECTPATH(K) AS p");
  EXPECT_EQ(selected.requested(""), "a,e,c,K");
  EXPECT_EQ(selected.requested("C"), "b,f");
}

TEST(SelectList, AggregateStateFolds) {
  const auto folded = [](bool isAggregate, QORQL_SelectListAggregate state) {
    QORQL_SelectList::_checkForAggregateMismatch(isAggregate, state);
    return state;
  };
  EXPECT_EQ(folded(true, SEL_UNKNOWN), SEL_AGGREGATE);
  EXPECT_EQ(folded(true, SEL_AGGREGATE), SEL_AGGREGATE);
  EXPECT_EQ(folded(false, SEL_UNKNOWN), SEL_NONAGGREGATE);
  EXPECT_EQ(folded(false, SEL_NONAGGREGATE), SEL_NONAGGREGATE);
  constexpr const char* kMixed = "parse 15@0: Combining Aggregate and NonAggregate expressions is not allowed.";
  EXPECT_EQ(thrownBy([&] { folded(true, SEL_NONAGGREGATE); }), kMixed);
  EXPECT_EQ(thrownBy([&] { folded(false, SEL_AGGREGATE); }), kMixed);
}

class SelectFault : public testing::TestWithParam<Fault> {};

TEST_P(SelectFault, IsReported) {
  EXPECT_EQ(thrownBy([] { Selected selected(GetParam().text); }), GetParam().thrown);
}

constexpr const char* kFirst =
    "parse 15@1: The number of entries specified after the FIRST keyword is not a valid number.";
constexpr const char* kMixed = "parse 15@0: Combining Aggregate and NonAggregate expressions is not allowed.";
constexpr const char* kArray = "parse 0@1: SELECT clause cannot contain array!";

INSTANTIATE_TEST_SUITE_P(
    Faults, SelectFault,
    testing::Values(
        Fault{"NoSelect", "\nFROM C", "parse 7@2: 'SELECT' expected"},
        Fault{"Empty", "", "parse 7@1: 'SELECT' expected"}, Fault{"FirstName", "SELECT FIRST x FROM C", kFirst},
        Fault{"FirstReal", "SELECT FIRST 1.5 * FROM C", kFirst},
        Fault{"FirstSigned", "SELECT FIRST -1 * FROM C", kFirst}, Fault{"FirstNothing", "SELECT FIRST", kFirst},
        Fault{"FirstAggregates", "SELECT FIRST 3\nCOUNT(P) AS N FROM C",
              "parse 15@2: Strictly aggregate entries cannot be combined with the FIRST keyword."},
        Fault{"FirstMixed", "SELECT FIRST 3 P, COUNT(P) AS N FROM C", kMixed},
        Fault{"AggregateThenAsterisk", "SELECT COUNT(x) AS N, * FROM C", kMixed},
        Fault{"PropertyThenAggregate", "SELECT x, SUM(y) AS s FROM C", kMixed},
        Fault{"NoAlias", "SELECT P + 1\nFROM C", "parse 15@2: Missing an alias for the column in SELECT clause"},
        Fault{"NoAliasOfLiteral", "SELECT 5 FROM C", "parse 15@1: Missing an alias for the column in SELECT clause"},
        Fault{"AliasIsNumber", "SELECT a AS 5 FROM C",
              "parse 15@1: Alias expected after 'AS' keyword in 'SELECT' clause"},
        Fault{"AliasIsKeyword", "SELECT a AS FROM C",
              "parse 15@1: Alias expected after 'AS' keyword in 'SELECT' clause"},
        Fault{"Distinct", "SELECT DISTINCT a FROM C", "parse 2@1: unexpected token 'DISTINCT' found"},
        Fault{"NoEntry", "SELECT FROM C", "parse 2@1: unexpected token 'FROM' found"},
        Fault{"CommaAtTheEnd", "SELECT a, FROM C", "parse 2@1: unexpected token 'FROM' found"},
        Fault{"Array", "SELECT a[1] FROM C", kArray}, Fault{"ArrayInFunction", "SELECT SUM(C.a[]) AS s FROM C", kArray},
        Fault{"ArrayInComputed", "SELECT 1 + a[*] AS s FROM C", kArray}),
    [](const auto& info) { return info.param.name; });

TEST(SelectList, RestoresTheUpdatedFlag) {
  for (const bool before : {false, true}) {
    Parsed parsed("SELECT a, b");
    parsed.symbols.setSymbolTableUpdatedFlag(before);
    QORQL_SelectList::parse(parsed.symbols, parsed.lexer, parsed.map, parsed.text, "CQL");
    EXPECT_EQ(parsed.symbols.isSymbolTableUpdated(), before);
    Parsed failing("SELECT a[1]");
    failing.symbols.setSymbolTableUpdatedFlag(before);
    EXPECT_EQ(
        thrownBy([&] { QORQL_SelectList::parse(failing.symbols, failing.lexer, failing.map, failing.text, "CQL"); }),
        kArray);
    EXPECT_EQ(failing.symbols.isSymbolTableUpdated(), before);
  }
}

}  // namespace
