// `qorql serve [OPTIONS]`: the object manager as a server that clients ask over HTTP.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SERVECOMMAND_H
#define QORQL_TOOL_SERVECOMMAND_H

#include "Command.h"

CommandAction declareServeCommand(CLI::App& app);

#endif
