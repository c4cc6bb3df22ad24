// Jobs are done, and what they hold ends, without holding up who gives others.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <future>
#include <memory>

#include "Cimom/Server/ServiceJanitor.h"

namespace {

constexpr std::chrono::seconds kLong{20};

TEST(ServiceJanitor, DoesWhatItIsGivenInOrder) {
  ServiceJanitor janitor;
  std::vector<int> done;
  std::promise<void> end;
  for (int job = 0; job < 3; ++job) janitor.add([&done, job] { done.push_back(job); });
  janitor.add([&end] { end.set_value(); });
  ASSERT_EQ(end.get_future().wait_for(kLong), std::future_status::ready);
  EXPECT_EQ(done, (std::vector<int>{0, 1, 2}));
}

// As a listener does whose thread is waited for while others give jobs.
TEST(ServiceJanitor, TakesJobsWhileWhatAnotherHeldEnds) {
  struct Waits {
    ~Waits() { hasEnded.set_value(given.wait_for(kLong) == std::future_status::ready); }
    std::future<void> given;
    std::promise<bool>& hasEnded;
  };
  ServiceJanitor janitor;
  std::promise<void> given;
  std::promise<bool> ended;
  std::promise<void> isRunning;
  auto held = std::shared_ptr<Waits>(new Waits{given.get_future(), ended});
  janitor.add([&isRunning, kept = std::move(held)] { isRunning.set_value(); });
  isRunning.get_future().wait();
  janitor.add([] {});
  given.set_value();
  EXPECT_TRUE(ended.get_future().get());
}

}  // namespace
