// Products and quotients.
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
  static constexpr QORQL_NodeKind kKind = QORQL_NodeKind::Term;

  QORQL_Term(QORSmrPtr<QORQL_Evaluatable> factor, QORSmrPtr<QORQL_Evaluatable> term, QORQL_Operator op);
  ~QORQL_Term() override;

  static QORSmrPtr<QORQL_Evaluatable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                            QORQL_ProjectionMap& projMap, const QORString& queryString,
                                            const QORString& queryLanguage);

  const QORSmrPtr<QORQL_Evaluatable>& getFactor() const noexcept { return _factor; }
  const QORSmrPtr<QORQL_Evaluatable>& getTerm() const noexcept { return _term; }
  QORQL_Operator getOperator() const noexcept { return _operator; }
  // BORROWS: the left operand as a QORQL_Factor; null when it is none.
  QORQL_Factor* getFactorCasted() const noexcept;

  QORSmrPtr<IQoriValue> evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) override;
  using QORQL_Evaluatable::evaluate;
  void accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) override;

  QORSmrPtr<QORQL_Evaluatable>& chainLink() noexcept { return _term; }

 private:
  QORSmrPtr<QORQL_Evaluatable> _factor;
  QORSmrPtr<QORQL_Evaluatable> _term;
  QORQL_Operator _operator;
};

#endif
