// The comparison of two arithmetic expressions: parsing, walking, and the
// recognition of association conditions.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Comparison.h"

#include <utility>

#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"

namespace {

using ArrayComp = QORQL_Comparison::QORQL_ARRAY_COMP;

bool isAnyOrEvery(QORQL_TokenType type) { return type == TokenANY || type == TokenEVERY; }

// Takes ANY or EVERY when it is current.
ArrayComp parseArrayComp(QORQL_Lexer& lexer, ArrayComp any, ArrayComp every) {
  const QORQL_TokenType type = lexer.getCurrent().getType();
  if (!isAnyOrEvery(type)) return QORQL_Comparison::ArrayCompNone;
  lexer.next(false);
  return type == TokenANY ? any : every;
}

// Entered on IS; takes all of it.
QORQL_Operator parseIs(QORQL_Lexer& lexer) {
  const bool negated = lexer.next(false).getType() == TokenNOT;
  if (negated) lexer.next(false);
  if (lexer.getCurrent().getType() != TokenNULL) QORQL_raise(QORQL_Messages::kIsInvalid, lexer);
  lexer.next(false);
  return negated ? QORQL_OperatorISNOTNULL : QORQL_OperatorISNULL;
}

void checkIsa(QORQL_Lexer& lexer) {
  const QORQL_Token& name = lexer.lookAhead(1);
  const bool isName = name.getType() == TokenID || name.getType() == TokenSTRINGLITERAL;
  if (!isName) QORQL_raise(QORQL_Messages::kIsaInvalid, name.getOffset());
}

QORQL_Operator comparisonOperatorOf(QORQL_TokenType type) {
  switch (type) {
    case TokenEQUALS:
      return QORQL_OperatorEQUAL;
    case TokenNOTEQUALS:
      return QORQL_OperatorNOTEQUAL;
    case TokenLESS:
      return QORQL_OperatorLESS;
    case TokenLESSEQUAL:
      return QORQL_OperatorLESSEQUAL;
    case TokenGREATER:
      return QORQL_OperatorGREATER;
    case TokenGREATEREQUAL:
      return QORQL_OperatorGREATEREQUAL;
    case TokenLIKE:
      return QORQL_OperatorLIKE;
    case TokenLEFTJOIN:
      return QORQL_OperatorLEFTJOIN;
    case TokenRIGHTJOIN:
      return QORQL_OperatorRIGHTJOIN;
    case TokenFULLOUTERJOIN:
      return QORQL_OperatorFULLOUTERJOIN;
    case TokenISA:
      return QORQL_OperatorISA;
    default:
      return QORQL_OperatorNONE;
  }
}

// Leaves the right operand current, when one follows.
QORQL_Operator parseOperator(QORQL_Lexer& lexer) {
  const QORQL_TokenType type = lexer.getCurrent().getType();
  if (type == TokenIS) return parseIs(lexer);
  if (type == TokenISA) checkIsa(lexer);
  const QORQL_Operator op = comparisonOperatorOf(type);
  if (op != QORQL_OperatorNONE) lexer.next(false);
  return op;
}

bool takesRightOperand(QORQL_Operator op) {
  return op != QORQL_OperatorNONE && op != QORQL_OperatorISNULL && op != QORQL_OperatorISNOTNULL;
}

void validateArrays(const QORQL_Comparison& comparison) {
  QORQL_Arithmetic* const left = QORQL_nodeAs<QORQL_Arithmetic>(comparison.getLHSArithmeticExpression());
  QORQL_Arithmetic* const right = QORQL_nodeAs<QORQL_Arithmetic>(comparison.getRHSArithmeticExpression());
  if (comparison.isArrayComp()) {
    QORQL_Comparison::validateAnyArray(comparison.asksLeft() ? right : left);
  } else {
    QORQL_Comparison::validateScalarArray(left, right);
  }
}

bool isCompleteArray(const QORQL_Factor& factor) {
  return factor.getArrayIndexList() == QORQL_Factor::kWholeArray ||
         factor.getArrayIndexList() == QORQL_Factor::kEmptyBrackets;
}

const QORQL_Factor* bareIdentifier(const QORQL_Factor* lone) {
  return lone != nullptr && lone->isBareIdentifier() ? lone : nullptr;
}

// The one class that an operand refers to as X.firstref, X.secondref or OBJECTPATH(X); null when it is no such
// reference.
QORSmrPtr<QORString> referredClass(const QORSmrPtr<QORQL_Evaluatable>& side, const QORQL_Factor* lone) {
  if (lone != nullptr && lone->getEvaluatable().IsNull()) {
    return lone->isClassReference() ? lone->getClassName() : QORSmrPtr<QORString>();
  }
  auto visitor = QORSmrPtr<QORQL_ExpressionVisitor>::Make<QORQL_IdentifierFinder>();
  const auto* const finder = static_cast<const QORQL_IdentifierFinder*>(visitor.Get());
  side->accept(visitor);
  const QORQL_IdentifierFinder::ClassNameList names = finder->getClassNameList();
  return finder->isClassReference() && names->entries() == 1 ? names->first() : QORSmrPtr<QORString>();
}

bool canTieAssociation(const QORQL_Comparison& comparison) {
  switch (comparison.getOperator()) {
    case QORQL_OperatorEQUAL:
    case QORQL_OperatorLEFTJOIN:
    case QORQL_OperatorRIGHTJOIN:
    case QORQL_OperatorFULLOUTERJOIN:
      return !comparison.isArrayComp() && !comparison.getLHSArithmeticExpression().IsNull() &&
             !comparison.getRHSArithmeticExpression().IsNull();
    default:
      return false;
  }
}

}  // namespace

QORQL_Comparison::QORQL_Comparison(QORSmrPtr<QORQL_Evaluatable> arithmetic1, QORSmrPtr<QORQL_Evaluatable> arithmetic2,
                                   QORQL_Operator op)
    : QORQL_Evaluatable(kKind),
      _arithmetic1(std::move(arithmetic1)),
      _arithmetic2(std::move(arithmetic2)),
      _operator(op) {}

QORQL_Comparison::~QORQL_Comparison() = default;

QORSmrPtr<QORQL_Evaluatable> QORQL_Comparison::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                     QORQL_ProjectionMap& projMap, const QORString& queryString,
                                                     const QORString& queryLanguage) {
  ArrayComp arrayComp = parseArrayComp(lexer, ArrayCompAnyLeft, ArrayCompEveryLeft);
  QORSmrPtr<QORQL_Evaluatable> left = QORQL_Arithmetic::parse(symbolTable, lexer, projMap, queryString, queryLanguage);
  const QORuint32 offset = lexer.getOffset();
  const QORQL_Operator op = parseOperator(lexer);
  QORSmrPtr<QORQL_Evaluatable> right;
  if (takesRightOperand(op)) {
    if (arrayComp == ArrayCompNone) {
      arrayComp = parseArrayComp(lexer, ArrayCompAnyRight, ArrayCompEveryRight);
    } else if (isAnyOrEvery(lexer.getCurrent().getType())) {
      QORQL_raise(QORQL_Messages::kAnyEveryTwice, lexer);
    }
    right = QORQL_Arithmetic::parse(symbolTable, lexer, projMap, queryString, queryLanguage);
  }
  const QORuint32 leftOffset = left.Get()->getOffset();
  auto result =
      QORSmrPtr<QORQL_Evaluatable>::MakeIn<QORQL_Comparison>(lexer.slabs(), std::move(left), std::move(right), op);
  QORQL_Comparison& comparison = static_cast<QORQL_Comparison&>(*result);
  comparison.setArrayComp(arrayComp);
  comparison.setOffset(op == QORQL_OperatorNONE ? leftOffset : offset);
  validateArrays(comparison);
  return result;
}

void QORQL_Comparison::validateAnyArray(QORQL_Arithmetic* other) {
  const QORQL_Factor* const factor = other == nullptr ? nullptr : QORQL_leadingFactor(*other);
  if (factor != nullptr && isCompleteArray(*factor)) {
    QORQL_raise(QORQL_Messages::kAnyEveryArrays, factor->getOffset());
  }
}

void QORQL_Comparison::validateScalarArray(QORQL_Arithmetic* left, QORQL_Arithmetic* right) {
  const QORQL_Factor* const leftFactor = left == nullptr ? nullptr : QORQL_leadingFactor(*left);
  const QORQL_Factor* const rightFactor = right == nullptr ? nullptr : QORQL_leadingFactor(*right);
  if (leftFactor == nullptr || rightFactor == nullptr) return;
  if (isCompleteArray(*leftFactor) == isCompleteArray(*rightFactor)) return;
  const QORQL_Factor& array = isCompleteArray(*leftFactor) ? *leftFactor : *rightFactor;
  QORQL_raise(QORQL_Messages::kArrayWithScalar, array.getOffset());
}

QORQL_JoinType QORQL_Comparison::getJoinType() const noexcept {
  switch (_operator) {
    case QORQL_OperatorLEFTJOIN:
      return QORQL_JOIN_TYPE_LEFT_OUTER;
    case QORQL_OperatorRIGHTJOIN:
      return QORQL_JOIN_TYPE_RIGHT_OUTER;
    case QORQL_OperatorFULLOUTERJOIN:
      return QORQL_JOIN_TYPE_FULL_OUTER;
    default:
      return QORQL_JOIN_TYPE_INNER;
  }
}

bool QORQL_Comparison::isComparisonAnAssociation(QORQL_JoinType& joinType, QORString& leftName,
                                                 QORString& rightName) const {
  if (!canTieAssociation(*this)) return false;
  const QORQL_Factor* const loneLeft = QORQL_loneFactor(_arithmetic1);
  const QORQL_Factor* const loneRight = QORQL_loneFactor(_arithmetic2);
  const QORQL_Factor* const bareRight = bareIdentifier(loneRight);
  const bool rightIsFromName = bareRight != nullptr && bareRight->isKnownFromName();
  const QORQL_Factor* const bareLeft = rightIsFromName ? bareIdentifier(loneLeft) : nullptr;
  const QORSmrPtr<QORString> left =
      bareLeft != nullptr ? bareLeft->getPropertyName() : referredClass(_arithmetic1, loneLeft);
  if (left.IsNull()) return false;
  const QORSmrPtr<QORString> right =
      rightIsFromName ? bareRight->getPropertyName() : referredClass(_arithmetic2, loneRight);
  if (right.IsNull()) return false;
  joinType = getJoinType();
  leftName = *left;
  rightName = *right;
  return true;
}

void QORQL_Comparison::accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) {
  if (!_arithmetic1.IsNull()) _arithmetic1->accept(visitor);
  if (!_arithmetic2.IsNull()) _arithmetic2->accept(visitor);
  visitor->visitComparison(*this);
}
