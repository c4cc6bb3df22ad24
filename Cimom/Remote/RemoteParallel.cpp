// Threads live as long as one run: a call to a server costs far more than a thread.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteParallel.h"

#include <signal.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace {

constinit thread_local bool isWorker = false;

constexpr std::chrono::milliseconds kPatience{50};

// Those of the program are for its own thread, and a server that goes away ends a write, not the program.
void blockSignals() noexcept {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

}  // namespace

bool RemoteParallel::run(std::size_t count, const std::function<void(std::size_t)>& work) {
  if (isWorker) {
    for (std::size_t i = 0; i < count; ++i) work(i);
    return !_isStopped;
  }
  std::mutex mutex;
  std::condition_variable ended;
  std::size_t done = 0;
  std::atomic<std::size_t> next{0};
  const auto serve = [&] {
    isWorker = true;
    blockSignals();
    for (std::size_t i = next++; i < count; i = next++) {
      work(i);
      const std::lock_guard lock(mutex);
      if (++done == count) ended.notify_one();
    }
  };
  std::vector<std::jthread> threads;
  for (std::size_t i = 0; i < std::min(count, _threads); ++i) threads.emplace_back(serve);
  std::unique_lock lock(mutex);
  while (!ended.wait_for(lock, kPatience, [&] { return done == count; })) {
    lock.unlock();
    if (_isStopRequested != nullptr && _isStopRequested()) _isStopped = true;
    lock.lock();
  }
  lock.unlock();
  threads.clear();
  return !_isStopped.exchange(false);
}
