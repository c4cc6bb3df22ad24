// Output at a terminal that is longer than its screen goes through a program that shows it page by page.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_PAGER_H
#define QORQL_TOOL_PAGER_H

#include <signal.h>
#include <sys/types.h>

#include <streambuf>
#include <string>
#include <string_view>

#include "Terminal.h"

namespace CLI {
class App;
}

// The buffer of std::cout while this object lives. What is written is held back until it is known whether the screen
// holds it: then it goes to the terminal at the end of this object's life, else to the pager, for whose end that end
// waits. Ctrl-C is the pager's alone while it runs. A pager that has seen enough ends what is written, and leaves
// std::cout as it was. Does nothing unless it is wanted, standard output is a terminal and there is a pager.
// One at a time, on the main thread.
class Pager : private std::streambuf {
 public:
  explicit Pager(bool isWanted);
  Pager(const Pager&) = delete;
  Pager& operator=(const Pager&) = delete;
  ~Pager() override;

  // Whether a person may be reading, for whom the program waits.
  static bool isRunning() noexcept;

 private:
  int_type overflow(int_type byte) override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;
  int sync() override;

  bool hold(std::string_view text);
  bool isLongerThanScreen() const;
  void start();
  // Hands over what is held. Returns false when the pager takes no more.
  bool pass();
  bool writeToPager();
  void await();

  const std::string _command;  // empty: there is no pager
  const TerminalShape _terminal;
  std::streambuf* _previous = nullptr;
  std::string _held;
  int _pipe = -1;
  pid_t _process = 0;
  bool _hasEnded = false;  // before everything was written
  struct sigaction _interruptBefore;
};

// The flag --no-pager. BORROWS it until the command line has been parsed.
void declareNoPager(CLI::App& app, bool& hasNoPager);

#endif
