// `qorql listen [OPTIONS]`: prints the indications that servers send.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LISTENCOMMAND_H
#define QORQL_TOOL_LISTENCOMMAND_H

#include "Command.h"

CommandAction declareListenCommand(CLI::App& app);

#endif
