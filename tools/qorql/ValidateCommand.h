// `qorql validate [OPTIONS] [FILTER]`: whether filters are valid and what they need.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_VALIDATECOMMAND_H
#define QORQL_TOOL_VALIDATECOMMAND_H

#include "Command.h"

CommandAction declareValidateCommand(CLI::App& app);

#endif
