// The kinds of keys, as the binder and the join of lazy rows will find them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Explain/QORQL_KeyKind.h"

#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "cimom/QoriProviderPluginManager.h"

namespace {

class KeyReader {
 public:
  KeyReader(const QORQL_SymbolTable& symbolTable, const QORString& nameSpace)
      : _symbolTable(symbolTable), _nameSpace(nameSpace) {}

  QORQL_KeyFacts read(const QORQL_Evaluatable* node) const {
    const QORQL_Evaluatable* const bare = QORQL_peel(node);
    if (const auto* arithmetic = QORQL_nodeAs<QORQL_Arithmetic>(bare)) return readChain(*arithmetic);
    if (const auto* term = QORQL_nodeAs<QORQL_Term>(bare)) return readChain(*term);
    if (const auto* factor = QORQL_nodeAs<QORQL_Factor>(bare)) return readFactor(*factor);
    const auto* const function = QORQL_nodeAs<QORQL_Function>(bare);
    if (function == nullptr) return {};
    const bool isPath = function->getFunctionID() == QORQL_FUNCTIONID_OBJECTPATH;
    return {isPath ? QORQL_KeyKind::kReference : QORQL_KeyKind::kUnbound, false};
  }

 private:
  // A value computed from numbers is a number, from texts a text; from anything else its kind is not known.
  template <class Node>
  QORQL_KeyFacts readChain(const Node& first) const {
    QORQL_KeyFacts facts = read(QORQL_operandOf(first).Get());
    for (const Node* link = QORQL_nextLink(first); link != nullptr; link = QORQL_nextLink(*link)) {
      const QORQL_KeyFacts next = read(QORQL_operandOf(*link).Get());
      if (next.kind == QORQL_KeyKind::kUnbound) facts.kind = next.kind;
      if (next.kind != facts.kind && facts.kind != QORQL_KeyKind::kUnbound) facts.kind = QORQL_KeyKind::kOther;
      facts.isComputed = true;
    }
    return facts;
  }

  QORQL_KeyFacts readFactor(const QORQL_Factor& factor) const {
    if (!factor.getEvaluatable().IsNull()) {
      QORQL_KeyFacts facts = read(factor.getEvaluatable().Get());
      facts.isComputed = facts.isComputed || factor.getOperator() == QORQL_OperatorMINUS;
      return facts;
    }
    if (!factor.getLiteral().IsNull()) return {kindOf(*factor.getLiteral()->getType()), false};
    if (factor.getClassName().IsNull() || factor.getPropertyName().IsNull()) return {};
    if (QORQL_hasPath(factor) || QORQL_hasIndex(factor) || factor.getPropertyName()->isEmpty()) return {};
    return {declaredKind(*factor.getClassName(), *factor.getPropertyName()), false};
  }

  QORQL_KeyKind declaredKind(const QORString& fromName, const QORString& property) const {
    const QORSmrPtr<IQoriRepository> repository(
        QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository());
    if (repository.IsNull()) return QORQL_KeyKind::kUndeclared;
    const QORSmrPtr<IQoriClass> declared(repository->getClass(_nameSpace, _symbolTable.classNameOf(fromName)));
    const IQoriProperty* const found = declared.IsNull() ? nullptr : declared->getProperty(property, true);
    return found == nullptr ? QORQL_KeyKind::kUndeclared : kindOf(*found->getType());
  }

  static QORQL_KeyKind kindOf(const IQoriType& type) {
    const QORString& name = type.getName();
    if (type.isArray()) return QORQL_KeyKind::kOther;
    if (QORQL_isNumericType(name.view())) return QORQL_KeyKind::kNumber;
    if (name == "string") return QORQL_KeyKind::kText;
    if (name == "boolean") return QORQL_KeyKind::kBoolean;
    return name == "reference" ? QORQL_KeyKind::kReference : QORQL_KeyKind::kOther;
  }

  const QORQL_SymbolTable& _symbolTable;
  const QORString& _nameSpace;
};

bool isKey(QORQL_KeyKind kind) noexcept { return kind <= QORQL_KeyKind::kReference; }

}  // namespace

QORQL_KeyFacts QORQL_keyFactsOf(const QORQL_Evaluatable* side, const QORQL_SymbolTable& symbolTable,
                                const QORString& nameSpace) {
  return KeyReader(symbolTable, nameSpace).read(side);
}

bool QORQL_joinsByKey(const QORQL_KeyFacts& left, const QORQL_KeyFacts& right, bool isEquality) noexcept {
  return isKey(left.kind) && left.kind == right.kind && (isEquality || left.kind != QORQL_KeyKind::kReference);
}

// Keys that are all null join with any other, and a key that cannot be computed joins with none.
bool QORQL_keysDependOnValues(const QORQL_KeyFacts& left, const QORQL_KeyFacts& right) noexcept {
  if (left.kind == QORQL_KeyKind::kUnbound || right.kind == QORQL_KeyKind::kUnbound) return false;
  return left.isComputed || right.isComputed || left.kind != right.kind || !isKey(left.kind) ||
         left.kind == QORQL_KeyKind::kReference;
}
