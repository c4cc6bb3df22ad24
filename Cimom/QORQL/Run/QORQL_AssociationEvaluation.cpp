// Association conditions: each source instance is asked once for its
// associates, which become the destination column, or filter it when an earlier
// condition has brought it already.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_Helper.h"
#include "Cimom/QORQL/QORQL_OuterJoin.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/QORQL_Text.h"
#include "Cimom/QORQL/Run/QORQL_RowGroups.h"
#include "Cimom/QORQL/Run/QORQL_TieFilter.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using ObjectList = QORQL_Helper::ObjectList;
using Row = QORSmrPtr<QORQL_DataRow>;
using RowList = QORQL_DataTable::RowList;

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
  std::unordered_map<QORString, ObjectList, QORQL_TextKeyHash> _cache;
};

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

// The associates that agree with the open ties of a row: the associates are
// association objects, which must tie the ends that the row has already.
ObjectList tiedTo(const QORQL_DataRow& row, const ObjectList& associates, const std::vector<QORQL_TiedEnds>& openTies) {
  if (associates.IsNull() || openTies.empty()) return associates;
  ObjectList tied(new QORValSlist<Object>());
  QORValSlistIterator<Object> iterator(*associates);
  while (++iterator) {
    const auto ties = [&](const QORQL_TiedEnds& tie) { return tie.areTiedBy(iterator.key(), row); };
    if (std::all_of(openTies.begin(), openTies.end(), ties)) tied->append(iterator.key());
  }
  return tied;
}

// Makes the destination column.
RowList addDestination(QORQL_DataTable& table, Associates& associates, QORuint32 source, QORuint32 destination,
                       bool isOuter, const std::vector<QORQL_TiedEnds>& openTies) {
  RowList kept(new QORValSlist<Row>());
  QORValSlistIterator<Row> rows(*table.getRows());
  while (++rows) {
    const Row& row = rows.key();
    if (row.IsNull()) continue;
    const ObjectList list(tiedTo(*row, associates.of(QORQL_cellOf(*row, source)), openTies));
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
  std::unordered_map<QORString, std::vector<Row>, QORQL_TextKeyHash> rows;
  for (const Row& row : group) {
    const Object cell(QORQL_cellOf(*row, destination));
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

// Filters a destination column that exists already.
RowList filterDestination(QORQL_DataTable& table, Associates& associates, QORuint32 source, QORuint32 destination,
                          bool isOuter) {
  RowList kept(new QORValSlist<Row>());
  std::vector<QORuint32> free;
  if (source != destination) free.push_back(destination);
  for (const std::vector<Row>& group : QORQL_groupRows(table, table.getRows(), free)) {
    const QORuint32 before = kept->entries();
    const ObjectList list(associates.of(QORQL_cellOf(*group.front(), source)));
    if (!list.IsNull()) keepAssociated(group, list, destination, kept);
    if (kept->entries() == before && isOuter) kept->append(QORQL_withNulls(*group.front(), table, {destination}));
  }
  return kept;
}

QORSmrPtr<QORQL_Symbol> destinationSymbol(const QORString& name, const QORQL_SymbolTable& symbolTable) {
  QORSmrPtr<QORQL_Symbol> symbol(symbolTable.lookupIgnoringCase(name));
  if (symbol.IsNull()) {
    throw QORQL_Exception(QORQL_Exception::QORQL_UNIDENTIFIED_IDENTIFIER,
                          QORString(QORQL_ExecutionMessages::kFromSymbolUnknown) + name + "'",
                          {QORQL_Fault::kFromNameUnknown, name});
  }
  return symbol;
}

// The destination of lazy rows: the associates of all sources as the objects of one more column, and the tuples of the
// rows that stay.
class LazyDestination {
 public:
  LazyDestination(const QORQL_LazyRows& rows, QORuint32 source, bool isOuter)
      : _rows(rows), _before(rows.blocks().front()), _source(source), _isOuter(isOuter) {
    _block.columns = _before.columns;
    _block.columns.push_back(static_cast<QORuint32>(rows.columnCount()));
  }

  void collect(Associates& associates) {
    QORQL_StopCheck stopCheck;
    for (QORuint64 row = 0; row < _before.rowCount; ++row) {
      stopCheck.count();
      stopCheck.hold(_block.tuples.size(), sizeof(QORuint32));
      const ObjectList list(associates.of(_rows.pointer(_source, _before.index(row, _source))));
      if (!list.IsNull() && !list->isEmpty()) {
        addAll(row, *list);
      } else if (_isOuter) {
        addRow(row, QORQL_kNoObject);
      }
    }
  }
  const ObjectList& objects() const noexcept { return _objects; }
  QORQL_RowBlock takeBlock() { return std::move(_block); }

 private:
  void addAll(QORuint64 row, const QORValSlist<Object>& list) {
    list.forEach([&](const Object& object) {
      if (object.IsNull()) return;
      addRow(row, _objects->entries());
      _objects->append(object);
    });
  }
  void addRow(QORuint64 row, QORuint32 destination) {
    for (std::size_t place = 0; place < _before.columns.size(); ++place) {
      _block.tuples.push_back(_before.index(row, place));
    }
    _block.tuples.push_back(destination);
    ++_block.rowCount;
  }

  const QORQL_LazyRows& _rows;
  const QORQL_RowBlock& _before;
  const QORuint32 _source;
  const bool _isOuter;
  ObjectList _objects{new QORValSlist<Object>()};
  QORQL_RowBlock _block;
};

// Makes the destination column of lazy rows, which stay lazy. False, with nothing done, where only rows tell the
// columns apart. What the object manager throws leaves the table as it is with rows: with the column.
bool bringLazily(QORQL_DataTable& table, const QORQL_AssociationTie& tie, const QORString& alias,
                 Associates& associates) {
  if (table.lazy() == nullptr || table.isProjected() || table.getColumnIndex(alias) >= 0) return false;
  const QORSmrPtr<QORQL_TableHeader> header(new QORQL_TableHeader(tie.destination, alias, QORString::emptyString()));
  QORQL_LazyRows& rows = table.lazy()->ownRows();
  rows.flatten();
  LazyDestination destination(rows, static_cast<QORuint32>(table.getColumnIndex(tie.source)), tie.isOuter);
  try {
    destination.collect(associates);
  } catch (...) {
    table.addColumn(header, table.getColumnCount(), false);
    throw;
  }
  QORQL_RowBlock block = destination.takeBlock();
  table.addExtent(header, std::make_shared<const QORQL_Extent>(destination.objects()));
  QORQL_LazyRows::Blocks& blocks = table.lazy()->ownRows().blocks();
  blocks.clear();
  blocks.push_back(std::move(block));
  return true;
}

// Fetches the destination as a column that agrees with the open ties of its class.
void bringDestination(QORQL_DataTable& table, const QORQL_AssociationTie& tie, const QORString& alias,
                      Associates& associates) {
  if (!table.hasOpenTie(tie.destination) && bringLazily(table, tie, alias, associates)) return;
  std::vector<QORQL_TiedEnds> openTies;
  for (const QORQL_AssociationTie& open : table.takeOpenTies(tie.destination)) openTies.emplace_back(table, open);
  const QORuint32 source = static_cast<QORuint32>(table.getColumnIndex(tie.source));
  const QORuint32 destination = table.getColumnCount();
  table.addColumn(new QORQL_TableHeader(tie.destination, alias, QORString::emptyString()), destination, false);
  table.setRows(addDestination(table, associates, source, destination, tie.isOuter, openTies));
}

}  // namespace

void QORQL_Association::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                                 const QORString& nameSpace) {
  QORQL_Helper::updateTable(_assocSource, symbolTable, table, nameSpace, _queryString, _queryLanguage);
  const QORSmrPtr<QORQL_Symbol> symbol(destinationSymbol(_assocDestination, symbolTable));
  const QORQL_AssociationTie tie{symbolTable.classNameOf(_associationName), symbolTable.classNameOf(_assocSource),
                                 symbol->getClassName(), _joinType == QORQL_JOIN_TYPE_LEFT_OUTER};
  const QORSmrPtr<QORQL_ClassInfo> info(symbol->getClassInfo());
  QORQL_Helper::NameList properties;
  if (!info.IsNull() && !info->needAllProperties() && !info->fetchAllProperties()) properties = info->getPropertyList();
  Associates associates(tie.association, tie.destination, properties, nameSpace);
  const QORsint32 destination = table->getColumnIndex(tie.destination);
  if (destination < 0) {
    bringDestination(*table, tie, symbol->getAlias().isEmpty() ? tie.destination : symbol->getAlias(), associates);
  } else {
    const QORuint32 source = static_cast<QORuint32>(table->getColumnIndex(tie.source));
    table->setRows(filterDestination(*table, associates, source, static_cast<QORuint32>(destination), tie.isOuter));
  }
  if (table->getColumnIndex(tie.association) >= 0) {
    QORQL_applyTie(*table, tie);
  } else if (!symbolTable.lookupIgnoringCase(_associationName).IsNull()) {
    table->addOpenTie(tie);
  }
}
