// `qorql get PATH`: one instance.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_GETCOMMAND_H
#define QORQL_TOOL_GETCOMMAND_H

#include "Command.h"

CommandAction declareGetCommand(CLI::App& app);

#endif
