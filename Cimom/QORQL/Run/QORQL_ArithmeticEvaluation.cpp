// The value of sums, differences, products and quotients on one row.
//
// A chain is grouped to the right: its operands are evaluated from the left,
// then combined from the right, so that 10 - 4 - 3 is 10 - (4 - 3).
// SPDX-License-Identifier: Apache-2.0
#include <vector>

#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;

template <class Node>
Value evaluateChain(const Node& first, QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  if (!QORQL_continues(first)) return QORQL_operandOf(first)->evaluate(symbolTable, row);
  std::vector<Value> values;
  std::vector<QORQL_Operator> operators;
  const Node* last = &first;
  for (const Node& link : QORQL_linksOf(first)) {
    values.push_back(QORQL_operandOf(link)->evaluate(symbolTable, row));
    if (QORQL_continues(link)) operators.push_back(link.getOperator());
    last = &link;
  }
  if (QORQL_continues(*last)) values.push_back(QORQL_restOf(*last)->evaluate(symbolTable, row));
  return QORQL_combineChain(operators, values);
}

}  // namespace

Value QORQL_Arithmetic::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  return evaluateChain(*this, symbolTable, row);
}

Value QORQL_Term::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  return evaluateChain(*this, symbolTable, row);
}
