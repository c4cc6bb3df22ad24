// What a shell may offer after the program's name: commands, options and values. The completions of all shells are
// printed from this one table, which is made from what the commands declare.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_COMPLETIONTABLE_H
#define QORQL_TOOL_COMPLETIONTABLE_H

#include <string>
#include <vector>

// What can stand in a place of the command line.
enum class CandidateKind { Nothing, Anything, File, Word, Class };

struct Candidates {
  CandidateKind kind = CandidateKind::Nothing;  // of an option: it takes no value
  std::string type;                             // the place's name in the help: FORM
  std::vector<std::string> words;               // where the kind is Word

  bool isFlag() const noexcept { return kind == CandidateKind::Nothing; }
};

struct CompletedOption {
  std::vector<std::string> names;  // as they are typed: -o, --output
  std::string description;
  Candidates value;
  bool isRepeatable = false;
};

struct CompletedCommand {
  std::string name;
  std::string summary;
  std::vector<CompletedOption> options;
  Candidates arguments;
};

// All commands, first the one that runs when none is named.
std::vector<CompletedCommand> completionTable();

// The names of all commands, and of all options that take a value, between blanks.
std::string commandNames(const std::vector<CompletedCommand>& table);
std::string valuedOptions(const std::vector<CompletedCommand>& table);

#endif
