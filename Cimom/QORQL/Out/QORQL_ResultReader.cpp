// Columns are found once; values come from the row reader.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Out/QORQL_ResultReader.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "Cimom/QORQL/Lazy/QORQL_RowReader.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_FewList.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SelectedEntry.h"
#include "Cimom/QORQL/QORQL_Text.h"

namespace {

// Property names in order of appearance, each once.
class NameUnion {
 public:
  void add(const IQoriObject& object) {
    for (QORuint32 i = 0; i < object.getPropertyCount(); ++i) {
      const QORString name(object.getPropertyAt(i)->getName());
      if (_seen.insert(QORQL_foldedName(name)).second) names.push_back(name);
    }
  }
  std::vector<QORString> names;

 private:
  std::set<std::string> _seen;
};

}  // namespace

// Where a column's values come from.
struct QORQL_ResultReader::Source {
  QORSmrPtr<QORQL_SelectedEntry> entry;
  QORString className;  // of a property that `*` or C.* expands to, read as it was fetched; empty: the entry itself
  QORString propertyName;
  std::size_t slot = 0;
};

QORQL_ResultReader::QORQL_ResultReader(const QORQL_Query& query, QORQL_SymbolTable& symbolTable,
                                       QORSmrPtr<QORQL_DataTable>& table, const Declared& declared)
    : _query(query),
      _declared(declared),
      _table(table),
      _reader(std::make_unique<QORQL_RowReader>(symbolTable, table)) {
  const auto& list = dynamic_cast<const QORQL_SelectList&>(*query.getSelectList());
  _isAggregate = list.AreAllEntriesAggregates();
  _rowCount = _reader->rowCount();
  if (list.isFirstUsed()) _rowCount = std::min<QORuint64>(_rowCount, list.getFirstCount());
  _sources.reserve(list.getSelectedEntries()->entries());
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*list.getSelectedEntries());
  while (++entries) addEntry(entries.key());
  _holders.resize(_sources.size());
  if (_isAggregate) holdAggregates();
  findCells();
  nameColumns();
  typeColumns();
  for (std::size_t i = 0; i < _sources.size(); ++i) tracePropertyOf(i);
  findOnlyClass();
}

QORQL_ResultReader::~QORQL_ResultReader() = default;

void QORQL_ResultReader::addEntry(const QORSmrPtr<QORQL_SelectedEntry>& entry) {
  if (entry->isSelectAll()) {
    addAllClasses(entry);
  } else if (entry->isClassAll()) {
    addClass(entry, entry->getClassName());
  } else {
    Source source;
    source.entry = entry;
    if (!_isAggregate) source.slot = _reader->addEntry(entry);
    _sources.push_back(std::move(source));
  }
}

// In the order of FROM: each run of the select list reverses the table's headers.
void QORQL_ResultReader::addAllClasses(const QORSmrPtr<QORQL_SelectedEntry>& entry) {
  const auto& from = dynamic_cast<const QORQL_FromClause&>(*_query.getFromClause());
  std::set<QORsint32> seen;
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*from.getFromSpecifierList());
  while (++specifiers) {
    const QORsint32 column = _table->getColumnIndex(specifiers.key()->getTableName());
    if (column < 0 || !seen.insert(column).second) continue;
    addClass(entry, _table->getColumnHeader(static_cast<QORuint32>(column))->getName());
  }
}

void QORQL_ResultReader::addClass(const QORSmrPtr<QORQL_SelectedEntry>& entry, const QORString& className) {
  NameUnion properties;
  std::set<const IQoriLayout*> seen;
  QORQL_StopCheck stopCheck;
  for (QORuint64 row = 0; row < _rowCount; ++row) {
    stopCheck.count();
    _reader->select(row);
    const IQoriObject* const object = _reader->hasRow() ? _reader->fetchedObject(className) : nullptr;
    if (object == nullptr) continue;
    const IQoriLayout* const layout = object->getLayout();
    if (layout == nullptr || seen.insert(layout).second) properties.add(*_reader->object(className));
  }
  if (properties.names.empty()) properties.names = declaredNames(className);
  for (const QORString& name : properties.names) {
    Source source;
    source.entry = entry;
    source.className = className;
    source.propertyName = name;
    source.slot = _reader->addFetchedProperty(className, name);
    _sources.push_back(std::move(source));
  }
}

// The name may be an alias, which the table knows.
std::vector<QORString> QORQL_ResultReader::declaredNames(const QORString& fromName) const {
  const QORsint32 column = _table->getColumnIndex(fromName);
  if (!_declared || column < 0) return {};
  return _declared(_table->getColumnHeader(static_cast<QORuint32>(column))->getName());
}

namespace {

// For each column, whether no other has its name.
QORQL_FewList<QORuint8, 16> areUnique(const std::vector<QORQL_ResultReader::Column>& columns) {
  constexpr std::size_t kFew = 16;
  QORQL_FewList<QORuint8, 16> unique;
  for (std::size_t i = 0; i < columns.size(); ++i) unique.push_back(true);
  if (columns.size() > kFew) {
    std::map<std::string, std::size_t> counts;
    for (const auto& column : columns) ++counts[QORQL_foldedName(column.name)];
    for (std::size_t i = 0; i < columns.size(); ++i) unique[i] = counts[QORQL_foldedName(columns[i].name)] == 1;
    return unique;
  }
  for (std::size_t i = 0; i < columns.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (columns[i].name.isEqualCaseInsensitive(columns[j].name)) unique[i] = unique[j] = false;
    }
  }
  return unique;
}

}  // namespace

QORString QORQL_ResultReader::shortNameOf(const Source& source) {
  const QORQL_SelectedEntry& entry = *source.entry;
  if (!source.className.isEmpty()) return source.propertyName;
  if (!entry.getAlias().isEmpty()) return entry.getAlias();
  if (!entry.getWrittenText().isEmpty()) return entry.getWrittenText();
  return entry.getPropertyName().isEmpty() ? entry.getClassName() : entry.getPropertyName();
}

QORString QORQL_ResultReader::fullNameOf(const Source& source) {
  const QORQL_SelectedEntry& entry = *source.entry;
  if (!source.className.isEmpty()) return source.className + "." + source.propertyName;
  if (!entry.getWrittenText().isEmpty()) return entry.getWrittenText();
  if (!entry.getAlias().isEmpty() || !entry.getPropertyName().isEmpty()) return QORQL_SelectList::_getCellName(entry);
  return entry.getClassName();
}

void QORQL_ResultReader::nameColumns() {
  _columns.resize(_sources.size());
  for (std::size_t i = 0; i < _sources.size(); ++i) _columns[i].name = shortNameOf(_sources[i]);
  const auto unique = areUnique(_columns);
  for (std::size_t i = 0; i < _sources.size(); ++i) {
    if (!unique[i]) _columns[i].name = fullNameOf(_sources[i]);
  }
}

// A property's layout tells the type of its value; other values are made.
bool QORQL_ResultReader::typeColumn(std::size_t index) {
  Column& column = _columns[index];
  const bool isCell = _cellOffsets[index] != kNoCell;
  if (const IQoriType* const type = isCell ? _reader->propertyType(_sources[index].slot) : nullptr; type != nullptr) {
    column.typeName = type->getName();
    column.isArray = type->isArray();
    return true;
  }
  const QORSmrPtr<IQoriValue> found(value(index));
  if (found.IsNull()) return false;
  column.typeName = found->getType()->getName();
  column.isArray = found->isArray();
  return true;
}

// The first row that has a value tells the type.
void QORQL_ResultReader::typeColumns() {
  std::size_t untyped = _columns.size();
  QORQL_StopCheck stopCheck;
  for (QORuint64 row = 0; row < _rowCount && untyped != 0; ++row) {
    stopCheck.count();
    _reader->select(row);
    for (std::size_t i = 0; i < _columns.size() && _reader->hasRow(); ++i) {
      if (!_columns[i].typeName.isEmpty()) continue;
      if (typeColumn(i)) --untyped;
    }
  }
}

// The table knows the class by each of its names in FROM.
void QORQL_ResultReader::tracePropertyOf(std::size_t index) {
  const Source& source = _sources[index];
  QORString fromName = source.className;
  QORString property = source.propertyName;
  if (property.isEmpty()) {
    const QORQL_Factor* const leaf = QORQL_soleLeaf(source.entry->getExpression());
    const bool isRead = leaf != nullptr && leaf->isPropertyReference() && !QORQL_hasPath(*leaf) &&
                        leaf->getOperator() != QORQL_OperatorMINUS;
    if (!isRead || source.entry->getWrittenText().length() != 0) return;
    fromName = *leaf->getClassName();
    property = *leaf->getPropertyName();
  }
  const QORsint32 column = _table->getColumnIndex(fromName);
  if (column < 0) return;
  _columns[index].className = _table->getColumnHeader(static_cast<QORuint32>(column))->getName();
  _columns[index].propertyName = property;
}

void QORQL_ResultReader::findOnlyClass() {
  QORsint32 only = -1;
  for (std::size_t i = 0; i < _sources.size(); ++i) {
    const Source& source = _sources[i];
    const bool isExpanded = !source.propertyName.isEmpty();
    if (!isExpanded && !source.entry->isPlainProperty()) return;
    const QORString& className = isExpanded ? source.className : source.entry->getClassName();
    const QORString& property = isExpanded ? source.propertyName : source.entry->getPropertyName();
    const QORsint32 column = _table->getColumnIndex(className);
    if (column < 0 || (only >= 0 && column != only)) return;
    if (!_columns[i].name.isEqualCaseInsensitive(property)) return;
    only = column;
  }
  if (only >= 0) _onlyClass = _table->getColumnHeader(static_cast<QORuint32>(only))->getName();
}

QORString QORQL_ResultReader::rowClass() {
  const IQoriObject* const object = _onlyClass.isEmpty() ? nullptr : _reader->fetchedObject(_onlyClass);
  return object == nullptr ? QORString() : object->getClassName();
}

// Cells are read ahead only once the caller has looked at a property.
bool QORQL_ResultReader::next() {
  _cells = nullptr;
  while (_next < _rowCount) {
    _reader->select(_next++);
    if (!_reader->hasRow()) continue;
    if (_showsCells) _cells = _reader->cells();
    return true;
  }
  return false;
}

void QORQL_ResultReader::restart() noexcept {
  _cells = nullptr;
  _next = 0;
}

QORSmrPtr<IQoriValue> QORQL_ResultReader::value(std::size_t index) {
  return _isAggregate ? _holders[index] : _reader->value(_sources[index].slot);
}

// The entries have them until the next execution gives them others.
void QORQL_ResultReader::holdAggregates() {
  for (std::size_t i = 0; i < _sources.size(); ++i) _holders[i] = _sources[i].entry->GetAggregateValue();
}

void QORQL_ResultReader::findCells() {
  _cellOffsets.reserve(_sources.size());
  for (const Source& source : _sources) {
    const bool isCell = !_isAggregate && _reader->isProperty(source.slot);
    _cellOffsets.push_back(isCell ? _reader->cellOffset(source.slot) : kNoCell);
  }
}

QoriScalar QORQL_ResultReader::viewOf(std::size_t index) {
  if (_isAggregate) return aggregateView(index);
  if (_cellOffsets[index] != kNoCell) {
    _showsCells = true;
    _cells = _reader->cells();
  }
  return _reader->view(_sources[index].slot, _holders[index]);
}

QoriScalar QORQL_ResultReader::aggregateView(std::size_t index) const {
  const QORSmrPtr<IQoriValue>& value = _holders[index];
  return value.IsNull() ? QoriScalar() : value->scalar();
}
