// The names of a FROM clause.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Symbol.h"

#include <utility>

#include "Cimom/QORQL/QORQL_SymbolTable.h"

QORQL_Symbol::QORQL_Symbol(QORQL_SYMBOLTYPE type, const QORString& name, QORboolean isNestedQuery,
                           QORSmrPtr<QORQL_SymbolTable> symbolTable)
    : _type(type),
      _name(name),
      _alias(QORString::emptyString()),
      _isNestedQuery(isNestedQuery),
      _symbolTable(std::move(symbolTable)) {}

QORQL_Symbol::QORQL_Symbol(QORQL_SYMBOLTYPE type, const QORString& name, const QORString& alias,
                           QORSmrPtr<QORQL_ClassInfo>& classInfo, QORSmrPtr<QORQL_SymbolTable> symbolTable)
    : _type(type),
      _name(name),
      _alias(alias),
      _isNestedQuery(false),
      _classInfo(classInfo),
      _symbolTable(std::move(symbolTable)) {}

QORQL_Symbol::~QORQL_Symbol() = default;

QORString QORQL_Symbol::getAlias() const { return _alias; }

QORboolean QORQL_Symbol::isAlias() const { return false; }

void QORQL_Symbol::setClassInfo(QORSmrPtr<QORQL_ClassInfo>& classInfo) {
  if (_classInfo.IsNull() || _classInfo->getPropertyList()->isEmpty()) {
    _classInfo = new QORQL_ClassInfo(classInfo->getClassName(), nullptr, false);
  }
  _classInfo->getPropertyList()->append(*classInfo->getPropertyList());
  _classInfo->setNeedAllProperties(classInfo->needAllProperties());
}

QORSmrPtr<QORQL_ClassInfo> QORQL_Symbol::getClassInfo() const { return _classInfo; }

QORString QORQL_Symbol::getClassName() const { return _name; }

QORQL_DelegatorSymbol::QORQL_DelegatorSymbol(QORQL_SYMBOLTYPE type, const QORString& name, const QORString& alias,
                                             QORSmrPtr<QORQL_ClassInfo>& classInfo, QORSmrPtr<QORQL_Symbol> delegatee,
                                             QORSmrPtr<QORQL_SymbolTable> symbolTable)
    : QORQL_Symbol(type, name, alias, classInfo, std::move(symbolTable)), _delegatee(std::move(delegatee)) {}

QORQL_DelegatorSymbol::~QORQL_DelegatorSymbol() = default;

QORString QORQL_DelegatorSymbol::getAlias() const { return getName(); }

QORboolean QORQL_DelegatorSymbol::isAlias() const { return true; }

void QORQL_DelegatorSymbol::setClassInfo(QORSmrPtr<QORQL_ClassInfo>& classInfo) { _delegatee->setClassInfo(classInfo); }

QORSmrPtr<QORQL_ClassInfo> QORQL_DelegatorSymbol::getClassInfo() const { return _delegatee->getClassInfo(); }

QORString QORQL_DelegatorSymbol::getClassName() const {
  return _delegatee.IsNull() ? getName() : _delegatee->getName();
}
