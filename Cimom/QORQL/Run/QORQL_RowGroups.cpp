// Rows are distinguished by the numbers of the instances in their cells.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Run/QORQL_RowGroups.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_map>

#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_OuterJoin.h"
#include "Cimom/QORQL/QORQL_Text.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using Row = QORSmrPtr<QORQL_DataRow>;

// Numbers for the instances in cells: two objects with one path are the same
// instance, whichever call has brought them. 0 stands for no object.
class InstanceNumbers {
 public:
  std::size_t of(const Object& object) {
    if (object.IsNull()) return 0;
    const auto [place, isNew] = _byObject.try_emplace(object.Get(), _count + 1);
    if (!isNew) return place->second;
    const QORString key(QORQL_instanceKey(*object));
    if (!key.isEmpty()) place->second = _byPath.try_emplace(key, _count + 1).first->second;
    _count = std::max(_count, place->second);
    return place->second;
  }

 private:
  std::unordered_map<const IQoriObject*, std::size_t> _byObject;
  std::unordered_map<QORString, std::size_t, QORQL_TextKeyHash> _byPath;
  std::size_t _count = 0;
};

// A row's cells outside some columns: rows of one group agree in these.
std::vector<std::size_t> otherCells(const QORQL_DataRow& row, QORuint32 columnCount, const std::vector<QORuint32>& left,
                                    InstanceNumbers& instances) {
  std::vector<std::size_t> cells;
  for (QORuint32 column = 0; column < columnCount; ++column) {
    const bool isLeftOut = std::find(left.begin(), left.end(), column) != left.end();
    if (!isLeftOut) cells.push_back(instances.of(QORQL_cellOf(row, column)));
  }
  return cells;
}

}  // namespace

Object QORQL_cellOf(const QORQL_DataRow& row, QORuint32 column) {
  return column < row.getCellCount() ? row.getCell(column) : Object();
}

Row QORQL_withNulls(const QORQL_DataRow& row, QORQL_DataTable& table, const std::vector<QORuint32>& columns) {
  Row copy(new QORQL_DataRow());
  for (QORuint32 column = 0; column < table.getColumnCount(); ++column) {
    const bool isNull = std::find(columns.begin(), columns.end(), column) != columns.end();
    copy->getAllCells()->append(isNull ? Object() : QORQL_cellOf(row, column));
  }
  copy->setParentTable(&table);
  return copy;
}

std::vector<std::vector<Row>> QORQL_groupRows(const QORQL_DataTable& table, const QORQL_DataTable::RowList& rows,
                                              const std::vector<QORuint32>& left) {
  std::vector<std::vector<Row>> groups;
  std::map<std::vector<std::size_t>, std::size_t> numbers;
  InstanceNumbers instances;
  QORQL_StopCheck stopCheck;
  QORValSlistIterator<Row> iterator(*rows);
  while (++iterator) {
    stopCheck.count();
    if (iterator.key().IsNull()) continue;
    const auto [place, isNew] =
        numbers.try_emplace(otherCells(*iterator.key(), table.getColumnCount(), left, instances), groups.size());
    if (isNew) groups.emplace_back();
    groups[place->second].push_back(iterator.key());
  }
  return groups;
}
