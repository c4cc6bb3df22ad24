// Runs statements and prints their results.
// SPDX-License-Identifier: Apache-2.0
#include "QueryCommand.h"

#include <iostream>
#include <optional>
#include <utility>

#include "Comments.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "OptionDeclarations.h"
#include "OutputOptions.h"
#include "Pager.h"
#include "QueryRunner.h"
#include "Session.h"
#include "SessionOptions.h"
#include "Shell.h"
#include "Statements.h"
#include "Terminal.h"
#include "TextInput.h"
#include "Version.h"

namespace {

constexpr const char* kQueryDescription =
    "Queries CIM instances: the live processes, file systems and operating system of this\n"
    "machine, and what MOF files declare.";

constexpr const char* kQueryFooter =
    "Without QUERY and --file: at a terminal a shell with editing, history and completion;\n"
    "else statements are read from standard input, separated by \";\". What is read may hold\n"
    "comments: # to the end of the line, /* and */, and -- where no statement has begun.\n"
    "\n"
    "Exit status: 0 done; 1 a statement is refused or fails; 2 wrong usage; 3 MOF,\n"
    "configuration or provider failure.\n"
    "\n"
    "Example:\n"
    "  qorql \"SELECT FIRST 5 Handle, Name, WorkingSetSize FROM Linux_Process\n"
    "         ORDER BY WorkingSetSize DESC\"";

struct QueryOptions {
  SessionOptions session;
  OutputOptions output;
  std::optional<std::string> query;  // none: the file, else standard input
  std::string file;                  // empty: none
};

// A query on the command line is run even when it is blank: the engine then reports what is missing.
std::vector<Statement> readStatements(const QueryOptions& options) {
  if (options.query) {
    std::vector<Statement> statements = splitStatements(*options.query);
    if (statements.empty()) statements.push_back({*options.query, 1});
    return statements;
  }
  std::string text = options.file.empty() ? readStandardInput() : readTextFile(options.file);
  return splitStatements(withoutEndedComments(normaliseText(std::move(text))));
}

// What a query of one word may have been meant for.
std::vector<std::string> commandNames() {
  std::vector<std::string> names;
  for (const Command& command : allCommands()) names.emplace_back(command.name);
  return names;
}

// A command of the shell is no statement.
QORQL_Hint hintOf(const Statement& statement, const QueryRunner& runner, const SessionOptions& options) {
  if (!statement.text.starts_with('.')) return runner.hint(statement, commandNames());
  if (options.isQuiet) return {};
  return {"",
          "commands with a dot are for the shell at a terminal; here qorql contents, qorql classes and qorql "
          "describe CLASS tell what there is"};
}

// Return the exit status.
int runOne(const Statement& statement, const SessionOptions& options, QueryRunner& runner, Session& session) {
  try {
    runner.run(statement);
  } catch (...) {
    session.dropWarnings();
    runner.finish();
    std::cout.flush();
    return reportFailure(statement, hintOf(statement, runner, options));
  }
  session.printWarnings();
  session.settle(kExitDone);
  return kExitDone;
}

int runStatements(const QueryOptions& options, Session& session) {
  QueryRunner runner(options.session, options.output, session, std::cout);
  const std::vector<Statement> statements = readStatements(options);
  const auto report = [&](const Statement& statement) {
    return reportFailure(statement, hintOf(statement, runner, options.session));
  };
  int status = options.output.isStrict ? checkStrictly(statements, runner, report) : kExitDone;
  for (auto statement = statements.begin(); status == kExitDone && std::cout && statement != statements.end();
       ++statement) {
    status = runOne(*statement, options.session, runner, session);
  }
  if (status == kExitDone) runner.finish();
  return session.settle(status);
}

int runQuery(QueryOptions& options) {
  if (options.query && !options.file.empty()) refuseBoth("QUERY", "--file");
  const bool isShell = !options.query && options.file.empty() && isInteractive();
  // No statement shows what a class says of itself; the shell does.
  options.session.needsDescriptions = isShell;
  options.session.refusesFaults = options.output.isStrict;
  Session session(options.session);
  try {
    session.open();
  } catch (...) {
    return reportStartFailure();
  }
  if (isShell) return Shell(options.session, options.output, session).run();
  return runStatements(options, session);
}

}  // namespace

CommandAction declareQueryCommand(CLI::App& app) {
  const auto options = std::make_shared<QueryOptions>();
  describeCommand(app, kQueryDescription, kQueryFooter);
  declareSessionOptions(app, options->session);
  declareValue(app, {.names = "-f,--file",
                     .type = "FILE",
                     .description = "Read statements from a file",
                     .take = keepIn(options->file),
                     .check = checkFile});
  const auto takeQuery = [options](const std::string& query) { options->query = query; };
  declareValue(app,
               {.names = "QUERY", .description = "One statement, or several separated by \";\"", .take = takeQuery});
  declareOutputOptions(app, options->output);
  declareNoPager(app, options->session.hasNoPager);
  declareVersionFlag(app, "--version", std::string("qorql ") + versionText(), "Print the version and exit");
  return [options] { return runQuery(*options); };
}
