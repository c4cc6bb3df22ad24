// Prints the completion for bash: one function, with a branch for each command.
// SPDX-License-Identifier: Apache-2.0
#include "BashCompletion.h"

#include <iostream>

#include "JoinedWords.h"

namespace {

// What is offered for an option's value.
std::string replyFor(const Candidates& value) {
  if (value.kind == CandidateKind::File) {
    return "mapfile -t COMPREPLY < <(compgen -f -- \"$current\"); compopt -o filenames";
  }
  if (value.kind != CandidateKind::Word) return "COMPREPLY=()";
  return "COMPREPLY=($(compgen -W '" + joined(value.words) + "' -- \"$current\"))";
}

// What the words of the command's arguments are.
std::string wordsFor(const Candidates& arguments) {
  if (arguments.kind == CandidateKind::Class) return "\n      needsClass=1";
  if (arguments.kind == CandidateKind::Word) return "\n      arguments='" + joined(arguments.words) + '\'';
  return {};
}

// What follows each option that takes a value, and the options.
void printBranch(const CompletedCommand& command) {
  std::vector<std::string> all;
  std::cout << "    " << command.name << ")\n      case \"$previous\" in\n";
  for (const CompletedOption& option : command.options) {
    all.insert(all.end(), option.names.begin(), option.names.end());
    if (option.value.isFlag()) continue;
    std::cout << "        " << joined(option.names, "|") << ") " << replyFor(option.value) << "; return ;;\n";
  }
  std::cout << "      esac\n      words='" << joined(all) << "'" << wordsFor(command.arguments) << " ;;\n";
}

// Finds the command: the first word that is neither an option nor an option's value. Bash takes an equals sign as a
// word of its own.
constexpr const char* kFindCommand = R"sh(
  if [[ $current == = ]]; then current=; elif [[ $previous == = ]]; then previous=${COMP_WORDS[COMP_CWORD-2]}; fi
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    if [[ $word == = ]]; then isValue=1
    elif [[ $isValue ]]; then isValue=
    elif [[ " $valued " == *" $word "* ]]; then isValue=1
    elif [[ $word == -- || $word != -?* ]]; then
      isTaken=1
      if [[ $word && " $commands " == *" $word "* ]]; then command=$word; fi
      break
    fi
  done
  case "$command" in
)sh";

constexpr const char* kReply = R"sh(  esac
  if [[ $current != -* ]]; then
    words=$arguments
    [[ $isTaken ]] || words+=" $commands"
    [[ ! $needsClass ]] || words+=" $("${COMP_WORDS[0]}" classes --quiet 2>/dev/null)"
  fi
  COMPREPLY=($(compgen -W "$words" -- "$current"))
  if [[ ${#COMPREPLY[@]} == 1 && $COMPREPLY == --* && " $valued " == *" $COMPREPLY "* ]]; then
    COMPREPLY+='='
    compopt -o nospace
  fi
  [[ ${#COMPREPLY[@]} -gt 0 ]] || { mapfile -t COMPREPLY < <(compgen -f -- "$current"); compopt -o filenames; }
}
complete -F _qorql qorql
)sh";

}  // namespace

void printBashCompletion(const std::vector<CompletedCommand>& table) {
  std::cout << "# Completion of qorql for bash, made by: qorql pages bash\n"
               "_qorql() {\n"
               "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
               "  local words= arguments= word isTaken= isValue= needsClass= command="
            << table.front().name << "\n  local commands='" << commandNames(table) << "'\n  local valued='"
            << valuedOptions(table) << '\'' << kFindCommand;
  for (const CompletedCommand& command : table) printBranch(command);
  std::cout << kReply;
}
