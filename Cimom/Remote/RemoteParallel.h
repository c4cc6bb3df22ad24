// Calls to several servers at the same time.
// Tested by tests/remote/tool_server_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTEPARALLEL_H
#define QORQL_REMOTE_REMOTEPARALLEL_H

#include <atomic>
#include <cstddef>
#include <functional>
#include <utility>

// Runs work on threads of its own, while the caller's thread waits and asks
// whether to stop: what it asks need not know of threads.
class RemoteParallel {
 public:
  // Asked a few times a second, on the caller's thread.
  using StopRequest = std::function<bool()>;

  explicit RemoteParallel(std::size_t threads) : _threads(threads) {}
  RemoteParallel(const RemoteParallel&) = delete;
  RemoteParallel& operator=(const RemoteParallel&) = delete;

  void setStopRequest(StopRequest request) { _isStopRequested = std::move(request); }
  // True from a request to stop until all work has ended.
  const std::atomic<bool>& isStopped() const noexcept { return _isStopped; }

  // Calls work(0) ... work(count - 1), some at the same time, and returns when all have
  // ended; false when it was to stop. Work THROWS nothing. Work that calls this runs what it is given itself,
  // one after the other.
  bool run(std::size_t count, const std::function<void(std::size_t)>& work);

 private:
  const std::size_t _threads;
  StopRequest _isStopRequested;
  std::atomic<bool> _isStopped{false};
};

#endif
