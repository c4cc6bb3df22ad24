// The row functions OBJECTPATH and INSTANCEOF.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_DataRow.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_Log.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriValue.h"

namespace Messages = QORQL_ExecutionMessages;

namespace {

using Value = QORSmrPtr<IQoriValue>;

// Null when the instance is not available, for whatever reason.
QORSmrPtr<IQoriObject> fetchInstance(const QORSmrPtr<IQoriObject>& object) {
  try {
    CIMApi client;
    return client.getInstance(object->getNameSpace(), object->getInstanceName(), CIMApi::PropertyNames(),
                              CIMApi::DefaultTimeout, nullptr, nullptr, "");
  } catch (...) {
    return {};
  }
}

}  // namespace

QORSmrPtr<QORString> QORQL_Function::argumentClass() const {
  if (_parameters->entries() != 1) return {};
  QORQL_IdentifierFinder* const finder = new QORQL_IdentifierFinder();
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  _parameters->first()->accept(visitor);
  const QORQL_IdentifierFinder::ClassNameList names(finder->getClassNameList());
  return names->entries() == 1 ? names->first() : QORSmrPtr<QORString>();
}

Value QORQL_Function::_evaluateObjectPath(QORSmrPtr<QORQL_DataRow>& row) const {
  const QORSmrPtr<QORString> className(argumentClass());
  return className.IsNull() ? Value() : row->getFullInstanceName(*className);
}

bool QORQL_Function::isComplete(const QORQL_SymbolTable& symbolTable, const QORString& className) {
  const QORSmrPtr<QORQL_Symbol> symbol(symbolTable.lookupIgnoringCase(className));
  if (symbol.IsNull()) return false;
  const QORSmrPtr<QORQL_ClassInfo> info(symbol->getClassInfo());
  return !info.IsNull() && (info->needAllProperties() || info->fetchAllProperties());
}

// The row's object may hold some properties only; then the whole instance is
// asked for; where that fails, the row's object is used.
Value QORQL_Function::instanceOf(const QORSmrPtr<IQoriObject>& object, bool isComplete) {
  if (isComplete) return Value::Make<CQoriValue>(object);
  const QORSmrPtr<IQoriObject> whole(fetchInstance(object));
  if (!whole.IsNull()) return Value::Make<CQoriValue>(whole);
  QORQL_logAs(Messages::kFunctionWho, Messages::kGetInstanceFailed, QoriTraceLog::kError);
  return Value::Make<CQoriValue>(object);
}

Value QORQL_Function::_evaluateInstanceOf(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) const {
  const QORSmrPtr<QORString> className(argumentClass());
  if (className.IsNull()) return {};
  const QORSmrPtr<IQoriObject> object(row->getCell(*className));
  return object.IsNull() ? Value() : instanceOf(object, isComplete(symbolTable, *className));
}

Value QORQL_Function::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  Value folded;
  if (row->findFunctionValue(this, folded)) return folded;
  switch (_fid) {
    case QORQL_FUNCTIONID_OBJECTPATH:
      return _evaluateObjectPath(row);
    case QORQL_FUNCTIONID_INSTANCEOF:
      return _evaluateInstanceOf(symbolTable, row);
    default:
      throw QORQL_Exception(QORQL_Exception::QORQL_INTERNAL_ERROR, Messages::kInvalidFunction);
  }
}
