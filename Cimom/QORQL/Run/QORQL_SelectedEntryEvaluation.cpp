// The value of a select entry on a row.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_DataRow.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SelectedEntry.h"

QORSmrPtr<IQoriValue> QORQL_SelectedEntry::evaluate(QORQL_SymbolTable& symbolTable,
                                                    QORSmrPtr<QORQL_DataRow>& row) const {
  if (_functionID != QORQL_FUNCTIONID_UNKNOWN) {
    const QORSmrPtr<IQoriObject> values(row->getFunctionResults());
    if (!values.IsNull()) {
      const QORSmrPtr<IQoriProperty> property(values->getProperty(QORQL_SelectList::_functionID(*this), true));
      return property.IsNull() ? QORSmrPtr<IQoriValue>() : property->getValue();
    }
  }
  if (isPlainProperty()) return row->getPropertyValueByName(_className, _propertyName);
  return _expression.IsNull() ? QORSmrPtr<IQoriValue>() : _expression->evaluate(symbolTable, row);
}
