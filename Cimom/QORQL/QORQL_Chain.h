// Chains of right-grouped nodes (a - b - c is a - (b - c)): parsed, walked and
// freed with a loop, so that a statement may have any number of terms.
#ifndef QORQL_CHAIN_H
#define QORQL_CHAIN_H

#include <utility>
#include <vector>

#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Operator.h"
#include "cmpbase.h"

// Frees the chain that hangs on `right`. Node must name its right operand's
// field through `QORSmrPtr<QORQL_Evaluatable>& chainLink()`.
template <class Node>
void QORQL_releaseChain(QORSmrPtr<QORQL_Evaluatable>& right) noexcept {
  QORSmrPtr<QORQL_Evaluatable> next(std::move(right));
  while (next.IsUnique()) {
    Node* const node = dynamic_cast<Node*>(next.Get());
    if (node == nullptr) return;
    QORSmrPtr<QORQL_Evaluatable> rest(std::move(node->chainLink()));
    next = std::move(rest);
  }
}

// The operators of a level, by token; QORQL_OperatorNONE ends the chain.
using QORQL_OperatorOfToken = QORQL_Operator (*)(QORQL_TokenType);

// The rest of a chain whose first operand has been parsed and whose operator is
// current: collects the operands, then builds the nodes from the last one back.
template <class Node, class ParseOperand>
QORSmrPtr<QORQL_Evaluatable> QORQL_parseChainAfter(const QORSmrPtr<QORQL_Evaluatable>& first, QORQL_Lexer& lexer,
                                                   QORQL_OperatorOfToken operatorOf, const ParseOperand& parseOperand) {
  std::vector<std::pair<QORSmrPtr<QORQL_Evaluatable>, QORQL_Operator>> links;
  QORSmrPtr<QORQL_Evaluatable> operand(first);
  QORQL_Operator op = operatorOf(lexer.getCurrent().getType());
  while (op != QORQL_OperatorNONE) {
    links.emplace_back(operand, op);
    lexer.next(false);
    operand = parseOperand();
    op = operatorOf(lexer.getCurrent().getType());
  }
  QORSmrPtr<QORQL_Evaluatable> chain(new Node(operand, nullptr, QORQL_OperatorNONE));
  for (; !links.empty(); links.pop_back()) {
    chain = QORSmrPtr<QORQL_Evaluatable>(new Node(links.back().first, chain, links.back().second));
  }
  return chain;
}

// Operand { operator Operand }, as right-grouped nodes. Always makes a node.
template <class Node, class ParseOperand>
QORSmrPtr<QORQL_Evaluatable> QORQL_parseChain(QORQL_Lexer& lexer, QORQL_OperatorOfToken operatorOf,
                                              const ParseOperand& parseOperand) {
  const QORSmrPtr<QORQL_Evaluatable> first = parseOperand();
  if (operatorOf(lexer.getCurrent().getType()) == QORQL_OperatorNONE) {
    return new Node(first, nullptr, QORQL_OperatorNONE);
  }
  return QORQL_parseChainAfter<Node>(first, lexer, operatorOf, parseOperand);
}

// Calls visitLeft for each node's left operand in order, then visitNode for each
// node from the last back: the post-order of the chain. A right operand that is
// no Node ends the chain; visitRight takes it.
template <class Node, class VisitLeft, class VisitRight, class VisitNode>
void QORQL_walkChain(Node& head, const VisitLeft& visitLeft, const VisitRight& visitRight, const VisitNode& visitNode) {
  visitLeft(head);
  if (head.chainLink().IsNull()) {
    visitNode(head);
    return;
  }
  std::vector<Node*> nodes{&head};
  for (;;) {
    QORSmrPtr<QORQL_Evaluatable>& right = nodes.back()->chainLink();
    Node* const next = dynamic_cast<Node*>(right.Get());
    if (next == nullptr) {
      if (!right.IsNull()) visitRight(right);
      break;
    }
    visitLeft(*next);
    nodes.push_back(next);
  }
  for (; !nodes.empty(); nodes.pop_back()) visitNode(*nodes.back());
}

#endif
