// One comparison of a condition, negated or not: parsing and walking.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"

#include <utility>

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Lexer.h"

QORQL_ExpressionFactor::QORQL_ExpressionFactor(QORSmrPtr<QORQL_Evaluatable> comparison, QORQL_Operator op,
                                               const QORString& queryString, const QORString& queryLanguage)
    : QORQL_Evaluatable(kKind),
      _comparison(std::move(comparison)),
      _operator(op),
      _queryString(queryString),
      _queryLanguage(queryLanguage) {}

QORQL_ExpressionFactor::~QORQL_ExpressionFactor() = default;

QORSmrPtr<QORQL_Evaluatable> QORQL_ExpressionFactor::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                           QORQL_ProjectionMap& projMap, const QORString& queryString,
                                                           const QORString& queryLanguage) {
  const QORQL_Operator op = lexer.getCurrent().getType() == TokenNOT ? QORQL_OperatorNOT : QORQL_OperatorNONE;
  const QORuint32 offset = lexer.getOffset();
  if (op == QORQL_OperatorNOT) lexer.next(false);
  QORSmrPtr<QORQL_Evaluatable> comparison =
      QORQL_Comparison::parse(symbolTable, lexer, projMap, queryString, queryLanguage);
  const QORuint32 inner = comparison.Get()->getOffset();
  auto factor = QORSmrPtr<QORQL_Evaluatable>::MakeIn<QORQL_ExpressionFactor>(lexer.slabs(), std::move(comparison), op,
                                                                             queryString, queryLanguage);
  factor.Get()->setOffset(op == QORQL_OperatorNOT ? offset : inner);
  return factor;
}

bool QORQL_ExpressionFactor::isComparisonAnAssociation(QORQL_JoinType& joinType, QORString& leftName,
                                                       QORString& rightName) const {
  const QORQL_Comparison* const comparison = QORQL_nodeAs<QORQL_Comparison>(_comparison);
  return _operator == QORQL_OperatorNONE && comparison != nullptr &&
         comparison->isComparisonAnAssociation(joinType, leftName, rightName);
}

void QORQL_ExpressionFactor::accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) {
  if (!_comparison.IsNull()) _comparison->accept(visitor);
  visitor->visitExpressionFactor(*this);
}
