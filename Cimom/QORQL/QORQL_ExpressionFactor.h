// One comparison of a condition, negated or not: where tables are filtered and joined.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EXPRESSIONFACTOR_H
#define QORQL_EXPRESSIONFACTOR_H

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_JoinType.h"
#include "Cimom/QORQL/QORQL_Operator.h"

class QORQL_Comparison;
class QORQL_Lexer;

// [ NOT ] Comparison.
class QORQL_ExpressionFactor : public QORQL_Evaluatable {
 public:
  // What kind() says of it.
  static constexpr QORQL_NodeKind kKind = QORQL_NodeKind::ExpressionFactor;

  // A comparison, and QORQL_OperatorNOT where it is negated; text and language of the statement travel with what it
  // fetches.
  QORQL_ExpressionFactor(QORSmrPtr<QORQL_Evaluatable> comparison, QORQL_Operator op, const QORString& queryString,
                         const QORString& queryLanguage);
  ~QORQL_ExpressionFactor() override;

  // Reads it from the current token on and leaves the first token after it current. Adds the properties that are
  // named to `projMap`. THROWS QORQL_ParseException and QORQL_Exception.
  static QORSmrPtr<QORQL_Evaluatable> parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                            QORQL_ProjectionMap& projMap, const QORString& queryString,
                                            const QORString& queryLanguage);

  // What the constructor was given; the comparison is never null.
  const QORSmrPtr<QORQL_Evaluatable>& getComparison() const noexcept { return _comparison; }
  QORQL_Operator getOperator() const noexcept { return _operator; }
  // Whether the comparison ties an association class to a FROM class; gives its
  // join type and the two names as written. False under NOT.
  bool isComparisonAnAssociation(QORQL_JoinType& joinType, QORString& leftName, QORString& rightName) const;

  QORSmrPtr<IQoriValue> evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) override;
  void evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, const QORString& nameSpace) override;
  void evaluateOR(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, QORSmrPtr<QORQL_DataTable>& other,
                  const QORString& nameSpace) override;
  void accept(QORSmrPtr<QORQL_ExpressionVisitor>& visitor) override;

 private:
  void _evaluateHelper(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataTable>& table, const QORString& nameSpace);

  QORSmrPtr<QORQL_Evaluatable> _comparison;
  QORQL_Operator _operator;
  QORString _queryString;
  QORString _queryLanguage;
};

#endif
