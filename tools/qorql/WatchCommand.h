// `qorql watch [OPTIONS] FILTER`: the indications of live changes that a filter matches.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_WATCHCOMMAND_H
#define QORQL_TOOL_WATCHCOMMAND_H

#include "Command.h"

CommandAction declareWatchCommand(CLI::App& app);

#endif
