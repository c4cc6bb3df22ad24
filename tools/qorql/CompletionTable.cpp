// Makes the table of completions from what the commands declare.
// SPDX-License-Identifier: Apache-2.0
#include "CompletionTable.h"

#include <set>
#include <sstream>
#include <utility>

#include "Command.h"
#include "DeclaredOptions.h"
#include "JoinedWords.h"
#include "OutputOptions.h"
#include "PagesCommand.h"
#include "SessionOptions.h"

namespace {

std::vector<std::string> formNames() {
  std::vector<std::string> names;
  for (const auto& form : outputForms()) names.push_back(form.first);
  return names;
}

// "text|json"
std::vector<std::string> alternatives(const std::string& type) {
  std::vector<std::string> words;
  std::istringstream rest(type);
  for (std::string word; std::getline(rest, word, '|');) words.push_back(word);
  return words;
}

// The word for a value in the help tells what the value is.
Candidates candidatesOf(const std::string& type) {
  if (type == "FORM") return {CandidateKind::Word, type, formNames()};
  if (type == "LEVEL") return {CandidateKind::Word, type, logLevelNames()};
  if (type == "PAGE") return {CandidateKind::Word, type, pageNames()};
  if (type.find('|') != std::string::npos) return {CandidateKind::Word, type, alternatives(type)};
  if (type == "FILE" || type == "PATH") return {CandidateKind::File, type, {}};
  if (type == "NAME" || type == "CLASS") return {CandidateKind::Class, type, {}};
  return {CandidateKind::Anything, type, {}};
}

Candidates valueOf(const CLI::Option& option) {
  if (!takesValue(option)) return {};
  Candidates value = candidatesOf(option.get_type_name());
  if (value.kind == CandidateKind::Class) value.kind = CandidateKind::Anything;  // an option's NAME is a namespace
  return value;
}

// Shells offer files where they know nothing better.
Candidates argumentOf(const CLI::Option& argument) {
  Candidates candidates = candidatesOf(argument.get_name(true));
  if (candidates.kind == CandidateKind::Anything) candidates.kind = CandidateKind::File;
  return candidates;
}

CompletedCommand completedCommand(const Command& command) {
  const DeclaredCommand declared = declareCommand(command);
  CompletedCommand completed{std::string(command.name), std::string(command.summary), {}, {}};
  for (const CLI::Option* option : std::as_const(*declared.app).get_options()) {
    if (!isPositional(*option)) {
      completed.options.push_back(
          {namesOf(*option), option->get_description(), valueOf(*option), isRepeatable(*option)});
    } else if (completed.arguments.isFlag()) {
      completed.arguments = argumentOf(*option);
    }
  }
  return completed;
}

}  // namespace

std::vector<CompletedCommand> completionTable() {
  std::vector<CompletedCommand> table;
  for (const Command& command : allCommands()) table.push_back(completedCommand(command));
  return table;
}

std::string commandNames(const std::vector<CompletedCommand>& table) {
  std::vector<std::string> names;
  for (const CompletedCommand& command : table) names.push_back(command.name);
  return joined(names);
}

std::string valuedOptions(const std::vector<CompletedCommand>& table) {
  std::set<std::string> names;
  for (const CompletedCommand& command : table) {
    for (const CompletedOption& option : command.options) {
      if (!option.value.isFlag()) names.insert(option.names.begin(), option.names.end());
    }
  }
  return joined({names.begin(), names.end()});
}
