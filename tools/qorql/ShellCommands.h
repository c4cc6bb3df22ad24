// The dot commands of the shell.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SHELLCOMMANDS_H
#define QORQL_TOOL_SHELLCOMMANDS_H

#include <string>
#include <string_view>
#include <vector>

#include "LineEditor.h"
#include "OutputOptions.h"
#include "Session.h"
#include "SessionOptions.h"

// What the commands look at and change. BORROWS.
struct ShellState {
  SessionOptions& options;
  OutputOptions& output;
  Session& session;
  bool hasTimer = false;
};

// Whether a line, without blanks around it, is a command: it begins with a dot,
// or is one of the words help, quit and exit alone.
bool isShellCommand(std::string_view line);
// Runs it and reports what is wrong with it. Returns false to quit. REQUIRES isShellCommand.
bool runShellCommand(const std::string& line, ShellState& state);
// ".help" and so on.
std::vector<std::string> shellCommandNames();
// The names of commands, and what their argument may be.
Completions completeShellCommand(std::string_view line, std::size_t cursor, const ShellState& state);

#endif
