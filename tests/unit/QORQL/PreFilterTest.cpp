// Clauses are skipped where the providers have filtered already.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "QueryWorld.h"

namespace {

using testing::ElementsAre;

constexpr char kPreFiltered[] = R"(
Qualifier YRK_TRBS_ProviderFiltered : boolean = false, Scope(class);
[YRK_TRBS_ProviderFiltered] class F { [key] uint32 Id; };
class N { [key] uint32 Id; };
instance of F { Id = 3; };
instance of F { Id = 1; };
instance of N { Id = 3; };
instance of N { Id = 1; };
)";

TEST(PreFilter, WhereAndOrderByAreSkippedWhenEveryProviderFiltered) {
  QueryWorld world(kPreFiltered);
  EXPECT_THAT(world.rows("SELECT Id FROM F WHERE Id = 7 ORDER BY Id ASC"), ElementsAre("3", "1"));
  EXPECT_THAT(world.rows("SELECT Id FROM N WHERE Id = 3 ORDER BY Id ASC"), ElementsAre("3"));
}

// A subclass whose provider filters does not speak for its superclass.
TEST(PreFilter, OneUnfilteredInstanceIsEnoughToFilter) {
  QueryWorld world(std::string(kPreFiltered) +
                   "class M { [key] uint32 Id; }; [YRK_TRBS_ProviderFiltered] class MF : M { };"
                   "instance of MF { Id = 1; }; instance of MF { Id = 2; }; instance of M { Id = 3; };");
  EXPECT_THAT(world.rows("SELECT Id FROM M WHERE Id > 1 ORDER BY Id DESC"), ElementsAre("3", "2"));
  EXPECT_THAT(world.rows("SELECT Id FROM MF WHERE Id > 1 ORDER BY Id DESC"), ElementsAre("1", "2"));
}

TEST(PreFilter, OneUnfilteredClassIsEnoughToFilter) {
  QueryWorld world(kPreFiltered);
  EXPECT_THAT(world.rows("SELECT F.Id, N.Id FROM F, N WHERE F.Id = N.Id ORDER BY F.Id ASC"), ElementsAre("1|1", "3|3"));
}

}  // namespace
