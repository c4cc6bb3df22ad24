// Symbols: classes, nested queries, and the aliases that stand for them.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "ParserSupport.h"
#include "SymbolSupport.h"

namespace {

using parsertest::describe;
using parsertest::Info;
using parsertest::infoOf;
using parsertest::plain;
using parsertest::Symbol;
using parsertest::symbolOf;

TEST(Symbol, OfANestedQuery) {
  const QORSmrPtr<QORQL_SymbolTable> inner(new QORQL_SymbolTable(nullptr));
  QORQL_Symbol symbol(QORQL_SYMBOLTYPE_SUBQUERY_NAME, "Q", true, inner);
  EXPECT_EQ(plain(symbol.getName()), "Q");
  EXPECT_TRUE(symbol.isNestedQuery());
  EXPECT_EQ(symbol.getSymbolTable(), inner.Get());
  EXPECT_TRUE(symbol.getClassInfo().IsNull());
  EXPECT_TRUE(symbol.getAlias().isEmpty());
  symbol.setValue(QORQL_SYMBOLTYPE_ERROR);
  EXPECT_EQ(symbol.getType(), QORQL_SYMBOLTYPE_ERROR);
}

TEST(Symbol, OfAClass) {
  const Symbol symbol = symbolOf("CIM_A", infoOf("CIM_A", {}), "P");
  EXPECT_EQ(symbol->getType(), QORQL_SYMBOLTYPE_TABLE_NAME);
  EXPECT_EQ(plain(symbol->getAlias()), "P");
  EXPECT_EQ(plain(symbol->getClassName()), "CIM_A");
  EXPECT_FALSE(symbol->isAlias());
  EXPECT_FALSE(symbol->isNestedQuery());
  EXPECT_EQ(symbol->getSymbolTable(), nullptr);
}

TEST(Symbol, MergesClassInfoWithoutRemovingDuplicates) {
  const Symbol symbol = symbolOf("A");
  Info first = infoOf("A", {"a"}, true);
  Info second = infoOf("A", {"a", "b"}, false);
  symbol->setClassInfo(first);
  EXPECT_EQ(describe(symbol->getClassInfo()), "*,a");
  symbol->setClassInfo(second);
  EXPECT_EQ(describe(symbol->getClassInfo()), "a,a,b");
}

TEST(Symbol, KeepsItsClassNameOnceItHasProperties) {
  const Symbol symbol = symbolOf("A", infoOf("A", {}));
  Info renamed = infoOf("B", {"x"});
  Info again = infoOf("C", {"y"});
  symbol->setClassInfo(renamed);
  EXPECT_EQ(plain(symbol->getClassInfo()->getClassName()), "B");
  symbol->setClassInfo(again);
  EXPECT_EQ(plain(symbol->getClassInfo()->getClassName()), "B");
  EXPECT_EQ(describe(symbol->getClassInfo()), "x,y");
}

TEST(Symbol, DoesNotChangeTheListThatComesIn) {
  const Symbol symbol = symbolOf("A");
  Info incoming = infoOf("A", {"a"});
  symbol->setClassInfo(incoming);
  symbol->getClassInfo()->addProperty("b");
  EXPECT_EQ(describe(incoming), "a");
}

TEST(DelegatorSymbol, StandsForItsClass) {
  Info info = infoOf("CIM_A", {});
  const Symbol target = symbolOf("CIM_A", info, "P");
  QORQL_DelegatorSymbol alias(QORQL_SYMBOLTYPE_TABLE_NAME, "P", "CIM_A", info, target, nullptr);
  EXPECT_TRUE(alias.isAlias());
  EXPECT_EQ(plain(alias.getAlias()), "P");
  EXPECT_EQ(plain(alias.getClassName()), "CIM_A");
  Info more = infoOf("CIM_A", {"x"});
  alias.setClassInfo(more);
  EXPECT_EQ(describe(target->getClassInfo()), "x");
  EXPECT_TRUE(alias.getClassInfo() == target->getClassInfo());
}

TEST(DelegatorSymbol, OfNothingHasItsOwnNameAndNoClassInfo) {
  Info info = infoOf("CIM_A", {});
  QORQL_DelegatorSymbol alias(QORQL_SYMBOLTYPE_TABLE_NAME, "P", "", info, nullptr, nullptr);
  EXPECT_EQ(plain(alias.getClassName()), "P");
  const auto nullPointerMessage = [](const auto& action) -> std::string {
    try {
      action();
    } catch (const QORNullPointerException& error) {
      return error.what();
    }
    return "nothing";
  };
  EXPECT_NE(nullPointerMessage([&] { alias.getClassInfo(); }).find("operator->()"), std::string::npos);
  EXPECT_NE(nullPointerMessage([&] { alias.setClassInfo(info); }).find("operator->()"), std::string::npos);
  Symbol target = symbolOf("CIM_A", info);
  alias.setDelegatee(target);
  EXPECT_EQ(plain(alias.getClassName()), "CIM_A");
}

}  // namespace
