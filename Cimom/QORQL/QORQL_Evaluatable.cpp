// The base of every node of an expression: evaluates to nothing and filters nothing.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Evaluatable.h"

QORQL_Evaluatable::~QORQL_Evaluatable() = default;

QORSmrPtr<IQoriValue> QORQL_Evaluatable::evaluate(QORQL_SymbolTable& /*symbolTable*/,
                                                  QORSmrPtr<QORQL_DataRow>& /*row*/) {
  return {};
}

void QORQL_Evaluatable::evaluate(QORQL_SymbolTable& /*symbolTable*/, QORSmrPtr<QORQL_DataTable>& /*table*/,
                                 const QORString& /*nameSpace*/) {}

void QORQL_Evaluatable::evaluateOR(QORQL_SymbolTable& /*symbolTable*/, QORSmrPtr<QORQL_DataTable>& /*table*/,
                                   QORSmrPtr<QORQL_DataTable>& /*other*/, const QORString& /*nameSpace*/) {}

void QORQL_Evaluatable::accept(QORSmrPtr<QORQL_ExpressionVisitor>&) {}
