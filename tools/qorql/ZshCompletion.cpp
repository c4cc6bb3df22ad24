// Prints the completion for zsh: a file for its folders of functions that can be sourced, too.
// SPDX-License-Identifier: Apache-2.0
#include "ZshCompletion.h"

#include <iostream>
#include <string_view>

#include "JoinedWords.h"

namespace {

// A backslash before each character that would end the part of a specification that the text is.
std::string escaped(const std::string& text, std::string_view ends) {
  std::string result;
  for (const char c : text) {
    if (c == '\\' || ends.find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

std::string zshQuoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? "'\\''" : std::string(1, c);
  return result + '\'';
}

// What stands in a place: its name, and how it is completed.
std::string actionFor(const Candidates& candidates) {
  const std::string name = escaped(candidates.type, ":") + ':';
  if (candidates.kind == CandidateKind::File) return name + "_files";
  if (candidates.kind == CandidateKind::Class) return name + "_qorql_classes";
  if (candidates.kind == CandidateKind::Word) return name + '(' + joined(candidates.words) + ')';
  return name + ' ';
}

// One name of an option: what it excludes, the name, its description, its value.
std::string specification(const CompletedOption& option, const std::string& name) {
  const bool isFlag = option.value.isFlag();
  return (option.isRepeatable ? "*" : '(' + joined(option.names) + ')') + name +
         (!isFlag && name.starts_with("--") ? "=[" : "[") + escaped(option.description, "[]") + ']' +
         (isFlag ? "" : ':' + actionFor(option.value));
}

void printZshBranch(const CompletedCommand& command) {
  std::cout << "    " << command.name << ")\n      specifications=(\n";
  for (const CompletedOption& option : command.options) {
    for (const std::string& name : option.names)
      std::cout << "        " << zshQuoted(specification(option, name)) << '\n';
  }
  std::cout << "        " << zshQuoted("*:" + actionFor(command.arguments)) << "\n      ) ;;\n";
}

void printCommands(const std::vector<CompletedCommand>& table) {
  std::cout << "  local -a summaries=(\n";
  for (const CompletedCommand& command : table) {
    std::cout << "    " << zshQuoted(command.name + ':' + escaped(command.summary, ":")) << '\n';
  }
  std::cout << "  )\n";
}

constexpr const char* kHelpers = R"sh(
_qorql_classes() {
  local -a classes expl
  classes=(${(f)"$(_call_program classes $words[1] classes --quiet 2>/dev/null)"})
  _wanted classes expl class compadd -a classes
}

# Where a command may still be named, and the first command's argument may stand.
_qorql_first() {
  local -i isNothing=1
  _describe -t commands command summaries && isNothing=0
  _files && isNothing=0
  return isNothing
}

)sh";

// Finds the command: the first word that is neither an option nor an option's value.
constexpr const char* kZshFindCommand = R"sh(
  local word command=
  local -a specifications
  local -i place
  for (( place = 2; place < CURRENT; place++ )); do
    word=$words[place]
    if (( $valued[(Ie)$word] )); then
      place+=1
    elif [[ $word == -- || $word != -?* ]]; then
      command=$names[1]
      if (( $names[(Ie)$word] )); then
        command=$word
        words[place]=()
        CURRENT+=-1
      fi
      break
    fi
  done
  case ${command:-$names[1]} in
)sh";

constexpr const char* kArguments = R"sh(  esac
  [[ -n $command ]] || specifications[-1]='*:argument:_qorql_first'
  _arguments -s -S $specifications
}

if [[ $funcstack[1] == _qorql ]]; then _qorql "$@"; else compdef _qorql qorql; fi
)sh";

}  // namespace

void printZshCompletion(const std::vector<CompletedCommand>& table) {
  std::cout << "#compdef qorql\n# Completion of qorql for zsh, made by: qorql pages zsh\n"
            << kHelpers << "_qorql() {\n";
  printCommands(table);
  std::cout << "  local -a names=(" << commandNames(table) << ") valued=(" << valuedOptions(table) << ')'
            << kZshFindCommand;
  for (const CompletedCommand& command : table) printZshBranch(command);
  std::cout << kArguments;
}
