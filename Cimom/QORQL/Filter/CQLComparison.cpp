// How a filter compares two values: by the precision of their types.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLComparison.h"

#include <array>
#include <string_view>

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
bool saysTruth(const Value& text) { return CQLComparison::truthOf(text->toString().view()) >= 0; }

Value as(const QORSmrPtr<IQoriType>& type, const Value& value) { return Value(new CQoriValue(*value, type)); }

bool compareIntegers(const Value& lhs, const Value& rhs, QORQL_Operator op) {
  const QORString& left = lhs->getType()->getName();
  const QORString& right = rhs->getType()->getName();
  switch (CQLComparison::precisionOf(left, right)) {
    case CQL_LHS_LOWER:
      return CQLComparison::compare(CQLComparison::converted(right, lhs), rhs, op);
    case CQL_RHS_LOWER:
      return CQLComparison::compare(lhs, CQLComparison::converted(left, rhs), op);
    case CQL_LHS_AND_RHS_CONVERT_TO_SINT16:
      return CQLComparison::compare(as(CQoriType::sint16, lhs), as(CQoriType::sint16, rhs), op);
    case CQL_LHS_AND_RHS_CONVERT_TO_SINT32:
      return CQLComparison::compare(as(CQoriType::sint32, lhs), as(CQoriType::sint32, rhs), op);
    case CQL_LHS_AND_RHS_CONVERT_TO_SINT64:
      return CQLComparison::compare(as(CQoriType::sint64, lhs), as(CQoriType::sint64, rhs), op);
    default:
      return CQLComparison::compare(lhs, rhs, op);
  }
}

// Neither both numbers nor arrays: of one type, or a boolean and a text that says one.
bool compareOthers(const Value& lhs, const Value& rhs, QORQL_Operator op) {
  const QORString& left = lhs->getType()->getName();
  const QORString& right = rhs->getType()->getName();
  if (isBooleanAndText(left, right) && !saysTruth(rhs)) return false;
  if (isBooleanAndText(right, left) && !saysTruth(lhs)) return false;
  const bool areComparable = left == right || isBooleanAndText(left, right) || isBooleanAndText(right, left);
  return areComparable && CQLComparison::compare(lhs, rhs, op);
}

bool satisfies(const Value& lhs, const Value& rhs, QORQL_Operator op) {
  try {
    return CQLComparison::decide(lhs, rhs, op) == QoriTruth::True;
  } catch (...) {
    return false;
  }
}

}  // namespace

bool CQLComparison::areNumbers(const QORString& lhsType, const QORString& rhsType) noexcept {
  return QORQL_isNumericType(lhsType.view()) && QORQL_isNumericType(rhsType.view());
}

CQLPrecisionCode CQLComparison::precisionOf(const QORString& lhsType, const QORString& rhsType) {
  if (lhsType == rhsType) return CQL_LHS_EQUAL_RHS;
  const int left = indexOf(lhsType);
  const int right = indexOf(rhsType);
  if (left == kNoCode || right == kNoCode) throw 0;
  return static_cast<CQLPrecisionCode>(kPrecision[right][left]);
}

Value CQLComparison::converted(const QORString& toType, const Value& value) {
  static const QORSmrPtr<IQoriType>* const types[] = {&CQoriType::uint8,  &CQoriType::uint16, &CQoriType::uint32,
                                                      &CQoriType::uint64, &CQoriType::sint8,  &CQoriType::sint16,
                                                      &CQoriType::sint32, &CQoriType::sint64};
  const int index = indexOf(toType);
  return index == kNoCode ? Value() : as(*types[index], value);
}

bool CQLComparison::compare(const Value& lhs, const Value& rhs, QORQL_Operator op) {
  return lhs->relate(QORQL_relationOf(op), *rhs) == QoriTruth::True;
}

bool CQLComparison::areComparableArrays(const IQoriValue& lhs, const IQoriValue& rhs) {
  if (!lhs.isArray() || !rhs.isArray()) return false;
  const QORString& left = lhs.getType()->getName();
  const QORString& right = rhs.getType()->getName();
  return left == right || areNumbers(left, right);
}

// Arrays without ANY and EVERY are equal or not as wholes.
QoriTruth CQLComparison::decide(const Value& lhs, const Value& rhs, QORQL_Operator op) {
  if (lhs.IsNull() || rhs.IsNull()) return QoriTruth::Null;
  if (lhs->isArray() || rhs->isArray()) {
    return areComparableArrays(*lhs, *rhs) ? lhs->relate(QORQL_relationOf(op), *rhs) : QoriTruth::Null;
  }
  const QORString& left = lhs->getType()->getName();
  const QORString& right = rhs->getType()->getName();
  if (!areNumbers(left, right)) return qori::truth(compareOthers(lhs, rhs, op));
  return qori::truth(isReal(left) || isReal(right) ? compare(lhs, rhs, op) : compareIntegers(lhs, rhs, op));
}

QoriTruth CQLComparison::decideElements(const Value& lhs, const Value& rhs, QORQL_Operator op,
                                        QORQL_Comparison::QORQL_ARRAY_COMP arrayComp) {
  if (lhs.IsNull() || rhs.IsNull()) return QoriTruth::Null;
  const bool isLeft = QORQL_Comparison::asksLeft(arrayComp);
  const bool isAny = QORQL_Comparison::asksAny(arrayComp);
  const QORSmrPtr<IQoriValue::List> elements((isLeft ? lhs : rhs)->getArray());
  if (elements.IsNull()) return QoriTruth::Null;
  if (elements->isEmpty()) return QoriTruth::False;
  QORValSlistIterator<Value> iterator(*elements);
  while (++iterator) {
    const bool holds = isLeft ? satisfies(iterator.key(), rhs, op) : satisfies(lhs, iterator.key(), op);
    if (holds == isAny) return qori::truth(isAny);
  }
  return qori::truth(!isAny);
}
