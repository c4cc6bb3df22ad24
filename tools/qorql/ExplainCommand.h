// `qorql explain [OPTIONS] QUERY`: what a query will do.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_EXPLAINCOMMAND_H
#define QORQL_TOOL_EXPLAINCOMMAND_H

#include <iosfwd>
#include <string>

#include "Command.h"

class EmbeddedObjectManager;
class ParsedQuery;

CommandAction declareExplainCommand(CLI::App& app);

// The steps of a parsed statement, its surprises and the properties it names in vain, one a line.
void printExplanation(std::ostream& out, EmbeddedObjectManager& manager, ParsedQuery& parsed,
                      const std::string& nameSpace);

#endif
