// `qorql classes [PATTERN]`: lists the classes of the namespace.
#ifndef QORQL_TOOL_CLASSESCOMMAND_H
#define QORQL_TOOL_CLASSESCOMMAND_H

#include "Command.h"

CommandAction declareClassesCommand(CLI::App& app);

#endif
