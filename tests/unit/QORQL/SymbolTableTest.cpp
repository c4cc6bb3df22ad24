// Symbol tables: how names are entered and found.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>

#include "ParserSupport.h"
#include "SymbolSupport.h"

namespace {

using parsertest::Info;
using parsertest::infoOf;
using parsertest::plain;
using parsertest::Symbol;
using parsertest::symbolOf;

TEST(SymbolTable, ComparesNamesExactly) {
  QORQL_SymbolTable table(nullptr);
  table.insert("CIM_A", symbolOf("CIM_A"));
  EXPECT_FALSE(table.lookup("CIM_A").IsNull());
  EXPECT_TRUE(table.lookup("cim_a").IsNull());
  EXPECT_TRUE(table.deepLookup("cim_a", true).IsNull());
  EXPECT_FALSE(table.lookupIgnoringCase("cim_a").IsNull());
}

TEST(SymbolTable, GivesTheClassOfAName) {
  QORQL_SymbolTable table(nullptr);
  Info info = infoOf("CIM_A", {});
  const Symbol target = symbolOf("CIM_A", info, "P");
  table.insert("CIM_A", target);
  table.insert("P", new QORQL_DelegatorSymbol(QORQL_SYMBOLTYPE_TABLE_NAME, "P", "CIM_A", info, target, nullptr));
  EXPECT_EQ(plain(table.classNameOf("p")), "CIM_A");
  EXPECT_EQ(plain(table.classNameOf("cim_A")), "CIM_A");
  EXPECT_EQ(plain(table.classNameOf("other")), "other");
}

// A few names are found in another way than many.
TEST(SymbolTable, FindsNamesIgnoringCaseAmongFewAndMany) {
  for (const QORuint64 count : {1, 8, 9, 200}) {
    QORQL_SymbolTable outer(nullptr);
    QORQL_SymbolTable inner(&outer);
    outer.insert("OUTER", symbolOf("OUTER"));
    for (QORuint64 i = 0; i < count; ++i) {
      const QORString name = "NAME_" + QORString::number(i);
      inner.insert(name, symbolOf(name.c_str()));
    }
    for (QORuint64 i = 0; i < count; ++i) {
      const QORString name = "nAmE_" + QORString::number(i);
      const QORQL_Symbol* const found = inner.findIgnoringCase(name);
      ASSERT_NE(found, nullptr) << name;
      EXPECT_EQ(plain(found->getName()), "NAME_" + std::to_string(i));
      EXPECT_EQ(inner.findHere(name), found);
      EXPECT_EQ(inner.lookupIgnoringCase(name).Get(), found);
    }
    for (const char* unknown : {"", "NAME", "NAME_", "name_200", "NAME`0"}) {
      EXPECT_EQ(inner.findIgnoringCase(unknown), nullptr) << unknown;
    }
    EXPECT_EQ(inner.findHere("outer"), nullptr);
    ASSERT_NE(inner.findIgnoringCase("outer"), nullptr);
    EXPECT_EQ(plain(inner.findIgnoringCase("outer")->getName()), "OUTER");
  }
}

// Names are looked for in upper case, so that others are never found this way.
TEST(SymbolTable, ANameThatWasEnteredInLowerCaseIsFoundExactlyOnly) {
  QORQL_SymbolTable table(nullptr);
  table.insert("cim_a", symbolOf("cim_a"));
  EXPECT_EQ(table.findIgnoringCase("cim_a"), nullptr);
  EXPECT_FALSE(table.lookup("cim_a").IsNull());
}

TEST(SymbolTable, ReplacesAnEntryOfTheSameName) {
  QORQL_SymbolTable table(nullptr);
  table.insert("A", symbolOf("first"));
  table.insert("A", symbolOf("second"));
  EXPECT_EQ(plain(table.lookup("A")->getName()), "second");
  EXPECT_EQ(table.getSymbolHashMap().entries(), 1U);
}

TEST(SymbolTable, FindsTheNearestSymbol) {
  QORQL_SymbolTable outer(nullptr);
  QORQL_SymbolTable inner(&outer);
  outer.insert("A", symbolOf("outer"));
  inner.insert("A", symbolOf("inner"));
  EXPECT_EQ(plain(inner.lookup("A")->getName()), "inner");
  inner.getSymbolHashMap().remove("A");
  EXPECT_EQ(plain(inner.lookup("A")->getName()), "outer");
  EXPECT_EQ(plain(inner.deepLookup("A", true)->getName()), "outer");
  inner.resetParent();
  EXPECT_TRUE(inner.lookup("A").IsNull());
  EXPECT_EQ(inner.getParent(), nullptr);
  inner.setParent(&outer);
  EXPECT_EQ(inner.getParent(), &outer);
}

TEST(SymbolTable, KnowsWhatEnclosesIt) {
  QORQL_SymbolTable outer(nullptr);
  QORQL_SymbolTable middle(&outer);
  QORQL_SymbolTable inner(&middle);
  QORQL_SymbolTable root(nullptr);
  EXPECT_TRUE(inner.isParent(&inner));
  EXPECT_TRUE(inner.isParent(&outer));
  EXPECT_FALSE(outer.isParent(&inner));
  EXPECT_FALSE(inner.isParent(&root));
  inner.setRootParent(&root);
  EXPECT_EQ(outer.getParent(), &root);
  EXPECT_TRUE(inner.isParent(&root));
  root.setRootParent(nullptr);
  EXPECT_EQ(root.getParent(), nullptr);
}

TEST(SymbolTable, HasItsUpdatedFlagClearAtFirst) {
  QORQL_SymbolTable table(nullptr);
  EXPECT_FALSE(table.isSymbolTableUpdated());
  table.setSymbolTableUpdatedFlag(true);
  EXPECT_TRUE(table.isSymbolTableUpdated());
}

}  // namespace
