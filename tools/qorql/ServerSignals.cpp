// The signals are blocked and taken by the thread that waits for them.
// SPDX-License-Identifier: Apache-2.0
#include "ServerSignals.h"

#include <ctime>
#include <initializer_list>

ServerSignals::ServerSignals() : _taken{}, _maskBefore{} {
  sigemptyset(&_taken);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&_taken, signal);
  pthread_sigmask(SIG_BLOCK, &_taken, &_maskBefore);
}

ServerSignals::~ServerSignals() { pthread_sigmask(SIG_SETMASK, &_maskBefore, nullptr); }

ServerSignals::Request ServerSignals::wait() const {
  int signal = 0;
  while (sigwait(&_taken, &signal) != 0) continue;
  return signal == SIGHUP ? Request::Reload : Request::End;
}

bool ServerSignals::isEndRequested() const {
  sigset_t ends;
  sigemptyset(&ends);
  sigaddset(&ends, SIGINT);
  sigaddset(&ends, SIGTERM);
  const timespec now{};
  return sigtimedwait(&ends, nullptr, &now) > 0;
}
