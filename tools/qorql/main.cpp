// The qorql program: finds the command that the first argument names; without one it runs a query.
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string_view>

#include "ExitStatus.h"
#include "QueryCommand.h"

namespace {

struct Command {
  std::string_view name;
  int (*run)(int argc, const char* const* argv);
};
constexpr Command kCommands[] = {{"query", runQueryCommand}};

int runCommand(int argc, const char* const* argv) {
  for (const Command& command : kCommands) {
    if (argc > 1 && command.name == argv[1]) return command.run(argc - 1, argv + 1);
  }
  return runQueryCommand(argc, argv);
}

// A reader that has seen enough and closed the pipe is no failure.
int closeOutput(int status) {
  errno = 0;
  std::cout.flush();
  if (std::fflush(stdout) == 0 && std::cout) return status;
  const int error = errno;
  if (error == EPIPE) return status;
  std::cerr << "qorql: error: cannot write the result: " << std::strerror(error == 0 ? EIO : error) << '\n';
  return kExitRefused;
}

}  // namespace

int main(int argc, char** argv) {
  // Everything that goes to standard output shares one buffer, so that it stays in order.
  static std::array<char, 1 << 16> buffer;
  std::setvbuf(stdout, buffer.data(), _IOFBF, buffer.size());
  std::signal(SIGPIPE, SIG_IGN);
  return closeOutput(runCommand(argc, argv));
}
