// Sums and differences: parsing and walking.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Arithmetic.h"

#include <utility>

#include "Cimom/QORQL/QORQL_Chain.h"
#include "Cimom/QORQL/QORQL_ChainParser.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Term.h"

namespace {

QORQL_Operator sumOperatorOf(QORQL_TokenType type) {
  if (type == TokenPLUS) return QORQL_OperatorPLUS;
  return type == TokenMINUS ? QORQL_OperatorMINUS : QORQL_OperatorNONE;
}

}  // namespace

QORQL_Arithmetic::QORQL_Arithmetic(QORSmrPtr<QORQL_Evaluatable> term, QORSmrPtr<QORQL_Evaluatable> arithmetic,
                                   QORQL_Operator op)
    : QORQL_Evaluatable(kKind), _term(std::move(term)), _arithmetic(std::move(arithmetic)), _operator(op) {}

QORQL_Arithmetic::~QORQL_Arithmetic() { QORQL_releaseChain<QORQL_Arithmetic>(_arithmetic); }

QORSmrPtr<QORQL_Evaluatable> QORQL_Arithmetic::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                     QORQL_ProjectionMap& projMap, const QORString& queryString,
                                                     const QORString& queryLanguage) {
  return QORQL_parseChain<QORQL_Arithmetic, &QORQL_Term::parse, &sumOperatorOf>(symbolTable, lexer, projMap,
                                                                                queryString, queryLanguage);
}

QORQL_Term* QORQL_Arithmetic::getTermCasted() const noexcept { return QORQL_nodeAs<QORQL_Term>(_term); }

void QORQL_Arithmetic::accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) {
  QORQL_walkChain(
      *this,
      [&](QORQL_Arithmetic& node) {
        if (!node._term.IsNull()) node._term->accept(visitor);
      },
      [&](QORSmrPtr<QORQL_Evaluatable>& right) { right->accept(visitor); },
      [&](QORQL_Arithmetic& node) { visitor->visitArithmetic(node); });
}
