// The value of a factor on one row: nested node, literal, property or whole object.
// SPDX-License-Identifier: Apache-2.0
#include <utility>

#include "Cimom/QORQL/QORQL_DataRow.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_SelectedEntry.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace Messages = QORQL_ExecutionMessages;

QORSmrPtr<IQoriValue> QORQL_Factor::_evaluateNested(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  switch (_operator) {
    case QORQL_OperatorMINUS:
      return QORQL_negate(_evaluatable->evaluate(symbolTable, row));
    case QORQL_OperatorNONE:
    case QORQL_OperatorQUERYFUNCTION:
      return _evaluatable->evaluate(symbolTable, row);
    default:
      throw QORQL_Exception(QORQL_Exception::QORQL_INTERNAL_ERROR, Messages::kInvalidFactorOperator);
  }
}

QORSmrPtr<IQoriValue> QORQL_Factor::selectElements(const QORSmrPtr<IQoriValue>& value) const {
  if (value.IsNull() || _array_index_list == kNoArray || _array_index_list == kWholeArray) return value;
  const QORSmrPtr<IQoriValue::List> elements(value->getArray());
  if (elements.IsNull()) return {};  // no array has no elements to select
  if (_array_index_list == kEmptyBrackets) {
    const QORSmrPtr<IQoriValue::List> copy(new IQoriValue::List(*elements));
    return QORSmrPtr<IQoriValue>(new CQoriValue(copy, value->getType()));
  }
  try {
    return elements->at(static_cast<QORuint32>(_array_index_list));
  } catch (const QORBoundsException& error) {
    QORQL_Fault fault{QORQL_Fault::kElementMissing, *_idPropertyName, *_idClassName, getOffset()};
    fault.length = elements->entries();
    throw QORQL_Exception(QORQL_Exception::QORQL_INVALID_DATA_TYPE, error.getMessage(), std::move(fault));
  }
}

QORSmrPtr<IQoriValue> QORQL_Factor::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  if (!_selectedEntry.IsNull()) return _selectedEntry->evaluate(symbolTable, row);
  if (!_evaluatable.IsNull()) return _evaluateNested(symbolTable, row);
  if (_idClassName.IsNull()) {
    if (!_literal.IsNull()) return _literal;
    throw QORQL_Exception(QORQL_Exception::QORQL_INTERNAL_ERROR, Messages::kInvalidFactor);
  }
  if (QORQL_hasPath(*this)) {
    throw QORQL_Exception(QORQL_Exception::QORQL_INTERNAL_ERROR, Messages::kInvalidFactor,
                          {QORQL_Fault::kPathUnread, *_idPropertyName, {}, getOffset()});
  }
  if (!_idPropertyName.IsNull() && !_idPropertyName->isEmpty()) {
    return selectElements(row->getPropertyValueByName(*_idClassName, *_idPropertyName));
  }
  const QORSmrPtr<IQoriObject> object(row->getCell(*_idClassName));
  return object.IsNull() ? QORSmrPtr<IQoriValue>() : QORSmrPtr<IQoriValue>(new CQoriValue(object));
}
