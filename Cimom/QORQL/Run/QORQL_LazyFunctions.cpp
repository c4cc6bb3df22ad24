// INSTANCEOF by itself needs no row; other expressions are evaluated on one that is filled for them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Run/QORQL_LazyFunctions.h"

#include <utility>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

namespace {

using Entry = QORQL_SelectedEntry;
using Value = QORSmrPtr<IQoriValue>;

// The function that the entry consists of; null when there is something around it.
const QORQL_Function* soleFunction(const Entry& entry) {
  return QORQL_nodeAs<QORQL_Function>(QORQL_peel(entry.getExpression().Get()));
}

// A function that is computed for each row.
class Computed {
 public:
  Computed(const Entry& entry, QORQL_SymbolTable& symbols, QORSmrPtr<QORQL_DataTable>& table)
      : _symbols(symbols), _table(table), _expression(entry.getExpression().Get()) {
    const QORQL_Function* const function = soleFunction(entry);
    if (function == nullptr || function->getFunctionID() != QORQL_FUNCTIONID_INSTANCEOF) return;
    const QORSmrPtr<QORString> className(function->argumentClass());
    if (className.IsNull()) return;
    _column = QORQL_Binder(*table).sourceColumn(*className);
    _isComplete = QORQL_Function::isComplete(symbols, *className);
  }

  // What cannot be computed keeps the value of the row before.
  void compute(const QORQL_RowView& view) {
    try {
      _last = valueOn(view);
    } catch (...) {
    }
    values.push_back(_last);
  }

  std::vector<Value> values;

 private:
  Value valueOn(const QORQL_RowView& view) const {
    if (_column < 0) return evaluate(view);
    const QORuint32 column = static_cast<QORuint32>(_column);
    if (view.object(column) == nullptr) return {};
    return QORQL_Function::instanceOf(view.rows().pointer(column, view.index(column)), _isComplete);
  }
  Value evaluate(const QORQL_RowView& view) const {
    auto row = QORSmrPtr<QORQL_DataRow>::Make();
    _table->lazy()->fillRow(view, *row);
    row->setParentTable(_table.Get());
    return _expression->evaluate(_symbols, row);
  }

  QORQL_SymbolTable& _symbols;
  QORSmrPtr<QORQL_DataTable>& _table;
  QORQL_Evaluatable* _expression;
  QORsint32 _column = -1;  // of INSTANCEOF's class, where the entry is nothing else
  bool _isComplete = false;
  Value _last;
};

// Whether the functions of the list are row functions of different ids beside plain columns.
bool mayBeLazy(const QORQL_SelectList& list, const QORQL_DataTable& table) {
  if (table.getColumnIndex(QORQL_SelectList::_FUNCTIONS_VALUES_CLASS) >= 0) return false;
  QORQL_LazyResults ids;
  QORValSlistIterator<QORSmrPtr<Entry>> entries(*list.getSelectedEntries());
  while (++entries) {
    const Entry& entry = *entries.key();
    if (entry.isSelectAll() || entry.isEntryAggregate()) return false;
    if (entry.GetFunctionID() == QORQL_FUNCTIONID_UNKNOWN) continue;
    const QORString id(QORQL_SelectList::_functionID(entry));
    if (ids.find(id) >= 0) return false;
    ids.add({id, nullptr, {}});
  }
  return true;
}

// The form of an entry that is an object path and nothing else; null for every other one.
std::shared_ptr<const QORQL_BoundValue> bindPath(const Entry& entry, const QORQL_DataTable& table) {
  const QORQL_Function* const function = soleFunction(entry);
  if (function == nullptr || function->getFunctionID() != QORQL_FUNCTIONID_OBJECTPATH) return nullptr;
  return QORQL_Binder(table).bind(entry.getExpression());
}

// About what a value and the pointer to it take.
constexpr QORuint64 kValueBytes = 80;

void computeRows(QORQL_DataTable& table, std::vector<Computed>& computed) {
  QORQL_LazyRows& rows = table.lazy()->ownRows();
  rows.flatten();
  QORQL_RowView view(rows);
  QORQL_StopCheck stopCheck;
  if (computed.empty()) return;
  for (const QORQL_RowBlock& block : rows.blocks()) {
    stopCheck.hold(block.rowCount, computed.size() * kValueBytes);
    for (Computed& function : computed) function.values.reserve(block.rowCount);
    for (QORuint64 row = 0; row < block.rowCount; ++row) {
      stopCheck.count();
      view.select(block, row);
      for (Computed& function : computed) function.compute(view);
    }
  }
}

}  // namespace

std::shared_ptr<QORQL_LazyResults> QORQL_computeLazily(const QORQL_SelectList& list, QORQL_SymbolTable& symbols,
                                                       QORSmrPtr<QORQL_DataTable>& table) {
  if (!mayBeLazy(list, *table)) return nullptr;
  std::vector<QORQL_LazyResults::Function> functions;
  std::vector<Computed> computed;
  QORValSlistIterator<QORSmrPtr<Entry>> entries(*list.getSelectedEntries());
  while (++entries) {
    const Entry& entry = *entries.key();
    if (entry.GetFunctionID() == QORQL_FUNCTIONID_UNKNOWN) continue;
    functions.push_back({QORQL_SelectList::_functionID(entry), bindPath(entry, *table), {}});
    if (functions.back().bound == nullptr) computed.emplace_back(entry, symbols, table);
  }
  computeRows(*table, computed);
  auto results = std::make_shared<QORQL_LazyResults>();
  auto next = computed.begin();
  for (QORQL_LazyResults::Function& function : functions) {
    if (function.bound == nullptr) function.values = std::move(next++->values);
    results->add(std::move(function));
  }
  return results;
}
