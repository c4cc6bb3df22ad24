// `qorql [OPTIONS] [QUERY]`: runs statements and prints their results.
#ifndef QORQL_TOOL_QUERYCOMMAND_H
#define QORQL_TOOL_QUERYCOMMAND_H

#include "Command.h"

CommandAction declareQueryCommand(CLI::App& app);

#endif
