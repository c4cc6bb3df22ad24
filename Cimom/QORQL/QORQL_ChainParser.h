// The parsing of chains: operands and operators are read in a loop, and each
// node becomes the right operand of the one before it.
// Tested by tests/unit/QORQL/ParserLimitsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CHAINPARSER_H
#define QORQL_CHAINPARSER_H

#include <utility>

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Operator.h"
#include "cmpbase.h"

// The part of a chain that has been read; append() takes an operand whose operator, if one follows, is the current
// token. It is not inlined: parsing nests, and every frame on the way down should be small.
template <class Node>
class QORQL_ChainParts {
 public:
  [[gnu::noinline]] void append(QORSmrPtr<QORQL_Evaluatable>&& operand, QORQL_Operator op, QORQL_Lexer& lexer) {
    const QORuint32 offset = op == QORQL_OperatorNONE ? operand.Get()->getOffset() : lexer.getOffset();
    QORSmrPtr<QORQL_Evaluatable>& place = _last == nullptr ? _chain : _last->chainLink();
    place = QORSmrPtr<QORQL_Evaluatable>::MakeIn<Node>(lexer.slabs(), std::move(operand), nullptr, op);
    _last = static_cast<Node*>(place.Get());
    _last->setOffset(offset);
  }
  QORSmrPtr<QORQL_Evaluatable> take() noexcept { return std::move(_chain); }

 private:
  QORSmrPtr<QORQL_Evaluatable> _chain;
  Node* _last = nullptr;  // BORROWS: the node that still waits for its right operand
};

// Operand { operator Operand }. Always makes a node. The operand is read by the
// parse routine of the level below; operatorOf gives the operator of a token,
// whose QORQL_OperatorNONE ends the chain.
template <class Node, auto parseOperand, auto operatorOf>
QORSmrPtr<QORQL_Evaluatable> QORQL_parseChain(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                              QORQL_ProjectionMap& projMap, const QORString& queryString,
                                              const QORString& queryLanguage) {
  QORQL_ChainParts<Node> parts;
  for (;;) {
    QORSmrPtr<QORQL_Evaluatable> operand = parseOperand(symbolTable, lexer, projMap, queryString, queryLanguage);
    const QORQL_Operator op = operatorOf(lexer.getCurrent().getType());
    parts.append(std::move(operand), op, lexer);
    if (op == QORQL_OperatorNONE) return parts.take();
    lexer.next(false);
  }
}

#endif
