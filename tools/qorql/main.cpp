// The qorql program: finds the command that the first argument names; without one it runs a query.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string_view>

#include "ExitStatus.h"
#include "QueryCommand.h"
#include "StandardOutput.h"

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
int closeOutput(StandardOutput& output, int status) {
  const int error = output.close();
  if (error == 0 || error == EPIPE) return status;
  std::cerr << "qorql: error: cannot write the result: " << std::strerror(error) << '\n';
  return kExitRefused;
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  // The scanner reports on standard output by both ways; neither may overtake the other.
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  StandardOutput output;
  return closeOutput(output, runCommand(argc, argv));
}
