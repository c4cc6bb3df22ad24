// Prints the completion for fish: a line for each command and option, with the condition under which it is offered.
// SPDX-License-Identifier: Apache-2.0
#include "FishCompletion.h"

#include <iostream>

#include "JoinedWords.h"

namespace {

std::string fishQuoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') result += '\\';
    result += c;
  }
  return result + '\'';
}

// The beginning of a line that holds for a command.
std::string lineFor(const CompletedCommand& command) {
  return "complete -c qorql -n '__qorql_runs " + command.name + '\'';
}

std::string valueFor(const Candidates& value) {
  if (value.isFlag()) return {};
  if (value.kind == CandidateKind::File) return " -r -F";
  return value.kind == CandidateKind::Word ? " -x -a " + fishQuoted(joined(value.words)) : " -x";
}

void printOption(const CompletedCommand& command, const CompletedOption& option) {
  std::cout << lineFor(command);
  for (const std::string& name : option.names) {
    const bool isLong = name.starts_with("--");
    std::cout << (isLong ? " -l " : " -s ") << name.substr(isLong ? 2 : 1);
  }
  std::cout << valueFor(option.value) << " -d " << fishQuoted(option.description) << '\n';
}

void printArguments(const CompletedCommand& command) {
  const Candidates& arguments = command.arguments;
  if (arguments.kind == CandidateKind::Class) std::cout << lineFor(command) << " -f -a '(__qorql_classes)'\n";
  if (arguments.kind == CandidateKind::Word) {
    std::cout << lineFor(command) << " -f -a " << fishQuoted(joined(arguments.words)) << '\n';
  }
}

void printCommand(const CompletedCommand& command) {
  std::cout << "complete -c qorql -n __qorql_is_open -a " << command.name << " -d " << fishQuoted(command.summary)
            << '\n';
  for (const CompletedOption& option : command.options) printOption(command, option);
  printArguments(command);
}

// The command is the first word that is neither an option nor an option's value.
constexpr const char* kNamedCommand = R"sh(
function __qorql_command --description 'The command of the line; nothing where it may still be named'
    set -l words (commandline -opc)
    set -e words[1]
    set -l skips
    for word in $words
        if set -q skips[1]
            set -e skips
        else if contains -- $word $__qorql_valued
            set skips 1
        else if test "$word" = --; or not string match -q -- '-?*' "$word"
            contains -- "$word" $__qorql_commands; and echo $word; or echo $__qorql_commands[1]
            return
        end
    end
end

function __qorql_is_open
    not __qorql_command | string length -q
end

function __qorql_runs
    set -l command (__qorql_command)
    set -q command[1]; or set command $__qorql_commands[1]
    test "$command" = $argv[1]
end

function __qorql_classes
    set -l words (commandline -opc)
    $words[1] classes --quiet 2>/dev/null
end

)sh";

}  // namespace

void printFishCompletion(const std::vector<CompletedCommand>& table) {
  std::cout << "# Completion of qorql for fish, made by: qorql pages fish\n"
            << "set -g __qorql_commands " << commandNames(table) << "\nset -g __qorql_valued " << valuedOptions(table)
            << '\n'
            << kNamedCommand;
  for (const CompletedCommand& command : table) printCommand(command);
}
