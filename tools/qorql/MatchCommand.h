// `qorql match [OPTIONS] FILTER [FILE]...`: which instances a filter matches.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_MATCHCOMMAND_H
#define QORQL_TOOL_MATCHCOMMAND_H

#include "Command.h"

CommandAction declareMatchCommand(CLI::App& app);

#endif
