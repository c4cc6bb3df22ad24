// The completion for fish.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_FISHCOMPLETION_H
#define QORQL_TOOL_FISHCOMPLETION_H

#include "CompletionTable.h"

// Prints it to standard output, as a script for fish.
void printFishCompletion(const std::vector<CompletedCommand>& table);

#endif
