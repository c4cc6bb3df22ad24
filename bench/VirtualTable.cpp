// A cursor walks the object manager's own list; what SQLite asks of a row goes to
// the object itself.
// SPDX-License-Identifier: Apache-2.0
#include "bench/VirtualTable.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "bench/World.h"
#include "cimom/CQoriType.h"

namespace bench {

namespace {

using Objects = QORValSlist<QORSmrPtr<IQoriObject>>;
using Index = std::unordered_map<std::string_view, const IQoriObject*>;

struct Table : sqlite3_vtab {
  std::string className;
  CIMApi::Instances objects;       // as the last statement found them
  bool hasTextKey = false;         // the first property is a text, which no two instances share
  std::unique_ptr<Index> byKey{};  // of those; null until it is asked for
};

struct Cursor : sqlite3_vtab_cursor {
  explicit Cursor(const Objects& objects) : sqlite3_vtab_cursor{}, each(objects) {}
  void next() {
    current = ++each ? each.key().Get() : nullptr;
    ++row;
  }
  QORValSlistIterator<QORSmrPtr<IQoriObject>> each;
  const IQoriObject* current = nullptr;  // null past the last
  bool isSingle = false;                 // found by key: no other row follows
  sqlite3_int64 row = 0;
};

Table& tableOf(sqlite3_vtab* table) { return *static_cast<Table*>(table); }
Cursor& cursorOf(sqlite3_vtab_cursor* cursor) { return *static_cast<Cursor*>(cursor); }

void refresh(Table& table) {
  CIMApi::Instances objects = instancesOf(table.className.c_str());
  if (objects.Get() == table.objects.Get()) return;
  table.objects = objects;
  table.byKey.reset();
}

const char* affinityOf(const IQoriType& type) {
  switch (CQoriType::codeOf(type)) {
    case CQoriType::Code::String:
    case CQoriType::Code::DateTime:
      return " TEXT";
    case CQoriType::Code::Real32:
    case CQoriType::Code::Real64:
      return " REAL";
    default:
      return type.isArray() || CQoriType::codeOf(type) == CQoriType::Code::Reference ? " TEXT" : " INTEGER";
  }
}

std::string declarationOf(const IQoriLayout& layout) {
  std::string text = "CREATE TABLE t(";
  for (QORuint32 i = 0; i < layout.getPropertyCount(); ++i) {
    if (i != 0) text += ", ";
    text += std::string(layout.getName(i).view()) + affinityOf(*layout.getType(i));
  }
  return text + ")";
}

int connect(sqlite3* database, void*, int argc, const char* const* argv, sqlite3_vtab** out, char**) {
  if (argc < 4) return SQLITE_ERROR;
  std::unique_ptr<Table> table = std::make_unique<Table>();
  table->className = argv[3];
  refresh(*table);
  if (table->objects.IsNull() || table->objects->isEmpty()) return SQLITE_ERROR;
  const IQoriLayout& layout = *table->objects->first()->getLayout();
  table->hasTextKey = CQoriType::codeOf(*layout.getType(0)) == CQoriType::Code::String;
  const int status = sqlite3_declare_vtab(database, declarationOf(layout).c_str());
  if (status != SQLITE_OK) return status;
  *out = table.release();
  return SQLITE_OK;
}

int disconnect(sqlite3_vtab* table) {
  delete &tableOf(table);
  return SQLITE_OK;
}

int chooseIndex(sqlite3_vtab* table, sqlite3_index_info* info) {
  const double rows = tableOf(table).objects->entries();
  info->estimatedCost = rows;
  info->estimatedRows = static_cast<sqlite3_int64>(rows);
  if (!tableOf(table).hasTextKey) return SQLITE_OK;
  for (int i = 0; i < info->nConstraint; ++i) {
    const auto& constraint = info->aConstraint[i];
    if (constraint.usable == 0 || constraint.op != SQLITE_INDEX_CONSTRAINT_EQ || constraint.iColumn != 0) continue;
    info->aConstraintUsage[i].argvIndex = 1;
    info->aConstraintUsage[i].omit = 1;
    info->idxNum = 1;
    info->idxFlags = SQLITE_INDEX_SCAN_UNIQUE;
    info->estimatedCost = 1;
    info->estimatedRows = 1;
    break;
  }
  return SQLITE_OK;
}

int open(sqlite3_vtab* table, sqlite3_vtab_cursor** out) {
  refresh(tableOf(table));
  *out = new Cursor(*tableOf(table).objects);
  return SQLITE_OK;
}

int close(sqlite3_vtab_cursor* cursor) {
  delete &cursorOf(cursor);
  return SQLITE_OK;
}

const Index& indexOf(Table& table) {
  if (table.byKey == nullptr) {
    table.byKey = std::make_unique<Index>();
    table.byKey->reserve(table.objects->entries());
    QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*table.objects);
    while (++each) table.byKey->emplace(each.key()->getScalarAt(0).text->view(), each.key().Get());
  }
  return *table.byKey;
}

const IQoriObject* findByKey(Table& table, sqlite3_value* wanted) {
  if (sqlite3_value_type(wanted) != SQLITE_TEXT) return nullptr;
  const char* const text = static_cast<const char*>(sqlite3_value_blob(wanted));
  const Index& index = indexOf(table);
  const auto found = index.find({text, static_cast<std::size_t>(sqlite3_value_bytes(wanted))});
  return found == index.end() ? nullptr : found->second;
}

int filter(sqlite3_vtab_cursor* base, int indexNumber, const char*, int, sqlite3_value** arguments) {
  Cursor& cursor = cursorOf(base);
  cursor.row = 0;
  cursor.isSingle = indexNumber == 1;
  if (cursor.isSingle) {
    cursor.current = findByKey(tableOf(base->pVtab), arguments[0]);
  } else {
    cursor.each.reset();
    cursor.next();
  }
  return SQLITE_OK;
}

int next(sqlite3_vtab_cursor* base) {
  Cursor& cursor = cursorOf(base);
  if (cursor.isSingle) {
    cursor.current = nullptr;
  } else {
    cursor.next();
  }
  return SQLITE_OK;
}

int isAtEnd(sqlite3_vtab_cursor* cursor) { return cursorOf(cursor).current == nullptr ? 1 : 0; }

// A reference is shown as the key of what it names, which has one, a text.
int showReference(const IQoriValue& value, sqlite3_context* context) {
  const QORSmrPtr<IQoriInstanceName> name = value.getReference();
  if (name.IsNull() || name->getKeys()->isEmpty()) return SQLITE_ERROR;
  const QORSmrPtr<IQoriValue> key = name->getKeys()->first()->getValue();
  sqlite3_result_text(context, key->scalar().text->c_str(), -1, SQLITE_TRANSIENT);
  return SQLITE_OK;
}

int column(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int index) {
  const QoriScalar cell = cursorOf(cursor).current->getScalarAt(static_cast<QORuint32>(index));
  switch (cell.kind) {
    case QoriScalarKind::Null:
      break;  // NULL is what a cell is without a result
    case QoriScalarKind::Boolean:
      sqlite3_result_int(context, cell.b ? 1 : 0);
      break;
    case QoriScalarKind::Unsigned:
    case QoriScalarKind::Signed:
      sqlite3_result_int64(context, cell.s);
      break;
    case QoriScalarKind::Real:
      sqlite3_result_double(context, cell.r);
      break;
    case QoriScalarKind::Text:
    case QoriScalarKind::DateTime:
      // Without a length SQLite takes the text as terminated and never copies it.
      sqlite3_result_text(context, cell.text->c_str(), -1, SQLITE_STATIC);
      break;
    case QoriScalarKind::Complex:
      return showReference(*cell.value, context);
    default:
      return SQLITE_ERROR;  // no workload reads one
  }
  return SQLITE_OK;
}

int rowId(sqlite3_vtab_cursor* cursor, sqlite3_int64* out) {
  *out = cursorOf(cursor).row;
  return SQLITE_OK;
}

}  // namespace

int registerVirtualTables(sqlite3* database) {
  static const sqlite3_module module = [] {
    sqlite3_module made{};
    made.iVersion = 1;
    made.xCreate = made.xConnect = connect;
    made.xDisconnect = made.xDestroy = disconnect;
    made.xBestIndex = chooseIndex;
    made.xOpen = open;
    made.xClose = close;
    made.xFilter = filter;
    made.xNext = next;
    made.xEof = isAtEnd;
    made.xColumn = column;
    made.xRowid = rowId;
    return made;
  }();
  return sqlite3_create_module(database, "cim", &module, nullptr);
}

}  // namespace bench
