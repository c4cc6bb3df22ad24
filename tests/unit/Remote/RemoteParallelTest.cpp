// Work that is done at the same time while the caller waits.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "Cimom/Remote/RemoteParallel.h"

namespace {

TEST(RemoteParallel, DoesEachWorkOnceAndNoMoreThanItMayAtATime) {
  RemoteParallel parallel(3);
  std::vector<std::atomic<int>> done(50);
  std::atomic<int> now{0};
  std::atomic<int> most{0};
  EXPECT_TRUE(parallel.run(done.size(), [&](std::size_t i) {
    const int running = ++now;
    for (int seen = most; seen < running && !most.compare_exchange_weak(seen, running);) continue;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    ++done[i];
    --now;
  }));
  EXPECT_TRUE(std::all_of(done.begin(), done.end(), [](const auto& count) { return count == 1; }));
  EXPECT_LE(most, 3);
  EXPECT_GE(most, 2);
}

TEST(RemoteParallel, NoWorkIsDoneAtOnce) {
  EXPECT_TRUE(RemoteParallel(3).run(0, [](std::size_t) { FAIL(); }));
}

TEST(RemoteParallel, WorkOfWorkIsDoneByTheSameThread) {
  RemoteParallel parallel(2);
  std::atomic<int> done{0};
  EXPECT_TRUE(parallel.run(4, [&](std::size_t) {
    const std::thread::id own = std::this_thread::get_id();
    EXPECT_TRUE(parallel.run(3, [&](std::size_t) {
      EXPECT_EQ(own, std::this_thread::get_id());
      ++done;
    }));
  }));
  EXPECT_EQ(12, done);
}

TEST(RemoteParallel, RequestIsAskedForOnTheCallersThreadAndEndsWithTheRun) {
  RemoteParallel parallel(2);
  const std::thread::id caller = std::this_thread::get_id();
  parallel.setStopRequest([caller] { return std::this_thread::get_id() == caller; });
  EXPECT_FALSE(parallel.run(2, [&](std::size_t) {
    while (!parallel.isStopped()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }));
  EXPECT_FALSE(parallel.isStopped());
  parallel.setStopRequest({});
  EXPECT_TRUE(parallel.run(1, [](std::size_t) {}));
}

}  // namespace
