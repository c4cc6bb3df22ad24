// Runs statements through the library and records everything that shows.
// SPDX-License-Identifier: Apache-2.0
#include "LibraryRun.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <utility>

#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/Out/QORQL_ResultReader.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectedEntry.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "ClientInterposer.h"

namespace {

constexpr char kLanguage[] = "DMTF:CQL";

std::string field(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string quoted = "\"";
  for (const char byte : text) quoted += byte == '"' ? std::string("\"\"") : std::string(1, byte);
  return quoted + "\"";
}

std::string readRows(const QORQL_Query& query, QORQL_SymbolTable& symbols, QORSmrPtr<QORQL_DataTable>& table) {
  QORQL_ResultReader reader(query, symbols, table);
  std::string text;
  const std::size_t count = reader.columns().size();
  for (std::size_t i = 0; i < count; ++i) text += (i == 0 ? "" : ",") + field(reader.columns()[i].name.view());
  text += "\n";
  while (reader.next()) {
    for (std::size_t i = 0; i < count; ++i) {
      const QORSmrPtr<IQoriValue> value = reader.value(i);
      text += (i == 0 ? "" : ",") + (value.IsNull() ? std::string() : field(value->toString().view()));
    }
    text += "\n";
  }
  return text;
}

// A stream whose text is kept when it goes, also by an exception.
class StreamKeeper : public std::ostringstream {
 public:
  explicit StreamKeeper(std::string& text) : _text(text) {}
  StreamKeeper(const StreamKeeper&) = delete;
  StreamKeeper& operator=(const StreamKeeper&) = delete;
  ~StreamKeeper() override { _text = str(); }

 private:
  std::string& _text;
};

// Standard output goes to a file while this lives.
class OutputCapture {
 public:
  OutputCapture() : _file(std::tmpfile()) {
    flush();
    _saved = dup(STDOUT_FILENO);
    if (_file == nullptr || _saved < 0) throw ScriptError("standard output cannot be captured");
    dup2(fileno(_file), STDOUT_FILENO);
  }
  OutputCapture(const OutputCapture&) = delete;
  OutputCapture& operator=(const OutputCapture&) = delete;
  ~OutputCapture() {
    flush();
    dup2(_saved, STDOUT_FILENO);
    close(_saved);
    std::fclose(_file);
  }

  std::string take() {
    flush();
    std::rewind(_file);
    std::string text;
    for (int byte = std::fgetc(_file); byte != EOF; byte = std::fgetc(_file)) text += static_cast<char>(byte);
    return text;
  }

 private:
  static void flush() {
    std::cout.flush();
    std::fflush(stdout);
  }

  std::FILE* _file;
  int _saved = -1;
};

// The failure that is being handled.
Failure currentFailure() {
  try {
    throw;
  } catch (const QORQL_ParseException& error) {
    return {FailureKind::Parse, static_cast<unsigned>(error.getCode()), error.getLineNr(), error.getCIMErrorCode(),
            std::string(error.getMessage().view())};
  } catch (const QORQL_Exception& error) {
    return {FailureKind::Runtime, static_cast<unsigned>(error.getCode()), 0, error.getCIMErrorCode(),
            std::string(error.getMessage().view())};
  } catch (const QoriBaseException& error) {
    return {FailureKind::Platform, 0, 0, 0, std::string(error.getMessage().view())};
  }
}

}  // namespace

std::string findModel(const std::string& name, const std::vector<std::string>& folders) {
  for (const std::string& folder : folders) {
    const std::string path = folder + "/" + name;
    if (std::filesystem::exists(path)) return path;
  }
  throw ScriptError("no model '" + name + "'");
}

LibraryRun::LibraryRun(const Script& script, const std::vector<std::string>& folders) {
  _manager.makeCurrent();
  for (const auto& [key, value] : script.settings) _manager.setConfiguration("ZEMO", key.c_str(), value.c_str());
  MofLoader loader(_manager.sink(), script.nameSpace.c_str());
  for (const std::string& model : script.models) loader.loadFile(findModel(model, folders));
  for (const std::string& text : script.mofTexts) loader.loadText(text, "script");
  _manager.setLogSink(
      [this](const QORString& who, const QORString& message, QORuint32 severity) {
        const std::string line = std::string(who.view()) + ": " + std::string(message.view());
        _log.push_back(std::to_string(severity) + " " + line);
        if (severity <= QoriTraceLog::kError) _errorLog.push_back(line);
      },
      QoriTraceLog::kTrace);
  ClientInterposer::setRecording(true);
}

LibraryRun::~LibraryRun() { ClientInterposer::setRecording(false); }

Outcome LibraryRun::run(const Case& one, QORQL_DataTable::ExecutionMode mode, bool isStreamed) {
  Outcome outcome;
  ClientInterposer::takeCalls();
  {
    OutputCapture capture;
    try {
      runStatement(one, mode, isStreamed, outcome);
    } catch (const QoriBaseException&) {
      outcome.failure = currentFailure();
      if (outcome.calls.empty()) outcome.calls = ClientInterposer::takeCalls();
    }
    outcome.echo = capture.take();
  }
  outcome.log = std::exchange(_log, {});
  outcome.errorLog = std::exchange(_errorLog, {});
  return outcome;
}

void LibraryRun::runStatement(const Case& one, QORQL_DataTable::ExecutionMode mode, bool isStreamed, Outcome& outcome) {
  const QORString text(one.query);
  const QORString language(kLanguage);
  const QORString nameSpace(one.nameSpace);
  QORQL_SymbolTable symbols(nullptr);
  QORQL_Lexer lexer(text, false);
  QORSmrPtr<QORQL_Executable> statement = QORQL_Query::parse(symbols, lexer, false, text, language, nameSpace);
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  table->setExecutionMode(mode);
  StreamKeeper stream(outcome.stream);
  statement->execute(symbols, table, isStreamed ? &stream : nullptr, nameSpace);
  outcome.calls = ClientInterposer::takeCalls();
  if (!isStreamed) outcome.rows = readRows(*statement.DynamicCast<QORQL_Query>(), symbols, table);
}
