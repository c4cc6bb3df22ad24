// The completion for zsh.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_ZSHCOMPLETION_H
#define QORQL_TOOL_ZSHCOMPLETION_H

#include "CompletionTable.h"

// Prints it to standard output, as a script for zsh.
void printZshCompletion(const std::vector<CompletedCommand>& table);

#endif
