// Slots are bound to lazy rows where they can be; the others are evaluated on a
// row that is filled when the first of them asks.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_RowReader.h"

#include <utility>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/QORQL_SelectedEntry.h"

struct QORQL_RowReader::Slot {
  std::unique_ptr<QORQL_BoundValue> bound;  // null: evaluated on a row
  QORSmrPtr<QORQL_SelectedEntry> entry;
  QORSmrPtr<QORQL_Evaluatable> expression;
  QORString className;  // of a property of the fetched object; empty otherwise
  QORString propertyName;
};

QORQL_RowReader::QORQL_RowReader(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table)
    : _symbolTable(symbolTable), _table(table) {
  if (table->lazy() == nullptr) {
    _rows = table->getRows();
    _rowCount = _rows->entries();
    return;
  }
  QORQL_LazyRows& rows = table->lazy()->ownRows();
  rows.flatten();
  _rowCount = rows.rowCount();
  if (_rowCount != 0) _block = &rows.blocks().front();
  _view.emplace(rows);
}

QORQL_RowReader::~QORQL_RowReader() = default;

// Before the first row there is nothing to read ahead.
std::size_t QORQL_RowReader::addSlot(Slot&& slot) {
  constexpr std::size_t kFew = 4;
  if (_slots.empty()) {
    _slots.reserve(kFew);
    _cellColumns.reserve(kFew);
  }
  const QORQL_PropertyColumn* const property = slot.bound == nullptr ? nullptr : slot.bound->propertyColumn();
  _cellColumns.push_back(property == nullptr || _block == nullptr ? kNoColumn : _window.add(*property));
  _slots.push_back(std::move(slot));
  return _slots.size() - 1;
}

std::size_t QORQL_RowReader::addEntry(const QORSmrPtr<QORQL_SelectedEntry>& entry) {
  Slot slot;
  slot.entry = entry;
  if (_view.has_value()) slot.bound = QORQL_Binder(*_table).bindEntry(*entry);
  return addSlot(std::move(slot));
}

std::size_t QORQL_RowReader::addExpression(const QORSmrPtr<QORQL_Evaluatable>& expression) {
  Slot slot;
  slot.expression = expression;
  if (_view.has_value()) slot.bound = QORQL_Binder(*_table).bind(expression);
  return addSlot(std::move(slot));
}

std::size_t QORQL_RowReader::addFetchedProperty(const QORString& className, const QORString& propertyName) {
  Slot slot;
  slot.className = className;
  slot.propertyName = propertyName;
  if (_view.has_value()) slot.bound = QORQL_Binder(*_table).bindFetched(className, propertyName);
  return addSlot(std::move(slot));
}

void QORQL_RowReader::selectExisting() { _row = _rows->at(static_cast<QORuint32>(_current)); }

const QORQL_RowView& QORQL_RowReader::currentView() {
  if (!_isViewSelected) _view->select(*_block, _current);
  _isViewSelected = true;
  return *_view;
}

bool QORQL_RowReader::isBound(std::size_t slot) const noexcept { return _slots[slot].bound != nullptr; }

const QORQL_PropertyColumn& QORQL_RowReader::property(std::size_t slot) const noexcept {
  return *_slots[slot].bound->propertyColumn();
}

QORSmrPtr<QORQL_DataRow>& QORQL_RowReader::currentRow() {
  if (_view.has_value() && !_isRowFilled) {
    // A new row each time: a value may still refer to the cells of the last one.
    _row = new QORQL_DataRow();
    _table->lazy()->fillRow(currentView(), *_row);
    _row->setParentTable(_table.Get());
    _isRowFilled = true;
  }
  return _row;
}

QORSmrPtr<IQoriValue> QORQL_RowReader::evaluate(const Slot& slot) {
  if (!slot.className.isEmpty()) {
    const IQoriObject* const object = fetchedObject(slot.className);
    if (object == nullptr) return {};
    const QORSmrPtr<IQoriProperty> property(object->getProperty(slot.propertyName, true));
    return property.IsNull() ? QORSmrPtr<IQoriValue>() : property->getValue();
  }
  QORSmrPtr<QORQL_DataRow>& row = currentRow();
  if (!slot.entry.IsNull()) return slot.entry->evaluate(_symbolTable, row);
  return slot.expression->evaluate(_symbolTable, row);
}

QORSmrPtr<IQoriValue> QORQL_RowReader::value(std::size_t slot) {
  const Slot& read = _slots[slot];
  return read.bound == nullptr ? evaluate(read) : read.bound->value(currentView());
}

QoriScalar QORQL_RowReader::viewOfOther(std::size_t slot, QORSmrPtr<IQoriValue>& holder) {
  const Slot& read = _slots[slot];
  if (read.bound != nullptr) return read.bound->view(currentView(), holder);
  holder = evaluate(read);
  return holder.IsNull() ? QoriScalar() : holder->scalar();
}

QORsint32 QORQL_RowReader::lazyCell(const QORString& className) const {
  const QORsint32 column = className.isEmpty() ? -1 : _table->getColumnIndex(className);
  return column < 0 ? -1 : static_cast<QORsint32>(_table->cellOfColumn(static_cast<QORuint32>(column)));
}

QORSmrPtr<IQoriObject> QORQL_RowReader::object(const QORString& className) {
  if (!_view.has_value()) return _row->getCell(className);
  const QORsint32 cell = lazyCell(className);
  if (cell < 0) return {};
  return _table->lazy()->cellObject(currentView(), static_cast<QORuint32>(cell));
}

const IQoriObject* QORQL_RowReader::fetchedObject(const QORString& className) {
  if (!_view.has_value()) return _row->getCell(className).Get();
  const QORsint32 cell = lazyCell(className);
  if (cell >= 0 && _table->lazy()->hasResults(static_cast<QORuint32>(cell))) return nullptr;
  return cell < 0 ? nullptr : currentView().object(_table->lazy()->sourceColumn(static_cast<QORuint32>(cell)));
}
