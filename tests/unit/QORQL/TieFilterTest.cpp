// Rows stay whose association object names both ends.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Cimom/QORQL/QORQL_Helper.h"
#include "Cimom/QORQL/Run/QORQL_TieFilter.h"
#include "QueryWorld.h"
#include "cimom/CIMApi.h"

namespace {

using testing::ElementsAre;

constexpr char kModel[] = R"(
class S { [key] string N; };
class D { [key] string N; };
[association] class T { [key] S REF One; [key] D REF Other; };
[association] class Self { [key] uint32 Id; S REF One; S REF Other; };
instance of S as $a { N = "a"; };
instance of S as $b { N = "b"; };
instance of D as $d { N = "d"; };
instance of T { One = $a; Other = $d; };
instance of Self { Id = 1; One = $a; Other = $a; };
instance of Self { Id = 2; One = $a; };
)";

// The product of some classes, filtered by a tie.
struct TieFilter : testing::Test {
  void fetch(const char* className) {
    CIMApi client;
    const auto list = client.enumerateInstances("root/cimv2", className, {}, -1, nullptr, nullptr, nullptr, {});
    QORQL_Helper::addObjectToTable(table, list, className, className);
  }
  std::vector<std::string> rows() {
    std::vector<std::string> texts;
    for (QORuint32 i = 0; i < table->getRowCount(); ++i) {
      std::string text;
      for (QORuint32 column = 0; column < table->getColumnCount(); ++column) {
        const auto cell = table->getRow(i)->getCell(column);
        text +=
            (column == 0 ? "" : " ") + (cell.IsNull() ? "-" : QueryWorld::textOf(cell->getInstanceName()->toString()));
      }
      texts.push_back(text);
    }
    return texts;
  }
  QueryWorld world{kModel};
  QORSmrPtr<QORQL_DataTable> table{new QORQL_DataTable()};
};

TEST_F(TieFilter, KeepsWhatTheAssociationTies) {
  for (const char* name : {"S", "D", "T"}) fetch(name);
  ASSERT_EQ(table->getRowCount(), 2U);
  QORQL_applyTie(*table, {"T", "S", "D", false});
  EXPECT_THAT(rows(), ElementsAre("root/cimv2:S.N=\"a\" root/cimv2:D.N=\"d\" " +
                                  QueryWorld::textOf(table->getRow(0)->getCell(2U)->getInstanceName()->toString())));
}

TEST_F(TieFilter, AnOuterTieLeavesSourcesAlone) {
  for (const char* name : {"S", "D", "T"}) fetch(name);
  QORQL_applyTie(*table, {"T", "S", "D", true});
  ASSERT_EQ(table->getRowCount(), 2U);
  EXPECT_EQ(rows()[1], "root/cimv2:S.N=\"b\" - -");
}

// One reference is not both ends; two to the same instance are.
TEST_F(TieFilter, TakesTwoReferences) {
  for (const char* name : {"S", "Self"}) fetch(name);
  const QORQL_TiedEnds ends(*table, {"Self", "S", "S", false});
  std::vector<bool> found;
  for (QORuint32 i = 0; i < table->getRowCount(); ++i) {
    found.push_back(ends.areTiedBy(table->getRow(i)->getCell(1U), *table->getRow(i)));
  }
  EXPECT_THAT(found, ElementsAre(true, false, false, false));
  EXPECT_FALSE(ends.areTiedBy(QORSmrPtr<IQoriObject>(), *table->getRow(0)));
}

}  // namespace
