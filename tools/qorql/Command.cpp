// The table of commands.
// SPDX-License-Identifier: Apache-2.0
#include "Command.h"

#include <CLI/CLI.hpp>
#include <string>

#include "ClassCommand.h"
#include "ClassesCommand.h"
#include "ContentsCommand.h"
#include "DescribeCommand.h"
#include "ExplainCommand.h"
#include "GetCommand.h"
#include "InstancesCommand.h"
#include "ListenCommand.h"
#include "MatchCommand.h"
#include "PagesCommand.h"
#include "PasswdCommand.h"
#include "QueryCommand.h"
#include "ServeCommand.h"
#include "ValidateCommand.h"
#include "WatchCommand.h"

namespace {

constexpr Command kCommands[] = {
    {"query", "Run statements and print their results (what runs when no command is named)", declareQueryCommand},
    {"contents", "Tell which classes have instances and what associations tie", declareContentsCommand},
    {"classes", "List the classes of the namespace", declareClassesCommand},
    {"class", "Print a class as MOF text", declareClassCommand},
    {"describe", "List the properties of a class and what they mean", declareDescribeCommand},
    {"instances", "Print the instances of classes as MOF text", declareInstancesCommand},
    {"get", "Print the instance that a path names", declareGetCommand},
    {"validate", "Tell whether filters of indications are valid and what they need", declareValidateCommand},
    {"match", "Tell which instances a filter matches", declareMatchCommand},
    {"watch", "Print the live changes that a filter matches", declareWatchCommand},
    {"explain", "Say what a query will do, without running it", declareExplainCommand},
    {"serve", "Serve the object manager to clients over HTTP", declareServeCommand},
    {"passwd", "Give a user of a server a password", declarePasswdCommand},
    {"listen", "Print the indications that servers send", declareListenCommand},
    {"pages", "Print the manual page or the completion for a shell", declarePagesCommand},
};

// In the help only the option's name and type, not the range that is checked.
class HelpFormatter : public CLI::Formatter {
  std::string make_option_opts(const CLI::Option* option) const override {
    if (option->get_items_expected_max() == 0) return {};
    const bool isRepeatable = option->get_expected_max() == CLI::detail::expected_max_vector_size;
    const std::string type = option->get_type_name() == " " ? "" : ' ' + option->get_type_name();
    return type + (isRepeatable ? " ..." : "") + (option->get_required() ? " REQUIRED" : "");
  }
};

std::string listOfCommands() {
  std::string list = "Commands (see qorql COMMAND --help):\n";
  for (const Command& command : allCommands()) {
    std::string line = "  " + std::string(command.name);
    line.resize(std::max<std::size_t>(line.size() + 2, 14), ' ');
    list += line + std::string(command.summary) + '\n';
  }
  return list + '\n';
}

}  // namespace

std::span<const Command> allCommands() { return kCommands; }

DeclaredCommand declareCommand(const Command& command) {
  const bool isDefault = &command == &allCommands().front();
  const std::string name = isDefault ? "qorql" : "qorql " + std::string(command.name);
  DeclaredCommand declared{std::make_unique<CLI::App>("", name), {}};
  CLI::App& app = *declared.app;
  declared.action = command.declare(app);
  app.formatter(std::make_shared<HelpFormatter>());
  app.set_help_flag("-h,--help", "Print this help and end")->disable_flag_override();
  if (isDefault) app.footer(listOfCommands() + app.get_footer());
  return declared;
}
