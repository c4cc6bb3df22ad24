// Conditions on lazy rows, in the way that their plan names.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_LazyFilter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>

#include "Cimom/QORQL/Lazy/QORQL_LazyJoin.h"
#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/Lazy/QORQL_NullExtension.h"
#include "Cimom/QORQL/Lazy/QORQL_RowTruth.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_OuterJoin.h"
#include "Cimom/QORQL/QORQL_RowFault.h"

namespace {

using Way = QORQL_ConditionPlan::Way;

// A side's record of the row's object, when it has one.
template <class Record>
void recordSide(const QORQL_RowView& view, QORsint32 column, Record record) {
  if (column < 0) return;
  const QORuint32 place = static_cast<QORuint32>(column);
  if (view.object(place) != nullptr) record(QORQL_instanceKey(*view.object(place)), view.index(place));
}

// Keeps only the rows of a block whose tuples are given.
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
  const QORuint32* const tuples = block.tuples.data() + first * width;
  if (width == 1) {
    for (std::size_t i = 0; i < count; ++i) out[i] = tuples[places[i]];
    return;
  }
  for (std::size_t i = 0; i < count; ++i) out = std::copy_n(tuples + places[i] * width, width, out);
}

// Tests the rows of one block in order and finds those that hold.
class BlockFilter {
 public:
  BlockFilter(const QORQL_ConditionPlan& plan, QORQL_RowTruth& truth) : _plan(plan), _truth(truth) {
    if (plan.isOuter()) _join = std::make_unique<QORQL_OuterJoin<QORuint32>>(plan.joinType);
    for (const QoriTruth outcome : {QoriTruth::False, QoriTruth::True, QoriTruth::Null}) {
      _keeps[static_cast<std::size_t>(outcome)] = plan.keeps(outcome);
    }
    _keepsTrueAlone = _join == nullptr && _keeps == std::array{false, true, false};
  }

  // The tuples of the rows that stay. Selects each row that it looks at in `view`.
  std::vector<QORuint32> run(const QORQL_RowBlock& block, QORQL_RowView& view) {
    constexpr QORuint64 kFewRows = 4096;  // for so many there is room before it is known how many stay
    const std::size_t width = block.columns.size();
    std::vector<QORuint32> kept;
    kept.reserve(static_cast<std::size_t>(std::min<QORuint64>(block.rowCount + kRoom, kFewRows)) * width);
    std::size_t size = 0;
    QORQL_StopCheck stopCheck;
    for (QORuint64 first = 0; first < block.rowCount; first += kRoom) {
      stopCheck.count(kRoom);
      stopCheck.hold(size, sizeof(QORuint32));
      const std::size_t count = static_cast<std::size_t>(std::min<QORuint64>(kRoom, block.rowCount - first));
      if (kept.size() < size + kRoom * width) kept.resize(size + kRoom * width);
      size += keepOfRuns(block, first, count, view, kept.data() + size) * width;
    }
    kept.resize(size);
    return kept;
  }

  // What an outer join adds to the rows that stay.
  void addOuterRows(QORQL_LazyRows& rows) const {
    if (_join == nullptr) return;
    rows.flatten();
    const auto append = [&rows](const QORQL_PlannedSide& side, QORuint32 index) {
      QORQL_appendExtendedRow(rows, static_cast<QORuint32>(side.recordedColumn), index);
    };
    _join->forEachLeft([&](QORuint32 index) { append(_plan.left, index); });
    _join->forEachRight([&](QORuint32 index) { append(_plan.right, index); });
  }

 private:
  static constexpr std::size_t kBatch = QORQL_PropertyColumn::kBatch;
  static constexpr std::size_t kRoom = 4 * kBatch;  // rows for which there is room at a time

  // Puts out the tuples of those of some rows that stay, all in one loop or run by run; returns how many there are.
  std::size_t keepOfRuns(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QORQL_RowView& view,
                         QORuint32* out) {
    if (_keepsTrueAlone && block.columns.size() == 1) {
      const std::optional<std::size_t> selected = _truth.selectRun(block, first, count, out);
      if (selected) return *selected;
    }
    std::size_t kept = 0;
    for (std::size_t done = 0; done < count; done += kBatch) {
      kept += keepOfRun(block, first + done, std::min(kBatch, count - done), view, out + kept * block.columns.size());
    }
    return kept;
  }

  // The same of one run.
  std::size_t keepOfRun(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QORQL_RowView& view,
                        QORuint32* out) {
    QORQL_RunTruths truths;
    testRun(block, first, count, view, truths);
    if (block.isWholeExtent) return collect(truths, count, static_cast<QORuint32>(first), out);
    std::array<QORuint32, QORQL_PropertyColumn::kBatch> places;
    const std::size_t keptCount = collect(truths, count, 0, places.data());
    copyTuples(block, first, places.data(), keptCount, out);
    return keptCount;
  }

  void testRun(const QORQL_RowBlock& block, QORuint64 first, std::size_t count, QORQL_RowView& view,
               QORQL_RunTruths& truths) {
    if (_join != nullptr || !_truth.testRun(block, first, count, truths)) {
      truths.fill(QORQL_ViewTruth::Undecided);
    }
    if (std::memchr(truths.data(), static_cast<int>(QORQL_ViewTruth::Undecided), count) == nullptr) return;
    for (std::size_t i = 0; i < count; ++i) {
      if (truths[i] != QORQL_ViewTruth::Undecided) continue;
      view.select(block, first + i);
      truths[i] = static_cast<QORQL_ViewTruth>(testRow(view));
      if (_join == nullptr) _truth.learn(i + 1, count, truths);
    }
  }

  // The numbers of the rows that stay, counted from `start` on; returns how many there are. Does not branch on the
  // outcome, which the processor could not predict.
  std::size_t collect(const QORQL_RunTruths& truths, std::size_t count, QORuint32 start,
                      QORuint32* out) const noexcept {
    const std::array<bool, 3> keeps = _keeps;
    std::size_t keptCount = 0;
    for (std::size_t i = 0; i < count; ++i) {
      out[keptCount] = start + static_cast<QORuint32>(i);
      keptCount += keeps[static_cast<std::size_t>(truths[i])] ? 1 : 0;
    }
    return keptCount;
  }

  QoriTruth testRow(const QORQL_RowView& view) {
    const QoriTruth truth = _truth.test(view);
    if (_join != nullptr) {
      const bool isMatch = truth == QoriTruth::True;
      recordSide(view, _plan.left.recordedColumn,
                 [&](const QORString& key, QORuint32 index) { _join->recordLeft(key, index, isMatch); });
      recordSide(view, _plan.right.recordedColumn,
                 [&](const QORString& key, QORuint32 index) { _join->recordRight(key, index, isMatch); });
    }
    return truth;
  }

  const QORQL_ConditionPlan& _plan;
  QORQL_RowTruth& _truth;
  std::unique_ptr<QORQL_OuterJoin<QORuint32>> _join;  // null: an inner join
  std::array<bool, 3> _keeps{};                       // whether a row of each truth stays
  bool _keepsTrueAlone = false;
};

// The join of two blocks by testing each pair, without making their product.
QORQL_RowBlock filterPairs(const QORQL_LazyRows& rows, const QORQL_ConditionPlan& plan, QORQL_RowTruth& truth,
                           QORQL_RowView& view) {
  const QORQL_RowBlock& outer = rows.blocks()[plan.blocks[0]];
  const QORQL_RowBlock& inner = rows.blocks()[plan.blocks[1]];
  QORQL_RowBlock result;
  result.columns = rows.columnsOf(plan.blocks);
  QORQL_StopCheck stopCheck;
  for (QORuint64 i = 0; i < outer.rowCount; ++i) {
    view.select(outer, i);
    for (QORuint64 j = 0; j < inner.rowCount; ++j) {
      stopCheck.count();
      view.select(inner, j);
      if (!plan.keeps(truth.test(view))) continue;
      ++result.rowCount;
      for (const QORuint32 column : result.columns) result.tuples.push_back(view.index(column));
      stopCheck.hold(result.tuples.size(), sizeof(QORuint32));
    }
  }
  return result;
}

// Filters one block, for an outer join with its rows without partners.
void filterBlock(QORQL_LazyRows& rows, std::size_t number, const QORQL_ConditionPlan& plan, QORQL_RowTruth& truth,
                 QORQL_RowView& view) {
  BlockFilter filter(plan, truth);
  QORQL_RowBlock& block = rows.blocks()[number];
  keepRows(block, filter.run(block, view));
  filter.addOuterRows(rows);
}

bool tryJoin(QORQL_LazyRows& rows, const QORQL_ConditionPlan& plan, const QORQL_BoundSides& sides) {
  try {
    return QORQL_joinLazily(rows, plan, sides);
  } catch (const QORQL_StoppedException&) {
    throw;
  } catch (const QoriBaseException&) {
    return false;  // a key cannot be computed: evaluation in row order finds the row whose error counts
  }
}

void filterRowByRow(QORQL_LazyRows& rows, const QORQL_ConditionPlan& plan, QORQL_RowTruth& truth, QORQL_RowView& view) {
  if (plan.rowByRow == Way::kPairs) {
    rows.replaceBlocks(plan.blocks, filterPairs(rows, plan, truth, view));
    return;
  }
  const std::size_t number = plan.rowByRow == Way::kProduct ? rows.multiply(plan.blocks) : plan.blocks.front();
  filterBlock(rows, number, plan, truth, view);
}

// The condition applied to the rows of a lazy table.
class LazyFilter {
 public:
  LazyFilter(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, const QORQL_ConditionPlan& plan,
             const QORString& nameSpace)
      : _symbolTable(symbolTable),
        _table(table),
        _plan(plan),
        _nameSpace(nameSpace),
        _sides(QORQL_Binder(*table).bindSides(*plan.comparison)) {}

  QORQL_ExecutionMonitor::Method run() {
    if (_plan.way == Way::kFilter && !_plan.isOuter()) {
      filterInPlace();
      return QORQL_ConditionPlan::methodOf(_plan.way);
    }
    // What changes more than one block's rows is done on a copy: an error leaves the table as it was.
    auto rows = std::make_shared<QORQL_LazyRows>(*_table->lazy()->rows());
    const bool isJoined = _plan.isJoin() && tryJoin(*rows, _plan, _sides);
    if (!isJoined) {
      test(*rows, [&](QORQL_RowTruth& truth, QORQL_RowView& view) { filterRowByRow(*rows, _plan, truth, view); });
    }
    _table->setLazy(std::make_unique<QORQL_LazyTable>(std::move(rows)));
    return QORQL_ConditionPlan::methodOf(isJoined ? _plan.way : _plan.rowByRow);
  }

 private:
  // Rows are tested before they are changed, so that an error leaves the table as it was.
  void filterInPlace() {
    const QORQL_LazyRows& rows = *_table->lazy()->rows();
    const std::size_t number = _plan.blocks.front();
    std::vector<QORuint32> kept;
    test(rows, [&](QORQL_RowTruth& truth, QORQL_RowView& view) {
      kept = BlockFilter(_plan, truth).run(rows.blocks()[number], view);
    });
    keepRows(_table->lazy()->ownRows().blocks()[number], std::move(kept));
  }

  // Calls back with what tells the truth of a row and with the view that the rows are selected in. What that throws
  // is about the row that was selected last.
  template <class Callback>
  void test(const QORQL_LazyRows& rows, const Callback& callback) {
    const auto truth = QORQL_RowTruth::make(_symbolTable, _table, _plan, std::move(_sides), _nameSpace);
    QORQL_RowView view(rows);
    try {
      callback(*truth, view);
    } catch (const QoriBaseException&) {
      QORSmrPtr<QORQL_DataRow> row(new QORQL_DataRow());
      row->setParentTable(_table.Get());
      _table->lazy()->fillRow(view, *row);
      QORQL_throwWithFault(*_plan.comparison, _symbolTable, row);
    }
  }

  QORQL_SymbolTable& _symbolTable;
  QORSmrPtr<QORQL_DataTable>& _table;
  const QORQL_ConditionPlan& _plan;
  const QORString& _nameSpace;
  QORQL_BoundSides _sides;
};

}  // namespace

QORQL_ExecutionMonitor::Method QORQL_filterLazily(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                                  const QORQL_ConditionPlan& plan, const QORString& nameSpace) {
  return LazyFilter(symbolTable, table, plan, nameSpace).run();
}
