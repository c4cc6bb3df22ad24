// Retrieval: one enumeration per class and table, then the product of its
// instances with the existing rows. In the lazy mode the product is not
// made; see QORQL_LazyRows.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Helper.h"

#include <memory>
#include <string_view>

#include "Cimom/QORQL/Lazy/QORQL_LazyTable.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_Log.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/QORQL_Token.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "Cimom/QORQL/Run/QORQL_TieFilter.h"
#include "cimom/QoriProviderPluginManager.h"
#include "cimom/ZEMOConfigManager.h"

namespace Messages = QORQL_ExecutionMessages;

namespace {

using ObjectList = QORQL_Helper::ObjectList;

// A FROM name as the fetch needs it.
struct Source {
  QORString className;
  QORString alias;
  QORQL_Helper::NameList properties;  // null: all
};

QORSmrPtr<QORQL_Symbol> findSymbol(const QORString& name, QORQL_SymbolTable& symbolTable) {
  QORSmrPtr<QORQL_Symbol> symbol(symbolTable.lookup(QORString::toUpperCase(name)));
  if (symbol.IsNull()) {
    throw QORQL_Exception(QORQL_Exception::QORQL_UNIDENTIFIED_IDENTIFIER,
                          QORString(Messages::kFromSymbolUnknown) + name + "'", {QORQL_Fault::kFromNameUnknown, name});
  }
  return symbol;
}

Source describe(const QORQL_Symbol& symbol) {
  Source source;
  source.className = symbol.getClassName();
  source.alias = symbol.getAlias().isEmpty() ? source.className : symbol.getAlias();
  const QORSmrPtr<QORQL_ClassInfo> info(symbol.getClassInfo());
  if (!info.IsNull() && !info->needAllProperties() && !info->fetchAllProperties()) {
    source.properties = info->getPropertyList();
  }
  return source;
}

ObjectList fetch(const Source& source, const QORString& nameSpace, const QORString& queryString,
                 const QORString& queryLanguage) {
  const QORQL_StepScope step(QORQL_ExecutionMonitor::kStepFetch, source.className);
  ObjectList objects(
      QORQL_Helper::enumerateInstance(source.className, source.properties, nameSpace, queryString, queryLanguage));
  if (objects.IsNull()) {
    QORQL_logAndThrow(QORString(Messages::kEnumerating) + source.className + Messages::kReturnedNull,
                      QoriTraceLog::kError, {QORQL_Fault::kClassUnknown, source.className});
  }
  return objects;
}

void requireArguments(const QORSmrPtr<QORQL_DataTable>& table, const ObjectList& objects) {
  if (!table.IsNull() && !objects.IsNull()) return;
  QORQL_logAndThrow(
      QORString(Messages::kAddingObject) + (table.IsNull() ? Messages::kTableIsNull : Messages::kObjectIsNull),
      QoriTraceLog::kTrace);
}

// Decides whether a row that may be added is kept; the row is complete then.
class RowTest {
 public:
  virtual ~RowTest() = default;
  virtual bool keeps(QORSmrPtr<QORQL_DataRow>& row, const QORSmrPtr<IQoriObject>& object) const = 0;
};

class EveryRow : public RowTest {
 public:
  bool keeps(QORSmrPtr<QORQL_DataRow>& /*row*/, const QORSmrPtr<IQoriObject>& /*object*/) const override {
    return true;
  }
};

class ComparisonTest : public RowTest {
 public:
  ComparisonTest(QORSmrPtr<QORQL_DataTable>& table, QORQL_Comparison& comparison, QORQL_Operator op,
                 QORQL_SymbolTable& symbolTable)
      : _table(table), _comparison(comparison), _operator(op), _symbolTable(symbolTable) {}

  // A comparison that cannot be computed keeps the row. The operator is compared
  // with a token's code, as callers outside the engine know it.
  bool keeps(QORSmrPtr<QORQL_DataRow>& row, const QORSmrPtr<IQoriObject>& object) const override {
    row->setParentTable(_table.Get());
    QORSmrPtr<IQoriValue> result;
    try {
      result = _comparison.evaluate(_symbolTable, row, IQoriObject::getLocalNameSpace(object));
    } catch (const QORQL_Exception&) {
      return true;
    }
    if (result.IsNull()) return true;
    const bool isNegated = static_cast<int>(_operator) == static_cast<int>(TokenNOT);
    return (QORQL_truthOf(result) == QoriTruth::True) != isNegated;
  }

 private:
  QORSmrPtr<QORQL_DataTable>& _table;
  QORQL_Comparison& _comparison;
  QORQL_Operator _operator;
  QORQL_SymbolTable& _symbolTable;
};

using RowList = QORQL_DataTable::RowList;

void addFirstRows(QORSmrPtr<QORQL_DataTable>& table, const ObjectList& objects, QORuint32 column, const RowTest& test) {
  QORValSlistIterator<QORSmrPtr<IQoriObject>> iterator(*objects);
  while (++iterator) {
    const QORSmrPtr<IQoriObject>& object = iterator.key();
    if (object.IsNull()) continue;
    auto row = QORSmrPtr<QORQL_DataRow>::Make();
    updatePreFilter(table, object);
    row->addCell(column, object);
    if (test.keeps(row, object)) table->addRow(row);
  }
}

void multiplyRows(QORSmrPtr<QORQL_DataTable>& table, const ObjectList& objects, QORuint32 column, const RowTest& test) {
  const RowList product(RowList::Make());
  QORQL_StopCheck stopCheck;
  QORValSlistIterator<QORSmrPtr<QORQL_DataRow>> rows(*table->getRows());
  while (++rows) {
    QORValSlistIterator<QORSmrPtr<IQoriObject>> iterator(*objects);
    while (++iterator) {
      const QORSmrPtr<IQoriObject>& object = iterator.key();
      if (object.IsNull()) continue;
      stopCheck.count();
      auto row = QORSmrPtr<QORQL_DataRow>::Make(*rows.key());
      updatePreFilter(table, object);
      row->addCell(column, object);
      if (test.keeps(row, object)) product->append(row);
    }
    stopCheck.hold(product->entries(), QORQL_StopCheck::rowBytes(column));
  }
  table->setRows(product);
}

void addRows(QORSmrPtr<QORQL_DataTable>& table, const ObjectList& objects, const QORString& className,
             const QORString& alias, const RowTest& test) {
  table->materialise();
  const QORuint32 column = table->getColumnCount();
  const bool hadRows = table->getRowCount() != 0;
  const bool hasObjects = !objects->isEmpty();
  table->addColumn(QORSmrPtr<QORQL_TableHeader>::Make(className, alias, QORString::emptyString()), column,
                   hadRows && !hasObjects);
  if (!hasObjects) return;
  if (hadRows) {
    multiplyRows(table, objects, column, test);
  } else {
    addFirstRows(table, objects, column, test);
  }
}

// Records what the plain product records by asking for every object of every row: the
// answer depends on class and namespace alone.
void recordPreFilter(QORSmrPtr<QORQL_DataTable>& table, const ObjectList& objects) {
  QORString lastClass;
  QORValSlistIterator<QORSmrPtr<IQoriObject>> iterator(*objects);
  while (++iterator) {
    if (table->preFilterSet() && !table->allCellsPreFiltered()) return;
    const QORSmrPtr<IQoriObject>& object = iterator.key();
    if (!lastClass.isEmpty() && lastClass == object->getClassName()) continue;
    lastClass = object->getClassName();
    updatePreFilter(table, object);
  }
}

// The ties that association conditions have declared before the class was a column apply first.
void addTiedObjects(QORSmrPtr<QORQL_DataTable>& table, const ObjectList& objects, const Source& source) {
  QORQL_Helper::addObjectToTable(table, objects, source.className, source.alias);
  for (const QORQL_AssociationTie& tie : table->takeOpenTies(source.className)) QORQL_applyTie(*table, tie);
}

constexpr std::string_view kEnumerateCall = "Issued an enumerate instance call for '";

// Columns of lazy rows are distinguished by their names, so an alias that two
// columns share makes real rows.
bool mayBeLazy(QORQL_DataTable& table, const QORString& className, const QORString& alias) {
  if (table.getColumnIndex(className) >= 0 || table.getColumnIndex(alias) >= 0) return false;
  if (table.getExecutionMode() != QORQL_DataTable::kExecutionLazy || table.isProjected()) return false;
  const bool isFresh = table.getColumnCount() == 0 && table.getRowCount() == 0;
  return isFresh || table.lazy() != nullptr;
}

}  // namespace

void QORQL_Helper::updateTable(const QORString& name, QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                               const QORString& nameSpace, const QORString& queryString,
                               const QORString& queryLanguage) {
  const QORSmrPtr<QORQL_Symbol> symbol(findSymbol(name, symbolTable));
  if (table->getColumnIndex(symbol->getClassName()) >= 0) return;
  const Source source(describe(*symbol));
  addTiedObjects(table, fetch(source, nameSpace, queryString, queryLanguage), source);
}

void QORQL_Helper::updateTable(const QORString& name, QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                               const QORString& nameSpace, const QORSmrPtr<QORQL_Evaluatable>& comparison,
                               QORQL_Operator op, const QORString& queryString, const QORString& queryLanguage) {
  const QORSmrPtr<QORQL_Symbol> symbol(findSymbol(name, symbolTable));
  if (table->getColumnIndex(symbol->getClassName()) >= 0) return;
  const Source source(describe(*symbol));
  const ObjectList objects(fetch(source, nameSpace, queryString, queryLanguage));
  const QORQL_Comparison* const node = dynamic_cast<const QORQL_Comparison*>(comparison.Get());
  if (table->hasOpenTie(source.className)) {
    addTiedObjects(table, objects, source);
  } else if (node != nullptr && node->getJoinType() == QORQL_JOIN_TYPE_INNER) {
    addObjectToTable(table, objects, source.className, source.alias, comparison, op, symbolTable);
  } else {
    addObjectToTable(table, objects, source.className, source.alias);
  }
}

QORQL_Helper::ObjectList QORQL_Helper::enumerateInstance(const QORString& className, const NameList& properties,
                                                         const QORString& nameSpace, const QORString& queryString,
                                                         const QORString& queryLanguage) {
  QORString message;
  message.reserve(kEnumerateCall.size() + className.length() + 1);
  QORQL_logTrace(message.append(kEnumerateCall).append(className.view()) += '\'');
  QORSmrPtr<QoriTransactionInfo> transaction;
  if (!queryString.isEmpty() && !queryLanguage.isEmpty()) {
    const QORString& none = QORString::emptyString();
    transaction = new QoriTransactionInfo(QORSmrPtr<QoriProviderAuthorization>(), none, none, -1, none, none, none,
                                          queryString, queryLanguage);
  }
  CIMApi client;
  return client.enumerateInstances(nameSpace, className, properties, -1, nullptr, nullptr, "", transaction);
}

void QORQL_Helper::addObjectToTable(QORSmrPtr<QORQL_DataTable>& table, const ObjectList& objects,
                                    const QORString& className, const QORString& alias) {
  requireArguments(table, objects);
  std::shared_ptr<const QORQL_Extent> extent;
  if (mayBeLazy(*table, className, alias)) extent = std::make_shared<const QORQL_Extent>(objects);
  if (extent == nullptr || extent->hasNull()) {
    addRows(table, objects, className, alias, EveryRow());
    return;
  }
  recordPreFilter(table, objects);
  table->addExtent(QORSmrPtr<QORQL_TableHeader>::Make(className, alias, QORString::emptyString()), std::move(extent));
}

void QORQL_Helper::addObjectToTable(QORSmrPtr<QORQL_DataTable>& table, const ObjectList& objects,
                                    const QORString& className, const QORString& alias,
                                    const QORSmrPtr<QORQL_Evaluatable>& comparison, QORQL_Operator op,
                                    QORQL_SymbolTable& symbolTable) {
  requireArguments(table, objects);
  QORQL_Comparison* const node = dynamic_cast<QORQL_Comparison*>(comparison.Get());
  if (node == nullptr) {
    addRows(table, objects, className, alias, EveryRow());
  } else {
    addRows(table, objects, className, alias, ComparisonTest(table, *node, op, symbolTable));
  }
}

QORQL_Helper::ObjectList QORQL_Helper::asssociator(const QORSmrPtr<IQoriInstanceName>& source,
                                                   const QORString& associationClass, const QORString& resultClass,
                                                   const QORSmrPtr<CIMApi>& client, const NameList& properties,
                                                   const QORString& nameSpace) {
  QORQL_logTrace(QORString("Issued an associator request call '") + associationClass + "' on '" +
                 source->getClassName() + "' with instance name " + source->toString() + " and result class '" +
                 resultClass + "'");
  const QORString& none = QORString::emptyString();
  return client->associators(nameSpace, source, associationClass, resultClass, properties, CIMApi::DefaultTimeout, none,
                             none, none);
}

bool QORQL_Helper::isNumeric(const QORString& typeName) noexcept { return QORQL_isNumericType(typeName.view()); }
