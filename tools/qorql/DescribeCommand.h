// `qorql describe CLASS`: the properties of a class as a list.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_DESCRIBECOMMAND_H
#define QORQL_TOOL_DESCRIBECOMMAND_H

#include <iosfwd>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Command.h"

CommandAction declareDescribeCommand(CLI::App& app);

// The description for people, as wide as the terminal. REQUIRES that there is such a class.
void printDescription(std::ostream& out, const EmbeddedObjectManager& manager, const QORString& nameSpace,
                      const QORString& className);

#endif
