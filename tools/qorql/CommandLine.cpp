// From the arguments of the program to its exit status.
// SPDX-License-Identifier: Apache-2.0
#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Cimom/QORQL/Face/QORQL_Suggestion.h"
#include "Command.h"
#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExitStatus.h"

namespace {

using Arguments = std::vector<const char*>;

const Command* findCommand(std::string_view name) {
  const auto commands = allCommands();
  const auto found = std::find_if(commands.begin(), commands.end(), [&](const Command& c) { return c.name == name; });
  return found != commands.end() ? &*found : nullptr;
}

// Whether an argument is an option of any command whose value is the next argument.
bool takesNext(std::string_view argument) {
  for (const Command& command : allCommands()) {
    const DeclaredCommand declared = declareCommand(command);
    const CLI::Option* const option = std::as_const(*declared.app).get_option_no_throw(std::string(argument));
    if (option != nullptr && option->get_items_expected_max() != 0) return true;
  }
  return false;
}

// The first argument that is neither an option nor an option's value; their number when there is none.
std::size_t firstPositional(const Arguments& arguments) {
  std::size_t i = 1;
  while (i < arguments.size()) {
    const std::string_view argument = arguments[i];
    if (argument.size() < 2 || argument.front() != '-') break;
    if (argument == "--") return arguments.size();  // what follows is no option
    i += takesNext(argument) ? 2 : 1;
  }
  return std::min(i, arguments.size());
}

// The command that is named, and takes its name off the arguments; the default one when none is.
const Command& takeCommand(Arguments& arguments) {
  const std::size_t place = firstPositional(arguments);
  const Command* const named = place < arguments.size() ? findCommand(arguments[place]) : nullptr;
  if (named == nullptr) return allCommands().front();
  arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(place));
  return *named;
}

// The library's message, except for flags that were given a value.
std::string messageOf(const CLI::App& app, const CLI::ParseError& error) {
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      if (error.what() == std::string_view(CLI::ArgumentMismatch::FlagOverride(name).what())) {
        return "--" + name + " takes no value";
      }
    }
  }
  return error.what();
}

// The option that is nearest to one that the command does not have.
std::string meantOption(const CLI::App& app, const std::string& name) {
  QORQL_Suggestion suggestion(name);
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& known : option->get_lnames()) suggestion.consider("--" + known);
  }
  return suggestion.best();
}

// The command that a first argument without meaning is nearest to; "" when it is the statement itself.
std::string meantCommand(const std::string& name) {
  QORQL_Suggestion suggestion(name);
  for (const Command& command : allCommands()) suggestion.consider(command.name);
  return suggestion.best();
}

// What may have been meant by arguments that the command does not take.
std::string hintOf(const CLI::App& app, const Command& command, const Arguments& arguments) {
  const std::vector<std::string> extra = app.remaining();
  if (extra.empty()) return {};
  if (extra.front().starts_with('-')) {
    const std::string option = meantOption(app, extra.front().substr(0, extra.front().find('=')));
    return option.empty() ? "" : "did you mean " + option + "?";
  }
  if (&command != &allCommands().front()) return {};
  const std::size_t place = firstPositional(arguments);
  const std::string meant = place < arguments.size() ? meantCommand(arguments[place]) : "";
  if (!meant.empty()) return "did you mean the command " + meant + "?";
  return "a statement is one argument, in quotes: qorql \"SELECT * FROM " + extra.front() + "\"";
}

int runCommand(int argc, const char* const* argv) {
  Arguments arguments(argv, argv + argc);
  const Command& command = takeCommand(arguments);
  const DeclaredCommand declared = declareCommand(command);
  try {
    declared.app->parse(static_cast<int>(arguments.size()), arguments.data());
    return declared.action();
  } catch (const CLI::Success& success) {
    return declared.app->exit(success, std::cout, std::cerr);
  } catch (const CLI::ParseError& error) {
    std::cerr << "qorql: " << messageOf(*declared.app, error) << '\n';
    const std::string hint = hintOf(*declared.app, command, arguments);
    if (!hint.empty()) std::cerr << "qorql: hint: " << printableText(hint) << '\n';
    std::cerr << "Try " << declared.app->get_name() << " --help.\n";
    return kExitUsage;
  }
}

}  // namespace

int runCommandLine(int argc, const char* const* argv) noexcept {
  try {
    return runCommand(argc, argv);
  } catch (...) {
    return reportStartFailure();
  }
}
