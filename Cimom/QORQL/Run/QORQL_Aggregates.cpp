// MIN, MAX, COUNT, SUM and AVG over the values of all rows.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Run/QORQL_Aggregates.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_NumberFold.h"
#include "Cimom/QORQL/Lazy/QORQL_RowReader.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_ExpressionPlaces.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "cimom/CQoriValue.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;
using Function = QORQL_SelectList::Function;

// The widest type of the value's family; THROWS for a value of no such family.
QORSmrPtr<IQoriType> widestType(const IQoriValue& value, QORuint32 functionID) {
  const QORString& name = value.getType()->getName();
  if (name.beginsWith("sint")) return CQoriType::sint64;
  if (name.beginsWith("uint")) return CQoriType::uint64;
  if (name.beginsWith("real")) return CQoriType::real64;
  throw QORQL_Exception(QORQL_Exception::QORQL_INVALID_DATA_TYPE,
                        QORString(QORQL_ExecutionMessages::kAggregateNotNumeric) + QORQL_functionName(functionID),
                        {QORQL_Fault::kNumberExpected});
}

// The next value of a fold that has its type. A sum that no longer fits stays null.
void foldTyped(Function& function, const Value& value) {
  Value& folded = function.value;
  switch (function.functionID) {
    case QORQL_FUNCTIONID_MIN:
      if (*value < *folded) folded = value;
      break;
    case QORQL_FUNCTIONID_MAX:
      if (*value > *folded) folded = value;
      break;
    case QORQL_FUNCTIONID_COUNT:
      folded = folded->add(CQoriValue(1, CQoriType::sint32));
      break;
    default:
      if (!folded.IsNull()) folded = folded->add(*value);
      break;
  }
}

class AggregateFinder : public QORQL_ExpressionVisitor {
 public:
  void visitFunction(const QORQL_Function& function) override {
    if (!QORQL_isAggregate(function.getFunctionID())) return;
    found = const_cast<QORQL_Function*>(&function);
    ++count;
  }
  QORuint32 count = 0;
  QORQL_Function* found = nullptr;
};

}  // namespace

void QORQL_foldAggregate(Function& function, const Value& value, QORuint64& counter) {
  if (!function.isTypeSet && function.functionID == QORQL_FUNCTIONID_COUNT) {
    function.value = new CQoriValue(0ULL, CQoriType::uint64);
    function.isTypeSet = true;
  }
  if (value.IsNull()) return;
  ++counter;
  if (function.isTypeSet) {
    foldTyped(function, value);
    return;
  }
  // The first value starts the fold.
  function.value = new CQoriValue(*value, widestType(*value, function.functionID));
  function.isTypeSet = true;
}

Value QORQL_finishAggregate(const Function& function, QORuint64 counter) {
  if (function.functionID != QORQL_FUNCTIONID_AVG || function.value.IsNull()) return function.value;
  return Value(new CQoriValue(function.value->getReal64() / static_cast<double>(counter), CQoriType::real64));
}

QORQL_Function* QORQL_findAggregate(const QORQL_SelectedEntry& entry) {
  AggregateFinder* const finder = new AggregateFinder();
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  if (!entry.getExpression().IsNull()) entry.getExpression()->accept(visitor);
  return finder->count == 1 ? finder->found : nullptr;
}

namespace {

// One aggregate entry while its argument is folded.
struct Fold {
  QORSmrPtr<QORQL_SelectedEntry> entry;
  QORQL_Function* call = nullptr;  // null: the entry has several aggregates, its result is null
  Function function;
  std::size_t slot = 0;
  bool isTested = false;                        // whether an earlier fold looks at the same values first
  std::unique_ptr<QORQL_NumberFold> numbers{};  // while the argument is a property and its values are numbers
};

// Computes the expression around the aggregate with the folded value.
Value applyAround(const Fold& fold, const Value& folded, QORQL_SymbolTable& symbols) {
  QORSmrPtr<QORQL_DataRow> row(new QORQL_DataRow());
  row->setFunctionValue(fold.call, folded);
  return fold.entry->getExpression()->evaluate(symbols, row);
}

// Leaves the selected row of the reader as it is.
void endNumbers(Fold& fold, QORQL_RowReader& reader, QORuint64 selected) {
  fold.numbers->handOver(fold.function, [&](QORuint64 row) {
    reader.select(row);
    return reader.value(fold.slot);
  });
  fold.numbers.reset();
  if (selected < reader.rowCount()) reader.select(selected);
}

void foldRow(Fold& fold, QORQL_RowReader& reader, QORuint64 row, QORuint64& counter) {
  if (fold.numbers != nullptr) {
    Value none;
    const QoriScalar value = reader.view(fold.slot, none);
    if (fold.numbers->add(value, row)) {
      if (!value.isNull()) ++counter;
      return;
    }
    endNumbers(fold, reader, row);
  }
  QORQL_foldAggregate(fold.function, reader.value(fold.slot), counter);
}

// What is no number stands in the argument.
void foldPlaced(Fold& fold, QORQL_RowReader& reader, QORuint64 row, QORuint64& counter) {
  try {
    foldRow(fold, reader, row, counter);
  } catch (QORQL_Exception& error) {
    if (error.getFault().kind == QORQL_Fault::kNumberExpected) {
      error.setFaultOffset(QORQL_startOf(*fold.call->getParameters()->first()));
    }
    throw;
  }
}

// Whether all that is folded are cells of numbers.
bool areNumbers(const std::vector<Fold>& folds) {
  return std::all_of(folds.begin(), folds.end(), [](const Fold& fold) { return fold.numbers != nullptr; });
}

// Whether the values of those folds lie in the cells of all rows' objects, and these are so few that they are likely to
// be in the cache; otherwise they come sooner when they are read column by column.
bool lieInCells(const std::vector<Fold>& folds, const QORQL_RowReader& reader) {
  constexpr QORuint64 kFewRows = 4096;
  return reader.rowCount() <= kFewRows && std::all_of(folds.begin(), folds.end(), [&reader](const Fold& fold) {
           return reader.property(fold.slot).readsCells();
         });
}

// Folds `count` rows, fold by fold, by what valuesOf() gives of them; false, with nothing changed, when only row by row
// is sure to meet an error in its row.
template <class ValuesOf>
bool foldRun(std::vector<Fold>& folds, const ValuesOf& valuesOf, std::size_t count, QORuint64 row, QORuint64& counter) {
  const bool takesAll = std::all_of(folds.begin(), folds.end(), [&](const Fold& fold) {
    return fold.isTested || fold.numbers->takesRun(valuesOf(fold), count);
  });
  if (!takesAll) return false;
  for (Fold& fold : folds) counter += fold.numbers->addRun(valuesOf(fold), count, row);
  return true;
}

// The same of the rows from the selected one on, whose cells the reader has at hand; returns how many.
std::size_t foldRead(std::vector<Fold>& folds, QORQL_RowReader& reader, QORuint64 row, QORuint64& counter) {
  const std::size_t count = reader.runLength();
  const QoriScalar* const cells = reader.cells();
  const auto valuesOf = [&](const Fold& fold) { return cells + reader.cellOffset(fold.slot); };
  return foldRun(folds, valuesOf, count, row, counter) ? count : 0;
}

// The same of rows whose cells are read where they lie, as QORQL_PlacedCells or QORQL_DenseCells. REQUIRES
// lieInCells().
template <class Cells>
std::size_t foldInCells(std::vector<Fold>& folds, QORQL_RowReader& reader, QORuint64 row, QORuint64& counter) {
  constexpr std::size_t kBatch = QORQL_PropertyColumn::kBatch;
  const std::size_t count = static_cast<std::size_t>(std::min<QORuint64>(kBatch, reader.rowCount() - row));
  std::array<const char*, kBatch> buffer;
  const QORQL_PropertyColumn* fetched = nullptr;  // whose objects' cells are at hand
  const char* const* cells = nullptr;
  const auto valuesOf = [&](const Fold& fold) {
    const QORQL_PropertyColumn& column = reader.property(fold.slot);
    if (fetched == nullptr || fetched->column() != column.column()) {
      cells = column.fetchCells(reader.block(), row, count, buffer.data());
      fetched = &column;
    }
    return Cells{cells, column.offset()};
  };
  return foldRun(folds, valuesOf, count, row, counter) ? count : 0;
}

// A property that an earlier fold of numbers has looked at is not looked at again.
void noteTested(std::vector<Fold>& folds, const QORQL_RowReader& reader) {
  for (auto fold = folds.begin(); fold != folds.end(); ++fold) {
    fold->isTested = std::any_of(folds.begin(), fold, [&](const Fold& earlier) {
      return earlier.function.functionID != QORQL_FUNCTIONID_COUNT &&
             reader.cellOffset(earlier.slot) == reader.cellOffset(fold->slot);
    });
  }
}

void foldRow(std::vector<Fold>& folds, QORQL_RowReader& reader, QORuint64 row, QORuint64& counter) {
  if (!reader.hasRow()) return;
  for (Fold& fold : folds) {
    if (fold.call != nullptr) foldPlaced(fold, reader, row, counter);
  }
}

// The fastest way for a run of rows. REQUIRES folds of numbers.
auto foldOfRun(const std::vector<Fold>& folds, const QORQL_RowReader& reader) {
  if (reader.rowCount() == 0 || !lieInCells(folds, reader)) return &foldRead;
  return reader.block().isWholeExtent ? &foldInCells<QORQL_DenseCells> : &foldInCells<QORQL_PlacedCells>;
}

void foldRows(std::vector<Fold>& folds, QORQL_RowReader& reader, QORuint64& counter) {
  QORQL_StopCheck stopCheck;
  bool areAtHand = areNumbers(folds);
  if (areAtHand) noteTested(folds, reader);
  const auto fold = areAtHand ? foldOfRun(folds, reader) : nullptr;
  for (QORuint64 row = 0; row < reader.rowCount();) {
    reader.select(row);
    areAtHand = areAtHand && areNumbers(folds);
    std::size_t run = 0;
    if (areAtHand) run = fold(folds, reader, row, counter);
    if (run == 0) foldRow(folds, reader, row, counter);
    const std::size_t done = std::max<std::size_t>(run, 1);
    stopCheck.count(done);
    row += done;
  }
  for (Fold& fold : folds) {
    if (fold.numbers != nullptr) endNumbers(fold, reader, reader.rowCount());
  }
}

}  // namespace

QORSmrPtr<QORQL_SelectList::FunctionResults> QORQL_SelectList::_getFunctionResults(QORQL_SymbolTable& symbols,
                                                                                   Table& table) const {
  QORSmrPtr<FunctionResults> results(new FunctionResults());
  std::vector<Fold> folds;
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*_selectedEntries);
  while (++entries) {
    const QORSmrPtr<QORQL_SelectedEntry>& entry = entries.key();
    if (!entry->isEntryAggregate()) results->hasOnlyAggregateFunctions = false;
    if (entry->GetFunctionID() == QORQL_FUNCTIONID_UNKNOWN) continue;
    results->hasFunctions = true;
    results->results.append(FunctionResult{_functionID(*entry), Value()});
    if (!entry->isEntryAggregate()) continue;
    results->hasAggregateFunctions = true;
    Fold fold;
    fold.entry = entry;
    fold.call = QORQL_findAggregate(*entry);
    fold.function.className = entry->getClassName();
    fold.function.propertyName = entry->getPropertyName();
    fold.function.alias = entry->getAlias();
    fold.function.id = _functionID(*entry);
    fold.function.functionID = entry->GetFunctionID();
    folds.push_back(std::move(fold));
  }
  if (!results->hasAggregateFunctions) {
    results->hasOnlyAggregateFunctions = false;
    return results;
  }
  QORQL_RowReader reader(symbols, table);
  for (Fold& fold : folds) {
    if (fold.call == nullptr) continue;
    fold.slot = reader.addExpression(fold.call->getParameters()->first());
    if (reader.isProperty(fold.slot)) fold.numbers = std::make_unique<QORQL_NumberFold>(fold.function.functionID);
  }
  QORuint64 counter = 0;
  foldRows(folds, reader, counter);
  QORValSlistIterator<FunctionResult> slots(results->results);
  for (const Fold& fold : folds) {
    ++slots;
    Value value;
    if (fold.call != nullptr) value = applyAround(fold, QORQL_finishAggregate(fold.function, counter), symbols);
    slots.key().result = value;
    fold.entry->SetAggregateValue(value);
  }
  return results;
}
