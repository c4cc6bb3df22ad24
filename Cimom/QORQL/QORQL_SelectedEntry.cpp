// One entry of a select list: parsing and classification.
#include "Cimom/QORQL/QORQL_SelectedEntry.h"

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_FunctionFinder.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_ParseContext.h"
#include "Cimom/QORQL/QORQL_Term.h"

namespace {

// The factor that an expression consists of; null when there is anything around it.
const QORQL_Factor* loneFactor(const QORSmrPtr<QORQL_Evaluatable>& expression) {
  const QORQL_Comparison* const comparison = dynamic_cast<const QORQL_Comparison*>(expression.Get());
  if (comparison == nullptr || comparison->getOperator() != QORQL_OperatorNONE || comparison->isArrayComp()) {
    return nullptr;
  }
  const QORQL_Arithmetic* const arithmetic =
      dynamic_cast<const QORQL_Arithmetic*>(comparison->getLHSArithmeticExpression().Get());
  if (arithmetic == nullptr || arithmetic->getOperator() != QORQL_OperatorNONE) return nullptr;
  const QORQL_Term* const term = arithmetic->getTermCasted();
  return term == nullptr || term->getOperator() != QORQL_OperatorNONE ? nullptr : term->getFactorCasted();
}

// A property that a row's object holds itself: no `*`, no literal, nothing
// wrapped, and no way down through embedded objects.
bool isOwnProperty(const QORQL_Factor& factor) {
  const bool hasWayDown = !factor.getChain().IsNull() && factor.getChain()->find(".") != QORString::npos;
  return factor.isPropertyReference() && !factor.isSelectAll() && !hasWayDown;
}

struct Names {
  QORString className = QORString::emptyString();
  QORString propertyName = QORString::emptyString();
  QORQL_SelectedEntry::ClassNameList classNameList;
  bool isPropertyReference = false;
};

Names findNames(const QORSmrPtr<QORQL_Evaluatable>& expression) {
  auto visitor = QORSmrPtr<QORQL_ExpressionVisitor>::Make<QORQL_IdentifierFinder>();
  const auto* const finder = static_cast<const QORQL_IdentifierFinder*>(visitor.Get());
  expression->accept(visitor);
  Names names;
  names.classNameList = finder->getClassNameList();
  names.isPropertyReference = finder->isPropertyReference();
  if (names.isPropertyReference) {
    if (!finder->getClassName().IsNull()) names.className = *finder->getClassName();
    if (!finder->getPropertyName().IsNull()) names.propertyName = *finder->getPropertyName();
  }
  return names;
}

QORuint32 findFunction(const QORSmrPtr<QORQL_Evaluatable>& expression) {
  auto visitor = QORSmrPtr<QORQL_ExpressionVisitor>::Make<QORQL_FunctionFinder>();
  const auto* const finder = static_cast<const QORQL_FunctionFinder*>(visitor.Get());
  expression->accept(visitor);
  return finder->getFunctionID();
}

QORString parseAlias(QORQL_Lexer& lexer, bool isRequired) {
  if (lexer.getCurrent().getType() != TokenAS) {
    if (isRequired) QORQL_raise(QORQL_Messages::kAliasMissing, lexer);
    return QORString::emptyString();
  }
  if (lexer.next(false).getType() != TokenID) QORQL_raise(QORQL_Messages::kSelectAliasExpected, lexer);
  const QORString alias = QORString::toUpperCase(lexer.getCurrent().getValue());
  lexer.next(false);
  return alias;
}

QORSmrPtr<QORQL_SelectedEntry> parseSelectAll(QORQL_Lexer& lexer) {
  lexer.next(false);
  const QORString& none = QORString::emptyString();
  return QORSmrPtr<QORQL_SelectedEntry>::Make(none, none, none, nullptr, nullptr, true, false,
                                              QORQL_FUNCTIONID_UNKNOWN);
}

}  // namespace

QORQL_SelectedEntry::QORQL_SelectedEntry(const QORString& className, const QORString& propertyName,
                                         const QORString& alias, const QORSmrPtr<QORQL_Evaluatable>& expression,
                                         const ClassNameList& classNameList, QORboolean selectAll,
                                         QORboolean isEntryAggregate, QORuint32 functionID)
    : _className(className),
      _propertyName(propertyName),
      _alias(alias),
      _expression(expression),
      _classNameList(classNameList),
      _selectAll(selectAll),
      _isEntryAggregate(isEntryAggregate),
      _functionID(functionID) {
  const QORQL_Factor* const factor = functionID == QORQL_FUNCTIONID_UNKNOWN ? loneFactor(expression) : nullptr;
  _isPlainProperty = factor != nullptr && isOwnProperty(*factor);
  _isClassAll = factor != nullptr && factor->isSelectAll();
}

QORQL_SelectedEntry::~QORQL_SelectedEntry() = default;

QORSmrPtr<QORQL_SelectedEntry> QORQL_SelectedEntry::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                          QORQL_ProjectionMap& classInfos, const QORString& queryString,
                                                          const QORString& queryLanguage) {
  if (lexer.getCurrent().getType() == TokenASTERISK) return parseSelectAll(lexer);
  const QORQL_UpdatedFlagScope inSelectList(symbolTable, true);
  const QORSmrPtr<QORQL_Evaluatable> expression =
      QORQL_Comparison::parse(symbolTable, lexer, classInfos, queryString, queryLanguage);
  const Names names = findNames(expression);
  const QORString alias = parseAlias(lexer, !names.isPropertyReference);
  const QORuint32 functionID = findFunction(expression);
  return QORSmrPtr<QORQL_SelectedEntry>::Make(names.className, names.propertyName, alias, expression,
                                              names.classNameList, false, QORQL_isAggregate(functionID), functionID);
}
