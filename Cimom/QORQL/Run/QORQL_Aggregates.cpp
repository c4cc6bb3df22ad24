// MIN, MAX, COUNT, SUM and AVG over the values of all rows.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Run/QORQL_Aggregates.h"

#include <algorithm>
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

// Folds the rows from the selected one on whose cells are at hand, fold by fold; returns how many, 0 when only row by
// row is sure to meet an error in its row.
std::size_t foldRun(std::vector<Fold>& folds, QORQL_RowReader& reader, QORuint64 row, QORuint64& counter) {
  const std::size_t count = reader.runLength();
  const QoriScalar* const cells = reader.cells();
  const auto cellsOf = [&](const Fold& fold) { return cells + reader.cellOffset(fold.slot); };
  const bool takesAll = std::all_of(folds.begin(), folds.end(),
                                    [&](const Fold& fold) { return fold.numbers->takesRun(cellsOf(fold), count); });
  if (!takesAll) return 0;
  for (Fold& fold : folds) counter += fold.numbers->addRun(cellsOf(fold), count, row);
  return count;
}

void foldRow(std::vector<Fold>& folds, QORQL_RowReader& reader, QORuint64 row, QORuint64& counter) {
  if (!reader.hasRow()) return;
  for (Fold& fold : folds) {
    if (fold.call != nullptr) foldPlaced(fold, reader, row, counter);
  }
}

void foldRows(std::vector<Fold>& folds, QORQL_RowReader& reader, QORuint64& counter) {
  QORQL_StopCheck stopCheck;
  for (QORuint64 row = 0; row < reader.rowCount();) {
    reader.select(row);
    const std::size_t run = areNumbers(folds) ? foldRun(folds, reader, row, counter) : 0;
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
