// The table: headers and rows with their checks, and the change from lazy to real rows.
#include "Cimom/QORQL/QORQL_DataTable.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_LazyTable.h"
#include "Cimom/QORQL/QORQL_Log.h"

namespace Messages = QORQL_ExecutionMessages;

QORQL_DataTable::QORQL_DataTable() : _columnHeader(HeaderList::Make()), _rows(RowList::Make()) {}

// Adds the table's own, empty list to itself: callers rely on adding columns themselves.
QORQL_DataTable::QORQL_DataTable(const HeaderList& /*headers*/) : QORQL_DataTable() {
  addColumns(_columnHeader, false);
}

QORQL_DataTable::~QORQL_DataTable() {
  QORValSlistIterator<QORSmrPtr<QORQL_DataRow>> rows(*_rows);
  while (++rows) {
    QORQL_DataRow* const row = rows.key().Get();
    if (row != nullptr && row->getParentTable() == this) row->setParentTable(nullptr);
  }
}

void QORQL_DataTable::addColumn(const QORSmrPtr<QORQL_TableHeader>& header, QORuint32 index, QORboolean addToRows) {
  if (header.IsNull()) return;
  materialise();
  if (index > getColumnCount()) QORQL_logAndThrow(Messages::kColumnIndexTooGreat);
  _columnHeader->insertAt(index, header);
  if (!addToRows) return;
  QORValSlistIterator<QORSmrPtr<QORQL_DataRow>> rows(*_rows);
  while (++rows) {
    if (!rows.key().IsNull()) rows.key()->addCell(index, QORSmrPtr<IQoriObject>());
  }
}

void QORQL_DataTable::addColumns(const HeaderList& headers, QORboolean flag) {
  if (headers.IsNull()) return;
  QORValSlistIterator<QORSmrPtr<QORQL_TableHeader>> iterator(*headers);
  while (++iterator) addColumn(iterator.key(), flag ? 1U : 0U, false);
}

void QORQL_DataTable::addRow(const QORSmrPtr<QORQL_DataRow>& row) {
  if (row.IsNull()) return;
  materialise();
  if (row->getCellCount() > getColumnCount()) QORQL_logAndThrow(Messages::kRowInconsistent);
  _rows->append(row);
  row->setParentTable(this);
}

void QORQL_DataTable::addRows(const RowList& rows) {
  if (rows.IsNull()) return;
  QORValSlistIterator<QORSmrPtr<QORQL_DataRow>> iterator(*rows);
  while (++iterator) addRow(iterator.key());
}

void QORQL_DataTable::setRows(const RowList& rows) {
  _lazy.reset();
  _rows->clear();
  addRows(rows);
}

void QORQL_DataTable::checkCell(QORuint32 row, QORuint32 column) const {
  if (getRowCount() < row || getColumnCount() < column) QORQL_logAndThrow(Messages::kCellOutsideTable);
}

void QORQL_DataTable::addRowCell(QORuint32 row, QORuint32 column, const QORSmrPtr<IQoriObject>& object) {
  checkCell(row, column);
  const QORSmrPtr<QORQL_DataRow> target(getRow(row));
  if (!target.IsNull()) target->addCell(column, object);
}

QORSmrPtr<IQoriObject> QORQL_DataTable::getCell(QORuint32 row, QORuint32 column) {
  checkCell(row, column);
  return getRow(row)->getCell(column);
}

QORSmrPtr<QORQL_DataRow> QORQL_DataTable::getRow(QORuint32 index) {
  materialise();
  return _rows->at(index);
}

QORQL_DataTable::RowList QORQL_DataTable::getRows() {
  materialise();
  return _rows;
}

QORSmrPtr<QORQL_TableHeader> QORQL_DataTable::getColumnHeader(QORuint32 index) const {
  return _columnHeader->at(index);
}

QORSmrPtr<QORQL_TableHeader> QORQL_DataTable::getColumnHeaderByName(const QORString& name) const {
  const QORsint32 index = getColumnIndex(name);
  return index < 0 ? QORSmrPtr<QORQL_TableHeader>() : _columnHeader->at(static_cast<QORuint32>(index));
}

QORsint32 QORQL_DataTable::findColumn(const QORString& name, QORsint32 leftOut) const {
  QORValSlistIterator<QORSmrPtr<QORQL_TableHeader>> headers(*_columnHeader);
  for (QORsint32 index = 0; ++headers; ++index) {
    if (index != leftOut && !headers.key().IsNull() && headers.key()->isNamed(name)) return index;
  }
  return -1;
}

QORsint32 QORQL_DataTable::getColumnIndex(const QORString& name) const { return findColumn(name, -1); }

QORsint32 QORQL_DataTable::getObjectColumn(const QORString& name) const {
  const QORsint32 column = findColumn(name, _functionColumn);
  return column < 0 ? getColumnIndex(name) : column;
}

QORuint32 QORQL_DataTable::getRowCount() const noexcept {
  if (_lazy == nullptr) return _rows->entries();
  constexpr QORuint64 kGreatest = std::numeric_limits<QORuint32>::max();
  const QORuint64 count = _lazy->rows()->rowCount();
  return static_cast<QORuint32>(count < kGreatest ? count : kGreatest);
}

QORuint32 QORQL_DataTable::getColumnCount() const noexcept { return _columnHeader->entries(); }

void QORQL_DataTable::setServerAddressInfo(const QORString& address, const QORString& port) {
  _hostAddress = address;
  _hostPort = port;
}

// Unknown moves to either state; all-pre-filtered only to some-not; nothing moves back.
void QORQL_DataTable::setCellPreFiltered(QORboolean preFiltered) noexcept {
  if (!preFiltered) {
    _cellsPreFiltered = kCellsPreFiltered_someNotPreFiltered;
  } else if (_cellsPreFiltered == kCellsPreFiltered_unknown) {
    _cellsPreFiltered = kCellsPreFiltered_allPreFiltered;
  }
}

void QORQL_DataTable::inherit(const QORQL_DataTable& other) {
  _hostAddress = other._hostAddress;
  _hostPort = other._hostPort;
  _cellsPreFiltered = other._cellsPreFiltered;
  _executionMode = other._executionMode;
}

void QORQL_DataTable::setProjected(std::vector<QORuint32> cellOfColumn) {
  _isProjected = true;
  _cellOfColumn = std::move(cellOfColumn);
}

bool QORQL_DataTable::hasOpenTie(const QORString& associationClass) const noexcept {
  return std::any_of(_openTies.begin(), _openTies.end(),
                     [&](const QORQL_AssociationTie& tie) { return tie.association == associationClass; });
}

std::vector<QORQL_AssociationTie> QORQL_DataTable::takeOpenTies(const QORString& associationClass) {
  std::vector<QORQL_AssociationTie> taken;
  std::vector<QORQL_AssociationTie> left;
  for (QORQL_AssociationTie& tie : _openTies) {
    (tie.association == associationClass ? taken : left).push_back(std::move(tie));
  }
  _openTies = std::move(left);
  return taken;
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
  for (const QORQL_RowBlock& block : rows.blocks()) {
    for (QORuint64 row = 0; row < block.rowCount; ++row) {
      stopCheck.count();
      view.select(block, row);
      made.append(_lazy->makeRow(view));
      made.last()->setParentTable(this);
    }
  }
  *_rows = std::move(made);
  _lazy.reset();
}
