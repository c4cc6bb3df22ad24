// Another object manager takes the place of one that nobody changes any more.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <future>
#include <new>

#include "Cimom/Server/ServerModel.h"

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLong{10000};
constexpr milliseconds kMoment{20};

ServerModel::Manager newManager() { return std::make_shared<EmbeddedObjectManager>(); }

TEST(ServerModel, ALeaseIsTheManager) {
  const ServerModel::Manager manager = newManager();
  CountedModel model(manager);
  EXPECT_EQ(model.lease().get(), manager.get());
}

TEST(ServerModel, AnotherTakesItsPlaceWhileTheFirstIsHeld) {
  const ServerModel::Manager first = newManager();
  CountedModel model(first);
  const ServerModel::Manager held = model.lease();
  const ServerModel::Manager next = newManager();
  EmbeddedObjectManager* meanwhile = nullptr;
  EXPECT_TRUE(model.replace(
      next, [&] { meanwhile = model.lease().get(); }, kMoment));
  EXPECT_EQ(meanwhile, first.get());
  EXPECT_EQ(held.get(), first.get());
  EXPECT_EQ(model.lease().get(), next.get());
}

TEST(ServerModel, ACopyOfALeaseForAChangeKeepsItInItsPlace) {
  const ServerModel::Manager first = newManager();
  CountedModel model(first);
  ServerModel::Manager copy;
  {
    const ServerModel::Manager lease = model.leaseForChange();
    copy = lease;
  }
  bool hasTaken = false;
  EXPECT_FALSE(model.replace(
      newManager(), [&] { hasTaken = true; }, kMoment));
  EXPECT_FALSE(hasTaken);
  EXPECT_EQ(model.lease().get(), first.get());
  EXPECT_EQ(model.leaseForChange().get(), first.get());
  copy.reset();
  EXPECT_TRUE(model.replace(
      newManager(), [] {}, kMoment));
}

TEST(ServerModel, WhatFailsWhileAnotherComesLeavesItOpen) {
  const ServerModel::Manager first = newManager();
  CountedModel model(first);
  EXPECT_THROW(model.replace(
                   newManager(), [] { throw std::bad_alloc(); }, kMoment),
               std::bad_alloc);
  EXPECT_EQ(model.lease().get(), first.get());
  EXPECT_EQ(model.leaseForChange().get(), first.get());
}

TEST(ServerModel, WhoWantsToChangeSomethingWaitsWhileAnotherComes) {
  CountedModel model(newManager());
  const ServerModel::Manager next = newManager();
  ServerModel::Manager held = model.leaseForChange();
  auto replaced = std::async(std::launch::async, [&] {
    return model.replace(
        next, [] {}, kLong);
  });
  std::future<EmbeddedObjectManager*> late;
  while (!late.valid() || late.wait_for(kMoment) == std::future_status::ready) {
    late = std::async(std::launch::async, [&] { return model.leaseForChange().get(); });
  }
  held.reset();
  EXPECT_TRUE(replaced.get());
  EXPECT_EQ(late.get(), next.get());
}

TEST(ServerModel, TheOneBeforeEndsWithItsPlace) {
  ServerModel::Manager first = newManager();
  const std::weak_ptr<EmbeddedObjectManager> watched = first;
  CountedModel model(std::move(first));
  model.lease();
  EXPECT_TRUE(model.replace(
      newManager(), [] {}, kMoment));
  EXPECT_TRUE(watched.expired());
}

}  // namespace
