// The base of every node of an expression.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EVALUATABLE_H
#define QORQL_EVALUATABLE_H

#include "cimom/IQoriValue.h"
#include "cmpbase.h"

class QORQL_DataRow;
class QORQL_DataTable;
class QORQL_ExpressionVisitor;
class QORQL_SymbolTable;

// What a node is: spares a dynamic_cast.
enum class QORQL_NodeKind : QORuint8 {
  Other,
  Expression,
  ExpressionTerm,
  ExpressionFactor,
  Comparison,
  Arithmetic,
  Term,
  Factor,
  Function,
  Association
};

// Built once by the parser, then evaluated any number of times; holds no state
// of an evaluation. Nodes are shared and belong to one thread at a time while
// name resolution runs; afterwards they do not change.
class QORQL_Evaluatable {
 public:
  // The kind is the derived class; Other for one that the engine does not know.
  explicit QORQL_Evaluatable(QORQL_NodeKind kind = QORQL_NodeKind::Other) noexcept : _kind(kind) {}
  QORQL_Evaluatable(const QORQL_Evaluatable&) = delete;
  QORQL_Evaluatable& operator=(const QORQL_Evaluatable&) = delete;

  // What the constructor was given.
  QORQL_NodeKind kind() const noexcept { return _kind; }
  // The byte of the statement's text at which the node's own word or sign stands: its operator where it has one, else
  // where what it consists of has its own. 0 for a node that no parser made.
  QORuint32 getOffset() const noexcept { return _offset; }
  // For parsers only.
  void setOffset(QORuint32 offset) noexcept { _offset = offset; }

  virtual ~QORQL_Evaluatable();
  // The value on one row; null when it has none.
  virtual QORSmrPtr<IQoriValue> evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row);
  // Filters the table in place.
  virtual void evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, const QORString& nameSpace);
  // Filters `other` in place; offered for callers outside the engine.
  virtual void evaluateOR(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table,
                          QORSmrPtr<QORQL_DataTable>& other, const QORString& nameSpace);
  // Walks the tree in post-order.
  virtual void accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor);

 private:
  QORQL_NodeKind _kind;
  QORuint32 _offset = 0;
};

// BORROWS: the node as a Node (a class with a kKind of its own), or null when it is none.
template <class Node>
Node* QORQL_nodeAs(const QORSmrPtr<QORQL_Evaluatable>& node) noexcept {
  QORQL_Evaluatable* const evaluatable = node.Get();
  return evaluatable != nullptr && evaluatable->kind() == Node::kKind ? static_cast<Node*>(evaluatable) : nullptr;
}
template <class Node>
const Node* QORQL_nodeAs(const QORQL_Evaluatable* node) noexcept {
  return node != nullptr && node->kind() == Node::kKind ? static_cast<const Node*>(node) : nullptr;
}

#endif
