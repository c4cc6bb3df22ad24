// The qorql program.
// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <csignal>
#include <cstring>
#include <iostream>

#include "CommandLine.h"
#include "ExitStatus.h"
#include "StandardOutput.h"

namespace {

// When the reader has closed the pipe, that is no failure.
int closeOutput(StandardOutput& output, int status) {
  const int error = output.close();
  if (error == 0 || error == EPIPE) return status;
  std::cerr << "qorql: error: cannot write the result: " << std::strerror(error) << '\n';
  return kExitRefused;
}

}  // namespace

int main(int argc, char** argv) {
  // A pipe without a reader and a file that has reached its greatest size are noticed by the write that fails.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  StandardOutput output;
  return closeOutput(output, runCommandLine(argc, argv));
}
