// Warnings where a statement does not mean what someone who knows SQL expects.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SURPRISEREPORT_H
#define QORQL_TOOL_SURPRISEREPORT_H

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Statements.h"
#include "Terminal.h"
#include "Warning.h"

class ParsedQuery;

// All warnings about a statement before it runs. REQUIRES a parsed query.
std::vector<Warning> findWarnings(EmbeddedObjectManager& manager, const std::string& nameSpace, ParsedQuery& parsed);
// For a statement whose result is the engine's stream: that the rows of a bare * are empty in it; else nothing.
std::optional<Warning> findEmptyRows(const ParsedQuery& parsed);

// Parses, and unless quiet prints on standard error what the scanner skipped, also before a fault that this may be
// the cause of. THROWS what parsing throws.
void parseWithWarnings(ParsedQuery& parsed, const std::string& nameSpace, bool isQuiet);

// `qorql: warning: <text>`, a line for each.
void printWarnings(std::ostream& out, const std::vector<std::string>& warnings);
// On a terminal the line of the statement follows each, with a caret under the word that it is about.
void printWarnings(std::ostream& out, const TerminalShape& terminal, const Statement& statement,
                   const std::vector<Warning>& warnings);
// The statement's line and the caret of one warning; empty where there is no terminal or no place.
std::string caretOf(const Warning& warning, const TerminalShape& terminal, const Statement& statement);

#endif
