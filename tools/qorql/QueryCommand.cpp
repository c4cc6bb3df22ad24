// Runs statements and prints their results.
#include "QueryCommand.h"

#include <fstream>
#include <iostream>
#include <iterator>

#include "ErrorReport.h"
#include "ExitStatus.h"
#include "QueryOptions.h"
#include "QueryRunner.h"
#include "Session.h"
#include "Statements.h"

namespace {

std::string readAll(std::istream& in) {
  return normaliseText({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
}

// A query given on the command line is run even when it is blank: the engine then says what it misses.
std::vector<Statement> readStatements(const QueryOptions& options) {
  if (options.query) {
    std::vector<Statement> statements = splitStatements(*options.query);
    if (statements.empty()) statements.push_back({*options.query, 1});
    return statements;
  }
  if (options.file.empty()) return splitStatements(readAll(std::cin));
  std::ifstream file(options.file, std::ios::binary);
  return splitStatements(readAll(file));
}

int runStatements(const QueryOptions& options, Session& session) {
  QueryRunner runner(options, session, std::cout);
  for (const Statement& statement : readStatements(options)) {
    try {
      runner.run(statement);
    } catch (...) {
      session.dropWarnings();
      runner.finish();
      std::cout.flush();
      return reportFailure(statement);
    }
    session.printWarnings();
    if (!std::cout) break;
  }
  runner.finish();
  return kExitDone;
}

int runQuery(int argc, const char* const* argv) {
  QueryOptions options;
  if (const std::optional<int> status = readQueryOptions(argc, argv, options)) return *status;
  Session session(options);
  try {
    session.open();
  } catch (...) {
    return reportStartFailure();
  }
  return runStatements(options, session);
}

}  // namespace

int runQueryCommand(int argc, const char* const* argv) noexcept {
  try {
    return runQuery(argc, argv);
  } catch (...) {
    return reportStartFailure();
  }
}
