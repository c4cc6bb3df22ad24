// Which classes of FROM an association brings, so that FROM does not fetch them.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Cimom/QORQL/QORQL_AssociationPlan.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "FetchedStatement.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kModel[] = R"(
class S { [key] string N; };
class D { [key] string N; uint32 K; };
[association] class T { [key] S REF One; [key] D REF Other; };
)";

struct AssociationPlan : testing::Test {
  std::vector<std::string> skipped(const char* statement) {
    FetchedStatement fetched(statement);
    std::vector<std::string> names;
    const auto& from = static_cast<const QORQL_FromClause&>(*fetched.query->getFromClause());
    QORValSlistIterator<QORString> iterator(from.getSkippedClasses());
    while (++iterator) names.push_back(QueryWorld::textOf(iterator.key()));
    return names;
  }
  QORQL_AssociationPlan plan(const char* statement) {
    FetchedStatement fetched(statement);
    const auto& where = static_cast<const QORQL_WhereClause&>(*fetched.query->getWhereClause());
    return QORQL_planAssociations(where.getExpression(), fetched.selectList(), QORSmrPtr<QORQL_Evaluatable>(),
                                  fetched.symbols);
  }
  QueryWorld world{kModel};
};

TEST_F(AssociationPlan, SkipsTheDestinationAndTheAssociation) {
  EXPECT_THAT(skipped("SELECT S.N, D.N FROM S, D WHERE T = S AND T = D"), ElementsAre("D", "T"));
  EXPECT_THAT(skipped("SELECT S.N, D.N FROM S, D WHERE T = D AND T = S"), ElementsAre("S", "T"));
}

TEST_F(AssociationPlan, SkipsNothingWithoutAnAssociation) {
  EXPECT_THAT(skipped("SELECT S.N FROM S, D WHERE D.K = 1"), IsEmpty());
  EXPECT_FALSE(plan("SELECT S.N FROM S, D WHERE D.K = 1").hasAssociation);
  EXPECT_THAT(skipped("SELECT S.N FROM S, D WHERE T = S AND T = D OR D.K = 1"), IsEmpty())
      << "OR does not run it first";
}

TEST_F(AssociationPlan, NamesTheAssociationClasses) {
  const QORQL_AssociationPlan found = plan("SELECT S.N FROM S, D, T AS t WHERE t = S AND t = D");
  EXPECT_TRUE(found.hasAssociation);
  ASSERT_EQ(found.wholeClasses.size(), 1U);
  EXPECT_TRUE(found.wholeClasses.front().isEqualCaseInsensitive("t"));
}

}  // namespace
