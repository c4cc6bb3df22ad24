// The completion for bash.
#ifndef QORQL_TOOL_BASHCOMPLETION_H
#define QORQL_TOOL_BASHCOMPLETION_H

#include "CompletionTable.h"

// Prints it to standard output, as a script for bash.
void printBashCompletion(const std::vector<CompletedCommand>& table);

#endif
