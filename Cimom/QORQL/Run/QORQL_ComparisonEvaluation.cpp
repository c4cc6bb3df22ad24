// The truth of one comparison on one row. The right operand is evaluated first.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriObject.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;

[[noreturn]] void raiseInvalidType(const QORString& message, QORQL_Fault::Kind kind = QORQL_Fault::kOther) {
  throw QORQL_Exception(QORQL_Exception::QORQL_INVALID_DATA_TYPE, message, {kind});
}

// Compares the fixed operand, as receiver, with the elements in order: ANY stops
// at the first true, EVERY at the first false, and the last result counts.
QoriTruth relateElements(const IQoriValue& fixed, QoriRelation relation, const IQoriValue::List& elements, bool isAny) {
  bool result = false;
  QORValSlistIterator<Value> iterator(elements);
  try {
    while (++iterator) {
      const Value& element = iterator.key();
      result = !element.IsNull() && fixed.relate(relation, *element) == QoriTruth::True;
      if (result == isAny) break;
    }
  } catch (const QoriBaseException& error) {
    raiseInvalidType(error.getMessage());
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    raiseInvalidType(error.what());
  }
  return qori::truth(result);
}

// The namespace of the object on the left, or of the instance that it names.
QORString nameSpaceOf(const IQoriValue& value) {
  const QORSmrPtr<IQoriInstanceName> name(value.getReference());
  return name.IsNull() ? IQoriObject::getLocalNameSpace(value.getObject()) : name->getNameSpacePath()->getNameSpace();
}

QORString classNameOf(const IQoriValue& value) {
  const QORSmrPtr<IQoriObject> object(value.getObject());
  if (!object.IsNull()) return object->getClassName();
  const QORSmrPtr<IQoriInstanceName> name(value.getReference());
  return name.IsNull() ? QORString() : name->getClassName();
}

}  // namespace

QoriTruth QORQL_Comparison::relateValues(const Value& left, const Value& right) const {
  if (left.IsNull() || right.IsNull()) return QoriTruth::Null;
  const QoriRelation relation = QORQL_relationOf(_operator);
  if (eArrayComp == ArrayCompNone) return left->relate(relation, *right);
  const QORSmrPtr<IQoriValue::List> elements((asksLeft() ? left : right)->getArray());
  if (elements.IsNull()) return QoriTruth::Null;
  return relateElements(asksLeft() ? *right : *left, relation, *elements, asksAny());
}

bool QORQL_Comparison::likeValues(const Value& left, const Value& right) const {
  const auto isString = [](const Value& value) { return !value.IsNull() && value->getType()->getName() == "string"; };
  if (!isString(left) || !isString(right)) {
    const bool isNull = left.IsNull() || right.IsNull();
    raiseInvalidType(QORQL_ExecutionMessages::kInvalidLikeType,
                     isNull ? QORQL_Fault::kValueMissing : QORQL_Fault::kValuesIncomparable);
  }
  return left->toString().contains(right->toString(), true);
}

QoriTruth QORQL_Comparison::isaValues(const Value& left, const Value& right, const QORString& nameSpace) const {
  if (left.IsNull() || right.IsNull()) return QoriTruth::Null;
  const QORString className(classNameOf(*left));
  if (className.isEmpty()) return QoriTruth::Null;
  const QORString where(nameSpace.isEmpty() ? nameSpaceOf(*left) : nameSpace);
  return qori::truth(CQLQueryValidator::isSubClass(where, className, right->toString()));
}

QoriTruth QORQL_Comparison::compareValues(const Value& left, const Value& right, const QORString& nameSpace) const {
  switch (_operator) {
    case QORQL_OperatorNONE:
      return QORQL_truthOf(left);
    case QORQL_OperatorISNULL:
      return qori::truth(left.IsNull());
    case QORQL_OperatorISNOTNULL:
      return qori::truth(!left.IsNull());
    case QORQL_OperatorLIKE:
      return qori::truth(likeValues(left, right));
    case QORQL_OperatorISA:
      return isaValues(left, right, nameSpace);
    default:
      return QORQL_isRelational(_operator) ? relateValues(left, right) : QoriTruth::Null;
  }
}

Value QORQL_Comparison::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row,
                                 const QORString& nameSpace) {
  Value right;
  if (!_arithmetic2.IsNull()) right = _arithmetic2->evaluate(symbolTable, row);
  const Value left(_arithmetic1->evaluate(symbolTable, row));
  return _operator == QORQL_OperatorNONE ? left : QORQL_truthValue(compareValues(left, right, nameSpace));
}

Value QORQL_Comparison::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  return evaluate(symbolTable, row, QORString::emptyString());
}
