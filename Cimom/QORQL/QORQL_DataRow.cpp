// Rows: adding cells under the table's checks, and reading properties by class name.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_DataRow.h"

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_Log.h"
#include "cimom/CQoriValue.h"

namespace Messages = QORQL_ExecutionMessages;

namespace {

QORString quoted(const char* prefix, const QORString& property, const QORString& className) {
  return QORString(prefix) + property + "' from class '" + className + "'";
}

}  // namespace

QORQL_DataRow::QORQL_DataRow() : _cells(QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>>::Make()) {}

QORQL_DataRow::QORQL_DataRow(const CellList& cells, QORQL_DataTable* parentTable)
    : _cells(cells), _parentTable(parentTable) {}

QORQL_DataRow::QORQL_DataRow(const QORQL_DataRow& other)
    : _cells(QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>>::Make()), _parentTable(other._parentTable) {
  addCells(other._cells);
}

void QORQL_DataRow::addCell(QORuint32 index, const QORSmrPtr<IQoriObject>& object) {
  const QORuint32 count = _cells->entries();
  if (_parentTable != nullptr) {
    const QORuint32 columns = _parentTable->getColumnCount();
    if (index > columns) QORQL_logAndThrow(Messages::kCellIndexTooGreat);
    if (columns < count) QORQL_logAndThrow(Messages::kRowInconsistent);
  }
  if (index < count) {
    _cells->insertAt(index, object);
    return;
  }
  while (_cells->entries() < index) _cells->append(QORSmrPtr<IQoriObject>());
  _cells->append(object);
}

void QORQL_DataRow::addCells(const CellList& cells) {
  if (cells.IsNull()) return;
  QORValSlistIterator<QORSmrPtr<IQoriObject>> iterator(*cells);
  for (QORuint32 index = 0; ++iterator; ++index) addCell(index, iterator.key());
}

QORSmrPtr<IQoriObject> QORQL_DataRow::getCell(QORuint32 index) const { return _cells->at(index); }

QORSmrPtr<IQoriObject> QORQL_DataRow::getCell(const QORString& className) const {
  if (_parentTable == nullptr || className.isEmpty()) return {};
  return cellOfColumn(_parentTable->getObjectColumn(className));
}

QORSmrPtr<IQoriObject> QORQL_DataRow::getFunctionResults() const {
  return _parentTable == nullptr ? QORSmrPtr<IQoriObject>() : cellOfColumn(_parentTable->getFunctionColumn());
}

QORSmrPtr<IQoriObject> QORQL_DataRow::cellOfColumn(QORsint32 column) const {
  if (column < 0) return {};
  const QORuint32 cell = _parentTable->cellOfColumn(static_cast<QORuint32>(column));
  return cell < getCellCount() ? _cells->at(cell) : QORSmrPtr<IQoriObject>();
}

QORuint32 QORQL_DataRow::getCellCount() const noexcept { return _cells.IsNull() ? 0 : _cells->entries(); }

void QORQL_DataRow::raiseNoProperty(const QORString& className, const QORString& propertyName) {
  throw QORQL_Exception(
      QORQL_Exception::QORQL_INVALID_COLUMN_NAME,
      QORString("A non-existent property - '") + propertyName + "' was requested from class - '" + className + "'",
      {QORQL_Fault::kPropertyMissing, propertyName, className});
}

QORSmrPtr<IQoriProperty> QORQL_DataRow::readProperty(const IQoriObject& object, const QORString& className,
                                                     const QORString& propertyName) {
  try {
    QORSmrPtr<IQoriProperty> property(object.getProperty(propertyName, true));
    if (property.IsNull()) raiseNoProperty(className, propertyName);
    return property;
  } catch (const QORQL_Exception&) {
    throw;
  } catch (...) {
    QORQL_logError(quoted(Messages::kPropertyFailed, propertyName, className));
    return {};
  }
}

QORSmrPtr<IQoriProperty> QORQL_DataRow::getPropertyByName(const QORString& className,
                                                          const QORString& propertyName) const {
  const QORSmrPtr<IQoriObject> cell(getCell(className));
  return cell.IsNull() ? QORSmrPtr<IQoriProperty>() : readProperty(*cell, className, propertyName);
}

QORSmrPtr<IQoriValue> QORQL_DataRow::getPropertyValueByName(const QORString& className,
                                                            const QORString& propertyName) const {
  try {
    const QORSmrPtr<IQoriProperty> property(getPropertyByName(className, propertyName));
    return property.IsNull() ? QORSmrPtr<IQoriValue>() : property->getValue();
  } catch (const QORQL_Exception&) {
    throw;
  } catch (...) {
    QORQL_logError(quoted(Messages::kPropertyValueFailed, propertyName, className));
    return {};
  }
}

QORSmrPtr<IQoriValue> QORQL_DataRow::getInstanceName(const QORString& className) const {
  try {
    const QORSmrPtr<IQoriObject> cell(getCell(className));
    if (cell.IsNull()) return {};
    const QORSmrPtr<IQoriInstanceName> name(cell->getInstanceName());
    return name.IsNull() ? QORSmrPtr<IQoriValue>() : QORSmrPtr<IQoriValue>(new CQoriValue(name));
  } catch (...) {
    QORQL_logError(QORString(Messages::kInstanceNameFailed) + className + "'");
    return {};
  }
}

QORSmrPtr<IQoriValue> QORQL_DataRow::getFullInstanceName(const QORString& className) const {
  return getInstanceName(className);
}

QORString QORQL_DataRow::GetHostAddress() const {
  return _parentTable == nullptr ? QORString::emptyString() : _parentTable->GetHostAddress();
}

QORString QORQL_DataRow::GetHostPort() const {
  return _parentTable == nullptr ? QORString::emptyString() : _parentTable->GetHostPort();
}

void QORQL_DataRow::setFunctionValue(const QORQL_Evaluatable* function, const QORSmrPtr<IQoriValue>& value) {
  _function = function;
  _functionValue = value;
}

bool QORQL_DataRow::findFunctionValue(const QORQL_Evaluatable* function, QORSmrPtr<IQoriValue>& value) const {
  if (_function == nullptr || _function != function) return false;
  value = _functionValue;
  return true;
}
