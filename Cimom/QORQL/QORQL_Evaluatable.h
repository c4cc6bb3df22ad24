// The base of every node of an expression.
#ifndef QORQL_EVALUATABLE_H
#define QORQL_EVALUATABLE_H

#include "cimom/IQoriValue.h"
#include "cmpbase.h"

class QORQL_DataRow;
class QORQL_DataTable;
class QORQL_ExpressionVisitor;
class QORQL_SymbolTable;

// Built once by the parser, then evaluated any number of times; holds no state
// of an evaluation. Nodes are shared and belong to one thread at a time while
// name resolution runs; afterwards they do not change.
class QORQL_Evaluatable {
 public:
  QORQL_Evaluatable() = default;
  QORQL_Evaluatable(const QORQL_Evaluatable&) = delete;
  QORQL_Evaluatable& operator=(const QORQL_Evaluatable&) = delete;

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
};

#endif
