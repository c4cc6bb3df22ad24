// Waiting that ends early at a signal, or when the reader of the output has gone.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_ENDREQUEST_H
#define QORQL_TOOL_ENDREQUEST_H

#include <signal.h>

#include <chrono>

// While it lives, SIGINT and SIGTERM end the waiting instead of the process;
// one that arrives in between ends the next. One at a time, on the main thread.
class EndRequest {
 public:
  EndRequest();
  EndRequest(const EndRequest&) = delete;
  EndRequest& operator=(const EndRequest&) = delete;
  ~EndRequest();

  // Returns whether the end was asked for before the time was over: by a
  // signal, or by the reader of standard output who has closed the pipe.
  bool waitFor(std::chrono::nanoseconds duration) const;

 private:
  sigset_t _maskBefore;
  struct sigaction _interruptBefore;
  struct sigaction _terminateBefore;
};

#endif
