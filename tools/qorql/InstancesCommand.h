// `qorql instances CLASS`: prints the instances of a class as MOF text.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_INSTANCESCOMMAND_H
#define QORQL_TOOL_INSTANCESCOMMAND_H

#include "Command.h"

CommandAction declareInstancesCommand(CLI::App& app);

#endif
