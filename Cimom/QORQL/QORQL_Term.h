// Products and quotients.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TERM_H
#define QORQL_TERM_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Operator.h"

class QORQL_Factor;
class QORQL_Lexer;

// Factor [ ( ASTERISK | DIV ) Term ], grouped to the right.
class QORQL_Term : public QORQL_Evaluatable {
 public:
  // What kind() says of it.
  static constexpr QORQL_NodeKind kKind = QORQL_NodeKind::Term;

  // As parse() makes it: the factor, never null; the rest of the product and the operator before them, or null and
  // QORQL_OperatorNONE.
  QORQL_Term(QORSmrPtr<QORQL_Evaluatable> factor, QORSmrPtr<QORQL_Evaluatable> term, QORQL_Operator op);
  ~QORQL_Term() override;

  // Reads it from the current token on and leaves the first token after it current; always a node of this class, a
  // lone operand's too. Adds the properties that are named to `projMap`. THROWS QORQL_ParseException and
  // QORQL_Exception.
  static QORSmrPtr<QORQL_Evaluatable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                            QORQL_ProjectionMap& projMap, const QORString& queryString,
                                            const QORString& queryLanguage);

  // What the constructor was given: the factor, the rest of the product, and the operator between them.
  const QORSmrPtr<QORQL_Evaluatable>& getFactor() const noexcept { return _factor; }
  const QORSmrPtr<QORQL_Evaluatable>& getTerm() const noexcept { return _term; }
  QORQL_Operator getOperator() const noexcept { return _operator; }
  // BORROWS: the left operand as a QORQL_Factor; null when it is none.
  QORQL_Factor* getFactorCasted() const noexcept;

  QORSmrPtr<IQoriValue> evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) override;
  using QORQL_Evaluatable::evaluate;
  void accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) override;

  // For the parser and the destructor only: the place of the rest, so that a long chain is built and freed without
  // recursion.
  QORSmrPtr<QORQL_Evaluatable>& chainLink() noexcept { return _term; }

 private:
  QORSmrPtr<QORQL_Evaluatable> _factor;
  QORSmrPtr<QORQL_Evaluatable> _term;
  QORQL_Operator _operator;
};

#endif
