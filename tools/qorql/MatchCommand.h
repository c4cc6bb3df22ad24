// `qorql match [OPTIONS] FILTER [FILE]...`: which instances a filter matches.
#ifndef QORQL_TOOL_MATCHCOMMAND_H
#define QORQL_TOOL_MATCHCOMMAND_H

#include "Command.h"

CommandAction declareMatchCommand(CLI::App& app);

#endif
