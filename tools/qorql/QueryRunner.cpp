// Runs one statement after the other and prints each result in the form asked for.
#include "QueryRunner.h"

#include <chrono>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_ResultReader.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "ProgressLine.h"

namespace {

constexpr const char* kQueryLanguage = "DMTF:CQL";

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

bool isNumberType(const QORString& typeName) {
  return typeName.beginsWith("uint") || typeName.beginsWith("sint") || typeName.beginsWith("real");
}

}  // namespace

// One statement on its way. The engine keeps references to the texts.
struct QueryRunner::Execution {
  explicit Execution(const std::string& statement) : text(statement) {}

  const QORString text;
  const QORString language = kQueryLanguage;
  QORQL_SymbolTable symbols{nullptr};
  QORSmrPtr<QORQL_Query> query{};
  QORSmrPtr<QORQL_DataTable> table = new QORQL_DataTable();
  double parseTime = 0;
  double executeTime = 0;
  double printTime = 0;
  std::size_t rowCount = 0;
};

void QueryRunner::run(const Statement& statement) {
  Execution execution(statement.text);
  _session.manager().resetStatistics();
  parse(execution);
  execute(execution);
  print(execution);
  if (_options.hasStatistics) printStatistics(execution);
}

void QueryRunner::finish() {
  if (_writer != nullptr) _writer->finish();
  _writer.reset();
}

void QueryRunner::parse(Execution& execution) {
  const Clock::time_point start = Clock::now();
  QORQL_Lexer lexer(execution.text, false);
  const QORString nameSpace(_options.nameSpace);
  execution.query = QORQL_Query::parse(execution.symbols, lexer, false, execution.text, execution.language, nameSpace)
                        .StaticCast<QORQL_Query>();
  execution.parseTime = millisecondsSince(start);
}

OutputForm QueryRunner::formOf(const Execution& execution) const {
  if (_options.form) return *_options.form;
  const QORSmrPtr<QORQL_FormatClause>& clause = execution.query->getFormatClause();
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
  const ProgressLine progress(!_options.isQuiet);
  const Clock::time_point start = Clock::now();
  const bool isStreamed = formOf(execution) == OutputForm::Xml;
  if (isStreamed) finish();
  execution.query->execute(execution.symbols, execution.table, isStreamed ? &_out : nullptr,
                           QORString(_options.nameSpace));
  execution.executeTime = millisecondsSince(start);
}

ResultWriter& QueryRunner::writerOf(OutputForm form) {
  if (_writer == nullptr || form != _writerForm) {
    finish();
    _writer = makeResultWriter(form, _out);
    _writerForm = form;
  }
  return *_writer;
}

void QueryRunner::printStatistics(const Execution& execution) {
  const EmbeddedObjectManager::Statistics statistics = _session.manager().statistics();
  std::ostringstream line;
  line << std::fixed << std::setprecision(3) << "qorql: stats: rows=" << execution.rowCount
       << " instances=" << statistics.instancesReturned << " enumerateInstances=" << statistics.enumerateCalls
       << " associators=" << statistics.associatorCalls << " getInstance=" << statistics.getInstanceCalls
       << " parse=" << execution.parseTime << "ms execute=" << execution.executeTime
       << "ms output=" << execution.printTime << "ms\n";
  std::cerr << line.str();
}
