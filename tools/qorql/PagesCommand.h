// `qorql pages PAGE`: the manual page, and the completions for shells.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_PAGESCOMMAND_H
#define QORQL_TOOL_PAGESCOMMAND_H

#include <string>
#include <vector>

#include "Command.h"

CommandAction declarePagesCommand(CLI::App& app);

// What can be printed.
std::vector<std::string> pageNames();

#endif
