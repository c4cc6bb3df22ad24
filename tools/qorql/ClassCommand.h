// `qorql class NAME`: prints a class as MOF text that loads again.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_CLASSCOMMAND_H
#define QORQL_TOOL_CLASSCOMMAND_H

#include "Command.h"

CommandAction declareClassCommand(CLI::App& app);

#endif
