// The AND level of a condition: parsing and walking.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"

#include <utility>

#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_Chain.h"
#include "Cimom/QORQL/QORQL_ChainParser.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"

namespace {

QORQL_Operator andOperatorOf(QORQL_TokenType type) { return type == TokenAND ? QORQL_OperatorAND : QORQL_OperatorNONE; }

}  // namespace

QORQL_ExpressionTerm::QORQL_ExpressionTerm(QORSmrPtr<QORQL_Evaluatable> expressionFactor,
                                           QORSmrPtr<QORQL_Evaluatable> expressionTerm, QORQL_Operator op)
    : QORQL_Evaluatable(kKind),
      _expressionFactor(std::move(expressionFactor)),
      _expressionTerm(std::move(expressionTerm)),
      _operator(op) {}

QORQL_ExpressionTerm::~QORQL_ExpressionTerm() { QORQL_releaseChain<QORQL_ExpressionTerm>(_expressionTerm); }

QORSmrPtr<QORQL_Evaluatable> QORQL_ExpressionTerm::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                         QORQL_ProjectionMap& projMap, const QORString& queryString,
                                                         const QORString& queryLanguage) {
  return QORQL_parseChain<QORQL_ExpressionTerm, &QORQL_Association::parse, &andOperatorOf>(symbolTable, lexer, projMap,
                                                                                           queryString, queryLanguage);
}

void QORQL_ExpressionTerm::accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) {
  QORQL_walkChain(
      *this,
      [&](QORQL_ExpressionTerm& node) {
        if (!node._expressionFactor.IsNull()) node._expressionFactor->accept(visitor);
      },
      [&](QORSmrPtr<QORQL_Evaluatable>& right) { right->accept(visitor); },
      [&](QORQL_ExpressionTerm& node) { visitor->visitExpressionTerm(node); });
}
