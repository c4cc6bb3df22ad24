// Arithmetic on values as the language allows it.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Values.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"

namespace {

bool isString(const IQoriValue& value) { return value.getType()->getName().isEqualCaseInsensitive("string"); }
bool isNumeric(const IQoriValue& value) {
  return value.scalar().isNumber() || QORQL_isNumericType(value.getType()->getName().view());
}

bool isText(const QORSmrPtr<IQoriValue>& value) {
  return !value.IsNull() && value->scalar().kind == QoriScalarKind::Text && isString(*value);
}

// Texts that follow one another are joined at once: pair by pair, the result would be copied for each of them.
QORSmrPtr<IQoriValue> joinTexts(const std::vector<QORSmrPtr<IQoriValue>>& values, std::size_t first, std::size_t end,
                                const QORSmrPtr<IQoriValue>& last) {
  std::string text;
  for (std::size_t i = first; i != end; ++i) text += values[i]->scalar().text->view();
  text += last->scalar().text->view();
  return QORSmrPtr<IQoriValue>(new CQoriValue(QORString(text.data(), text.size())));
}

}  // namespace

bool QORQL_isNumericType(std::string_view typeName) noexcept {
  static constexpr std::string_view kNumeric[] = {"uint8",  "uint16", "uint32", "uint64", "sint8",
                                                  "sint16", "sint32", "sint64", "real32", "real64"};
  return std::any_of(std::begin(kNumeric), std::end(kNumeric),
                     [&](std::string_view name) { return QORString::equalIgnoringCase(typeName, name); });
}

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

QORSmrPtr<IQoriValue> QORQL_combineChain(const std::vector<QORQL_Operator>& operators,
                                         const std::vector<QORSmrPtr<IQoriValue>>& values) {
  QORSmrPtr<IQoriValue> result(values.back());
  for (std::size_t end = values.size() - 1; end != 0;) {
    std::size_t first = end;
    if (isText(result)) {
      while (first != 0 && operators[first - 1] == QORQL_OperatorPLUS && isText(values[first - 1])) --first;
    }
    if (end - first > 1) {
      result = joinTexts(values, first, end, result);
      end = first;
    } else {
      --end;
      result = QORQL_combine(operators[end], values[end], result);
    }
  }
  return result;
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

QoriTruth QORQL_truthOf(const QORSmrPtr<IQoriValue>& value) {
  if (value.IsNull()) return QoriTruth::Null;
  const QoriScalar view = value->scalar();
  switch (view.kind) {
    case QoriScalarKind::Boolean:
      return qori::truth(view.b);
    case QoriScalarKind::Unsigned:
      return qori::truth(view.u != 0);
    case QoriScalarKind::Signed:
      return qori::truth(view.s != 0);
    case QoriScalarKind::Real:
      return qori::truth(view.r != 0.0);
    case QoriScalarKind::Text:
      return qori::truth(QORString::equalIgnoringCase(view.text->view(), "TRUE"));
    default:
      return QoriTruth::False;
  }
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

QoriRelation QORQL_mirrored(QoriRelation relation) noexcept {
  switch (relation) {
    case QoriRelation::Less:
      return QoriRelation::Greater;
    case QoriRelation::Greater:
      return QoriRelation::Less;
    case QoriRelation::LessEqual:
      return QoriRelation::GreaterEqual;
    case QoriRelation::GreaterEqual:
      return QoriRelation::LessEqual;
    default:
      return relation;
  }
}
