// `qorql validate [OPTIONS] [FILTER]`: whether filters are valid and what they need.
#ifndef QORQL_TOOL_VALIDATECOMMAND_H
#define QORQL_TOOL_VALIDATECOMMAND_H

#include "Command.h"

CommandAction declareValidateCommand(CLI::App& app);

#endif
