// The manual page and the completions for shells, made from what the commands
// declare, as the help is.
// SPDX-License-Identifier: Apache-2.0
#include "PagesCommand.h"

#include <map>

#include "BashCompletion.h"
#include "ExitStatus.h"
#include "FishCompletion.h"
#include "ManualPage.h"
#include "OptionDeclarations.h"
#include "ZshCompletion.h"

namespace {

constexpr const char* kPagesDescription =
    "Prints the manual page (man) or the completion for a shell (bash, fish or zsh). All are\n"
    "installed with the program; a shell without them reads: source <(qorql pages bash),\n"
    "qorql pages fish | source, or source <(qorql pages zsh)";

const std::map<std::string, void (*)()>& pages() {
  static const std::map<std::string, void (*)()> printers = {
      {"bash", [] { printBashCompletion(completionTable()); }},
      {"fish", [] { printFishCompletion(completionTable()); }},
      {"man", printManualPage},
      {"zsh", [] { printZshCompletion(completionTable()); }},
  };
  return printers;
}

}  // namespace

std::vector<std::string> pageNames() {
  std::vector<std::string> names;
  for (const auto& page : pages()) names.push_back(page.first);
  return names;
}

CommandAction declarePagesCommand(CLI::App& app) {
  const auto which = std::make_shared<std::string>();
  describeCommand(app, kPagesDescription, "Exit status: 0 done; 2 wrong usage.");
  declareValue(app, {.names = "PAGE",
                     .description = "man, bash, fish or zsh",
                     .take = keepIn(*which),
                     .check = oneOf(pages()),
                     .isRequired = true});
  return [which] {
    pages().at (*which)();
    return kExitDone;
  };
}
