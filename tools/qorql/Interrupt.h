// Ctrl-C while a statement runs in the shell.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_INTERRUPT_H
#define QORQL_TOOL_INTERRUPT_H

#include <csignal>

// Output was interrupted by Ctrl-C: no fault of the statement.
struct Interrupted {};

class Interrupt {
 public:
  // While it lives, SIGINT is noted and does not end the program. A third one that
  // nobody has reacted to ends it.
  Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;
  ~Interrupt();

  static bool isRequested() noexcept;
  static void clear() noexcept;

 private:
  struct sigaction _before;
};

#endif
