// The base of visitors of expression trees.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EXPRESSIONVISITOR_H
#define QORQL_EXPRESSIONVISITOR_H

class QORQL_Arithmetic;
class QORQL_Association;
class QORQL_Comparison;
class QORQL_Expression;
class QORQL_ExpressionFactor;
class QORQL_ExpressionTerm;
class QORQL_Factor;
class QORQL_Function;
class QORQL_Term;

// Create one for each walk. Every operation does nothing in the base.
class QORQL_ExpressionVisitor {
 public:
  virtual ~QORQL_ExpressionVisitor();
  // Each is called for every node of its class, after the nodes below it; visitFactor only for literals and
  // references, not for a factor around another node. What one THROWS ends the walk.
  virtual void visitExpression(const QORQL_Expression& node);
  virtual void visitExpressionTerm(const QORQL_ExpressionTerm& node);
  virtual void visitExpressionFactor(const QORQL_ExpressionFactor& node);
  virtual void visitComparison(const QORQL_Comparison& node);
  virtual void visitArithmetic(const QORQL_Arithmetic& node);
  virtual void visitTerm(const QORQL_Term& node);
  virtual void visitFactor(const QORQL_Factor& node);
  virtual void visitAssociation(const QORQL_Association& node);
  virtual void visitFunction(const QORQL_Function& node);
};

#endif
