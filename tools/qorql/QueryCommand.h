// `qorql [OPTIONS] [QUERY]`: runs statements and prints their results.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_QUERYCOMMAND_H
#define QORQL_TOOL_QUERYCOMMAND_H

#include "Command.h"

CommandAction declareQueryCommand(CLI::App& app);

#endif
