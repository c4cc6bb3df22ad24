// What a query will do: each step in the order of execution, then warnings.
// SPDX-License-Identifier: Apache-2.0
#include "ExplainCommand.h"

#include <iostream>

#include "Cimom/QORQL/Explain/QORQL_Explanation.h"
#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "OptionDeclarations.h"
#include "ParsedQuery.h"
#include "QueryHint.h"
#include "QueryRunner.h"
#include "RemoteNotes.h"
#include "RoleNotes.h"
#include "Session.h"
#include "SessionOptions.h"
#include "Statements.h"
#include "SurpriseReport.h"
#include "UnknownProperties.h"

namespace {

using Step = QORQL_ExplainedStep;

constexpr const char* kExplainDescription =
    "Explains a query without running it: the classes that it fetches and with which\n"
    "properties, the order in which conditions apply, how classes are joined, what is\n"
    "sorted and shown, and where the language surprises.";

constexpr const char* kExplainFooter =
    "Exit status: 0 done; 1 the query is refused; 2 wrong usage; 3 MOF, configuration or\n"
    "provider failure.\n"
    "\n"
    "Example:\n"
    "  qorql explain \"SELECT Name FROM Linux_Process WHERE WorkingSetSize > 1000000\"";

struct ExplainOptions {
  SessionOptions session;
  std::string query;
  bool isStrict = false;  // what would be warned of is refused
};

std::string labelOf(const Step& step) {
  constexpr const char* kKinds[] = {"fetch", "associate", "", "combine", "sort", "select", "first", "fail"};
  constexpr const char* kMethods[] = {"filter", "hash join", "key join", "product"};
  std::string label = step.kind == Step::kCondition ? kMethods[step.method] : kKinds[step.kind];
  label.resize(std::max<std::size_t>(label.size() + 2, 11), ' ');
  return label;
}

std::string requestText(const Step& step) {
  std::string text = step.className + (step.alias.empty() ? "" : " AS " + step.alias) + ": ";
  if (step.hasAllProperties) return text + "all properties";
  if (step.properties.empty()) return text + "no properties";
  for (const std::string& name : step.properties) {
    text += (&name == &step.properties.front() ? "" : ", ") + name;
  }
  return text;
}

std::string conditionNote(const Step& step) {
  std::string note;
  if (step.method == QORQL_ExecutionMonitor::kMethodFilteredProduct) note = "every pair of rows is tested";
  if (step.dependsOnValues)
    note += note.empty() ? "unless its keys differ in type" : ", unless values allow a join by key";
  if (step.isDiscarded) note += (note.empty() ? "" : "; ") + std::string("computed, but decides nothing");
  return note.empty() ? "" : "  (" + note + ")";
}

std::string textOf(const Step& step, bool asksServers) {
  switch (step.kind) {
    case Step::kFetch:
      return requestText(step);
    case Step::kAssociate:
      return requestText(step) + (asksServers ? "  (once, for all " : "  (one call for each ") + step.source +
             ", through " + step.association + (step.isDiscarded ? "; made, but decides nothing)" : ")");
    case Step::kCondition:
      return step.text + conditionNote(step);
    case Step::kCombine:
      return "every combination of " + step.text + "  (no condition joins them)";
    case Step::kFirst:
      return step.text + (step.text == "1" ? " row is shown" : " rows are shown") +
             "; everything before is done in full";
    case Step::kSort:
    case Step::kSelect:
    case Step::kFail:
      break;
  }
  return step.text;
}

// All return the exit status.
int reportUnexplained(const Statement& statement, Session& session, const SessionOptions& options) {
  session.dropWarnings();
  std::cout.flush();
  return reportFailure(statement,
                       options.isQuiet ? QORQL_Hint() : hintOfFailure(session.manager(), options.nameSpace, statement));
}

int refuseWarned(const std::vector<Statement>& statements, Session& session, const SessionOptions& options) {
  const OutputOptions output;
  QueryRunner runner(options, output, session, std::cout);
  return checkStrictly(statements, runner,
                       [&](const Statement& statement) { return reportUnexplained(statement, session, options); });
}

std::vector<std::string> notesOn(const std::vector<Step>& steps, Session& session, ParsedQuery& parsed,
                                 const SessionOptions& options) {
  std::vector<std::string> notes;
  if (session.servers() != nullptr) {
    const ServerPlan plan(parsed.query(), parsed.statement().text, session.manager(), options.nameSpace);
    notes = remoteNotes(*session.servers(), options.servers, plan, steps);
  }
  for (std::string& note : roleNotes(session.manager(), QORString(options.nameSpace), steps)) {
    notes.push_back(std::move(note));
  }
  return notes;
}

int explainAll(const std::vector<Statement>& statements, Session& session, const SessionOptions& options) {
  for (const Statement& statement : statements) {
    ParsedQuery parsed(statement);
    try {
      parseWithWarnings(parsed, options.nameSpace, options.isQuiet);
      if (&statement != &statements.front()) std::cout << '\n';
      printExplanation(std::cout, session, parsed, options);
    } catch (...) {
      return reportUnexplained(statement, session, options);
    }
  }
  return kExitDone;
}

int explain(const ExplainOptions& options) {
  Session session(options.session);
  try {
    session.open();
  } catch (...) {
    return reportStartFailure();
  }
  std::vector<Statement> statements = splitStatements(options.query);
  if (statements.empty()) statements.push_back({options.query, 1});
  const int status = options.isStrict ? refuseWarned(statements, session, options.session) : kExitDone;
  return session.settle(status == kExitDone ? explainAll(statements, session, options.session) : status);
}

}  // namespace

void printExplanation(std::ostream& out, Session& session, ParsedQuery& parsed, const SessionOptions& options) {
  const QORQL_Explanation explanation(parsed.query(), parsed.symbols(), QORString(options.nameSpace));
  int number = 0;
  for (const Step& step : explanation.steps()) {
    std::string place = std::to_string(++number);
    if (place.size() < 2) place.insert(0, 1, ' ');
    out << place << "  " << labelOf(step) << printableText(textOf(step, session.servers() != nullptr)) << '\n';
  }
  if (explanation.isPreFiltered()) {
    out << "    note: the provider filters and sorts itself: WHERE and ORDER BY are left to it\n";
  }
  for (const std::string& note : notesOn(explanation.steps(), session, parsed, options)) {
    out << "    note: " << printableText(note) << '\n';
  }
  printWarnings(out, standardOutputShape(), parsed.statement(),
                findWarnings(session.manager(), options.nameSpace, parsed));
}

CommandAction declareExplainCommand(CLI::App& app) {
  const auto options = std::make_shared<ExplainOptions>();
  describeCommand(app, kExplainDescription, kExplainFooter);
  declareSessionOptions(app, options->session);
  declareFlag(app, "--strict", options->isStrict,
              "Refuse statements that would cause a warning; none is explained then");
  declareValue(app, {.names = "QUERY",
                     .description = "One statement, or several separated by \";\"",
                     .take = keepIn(options->query),
                     .isRequired = true});
  return [options] { return explain(*options); };
}
