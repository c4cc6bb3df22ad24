// Conditions on lazy rows. A condition touches the blocks whose columns it
// reads; the others are left alone, since their rows only repeat its outcome.
#include "Cimom/QORQL/Lazy/QORQL_LazyFilter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <numeric>

#include "Cimom/QORQL/Lazy/QORQL_LazyJoin.h"
#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/Lazy/QORQL_NullExtension.h"
#include "Cimom/QORQL/Lazy/QORQL_RowTruth.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_OuterJoin.h"
#include "Cimom/QORQL/QORQL_Values.h"

void QORQL_addColumnsRead(const QORSmrPtr<QORQL_Evaluatable>& side, const QORQL_DataTable& table,
                          std::vector<QORuint32>& columns) {
  if (side.IsNull()) return;
  const auto add = [&](const QORString& name) {
    const QORsint32 column = name.isEmpty() ? -1 : table.getColumnIndex(name);
    if (column >= 0) columns.push_back(static_cast<QORuint32>(column));
  };
  if (const QORQL_Factor* const sole = QORQL_soleFactorOf(side)) {
    if (!sole->getClassName().IsNull()) add(*sole->getClassName());
    return;
  }
  auto visitor = QORSmrPtr<QORQL_ExpressionVisitor>::Make<QORQL_IdentifierFinder>();
  const auto* const finder = static_cast<const QORQL_IdentifierFinder*>(visitor.Get());
  side->accept(visitor);
  QORValSlistIterator<QORSmrPtr<QORString>> names(*finder->getClassNameList());
  while (++names) add(*names.key());
}

namespace {

using BlockNumbers = std::vector<std::size_t>;
using Monitor = QORQL_ExecutionMonitor;

std::vector<QORuint32> columnsRead(const QORQL_DataTable& table, const QORQL_Condition& condition) {
  std::vector<QORuint32> columns;
  const QORQL_Comparison& comparison = condition.comparison();
  QORQL_addColumnsRead(comparison.getLHSArithmeticExpression(), table, columns);
  QORQL_addColumnsRead(comparison.getRHSArithmeticExpression(), table, columns);
  if (comparison.getJoinType() != QORQL_JOIN_TYPE_INNER) {
    if (condition.leftColumn >= 0) columns.push_back(static_cast<QORuint32>(condition.leftColumn));
    if (condition.rightColumn >= 0) columns.push_back(static_cast<QORuint32>(condition.rightColumn));
  }
  return columns;
}

BlockNumbers touchedBlocks(const QORQL_DataTable& table, const QORQL_LazyRows& rows, const QORQL_Condition& condition) {
  BlockNumbers numbers;
  if (QORQL_RowTruth::asksObjectManager(condition)) {
    numbers.resize(rows.blocks().size());
    std::iota(numbers.begin(), numbers.end(), std::size_t{0});
    return numbers;
  }
  for (const QORuint32 column : columnsRead(table, condition)) numbers.push_back(rows.blockOf(column));
  if (numbers.empty()) numbers.push_back(0);  // a condition without any class holds for all rows or for none
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  return numbers;
}

// A side's record of the row's object, when it has one.
template <class Record>
void recordSide(const QORQL_RowView& view, QORsint32 column, Record record) {
  if (column < 0) return;
  const QORuint32 place = static_cast<QORuint32>(column);
  if (view.objects[place] != nullptr) record(QORQL_instanceKey(*view.objects[place]), view.indexes[place]);
}

// Leaves those of a block's rows whose tuples are given.
void keepRows(QORQL_RowBlock& block, std::vector<QORuint32>&& kept) {
  const QORuint64 keptCount = kept.size() / block.columns.size();
  if (keptCount == block.rowCount) return;
  block.isWholeExtent = false;
  block.tuples = std::move(kept);
  block.rowCount = keptCount;
}

// The tuples of some of a run's rows, which are given by their place in it.
void copyTuples(const QORQL_RowBlock& block, QORuint64 first, const QORuint32* places, std::size_t count,
                QORuint32* out) {
  const std::size_t width = block.columns.size();
  if (block.isWholeExtent) {
    for (std::size_t i = 0; i < count; ++i) out[i] = static_cast<QORuint32>(first) + places[i];
    return;
  }
  const QORuint32* const tuples = block.tuples.data() + first * width;
  for (std::size_t i = 0; i < count; ++i) out = std::copy_n(tuples + places[i] * width, width, out);
}

// Tests the rows of one block in order and finds those that hold.
class BlockFilter {
 public:
  BlockFilter(const QORQL_LazyRows& rows, const QORQL_Condition& condition, QORQL_RowTruth& truth)
      : _rows(rows), _condition(condition), _truth(truth) {
    const QORQL_JoinType joinType = condition.comparison().getJoinType();
    if (joinType != QORQL_JOIN_TYPE_INNER) _join = std::make_unique<QORQL_OuterJoin<QORuint32>>(joinType);
    for (const QoriTruth outcome : {QoriTruth::False, QoriTruth::True, QoriTruth::Null}) {
      _keeps[static_cast<std::size_t>(outcome)] =
          QORQL_keepsRow(outcome, condition.isNegated, condition.isArrayNotEqual());
    }
  }

  // The tuples of the rows that stay.
  std::vector<QORuint32> run(const QORQL_RowBlock& block) {
    const std::size_t width = block.columns.size();
    QORQL_RowView view(_rows);
    std::vector<QORuint32> kept;
    std::array<QORuint32, QORQL_PropertyColumn::kBatch> keptOfRun;
    QORQL_StopCheck stopCheck;
    for (QORuint64 first = 0; first < block.rowCount; first += keptOfRun.size()) {
      stopCheck.count(keptOfRun.size());
      const std::size_t count = static_cast<std::size_t>(std::min<QORuint64>(keptOfRun.size(), block.rowCount - first));
      const std::size_t keptCount = filterRun(block, first, count, view, keptOfRun);
      const std::size_t start = kept.size();
      kept.resize(start + keptCount * width);
      copyTuples(block, first, keptOfRun.data(), keptCount, kept.data() + start);
    }
    return kept;
  }

  // What an outer join adds to the rows that stay.
  void addOuterRows(QORQL_LazyRows& rows) const {
    if (_join == nullptr) return;
    rows.flatten();
    _join->forEachLeft(
        [&](QORuint32 index) { QORQL_appendExtendedRow(rows, static_cast<QORuint32>(_condition.leftColumn), index); });
    _join->forEachRight(
        [&](QORuint32 index) { QORQL_appendExtendedRow(rows, static_cast<QORuint32>(_condition.rightColumn), index); });
  }

 private:
  // The rows of a run that stay, by their place in it; returns how many.
  // Nothing branches on the outcome, which nobody could predict.
  template <class Places>
  std::size_t filterRun(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QORQL_RowView& view,
                        Places& kept) {
    QORQL_RunTruths truths;
    if (_join != nullptr || !_truth.testRun(block, first, count, truths)) {
      truths.fill(QORQL_ViewTruth::Undecided);
    }
    if (std::memchr(truths.data(), static_cast<int>(QORQL_ViewTruth::Undecided), count) != nullptr) {
      for (std::size_t i = 0; i < count; ++i) {
        if (truths[i] != QORQL_ViewTruth::Undecided) continue;
        view.select(block, first + i);
        truths[i] = static_cast<QORQL_ViewTruth>(testRow(view));
      }
    }
    std::size_t keptCount = 0;
    for (std::size_t i = 0; i < count; ++i) {
      kept[keptCount] = static_cast<QORuint32>(i);
      keptCount += _keeps[static_cast<std::size_t>(truths[i])] ? 1 : 0;
    }
    return keptCount;
  }

  QoriTruth testRow(const QORQL_RowView& view) {
    const QoriTruth truth = _truth.test(view);
    if (_join != nullptr) {
      const bool isMatch = truth == QoriTruth::True;
      recordSide(view, _condition.leftColumn,
                 [&](const QORString& key, QORuint32 index) { _join->recordLeft(key, index, isMatch); });
      recordSide(view, _condition.rightColumn,
                 [&](const QORString& key, QORuint32 index) { _join->recordRight(key, index, isMatch); });
    }
    return truth;
  }

  const QORQL_LazyRows& _rows;
  const QORQL_Condition& _condition;
  QORQL_RowTruth& _truth;
  std::unique_ptr<QORQL_OuterJoin<QORuint32>> _join;  // null: an inner join
  std::array<bool, 3> _keeps{};                       // whether a row of each truth stays
};

// Two blocks, tested pair by pair without making their product.
QORQL_RowBlock filterProduct(QORQL_LazyRows& rows, const BlockNumbers& numbers, const QORQL_Condition& condition,
                             QORQL_RowTruth& truth) {
  const QORQL_RowBlock& outer = rows.blocks()[numbers[0]];
  const QORQL_RowBlock& inner = rows.blocks()[numbers[1]];
  QORQL_RowBlock result;
  result.columns = rows.columnsOf(numbers);
  QORQL_RowView view(rows);
  QORQL_StopCheck stopCheck;
  for (QORuint64 i = 0; i < outer.rowCount; ++i) {
    view.select(outer, i);
    for (QORuint64 j = 0; j < inner.rowCount; ++j) {
      stopCheck.count();
      view.select(inner, j);
      if (!QORQL_keepsRow(truth.test(view), condition.isNegated, condition.isArrayNotEqual())) continue;
      ++result.rowCount;
      for (const QORuint32 column : result.columns) result.tuples.push_back(view.indexes[column]);
    }
  }
  return result;
}

// Whether the pairs of two blocks, the first outermost, come in row order.
bool areInOrder(const QORQL_LazyRows& rows, const BlockNumbers& numbers) {
  return numbers.size() == 2 && rows.blocks()[numbers[0]].columns.back() < rows.blocks()[numbers[1]].columns.front();
}

bool tryJoin(const QORQL_DataTable& table, QORQL_LazyRows& rows, const QORQL_Condition& condition,
             const BlockNumbers& numbers) {
  try {
    return QORQL_joinLazily(table, rows, condition, numbers);
  } catch (const QORQL_StoppedException&) {
    throw;
  } catch (const QoriBaseException&) {
    return false;  // a key cannot be computed: evaluation in row order finds which row raises what
  }
}

// How a condition that joined by key did it.
Monitor::Method joinMethod(const QORQL_Condition& condition) {
  const bool isEqual = QORQL_relationOf(condition.comparison().getOperator()) == QoriRelation::Equal;
  return isEqual ? Monitor::kMethodHashJoin : Monitor::kMethodKeyJoin;
}

// Tests the rows one by one; for several blocks those of their product.
Monitor::Method filterRows(QORQL_LazyRows& rows, const QORQL_Condition& condition, const BlockNumbers& numbers,
                           QORQL_RowTruth& truth) {
  const bool isInner = condition.comparison().getJoinType() == QORQL_JOIN_TYPE_INNER;
  if (isInner && areInOrder(rows, numbers)) {
    rows.replaceBlocks(numbers, filterProduct(rows, numbers, condition, truth));
    return Monitor::kMethodFilteredProduct;
  }
  if (numbers.size() > 1) rows.multiply(numbers);
  BlockFilter filter(rows, condition, truth);
  QORQL_RowBlock& block = rows.blocks()[numbers.front()];
  keepRows(block, filter.run(block));
  filter.addOuterRows(rows);
  return numbers.size() > 1 ? Monitor::kMethodFilteredProduct : Monitor::kMethodFilter;
}

}  // namespace

QORQL_ExecutionMonitor::Method QORQL_filterLazily(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                                  const QORQL_Condition& condition, const QORString& nameSpace) {
  // Errors leave the table as it was: rows are tested before they are changed,
  // and what changes more than one block's rows is done on a copy.
  const BlockNumbers numbers = touchedBlocks(*table, *table->lazy()->rows(), condition);
  if (numbers.size() == 1 && condition.comparison().getJoinType() == QORQL_JOIN_TYPE_INNER) {
    const auto truth = QORQL_RowTruth::make(symbolTable, table, condition, nameSpace);
    const QORQL_LazyRows& tested = *table->lazy()->rows();
    std::vector<QORuint32> kept = BlockFilter(tested, condition, *truth).run(tested.blocks()[numbers.front()]);
    keepRows(table->lazy()->ownRows().blocks()[numbers.front()], std::move(kept));
    return Monitor::kMethodFilter;
  }
  auto rows = std::make_shared<QORQL_LazyRows>(*table->lazy()->rows());
  const bool isJoined = tryJoin(*table, *rows, condition, numbers);
  const Monitor::Method method =
      isJoined ? joinMethod(condition)
               : filterRows(*rows, condition, numbers, *QORQL_RowTruth::make(symbolTable, table, condition, nameSpace));
  table->setLazy(std::make_unique<QORQL_LazyTable>(std::move(rows)));
  return method;
}
