// What a condition reads and how it will be done: decided once, before any row is looked at. Execution does what the
// plan says, and explaining a query shows it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CONDITIONPLAN_H
#define QORQL_CONDITIONPLAN_H

#include <optional>

#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"
#include "Cimom/QORQL/Lazy/QORQL_RowSets.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "cimom/QoriScalar.h"

// What one side of a condition names.
struct QORQL_ConditionSide {
  // The class names of its factors, in order, empty ones too; the factors' own strings.
  QORQL_FewList<QORSmrPtr<QORString>, 2> classNames;
  // Whether its classes become columns before the condition is applied: not on the right of ISA, whose names are
  // classes.
  bool isFetched = false;
  bool isFactor = false;  // a literal or a reference and nothing around it, or no side at all

  // BORROWS: the one class that an outer join records objects of; null when the side names none or several.
  const QORString* onlyClass() const noexcept {
    return isFetched && classNames.size() == 1 ? classNames.front().Get() : nullptr;
  }
};

// A condition as the statement has it. BORROWS from the statement.
struct QORQL_Condition {
  // REQUIRES a factor over a QORQL_Comparison.
  explicit QORQL_Condition(const QORQL_ExpressionFactor& factor);

  QORQL_Comparison* comparison;
  bool isNegated;
  QORQL_ConditionSide left;
  QORQL_ConditionSide right;

  // Calls fetch(name) for each class that must be a column, in order, left before right.
  template <class Fetch>
  void forEachFetched(const Fetch& fetch) const {
    for (const QORQL_ConditionSide* const side : {&left, &right}) {
      if (!side->isFetched) continue;
      for (const QORSmrPtr<QORString>& name : side->classNames) {
        if (!name->isEmpty()) fetch(*name);
      }
    }
  }
};

// What one side of a condition reads of a table.
struct QORQL_PlannedSide {
  QORQL_ColumnList columns;          // of the classes that it names, in order; one may come twice
  std::optional<std::size_t> block;  // the one set of rows that they lie in; none when there are several, or no columns
  // Of an outer join: the column whose objects are recorded as having a partner or not; -1: none are.
  QORsint32 recordedColumn = -1;
};

struct QORQL_ConditionPlan {
  enum Way {
    kFilter,    // the rows of one set, one by one
    kHashJoin,  // two sets by equal keys, through an index of them
    kKeyJoin,   // two sets by keys that are computed once for each row and compared pair by pair
    kPairs,     // every pair of the rows of two sets, tested without making their product
    kProduct    // the rows of the sets' product, which is made first
  };

  QORQL_Comparison* comparison = nullptr;  // BORROWS from the statement; never null
  bool isNegated = false;
  QORQL_JoinType joinType = QORQL_JOIN_TYPE_INNER;
  // The relation of one side's value to the other's; none for ANY and EVERY, and for conditions that are no relation.
  std::optional<QoriRelation> relation;
  // Whether a function in it asks the object manager once for each row of the table: then it touches every set.
  bool asksObjectManager = false;
  QORQL_PlannedSide left;
  QORQL_PlannedSide right;
  // The sets of rows that it touches, in the order of their first columns. The others are left alone, since their rows
  // only repeat its outcome.
  QORQL_BlockList blocks;
  Way way = kFilter;
  // How the rows are tested one by one; for a join, what is done when its keys turn out to be not comparable.
  Way rowByRow = kFilter;

  bool isOuter() const noexcept { return joinType != QORQL_JOIN_TYPE_INNER; }
  bool isJoin() const noexcept { return way == kHashJoin || way == kKeyJoin; }
  // Whether a row stays for which the comparison gives this. An array comparison by <> without NOT has its sense
  // inverted: it keeps the rows where it is false.
  bool keeps(QoriTruth truth) const noexcept {
    if (truth == QoriTruth::Null) return false;
    const bool isArrayNotEqual = comparison->isArrayComp() && comparison->getOperator() == QORQL_OperatorNOTEQUAL;
    return (truth == QoriTruth::True) != (isNegated || isArrayNotEqual);
  }
  // The way, as monitors are told it.
  static QORQL_ExecutionMonitor::Method methodOf(Way way) noexcept;
};

// The plan for a table whose rows lie in these sets. Linear in the size of the condition.
QORQL_ConditionPlan QORQL_planCondition(const QORQL_Condition& condition, const QORQL_RowSets& sets);

#endif
