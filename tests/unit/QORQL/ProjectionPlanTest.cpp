// What a select list keeps of which class, entry by entry.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Cimom/QORQL/Run/QORQL_ProjectionPlan.h"
#include "FetchedStatement.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kModel[] = R"(
class A { [key] uint32 Id; uint32 K; string S; };
class B { [key] uint32 Id; };
instance of A { Id = 1; K = 10; };
instance of B { Id = 7; };
)";

struct ProjectionPlan : testing::Test {
  // "class.property", "class.*" for all of them, "class" for the object's name alone; with "sort" behind what only the
  // sort key names.
  std::vector<std::string> items(const char* statement) {
    FetchedStatement fetched(statement);
    const QORQL_ProjectionPlan plan(fetched.selectList(), fetched.symbols, *fetched.table);
    hasFunctions = plan.hasFunctions();
    std::vector<std::string> texts;
    for (const QORQL_ProjectionPlan::Item& item : plan.items()) {
      texts.push_back(QueryWorld::textOf(item.className) +
                      (item.keepsAll()        ? ".*"
                       : item.namesObjectOnly ? ""
                                              : "." + QueryWorld::textOf(item.propertyName)) +
                      (item.isForSort ? " sort" : ""));
    }
    return texts;
  }
  QueryWorld world{kModel};
  bool hasFunctions = false;
};

TEST_F(ProjectionPlan, KeepsWhatTheEntriesName) {
  EXPECT_THAT(items("SELECT S, a.K, B.* FROM A AS a, B"), ElementsAre("A.S", "A.K", "B.*"));
  EXPECT_THAT(items("SELECT K + Id AS X FROM A"), ElementsAre("A.K", "A.Id"));
  EXPECT_THAT(items("SELECT * FROM A, B"), ElementsAre("A.*", "B.*"));
  EXPECT_FALSE(hasFunctions);
}

TEST_F(ProjectionPlan, LeavesFunctionsToTheirResults) {
  EXPECT_THAT(items("SELECT OBJECTPATH(A) AS P FROM A"), IsEmpty());
  EXPECT_TRUE(hasFunctions);
}

TEST_F(ProjectionPlan, KeepsWhatTheSortKeyNames) {
  EXPECT_THAT(items("SELECT S FROM A ORDER BY K ASC"), ElementsAre("A.S", "A.K sort"));
  EXPECT_THAT(items("SELECT S FROM A ORDER BY OBJECTPATH(A) ASC"), ElementsAre("A.S", "A sort"));
}

}  // namespace
