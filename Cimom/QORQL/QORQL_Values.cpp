// Arithmetic on values as the language allows it.
#include "Cimom/QORQL/QORQL_Values.h"

#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_Helper.h"

namespace {

bool isString(const IQoriValue& value) { return value.getType()->getName().isEqualCaseInsensitive("string"); }
bool isNumeric(const IQoriValue& value) {
  return value.scalar().isNumber() || QORQL_Helper::isNumeric(value.getType()->getName());
}

}  // namespace

QORSmrPtr<IQoriValue> QORQL_combine(QORQL_Operator op, const QORSmrPtr<IQoriValue>& left,
                                    const QORSmrPtr<IQoriValue>& right) {
  if (left.IsNull() || right.IsNull()) return {};
  const bool areNumeric = isNumeric(*left) && isNumeric(*right);
  if (!areNumeric && !(op == QORQL_OperatorPLUS && isString(*left) && isString(*right))) return {};
  switch (op) {
    case QORQL_OperatorPLUS:
      return left->add(*right);
    case QORQL_OperatorMINUS:
      return left->subtract(*right);
    case QORQL_OperatorMUL:
      return left->multiply(*right);
    case QORQL_OperatorDIV:
      return left->divide(*right);
    default:
      return {};
  }
}

QORSmrPtr<IQoriValue> QORQL_negate(const QORSmrPtr<IQoriValue>& value) {
  if (value.IsNull()) return {};
  if (value->getType()->getName() == "uint64") {
    throw QORQL_Exception(QORQL_Exception::QORQL_INVALID_DATA_TYPE, QORQL_ExecutionMessages::kMinusOnUint64);
  }
  return value->negate();
}

QORSmrPtr<IQoriValue> QORQL_truthValue(QoriTruth truth) {
  if (truth == QoriTruth::Null) return {};
  return QORSmrPtr<IQoriValue>(new CQoriValue(truth == QoriTruth::True, CQoriType::boolean));
}

bool QORQL_isRelational(QORQL_Operator op) noexcept {
  return (op >= QORQL_OperatorEQUAL && op <= QORQL_OperatorGREATEREQUAL) ||
         (op >= QORQL_OperatorLEFTJOIN && op <= QORQL_OperatorFULLOUTERJOIN);
}

QoriRelation QORQL_relationOf(QORQL_Operator op) noexcept {
  switch (op) {
    case QORQL_OperatorNOTEQUAL:
      return QoriRelation::NotEqual;
    case QORQL_OperatorLESS:
      return QoriRelation::Less;
    case QORQL_OperatorGREATER:
      return QoriRelation::Greater;
    case QORQL_OperatorLESSEQUAL:
      return QoriRelation::LessEqual;
    case QORQL_OperatorGREATEREQUAL:
      return QoriRelation::GreaterEqual;
    default:
      return QoriRelation::Equal;  // EQUAL, and the join operators, which match by equality
  }
}
