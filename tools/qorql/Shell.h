// The shell: statements and commands from a person at a terminal.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SHELL_H
#define QORQL_TOOL_SHELL_H

#include <string>
#include <string_view>

#include "HistoryFile.h"
#include "Interrupt.h"
#include "LineEditor.h"
#include "OutputOptions.h"
#include "Session.h"
#include "SessionOptions.h"
#include "ShellCommands.h"
#include "Statements.h"

// Runs statements, each ended by ";", over as many lines as they take, and dot
// commands, a line each. An error is reported and the shell continues; Ctrl-C stops
// a statement that runs, or drops what was typed. BORROWS everything that it is
// made from; dot commands change the options.
class Shell {
 public:
  Shell(SessionOptions& options, OutputOptions& output, Session& session);

  // Until the end of the input or .quit. Returns the exit status.
  int run();

 private:
  // Returns false to quit.
  bool takeLine(const std::string& line);
  bool runCommand(const std::string& text);
  void runPending();
  void runStatement(const Statement& statement);
  void remember(const std::string& text);
  Completions complete(std::string_view line, std::size_t cursor) const;
  Completions completeLine(std::string_view line, std::size_t cursor) const;

  ShellState _state;
  Interrupt _interrupt;
  HistoryFile _historyFile;
  LineEditor _editor;
  std::string _pending;  // lines of a statement that has not ended
};

#endif
