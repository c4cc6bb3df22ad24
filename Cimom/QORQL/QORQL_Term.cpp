// Products and quotients: parsing and walking.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Term.h"

#include <utility>

#include "Cimom/QORQL/QORQL_Chain.h"
#include "Cimom/QORQL/QORQL_ChainParser.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Factor.h"

namespace {

QORQL_Operator productOperatorOf(QORQL_TokenType type) {
  if (type == TokenASTERISK) return QORQL_OperatorMUL;
  return type == TokenDIV ? QORQL_OperatorDIV : QORQL_OperatorNONE;
}

}  // namespace

QORQL_Term::QORQL_Term(QORSmrPtr<QORQL_Evaluatable> factor, QORSmrPtr<QORQL_Evaluatable> term, QORQL_Operator op)
    : QORQL_Evaluatable(kKind), _factor(std::move(factor)), _term(std::move(term)), _operator(op) {}

QORQL_Term::~QORQL_Term() { QORQL_releaseChain<QORQL_Term>(_term); }

QORSmrPtr<QORQL_Evaluatable> QORQL_Term::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                               QORQL_ProjectionMap& projMap, const QORString& queryString,
                                               const QORString& queryLanguage) {
  return QORQL_parseChain<QORQL_Term, &QORQL_Factor::parse, &productOperatorOf>(symbolTable, lexer, projMap,
                                                                                queryString, queryLanguage);
}

QORQL_Factor* QORQL_Term::getFactorCasted() const noexcept { return QORQL_nodeAs<QORQL_Factor>(_factor); }

void QORQL_Term::accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) {
  QORQL_walkChain(
      *this,
      [&](QORQL_Term& node) {
        if (!node._factor.IsNull()) node._factor->accept(visitor);
      },
      [&](QORSmrPtr<QORQL_Evaluatable>& right) { right->accept(visitor); },
      [&](QORQL_Term& node) { visitor->visitTerm(node); });
}
