// The AND level of a condition.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EXPRESSIONTERM_H
#define QORQL_EXPRESSIONTERM_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Operator.h"

class QORQL_Lexer;

// (Association | ExpressionFactor) [ AND ExpressionTerm ].
class QORQL_ExpressionTerm : public QORQL_Evaluatable {
 public:
  // What kind() says of it.
  static constexpr QORQL_NodeKind kKind = QORQL_NodeKind::ExpressionTerm;

  // As parse() makes it: the first operand of AND, never null; the others and the operator before them, or null and
  // QORQL_OperatorNONE.
  QORQL_ExpressionTerm(QORSmrPtr<QORQL_Evaluatable> expressionFactor, QORSmrPtr<QORQL_Evaluatable> expressionTerm,
                       QORQL_Operator op);
  ~QORQL_ExpressionTerm() override;

  // Reads it from the current token on and leaves the first token after it current; always a node of this class, a
  // lone operand's too. Adds the properties that are named to `projMap`. THROWS QORQL_ParseException and
  // QORQL_Exception.
  static QORSmrPtr<QORQL_Evaluatable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                            QORQL_ProjectionMap& projMap, const QORString& queryString,
                                            const QORString& queryLanguage);

  // What the constructor was given: the first operand of AND, the others, and the operator between them.
  const QORSmrPtr<QORQL_Evaluatable>& getExpressionFactor() const noexcept { return _expressionFactor; }
  const QORSmrPtr<QORQL_Evaluatable>& getExpressionTerm() const noexcept { return _expressionTerm; }
  QORQL_Operator getOperator() const noexcept { return _operator; }

  QORSmrPtr<IQoriValue> evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) override;
  void evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, const QORString& nameSpace) override;
  void accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) override;

  // For the parser and the destructor only: the place of the rest, so that a long chain is built and freed without
  // recursion.
  QORSmrPtr<QORQL_Evaluatable>& chainLink() noexcept { return _expressionTerm; }

 private:
  QORSmrPtr<QORQL_Evaluatable> _expressionFactor;
  QORSmrPtr<QORQL_Evaluatable> _expressionTerm;
  QORQL_Operator _operator;
};

#endif
