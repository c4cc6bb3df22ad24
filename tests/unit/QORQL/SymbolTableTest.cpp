// Symbols, their tables, and the record of what a query needs of a class.
#include <gtest/gtest.h>

#include <string>

#include "ParserSupport.h"

namespace {

using parsertest::describe;
using parsertest::plain;
using Info = QORSmrPtr<QORQL_ClassInfo>;
using Symbol = QORSmrPtr<QORQL_Symbol>;

Info infoOf(const char* name, std::initializer_list<const char*> properties, bool all = false) {
  const Info info(new QORQL_ClassInfo(name, nullptr, all));
  for (const char* property : properties) info->addProperty(property);
  return info;
}

Symbol symbolOf(const char* name, Info info = nullptr, const char* alias = "") {
  return new QORQL_Symbol(QORQL_SYMBOLTYPE_TABLE_NAME, name, alias, info, nullptr);
}

TEST(ClassInfo, ReplacesANullListByAnEmptyOne) {
  const QORQL_ClassInfo info("A", nullptr, true);
  EXPECT_FALSE(info.getPropertyList().IsNull());
  EXPECT_EQ(info.getPropertyList()->entries(), 0U);
  EXPECT_EQ(plain(info.getClassName()), "A");
  EXPECT_TRUE(info.needAllProperties());
  EXPECT_FALSE(info.fetchAllProperties());
}

TEST(ClassInfo, SharesItsList) {
  QORQL_ClassInfo info("A", nullptr, false);
  info.getPropertyList()->append("x");
  info.addProperty("x");
  EXPECT_EQ(info.getPropertyList()->entries(), 2U);
}

TEST(ClassInfo, AddsAPropertyOnceIgnoringCase) {
  QORSlabs slabs;
  QORQL_ClassInfo info("A", nullptr, false);
  info.addPropertyOnce("Name", slabs);
  info.addPropertyOnce("NAME", slabs);
  info.addPropertyOnce("name2", slabs);
  EXPECT_EQ(info.getPropertyList()->entries(), 2U);
  EXPECT_EQ(plain(info.getPropertyList()->first()), "Name");
}

TEST(ClassInfo, AddsManyPropertiesOnce) {
  QORSlabs slabs;
  constexpr QORuint32 kCount = 50'000;
  QORQL_ClassInfo info("A", nullptr, false);
  for (int round = 0; round < 2; ++round) {
    for (QORuint32 i = 0; i < kCount; ++i) {
      info.addPropertyOnce(QORString(round == 0 ? "Name" : "NAME") + QORString::number(QORuint64{i}), slabs);
    }
  }
  EXPECT_EQ(info.getPropertyList()->entries(), kCount);
}

TEST(ClassInfo, SeesNamesThatWereAppendedToTheSharedList) {
  QORSlabs slabs;
  QORQL_ClassInfo info("A", nullptr, false);
  for (QORuint64 i = 0; i < 40; ++i) info.addPropertyOnce("a" + QORString::number(i), slabs);
  for (QORuint64 i = 0; i < 300; ++i) info.getPropertyList()->append("b" + QORString::number(i));
  EXPECT_TRUE(info.listsProperty("B299"));
  EXPECT_TRUE(info.listsProperty("A0"));
  EXPECT_FALSE(info.listsProperty("b300"));
}

TEST(ClassInfo, SeesNamesAfterTheSharedListWasCleared) {
  QORSlabs slabs;
  QORQL_ClassInfo info("A", nullptr, false);
  for (QORuint64 i = 0; i < 40; ++i) info.addPropertyOnce("a" + QORString::number(i), slabs);
  info.getPropertyList()->clear();
  for (QORuint64 i = 0; i < 20; ++i) info.addPropertyOnce("c" + QORString::number(i), slabs);
  EXPECT_FALSE(info.listsProperty("a1"));
  EXPECT_TRUE(info.listsProperty("c19"));
}

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
