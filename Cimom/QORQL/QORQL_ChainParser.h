// The parsing of chains: operands and operators are collected in a loop, then
// the right-grouped nodes are built from the last one back.
#ifndef QORQL_CHAINPARSER_H
#define QORQL_CHAINPARSER_H

#include <utility>
#include <vector>

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Operator.h"
#include "cmpbase.h"

// What has been read of a chain. Its operations stay out of line: parsing nests,
// and every frame on the way down should be small.
class QORQL_ChainParts {
 public:
  [[gnu::noinline]] void append(QORSmrPtr<QORQL_Evaluatable>&& operand, QORQL_Operator op) {
    _parts.emplace_back(std::move(operand), op);
  }
  // The chain that ends with this operand.
  template <class Node>
  [[gnu::noinline]] QORSmrPtr<QORQL_Evaluatable> build(QORSmrPtr<QORQL_Evaluatable>&& last, QORSlabs& slabs) {
    auto chain = QORSmrPtr<QORQL_Evaluatable>::MakeIn<Node>(slabs, std::move(last), nullptr, QORQL_OperatorNONE);
    for (; !_parts.empty(); _parts.pop_back()) {
      auto& [operand, op] = _parts.back();
      chain = QORSmrPtr<QORQL_Evaluatable>::MakeIn<Node>(slabs, std::move(operand), std::move(chain), op);
    }
    return chain;
  }

 private:
  std::vector<std::pair<QORSmrPtr<QORQL_Evaluatable>, QORQL_Operator>> _parts;
};

// The parse routine of the level below.
using QORQL_ParseOperand = QORSmrPtr<QORQL_Evaluatable> (*)(QORQL_SymbolTable&, QORQL_Lexer&, QORQL_ProjectionMap&,
                                                            const QORString&, const QORString&);
// The operators of a level, by token; QORQL_OperatorNONE ends the chain.
using QORQL_OperatorOfToken = QORQL_Operator (*)(QORQL_TokenType);

// Operand { operator Operand }. Always makes a node.
template <class Node>
QORSmrPtr<QORQL_Evaluatable> QORQL_parseChain(QORQL_ParseOperand parseOperand, QORQL_OperatorOfToken operatorOf,
                                              QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                              QORQL_ProjectionMap& projMap, const QORString& queryString,
                                              const QORString& queryLanguage) {
  QORQL_ChainParts parts;
  for (;;) {
    QORSmrPtr<QORQL_Evaluatable> operand = parseOperand(symbolTable, lexer, projMap, queryString, queryLanguage);
    const QORQL_Operator op = operatorOf(lexer.getCurrent().getType());
    if (op == QORQL_OperatorNONE) return parts.build<Node>(std::move(operand), lexer.slabs());
    parts.append(std::move(operand), op);
    lexer.next(false);
  }
}

#endif
