// Runs one statement after the other and prints each result in the form asked for.
// SPDX-License-Identifier: Apache-2.0
#include "QueryRunner.h"

#include <chrono>
#include <iomanip>
#include <iostream>
#include <optional>
#include <sstream>
#include <utility>

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_StatementPlaces.h"
#include "Cimom/Server/ColumnTypes.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "Interrupt.h"
#include "Pager.h"
#include "ParsedQuery.h"
#include "Percentage.h"
#include "ProgressLine.h"
#include "QueryHint.h"
#include "RemoteNotes.h"
#include "RunMonitor.h"
#include "ServerPlan.h"
#include "SurpriseReport.h"
#include "Terminal.h"
#include "ValueColumns.h"
#include "cimom/CQoriProviderException.h"

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

bool isNumberType(const QORString& typeName) {
  return typeName.beginsWith("uint") || typeName.beginsWith("sint") || typeName.beginsWith("real");
}

ResultHeading headingOf(const std::string& query, const QORQL_ResultReader& reader) {
  ResultHeading heading;
  heading.query = query;
  heading.rowCount = reader.rowCount();
  for (const QORQL_ResultReader::Column& column : reader.columns()) {
    heading.columns.push_back({std::string(column.name.view()), !column.isArray && isNumberType(column.typeName),
                               std::string(column.typeName.view()), column.isArray});
  }
  return heading;
}

[[noreturn]] void refuseTerminal() {
  throw QoriBaseException("tool", "qorql", "",
                          "arrow is for programs and not for a terminal: send it to a file or a pipe", 0);
}

void setTypes(ResultHeading& heading, const std::vector<ColumnTypes::Type>& types) {
  for (std::size_t i = 0; i < types.size(); ++i) {
    ResultColumn& column = heading.columns[i];
    if (!types[i].conflict.empty()) {
      throw QoriBaseException("tool", "qorql", "",
                              QORString("column " + column.name + " has values that no one type holds (" +
                                        types[i].conflict + "): -o jsonl or csv can tell them"),
                              0);
    }
    column.typeName = types[i].name;
    column.isArray = types[i].isArray;
    column.dateTimes = types[i].dateTimes;
  }
}

// A column of texts where its codes are told with theirs.
void addTexts(ResultHeading& heading, const ValueColumns& values) {
  for (std::size_t i = 0; i < heading.columns.size(); ++i) {
    if (!values.hasTexts(i)) continue;
    heading.columns[i].isNumber = false;
    heading.columns[i].typeName = "string";
    heading.columns[i].hasValueTexts = true;
  }
}

// While it lives, what asks servers stops when the statement is to.
class ServerWatch {
 public:
  ServerWatch(RemoteServers* servers, RunMonitor& monitor) : _servers(servers) {
    if (_servers == nullptr) return;
    _servers->beginStatement();
    _servers->setStopRequest([&monitor] { return monitor.isStopRequested(); });
  }
  ServerWatch(const ServerWatch&) = delete;
  ServerWatch& operator=(const ServerWatch&) = delete;
  ~ServerWatch() {
    if (_servers != nullptr) _servers->setStopRequest(&Interrupt::isRequested);
  }

 private:
  RemoteServers* const _servers;
};

// Stops early when the stream takes no more. Codes are told with their texts where `values` is not null.
void writeRows(QORQL_ResultReader& reader, ResultWriter& writer, const std::ostream& out, RunMonitor& monitor,
               ValueColumns* values) {
  std::vector<QORSmrPtr<IQoriValue>> row(reader.columns().size());
  while (out && reader.next()) {
    if (Interrupt::isRequested()) throw Interrupted();
    monitor.requireTime();
    const QORString rowClass(reader.rowClass());
    for (std::size_t i = 0; i < row.size(); ++i) {
      row[i] = reader.value(i);
      if (values != nullptr) row[i] = values->withText(i, row[i], rowClass);
    }
    writer.writeRow(ResultRow(row, rowClass));
  }
}

}  // namespace

// One statement while it is run.
struct QueryRunner::Execution {
  Execution(const Statement& given, double timeout)
      : statement(given.text), parsed(given), monitor(activity, timeout) {}

  const std::string& statement;
  ParsedQuery parsed;
  Activity activity{"running"};
  RunMonitor monitor;
  QORSmrPtr<QORQL_DataTable> table = new QORQL_DataTable();
  double parseTime = 0;
  double executeTime = 0;
  double printTime = 0;
  std::size_t rowCount = 0;
};

void QueryRunner::run(const Statement& statement) {
  Execution execution(statement, _output.timeout);
  _session.renew();
  _session.manager().resetStatistics();
  const ServerWatch watch(_session.servers(), execution.monitor);
  try {
    runWatched(execution);
  } catch (const CQoriProviderException& failure) {
    if (_output.hasStatistics) printRemoteCalls();
    if (!execution.monitor.isLate()) throw;
    throw CQoriProviderException(failure.getWho(), failure.getMessage() + QORString(execution.monitor.lateness()),
                                 failure.getCode());
  }
  if (!_output.hasStatistics) return;
  printStatistics(execution);
  printRemoteCalls();
}

void QueryRunner::printRemoteCalls() {
  if (_session.servers() != nullptr) printCalls(std::cerr, _session.servers()->takeCalls());
}

void QueryRunner::runWatched(Execution& execution) {
  const Statement& statement = execution.parsed.statement();
  parse(execution);
  tellOfPassedOver(execution);
  if (RemoteServers* const servers = _session.servers()) {
    ServerPlan(execution.parsed.query(), execution.statement, _session.manager(), _options.nameSpace)
        .applyTo(*servers, _options.servers.pushesDown);
  }
  if (isWarning()) printWarnings(std::cerr, standardErrorShape(), statement, warningsOf(execution));
  if (formOf(execution) == OutputForm::Arrow && standardOutputShape().isTerminal) refuseTerminal();
  const QORQL_MonitorScope scope(execution.monitor);
  try {
    const Pager pager(!_options.hasNoPager);
    execute(execution);
    execution.monitor.requireTime();
    print(execution);
  } catch (const QORQL_StoppedException&) {
    execution.monitor.requireTime();
    throw;
  } catch (QORQL_Exception& error) {  // also what ended the result early, which the engine kept to itself
    QORQL_placeFault(execution.parsed.query(), error);
    throw;
  }
}

void QueryRunner::finish() {
  if (_writer != nullptr) _writer->finish();
  _writer.reset();
}

void QueryRunner::parse(Execution& execution) {
  const Clock::time_point start = Clock::now();
  try {
    execution.parsed.parse(_options.nameSpace);
  } catch (...) {
    tellOfPassedOver(execution);  // it may be the cause, such as quotes of another kind
    throw;
  }
  execution.parseTime = millisecondsSince(start);
}

void QueryRunner::tellOfPassedOver(const Execution& execution) const {
  if (!_options.isQuiet) printWarnings(std::cerr, execution.parsed.passedOver());
}

bool QueryRunner::isFreeOfWarnings(const Statement& statement, const std::string& place) {
  Execution execution(statement, 0);
  parse(execution);
  const std::vector<std::string>& passedOver = execution.parsed.passedOver();
  for (const std::string& sentence : passedOver) reportRefusal(place + sentence);
  const std::vector<Warning> warnings = warningsOf(execution);
  for (const Warning& warning : warnings) {
    reportRefusal(place + warning.text);
    std::cerr << caretOf(warning, standardErrorShape(), statement);
  }
  return passedOver.empty() && warnings.empty();
}

int checkStrictly(const std::vector<Statement>& statements, QueryRunner& runner, const FailureReport& report) {
  int status = kExitDone;
  for (const Statement& statement : statements) {
    const std::string place = statements.size() == 1 ? "" : "line " + std::to_string(statement.firstLine) + ": ";
    try {
      if (!runner.isFreeOfWarnings(statement, place)) status = kExitRefused;
    } catch (...) {
      return report(statement);
    }
  }
  return status;
}

// A person at a terminal is warned where the language surprises; a script asks for it.
bool QueryRunner::isWarning() const {
  return !_options.isQuiet && (_output.hasWarnings || standardErrorShape().isTerminal);
}

std::vector<Warning> QueryRunner::warningsOf(Execution& execution) const {
  std::vector<Warning> warnings = findWarnings(_session.manager(), _options.nameSpace, execution.parsed);
  if (formOf(execution) != OutputForm::Xml) return warnings;
  if (std::optional<Warning> warning = findEmptyRows(execution.parsed)) warnings.push_back(std::move(*warning));
  return warnings;
}

QORQL_Hint QueryRunner::hint(const Statement& statement, const std::vector<std::string>& commands) const {
  if (_options.isQuiet) return {};
  return hintOfFailure(_session.manager(), _options.nameSpace, statement, commands);
}

OutputForm QueryRunner::formOf(const Execution& execution) const {
  if (_output.form) return *_output.form;
  const QORSmrPtr<QORQL_FormatClause>& clause = execution.parsed.query().getFormatClause();
  if (clause.IsNull()) return OutputForm::Table;
  switch (clause->getFormatID()) {
    case XML:
      return OutputForm::Xml;
    case HTML:
      return OutputForm::Html;
    case CSV:
      return OutputForm::Csv;
    case QORIOBJECT:
      break;
  }
  return OutputForm::Table;
}

void QueryRunner::execute(Execution& execution) {
  const bool isStreamed = formOf(execution) == OutputForm::Xml;
  const bool mayBePaged = isStreamed && !_options.hasNoPager && standardOutputShape().isTerminal;
  const ProgressLine progress(!_options.isQuiet && !mayBePaged, execution.activity);
  const Clock::time_point start = Clock::now();
  if (isStreamed) finish();
  execution.parsed.query().execute(execution.parsed.symbols(), execution.table, isStreamed ? &_out : nullptr,
                                   QORString(_options.nameSpace));
  execution.executeTime = millisecondsSince(start);
  if (execution.monitor.causeOfEarlyEnd() != nullptr) std::rethrow_exception(execution.monitor.causeOfEarlyEnd());
}

void QueryRunner::print(Execution& execution) {
  const OutputForm form = formOf(execution);
  if (form == OutputForm::Xml && !_output.hasStatistics) return;
  const Clock::time_point start = Clock::now();
  const auto declared = [this](const QORString& className) { return declaredProperties(className); };
  QORQL_ResultReader reader(execution.parsed.query(), execution.parsed.symbols(), execution.table, declared);
  execution.rowCount = reader.rowCount();
  if (form != OutputForm::Xml) {
    ResultWriter& writer = writerOf(form);
    ResultHeading heading = headingOf(execution.statement, reader);
    markPercentages(heading, reader.columns());
    if (form == OutputForm::Arrow) settleTypes(execution, heading, reader.columns());
    std::optional<ValueColumns> values;
    if (_output.hasValueTexts && form != OutputForm::Mof) {
      values.emplace(_session.manager(), QORString(_options.nameSpace), reader.columns());
      addTexts(heading, *values);
    }
    writer.begin(heading);
    try {
      writeRows(reader, writer, _out, execution.monitor, values ? &*values : nullptr);
    } catch (...) {
      writer.breakOff();
      throw;
    }
    writer.end();
  }
  execution.printTime = millisecondsSince(start);
}

// Rows are looked at in front where the schema does not tell all types.
void QueryRunner::settleTypes(Execution& execution, ResultHeading& heading,
                              const std::vector<QORQL_ResultReader::Column>& columns) const {
  const QORString nameSpace(_options.nameSpace);
  ColumnTypes types(columns, [&](const QORString& className, const QORString& property) {
    return declarationOf(nameSpace, className, property);
  });
  if (!types.open().empty()) {
    QORQL_ResultReader reader(execution.parsed.query(), execution.parsed.symbols(), execution.table,
                              [this](const QORString& className) { return declaredProperties(className); });
    while (reader.next()) {
      if (Interrupt::isRequested()) throw Interrupted();
      execution.monitor.requireTime();
      for (const std::size_t index : types.open()) types.see(index, reader.value(index).Get());
    }
  }
  setTypes(heading, types.settle());
}

std::optional<CimPropertyDeclaration> QueryRunner::declarationOf(const QORString& nameSpace, const QORString& className,
                                                                 const QORString& property) const {
  for (CimPropertyDeclaration& declared : _session.manager().allProperties(nameSpace, className)) {
    if (declared.name.isEqualCaseInsensitive(property)) return std::move(declared);
  }
  return std::nullopt;
}

std::vector<std::string> QueryRunner::keysOf(const QORString& className) {
  std::vector<std::string> keys;
  const QORString nameSpace(_options.nameSpace);
  for (const CimPropertyDeclaration& property : _session.manager().allProperties(nameSpace, className)) {
    if (property.hasFlag("Key")) keys.emplace_back(property.name.view());
  }
  return keys;
}

bool QueryRunner::isDeclaredPercentage(const QORQL_ResultReader::Column& column) const {
  const std::optional<CimPropertyDeclaration> declared =
      declarationOf(QORString(_options.nameSpace), column.className, column.propertyName);
  return declared && hasPercentageUnit(*declared);
}

void QueryRunner::markPercentages(ResultHeading& heading,
                                  const std::vector<QORQL_ResultReader::Column>& columns) const {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const QORQL_ResultReader::Column& column = columns[i];
    if (!column.typeName.beginsWith("real") || column.isArray) continue;
    heading.columns[i].isPercentage = isPercentageName(column.name.view()) ||
                                      isPercentageName(column.propertyName.view()) ||
                                      (!column.className.isEmpty() && isDeclaredPercentage(column));
  }
}

std::vector<QORString> QueryRunner::declaredProperties(const QORString& className) const {
  std::vector<QORString> names;
  for (CimPropertyDeclaration& property : _session.manager().allProperties(QORString(_options.nameSpace), className)) {
    names.push_back(std::move(property.name));
  }
  return names;
}

ResultWriter& QueryRunner::writerOf(OutputForm form) {
  if (_writer == nullptr || form != _writerForm) {
    finish();
    _writer = makeResultWriter(
        form, _out, [this](const QORString& className) { return keysOf(className); }, !_output.hasNoHeader);
    _writerForm = form;
  }
  return *_writer;
}

void QueryRunner::printStatistics(const Execution& execution) {
  using Monitor = QORQL_ExecutionMonitor;
  const EmbeddedObjectManager::Statistics statistics = _session.manager().statistics();
  const RunMonitor& monitor = execution.monitor;
  std::ostringstream line;
  line << std::fixed << std::setprecision(3) << "qorql: stats: rows=" << execution.rowCount
       << " instances=" << statistics.instancesReturned << " enumerateInstances=" << statistics.enumerateCalls
       << " associators=" << statistics.associatorCalls << " getInstance=" << statistics.getInstanceCalls
       << " parse=" << execution.parseTime << "ms fetch=" << monitor.milliseconds(Monitor::kStepFetch)
       << "ms filter=" << monitor.milliseconds(Monitor::kStepCondition)
       << "ms sort=" << monitor.milliseconds(Monitor::kStepSort)
       << "ms project=" << monitor.milliseconds(Monitor::kStepProject) << "ms execute=" << execution.executeTime
       << "ms output=" << execution.printTime << "ms\n";
  std::cerr << line.str();
}
