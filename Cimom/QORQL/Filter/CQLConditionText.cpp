// A filter's conditions by the printer of expressions, its values, and why two of them do not compare.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLConditionText.h"

#include "Cimom/QORQL/Filter/CQLComparison.h"
#include "Cimom/QORQL/Filter/CQLPropertyPath.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_ExpressionText.h"

namespace {

// As CQLTextOfMismatch, for values or arrays by the type of their elements.
std::string mismatchOfTypes(const QORSmrPtr<IQoriValue>& left, const QORSmrPtr<IQoriValue>& right) {
  const QORString& leftType = left->getType()->getName();
  const QORString& rightType = right->getType()->getName();
  if (leftType == rightType || CQLComparison::areNumbers(leftType, rightType)) return "";
  const std::string mismatch =
      ": " + std::string(leftType.view()) + " and " + std::string(rightType.view()) + " do not compare";
  if (left->isArray() && right->isArray()) return mismatch;
  const bool isTruthOnLeft = leftType == "boolean" && rightType == "string";
  if (isTruthOnLeft || (leftType == "string" && rightType == "boolean")) {
    const QORSmrPtr<IQoriValue>& text = isTruthOnLeft ? right : left;
    const bool isComparable = text->isArray() || CQLComparison::truthOf(text->toString().view()) >= 0;
    return isComparable ? "" : ": a boolean compares with TRUE and FALSE only";
  }
  return mismatch;
}

class ConditionText : public QORQL_ExpressionPrinter {
 public:
  explicit ConditionText(const CQLScope& scope) : QORQL_ExpressionPrinter({false, false}), _scope(scope) {}

 private:
  std::string ofReference(const QORQL_Factor& factor) const override { return CQLPropertyPath(_scope, factor).text(); }
  std::string ofClassName(const QORQL_Evaluatable* side) const override {
    const auto* const sum = QORQL_nodeAs<QORQL_Arithmetic>(side);
    return sum == nullptr ? of(side) : ofNameParts(*sum);
  }
  // The texts that a class name is put together from, without quotes.
  std::string ofNamePart(const QORQL_Term& product) const { return ofNameParts(product); }
  std::string ofNamePart(const QORQL_Factor& factor) const {
    return factor.getLiteral().IsNull() ? of(&factor) : std::string(factor.getLiteral()->toString().view());
  }
  static const QORQL_Term* partOf(const QORQL_Arithmetic& link) { return link.getTermCasted(); }
  static const QORQL_Factor* partOf(const QORQL_Term& link) { return link.getFactorCasted(); }
  template <class Node>
  std::string ofNameParts(const Node& first) const {
    std::string text;
    for (const Node& link : QORQL_linksOf(first)) {
      if (const auto* const part = partOf(link)) text += ofNamePart(*part);
      if (QORQL_continues(link)) text.append(" ").append(QORQL_operatorText(link.getOperator())).append(" ");
    }
    return text;
  }

  const CQLScope& _scope;
};

}  // namespace

std::string CQLTextOfCondition(const CQLScope& scope, const QORQL_Comparison& comparison) {
  return ConditionText(scope).of(&comparison);
}

std::string CQLTextOfValue(const QORSmrPtr<IQoriValue>& value) {
  if (value.IsNull()) return "NULL";
  if (value->isArray()) {
    std::string text;
    QORValSlistIterator<QORSmrPtr<IQoriValue>> elements(*value->getArray());
    while (++elements) text += (text.empty() ? "" : ", ") + CQLTextOfValue(elements.key());
    return "{" + text + "}";
  }
  const std::string text(value->toString().view());
  const QoriScalarKind kind = value->scalar().kind;
  const bool isText =
      kind == QoriScalarKind::Text || kind == QoriScalarKind::DateTime || kind == QoriScalarKind::Char16;
  return isText ? "'" + text + "'" : text;
}

std::string CQLTextOfMismatch(const QORSmrPtr<IQoriValue>& left, const QORQL_Comparison& comparison,
                              const QORSmrPtr<IQoriValue>& right) {
  if (left.IsNull() || right.IsNull()) return "";
  const bool isLeft = comparison.asksLeft();
  if (comparison.isArrayComp()) {
    if (!(isLeft ? left : right)->isArray()) return ": ANY and EVERY ask an array";
    if ((isLeft ? right : left)->isArray()) return ": an element does not compare with an array";
  } else if (left->isArray() && right->isArray()) {
    if (comparison.getOperator() > QORQL_OperatorNOTEQUAL) return ": arrays have no order";
  } else if (left->isArray() || right->isArray()) {
    return ": an array compares with a value under ANY or EVERY only";
  }
  return mismatchOfTypes(left, right);
}
