// The signals are blocked except while waiting, so that nothing else is interrupted.
// SPDX-License-Identifier: Apache-2.0
#include "EndRequest.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace {

volatile sig_atomic_t isEndRequested = 0;

extern "C" void requestEnd(int /*signal*/) { isEndRequested = 1; }

}  // namespace

EndRequest::EndRequest() : _maskBefore{}, _interruptBefore{}, _terminateBefore{} {
  isEndRequested = 0;
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGINT);
  sigaddset(&blocked, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &blocked, &_maskBefore);
  struct sigaction action {};
  action.sa_handler = requestEnd;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, &_interruptBefore);
  sigaction(SIGTERM, &action, &_terminateBefore);
}

EndRequest::~EndRequest() {
  sigaction(SIGINT, &_interruptBefore, nullptr);
  sigaction(SIGTERM, &_terminateBefore, nullptr);
  pthread_sigmask(SIG_SETMASK, &_maskBefore, nullptr);
}

bool EndRequest::waitFor(std::chrono::nanoseconds duration) const {
  using std::chrono::seconds;
  const auto whole = std::chrono::duration_cast<seconds>(duration);
  const timespec timeout{static_cast<time_t>(whole.count()), static_cast<long>((duration - whole).count())};
  sigset_t open = _maskBefore;
  sigdelset(&open, SIGINT);
  sigdelset(&open, SIGTERM);
  pollfd output{STDOUT_FILENO, 0, 0};
  const int ready = ppoll(&output, 1, &timeout, &open);
  return isEndRequested != 0 || (ready > 0 && output.revents != 0);
}
