// The shell: statements and commands from a person at a terminal.
// SPDX-License-Identifier: Apache-2.0
#include "Shell.h"

#include <chrono>
#include <cstdio>
#include <iostream>

#include "Comments.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "QueryRunner.h"
#include "StatementCompletion.h"
#include "Version.h"
#include "cimom/CQoriProviderException.h"

namespace {

constexpr const char* kPrompt = "qorql> ";
constexpr const char* kContinued = "  ...> ";
constexpr std::string_view kAroundCommand = " \t\r\n";

std::string trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(kAroundCommand);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kAroundCommand) + 1 - first);
}

}  // namespace

Shell::Shell(SessionOptions& options, OutputOptions& output, Session& session)
    : _state{options, output, session},
      _editor([this](std::string_view line, std::size_t cursor) { return complete(line, cursor); }) {}

int Shell::run() {
  for (const std::string& line : _historyFile.load()) _editor.remember(line);
  if (!_state.options.isQuiet) {
    std::cout << "qorql " << versionText() << ". Statements end with \";\"; .help lists the commands.\n" << std::flush;
  }
  std::string line;
  for (;;) {
    const LineEditor::Outcome outcome = _editor.read(_pending.empty() ? kPrompt : kContinued, line);
    if (outcome == LineEditor::Outcome::End) return kExitDone;
    if (outcome == LineEditor::Outcome::Interrupted) {
      _pending.clear();
    } else if (!takeLine(line)) {
      return kExitDone;
    }
    std::cout.flush();
    if (!std::cout) return kExitRefused;
  }
}

bool Shell::takeLine(const std::string& line) {
  const std::string text = trimmed(line);
  if (_pending.empty() && isShellCommand(text)) {
    remember(text);
    return runCommand(text);
  }
  _pending += line + '\n';
  runPending();
  return true;
}

// False after the command that ends the shell.
bool Shell::runCommand(const std::string& text) {
  Interrupt::clear();
  if (_state.session.servers() != nullptr) _state.session.servers()->beginStatement();
  const bool goesOn = runShellCommand(text, _state);
  _state.session.settle(kExitDone);
  return goesOn;
}

// Runs the statements that have ended; the text after the last of them stays.
void Shell::runPending() {
  const TextWithoutComments typed = withoutComments(_pending);
  if (typed.openLine != 0) return;
  if (trimmed(typed.text).empty()) return _pending.clear();
  const std::size_t end = endOfStatements(typed.text);
  if (end == 0) return;
  const std::string text = typed.text.substr(0, end);
  _pending = typed.text.substr(end);
  if (trimmed(_pending).empty()) _pending.clear();
  remember(trimmed(text));
  for (const Statement& statement : splitStatements(text)) {
    runStatement({statement.text, 1});
    if (Interrupt::isRequested()) break;
  }
}

void Shell::runStatement(const Statement& statement) {
  using Clock = std::chrono::steady_clock;
  Interrupt::clear();
  const Clock::time_point start = Clock::now();
  QueryRunner runner(_state.options, _state.output, _state.session, std::cout);
  try {
    if (!_state.output.isStrict || runner.isFreeOfWarnings(statement)) runner.run(statement);
    runner.finish();
    std::cout.flush();
    _state.session.printWarnings();
    _state.session.settle(kExitDone);
  } catch (...) {
    _state.session.dropWarnings();
    runner.finish();
    std::cout.flush();
    if (Interrupt::isRequested()) {
      std::cerr << "\nqorql: interrupted\n";
    } else {
      reportFailure(statement, runner.hint(statement, shellCommandNames()));
    }
  }
  if (!_state.hasTimer) return;
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  std::array<char, 48> text;
  std::snprintf(text.data(), text.size(), "Time: %.3f s\n", seconds);
  std::cout << text.data();
}

// A statement of several lines is one line of the history.
void Shell::remember(const std::string& text) {
  std::string line = text;
  std::replace(line.begin(), line.end(), '\n', ' ');
  _editor.remember(line);
  _historyFile.append(line);
}

// A server that fails here completes nothing; the statement will tell.
Completions Shell::complete(std::string_view line, std::size_t cursor) const {
  try {
    return completeLine(line, cursor);
  } catch (const CQoriProviderException&) {
    return {};
  }
}

Completions Shell::completeLine(std::string_view line, std::size_t cursor) const {
  if (_pending.empty() && isShellCommand(trimmed(std::string(line)))) {
    return completeShellCommand(line, cursor, _state);
  }
  const TextWithoutComments before = withoutComments(_pending);
  if (before.openLine != 0) return {};
  const std::size_t length = before.text.size();
  const std::string text = before.text + std::string(line);
  Completions found = completeStatement(text, length + cursor, _state.session.manager(), _state.options.nameSpace);
  found.start -= std::min(found.start, length);
  return found;
}
