// `qorql pages man|bash`: the manual page, and completion for bash.
#ifndef QORQL_TOOL_PAGESCOMMAND_H
#define QORQL_TOOL_PAGESCOMMAND_H

#include "Command.h"

CommandAction declarePagesCommand(CLI::App& app);

#endif
