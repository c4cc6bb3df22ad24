// `qorql explain [OPTIONS] QUERY`: what a query will do.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_EXPLAINCOMMAND_H
#define QORQL_TOOL_EXPLAINCOMMAND_H

#include <iosfwd>
#include <string>

#include "Command.h"

class ParsedQuery;
class Session;
struct SessionOptions;

CommandAction declareExplainCommand(CLI::App& app);

// The steps of a parsed statement, what servers will be asked, its surprises and the properties it names in vain, one a
// line.
void printExplanation(std::ostream& out, Session& session, ParsedQuery& parsed, const SessionOptions& options);

#endif
