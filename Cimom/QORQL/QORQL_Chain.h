// Chains of right-grouped nodes (a - b - c is a - (b - c)): walked and freed
// with a loop, so that a statement may have any number of terms.
#ifndef QORQL_CHAIN_H
#define QORQL_CHAIN_H

#include <utility>

#include "Cimom/QORQL/QORQL_Evaluatable.h"
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

#endif
