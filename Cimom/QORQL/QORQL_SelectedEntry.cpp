// One entry of a select list: parsing and classification.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_SelectedEntry.h"

#include <string>
#include <string_view>
#include <utility>

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_FunctionFinder.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Messages.h"
#include "Cimom/QORQL/QORQL_ParseContext.h"
#include "Cimom/QORQL/QORQL_Text.h"

namespace {

// A property that a row's object holds itself: no `*`, no literal, nothing
// wrapped, and no way down through embedded objects.
bool isOwnProperty(const QORQL_Factor& factor) {
  return factor.isPropertyReference() && !factor.isSelectAll() && !QORQL_hasPath(factor);
}

struct Names {
  QORString className = QORString::emptyString();     // unless the expression is one property reference
  QORString propertyName = QORString::emptyString();  // the same
  QORQL_SelectedEntry::ClassNameList classNameList;
  bool isPropertyReference = false;
  QORuint32 functionID = QORQL_FUNCTIONID_UNKNOWN;
};

void setReference(Names& names, const QORSmrPtr<QORString>& className, const QORSmrPtr<QORString>& propertyName) {
  names.isPropertyReference = true;
  if (!className.IsNull()) names.className = *className;
  if (!propertyName.IsNull()) names.propertyName = *propertyName;
}

// The names of a factor that stands alone: what the visitors below would find.
Names namesOf(const QORQL_Factor& factor, QORSlabs& slabs) {
  Names names;
  names.classNameList = QORQL_SelectedEntry::ClassNameList::MakeIn(slabs);
  if (!factor.getClassName().IsNull()) names.classNameList->append(factor.getClassName(), slabs);
  if (factor.isPropertyReference()) setReference(names, factor.getClassName(), factor.getPropertyName());
  return names;
}

QORuint32 findFunction(const QORSmrPtr<QORQL_Evaluatable>& expression) {
  auto visitor = QORSmrPtr<QORQL_ExpressionVisitor>::Make<QORQL_FunctionFinder>();
  const auto* const finder = static_cast<const QORQL_FunctionFinder*>(visitor.Get());
  expression->accept(visitor);
  return finder->getFunctionID();
}

Names findNames(const QORSmrPtr<QORQL_Evaluatable>& expression, QORSlabs& slabs) {
  const QORQL_Factor* const lone = QORQL_loneFactor(expression);
  if (lone != nullptr && lone->getEvaluatable().IsNull()) return namesOf(*lone, slabs);
  auto visitor = QORSmrPtr<QORQL_ExpressionVisitor>::Make<QORQL_IdentifierFinder>();
  const auto* const finder = static_cast<const QORQL_IdentifierFinder*>(visitor.Get());
  expression->accept(visitor);
  Names names;
  names.classNameList = finder->getClassNameList();
  if (finder->isPropertyReference()) setReference(names, finder->getClassName(), finder->getPropertyName());
  names.functionID = findFunction(expression);
  return names;
}

// `start` is where the column begins.
QORString parseAlias(QORQL_Lexer& lexer, bool isRequired, QORuint32 start, QORuint32& offset) {
  if (lexer.getCurrent().getType() != TokenAS) {
    if (isRequired) QORQL_raiseAt(start, QORQL_Messages::kAliasMissing, lexer);
    return QORString::emptyString();
  }
  if (lexer.next(false).getType() != TokenID) QORQL_raise(QORQL_Messages::kSelectAliasExpected, lexer);
  QORString alias = lexer.getCurrent().newText(lexer.slabs());
  offset = lexer.getOffset();
  alias.toUpper();
  lexer.next(false);
  return alias;
}

// Keeps one blank for each run of blanks that separates two words.
QORString withoutBlanks(std::string_view text) {
  std::string kept;
  bool isBehindBlank = false;
  for (const char c : text) {
    if (!QORQL_isBlank(c)) {
      if (isBehindBlank && !kept.empty() && QORQL_isWordByte(kept.back()) && QORQL_isWordByte(c)) kept += ' ';
      kept += c;
    }
    isBehindBlank = QORQL_isBlank(c);
  }
  return QORString(std::string_view(kept));
}

QORSmrPtr<QORQL_SelectedEntry> parseStar(QORQL_Lexer& lexer) {
  lexer.next(false);
  const QORString& none = QORString::emptyString();
  return QORSmrPtr<QORQL_SelectedEntry>::MakeIn(lexer.slabs(), none, none, none, nullptr, nullptr, true, false,
                                                QORQL_FUNCTIONID_UNKNOWN);
}

}  // namespace

QORQL_SelectedEntry::QORQL_SelectedEntry(QORString className, QORString propertyName, QORString alias,
                                         QORSmrPtr<QORQL_Evaluatable> expression, ClassNameList classNameList,
                                         QORboolean selectAll, QORboolean isEntryAggregate, QORuint32 functionID)
    : _className(std::move(className)),
      _propertyName(std::move(propertyName)),
      _alias(std::move(alias)),
      _expression(std::move(expression)),
      _classNameList(std::move(classNameList)),
      _selectAll(selectAll),
      _isEntryAggregate(isEntryAggregate),
      _functionID(functionID) {
  const QORQL_Factor* const factor = functionID == QORQL_FUNCTIONID_UNKNOWN ? QORQL_loneFactor(_expression) : nullptr;
  _isPlainProperty = factor != nullptr && isOwnProperty(*factor);
  _isClassAll = factor != nullptr && factor->isSelectAll();
}

QORQL_SelectedEntry::~QORQL_SelectedEntry() = default;

QORSmrPtr<QORQL_SelectedEntry> QORQL_SelectedEntry::parse(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer,
                                                          QORQL_ProjectionMap& classInfos, const QORString& queryString,
                                                          const QORString& queryLanguage) {
  const QORuint32 start = lexer.getOffset();
  if (lexer.getCurrent().getType() == TokenASTERISK) {
    auto star = parseStar(lexer);
    star->_offset = start;
    return star;
  }
  const QORQL_UpdatedFlagScope inSelectList(symbolTable, true);
  QORSmrPtr<QORQL_Evaluatable> expression =
      QORQL_Comparison::parse(symbolTable, lexer, classInfos, queryString, queryLanguage);
  const std::string_view written(lexer.getBuffer() + start, lexer.getCurrent().getOffset() - start);
  Names names = findNames(expression, lexer.slabs());
  const bool isChanged = names.functionID != QORQL_FUNCTIONID_UNKNOWN || written.find('-') != std::string_view::npos;
  QORuint32 aliasOffset = 0;
  QORString alias = parseAlias(lexer, !names.isPropertyReference, start, aliasOffset);
  auto entry = QORSmrPtr<QORQL_SelectedEntry>::MakeIn(
      lexer.slabs(), std::move(names.className), std::move(names.propertyName), std::move(alias), std::move(expression),
      std::move(names.classNameList), false, QORQL_isAggregate(names.functionID), names.functionID);
  entry->_offset = start;
  entry->_aliasOffset = aliasOffset;
  if (isChanged && entry->_alias.isEmpty()) entry->_writtenText = withoutBlanks(written);
  return entry;
}
