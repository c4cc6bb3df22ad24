// The value of sums, differences, products and quotients on one row.
//
// A chain is grouped to the right: its operands are evaluated from the left,
// then combined from the right, so that 10 - 4 - 3 is 10 - (4 - 3).
#include <vector>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "Cimom/QORQL/QORQL_Values.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;

const QORSmrPtr<QORQL_Evaluatable>& operandOf(const QORQL_Arithmetic& node) { return node.getTerm(); }
const QORSmrPtr<QORQL_Evaluatable>& operandOf(const QORQL_Term& node) { return node.getFactor(); }
const QORSmrPtr<QORQL_Evaluatable>& restOf(const QORQL_Arithmetic& node) { return node.getArithmetic(); }
const QORSmrPtr<QORQL_Evaluatable>& restOf(const QORQL_Term& node) { return node.getTerm(); }

template <class Node>
Value evaluateChain(const Node& first, QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  if (first.getOperator() == QORQL_OperatorNONE) return operandOf(first)->evaluate(symbolTable, row);
  std::vector<Value> values;
  std::vector<QORQL_Operator> operators;
  for (const Node* node = &first; node != nullptr;) {
    values.push_back(operandOf(*node)->evaluate(symbolTable, row));
    if (node->getOperator() == QORQL_OperatorNONE) break;
    operators.push_back(node->getOperator());
    const Node* const next = dynamic_cast<const Node*>(restOf(*node).Get());
    if (next == nullptr) values.push_back(restOf(*node)->evaluate(symbolTable, row));
    node = next;
  }
  return QORQL_combineChain(operators, values);
}

}  // namespace

Value QORQL_Arithmetic::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  return evaluateChain(*this, symbolTable, row);
}

Value QORQL_Term::evaluate(QORQL_SymbolTable& symbolTable, QORSmrPtr<QORQL_DataRow>& row) {
  return evaluateChain(*this, symbolTable, row);
}
