// From the arguments of the program to its exit status.
// SPDX-License-Identifier: Apache-2.0
#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <system_error>
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

// Whether an argument is an option of any command whose value is the next argument. An option of several commands takes
// a value in all of them or in none, so the first that has it tells; declaring the others would slow down every start.
bool takesNext(std::string_view argument) {
  for (const Command& command : allCommands()) {
    const DeclaredCommand declared = declareCommand(command);
    const CLI::Option* const option = std::as_const(*declared.app).get_option_no_throw(std::string(argument));
    if (option != nullptr) return option->get_items_expected_max() != 0;
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

// What the command did not take, as it was typed. An option that it does not know is the cause of what follows.
std::string messageOfExtras(const CLI::App& app) {
  std::vector<std::string> extra = app.remaining();
  const auto isOption = [](const std::string& argument) { return argument.size() > 1 && argument.front() == '-'; };
  if (std::any_of(extra.begin(), extra.end(), isOption)) std::erase_if(extra, std::not_fn(isOption));
  return (extra.size() == 1 ? "The following argument was not expected: "
                            : "The following arguments were not expected: ") +
         CLI::detail::join(extra, " ");
}

// The library's message, except for what is not expected and for flags that were given a value.
std::string messageOf(const CLI::App& app, const CLI::ParseError& error) {
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) return messageOfExtras(app);
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

bool isWord(const std::string& given, const char* word) { return QORString::equalIgnoringCase(given, word); }

// Replaces the names of files between SELECT and FROM by the * that the shell has made them of.
void foldFileNames(std::vector<std::string>& words) {
  const auto from = std::find_if(words.begin(), words.end(), [](const auto& word) { return isWord(word, "FROM"); });
  const auto isFile = [](const std::string& word) {
    std::error_code unreadable;
    return std::filesystem::exists(word, unreadable);
  };
  const auto first = words.begin() + 1;
  if (from == words.end() || first == from || !std::all_of(first, from, isFile)) return;
  *first = "*";
  words.erase(first + 1, from);
}

// Of a statement whose words are arguments of their own: what follows the first that has no meaning.
std::string quotedStatement(const std::string& first, const std::vector<std::string>& extra) {
  std::vector<std::string> words = {first};
  words.insert(words.end(), extra.begin(), extra.end());
  foldFileNames(words);
  return CLI::detail::join(words, " ");
}

// What may have been meant by a first argument that is no command and by those behind it.
std::string hintOfWords(const std::string& first, const std::vector<std::string>& extra) {
  if (isWord(first, "show")) return "qorql contents tells what there is";
  const std::string meant = meantCommand(first);
  if (!meant.empty()) return "did you mean the command " + meant + "?";
  // One that is quoted already has a word too many before it.
  const std::string_view next = extra[0];
  const bool isQuoted = isWord(std::string(next.substr(0, next.find_first_of(" \t\n"))), "SELECT");
  const std::string statement = isWord(first, "SELECT") ? quotedStatement(first, extra)
                                : isQuoted              ? extra[0]
                                                        : "SELECT * FROM " + extra[0];
  return "a statement is one argument, in quotes: qorql \"" + statement + '"';
}

// What may have been meant by arguments that the command does not take.
std::string hintOf(const CLI::App& app, const Command& command, const Arguments& arguments) {
  const std::vector<std::string> extra = app.remaining();
  if (extra.empty()) return {};
  const auto unknown = std::find_if(extra.begin(), extra.end(), [](const auto& word) { return word.starts_with('-'); });
  if (unknown != extra.end()) {
    const std::string option = meantOption(app, unknown->substr(0, unknown->find('=')));
    return option.empty() ? "" : "did you mean " + option + "?";
  }
  if (&command != &allCommands().front()) return {};
  const std::size_t place = firstPositional(arguments);
  return hintOfWords(place < arguments.size() ? arguments[place] : "", extra);
}

bool isQuiet(const CLI::App& app) {
  const CLI::Option* const option = app.get_option_no_throw("--quiet");
  return option != nullptr && option->count() != 0;
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
    const std::string hint = isQuiet(*declared.app) ? "" : hintOf(*declared.app, command, arguments);
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
