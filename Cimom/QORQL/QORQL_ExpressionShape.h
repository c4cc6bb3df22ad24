// Taking trees of expressions apart: the one place that knows which node holds what.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EXPRESSIONSHAPE_H
#define QORQL_EXPRESSIONSHAPE_H

#include <type_traits>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "cmpbase.h"

class QORQL_Factor;

// Everything here BORROWS from the tree, changes nothing and throws nothing but what a test or the memory throws.

// --- chains: a + b + c, a * b, a AND b, a OR b --------------------------------------

// A link's own operand.
inline const QORSmrPtr<QORQL_Evaluatable>& QORQL_operandOf(const QORQL_Expression& link) noexcept {
  return link.getExpressionTerm();
}
inline const QORSmrPtr<QORQL_Evaluatable>& QORQL_operandOf(const QORQL_ExpressionTerm& link) noexcept {
  return link.getExpressionFactor();
}
inline const QORSmrPtr<QORQL_Evaluatable>& QORQL_operandOf(const QORQL_Arithmetic& link) noexcept {
  return link.getTerm();
}
inline const QORSmrPtr<QORQL_Evaluatable>& QORQL_operandOf(const QORQL_Term& link) noexcept { return link.getFactor(); }

// What stands behind a link's operator; null without one.
inline const QORSmrPtr<QORQL_Evaluatable>& QORQL_restOf(const QORQL_Expression& link) noexcept {
  return link.getExpression();
}
inline const QORSmrPtr<QORQL_Evaluatable>& QORQL_restOf(const QORQL_ExpressionTerm& link) noexcept {
  return link.getExpressionTerm();
}
inline const QORSmrPtr<QORQL_Evaluatable>& QORQL_restOf(const QORQL_Arithmetic& link) noexcept {
  return link.getArithmetic();
}
inline const QORSmrPtr<QORQL_Evaluatable>& QORQL_restOf(const QORQL_Term& link) noexcept { return link.getTerm(); }

inline bool QORQL_continues(const QORQL_Expression& link) noexcept { return link.getOperator() == QORQL_OperatorOR; }
inline bool QORQL_continues(const QORQL_ExpressionTerm& link) noexcept {
  return link.getOperator() == QORQL_OperatorAND;
}
inline bool QORQL_continues(const QORQL_Arithmetic& link) noexcept { return link.getOperator() != QORQL_OperatorNONE; }
inline bool QORQL_continues(const QORQL_Term& link) noexcept { return link.getOperator() != QORQL_OperatorNONE; }

// The next link of the chain. Null for the last one, and where what stands behind the operator is no link of this kind.
template <class Node>
const Node* QORQL_nextLink(const Node& link) noexcept {
  return QORQL_continues(link) ? QORQL_nodeAs<Node>(QORQL_restOf(link)) : nullptr;
}

// The links of a chain from the left, the given one first: for (const QORQL_Term& link : QORQL_linksOf(term)).
template <class Node>
class QORQL_Links {
 public:
  class Iterator {
   public:
    explicit Iterator(const Node* link) noexcept : _link(link) {}
    const Node& operator*() const noexcept { return *_link; }
    Iterator& operator++() noexcept {
      _link = QORQL_nextLink(*_link);
      return *this;
    }
    bool operator==(const Iterator& other) const noexcept { return _link == other._link; }

   private:
    const Node* _link;
  };

  explicit QORQL_Links(const Node& first) noexcept : _first(first) {}
  Iterator begin() const noexcept { return Iterator(&_first); }
  Iterator end() const noexcept { return Iterator(nullptr); }

 private:
  const Node& _first;
};
template <class Node>
QORQL_Links<Node> QORQL_linksOf(const Node& first) noexcept {
  return QORQL_Links<Node>(first);
}

// Which rows a query keeps is decided by the last operand of OR alone: this is that operand, and without OR the only
// one. Null for null, for a node that is no QORQL_Expression, and where nothing stands behind the last OR.
const QORQL_Evaluatable* QORQL_decidingOperand(const QORQL_Evaluatable* condition) noexcept;

// --- what nodes without an operator of their own consist of -------------------------

// The operand with which a node's text begins. Null where its own word does: a factor, a function, a negation.
const QORQL_Evaluatable* QORQL_leadingOperand(const QORQL_Evaluatable& node) noexcept;

// The one node that a node without operator consists of: what stands in parentheses, for a factor. Null for a leaf, a
// negation, a function and a node with an operator.
const QORQL_Evaluatable* QORQL_onlyOperand(const QORQL_Evaluatable& node) noexcept;

// A node without all the levels that say nothing: a leaf, a negation, a function, or a node with an operator. Null for
// null.
const QORQL_Evaluatable* QORQL_peel(const QORQL_Evaluatable* node) noexcept;

// The literal or reference that QORQL_peel comes to; null when it comes to something else.
const QORQL_Factor* QORQL_peeledLeaf(const QORQL_Evaluatable* node) noexcept;

// The factor that an arithmetic expression, or a comparison without operator, ANY and EVERY, consists of. Null when
// there is anything around it.
const QORQL_Factor* QORQL_loneFactor(const QORSmrPtr<QORQL_Evaluatable>& node) noexcept;

// The same where that factor is a literal or a reference, as most sides of most comparisons are.
const QORQL_Factor* QORQL_soleLeaf(const QORSmrPtr<QORQL_Evaluatable>& node) noexcept;

// The factor that an arithmetic expression begins with; null when it begins with none.
const QORQL_Factor* QORQL_leadingFactor(const QORQL_Arithmetic& arithmetic) noexcept;

// The comparison in parentheses that is all of a comparison without operator; null when there is none.
const QORSmrPtr<QORQL_Evaluatable>* QORQL_parenthesised(const QORSmrPtr<QORQL_Evaluatable>& comparison) noexcept;

// --- references ---------------------------------------------------------------------

// Whether a reference leads down through embedded objects: a.b.c.
bool QORQL_hasPath(const QORQL_Factor& reference) noexcept;
// The property of the row's object that a reference reads: of a path the step after the class. Empty without a
// property.
QORString QORQL_ownProperty(const QORQL_Factor& reference);
// Whether a text that a reference has is this name, in any case; false for one that it has not.
inline bool QORQL_isName(const QORSmrPtr<QORString>& text, const QORString& name) noexcept {
  return !text.IsNull() && text->isEqualCaseInsensitive(name);
}
// Whether a name is one of the words for the ends of an association, which have this spelling only: any other is a
// property's name.
inline bool QORQL_isAssociationEnd(const QORString& name) noexcept { return name == "firstref" || name == "secondref"; }
// Whether it names one element of an array, or an array that is copied (x[]): not the property's value as it is.
bool QORQL_hasIndex(const QORQL_Factor& reference) noexcept;
// Whether it names a class or alias and nothing of its objects, so that its value is the row's object.
bool QORQL_isWholeObject(const QORQL_Factor& factor) noexcept;

// --- what a tree contains -----------------------------------------------------------

// Asks each node that a visitor is shown and the test takes, until one passes.
template <class Test>
class QORQL_NodeFinder : public QORQL_ExpressionVisitor {
 public:
  explicit QORQL_NodeFinder(const Test& test) : _test(test) {}
  bool isFound() const noexcept { return _isFound; }

  void visitExpression(const QORQL_Expression& node) override { look(node); }
  void visitExpressionTerm(const QORQL_ExpressionTerm& node) override { look(node); }
  void visitExpressionFactor(const QORQL_ExpressionFactor& node) override { look(node); }
  void visitComparison(const QORQL_Comparison& node) override { look(node); }
  void visitArithmetic(const QORQL_Arithmetic& node) override { look(node); }
  void visitTerm(const QORQL_Term& node) override { look(node); }
  void visitFactor(const QORQL_Factor& node) override { look(node); }
  void visitAssociation(const QORQL_Association& node) override { look(node); }
  void visitFunction(const QORQL_Function& node) override { look(node); }

 private:
  template <class Node>
  void look(const Node& node) {
    if constexpr (std::is_invocable_v<const Test&, const Node&>) _isFound = _isFound || _test(node);
  }

  const Test& _test;
  bool _isFound = false;
};

// Whether a tree contains a node that passes the test, a function object that takes nodes of one kind or of several:
// const QORQL_Comparison&, const QORQL_Function&, const QORQL_Factor& for a leaf. One walk.
template <class Test>
bool QORQL_contains(QORQL_Evaluatable& tree, const Test& test) {
  auto visitor = QORSmrPtr<QORQL_ExpressionVisitor>::Make<QORQL_NodeFinder<Test>>(test);
  const auto* const finder = static_cast<const QORQL_NodeFinder<Test>*>(visitor.Get());
  tree.accept(visitor);
  return finder->isFound();
}

bool QORQL_containsInstanceOf(QORQL_Evaluatable& tree);
bool QORQL_containsOuterJoin(QORQL_Evaluatable& tree);
bool QORQL_containsAssociation(QORQL_Evaluatable& tree);

#endif
