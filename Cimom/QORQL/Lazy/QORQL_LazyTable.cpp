// How a lazy table's rows come into being.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"

#include "cimom/CQoriBaseObject.h"

namespace {

QORSmrPtr<QORValSlist<QORString>> allNames(const IQoriObject& object) {
  auto names = QORSmrPtr<QORValSlist<QORString>>::Make();
  for (QORuint32 i = 0; i < object.getPropertyCount(); ++i) names->append(object.getPropertyAt(i)->getName());
  return names;
}

const QORSmrPtr<QORValSlist<QORString>>& keptNames(const QORQL_LazyCell& cell) {
  if (cell.propertyList.IsNull()) {
    auto names = QORSmrPtr<QORValSlist<QORString>>::Make();
    for (const QORString& name : cell.properties) names->append(name);
    cell.propertyList = names;
  }
  return cell.propertyList;
}

}  // namespace

QORQL_LazyRows& QORQL_LazyTable::ownRows() {
  if (_rows.use_count() > 1) _rows = std::make_shared<QORQL_LazyRows>(*_rows);
  return *_rows;
}

QORQL_LazyResults& QORQL_LazyTable::ownResults() {
  if (_results.use_count() > 1) _results = std::make_shared<QORQL_LazyResults>(*_results);
  return *_results;
}

void QORQL_LazyTable::project(Cells&& cells, std::shared_ptr<QORQL_LazyResults> results) {
  _cells = std::move(cells);
  _results = std::move(results);
}

QORSmrPtr<IQoriObject> QORQL_LazyTable::cellObject(const QORQL_RowView& row, QORuint32 cell) const {
  if (hasResults(cell)) return _results->object(row);
  const QORuint32 column = sourceColumn(cell);
  QORSmrPtr<IQoriObject> object(row.rows().pointer(column, row.index(column)));
  if (_cells.empty() || object.IsNull()) return object;
  const QORQL_LazyCell& kept = _cells[cell];
  return QORSmrPtr<IQoriObject>::Make<CQoriBaseObject>(object, kept.allProperties ? allNames(*object) : keptNames(kept),
                                                       true);
}

void QORQL_LazyTable::fillRow(const QORQL_RowView& view, QORQL_DataRow& row) const {
  QORValSlist<QORSmrPtr<IQoriObject>>& cells = *row.getAllCells();
  cells.clear();
  for (QORuint32 cell = 0; cell < cellCount(); ++cell) {
    if (hasResults(cell)) {
      cells.append(_results->object(view));
      continue;
    }
    const QORuint32 column = sourceColumn(cell);
    cells.append(view.rows().pointer(column, view.index(column)));
  }
}

QORSmrPtr<QORQL_DataRow> QORQL_LazyTable::makeRow(const QORQL_RowView& view) const {
  auto row = QORSmrPtr<QORQL_DataRow>::Make();
  QORValSlist<QORSmrPtr<IQoriObject>>& cells = *row->getAllCells();
  for (QORuint32 cell = 0; cell < cellCount(); ++cell) cells.append(cellObject(view, cell));
  return row;
}
