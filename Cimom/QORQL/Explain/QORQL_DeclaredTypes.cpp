// Types follow the value library: one real operand makes the result a real, + * / of two unsigned make
// a uint64, and a uint64 on the left stays one while the result is not negative.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Explain/QORQL_DeclaredTypes.h"

#include <vector>

#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Text.h"
#include "cimom/QoriProviderPluginManager.h"

namespace {

using Type = QORQL_DeclaredType;

Type typeNamed(const IQoriType& declared) {
  const std::string_view name = declared.getName().view();
  const bool isArray = declared.isArray();
  if (name == "uint64") return {Type::kUint64, isArray};
  if (name.starts_with("uint")) return {Type::kUnsigned, isArray};
  if (name.starts_with("sint")) return {Type::kSigned, isArray};
  if (name.starts_with("real")) return {Type::kReal, isArray, name == "real32"};
  return {Type::kOther, isArray};
}

bool isNumber(const Type& type) { return !type.isArray && type.kind > Type::kUnknown && type.kind < Type::kOther; }
bool isUnsigned(const Type& type) { return type.kind == Type::kUnsigned || type.kind == Type::kUint64; }

Type combined(QORQL_Operator op, const Type& left, const Type& right) {
  if (left.kind == Type::kUnknown || right.kind == Type::kUnknown) return {};
  if (!isNumber(left) || !isNumber(right)) return {Type::kOther};
  if (left.kind == Type::kReal || right.kind == Type::kReal) return {Type::kReal};
  const bool staysUnsigned = isUnsigned(left) && isUnsigned(right) && op != QORQL_OperatorMINUS;
  return {staysUnsigned || left.kind == Type::kUint64 ? Type::kUint64 : Type::kSigned};
}

}  // namespace

QORQL_DeclaredTypes::QORQL_DeclaredTypes(const QORQL_FromClause& from, const QORString& nameSpace)
    : _nameSpace(nameSpace) {
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*from.getFromSpecifierList());
  while (++specifiers) {
    const QORString& className = specifiers.key()->getTableName();
    _classNames[QORQL_foldedName(className)] = className;
    if (!specifiers.key()->getAlias().isEmpty())
      _classNames[QORQL_foldedName(specifiers.key()->getAlias())] = className;
  }
}

QORString QORQL_DeclaredTypes::classNameOf(const QORString& fromName) const {
  const auto found = _classNames.find(QORQL_foldedName(fromName));
  return found == _classNames.end() ? fromName : found->second;
}

bool QORQL_DeclaredTypes::isFromName(const QORString& name) const {
  return _classNames.count(QORQL_foldedName(name)) != 0;
}

QORSmrPtr<IQoriClass> QORQL_DeclaredTypes::classOf(const QORString& fromName) const {
  return findClass(classNameOf(fromName));
}

QORSmrPtr<IQoriClass> QORQL_DeclaredTypes::findClass(const QORString& className) const {
  const QORSmrPtr<IQoriRepository> repository(
      QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository());
  return repository.IsNull() ? QORSmrPtr<IQoriClass>() : repository->getClass(_nameSpace, className);
}

bool QORQL_DeclaredTypes::isA(const QORString& className, const QORString& ancestor) const {
  return CQLQueryValidator::isSubClass(_nameSpace, className, ancestor);
}

QORQL_DeclaredType QORQL_DeclaredTypes::of(const QORQL_Evaluatable* given) const {
  const QORQL_Evaluatable* const node = QORQL_peel(given);
  if (const auto* factor = QORQL_nodeAs<QORQL_Factor>(node)) {
    if (factor->getEvaluatable().IsNull()) return ofReference(*factor);
    const Type negated = of(factor->getEvaluatable().Get());
    return negated.kind == Type::kUnsigned ? Type{Type::kSigned} : negated;
  }
  if (const auto* function = QORQL_nodeAs<QORQL_Function>(node)) return ofFunction(*function);
  if (const auto* arithmetic = QORQL_nodeAs<QORQL_Arithmetic>(node)) return ofChain(*arithmetic);
  if (const auto* term = QORQL_nodeAs<QORQL_Term>(node)) return ofChain(*term);
  return {Type::kOther};
}

QORQL_DeclaredType QORQL_DeclaredTypes::ofReference(const QORQL_Factor& factor) const {
  if (!factor.getLiteral().IsNull()) return typeNamed(*factor.getLiteral()->getType());
  if (factor.getClassName().IsNull() || factor.getPropertyName().IsNull()) return {};
  const bool isElement = factor.getArrayIndexList() >= 0;
  if (QORQL_hasPath(factor) || !isFromName(*factor.getClassName())) return {};
  const QORSmrPtr<IQoriClass> model(classOf(*factor.getClassName()));
  const IQoriProperty* const property = model.IsNull() ? nullptr : model->getProperty(*factor.getPropertyName(), true);
  if (property == nullptr) return {};
  Type type = typeNamed(*property->getType());
  type.isArray = type.isArray && !isElement;
  return type;
}

QORQL_DeclaredType QORQL_DeclaredTypes::ofFunction(const QORQL_Function& function) const {
  if (function.getFunctionID() == QORQL_FUNCTIONID_COUNT) return {Type::kUint64};
  if (function.getFunctionID() != QORQL_FUNCTIONID_SUM || function.getParameters()->isEmpty()) return {};
  const Type summed = of(function.getParameters()->first().Get());
  return isUnsigned(summed) && !summed.isArray ? Type{Type::kUint64} : Type{};
}

// Grouped to the right, so combined from the end.
template <class Node>
QORQL_DeclaredType QORQL_DeclaredTypes::ofChain(const Node& first) const {
  std::vector<const Node*> links;
  for (const Node& link : QORQL_linksOf(first)) links.push_back(&link);
  Type type = of(QORQL_operandOf(*links.back()).Get());
  for (links.pop_back(); !links.empty(); links.pop_back()) {
    type = combined(links.back()->getOperator(), of(QORQL_operandOf(*links.back()).Get()), type);
  }
  return type;
}
