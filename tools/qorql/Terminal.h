// What the program knows of the terminal that it writes to.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_TERMINAL_H
#define QORQL_TOOL_TERMINAL_H

#include <cstddef>

struct TerminalShape {
  bool isTerminal = false;
  bool isUtf8 = false;      // may show characters outside ASCII; false without a terminal
  std::size_t width = 80;   // in columns
  std::size_t height = 24;  // in lines
};

// Of standard output or standard error. The size is asked of the terminal at
// each call, else of COLUMNS and LINES. Locale variables that name another character set,
// or the C locale, mean ASCII.
TerminalShape standardOutputShape();
TerminalShape standardErrorShape();
// Both standard input and standard output are a terminal.
bool isInteractive();

#endif
