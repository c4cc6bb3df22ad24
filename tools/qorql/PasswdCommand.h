// `qorql passwd FILE USER`: the users of a server and their passwords.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_PASSWDCOMMAND_H
#define QORQL_TOOL_PASSWDCOMMAND_H

#include "Command.h"

CommandAction declarePasswdCommand(CLI::App& app);

#endif
