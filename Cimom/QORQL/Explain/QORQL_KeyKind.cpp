// The kinds of keys, as the binder and the join of lazy rows will find them.
#include "Cimom/QORQL/Explain/QORQL_KeyKind.h"

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "cimom/QoriProviderPluginManager.h"

namespace {

class KeyReader {
 public:
  KeyReader(const QORQL_SymbolTable& symbolTable, const QORString& nameSpace)
      : _symbolTable(symbolTable), _nameSpace(nameSpace) {}

  QORQL_KeyFacts read(const QORQL_Evaluatable* node) const {
    if (const auto* arithmetic = dynamic_cast<const QORQL_Arithmetic*>(node)) return readChain(*arithmetic);
    if (const auto* term = dynamic_cast<const QORQL_Term*>(node)) return readChain(*term);
    if (const auto* factor = dynamic_cast<const QORQL_Factor*>(node)) return readFactor(*factor);
    if (const auto* function = dynamic_cast<const QORQL_Function*>(node)) {
      const bool isPath = function->getFunctionID() == QORQL_FUNCTIONID_OBJECTPATH;
      return {isPath ? QORQL_KeyKind::kReference : QORQL_KeyKind::kUnbound, false};
    }
    const auto* comparison = dynamic_cast<const QORQL_Comparison*>(node);
    const bool isNested = comparison != nullptr && comparison->getOperator() == QORQL_OperatorNONE;
    return isNested ? read(comparison->getLHSArithmeticExpression().Get()) : QORQL_KeyFacts{};
  }

 private:
  static const QORQL_Evaluatable* firstOf(const QORQL_Arithmetic& node) { return node.getTerm().Get(); }
  static const QORQL_Evaluatable* firstOf(const QORQL_Term& node) { return node.getFactor().Get(); }
  static const QORQL_Evaluatable* restOf(const QORQL_Arithmetic& node) { return node.getArithmetic().Get(); }
  static const QORQL_Evaluatable* restOf(const QORQL_Term& node) { return node.getTerm().Get(); }

  // A value computed from numbers is a number, from texts a text; from anything else its kind is not known.
  template <class Node>
  QORQL_KeyFacts readChain(const Node& first) const {
    QORQL_KeyFacts facts = read(firstOf(first));
    for (const Node* node = &first; node->getOperator() != QORQL_OperatorNONE;) {
      node = dynamic_cast<const Node*>(restOf(*node));
      if (node == nullptr) return {};
      const QORQL_KeyFacts next = read(firstOf(*node));
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
    const bool hasPath = !factor.getChain().IsNull() && factor.getChain()->find(".") != QORString::npos;
    const QORsint32 index = factor.getArrayIndexList();
    const bool isWhole = index == QORQL_Factor::kNoArray || index == QORQL_Factor::kWholeArray;
    if (hasPath || !isWhole || factor.getPropertyName()->isEmpty()) return {};
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
