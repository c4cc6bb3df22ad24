// `qorql watch [OPTIONS] FILTER`: the indications of live changes that a filter matches.
#ifndef QORQL_TOOL_WATCHCOMMAND_H
#define QORQL_TOOL_WATCHCOMMAND_H

#include "Command.h"

CommandAction declareWatchCommand(CLI::App& app);

#endif
