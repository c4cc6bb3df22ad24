// The completion for bash.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_BASHCOMPLETION_H
#define QORQL_TOOL_BASHCOMPLETION_H

#include "CompletionTable.h"

// Prints it to standard output, as a script for bash.
void printBashCompletion(const std::vector<CompletedCommand>& table);

#endif
