// The comparison is looked at again on the row: what raises an error knows its own values alone.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_RowFault.h"

#include <utility>

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExpressionPlaces.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "cimom/CQoriProviderException.h"
#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriObject.h"

namespace {

using Fault = QORQL_Fault;
using Node = QORSmrPtr<QORQL_Evaluatable>;
using Value = QORSmrPtr<IQoriValue>;

// Empty for a name that FROM does not have, and where the row has no object of the class.
QORString pathOf(const QORQL_DataRow& row, const QORString& className) {
  const QORSmrPtr<IQoriObject> object(row.getCell(className));
  const QORSmrPtr<IQoriInstanceName> name(object.IsNull() ? QORSmrPtr<IQoriInstanceName>() : object->getInstanceName());
  return name.IsNull() ? QORString() : name->toString();
}

// The first reference to a class of FROM, and the object that the row has of it.
void noteReference(Fault& fault, QORQL_Evaluatable& side, const QORQL_DataRow& row) {
  QORQL_findPlace(side, [&](const QORQL_Factor& factor) {
    if (factor.getClassName().IsNull() || factor.getPropertyName().IsNull()) return Fault::kNowhere;
    fault.name = *factor.getPropertyName();
    fault.className = *factor.getClassName();
    fault.object = pathOf(row, fault.className);
    return factor.getOffset();
  });
}

QORString typeOf(const Value& value) {
  if (value.IsNull()) return {};
  return value->isArray() ? value->getType()->getName() + "[]" : value->getType()->getName();
}

bool isLiteral(const Node& side) {
  const QORQL_Factor* const leaf = QORQL_peeledLeaf(side.Get());
  return leaf != nullptr && !leaf->getLiteral().IsNull();
}

// A comparison and what its sides are on a row.
class Sides {
 public:
  // THROWS what evaluation throws.
  Sides(QORQL_Comparison& comparison, QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row)
      : _comparison(comparison), _row(*row) {
    if (!right().IsNull()) _rightValue = right()->evaluate(symbolTable, row);
    _leftValue = left()->evaluate(symbolTable, row);
  }

  // The operand of LIKE that is NULL, or no text.
  Fault faultOfLike(Fault::Kind kind) const {
    const bool isLeft = _leftValue.IsNull() || (!_rightValue.IsNull() && _leftValue->getType()->getName() != "string");
    Fault fault = faultAt(kind, isLeft);
    if (kind == Fault::kValuesIncomparable) fault.otherType = "string";
    return fault;
  }
  // Of the kind kOther where the values compare. A literal is what is written wrong.
  Fault faultOfRelation() const {
    try {
      _comparison.compareValues(_leftValue, _rightValue, QORString::emptyString());
      return {};
    } catch (const QoriBaseException&) {
      const bool isLeft = !isLiteral(right()) || isLiteral(left());
      Fault fault = faultAt(Fault::kValuesIncomparable, isLeft);
      noteReference(fault, *(isLeft ? left() : right()), _row);
      if (fault.name.isEmpty()) noteReference(fault, *(isLeft ? right() : left()), _row);
      return fault;
    }
  }

 private:
  const Node& left() const noexcept { return _comparison.getLHSArithmeticExpression(); }
  const Node& right() const noexcept { return _comparison.getRHSArithmeticExpression(); }

  Fault faultAt(Fault::Kind kind, bool isLeft) const {
    const Node& side = isLeft ? left() : right();
    Fault fault{kind};
    fault.offset = QORQL_startOf(*side);
    fault.type = typeOf(isLeft ? _leftValue : _rightValue);
    fault.otherType = typeOf(isLeft ? _rightValue : _leftValue);
    noteReference(fault, *side, _row);
    return fault;
  }

  const QORQL_Comparison& _comparison;
  const QORQL_DataRow& _row;
  Value _leftValue;
  Value _rightValue;
};

// What is known of an error whose own fault is given.
Fault explained(const Fault& known, QORQL_Comparison& comparison, QORQL_SymbolTable& symbolTable,
                QORSmrPtr<QORQL_DataRow>& row) {
  Fault fault(known);
  if (known.kind == Fault::kElementMissing || known.kind == Fault::kPropertyMissing) {
    fault.object = pathOf(*row, known.className);
    return fault;
  }
  if (known.kind == Fault::kPathUnread) return fault;
  const bool isLike = comparison.getOperator() == QORQL_OperatorLIKE && known.kind != Fault::kOther;
  const bool isRelation = QORQL_isRelational(comparison.getOperator()) && known.kind == Fault::kOther;
  if ((!isLike && !isRelation) || QORQL_containsInstanceOf(comparison)) return fault;
  try {
    const Sides sides(comparison, symbolTable, row);
    return isLike ? sides.faultOfLike(known.kind) : sides.faultOfRelation();
  } catch (const QoriBaseException&) {
    return fault;  // a side has no value: the comparison is not the cause
  }
}

}  // namespace

void QORQL_throwWithFault(QORQL_Comparison& comparison, QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  try {
    throw;
  } catch (QORQL_Exception& error) {
    error.setFault(explained(error.getFault(), comparison, symbolTable, row));
    throw;
  } catch (const CQoriProviderException&) {
    throw;
  } catch (const QoriBaseException& error) {
    Fault fault = explained({}, comparison, symbolTable, row);
    if (fault.kind == Fault::kOther) throw;
    throw QORQL_ValueException(error, std::move(fault));
  }
}
