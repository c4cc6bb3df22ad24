// The completion for zsh.
#ifndef QORQL_TOOL_ZSHCOMPLETION_H
#define QORQL_TOOL_ZSHCOMPLETION_H

#include "CompletionTable.h"

// Prints it to standard output, as a script for zsh.
void printZshCompletion(const std::vector<CompletedCommand>& table);

#endif
