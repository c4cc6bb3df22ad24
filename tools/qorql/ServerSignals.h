// The signals by which a server is told what to do.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SERVERSIGNALS_H
#define QORQL_TOOL_SERVERSIGNALS_H

#include <csignal>

// While it lives, SIGINT, SIGTERM and SIGHUP wait until they are asked for. To be made before other threads, which take
// it over. One at a time, on the main thread.
class ServerSignals {
 public:
  enum class Request { End, Reload };

  ServerSignals();
  ServerSignals(const ServerSignals&) = delete;
  ServerSignals& operator=(const ServerSignals&) = delete;
  ~ServerSignals();

  Request wait() const;
  // Whether the end has been asked for; takes that request.
  bool isEndRequested() const;

 private:
  sigset_t _taken;
  sigset_t _maskBefore;
};

#endif
