// Ties are judged by the paths in the references of association objects.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Run/QORQL_TieFilter.h"

#include "Cimom/QORQL/QORQL_OuterJoin.h"
#include "Cimom/QORQL/Run/QORQL_RowGroups.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using Row = QORSmrPtr<QORQL_DataRow>;

QORuint32 columnOf(const QORQL_DataTable& table, const QORString& className) {
  return static_cast<QORuint32>(table.getColumnIndex(className));
}

bool connects(const IQoriObject& association, const QORString& source, const QORString& destination) {
  QORuint32 sources = 0;
  QORuint32 destinations = 0;
  QORuint32 both = 0;
  for (QORuint32 i = 0; i < association.getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriValue> value(association.getPropertyAt(i)->getValue());
    if (value.IsNull() || value->getReference().IsNull()) continue;
    const QORString path(value->getReference()->toString());
    const bool isSource = path == source;
    const bool isDestination = path == destination;
    sources += isSource ? 1 : 0;
    destinations += isDestination ? 1 : 0;
    both += isSource && isDestination ? 1 : 0;
  }
  return sources != 0 && destinations != 0 && (both == 0 || sources > 1 || destinations > 1);
}

}  // namespace

QORQL_TiedEnds::QORQL_TiedEnds(const QORQL_DataTable& table, const QORQL_AssociationTie& tie)
    : _source(columnOf(table, tie.source)), _destination(columnOf(table, tie.destination)) {}

bool QORQL_TiedEnds::areTiedBy(const Object& association, const QORQL_DataRow& row) const {
  const Object source(QORQL_cellOf(row, _source));
  const Object destination(QORQL_cellOf(row, _destination));
  if (association.IsNull() || source.IsNull() || destination.IsNull()) return false;
  return connects(*association, QORQL_instanceKey(*source), QORQL_instanceKey(*destination));
}

void QORQL_applyTie(QORQL_DataTable& table, const QORQL_AssociationTie& tie) {
  const QORQL_TiedEnds ends(table, tie);
  const QORuint32 association = columnOf(table, tie.association);
  const std::vector<QORuint32> own = {association, columnOf(table, tie.destination)};
  QORQL_DataTable::RowList kept(new QORValSlist<Row>());
  for (const std::vector<Row>& group : QORQL_groupRows(table, table.getRows(), own)) {
    const QORuint32 before = kept->entries();
    for (const Row& row : group) {
      if (ends.areTiedBy(QORQL_cellOf(*row, association), *row)) kept->append(row);
    }
    if (kept->entries() == before && tie.isOuter) kept->append(QORQL_withNulls(*group.front(), table, own));
  }
  table.setRows(kept);
}
