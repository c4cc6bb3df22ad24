// The table: headers, rows and cells with their checks.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_DataTable.h"

#include <algorithm>
#include <utility>

#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_Log.h"

namespace Messages = QORQL_ExecutionMessages;

void QORQL_DataTable::addColumn(const QORSmrPtr<QORQL_TableHeader>& header, QORuint32 index, QORboolean addToRows) {
  if (header.IsNull()) return;
  materialise();
  if (index > getColumnCount()) QORQL_logAndThrow(Messages::kColumnIndexTooGreat);
  _columnHeader->insertAt(index, header);
  if (!addToRows) return;
  QORValSlistIterator<QORSmrPtr<QORQL_DataRow>> rows(*ownRows());
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
  ownRows()->append(row);
  row->setParentTable(this);
}

void QORQL_DataTable::addRows(const RowList& rows) {
  if (rows.IsNull()) return;
  QORValSlistIterator<QORSmrPtr<QORQL_DataRow>> iterator(*rows);
  while (++iterator) addRow(iterator.key());
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
  return ownRows()->at(index);
}

QORQL_DataTable::RowList QORQL_DataTable::getRows() {
  materialise();
  return ownRows();
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
