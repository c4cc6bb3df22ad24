// What a condition reads and how it will be done: each way, each reason for the row by row one, each set of columns.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_ConditionPlan.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "QueryWorld.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Plan = QORQL_ConditionPlan;
using Sets = decltype(QORQL_RowSets::blocks);

constexpr char kModel[] = R"(
class A { [key] uint32 Id; string Text; uint16 List[]; };
class B { [key] uint32 Id; string Text; uint16 List[]; };
class C { [key] uint32 Id; };
)";

// A condition of a statement on A, B (which is also called other) and C, which are the columns 0, 1 and 2.
class Planned {
 public:
  explicit Planned(const std::string& condition) {
    const std::string statement = "SELECT A.Id FROM A, B AS other, C WHERE " + condition;
    const QORString text(statement.data(), statement.size());
    QORQL_Lexer lexer(text, false);
    _query = QORQL_Query::parse(_symbols, lexer, false, text, "DMTF:CQL", "root/cimv2").StaticCast<QORQL_Query>();
    const auto& where = dynamic_cast<const QORQL_WhereClause&>(*_query->getWhereClause());
    const auto& expression = dynamic_cast<const QORQL_Expression&>(*where.getExpression());
    const auto& term = dynamic_cast<const QORQL_ExpressionTerm&>(*expression.getExpressionTerm());
    _condition =
        std::make_unique<QORQL_Condition>(dynamic_cast<const QORQL_ExpressionFactor&>(*term.getExpressionFactor()));
  }

  const QORQL_Condition& condition() const { return *_condition; }
  Plan on(const Sets& blocks) const {
    QORQL_RowSets sets;
    std::size_t count = 0;
    for (const QORQL_ColumnList& block : blocks) count += block.size();
    const char* const names[] = {"A", "B", "C"};
    const char* const aliases[] = {"A", "OTHER", "C"};
    for (std::size_t i = 0; i < count; ++i) {
      sets.columns.push_back(QORSmrPtr<QORQL_TableHeader>::Make(names[i], aliases[i], ""));
    }
    sets.blocks = blocks;
    return QORQL_planCondition(*_condition, sets);
  }

 private:
  QORQL_SymbolTable _symbols{nullptr};
  QORSmrPtr<QORQL_Query> _query;
  std::unique_ptr<QORQL_Condition> _condition;
};

const Sets kApart = {{0}, {1}, {2}};
const Sets kTogether = {{0, 1, 2}};

struct ConditionPlan : testing::Test {
  // The ways, and the numbers of the sets that are touched: "hash else pairs: 0 1".
  static std::string planOf(const std::string& condition, const Sets& sets) {
    constexpr const char* kWays[] = {"filter", "hash", "keys", "pairs", "product"};
    const Plan plan = Planned(condition).on(sets);
    std::string text = kWays[plan.way];
    if (plan.rowByRow != plan.way) text += std::string(" else ") + kWays[plan.rowByRow];
    text += ":";
    for (const std::size_t block : plan.blocks) text += " " + std::to_string(block);
    return text;
  }
  static std::vector<std::string> fetchedBy(const std::string& condition) {
    std::vector<std::string> names;
    Planned(condition).condition().forEachFetched(
        [&names](const QORString& name) { names.push_back(QueryWorld::textOf(name)); });
    return names;
  }
  // The columns whose objects an outer join records.
  static std::vector<QORsint32> recordedBy(const std::string& condition, const Sets& sets) {
    const Plan plan = Planned(condition).on(sets);
    return {plan.left.recordedColumn, plan.right.recordedColumn};
  }

  QueryWorld world{kModel};
};

TEST_F(ConditionPlan, OneSetIsFiltered) {
  EXPECT_EQ(planOf("A.Id > 5", kApart), "filter: 0");
  EXPECT_EQ(planOf("other.Text LIKE 'x'", kApart), "filter: 1");
  EXPECT_EQ(planOf("C.Id IS NULL", kApart), "filter: 2");
  EXPECT_EQ(planOf("A.Id = 1", {{0}}), "filter: 0");
  EXPECT_EQ(planOf("A.Id + A.Id = A.Id", kApart), "filter: 0");
}

TEST_F(ConditionPlan, RowsOfOneSetAreFilteredWhateverTheyCompare) {
  EXPECT_EQ(planOf("A.Id = other.Id", kTogether), "filter: 0");
  EXPECT_EQ(planOf("A.Id *= other.Id", kTogether), "filter: 0");
  EXPECT_EQ(planOf("A.Id = other.Id", {{0, 1}, {2}}), "filter: 0");
  EXPECT_EQ(planOf("NOT A.Id < C.Id", {{0, 2}, {1}}), "filter: 0");
}

TEST_F(ConditionPlan, EqualityJoinsByHash) {
  EXPECT_EQ(planOf("A.Id = other.Id", kApart), "hash else pairs: 0 1");
  EXPECT_EQ(planOf("other.Id = A.Id", kApart), "hash else pairs: 0 1");
  EXPECT_EQ(planOf("A.Id + 1 = C.Id * 2", kApart), "hash else pairs: 0 2");
  EXPECT_EQ(planOf("A.Id + B.Id = C.Id", {{0, 1}, {2}}), "hash else pairs: 0 1");
}

TEST_F(ConditionPlan, OtherRelationsJoinByComparingKeys) {
  EXPECT_EQ(planOf("A.Id < other.Id", kApart), "keys else pairs: 0 1");
  EXPECT_EQ(planOf("A.Id <> C.Id", kApart), "keys else pairs: 0 2");
  EXPECT_EQ(planOf("C.Id >= A.Id", kApart), "keys else pairs: 0 2");
}

TEST_F(ConditionPlan, OuterJoinsMakeTheirProductWhenTheyCannotJoin) {
  EXPECT_EQ(planOf("A.Id *= other.Id", kApart), "hash else product: 0 1");
  EXPECT_EQ(planOf("A.Id =* other.Id", kApart), "hash else product: 0 1");
  EXPECT_EQ(planOf("other.Id *=* A.Id", kApart), "hash else product: 0 1");
}

TEST_F(ConditionPlan, SetsWhoseColumnsInterlockMakeTheirProduct) {
  EXPECT_EQ(planOf("A.Id = other.Id", {{0, 2}, {1}}), "hash else product: 0 1");
  EXPECT_EQ(planOf("A.Text LIKE other.Text", {{0, 2}, {1}}), "product: 0 1");
}

TEST_F(ConditionPlan, SetsComeByTheirFirstColumns) {
  EXPECT_EQ(planOf("A.Id = other.Id", {{1}, {0}, {2}}), "hash else pairs: 1 0");
  EXPECT_EQ(planOf("C.Id = A.Id", {{1, 2}, {0}}), "hash else pairs: 1 0");
}

TEST_F(ConditionPlan, NegationJoinsNothing) {
  EXPECT_EQ(planOf("NOT A.Id = other.Id", kApart), "pairs: 0 1");
  EXPECT_EQ(planOf("NOT A.Id *= other.Id", kApart), "product: 0 1");
}

TEST_F(ConditionPlan, WhatIsNoRelationJoinsNothing) {
  EXPECT_EQ(planOf("A.Text LIKE other.Text", kApart), "pairs: 0 1");
  EXPECT_EQ(planOf("A.Id + C.Id IS NULL", kApart), "pairs: 0 2");
  EXPECT_EQ(planOf("A.Id = ANY other.List", kApart), "pairs: 0 1");
  EXPECT_EQ(planOf("EVERY A.List <> other.Id", kApart), "pairs: 0 1");
}

TEST_F(ConditionPlan, ASideThatReadsNoSetOrSeveralJoinsNothing) {
  EXPECT_EQ(planOf("A.Id - other.Id = 0", kApart), "pairs: 0 1");
  EXPECT_EQ(planOf("A.Id + other.Id = other.Id", kApart), "pairs: 0 1");
  EXPECT_EQ(planOf("A.Id + other.Id = C.Id", kApart), "product: 0 1 2");
  EXPECT_EQ(planOf("A.Id = other.Id + C.Id", {{0}, {1, 2}}), "hash else pairs: 0 1");
}

TEST_F(ConditionPlan, AConditionWithoutClassTouchesTheFirstColumn) {
  EXPECT_EQ(planOf("1 = 1", kApart), "filter: 0");
  EXPECT_EQ(planOf("1 = 1", {{1}, {0, 2}}), "filter: 1");
  EXPECT_EQ(planOf("1 = 1", {}), "filter:");
  EXPECT_EQ(planOf("1 *= 1", {}), "filter:");
}

TEST_F(ConditionPlan, ClassesThatAreNoColumnsTouchNothing) {
  EXPECT_EQ(planOf("C.Id = 1", {{0}, {1}}), "filter: 0");
  EXPECT_EQ(planOf("other.Id = C.Id", {{0}, {1}}), "filter: 1");
  EXPECT_THAT(recordedBy("other.Id *= C.Id", {{0}, {1}}), ElementsAre(1, -1));
  EXPECT_EQ(planOf("other.Id *= C.Id", {{0}, {1}}), "filter: 1");
}

TEST_F(ConditionPlan, WhatAsksTheObjectManagerTouchesEverySet) {
  EXPECT_EQ(planOf("INSTANCEOF(A) = 1", kApart), "product: 0 1 2");
  EXPECT_EQ(planOf("A.Id = 1 - INSTANCEOF(other)", {{0}, {1}}), "pairs: 0 1") << "and joins nothing";
  EXPECT_TRUE(Planned("INSTANCEOF(A) IS NULL").on(kApart).asksObjectManager);
  EXPECT_FALSE(Planned("OBJECTPATH(A) = 'x'").on(kApart).asksObjectManager);
  EXPECT_FALSE(Planned("A.Id = 1").on(kApart).asksObjectManager);
}

TEST_F(ConditionPlan, OuterJoinsRecordTheObjectsOfTheirClasses) {
  EXPECT_THAT(recordedBy("other.Id *= A.Id", kApart), ElementsAre(1, 0));
  EXPECT_THAT(recordedBy("A.Id + 1 =* C.Id", kApart), ElementsAre(0, 2));
  EXPECT_THAT(recordedBy("A.Id *=* A.Id", kApart), ElementsAre(0, 0));
  EXPECT_THAT(recordedBy("A.Id = C.Id", kApart), ElementsAre(-1, -1));
}

TEST_F(ConditionPlan, SidesWithoutOneClassEachRecordTheFirstColumn) {
  EXPECT_THAT(recordedBy("other.Id *= 1", kApart), ElementsAre(0, 0));
  EXPECT_EQ(planOf("other.Id *= 1", kApart), "product: 0 1");
  EXPECT_THAT(recordedBy("other.Id + other.Id *= C.Id", kApart), ElementsAre(0, 0));
  EXPECT_EQ(planOf("other.Id + other.Id *= C.Id", kApart), "product: 0 1 2");
  EXPECT_EQ(planOf("1 *= 2", kApart), "filter: 0");
}

TEST_F(ConditionPlan, OuterJoinsJoinSetsOfOneColumnOnly) {
  EXPECT_EQ(planOf("A.Id *= C.Id", {{0, 1}, {2}}), "product: 0 1");
  EXPECT_EQ(planOf("A.Id *= C.Id", {{0}, {1, 2}}), "product: 0 1");
  EXPECT_EQ(planOf("A.Id *= C.Id", {{0}, {1}, {2}}), "hash else product: 0 2");
}

TEST_F(ConditionPlan, ColumnsOfTheSides) {
  const Plan plan = Planned("A.Id + other.Id + A.Id < C.Id").on({{0, 1}, {2}});
  EXPECT_THAT(plan.left.columns, ElementsAre(0, 1, 0));
  EXPECT_EQ(plan.left.block, 0U);
  EXPECT_THAT(plan.right.columns, ElementsAre(2));
  EXPECT_EQ(plan.right.block, 1U);
  const Plan apart = Planned("A.Id + other.Id = 1").on({{0}, {1}});
  EXPECT_THAT(apart.left.columns, ElementsAre(0, 1));
  EXPECT_EQ(apart.left.block, std::nullopt);
  EXPECT_THAT(apart.right.columns, IsEmpty());
  EXPECT_EQ(apart.right.block, std::nullopt);
}

TEST_F(ConditionPlan, RelationOfTheSides) {
  EXPECT_EQ(Planned("A.Id < 1").on(kApart).relation, QoriRelation::Less);
  EXPECT_EQ(Planned("A.Id *= C.Id").on(kApart).relation, QoriRelation::Equal);
  EXPECT_EQ(Planned("ANY A.List < 1").on(kApart).relation, std::nullopt);
  EXPECT_EQ(Planned("A.Text LIKE 'x'").on(kApart).relation, std::nullopt);
  EXPECT_EQ(Planned("A ISA B").on(kApart).relation, std::nullopt);
}

TEST_F(ConditionPlan, RowsThatStay) {
  const auto kept = [](const char* condition) {
    const Planned planned(condition);  // which the plan looks at
    const Plan plan = planned.on(kApart);
    std::string text;
    if (plan.keeps(QoriTruth::False)) text += "false ";
    if (plan.keeps(QoriTruth::True)) text += "true ";
    if (plan.keeps(QoriTruth::Null)) text += "null ";
    return text;
  };
  EXPECT_EQ(kept("A.Id = 1"), "true ");
  EXPECT_EQ(kept("NOT A.Id = 1"), "false ");
  EXPECT_EQ(kept("ANY A.List = 1"), "true ");
  EXPECT_EQ(kept("ANY A.List <> 1"), "false ");
  EXPECT_EQ(kept("NOT ANY A.List <> 1"), "false ");
  EXPECT_EQ(kept("A.Id <> 1"), "true ");
}

TEST_F(ConditionPlan, ClassesAreFetchedLeftBeforeRight) {
  EXPECT_THAT(fetchedBy("C.Id + A.Id = other.Id"), ElementsAre("C", "A", "other"));
  EXPECT_THAT(fetchedBy("A.Id = A.Id"), ElementsAre("A", "A"));
  EXPECT_THAT(fetchedBy("1 = 1"), IsEmpty());
}

TEST_F(ConditionPlan, TheClassRightOfIsaIsNotFetched) {
  EXPECT_THAT(fetchedBy("A ISA B"), ElementsAre("A"));
  EXPECT_EQ(planOf("A ISA B", kApart), "filter: 0");
}

TEST_F(ConditionPlan, MonitorsKnowTheWays) {
  using Monitor = QORQL_ExecutionMonitor;
  EXPECT_EQ(Plan::methodOf(Plan::kFilter), Monitor::kMethodFilter);
  EXPECT_EQ(Plan::methodOf(Plan::kHashJoin), Monitor::kMethodHashJoin);
  EXPECT_EQ(Plan::methodOf(Plan::kKeyJoin), Monitor::kMethodKeyJoin);
  EXPECT_EQ(Plan::methodOf(Plan::kPairs), Monitor::kMethodFilteredProduct);
  EXPECT_EQ(Plan::methodOf(Plan::kProduct), Monitor::kMethodFilteredProduct);
}

}  // namespace
