// Projected rows: the names of function results, and what each cell keeps.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FetchedStatement.h"
#include "ProjectionWorld.h"

namespace {

using testing::ElementsAre;

struct SelectListRows : Projection {
  // The results of functions in the first row: "name = value".
  std::vector<std::string> results(const char* statement) {
    const auto table = tableOf(statement, QORQL_DataTable::kExecutionPlain);
    const auto values = table->getRow(0)->getFunctionResults();
    std::vector<std::string> texts;
    for (QORuint32 i = 0; !values.IsNull() && i < values->getPropertyCount(); ++i) {
      const auto property = values->getPropertyAt(i);
      texts.push_back(QueryWorld::textOf(property->getName()) + " = " +
                      (property->getValue().IsNull() ? "null" : QueryWorld::textOf(property->getValue()->toString())));
    }
    return texts;
  }
};

TEST_F(SelectListRows, HoldFunctionResultsByAliasOrByWhatIsCalled) {
  EXPECT_THAT(results("SELECT OBJECTPATH(X) AS Way FROM X"), ElementsAre("WAY = root/cimv2:X.Id=1"));
  FetchedStatement fetched("SELECT COUNT(X.P), MAX(P) AS M FROM X");
  EXPECT_EQ(QORQL_SelectList::_functionID(*fetched.entry(0)), "COUNT_X_P");
  EXPECT_EQ(QORQL_SelectList::_functionID(*fetched.entry(1)), "M");
}

TEST_F(SelectListRows, HoldNoResultsWithoutFunctions) {
  EXPECT_THAT(results("SELECT Id, P + 1 AS Q FROM X"), testing::IsEmpty());
}

TEST_F(SelectListRows, KeepAPropertyOnceThatSeveralEntriesName) {
  EXPECT_EQ(shapeOf("SELECT P, X.P AS Again, P + Id AS S FROM X"), "[X/X] X{Id,P}");
  EXPECT_EQ(shapeOf("SELECT X.P, X.* FROM X"), "[X/X] X{Id,P,S,R,Name,Big,Small,Flag}");
}

}  // namespace
