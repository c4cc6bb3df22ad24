// The comparison of two arithmetic expressions.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_COMPARISON_H
#define QORQL_COMPARISON_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_JoinType.h"
#include "Cimom/QORQL/QORQL_Operator.h"

class QORQL_Arithmetic;
class QORQL_Lexer;

// [ ANY | EVERY ] Arithmetic [ CompOp [ ANY | EVERY ] Arithmetic | IS [ NOT ] NULL ].
class QORQL_Comparison : public QORQL_Evaluatable {
 public:
  // What kind() says of it.
  static constexpr QORQL_NodeKind kKind = QORQL_NodeKind::Comparison;

  // The side on which ANY or EVERY was written.
  enum QORQL_ARRAY_COMP {
    ArrayCompNone = 0,
    ArrayCompAnyLeft = 1,
    ArrayCompAnyRight = 2,
    ArrayCompEveryLeft = 3,
    ArrayCompEveryRight = 4
  };

  // As parse() makes it. The left operand is never null; the right one is null with IS NULL and IS NOT NULL, and
  // where there is no operator, which then is QORQL_OperatorNONE.
  QORQL_Comparison(QORSmrPtr<QORQL_Evaluatable> arithmetic1, QORSmrPtr<QORQL_Evaluatable> arithmetic2,
                   QORQL_Operator op);
  ~QORQL_Comparison() override;

  // Reads it from the current token on and leaves the first token after it current. Adds the properties that are
  // named to `projMap`. THROWS QORQL_ParseException and QORQL_Exception.
  static QORSmrPtr<QORQL_Evaluatable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                            QORQL_ProjectionMap& projMap, const QORString& queryString,
                                            const QORString& queryLanguage);

  // Never null.
  const QORSmrPtr<QORQL_Evaluatable>& getLHSArithmeticExpression() const noexcept { return _arithmetic1; }
  // Null when there is no right operand.
  const QORSmrPtr<QORQL_Evaluatable>& getRHSArithmeticExpression() const noexcept { return _arithmetic2; }
  QORQL_Operator getOperator() const noexcept { return _operator; }
  QORQL_JoinType getJoinType() const noexcept;
  bool isArrayComp() const noexcept { return eArrayComp != ArrayCompNone; }
  QORQL_ARRAY_COMP getArrayComp() const noexcept { return eArrayComp; }
  // Whether ANY or EVERY was written on the left, and whether it was ANY; both false without either.
  static constexpr bool asksLeft(QORQL_ARRAY_COMP comp) noexcept {
    return comp == ArrayCompAnyLeft || comp == ArrayCompEveryLeft;
  }
  static constexpr bool asksAny(QORQL_ARRAY_COMP comp) noexcept {
    return comp == ArrayCompAnyLeft || comp == ArrayCompAnyRight;
  }
  bool asksLeft() const noexcept { return asksLeft(eArrayComp); }
  bool asksAny() const noexcept { return asksAny(eArrayComp); }
  void setArrayComp(QORQL_ARRAY_COMP arrayComp) noexcept { eArrayComp = arrayComp; }
  // See QORQL_ExpressionFactor.
  bool isComparisonAnAssociation(QORQL_JoinType& joinType, QORString& leftName, QORString& rightName) const;

  QORSmrPtr<IQoriValue> evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) override;
  using QORQL_Evaluatable::evaluate;
  // With the namespace of the query, which ISA needs; when empty, ISA takes that of the object on the left.
  QORSmrPtr<IQoriValue> evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row,
                                 const QORString& nameSpace);
  void accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) override;

  // The checks of array references, made while parsing. THROW QORQL_Exception.
  static void validateAnyArray(QORQL_Arithmetic* other);
  static void validateScalarArray(QORQL_Arithmetic* left, QORQL_Arithmetic* right);

  // The comparison of two values that have been computed. THROWS as evaluate.
  QoriTruth compareValues(const QORSmrPtr<IQoriValue>& left, const QORSmrPtr<IQoriValue>& right,
                          const QORString& nameSpace) const;

 private:
  QoriTruth relateValues(const QORSmrPtr<IQoriValue>& left, const QORSmrPtr<IQoriValue>& right) const;
  bool likeValues(const QORSmrPtr<IQoriValue>& left, const QORSmrPtr<IQoriValue>& right) const;
  QoriTruth isaValues(const QORSmrPtr<IQoriValue>& left, const QORSmrPtr<IQoriValue>& right,
                      const QORString& nameSpace) const;

  QORSmrPtr<QORQL_Evaluatable> _arithmetic1;
  QORSmrPtr<QORQL_Evaluatable> _arithmetic2;
  QORQL_Operator _operator;
  QORQL_ARRAY_COMP eArrayComp = ArrayCompNone;
};

#endif
