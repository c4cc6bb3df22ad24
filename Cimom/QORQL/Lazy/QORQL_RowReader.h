// Reads columns off a table row by row, whether its rows exist or not.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_ROWREADER_H
#define QORQL_ROWREADER_H

#include <optional>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_BoundExpression.h"
#include "Cimom/QORQL/Lazy/QORQL_CellWindow.h"
#include "Cimom/QORQL/Lazy/QORQL_LazyRows.h"
#include "Cimom/QORQL/QORQL_DataTable.h"

class QORQL_SelectedEntry;
class QORQL_SymbolTable;

// BORROWS its arguments; the table must not change meanwhile. Slots are added
// first, then rows are selected (in any order; ascending is fastest).
class QORQL_RowReader {
 public:
  QORQL_RowReader(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table);
  ~QORQL_RowReader();

  // Each returns its slot's number: 0, 1, 2, ... An entry or expression is read
  // by QORQL_SelectedEntry::evaluate, QORQL_Evaluatable::evaluate.
  std::size_t addEntry(const QORSmrPtr<QORQL_SelectedEntry>& entry);
  std::size_t addExpression(const QORSmrPtr<QORQL_Evaluatable>& expression);
  // A property of the fetched object; NULL where the object has none of that name.
  std::size_t addFetchedProperty(const QORString& className, const QORString& propertyName);

  QORuint64 rowCount() const noexcept { return _rowCount; }
  // REQUIRES row < rowCount(). Costs nothing where rows do not exist.
  void select(QORuint64 row) {
    _current = row;
    _isViewSelected = false;
    _isRowFilled = false;
    if (!_view.has_value()) selectExisting();
  }
  // False for a null row of a table whose rows exist: it has no values.
  bool hasRow() const noexcept { return _view.has_value() || !_row.IsNull(); }

  // Whether reading the slot only looks at the fetched objects. Otherwise it
  // may ask the object manager, or log, each time.
  bool isBound(std::size_t slot) const noexcept;
  // The slot's value on the selected row; null when it has none. THROWS what evaluation throws.
  QORSmrPtr<IQoriValue> value(std::size_t slot);
  // A view of it, valid while `holder` and the row live. Makes no value for a
  // property, and leaves `holder` alone then.
  QoriScalar view(std::size_t slot, QORSmrPtr<IQoriValue>& holder) {
    const std::size_t column = _cellColumns[slot];
    return column == kNoColumn ? viewOfOther(slot, holder) : _window.cell(*_block, _current, column);
  }
  // Whether the slot is a property that every row's object has: reading it cannot fail.
  bool isProperty(std::size_t slot) const noexcept { return _cellColumns[slot] != kNoColumn; }
  // The cells of the selected row, valid until another one is selected: a slot that is a property lies at its offset.
  // REQUIRES such a slot.
  const QoriScalar* cells() { return _window.cells(*_block, _current); }
  // How many rows from the selected one on are at hand: the cell of the next row stands right behind, at each slot's
  // offset. At least 1. REQUIRES such a slot.
  std::size_t runLength() { return _window.runFrom(*_block, _current); }
  std::size_t cellOffset(std::size_t slot) const noexcept { return QORQL_CellWindow::offsetOf(_cellColumns[slot]); }
  // BORROWS: the property that such a slot is; its cells in the rows of block() can be read where they lie, without
  // selecting a row. REQUIRES such a slot.
  const QORQL_PropertyColumn& property(std::size_t slot) const noexcept;
  // BORROWS: the type of such a slot's value on the selected row, as long as the row's object lives; null where there
  // is no value, or one that is an array, a reference or an object. REQUIRES such a slot.
  const IQoriType* propertyType(std::size_t slot) { return property(slot).type(currentView()); }
  const QORQL_RowBlock& block() const noexcept { return *_block; }
  // The selected row's object of a class or alias; null when absent.
  QORSmrPtr<IQoriObject> object(const QORString& className);
  // BORROWS: the object as it was fetched, before the projection, where rows do
  // not exist; cheaper than object(). Null when absent.
  const IQoriObject* fetchedObject(const QORString& className);

 private:
  struct Slot;
  static constexpr std::size_t kNoColumn = ~std::size_t{0};

  std::size_t addSlot(Slot&& slot);
  void selectExisting();
  // The row as the bound slots read it.
  const QORQL_RowView& currentView();
  QoriScalar viewOfOther(std::size_t slot, QORSmrPtr<IQoriValue>& holder);
  QORSmrPtr<IQoriValue> evaluate(const Slot& slot);
  QORSmrPtr<QORQL_DataRow>& currentRow();
  // The cell of a class in lazy rows; -1 when there is none.
  QORsint32 lazyCell(const QORString& className) const;

  QORQL_SymbolTable& _symbolTable;
  QORSmrPtr<QORQL_DataTable>& _table;
  QORuint64 _rowCount = 0;
  QORuint64 _current = 0;
  std::vector<Slot> _slots;
  std::vector<std::size_t> _cellColumns;  // of each slot, in the window
  // Rows that exist.
  QORQL_DataTable::RowList _rows;
  QORSmrPtr<QORQL_DataRow> _row;
  // Rows that do not.
  const QORQL_RowBlock* _block = nullptr;
  std::optional<QORQL_RowView> _view;  // none for rows that exist
  QORQL_CellWindow _window;
  bool _isViewSelected = false;
  bool _isRowFilled = false;
};

#endif
