// `qorql contents [PATTERN]`: what a model holds, in numbers.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_CONTENTSCOMMAND_H
#define QORQL_TOOL_CONTENTSCOMMAND_H

#include "Command.h"

CommandAction declareContentsCommand(CLI::App& app);

#endif
