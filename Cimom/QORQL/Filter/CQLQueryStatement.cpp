// Validation of a filter statement, and the classes that it is about.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/CQLQueryStatement.h"

#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/Filter/CQLMatcher.h"
#include "Cimom/QORQL/Filter/CQLReferences.h"
#include "Cimom/QORQL/Filter/CQLScope.h"
#include "Cimom/QORQL/QORQL_ExpressionPlaces.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Log.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "cimom/CQoriInstanceName.h"

namespace {

// The component of the log lines: two spellings, for refusals and for exceptions.
constexpr char kValidateCall[] = "CQLQUERYSTATEMENT::validate()";
constexpr char kValidate[] = "CQLQUERYSTATEMENT::validate";
constexpr char kGetClassList[] = "CQLQUERYSTATEMENT::getClassList";

bool isSupported(const QORString& language) {
  return language.compareTo("CQL", 0) == 0 || language.compareTo("DMTF:CQL", 0) == 0 ||
         language.compareTo("WQL", 0) == 0;
}

// Of a path through an embedded object (`i.SourceInstance.Size`) the class has
// the first step; what the object has is not known.
QORString propertyOfClass(const QORQL_SelectedEntry& entry) {
  const std::vector<CQLReference> references = CQLReferencesOf(entry.getExpression());
  const bool isPath = references.size() == 1 && references.front().isPath();
  return isPath ? CQLFirstStep(CQLBehindFirstStep(references.front().chain)) : entry.getPropertyName();
}

// Where the text names that property.
QORuint32 placeOfProperty(std::string_view text, const QORQL_SelectedEntry& entry) {
  return QORQL_findPlace(*entry.getExpression(), [&](const QORQL_Factor& factor) {
    return factor.getPropertyName().IsNull() ? QORQL_Fault::kNowhere : QORQL_placeOfOwnProperty(text, factor);
  });
}

}  // namespace

CQLQueryStatement::CQLQueryStatement(const QORString& queryLanguage, const QORString& query,
                                     const QORString& indicationNamespace, const QORString& sourceNamespace)
    : _queryLang(queryLanguage),
      _queryString(query),
      _indicationNamespace(indicationNamespace),
      _sourceNamespace(sourceNamespace),
      _scope(std::make_unique<CQLScope>(getNameSpace())) {}

CQLQueryStatement::~CQLQueryStatement() = default;

void CQLQueryStatement::refuse(const char* who, const QORString& message) {
  if (_fault.kind == CQLQueryFault::kNone) _fault.kind = CQLQueryFault::kOther;
  if (_fault.message.isEmpty()) _fault.message = message;
  QORQL_logAs(who, message, QoriTraceLog::kError);
}

void CQLQueryStatement::parseQuery(QORQL_SymbolTable& symbolTable, QORQL_Lexer& lexer) {
  const QORString& none = QORString::emptyString();
  try {
    _query = QORQL_Query::parse(symbolTable, lexer, false, none, none, getNameSpace());
  } catch (const QoriBaseException& error) {
    _fault = CQLQueryFaultOf(error);
    throw;
  }
  if (!_query.IsNull()) noteFromNames();
  queryParsed = true;
}

void CQLQueryStatement::checkQuery() {
  if (_query.IsNull()) {
    queryValidateStatus = QUERY_INVALID_QUERY;
    refuse(kValidateCall, "Invalid Query");
  } else if (validateSchema() != CQL_QUERY_SUCCESS) {
    queryValidateStatus = QUERY_INVALID_QUERY;
    refuse(kValidateCall, "Invalid Schema");
  } else {
    _matcher = std::make_unique<const CQLMatcher>(*_scope, parsedQuery().getWhereClause());
    queryValidateStatus = QUERY_VALIDATE_SUCCESS;
  }
}

// There may be no memory to say what failed; that it failed is kept.
void CQLQueryStatement::refuseForCurrentException() noexcept {
  queryParsed = true;
  queryValidateStatus = QUERY_INVALID_QUERY;
  try {
    try {
      throw;
    } catch (const QoriBaseException& error) {
      refuse(kValidate, error.getMessage());
    } catch (const std::exception& error) {
      refuse(kValidate, error.what());
    } catch (...) {
      refuse(kValidate, "unknown exception");
    }
  } catch (const std::bad_alloc&) {
    return;
  }
}

QUERY_VALIDATE CQLQueryStatement::validate() {
  if (queryParsed) return queryValidateStatus;
  try {
    QORQL_SymbolTable symbolTable(nullptr);
    QORQL_Lexer lexer(_queryString, false);
    if (isSupported(_queryLang)) {
      parseQuery(symbolTable, lexer);
      checkQuery();
    } else {
      queryValidateStatus = QUERY_UNSUPPORTED_LANGUAGE;
      _fault.kind = CQLQueryFault::kLanguage;
      _fault.name = _queryLang;
      refuse(kValidateCall, "Unsupported Query Language");
    }
  } catch (...) {
    refuseForCurrentException();
  }
  return queryValidateStatus;
}

void CQLQueryStatement::requireValidated(const char* where) const {
  constexpr char kMessage[] = "query is not validated ";
  if (!queryParsed) throw CQLQueryException(where, kMessage, CQL_QUERY_VALIDATE_METHOD_NOT_CALLED);
  if (queryValidateStatus != QUERY_VALIDATE_SUCCESS) {
    throw CQLQueryException(where, kMessage, CQL_QUERY_VALIDATE_ERROR);
  }
}

const QORQL_Query& CQLQueryStatement::getParsedQuery() const {
  requireValidated("CQLQUERYSTATEMENT::isMatch");
  return parsedQuery();
}

const CQLMatcher& CQLQueryStatement::getMatcher() const {
  requireValidated("CQLQUERYSTATEMENT::isMatch");
  return *_matcher;
}

const QORQL_Query& CQLQueryStatement::parsedQuery() const { return dynamic_cast<const QORQL_Query&>(*_query); }

const QORQL_SelectList& CQLQueryStatement::selectList() const {
  return dynamic_cast<const QORQL_SelectList&>(*parsedQuery().getSelectList());
}

const QORQL_FromClause& CQLQueryStatement::fromClause() const {
  return dynamic_cast<const QORQL_FromClause&>(*parsedQuery().getFromClause());
}

void CQLQueryStatement::noteFromNames() {
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*fromClause().getFromSpecifierList());
  while (++specifiers) _scope->addFrom(specifiers.key()->getTableName(), specifiers.key()->getAlias());
}

CQLQueryExceptionCode CQLQueryStatement::buildClassList(ClassList& list) const {
  try {
    const QORString& nameSpace = getNameSpace();
    QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*fromClause().getFromSpecifierList());
    while (++specifiers) {
      const QORString& className = specifiers.key()->getTableName();
      if (className.isEmpty()) continue;
      if (!CQLQueryValidator::findClass(nameSpace, className)) return CQL_QUERY_VALIDATE_ERROR;
      const QORSmrPtr<IQoriNameSpacePath> path(new CQoriNameSpacePath(QORString::emptyString(), nameSpace));
      list->append(new CQoriInstanceName(className, new IQoriInstanceName::KeyList(), path));
    }
  } catch (...) {
    return CQL_QUERY_INTERNAL_ERROR;
  }
  return CQL_QUERY_SUCCESS;
}

// Entries that read a property of a FROM class, and aggregates, must name one
// that the class has.
CQLQueryExceptionCode CQLQueryStatement::validateEntry(const QORQL_SelectedEntry& entry, const ClassList& classes) {
  const bool isChecked = entry.GetFunctionID() == QORQL_FUNCTIONID_UNKNOWN || entry.isEntryAggregate();
  const QORString property(propertyOfClass(entry));
  if (entry.isSelectAll() || !isChecked || property.isEmpty() || property == '*') return CQL_QUERY_SUCCESS;
  const QORString className(_scope->fromClassOf(entry.getClassName()));
  QORValSlistIterator<QORSmrPtr<IQoriInstanceName>> names(*classes);
  while (++names) {
    if (names.key()->getClassName().compareTo(className, 0) != 0) continue;
    if (_scope->hasProperty(className, property)) return CQL_QUERY_SUCCESS;
    _fault.kind = CQLQueryFault::kProperty;
    _fault.name = property;
    _fault.className = className;
    _fault.offset = placeOfProperty(_queryString.view(), entry);
    _fault.message = QORString("'") + property + "' is not a property of " + className;
    return CQL_QUERY_VALIDATE_ERROR;
  }
  return CQL_QUERY_SUCCESS;
}

void CQLQueryStatement::noteUnknownClass() {
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*fromClause().getFromSpecifierList());
  while (++specifiers) {
    const QORString& className = specifiers.key()->getTableName();
    if (className.isEmpty() || CQLQueryValidator::findClass(getNameSpace(), className)) continue;
    _fault.kind = CQLQueryFault::kClass;
    _fault.name = className;
    _fault.offset = specifiers.key()->getOffset();
    _fault.message = QORString("'") + className + "' is not a class of " + getNameSpace();
    return;
  }
}

CQLQueryExceptionCode CQLQueryStatement::validateSchema() {
  try {
    ClassList classes(new QORValSlist<QORSmrPtr<IQoriInstanceName>>());
    const CQLQueryExceptionCode code = buildClassList(classes);
    if (code == CQL_QUERY_VALIDATE_ERROR) noteUnknownClass();
    if (code != CQL_QUERY_SUCCESS) return code;
    QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*selectList().getSelectedEntries());
    while (++entries) {
      const CQLQueryExceptionCode entryCode = validateEntry(*entries.key(), classes);
      if (entryCode != CQL_QUERY_SUCCESS) return entryCode;
    }
    return CQL_QUERY_SUCCESS;
  } catch (...) {
    return CQL_QUERY_INTERNAL_ERROR;
  }
}

CQLQueryStatement::ClassList CQLQueryStatement::getClassList() const {
  requireValidated(kGetClassList);
  ClassList list(new QORValSlist<QORSmrPtr<IQoriInstanceName>>());
  const CQLQueryExceptionCode code = buildClassList(list);
  if (code != CQL_QUERY_SUCCESS) CQLQueryException::raise(kGetClassList, code);
  return list;
}
