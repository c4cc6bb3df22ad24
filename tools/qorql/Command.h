// The commands of the program: each is one file that declares its part of the command line.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_COMMAND_H
#define QORQL_TOOL_COMMAND_H

#include <functional>
#include <memory>
#include <span>
#include <string_view>

namespace CLI {
class App;
}

// Does what the command line asked for and returns the exit status. THROWS
// CLI::ParseError where the options do not go together: wrong usage.
using CommandAction = std::function<int()>;

struct Command {
  std::string_view name;
  std::string_view summary;  // one line in the list of commands
  // Declares options, description and footer; the action OWNS what the options are read into.
  CommandAction (*declare)(CLI::App& app);
};

// All of them, first the one that runs when none is named. Help, man page and
// completions are made from this table and from what each command declares.
std::span<const Command> allCommands();

// The command line of one command and what runs it. REQUIRES to outlive the action's run.
struct DeclaredCommand {
  std::unique_ptr<CLI::App> app;
  CommandAction action;
};
DeclaredCommand declareCommand(const Command& command);

#endif
