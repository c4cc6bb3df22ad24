// The memory of parsing: how many allocations a statement takes, and that each
// of its nodes lives as long as it is held.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <thread>
#include <vector>

#include "AllocationCount.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "ParserSupport.h"
#include "cimom/CQoriType.h"

namespace {

using parsertest::leadingFactor;
using parsertest::Node;
using parsertest::plain;
using parsertest::print;

class ParseMemory : public testing::Test {
 protected:
  ParseMemory() {
    _manager.makeCurrent();
    CimDeclarationSink& sink = _manager.sink();
    sink.begin();
    sink.createNamespace("root/cimv2");
    declare("EX_Disk", {"DeviceID", "Name", "Size", "Status", "PoolID"});
    declare("EX_Pool", {"PoolID", "Name", "Capacity"});
    sink.commit();
  }

  // Of a parse and all that it resolves, after a first one.
  static unsigned long allocationsOf(const char* statement) {
    const QORString text(statement);
    const QORString language("DMTF:CQL");
    const QORString nameSpace("root/cimv2");
    unsigned long allocations = 0;
    for (int round = 0; round < 2; ++round) {
      const unsigned long before = allocationCount();
      QORQL_SymbolTable symbols(nullptr);
      QORQL_Lexer lexer(text, false);
      QORQL_Query::parse(symbols, lexer, false, text, language, nameSpace);
      allocations = allocationCount() - before;
    }
    return allocations;
  }

 private:
  void declare(const char* name, std::initializer_list<const char*> properties) {
    CimClassDeclaration declaration;
    declaration.name = name;
    for (const char* property : properties) {
      CimPropertyDeclaration one;
      one.name = property;
      one.type = CQoriType::string;
      declaration.properties.push_back(one);
    }
    _manager.sink().declareClass("root/cimv2", declaration);
  }

  EmbeddedObjectManager _manager;
};

#if !QORQL_ADDRESSES_ARE_WATCHED
TEST_F(ParseMemory, AFilterTakesFewAllocations) {
  EXPECT_LE(allocationsOf("SELECT DeviceID, Size FROM EX_Disk WHERE Size > 549755813888 AND Status = 2"), 29U);
}

TEST_F(ParseMemory, AJoinTakesFewAllocations) {
  EXPECT_LE(
      allocationsOf("SELECT d.DeviceID, p.Name, d.Size FROM EX_Disk AS d, EX_Pool AS p WHERE d.PoolID = p.PoolID"),
      46U);
}

TEST_F(ParseMemory, AStatementWithoutConditionTakesFewAllocations) {
  EXPECT_LE(allocationsOf("SELECT * FROM EX_Disk"), 6U);
}

// A condition's names without a class are looked up, but not listed: what they take is the string of their name.
TEST_F(ParseMemory, EachFurtherConditionTakesItsNameAndItsPlaceInTheChain) {
  std::string text = "SELECT Name FROM EX_Disk WHERE Size > 1";
  const auto longer = [&text](int conditions) {
    while (conditions-- > 0) text += " AND Size > 1";
    return allocationsOf(text.c_str());
  };
  const unsigned long ten = longer(10);
  const unsigned long thousand = longer(990);
  EXPECT_LE(thousand - ten, 2U * 990U);
}
#endif

TEST_F(ParseMemory, ANodeOutlivesItsStatementAndItsLexer) {
  Node condition;
  QORSmrPtr<QORQL_SelectedEntry> entry;
  {
    const parsertest::Statement statement("SELECT Size, Name AS n FROM EX_Disk WHERE Size > 'much' AND Name = 'x'");
    condition = statement.where();
    entry = statement.selectList().getSelectedEntries()->last();
  }
  EXPECT_EQ(plain(entry->getAlias()), "N");
  EXPECT_EQ(plain(*leadingFactor(entry->getExpression())->getPropertyName()), "Name");
  const std::string text = print(condition);
  EXPECT_NE(text.find("much"), std::string::npos) << text;
  condition = nullptr;
  EXPECT_EQ(plain(entry->getPropertyName()), "Name");
}

TEST_F(ParseMemory, ALiteralsValueOutlivesEverythingElse) {
  QORSmrPtr<IQoriValue> literal;
  {
    parsertest::Parsed parsed("'kept' ", parsertest::Level::Factor);
    literal = static_cast<const QORQL_Factor&>(*parsed.tree).getLiteral();
  }
  EXPECT_EQ(plain(literal->toString()), "kept");
}

TEST_F(ParseMemory, NodesOfOneStatementMayGoOnSeveralThreads) {
  constexpr std::size_t kThreads = 4;
  std::vector<std::vector<QORSmrPtr<QORQL_SelectedEntry>>> shares(kThreads);
  {
    std::string text = "SELECT Name";
    for (int i = 0; i < 400; ++i) text += ", Size + " + std::to_string(i) + " AS s" + std::to_string(i);
    const parsertest::Statement statement((text + " FROM EX_Disk").c_str());
    QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*statement.selectList().getSelectedEntries());
    for (std::size_t i = 0; ++entries; ++i) shares[i % kThreads].push_back(entries.key());
  }
  std::vector<std::thread> threads;
  for (auto& share : shares) threads.emplace_back([&share] { share.clear(); });
  for (std::thread& thread : threads) thread.join();
  for (const auto& share : shares) EXPECT_TRUE(share.empty());
}

}  // namespace
