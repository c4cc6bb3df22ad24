// From the arguments of the program to its exit status.
#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <string>
#include <string_view>

#include "Command.h"
#include "ErrorReport.h"
#include "ExitStatus.h"

namespace {

const Command& findCommand(int argc, const char* const* argv) {
  const auto commands = allCommands();
  const std::string_view name = argc > 1 ? argv[1] : "";
  const auto found = std::find_if(commands.begin(), commands.end(), [&](const Command& c) { return c.name == name; });
  return found != commands.end() ? *found : commands.front();
}

// Who names a command behind options has it taken for a query.
std::string hintOf(int argc, const char* const* argv) {
  for (int i = 2; i < argc; ++i) {
    for (const Command& command : allCommands()) {
      if (command.name != argv[i]) continue;
      return "A command stands before its options: qorql " + std::string(argv[i]) + " ...\n";
    }
  }
  return {};
}

int runCommand(int argc, const char* const* argv) {
  const Command& command = findCommand(argc, argv);
  const DeclaredCommand declared = declareCommand(command);
  const int named = argc > 1 && command.name == argv[1] ? 1 : 0;
  try {
    declared.app->parse(argc - named, argv + named);
    return declared.action();
  } catch (const CLI::Success& success) {
    return declared.app->exit(success, std::cout, std::cerr);
  } catch (const CLI::ParseError& error) {
    std::cerr << "qorql: " << error.what() << '\n';
    if (named == 0) std::cerr << hintOf(argc, argv);
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
