// A reply that has begun cannot fail, so computed columns are read once before: that finds the types that hold all
// their values, and what cannot be computed.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/QueryRows.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlWriter.h"
#include "Cimom/Server/ColumnTypes.h"
#include "Cimom/Server/QueryMonitor.h"
#include "Cimom/Server/ServerObjects.h"
#include "Cimom/Server/UniqueNames.h"
#include "cimom/CQoriProviderException.h"
#include "cimom/CQoriType.h"
#include "cimom/QoriProviderPluginManager.h"

namespace {

constexpr const char* kLanguages[] = {"DMTF:CQL", "CIM:CQL", "CQL", "WQL"};
constexpr QORuint64 kRowsBetweenLooks = 1024;
constexpr QORuint64 kRowBytes = 1024;  // at most, where there was no table that took as many

// Whether it is the query that is wrong, though only the rows show it: to the engine, or to the values that it computes
// with.
bool isOfQuery(const QoriBaseException& error) noexcept {
  return QORQL_faultOf(error) != nullptr || error.getType() == "CIM_Value";
}

std::vector<QORString> namesOf(const std::vector<CimPropertyDeclaration>& properties) {
  std::vector<QORString> names;
  for (const CimPropertyDeclaration& property : properties) names.push_back(property.name);
  return names;
}

}  // namespace

std::string QueryRows::messageOf(const QoriBaseException& error, const QORString& text) {
  std::string message(error.getMessage().view());
  const QORQL_Fault* const fault = QORQL_faultOf(error);
  if (fault == nullptr || !fault->hasPlace()) return message;
  const QORQL_Place place = QORQL_placeOf(text.view(), fault->offset);
  return message + " (line " + std::to_string(place.line) + ", column " + std::to_string(place.column) + ")";
}

// One statement while it is run.
class QueryRows::Run {
 public:
  Run(const ServerCall& call, const QORString& language, const QORString& text, const ServerLimits& limits)
      : _call(call),
        _text(text),
        _memory(limits.memory),
        _monitor(call.client, limits.query),
        _statement(text, call.request.nameSpace, language) {
    EmbeddedObjectManager* const manager = call.manager.get();
    const QORString nameSpace = call.request.nameSpace;
    _statement.setDeclaredProperties([manager, nameSpace](const QORString& className) {
      return namesOf(manager->allProperties(nameSpace, className));
    });
  }

  void parse() {
    try {
      _statement.parse();
    } catch (const CQoriProviderException&) {
      throw;
    } catch (const QoriBaseException& error) {
      throw CimStatusException(cimstatus::kInvalidQuery, messageOf(error, _text));
    }
  }

  // Does what looks at rows. THROWS as QueryRows does.
  template <class Work>
  void guarded(const Work& work) {
    const QORQL_MonitorScope scope(_monitor);
    QORQL_RowBudget budget(_memory);
    try {
      work();
      _greatest = budget.greatest();
    } catch (const QORQL_StoppedException&) {
      if (budget.isExceeded()) raiseTooLarge();
      raiseStopped();
    } catch (const CimStatusException&) {
      throw;
    } catch (const CQoriProviderException&) {
      requireTime();  // a server that was asked on behalf of a query that was stopped
      throw;
    } catch (const QoriBaseException& error) {
      throw CimStatusException(isOfQuery(error) ? cimstatus::kInvalidQuery : cimstatus::kFailed,
                               messageOf(error, _text));
    }
  }

  void requireTime() {
    if (_monitor.isStopRequested()) raiseStopped();
  }

  QORQL_Statement& statement() noexcept { return _statement; }
  // The bytes of the greatest table that the statement made.
  QORuint64 greatest() const noexcept { return _greatest; }

  std::optional<CimPropertyDeclaration> declarationOf(const QORString& className, const QORString& property) const {
    for (CimPropertyDeclaration& each : _call.manager->allProperties(_call.request.nameSpace, className)) {
      if (each.name.isEqualCaseInsensitive(property)) return std::move(each);
    }
    return std::nullopt;
  }

 private:
  [[noreturn]] void raiseStopped() const { _monitor.raiseStopped("query"); }
  [[noreturn]] void raiseTooLarge() const {
    throw CimStatusException(cimstatus::kServerLimitsExceeded, "the query was stopped: its rows take more than " +
                                                                   std::to_string(_memory) + " bytes of memory");
  }

  const ServerCall& _call;
  const QORString& _text;
  const QORuint64 _memory;
  QueryMonitor _monitor;
  QORQL_Statement _statement;
  QORuint64 _greatest = 0;
};

void QueryRows::requireLanguage(const QORString& language) {
  for (const char* const known : kLanguages) {
    if (language.isEqualCaseInsensitive(known)) return;
  }
  throw CimStatusException(
      cimstatus::kQueryLanguageNotSupported,
      "there is no query language \"" + std::string(language.view()) + "\": DMTF:CQL, CIM:CQL, CQL and WQL are known");
}

QueryRows::QueryRows(const ServerCall& call, const QORString& language, const QORString& text,
                     const ServerLimits& limits)
    : _nameSpace(call.request.nameSpace) {
  ServerObjects(call).requireNameSpace();
  requireLanguage(language);
  Run run(call, language, text, limits);
  run.parse();
  run.guarded([&] {
    _result = std::make_unique<QORQL_Result>(run.statement().run());
    settleColumns(run);
    run.requireTime();
  });
  _heldBytes = std::min(run.greatest(), _result->rowCount() * kRowBytes);
  _hasRow = _result->next();
}

QueryRows::~QueryRows() = default;

void QueryRows::settleColumns(Run& run) {
  const std::vector<QORQL_Result::Column>& columns = _result->columns();
  ColumnTypes types(
      columns,
      [&run](const QORString& className, const QORString& property) { return run.declarationOf(className, property); },
      ColumnTypes::Look::Types);
  if (!types.open().empty()) {
    for (QORuint64 row = 1; _result->next(); ++row) {
      if (row % kRowsBetweenLooks == 0) run.requireTime();
      for (const std::size_t index : types.open()) types.see(index, _result->value(index).Get());
    }
    _result->restart();
  }
  std::vector<std::string> names;
  for (const QORQL_Result::Column& column : columns) names.emplace_back(column.name.view());
  const std::vector<std::string> unique = uniqueNames(names, SameNames::IgnoringCase);
  const std::vector<QORString> computed = run.statement().computedTypes();
  for (ColumnTypes::Type& type : types.settle()) {
    const std::size_t index = _columns.size();
    if (index < computed.size() && columns[index].className.isEmpty()) type.widenTo(computed[index].view());
    if (!type.conflict.empty()) {
      throw CimStatusException(cimstatus::kFailed,
                               "column " + names[index] + " has values that no one type holds (" + type.conflict + ")");
    }
    const QORString typeName(type.name.empty() ? std::string_view("string") : type.name);
    _columns.emplace_back(QORString(std::string_view(unique[index])), CQoriType::find(typeName, type.isArray));
    _referenceClasses.push_back(type.referenceClass);
    _showsCells.push_back(_columns[index].takesCells() && !columns[index].className.isEmpty());
  }
}

// An instance has no properties that its class lacks.
bool QueryRows::hasColumns(const QORString& className) const {
  const QORSmrPtr<IQoriRepository> repository(
      QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository());
  const QORSmrPtr<IQoriClass> found(repository->getClass(_nameSpace, className));
  return !found.IsNull() && std::all_of(_columns.begin(), _columns.end(), [&](const CimXmlColumn& column) {
    return found->getProperty(column.name(), true) != nullptr;
  });
}

// Rows of one class mostly follow each other.
const std::string& QueryRows::headOf(const QORString& className) {
  if (_lastHead != nullptr && className == _lastClass) return *_lastHead;
  std::string& head = _heads[std::string(className.view())];
  if (head.empty()) {
    const bool isShown = !className.isEmpty() && hasColumns(className);
    head = "<INSTANCE";
    CimXmlWriter(head).writeAttribute("CLASSNAME", isShown ? className.view() : kResultClass);
    head += '>';
  }
  _lastClass = className;
  _lastHead = &head;
  return head;
}

// What is computed is computed once: that may ask the object manager.
void QueryRows::writeColumn(std::string& out, std::size_t index) {
  const CimXmlColumn& column = _columns[index];
  if (_showsCells[index] && column.appendCell(out, _result->view(index))) return;
  column.appendValue(out, _result->value(index));
}

void QueryRows::writeNext(std::string& out) {
  out += headOf(_result->rowClass());
  for (std::size_t i = 0; i < _columns.size(); ++i) writeColumn(out, i);
  out += "</INSTANCE>";
  _hasRow = _result->next();
}

CimClassDeclaration QueryRows::resultClass() const {
  CimClassDeclaration declaration;
  declaration.name = kResultClass;
  for (std::size_t i = 0; i < _columns.size(); ++i) {
    CimPropertyDeclaration& property = declaration.properties.emplace_back();
    property.name = _columns[i].name();
    property.type = _columns[i].type();
    property.referenceClass = _referenceClasses[i];
  }
  return declaration;
}
