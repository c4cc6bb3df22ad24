// The visitor that finds the classes and the property that an expression names.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"

#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"

QORQL_IdentifierFinder::QORQL_IdentifierFinder() : _classNameList(ClassNameList::Make()) {}

void QORQL_IdentifierFinder::visitFactor(const QORQL_Factor& factor) {
  ++_countFactors;
  _isClassReference = factor.isClassReference();
  if (!factor.getClassName().IsNull()) _classNameList->append(factor.getClassName());
  if (factor.isPropertyReference()) {
    _isPropertyReference = true;
    _className = factor.getClassName();
    _propertyName = factor.getPropertyName();
  }
}

void QORQL_IdentifierFinder::visitFunction(const QORQL_Function& function) {
  ++_countFunctions;
  if (function.getFunctionID() == QORQL_FUNCTIONID_OBJECTPATH) _isObjectPath = true;
}

QORboolean QORQL_IdentifierFinder::isClassReference() const noexcept {
  return _countFactors == 1 && (_isClassReference || _isObjectPath);
}

QORboolean QORQL_IdentifierFinder::isPropertyReference() const noexcept {
  return _countFactors == 1 && _isPropertyReference;
}

QORSmrPtr<QORString> QORQL_IdentifierFinder::getClassName() const {
  return _countFactors == 1 ? _className : QORSmrPtr<QORString>();
}

QORSmrPtr<QORString> QORQL_IdentifierFinder::getPropertyName() const {
  return _countFactors == 1 ? _propertyName : QORSmrPtr<QORString>();
}
