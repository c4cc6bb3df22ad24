// Warnings where a statement does not mean what someone who knows SQL expects.
#ifndef QORQL_TOOL_SURPRISEREPORT_H
#define QORQL_TOOL_SURPRISEREPORT_H

#include <iosfwd>
#include <string>

class EmbeddedObjectManager;
class QORQL_Query;

// `qorql: warning: <text> [RULE]`, a line for each.
void printSurprises(std::ostream& out, EmbeddedObjectManager& manager, const QORQL_Query& query,
                    const std::string& nameSpace);
// For a statement whose result is the engine's stream: that the rows of a bare * are empty in it.
void printEmptyRows(std::ostream& out, const std::string& statement);

#endif
