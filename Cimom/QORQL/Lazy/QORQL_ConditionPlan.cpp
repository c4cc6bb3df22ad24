// The decisions on a condition. They depend on names and columns only. Whether the keys of a join are comparable
// depends on values: the join finds out, and has a second way.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_ConditionPlan.h"

#include <algorithm>
#include <numeric>

#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace {

using Way = QORQL_ConditionPlan::Way;

QORQL_ConditionSide sideOf(const QORSmrPtr<QORQL_Evaluatable>& node, bool isClassName) {
  QORQL_ConditionSide side;
  side.isFetched = !isClassName && QORQL_nodeAs<QORQL_Arithmetic>(node) != nullptr;
  const QORQL_Factor* const sole = QORQL_soleLeaf(node);
  side.isFactor = node.IsNull() || sole != nullptr;
  if (sole != nullptr && !sole->getClassName().IsNull()) side.classNames.push_back(sole->getClassName());
  if (side.isFactor) return side;
  auto visitor = QORSmrPtr<QORQL_ExpressionVisitor>::Make<QORQL_IdentifierFinder>();
  node->accept(visitor);
  QORValSlistIterator<QORSmrPtr<QORString>> names(
      *static_cast<const QORQL_IdentifierFinder*>(visitor.Get())->getClassNameList());
  while (++names) side.classNames.push_back(names.key());
  return side;
}

bool asksObjectManager(const QORQL_Condition& condition) {
  if (condition.left.isFactor && condition.right.isFactor) return false;
  return QORQL_containsInstanceOf(*condition.comparison);
}

QORQL_PlannedSide planSide(const QORQL_ConditionSide& side, const QORQL_RowSets& sets) {
  QORQL_PlannedSide planned;
  for (const QORSmrPtr<QORString>& name : side.classNames) {
    const QORsint32 column = name->isEmpty() ? -1 : sets.columnOf(*name);
    if (column >= 0) planned.columns.push_back(static_cast<QORuint32>(column));
  }
  if (planned.columns.empty()) return planned;
  const std::size_t block = sets.blockOf(planned.columns.front());
  const bool isOne = std::all_of(planned.columns.begin(), planned.columns.end(),
                                 [&](QORuint32 column) { return sets.blockOf(column) == block; });
  if (isOne) planned.block = block;
  return planned;
}

// Unless each side names exactly one class, both are recorded by the first column.
void chooseRecordedColumns(const QORQL_Condition& condition, const QORQL_RowSets& sets, QORQL_ConditionPlan& plan) {
  const QORString* const left = condition.left.onlyClass();
  const QORString* const right = condition.right.onlyClass();
  const bool hasOneClassEach = left != nullptr && right != nullptr;
  plan.left.recordedColumn = hasOneClassEach ? sets.columnOf(*left) : 0;
  plan.right.recordedColumn = hasOneClassEach ? sets.columnOf(*right) : 0;
}

QORQL_BlockList touchedBlocks(const QORQL_ConditionPlan& plan, const QORQL_RowSets& sets) {
  QORQL_BlockList blocks;
  const auto touch = [&](QORuint32 column) {
    const std::size_t block = sets.blockOf(column);
    const bool isNew = std::find(blocks.begin(), blocks.end(), block) == blocks.end();
    if (isNew && block < sets.blocks.size()) blocks.push_back(block);
  };
  if (plan.asksObjectManager) {
    blocks.resize(sets.blocks.size());
    std::iota(blocks.begin(), blocks.end(), std::size_t{0});
  }
  for (const QORQL_PlannedSide* const side : {&plan.left, &plan.right}) {
    std::for_each(side->columns.begin(), side->columns.end(), touch);
    if (side->recordedColumn >= 0) touch(static_cast<QORuint32>(side->recordedColumn));
  }
  // A condition without any class holds for all rows or for none.
  if (blocks.empty()) touch(0);
  std::sort(blocks.begin(), blocks.end(),
            [&sets](std::size_t a, std::size_t b) { return sets.blocks[a].front() < sets.blocks[b].front(); });
  return blocks;
}

// Where a set is the recorded column alone, each of its rows is one object: rows tell which objects have a partner.
bool isRecordedByRow(const QORQL_PlannedSide& side, const QORQL_RowSets& sets) {
  const QORQL_ColumnList& block = sets.blocks[*side.block];
  return block.size() == 1 && static_cast<QORsint32>(block.front()) == side.recordedColumn;
}

// A join reads one set of rows on each side, and no other.
bool mayJoin(const QORQL_ConditionPlan& plan, const QORQL_RowSets& sets) {
  if (!plan.relation || plan.isNegated || plan.asksObjectManager || plan.blocks.size() != 2) return false;
  if (!plan.left.block || !plan.right.block || plan.left.block == plan.right.block) return false;
  return !plan.isOuter() || (isRecordedByRow(plan.left, sets) && isRecordedByRow(plan.right, sets));
}

// How the rows of several sets are tested one by one. Pairs of two come in row order where all columns of the one stand
// before those of the other; an outer join records them as rows.
Way wayRowByRow(const QORQL_ConditionPlan& plan, const QORQL_RowSets& sets) {
  if (plan.blocks.size() < 2) return Way::kFilter;
  const bool arePairs = !plan.isOuter() && plan.blocks.size() == 2 &&
                        sets.blocks[plan.blocks[0]].back() < sets.blocks[plan.blocks[1]].front();
  return arePairs ? Way::kPairs : Way::kProduct;
}

}  // namespace

QORQL_Condition::QORQL_Condition(const QORQL_ExpressionFactor& factor)
    : comparison(QORQL_nodeAs<QORQL_Comparison>(factor.getComparison())),
      isNegated(factor.getOperator() == QORQL_OperatorNOT),
      left(sideOf(comparison->getLHSArithmeticExpression(), false)),
      right(sideOf(comparison->getRHSArithmeticExpression(), comparison->getOperator() == QORQL_OperatorISA)) {}

QORQL_ExecutionMonitor::Method QORQL_ConditionPlan::methodOf(Way way) noexcept {
  switch (way) {
    case kHashJoin:
      return QORQL_ExecutionMonitor::kMethodHashJoin;
    case kKeyJoin:
      return QORQL_ExecutionMonitor::kMethodKeyJoin;
    case kPairs:
    case kProduct:
      return QORQL_ExecutionMonitor::kMethodFilteredProduct;
    case kFilter:
      break;
  }
  return QORQL_ExecutionMonitor::kMethodFilter;
}

QORQL_ConditionPlan QORQL_planCondition(const QORQL_Condition& condition, const QORQL_RowSets& sets) {
  QORQL_ConditionPlan plan;
  plan.comparison = condition.comparison;
  plan.isNegated = condition.isNegated;
  plan.joinType = condition.comparison->getJoinType();
  const QORQL_Operator op = condition.comparison->getOperator();
  if (QORQL_isRelational(op) && !condition.comparison->isArrayComp()) plan.relation = QORQL_relationOf(op);
  plan.asksObjectManager = asksObjectManager(condition);
  plan.left = planSide(condition.left, sets);
  plan.right = planSide(condition.right, sets);
  if (plan.isOuter()) chooseRecordedColumns(condition, sets, plan);
  plan.blocks = touchedBlocks(plan, sets);
  plan.rowByRow = wayRowByRow(plan, sets);
  const Way joinWay = plan.relation == QoriRelation::Equal ? Way::kHashJoin : Way::kKeyJoin;
  plan.way = mayJoin(plan, sets) ? joinWay : plan.rowByRow;
  return plan;
}
