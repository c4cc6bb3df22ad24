// The completion for fish.
#ifndef QORQL_TOOL_FISHCOMPLETION_H
#define QORQL_TOOL_FISHCOMPLETION_H

#include "CompletionTable.h"

// Prints it to standard output, as a script for fish.
void printFishCompletion(const std::vector<CompletedCommand>& table);

#endif
