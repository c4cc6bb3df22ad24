// How a filter compares two values: by the precision of their types.
#include <array>
#include <string_view>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/QORQL_Helper.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "cimom/CQoriValue.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;

constexpr std::array<std::string_view, 8> kIntegerTypes = {"uint8", "uint16", "uint32", "uint64",
                                                           "sint8", "sint16", "sint32", "sint64"};

// A pair that the table does not hold.
constexpr int kNoCode = -1;

// What to convert, by right type (row) and left type (column), both in the order above.
constexpr int kPrecision[8][8] = {
    {0, 2, 2, 2, 3, 2, 2, 2},  // uint8
    {1, 0, 2, 2, 4, 4, 2, 5},  // uint16
    {1, 1, 0, 2, 5, 5, 5, 5},  // uint32
    {1, 1, 1, 0, 5, 5, 5, 5},  // uint64
    {3, 4, 5, 5, 0, 2, 2, 2},  // sint8
    {1, 4, 5, 5, 1, 0, 2, 2},  // sint16
    {1, 1, 5, 5, 1, 1, 0, 2},  // sint32
    {1, 1, 1, 5, 1, 1, 1, 0},  // sint64
};

int indexOf(const QORString& type) noexcept {
  for (std::size_t i = 0; i < kIntegerTypes.size(); ++i) {
    if (type.view() == kIntegerTypes[i]) return static_cast<int>(i);
  }
  return kNoCode;
}

bool isReal(const QORString& type) noexcept { return type == "real32" || type == "real64"; }
bool isBooleanAndText(const QORString& a, const QORString& b) noexcept { return a == "boolean" && b == "string"; }

Value converted(const Value& value, const QORSmrPtr<IQoriType>& type) { return Value(new CQoriValue(*value, type)); }

bool compareIntegers(const Value& lhs, const Value& rhs, QORQL_Operator op) {
  const QORString& left = lhs->getType()->getName();
  const QORString& right = rhs->getType()->getName();
  switch (CQLQueryStatement::findPrecisionType(left, right)) {
    case CQL_LHS_LOWER:
      return CQLQueryStatement::compare(CQLQueryStatement::convertToHighPrecision(left, right, lhs), rhs, op);
    case CQL_RHS_LOWER:
      return CQLQueryStatement::compare(lhs, CQLQueryStatement::convertToHighPrecision(right, left, rhs), op);
    case CQL_LHS_AND_RHS_CONVERT_TO_SINT16:
      return CQLQueryStatement::compare(converted(lhs, CQoriType::sint16), converted(rhs, CQoriType::sint16), op);
    case CQL_LHS_AND_RHS_CONVERT_TO_SINT32:
      return CQLQueryStatement::compare(converted(lhs, CQoriType::sint32), converted(rhs, CQoriType::sint32), op);
    case CQL_LHS_AND_RHS_CONVERT_TO_SINT64:
      return CQLQueryStatement::compare(converted(lhs, CQoriType::sint64), converted(rhs, CQoriType::sint64), op);
    default:
      return CQLQueryStatement::compare(lhs, rhs, op);
  }
}

Value booleanValue(bool value) { return Value(new CQoriValue(value, CQoriType::boolean)); }

}  // namespace

bool CQLQueryStatement::isNumericalData(const QORString& lhsType, const QORString& rhsType) noexcept {
  return QORQL_Helper::isNumeric(lhsType) && QORQL_Helper::isNumeric(rhsType);
}

CQLPrecisionCode CQLQueryStatement::findPrecisionType(const QORString& lhsType, const QORString& rhsType) {
  if (lhsType == rhsType) return CQL_LHS_EQUAL_RHS;
  const int left = indexOf(lhsType);
  const int right = indexOf(rhsType);
  if (left == kNoCode || right == kNoCode) throw 0;
  return static_cast<CQLPrecisionCode>(kPrecision[right][left]);
}

Value CQLQueryStatement::convertToHighPrecision(const QORString& /*fromType*/, const QORString& toType,
                                                const Value& value) {
  return converted(value, CQoriType::find(toType, false));
}

bool CQLQueryStatement::compare(const Value& lhs, const Value& rhs, QORQL_Operator op) {
  return lhs->relate(QORQL_relationOf(op), *rhs) == QoriTruth::True;
}

bool CQLQueryStatement::compareRealValues(const Value& lhs, const Value& rhs, QORQL_Operator op) {
  return compare(lhs, rhs, op);
}

// Arrays without ANY and EVERY are equal or not as wholes; everything else is
// compared when both are numbers, of one type, or boolean and text.
bool CQLQueryStatement::doComparisonOperation(const Value& lhs, const Value& rhs, QORQL_Operator op) {
  if (lhs.IsNull() || rhs.IsNull()) return false;
  if (lhs->isArray() || rhs->isArray()) return compare(lhs, rhs, op);
  const QORString& left = lhs->getType()->getName();
  const QORString& right = rhs->getType()->getName();
  if (isNumericalData(left, right)) {
    return isReal(left) || isReal(right) ? compareRealValues(lhs, rhs, op) : compareIntegers(lhs, rhs, op);
  }
  const bool areComparable = left == right || isBooleanAndText(left, right) || isBooleanAndText(right, left);
  return areComparable && compare(lhs, rhs, op);
}

Value CQLQueryStatement::doComparisonOpEqualsNotEquals(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                                       QORQL_Comparison::QORQL_ARRAY_COMP arrayComp) {
  if (arrayComp != QORQL_Comparison::ArrayCompNone) return doArrayComparisonOperations(lhs, rhs, op, arrayComp);
  return booleanValue(doComparisonOperation(lhs, rhs, op));
}

Value CQLQueryStatement::doComparisonOpGreaterLess(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                                   QORQL_Comparison::QORQL_ARRAY_COMP arrayComp) {
  if (arrayComp != QORQL_Comparison::ArrayCompNone) return doArrayComparisonOperations(lhs, rhs, op, arrayComp);
  return booleanValue(doComparisonOperation(lhs, rhs, op));
}

Value CQLQueryStatement::doArrayComparisonOperations(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                                     QORQL_Comparison::QORQL_ARRAY_COMP arrayComp) {
  return doAnyEveryArrayComparisonOps(lhs, rhs, op, arrayComp);
}

// In the written order; an empty array satisfies neither ANY nor EVERY, and
// what is no array has no elements.
Value CQLQueryStatement::doAnyEveryArrayComparisonOps(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                                      QORQL_Comparison::QORQL_ARRAY_COMP arrayComp) {
  const bool isLeft =
      arrayComp == QORQL_Comparison::ArrayCompAnyLeft || arrayComp == QORQL_Comparison::ArrayCompEveryLeft;
  const bool isAny =
      arrayComp == QORQL_Comparison::ArrayCompAnyLeft || arrayComp == QORQL_Comparison::ArrayCompAnyRight;
  const QORSmrPtr<IQoriValue::List> elements((isLeft ? lhs : rhs)->getArray());
  if (elements.IsNull() || elements->isEmpty()) return booleanValue(false);
  QORValSlistIterator<Value> iterator(*elements);
  while (++iterator) {
    const bool holds =
        isLeft ? doComparisonOperation(iterator.key(), rhs, op) : doComparisonOperation(lhs, iterator.key(), op);
    if (holds == isAny) return booleanValue(isAny);
  }
  return booleanValue(!isAny);
}
