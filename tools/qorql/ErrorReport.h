// Errors as a person reads them on standard error.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_ERRORREPORT_H
#define QORQL_TOOL_ERRORREPORT_H

#include <cstddef>
#include <string>

#include "Cimom/Mof/MofError.h"
#include "Cimom/QORQL/Face/QORQL_Hint.h"
#include "Statements.h"

// Both report the exception that is being handled and return the exit status;
// call them inside a catch clause.

// `qorql: error: <message> (line N, CIM status S)`; the line counts in the
// whole text that the statement is part of. On a terminal the statement's line
// follows, with a caret under the word at fault, where the error has its place.
// A hint that is not empty comes last.
int reportFailure(const Statement& statement, const QORQL_Hint& hint = {}) noexcept;
// `qorql: hint: <place><text>` and, with or without a terminal, the line of the statement with a caret under the word
// that the hint is about, unless the caret is shown there already. Nothing for an empty hint.
void printHint(const QORQL_Hint& hint, const std::string& text, const std::string& place = "",
               std::size_t shown = std::string::npos);
// `qorql: error: <message>`: of MOF, configuration or the live classes.
int reportStartFailure() noexcept;

// What a lenient load left out: `qorql: warning: <file:line:column: message>` for each fault that is shown, with its
// line of the source and a caret, and how many there are.
void reportMofWarnings(const MofFaults& faults);

// `qorql: error: <message>`: what is asked for is not available. Returns the exit
// status. To be called without an exception.
int reportRefusal(const std::string& message) noexcept;

#endif
