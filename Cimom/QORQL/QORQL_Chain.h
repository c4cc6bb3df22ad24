// Chains of right-grouped nodes (a - b - c is a - (b - c)): walked and freed
// with a loop, so that a statement may have any number of terms.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CHAIN_H
#define QORQL_CHAIN_H

#include <utility>
#include <vector>

#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "cmpbase.h"

// Frees the chain that hangs on `right`. Node must name its right operand's
// field through `QORSmrPtr<QORQL_Evaluatable>& chainLink()`.
template <class Node>
void QORQL_releaseChain(QORSmrPtr<QORQL_Evaluatable>& right) noexcept {
  if (right.IsNull()) return;
  QORSmrPtr<QORQL_Evaluatable> next(std::move(right));
  while (next.IsUnique()) {
    Node* const node = QORQL_nodeAs<Node>(next);
    if (node == nullptr) return;
    QORSmrPtr<QORQL_Evaluatable> rest(std::move(node->chainLink()));
    next = std::move(rest);
  }
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
    Node* const next = QORQL_nodeAs<Node>(right);
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
