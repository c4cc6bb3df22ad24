// FROM: what it enters into the symbol table, and what its specifiers keep.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/QORQL/QORQL_FromClause.h"
#include "ParserSupport.h"

namespace {

using parsertest::Parsed;
using parsertest::plain;
using parsertest::Statement;
using parsertest::thrownBy;

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

}  // namespace
