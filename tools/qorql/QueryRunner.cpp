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

// While the text is read: what the scanner passes over comes out at once, in
// order with what it prints by other ways.
class UnbufferedOutput {
 public:
  explicit UnbufferedOutput(std::ostream& out) : _out(out) { _out << std::unitbuf << std::flush; }
  UnbufferedOutput(const UnbufferedOutput&) = delete;
  UnbufferedOutput& operator=(const UnbufferedOutput&) = delete;
  ~UnbufferedOutput() { _out << std::nounitbuf; }

 private:
  std::ostream& _out;
};

ResultHeading headingOf(const std::string& query, const QORQL_ResultReader& reader) {
  ResultHeading heading;
  heading.query = query;
  heading.rowCount = reader.rowCount();
  for (const QORQL_ResultReader::Column& column : reader.columns()) {
    heading.columns.push_back({std::string(column.name.view()), !column.isArray && isNumberType(column.typeName)});
  }
  return heading;
}

// Stops early when the stream takes no more.
void writeRows(QORQL_ResultReader& reader, ResultWriter& writer, const std::ostream& out) {
  std::vector<QORSmrPtr<IQoriValue>> row(reader.columns().size());
  while (out && reader.next()) {
    for (std::size_t i = 0; i < row.size(); ++i) row[i] = reader.value(i);
    writer.writeRow(row);
  }
}

}  // namespace

// One statement on its way. The engine keeps references to the texts.
struct QueryRunner::Execution {
  explicit Execution(const std::string& given) : statement(given), text(given) {}

  const std::string& statement;
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
  if (_output.hasStatistics) printStatistics(execution);
}

void QueryRunner::finish() {
  if (_writer != nullptr) _writer->finish();
  _writer.reset();
}

void QueryRunner::parse(Execution& execution) {
  const Clock::time_point start = Clock::now();
  const UnbufferedOutput unbuffered(_out);
  QORQL_Lexer lexer(execution.text, false);
  const QORString nameSpace(_options.nameSpace);
  execution.query = QORQL_Query::parse(execution.symbols, lexer, false, execution.text, execution.language, nameSpace)
                        .StaticCast<QORQL_Query>();
  execution.parseTime = millisecondsSince(start);
}

OutputForm QueryRunner::formOf(const Execution& execution) const {
  if (_output.form) return *_output.form;
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

void QueryRunner::print(Execution& execution) {
  const OutputForm form = formOf(execution);
  if (form == OutputForm::Xml && !_output.hasStatistics) return;
  const Clock::time_point start = Clock::now();
  QORQL_ResultReader reader(*execution.query, execution.symbols, execution.table);
  execution.rowCount = reader.rowCount();
  if (form != OutputForm::Xml) {
    ResultWriter& writer = writerOf(form);
    writer.begin(headingOf(execution.statement, reader));
    try {
      writeRows(reader, writer, _out);
    } catch (...) {
      writer.end();
      throw;
    }
    writer.end();
  }
  execution.printTime = millisecondsSince(start);
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
