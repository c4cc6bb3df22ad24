// Association conditions: each source instance is asked once for its
// associates, which become the destination column, or filter it when an earlier
// condition has brought it already.
#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_Helper.h"
#include "Cimom/QORQL/QORQL_OuterJoin.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using ObjectList = QORQL_Helper::ObjectList;
using Row = QORSmrPtr<QORQL_DataRow>;
using RowList = QORQL_DataTable::RowList;

struct KeyHash {
  std::size_t operator()(const QORString& key) const noexcept { return std::hash<std::string_view>{}(key.view()); }
};

// The associates of source instances, asked for once each.
class Associates {
 public:
  Associates(const QORString& associationClass, const QORString& resultClass, const QORQL_Helper::NameList& properties,
             const QORString& nameSpace)
      : _associationClass(associationClass),
        _resultClass(resultClass),
        _properties(properties),
        _nameSpace(nameSpace),
        _client(new CIMApi()) {}

  // Null for a null source, and where the object manager gives null.
  ObjectList of(const Object& source) {
    if (source.IsNull()) return {};
    const QORSmrPtr<IQoriInstanceName> name(source->getInstanceName());
    if (name.IsNull()) return {};
    const auto found = _cache.find(name->toString());
    if (found != _cache.end()) return found->second;
    const QORQL_StepScope step(QORQL_ExecutionMonitor::kStepFetch, _resultClass);
    ObjectList list(QORQL_Helper::asssociator(name, _associationClass, _resultClass, _client, _properties, _nameSpace));
    _cache.emplace(name->toString(), list);
    return list;
  }

 private:
  const QORString& _associationClass;
  const QORString& _resultClass;
  const QORQL_Helper::NameList& _properties;
  const QORString& _nameSpace;
  QORSmrPtr<CIMApi> _client;
  std::unordered_map<QORString, ObjectList, KeyHash> _cache;
};

Object cellOf(const QORQL_DataRow& row, QORuint32 column) {
  return column < row.getCellCount() ? row.getCell(column) : Object();
}

// Numbers for the instances in cells: two objects of one path are the same
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
  std::unordered_map<QORString, std::size_t, KeyHash> _byPath;
  std::size_t _count = 0;
};

// A row's cells but for some columns: rows of one group agree in these.
std::vector<std::size_t> otherCells(const QORQL_DataRow& row, QORuint32 columnCount, const std::vector<QORuint32>& left,
                                    InstanceNumbers& instances) {
  std::vector<std::size_t> cells;
  for (QORuint32 column = 0; column < columnCount; ++column) {
    const bool isLeftOut = std::find(left.begin(), left.end(), column) != left.end();
    if (!isLeftOut) cells.push_back(instances.of(cellOf(row, column)));
  }
  return cells;
}

// The row with null cells in some columns.
Row withNulls(const QORQL_DataRow& row, QORQL_DataTable& table, const std::vector<QORuint32>& nulls) {
  Row copy(new QORQL_DataRow());
  for (QORuint32 column = 0; column < table.getColumnCount(); ++column) {
    const bool isNull = std::find(nulls.begin(), nulls.end(), column) != nulls.end();
    copy->getAllCells()->append(isNull ? Object() : cellOf(row, column));
  }
  copy->setParentTable(&table);
  return copy;
}

// Rows that agree outside some columns, groups in the order of their first rows.
std::vector<std::vector<Row>> groupRows(QORQL_DataTable& table, const RowList& rows,
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

// The first associate goes to the row itself, each further one to a copy.
void extendRow(const Row& row, const ObjectList& associates, QORuint32 column, QORQL_DataTable& table, RowList& kept) {
  Row original;
  if (associates->entries() > 1) original = new QORQL_DataRow(*row);
  bool isFirst = true;
  QORValSlistIterator<Object> iterator(*associates);
  while (++iterator) {
    if (iterator.key().IsNull()) continue;
    Row target(row);
    if (!isFirst) {
      target = new QORQL_DataRow(*original);
      target->setParentTable(&table);
    }
    isFirst = false;
    target->addCell(column, iterator.key());
    kept->append(target);
  }
}

// Makes the destination column.
RowList addDestination(QORQL_DataTable& table, Associates& associates, QORuint32 source, QORuint32 destination,
                       bool isOuter) {
  RowList kept(new QORValSlist<Row>());
  QORValSlistIterator<Row> rows(*table.getRows());
  while (++rows) {
    const Row& row = rows.key();
    if (row.IsNull()) continue;
    const ObjectList list(associates.of(cellOf(*row, source)));
    if (!list.IsNull() && !list->isEmpty()) {
      extendRow(row, list, destination, table, kept);
    } else if (isOuter) {
      row->addCell(destination, Object());
      kept->append(row);
    }
  }
  return kept;
}

void keepAssociated(const std::vector<Row>& group, const ObjectList& associates, QORuint32 destination, RowList& kept) {
  std::unordered_map<QORString, std::vector<Row>, KeyHash> rows;
  for (const Row& row : group) {
    const Object cell(cellOf(*row, destination));
    if (!cell.IsNull()) rows[QORQL_instanceKey(*cell)].push_back(row);
  }
  QORValSlistIterator<Object> iterator(*associates);
  while (++iterator && !rows.empty()) {
    if (iterator.key().IsNull()) continue;
    const auto found = rows.find(QORQL_instanceKey(*iterator.key()));
    if (found == rows.end()) continue;
    for (const Row& row : found->second) kept->append(row);
    rows.erase(found);  // an associate that is named twice keeps its rows once
  }
}

// Filters a destination column that is there already.
RowList filterDestination(QORQL_DataTable& table, Associates& associates, QORuint32 source, QORuint32 destination,
                          bool isOuter) {
  RowList kept(new QORValSlist<Row>());
  std::vector<QORuint32> free;
  if (source != destination) free.push_back(destination);
  for (const std::vector<Row>& group : groupRows(table, table.getRows(), free)) {
    const QORuint32 before = kept->entries();
    const ObjectList list(associates.of(cellOf(*group.front(), source)));
    if (!list.IsNull()) keepAssociated(group, list, destination, kept);
    if (kept->entries() == before && isOuter) kept->append(withNulls(*group.front(), table, {destination}));
  }
  return kept;
}

// Whether one reference property of the association names the source and a
// different one the destination.
bool connects(const Object& association, const Object& source, const Object& destination) {
  if (association.IsNull() || source.IsNull() || destination.IsNull()) return false;
  const QORString sourceKey(QORQL_instanceKey(*source));
  const QORString destinationKey(QORQL_instanceKey(*destination));
  QORuint32 sources = 0;
  QORuint32 destinations = 0;
  QORuint32 both = 0;
  for (QORuint32 i = 0; i < association->getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriValue> value(association->getPropertyAt(i)->getValue());
    if (value.IsNull() || value->getReference().IsNull()) continue;
    const QORString path(value->getReference()->toString());
    const bool isSource = path == sourceKey;
    const bool isDestination = path == destinationKey;
    sources += isSource ? 1 : 0;
    destinations += isDestination ? 1 : 0;
    both += isSource && isDestination ? 1 : 0;
  }
  return sources != 0 && destinations != 0 && (both == 0 || sources > 1 || destinations > 1);
}

// Keeps the rows whose association object ties their source to their destination.
RowList filterAssociation(QORQL_DataTable& table, const RowList& rows, QORuint32 source, QORuint32 destination,
                          QORuint32 association, bool isOuter) {
  RowList kept(new QORValSlist<Row>());
  for (const std::vector<Row>& group : groupRows(table, rows, {association, destination})) {
    const QORuint32 before = kept->entries();
    for (const Row& row : group) {
      if (connects(cellOf(*row, association), cellOf(*row, source), cellOf(*row, destination))) kept->append(row);
    }
    if (kept->entries() == before && isOuter) {
      kept->append(withNulls(*group.front(), table, {association, destination}));
    }
  }
  return kept;
}

QORSmrPtr<QORQL_Symbol> destinationSymbol(const QORString& name, const QORQL_SymbolTable& symbolTable) {
  QORSmrPtr<QORQL_Symbol> symbol(symbolTable.lookupIgnoringCase(name));
  if (symbol.IsNull()) {
    throw QORQL_Exception(QORQL_Exception::QORQL_UNIDENTIFIED_IDENTIFIER,
                          QORString(QORQL_ExecutionMessages::kFromSymbolUnknown) + name + "'");
  }
  return symbol;
}

}  // namespace

void QORQL_Association::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                 const QORString& nameSpace) {
  QORQL_Helper::updateTable(_assocSource, symbolTable, table, nameSpace, _queryString, _queryLanguage);
  const QORSmrPtr<QORQL_Symbol> symbol(destinationSymbol(_assocDestination, symbolTable));
  const QORString className(symbol->getClassName());
  const QORString alias(symbol->getAlias().isEmpty() ? className : symbol->getAlias());
  const QORSmrPtr<QORQL_ClassInfo> info(symbol->getClassInfo());
  QORQL_Helper::NameList properties;
  if (!info.IsNull() && !info->needAllProperties()) properties = info->getPropertyList();
  const QORString associationClass(symbolTable.classNameOf(_associationName));
  const bool isOuter = _joinType == QORQL_JOIN_TYPE_LEFT_OUTER;

  Associates associates(associationClass, className, properties, nameSpace);
  const QORuint32 source = static_cast<QORuint32>(table->getColumnIndex(symbolTable.classNameOf(_assocSource)));
  QORsint32 destination = table->getColumnIndex(className);
  RowList rows;
  if (destination < 0) {
    destination = static_cast<QORsint32>(table->getColumnCount());
    table->addColumn(new QORQL_TableHeader(className, alias, QORString::emptyString()),
                     static_cast<QORuint32>(destination), false);
    rows = addDestination(*table, associates, source, static_cast<QORuint32>(destination), isOuter);
  } else {
    rows = filterDestination(*table, associates, source, static_cast<QORuint32>(destination), isOuter);
  }
  const QORsint32 association = table->getColumnIndex(associationClass);
  if (association >= 0) {
    rows = filterAssociation(*table, rows, source, static_cast<QORuint32>(destination),
                             static_cast<QORuint32>(association), isOuter);
  }
  table->setRows(rows);
}
