// The projection: brings missing classes into the table, builds the result
// table and, when there is a stream, writes it as an XML table.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <ostream>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/Out/QORQL_ResultStream.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_Helper.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/Run/QORQL_LazyFunctions.h"
#include "Cimom/QORQL/Run/QORQL_ProjectionPlan.h"

namespace Messages = QORQL_ExecutionMessages;

const QORString QORQL_SelectList::_FUNCTIONS_VALUES_CLASS("VALUES");
const QORString QORQL_SelectList::DEFAULT_COLUMN_DATA_TYPE("String");
const QORString QORQL_SelectList::XML_LT("&lt;");
const QORString QORQL_SelectList::XML_GT("&gt;");
const QORString QORQL_SelectList::XML_QUOTE("&quot;");
const QORString QORQL_SelectList::HTML_LINE_FEED("&#10;");
const QORString QORQL_SelectList::HTML_SPACE("&#32;");

namespace {

constexpr QORuint32 kAggregateError = 15;

// Holds each text once more, and is never destroyed: queries may still run while the process ends.
[[gnu::used]] const auto& theKeptTexts = *new std::array<QORString, 7>{QORQL_SelectList::_FUNCTIONS_VALUES_CLASS,
                                                                       QORQL_SelectList::DEFAULT_COLUMN_DATA_TYPE,
                                                                       QORQL_SelectList::XML_LT,
                                                                       QORQL_SelectList::XML_GT,
                                                                       QORQL_SelectList::XML_QUOTE,
                                                                       QORQL_SelectList::HTML_LINE_FEED,
                                                                       QORQL_SelectList::HTML_SPACE};

using EntryIterator = QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>>;

// Where the projected table keeps the cell of each column: adding the headers
// one by one at the front has reversed them, while cells follow their order. A single one stays where it is.
std::vector<QORuint32> reversedPositions(QORuint32 count) {
  if (count < 2) return {};
  std::vector<QORuint32> positions(count);
  for (QORuint32 column = 0; column < count; ++column) positions[column] = count - 1 - column;
  return positions;
}

}  // namespace

void QORQL_SelectList::execute(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, std::ostream* out,
                               const QORString& nameSpace) {
  const QORQL_StepScope step(QORQL_ExecutionMonitor::kStepProject, QORString::emptyString());
  _updateTableIfRequired(symbolTable, table, nameSpace);
  const QORQL_ProjectionPlan plan(*this, symbolTable, *table);
  Table result(Table::Make());
  result->inherit(*table);
  const HeaderList headers(_buildTableHeader(table, plan));
  result->addColumns(headers, false);
  result->setProjected(reversedPositions(headers->entries()));
  if (plan.hasFunctions()) result->setFunctionColumn(0);  // the last header comes first
  if (!_projectLazily(symbolTable, table, result, headers, plan)) {
    result->addRows(_buildTableRows(table, result, symbolTable, headers, plan));
  }
  table = result;
  if (out == nullptr) return;
  _typeCheckAggregateEntries(table);
  QORQL_ResultStream(*this, symbolTable, table, *out).write();
}

// A projected table has what the entries name; nothing is fetched for it.
void QORQL_SelectList::_updateTableIfRequired(QORQL_SymbolTable& symbols, Table& table,
                                              const QORString& nameSpace) const {
  if (table->isProjected()) return;
  QORValSlist<QORString> missing;
  EntryIterator entries(*_selectedEntries);
  while (++entries) {
    if (entries.key()->getClassNameList().IsNull()) continue;
    QORValSlistIterator<QORSmrPtr<QORString>> names(*entries.key()->getClassNameList());
    while (++names) {
      if (names.key()->isEmpty()) continue;
      const QORString className(symbols.classNameOf(*names.key()));
      if (table->getColumnIndex(className) < 0 && !missing.contains(className)) missing.append(className);
    }
  }
  QORValSlistIterator<QORString> iterator(missing);
  while (++iterator) {
    QORQL_Helper::updateTable(iterator.key(), symbols, table, nameSpace, _queryString, _queryLanguage);
  }
}

// The columns of what is kept, each once, then that of the function results.
QORQL_SelectList::HeaderList QORQL_SelectList::_buildTableHeader(const Table& table, const QORQL_ProjectionPlan& plan) {
  HeaderList headers(HeaderList::Make());
  QORQL_FewList<QORsint32, 8> seen;
  for (const QORQL_ProjectionPlan::Item& item : plan.items()) {
    const QORsint32 column = table->getObjectColumn(item.className);
    if (column < 0 || std::find(seen.begin(), seen.end(), column) != seen.end()) continue;
    seen.push_back(column);
    headers->append(table->getColumnHeader(static_cast<QORuint32>(column)));
  }
  if (plan.hasFunctions()) {
    const QORString& none = QORString::emptyString();
    headers->append(QORSmrPtr<QORQL_TableHeader>::Make(_FUNCTIONS_VALUES_CLASS, none, none));
  }
  return headers;
}

namespace {

// What a lazy projection keeps of each column.
using Kept = QORQL_LazyTable::Cells;

// Every object that may be read has the property.
bool hasProperty(const QORQL_Extent& extent, const QORString& propertyName) {
  for (const IQoriLayout* layout : extent.layouts()) {
    if (layout->getPosition(propertyName) < 0) return false;
  }
  return true;
}

bool keepLazily(const QORQL_DataTable& table, const QORQL_ProjectionPlan& plan, Kept& kept) {
  const QORQL_LazyTable& lazy = *table.lazy();
  kept.resize(lazy.rows()->columnCount());
  for (const QORQL_ProjectionPlan::Item& item : plan.items()) {
    const QORsint32 column = table.getColumnIndex(item.className);
    if (table.getColumnIndex(item.written) != column) return false;  // the other alias of a class that FROM has twice
    if (column < 0) continue;
    const QORuint32 source = lazy.sourceColumn(table.cellOfColumn(static_cast<QORuint32>(column)));
    const QORQL_Extent& extent = lazy.rows()->extent(source);
    if (!extent.hasLayouts()) return false;
    if (item.namesObjectOnly) continue;
    if (item.keepsAll()) {
      kept[source].allProperties = true;
    } else if (hasProperty(extent, item.propertyName)) {
      kept[source].properties.push_back(item.propertyName);
    } else if (!item.isForSort) {
      return false;
    }
  }
  return true;
}

}  // namespace

// A lazy projection of a projection reads the same objects: what the first run
// kept for the sort alone is dropped by naming fewer properties.
bool QORQL_SelectList::_projectLazily(QORQL_SymbolTable& symbols, Table& table, const Table& resultTable,
                                      const HeaderList& headers, const QORQL_ProjectionPlan& plan) const {
  if (table->lazy() == nullptr) return false;
  Kept kept;
  if (!keepLazily(*table, plan, kept)) return false;
  std::shared_ptr<QORQL_LazyResults> results;
  if (plan.hasFunctions()) {
    results = table->isProjected() ? table->lazy()->results() : QORQL_computeLazily(*this, symbols, table);
    if (results == nullptr) return false;
  }
  QORQL_LazyTable::Cells cells;
  QORValSlistIterator<QORSmrPtr<QORQL_TableHeader>> iterator(*headers);
  while (++iterator) {
    if (cells.size() + 1 == headers->entries() && results != nullptr) break;  // the column of function results
    const QORuint32 column = static_cast<QORuint32>(table->getColumnIndex(iterator.key()->getName()));
    const QORuint32 source = table->lazy()->sourceColumn(table->cellOfColumn(column));
    kept[source].sourceColumn = source;
    cells.push_back(kept[source]);
  }
  if (cells.empty() && results == nullptr) return false;
  auto lazy = std::make_unique<QORQL_LazyTable>(table->lazy()->rows());
  lazy->project(std::move(cells), std::move(results));
  resultTable->setLazy(std::move(lazy));
  return true;
}

void QORQL_SelectList::_typeCheckAggregateEntries(const Table& table) const {
  if (table->getRowCount() == 0) return;
  EntryIterator entries(*_selectedEntries);
  while (++entries) {
    const QORQL_SelectedEntry& entry = *entries.key();
    if (!entry.isEntryAggregate()) continue;
    const QORSmrPtr<IQoriValue>& value = entry.GetAggregateValue();
    if (value.IsNull()) throw QORQL_ParseException(kAggregateError, Messages::kAggregateNull, 0);
    if (entry.GetFunctionID() != QORQL_FUNCTIONID_COUNT && !QORQL_Helper::isNumeric(value->getType()->getName())) {
      throw QORQL_ParseException(kAggregateError, Messages::kAggregateResultNotNumeric, 0);
    }
  }
}
