// The operations of the table that know of lazy rows: how they are added and counted,
// and how they become real rows.
// SPDX-License-Identifier: Apache-2.0
#include <limits>
#include <utility>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"

QORQL_DataTable::QORQL_DataTable() : _columnHeader(HeaderList::Make()) {}

// Adds the table's own, empty list to itself: callers rely on adding columns themselves.
QORQL_DataTable::QORQL_DataTable(const HeaderList& /*headers*/) : QORQL_DataTable() {
  addColumns(_columnHeader, false);
}

QORQL_DataTable::~QORQL_DataTable() {
  if (_rows.IsNull()) return;
  QORValSlistIterator<QORSmrPtr<QORQL_DataRow>> rows(*_rows);
  while (++rows) {
    QORQL_DataRow* const row = rows.key().Get();
    if (row != nullptr && row->getParentTable() == this) row->setParentTable(nullptr);
  }
}

QORQL_DataTable::RowList& QORQL_DataTable::ownRows() {
  if (_rows.IsNull()) _rows = RowList::Make();
  return _rows;
}

void QORQL_DataTable::setRows(const RowList& rows) {
  _lazy.reset();
  ownRows()->clear();
  addRows(rows);
}

QORuint32 QORQL_DataTable::getRowCount() const noexcept {
  if (_lazy == nullptr) return _rows.IsNull() ? 0 : _rows->entries();
  constexpr QORuint64 kGreatest = std::numeric_limits<QORuint32>::max();
  const QORuint64 count = _lazy->rows()->rowCount();
  return static_cast<QORuint32>(count < kGreatest ? count : kGreatest);
}

void QORQL_DataTable::setLazy(std::unique_ptr<QORQL_LazyTable> lazy) { _lazy = std::move(lazy); }

void QORQL_DataTable::addExtent(const QORSmrPtr<QORQL_TableHeader>& header,
                                std::shared_ptr<const QORQL_Extent> extent) {
  if (_lazy == nullptr) _lazy = std::make_unique<QORQL_LazyTable>(std::make_shared<QORQL_LazyRows>());
  _columnHeader->append(header);
  _lazy->ownRows().addExtent(std::move(extent));
}

void QORQL_DataTable::materialise() {
  if (_lazy == nullptr) return;
  QORQL_LazyRows& rows = _lazy->ownRows();
  rows.flatten();
  QORValSlist<QORSmrPtr<QORQL_DataRow>> made;
  QORQL_RowView view(rows);
  QORQL_StopCheck stopCheck;
  stopCheck.hold(rows.rowCount(), QORQL_StopCheck::rowBytes(getColumnCount()));
  for (const QORQL_RowBlock& block : rows.blocks()) {
    for (QORuint64 row = 0; row < block.rowCount; ++row) {
      stopCheck.count();
      view.select(block, row);
      made.append(_lazy->makeRow(view));
      made.last()->setParentTable(this);
    }
  }
  *ownRows() = std::move(made);
  _lazy.reset();
}
