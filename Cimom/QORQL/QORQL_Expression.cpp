// The OR level of a condition: parsing and walking.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Expression.h"

#include <utility>

#include "Cimom/QORQL/QORQL_Chain.h"
#include "Cimom/QORQL/QORQL_ChainParser.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"

namespace {

QORQL_Operator orOperatorOf(QORQL_TokenType type) { return type == TokenOR ? QORQL_OperatorOR : QORQL_OperatorNONE; }

}  // namespace

QORQL_Expression::QORQL_Expression(QORSmrPtr<QORQL_Evaluatable> expressionTerm, QORSmrPtr<QORQL_Evaluatable> expression,
                                   QORQL_Operator op)
    : QORQL_Evaluatable(kKind),
      _expressionTerm(std::move(expressionTerm)),
      _expression(std::move(expression)),
      _operator(op) {}

QORQL_Expression::~QORQL_Expression() { QORQL_releaseChain<QORQL_Expression>(_expression); }

QORSmrPtr<QORQL_Evaluatable> QORQL_Expression::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                     QORQL_ProjectionMap& projMap, const QORString& queryString,
                                                     const QORString& queryLanguage) {
  return QORQL_parseChain<QORQL_Expression, &QORQL_ExpressionTerm::parse, &orOperatorOf>(symbolTable, lexer, projMap,
                                                                                         queryString, queryLanguage);
}

void QORQL_Expression::accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) {
  QORQL_walkChain(
      *this,
      [&](QORQL_Expression& node) {
        if (!node._expressionTerm.IsNull()) node._expressionTerm->accept(visitor);
      },
      [&](QORSmrPtr<QORQL_Evaluatable>& right) { right->accept(visitor); },
      [&](QORQL_Expression& node) { visitor->visitExpression(node); });
}
