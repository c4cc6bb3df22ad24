// The way back from the parsed tree to a text. The depth is the parser's.
#include "Cimom/QORQL/Filter/CQLConditionText.h"

#include "Cimom/QORQL/Filter/CQLComparison.h"
#include "Cimom/QORQL/Filter/CQLPropertyPath.h"
#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Term.h"

namespace {

using Node = QORSmrPtr<QORQL_Evaluatable>;

// Behind a minus a literal may have wrapped; it was written without a sign.
std::string textOfLiteral(const QORSmrPtr<IQoriValue>& literal) {
  const QoriScalar view = literal->scalar();
  return view.kind == QoriScalarKind::Signed ? std::to_string(static_cast<QORuint64>(view.s)) : CQLTextOfValue(literal);
}

bool saysTruth(const QORSmrPtr<IQoriValue>& value) {
  const QORString text(value->toString());
  return text.isEqualCaseInsensitive("TRUE") || text.isEqualCaseInsensitive("FALSE");
}

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
    return text->isArray() || saysTruth(text) ? "" : ": a boolean compares with TRUE and FALSE only";
  }
  return mismatch;
}

class ConditionText {
 public:
  explicit ConditionText(const CQLScope& scope) : _scope(scope) {}

  void addComparison(const QORQL_Comparison& comparison) {
    const QORQL_Comparison::QORQL_ARRAY_COMP arrays = comparison.getArrayComp();
    if (arrays == QORQL_Comparison::ArrayCompAnyLeft) text += "ANY ";
    if (arrays == QORQL_Comparison::ArrayCompEveryLeft) text += "EVERY ";
    addSum(comparison.getLHSArithmeticExpression());
    if (comparison.getOperator() == QORQL_OperatorNONE) return;
    text += std::string(" ") + CQLTextOfOperator(comparison.getOperator());
    if (comparison.getRHSArithmeticExpression().IsNull()) return;
    text += ' ';
    if (arrays == QORQL_Comparison::ArrayCompAnyRight) text += "ANY ";
    if (arrays == QORQL_Comparison::ArrayCompEveryRight) text += "EVERY ";
    const bool isClassName = comparison.getOperator() == QORQL_OperatorISA;
    addSum(comparison.getRHSArithmeticExpression(), isClassName);
  }

  std::string text;

 private:
  void addSum(const Node& node, bool isClassName = false) {
    for (const auto* sum = dynamic_cast<const QORQL_Arithmetic*>(node.Get()); sum != nullptr;) {
      addProduct(sum->getTerm(), isClassName);
      if (sum->getOperator() == QORQL_OperatorNONE) return;
      text += std::string(" ") + CQLTextOfOperator(sum->getOperator()) + " ";
      sum = dynamic_cast<const QORQL_Arithmetic*>(sum->getArithmetic().Get());
    }
  }

  void addProduct(const Node& node, bool isClassName) {
    for (const auto* product = dynamic_cast<const QORQL_Term*>(node.Get()); product != nullptr;) {
      addFactor(product->getFactor(), isClassName);
      if (product->getOperator() == QORQL_OperatorNONE) return;
      text += std::string(" ") + CQLTextOfOperator(product->getOperator()) + " ";
      product = dynamic_cast<const QORQL_Term*>(product->getTerm().Get());
    }
  }

  void addFactor(const Node& node, bool isClassName) {
    const auto* const factor = dynamic_cast<const QORQL_Factor*>(node.Get());
    if (factor == nullptr) return;
    if (factor->getOperator() == QORQL_OperatorMINUS) text += '-';
    if (!factor->getEvaluatable().IsNull()) {
      addNested(factor->getEvaluatable());
    } else if (factor->getLiteral().IsNull()) {
      text += CQLPropertyPath(_scope, *factor).text();
    } else {
      text += isClassName ? std::string(factor->getLiteral()->toString().view()) : textOfLiteral(factor->getLiteral());
    }
  }

  void addNested(const Node& node) {
    if (const auto* const comparison = dynamic_cast<const QORQL_Comparison*>(node.Get())) {
      text += '(';
      addComparison(*comparison);
      text += ')';
    } else if (const auto* const call = dynamic_cast<const QORQL_Function*>(node.Get())) {
      text += std::string(QORQL_functionName(call->getFunctionID())) + "(...)";
    } else {
      addFactor(node, false);
    }
  }

  const CQLScope& _scope;
};

}  // namespace

std::string CQLTextOfCondition(const CQLScope& scope, const QORQL_Comparison& comparison) {
  ConditionText condition(scope);
  condition.addComparison(comparison);
  return condition.text;
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

const char* CQLTextOfOperator(QORQL_Operator op) noexcept {
  switch (op) {
    case QORQL_OperatorEQUAL:
      return "=";
    case QORQL_OperatorNOTEQUAL:
      return "<>";
    case QORQL_OperatorLESS:
      return "<";
    case QORQL_OperatorGREATER:
      return ">";
    case QORQL_OperatorLESSEQUAL:
      return "<=";
    case QORQL_OperatorGREATEREQUAL:
      return ">=";
    case QORQL_OperatorPLUS:
      return "+";
    case QORQL_OperatorMINUS:
      return "-";
    case QORQL_OperatorMUL:
      return "*";
    case QORQL_OperatorDIV:
      return "/";
    case QORQL_OperatorLIKE:
      return "LIKE";
    case QORQL_OperatorISNULL:
      return "IS NULL";
    case QORQL_OperatorISNOTNULL:
      return "IS NOT NULL";
    case QORQL_OperatorISA:
      return "ISA";
    case QORQL_OperatorLEFTJOIN:
      return "*=";
    case QORQL_OperatorRIGHTJOIN:
      return "=*";
    case QORQL_OperatorFULLOUTERJOIN:
      return "*=*";
    default:
      return "?";
  }
}
