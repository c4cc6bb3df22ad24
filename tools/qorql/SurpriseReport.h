// Warnings where a statement does not mean what someone who knows SQL expects.
#ifndef QORQL_TOOL_SURPRISEREPORT_H
#define QORQL_TOOL_SURPRISEREPORT_H

#include <iosfwd>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"

class ParsedQuery;

// All warnings about a statement before it runs, a printable sentence each. REQUIRES a parsed query.
std::vector<std::string> findWarnings(EmbeddedObjectManager& manager, const std::string& nameSpace,
                                      ParsedQuery& parsed);
// For a statement whose result is the engine's stream: that the rows of a bare * are empty in it; else nothing.
std::string emptyRowsWarning(const std::string& statement);

// Parses, and unless quiet prints on standard error what the scanner skipped, also before a fault that this may be
// the cause of. THROWS what parsing throws.
void parseWithWarnings(ParsedQuery& parsed, const std::string& nameSpace, bool isQuiet);

// `qorql: warning: <text>`, a line for each.
void printWarnings(std::ostream& out, const std::vector<std::string>& warnings);

#endif
