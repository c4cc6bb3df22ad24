// Sorting. Equal keys come out in reverse order, as the list's merge sort gives
// them. Lazy rows are sorted as a permutation; numbers and strings through an
// array of keys, ordered by key and, among equals, by descending position.
// SPDX-License-Identifier: Apache-2.0
#include <utility>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/Lazy/QORQL_RowReader.h"
#include "Cimom/QORQL/Lazy/QORQL_SortKeys.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_OrderByHelper.h"
#include "Cimom/QORQL/Run/QORQL_SortFault.h"

namespace {

using HelperList = QORValSlist<QORQL_OrderByHelper>;
using Value = QORSmrPtr<IQoriValue>;

HelperList::SortOrder orderOf(bool isAscending) { return isAscending ? HelperList::Ascending : HelperList::Descending; }

void sortRows(QORQL_SymbolTable& symbolTable, QORQL_DataTable& table, QORQL_Evaluatable& key, bool isAscending) {
  HelperList entries;
  QORQL_StopCheck stopCheck;
  QORValSlistIterator<QORSmrPtr<QORQL_DataRow>> rows(*table.getRows());
  while (++rows) {
    stopCheck.count();
    entries.append(QORQL_OrderByHelper(key.evaluate(symbolTable, rows.key()), rows.key()));
  }
  entries.sort(orderOf(isAscending));
  QORQL_DataTable::RowList sorted(new QORValSlist<QORSmrPtr<QORQL_DataRow>>());
  QORValSlistIterator<QORQL_OrderByHelper> iterator(entries);
  while (++iterator) sorted->append(iterator.key().GetRow());
  table.setRows(sorted);
}

std::vector<QORuint32> sortedByList(QORQL_RowReader& reader, std::size_t slot, bool isAscending) {
  HelperList entries;
  QORQL_StopCheck stopCheck;
  for (QORuint32 row = 0; row < reader.rowCount(); ++row) {
    stopCheck.count();
    reader.select(row);
    entries.append(QORQL_OrderByHelper(reader.value(slot), row));
  }
  entries.sort(orderOf(isAscending));
  std::vector<QORuint32> numbers;
  QORValSlistIterator<QORQL_OrderByHelper> iterator(entries);
  while (++iterator) numbers.push_back(iterator.key().getNumber());
  return numbers;
}

// Both read the key of every row; false at one that cannot be sorted so.
bool readKeys(QORQL_RowReader& reader, std::size_t slot, QORQL_SortKeys& keys) {
  QORQL_StopCheck stopCheck;
  for (QORuint32 row = 0; row < reader.rowCount(); ++row) {
    stopCheck.count();
    reader.select(row);
    Value holder;
    const QoriScalar key = reader.view(slot, holder);
    if (!keys.add(key, holder)) return false;
  }
  return true;
}

bool readProperties(QORQL_RowReader& reader, std::size_t slot, QORQL_SortKeys& keys) {
  const std::size_t offset = reader.cellOffset(slot);
  QORQL_StopCheck stopCheck;
  for (QORuint64 row = 0; row < reader.rowCount();) {
    reader.select(row);
    const std::size_t run = reader.runLength();
    stopCheck.count(run);
    if (!keys.add(reader.cells() + offset, run)) return false;
    row += run;
  }
  return true;
}

std::vector<QORuint32> sortedNumbers(QORQL_RowReader& reader, std::size_t slot, bool isAscending) {
  if (!reader.isBound(slot)) return sortedByList(reader, slot, isAscending);  // reads each key once
  QORQL_SortKeys keys;
  keys.reserve(reader.rowCount());
  const bool areRead = reader.isProperty(slot) ? readProperties(reader, slot, keys) : readKeys(reader, slot, keys);
  return areRead && keys.areSortable() ? keys.takeSorted(isAscending) : sortedByList(reader, slot, isAscending);
}

// The tuples of the given rows of a block.
std::vector<QORuint32> tuplesOf(const QORQL_RowBlock& block, std::vector<QORuint32> numbers) {
  const std::size_t width = block.columns.size();
  if (width == 1) {
    for (QORuint32& number : numbers) number = block.index(number, 0);
    return numbers;
  }
  std::vector<QORuint32> tuples;
  tuples.reserve(numbers.size() * width);
  for (const QORuint32 row : numbers) {
    for (std::size_t place = 0; place < width; ++place) tuples.push_back(block.index(row, place));
  }
  return tuples;
}

void sortLazily(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                const QORSmrPtr<QORQL_Evaluatable>& key, bool isAscending) {
  std::vector<QORuint32> numbers;
  {
    QORQL_RowReader reader(symbolTable, table);
    const std::size_t slot = reader.addExpression(key);
    numbers = sortedNumbers(reader, slot, isAscending);
  }
  if (numbers.empty()) return;
  if (table->lazy()->results() != nullptr) table->lazy()->ownResults().reorder(numbers);
  QORQL_RowBlock& block = table->lazy()->ownRows().blocks().front();
  block.tuples = tuplesOf(block, std::move(numbers));
  block.isWholeExtent = false;
}

}  // namespace

void QORQL_OrderByClause::execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                  std::ostream* /*out*/, const QORString& /*nameSpace*/) {
  const QORQL_StepScope step(QORQL_ExecutionMonitor::kStepSort, QORString::emptyString());
  try {
    if (table->lazy() == nullptr) {
      sortRows(symbolTable, *table, *_expression, _isSortAscending);
    } else {
      sortLazily(symbolTable, table, _expression, _isSortAscending);
    }
  } catch (const QORQL_StoppedException&) {
    throw;
  } catch (...) {
    throw QORQL_Exception(QORQL_Exception::QORQL_INTERNAL_ERROR, QORQL_ExecutionMessages::kSortFailed,
                          QORQL_sortFault(symbolTable, table, _expression));
  }
}
