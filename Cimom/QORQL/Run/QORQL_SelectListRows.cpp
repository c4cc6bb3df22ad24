// Building projected rows: for each class a copy of the row's object with the
// properties that are kept, and the pseudo-object of function results.
// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_Log.h"
#include "Cimom/QORQL/QORQL_MapBuckets.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/Run/QORQL_ProjectionPlan.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriProperty.h"

namespace Messages = QORQL_ExecutionMessages;

namespace {

using Row = QORSmrPtr<QORQL_DataRow>;
using EntryIterator = QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>>;

void addOnce(QORValSlist<QORString>& names, const QORString& name) {
  if (!names.contains(name)) names.append(name);
}

// The property that an item names of the row's object. Null for one that only the sort key
// names and that the object lacks: the sort fails on it.
QORSmrPtr<IQoriProperty> propertyOf(const QORQL_DataRow& row, const QORQL_ProjectionPlan::Item& item) {
  try {
    return row.getPropertyByName(item.written, item.propertyName);
  } catch (const QORQL_Exception&) {
    if (!item.isForSort) throw;
    return {};
  }
}

}  // namespace

QORString QORQL_SelectList::_functionID(const QORQL_SelectedEntry& entry) {
  if (!entry.getAlias().isEmpty()) return entry.getAlias();
  return QORString(QORQL_functionName(entry.GetFunctionID())) + "_" + entry.getClassName() + "_" +
         entry.getPropertyName();
}

QORSmrPtr<IQoriValue>& QORQL_SelectList::_getFunctionResult(const QORQL_SelectedEntry& entry,
                                                            const ResultSlots& slots) {
  const auto slot = slots.find(_functionID(entry).view());
  if (slot == slots.end()) throw std::runtime_error(Messages::kResultNotFound);
  return *slot->second;
}

QORSmrPtr<IQoriObject> QORQL_SelectList::_functionResultsToObject(const FunctionResults& results) {
  QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList());
  QORValSlistIterator<FunctionResult> iterator(results.results);
  while (++iterator) properties->append(new CQoriProperty(iterator.key().id, iterator.key().result, true));
  return valuesObject(properties);
}

QORSmrPtr<IQoriObject> QORQL_SelectList::valuesObject(const QORSmrPtr<CQoriBaseObject::PropertyList>& properties) {
  return QORSmrPtr<IQoriObject>(new CQoriBaseObject("interop", _FUNCTIONS_VALUES_CLASS, "key", properties));
}

QORQL_SelectList::PropertyList QORQL_SelectList::_getPropList(const QORString& className, PropertyListMap& map) {
  PropertyList& list = map[className];
  if (list.IsNull()) list = new QORValSlist<QORString>();
  return list;
}

void QORQL_SelectList::_addAllProperties(const QORString& className, const QORSmrPtr<IQoriObject>& object,
                                         PropertyListMap& map) {
  if (object.IsNull()) return;
  const PropertyList list(_getPropList(className, map));
  for (QORuint32 i = 0; i < object->getPropertyCount(); ++i) addOnce(*list, object->getPropertyAt(i)->getName());
}

std::vector<QORQL_SelectList::RowFunction> QORQL_SelectList::_rowFunctions(FunctionResults& results) const {
  ResultSlots slots;
  QORValSlistIterator<FunctionResult> iterator(results.results);
  while (++iterator) slots.emplace(iterator.key().id.view(), &iterator.key().result);
  std::vector<RowFunction> functions;
  EntryIterator entries(*_selectedEntries);
  while (++entries) {
    const QORQL_SelectedEntry& entry = *entries.key();
    const bool isRowFunction =
        entry.GetFunctionID() == QORQL_FUNCTIONID_OBJECTPATH || entry.GetFunctionID() == QORQL_FUNCTIONID_INSTANCEOF;
    if (!isRowFunction || entry.getExpression().IsNull()) continue;
    functions.push_back({entry.getExpression().Get(), &_getFunctionResult(entry, slots)});
  }
  return functions;
}

// An entry that cannot be computed keeps the value of the row before.
void QORQL_SelectList::_evaluateRowFunctions(QORQL_SymbolTable& symbols, Row& row,
                                             const std::vector<RowFunction>& functions) {
  for (const RowFunction& function : functions) {
    try {
      *function.result = function.expression->evaluate(symbols, row);
    } catch (...) {
      continue;
    }
  }
}

Row QORQL_SelectList::_buildRow(Row& row, const Table& resultTable, const HeaderList& headers,
                                const QORQL_ProjectionPlan& plan, const QORSmrPtr<IQoriObject>& values) const {
  PropertyListMap lists(hashKeyQORString, QORQL_kMapBuckets);
  for (const QORQL_ProjectionPlan::Item& item : plan.items()) {
    if (item.namesObjectOnly) continue;
    if (item.keepsAll()) {
      _addAllProperties(item.className, row->getCell(item.written), lists);
      continue;
    }
    const PropertyList list(_getPropList(item.className, lists));
    const QORSmrPtr<IQoriProperty> property(propertyOf(*row, item));
    if (!property.IsNull()) addOnce(*list, property->getName());
  }
  Row built(Row::Make());
  built->setParentTable(resultTable.Get());
  QORValSlistIterator<QORSmrPtr<QORQL_TableHeader>> iterator(*headers);
  for (QORuint32 cell = 0; ++iterator; ++cell) {
    const QORString name(iterator.key()->getName());
    const bool isValues = plan.hasFunctions() && cell + 1 == headers->entries();
    QORSmrPtr<IQoriObject> object(isValues ? values : row->getCell(name));
    if (!isValues && !object.IsNull()) object = new CQoriBaseObject(object, _getPropList(name, lists), true);
    built->addCell(cell, object);
  }
  return built;
}

void QORQL_SelectList::_buildRows(Table& table, const Table& resultTable, QORQL_SymbolTable& symbols,
                                  const HeaderList& headers, const QORQL_ProjectionPlan& plan, FunctionResults& results,
                                  const RowList& rows) const {
  const bool isProjected = table->isProjected();
  const std::vector<RowFunction> functions(isProjected ? std::vector<RowFunction>() : _rowFunctions(results));
  QORQL_StopCheck stopCheck;
  QORValSlistIterator<Row> iterator(*table->getRows());
  while (++iterator) {
    stopCheck.count();
    stopCheck.hold(rows->entries(), QORQL_StopCheck::rowBytes(headers->entries()));
    Row& row = iterator.key();
    if (row.IsNull()) continue;
    QORSmrPtr<IQoriObject> values;
    if (isProjected) {
      values = row->getFunctionResults();  // computed by the first run
    } else if (results.hasFunctions) {
      _evaluateRowFunctions(symbols, row, functions);
      values = _functionResultsToObject(results);
    }
    rows->append(_buildRow(row, resultTable, headers, plan, values));
  }
}

// Aggregates are computed before the guard: their errors reach the caller.
QORQL_SelectList::RowList QORQL_SelectList::_buildTableRows(Table& table, const Table& resultTable,
                                                            QORQL_SymbolTable& symbols, const HeaderList& headers,
                                                            const QORQL_ProjectionPlan& plan) const {
  const QORSmrPtr<FunctionResults> results(_getFunctionResults(symbols, table));
  RowList rows(RowList::Make());
  try {
    if (results->hasOnlyAggregateFunctions) {
      Row row(Row::Make());
      row->setParentTable(resultTable.Get());
      row->addCell(0, _functionResultsToObject(*results));
      rows->append(row);
    } else {
      _buildRows(table, resultTable, symbols, headers, plan, *results, rows);
    }
  } catch (const QORQL_StoppedException&) {
    throw;
  } catch (...) {
    QORQL_reportEarlyEnd(Messages::kBuildingFailed);
  }
  return rows;
}
