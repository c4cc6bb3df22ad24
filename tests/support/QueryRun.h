// A small object manager made from MOF text, and queries run on it in either
// execution mode, with everything visible recorded.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_QUERYRUN_H
#define QORQL_TESTS_QUERYRUN_H

#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/Out/QORQL_ResultReader.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

// What one run of a query showed.
struct QueryOutcome {
  std::vector<std::string> columns;
  std::vector<std::string> rows;  // values joined by "|", NULL for null
  std::string stream;
  std::string error;             // "parse 2 line 1: message", "runtime 6: message", "TYPE: message"; empty for none
  std::vector<std::string> log;  // "who/severity: message"
  QORuint32 tableRows = 0;

  friend bool operator==(const QueryOutcome&, const QueryOutcome&) = default;
};

inline void PrintTo(const QueryOutcome& outcome, std::ostream* out) {
  *out << "columns:";
  for (const std::string& column : outcome.columns) *out << ' ' << column;
  *out << "\nerror: " << outcome.error << "\nrows:\n";
  for (const std::string& row : outcome.rows) *out << "  " << row << '\n';
  *out << "stream:" << outcome.stream << "log:\n";
  for (const std::string& line : outcome.log) *out << "  " << line << '\n';
}

class QueryRun {
 public:
  explicit QueryRun(const std::string& mof) {
    _manager.makeCurrent();
    MofLoader(_manager.sink()).loadText(mof, "test");
  }

  EmbeddedObjectManager& manager() { return _manager; }

  static std::string textOf(const QORString& text) { return {text.data(), text.length()}; }

  // Without a stream nothing is written, and the table alone carries the result.
  QueryOutcome runIn(const std::string& query, QORQL_DataTable::ExecutionMode mode, bool isStreamed = true) {
    QueryOutcome outcome;
    const auto record = [&outcome](const QORString& who, const QORString& message, QORuint32 severity) {
      outcome.log.push_back(textOf(who) + "/" + std::to_string(severity) + ": " + textOf(message));
    };
    _manager.setLogSink(record, QoriTraceLog::kTrace);
    try {
      execute(query, mode, isStreamed, outcome);
    } catch (const QORQL_ParseException& error) {
      outcome.error = "parse " + std::to_string(error.getCode()) + " line " + std::to_string(error.getLineNr()) + ": " +
                      textOf(error.getMessage());
    } catch (const QORQL_Exception& error) {
      outcome.error = "runtime " + std::to_string(error.getCode()) + ": " + textOf(error.getMessage());
    } catch (const QoriBaseException& error) {
      outcome.error = textOf(error.getType()) + ": " + textOf(error.getMessage());
    }
    _manager.setLogSink({}, 0);
    return outcome;
  }

 private:
  static void execute(const std::string& query, QORQL_DataTable::ExecutionMode mode, bool isStreamed,
                      QueryOutcome& outcome) {
    const QORString text(query.data(), query.size());
    const QORString nameSpace("root/cimv2");
    QORQL_Lexer lexer(text, false);
    QORQL_SymbolTable symbols(nullptr);
    const QORSmrPtr<QORQL_Executable> parsed(QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", nameSpace));
    QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
    table->setExecutionMode(mode);
    std::ostringstream stream;
    try {
      parsed->execute(symbols, table, isStreamed ? &stream : nullptr, nameSpace);
    } catch (...) {
      outcome.stream = stream.str();
      outcome.tableRows = table->getRowCount();
      throw;
    }
    outcome.stream = stream.str();
    outcome.tableRows = table->getRowCount();
    QORQL_ResultReader reader(dynamic_cast<QORQL_Query&>(*parsed), symbols, table);
    for (const QORQL_ResultReader::Column& column : reader.columns()) outcome.columns.push_back(textOf(column.name));
    while (reader.next()) outcome.rows.push_back(rowText(reader));
  }
  static bool isSeenBy(const QoriScalar& view, const QORSmrPtr<IQoriValue>& value) {
    const QoriScalar own = value.IsNull() ? QoriScalar() : value->scalar();
    if (own.kind != view.kind) return false;
    switch (own.kind) {
      case QoriScalarKind::Null:
        return true;
      case QoriScalarKind::Boolean:
        return own.b == view.b;
      case QoriScalarKind::Char16:
        return own.c == view.c;
      case QoriScalarKind::Text:
      case QoriScalarKind::DateTime:
        return *own.text == *view.text;
      case QoriScalarKind::Complex:
        return value->toString() == view.value->toString();
      default:
        return own.u == view.u;  // numbers, bit for bit
    }
  }
  static std::string rowText(QORQL_ResultReader& reader) {
    std::string text;
    for (std::size_t i = 0; i < reader.columns().size(); ++i) {
      const QORSmrPtr<IQoriValue> value(reader.value(i));
      text += (i == 0 ? "" : "|") + (value.IsNull() ? std::string("NULL") : textOf(value->toString()));
      if (!isSeenBy(reader.view(i), value)) text += " (but its view shows something else)";
    }
    return text;
  }

  EmbeddedObjectManager _manager;
};

#endif
