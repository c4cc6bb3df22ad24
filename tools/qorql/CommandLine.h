// From the arguments of the program to its exit status.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_COMMANDLINE_H
#define QORQL_TOOL_COMMANDLINE_H

// Runs the command that the first argument names; without one, the query. Help
// goes to standard output, wrong usage to standard error. Never throws.
int runCommandLine(int argc, const char* const* argv) noexcept;

#endif
