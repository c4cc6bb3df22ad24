// Chains are walked with a loop, so that only nesting recurses: a chain that
// groups to the right opens a parenthesis before each rest and closes all at its end.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_ExpressionText.h"

#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_SelectedEntry.h"
#include "Cimom/QORQL/QORQL_Text.h"
#include "cimom/QoriProviderPluginManager.h"

namespace {

// A chain of one kind of + or *, AND or OR reads the same however it is grouped.
template <class Node>
bool needsGrouping(const Node& first) {
  for (const Node& link : QORQL_linksOf(first)) {
    if (link.getOperator() == QORQL_OperatorMINUS || link.getOperator() == QORQL_OperatorDIV) return true;
  }
  return false;
}

const char* arrayWord(const QORQL_Comparison& comparison, bool isLeft) {
  if (!comparison.isArrayComp() || comparison.asksLeft() != isLeft) return "";
  return comparison.asksAny() ? "ANY " : "EVERY ";
}

// A literal is never negative; one that its signed type cannot hold has wrapped to a negative number.
std::string literalText(const IQoriValue& literal) {
  const QoriScalar scalar = literal.scalar();
  if (scalar.kind == QoriScalarKind::Signed && scalar.s < 0) return std::to_string(static_cast<QORuint64>(scalar.s));
  const std::string text(literal.toString().view());
  return literal.getType()->getName() == "string" ? "'" + text + "'" : text;
}

std::string associationText(const QORQL_Association& association) {
  const std::string name(association.getAssociationName().view());
  const char* const sign = association.getJoinType() == QORQL_JOIN_TYPE_INNER ? " = " : " *= ";
  return name + sign + std::string(association.getSource().view()) + " AND " + name + " = " +
         std::string(association.getDestination().view());
}

}  // namespace

std::string QORQL_ExpressionPrinter::of(const QORQL_Evaluatable* node) const {
  if (node == nullptr) return {};
  if (const auto* factor = QORQL_nodeAs<QORQL_Factor>(node)) return ofFactor(*factor);
  if (const auto* term = QORQL_nodeAs<QORQL_Term>(node)) return ofChain(*term);
  if (const auto* arithmetic = QORQL_nodeAs<QORQL_Arithmetic>(node)) return ofChain(*arithmetic);
  if (const auto* comparison = QORQL_nodeAs<QORQL_Comparison>(node)) return ofComparison(*comparison);
  if (const auto* function = QORQL_nodeAs<QORQL_Function>(node)) return ofFunction(*function);
  if (const auto* factor = QORQL_nodeAs<QORQL_ExpressionFactor>(node)) {
    return (factor->getOperator() == QORQL_OperatorNOT ? "NOT " : "") + of(factor->getComparison().Get());
  }
  if (const auto* association = QORQL_nodeAs<QORQL_Association>(node)) return associationText(*association);
  if (const auto* term = QORQL_nodeAs<QORQL_ExpressionTerm>(node)) return ofChain(*term);
  if (const auto* expression = QORQL_nodeAs<QORQL_Expression>(node)) return ofChain(*expression);
  return {};
}

template <class Node>
std::string QORQL_ExpressionPrinter::ofChain(const Node& first) const {
  std::string text;
  std::size_t open = 0;
  const bool isGrouped = _style.showsGrouping && needsGrouping(first);
  for (const Node& link : QORQL_linksOf(first)) {
    if (&link != &first && isGrouped && QORQL_continues(link)) {
      text += '(';
      ++open;
    }
    text += of(QORQL_operandOf(link).Get());
    if (QORQL_continues(link)) text.append(" ").append(QORQL_operatorText(link.getOperator())).append(" ");
  }
  return text.append(open, ')');
}

std::string QORQL_ExpressionPrinter::ofComparison(const QORQL_Comparison& comparison) const {
  std::string text = arrayWord(comparison, true) + of(comparison.getLHSArithmeticExpression().Get());
  const QORQL_Operator op = comparison.getOperator();
  if (op == QORQL_OperatorNONE) return text;
  text.append(" ").append(QORQL_operatorText(op));
  const QORQL_Evaluatable* const right = comparison.getRHSArithmeticExpression().Get();
  if (right == nullptr) return text;
  text.append(" ").append(arrayWord(comparison, false));
  return text + (op == QORQL_OperatorISA ? ofClassName(right) : of(right));
}

std::string QORQL_ExpressionPrinter::ofFactor(const QORQL_Factor& factor) const {
  if (!factor.getSelectedEntry().IsNull()) return std::string(factor.getSelectedEntry()->getAlias().view());
  const QORQL_Evaluatable* const inner = factor.getEvaluatable().Get();
  if (inner == nullptr) return factor.getLiteral().IsNull() ? ofReference(factor) : literalText(*factor.getLiteral());
  const bool isComparison = QORQL_nodeAs<QORQL_Comparison>(inner) != nullptr;
  const std::string sign = factor.getOperator() == QORQL_OperatorMINUS ? "-" : "";
  return isComparison ? sign + "(" + of(inner) + ")" : sign + of(inner);
}

std::string QORQL_ExpressionPrinter::ofFunction(const QORQL_Function& function) const {
  std::string text = std::string(QORQL_functionName(function.getFunctionID())) + "(";
  if (!_style.showsArguments) return text + "...)";
  QORValSlistIterator<QORSmrPtr<QORQL_Evaluatable>> parameters(*function.getParameters());
  for (bool isFirst = true; ++parameters; isFirst = false) text += (isFirst ? "" : ", ") + of(parameters.key().Get());
  return text + ")";
}

QORQL_ExpressionText::QORQL_ExpressionText(const QORQL_FromClause& from, const QORString& nameSpace)
    : QORQL_ExpressionPrinter({true, true}) {
  const QORSmrPtr<IQoriRepository> repository(
      QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository());
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*from.getFromSpecifierList());
  while (++specifiers) {
    const QORString& name = specifiers.key()->getTableName();
    _fromNames.insert(QORQL_foldedName(name));
    _fromNames.insert(QORQL_foldedName(specifiers.key()->getAlias()));
    const QORSmrPtr<IQoriClass> declared(repository.IsNull() ? QORSmrPtr<IQoriClass>()
                                                             : repository->getClass(nameSpace, name));
    if (!declared.IsNull()) _spelling[QORQL_foldedName(name)] = declared->getClassName().view();
  }
  _hasOneClass = from.getFromSpecifierList()->entries() == 1;
}

std::string QORQL_ExpressionText::nameOf(const QORString& fromName) const {
  const auto found = _spelling.find(QORQL_foldedName(fromName));
  return found == _spelling.end() ? std::string(fromName.view()) : found->second;
}

std::string QORQL_ExpressionText::ofEntry(const QORQL_SelectedEntry& entry) const {
  std::string text = entry.isSelectAll() ? "*" : of(entry.getExpression().Get());
  if (entry.isClassAll()) text = nameOf(entry.getClassName()) + ".*";
  if (!entry.getAlias().isEmpty()) text += " AS " + std::string(entry.getAlias().view());
  return text;
}

std::string QORQL_ExpressionText::ofReference(const QORQL_Factor& factor) const {
  const QORString none;
  const QORString& className = factor.getClassName().IsNull() ? none : *factor.getClassName();
  const QORString& property = factor.getPropertyName().IsNull() ? none : *factor.getPropertyName();
  const QORString& chain = factor.getChain().IsNull() ? none : *factor.getChain();
  const bool isObject = property.isEmpty() || property == QORQL_ExecutionMessages::kNoProperty;
  if (isObject) return nameOf(className);
  const bool hasPath = !chain.isEmpty() && !chain.isEqualCaseInsensitive(className);
  std::string text = hasPath ? std::string(chain.view()) : nameOf(className);
  const bool isOfTheOne = _hasOneClass && !hasPath && _fromNames.count(QORQL_foldedName(className)) != 0;
  if (isOfTheOne && !(property == "*")) text.clear();
  if (!text.empty()) text += '.';
  if (!factor.getPropertyScope().IsNull()) text.append(factor.getPropertyScope()->view()).append("::");
  text += property.view();
  const QORsint32 index = factor.getArrayIndexList();
  if (index == QORQL_Factor::kWholeArray) return text + "[*]";
  if (index == QORQL_Factor::kEmptyBrackets) return text + "[]";
  return index == QORQL_Factor::kNoArray ? text : text + "[" + std::to_string(index) + "]";
}

std::string QORQL_ExpressionText::ofClassName(const QORQL_Evaluatable* side) const {
  const std::string text = of(side);
  const bool isLiteral = text.size() > 1 && text.front() == '\'';
  return isLiteral ? text.substr(1, text.size() - 2) : text;
}
