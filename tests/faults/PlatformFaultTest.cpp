// Every call that a query or a match makes into the platform goes wrong once, in
// each way. Nothing crashes, the error is one that the platform or the engine
// states, and the next run is as if nothing had been.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "FaultPlan.h"
#include "FaultRun.h"
#include "FaultyModel.h"
#include "FaultyPlatform.h"

namespace {

using Mode = QORQL_DataTable::ExecutionMode;
using Objects = FaultyPlatform::Objects;

constexpr FaultPlan::Kind kKinds[] = {FaultPlan::kNull,          FaultPlan::kGarbage,       FaultPlan::kPlatformError,
                                      FaultPlan::kProviderError, FaultPlan::kStandardError, FaultPlan::kNumber};

// The error that a fault makes when nobody handles it.
std::string thrownBy(FaultPlan::Kind kind) {
  switch (kind) {
    case FaultPlan::kPlatformError:
      return "platform 7: the platform failed";
    case FaultPlan::kProviderError:
      return "provider 1: the provider failed";
    case FaultPlan::kStandardError:
      return "std: the library failed";
    case FaultPlan::kNumber:
      return "int";
    case FaultPlan::kNull:
      return "NullPointer 0: Null pointer in ";
    default:
      return "CIM_Value 0: ";
  }
}

bool isStated(const std::string& error, FaultPlan::Kind kind) {
  return error.empty() || error.starts_with("runtime ") || error.starts_with("parse ") ||
         error.starts_with(thrownBy(kind));
}

class PlatformFaults : public testing::TestWithParam<std::tuple<std::size_t, Mode, Objects>> {
 protected:
  ~PlatformFaults() override { FaultyPlatform::setObjects(Objects::kAsTheyAre); }
  FaultWorld world;
};

TEST_P(PlatformFaults, AtEveryCallOfAQuery) {
  const auto [index, mode, objects] = GetParam();
  const std::string& query = kFaultQueries.at(index);
  const FaultOutcome genuine = world.query(query, mode);
  FaultyPlatform::setObjects(objects);
  const FaultOutcome expected = world.query(query, mode);
  EXPECT_EQ(expected.error, genuine.error) << "the proxies alone change nothing";
  EXPECT_EQ(expected.rows, genuine.rows);
  EXPECT_EQ(expected.stream, genuine.stream);
  for (const FaultPlan::Kind kind : kKinds) {
    bool hasStruck = true;
    for (unsigned long k = 1; hasStruck; ++k) {
      FaultPlan::arm(k, kind);
      const FaultOutcome outcome = world.query(query, mode);
      hasStruck = FaultPlan::hasStruck();
      FaultPlan::disarm();
      ASSERT_TRUE(isStated(outcome.error, kind)) << "kind " << kind << ", call " << k << ": " << outcome.error;
      ASSERT_EQ(world.query(query, mode), expected) << "the query after kind " << kind << ", call " << k;
    }
  }
}

// The plain algorithm does not use layouts.
INSTANTIATE_TEST_SUITE_P(Lazy, PlatformFaults,
                         testing::Combine(testing::Range<std::size_t>(0, kFaultQueries.size()),
                                          testing::Values(QORQL_DataTable::kExecutionLazy),
                                          testing::Values(Objects::kWithLayout, Objects::kWithoutLayout)));
INSTANTIATE_TEST_SUITE_P(Plain, PlatformFaults,
                         testing::Combine(testing::Range<std::size_t>(0, kFaultQueries.size()),
                                          testing::Values(QORQL_DataTable::kExecutionPlain),
                                          testing::Values(Objects::kWithoutLayout)));

class MatchFaults : public testing::TestWithParam<std::tuple<std::size_t, Objects>> {
 protected:
  ~MatchFaults() override { FaultyPlatform::setObjects(Objects::kAsTheyAre); }
  FaultWorld world;
};

// Whatever goes wrong on the way, validation refuses and a match says no.
bool isStatedStep(const std::string& step, const std::string& expected) {
  return step == expected || step == "no match" || step == "match" ||
         step == "validity " + std::to_string(QUERY_INVALID_QUERY) || step.ends_with("CQL internal error") ||
         step.ends_with("Query validation failed") || step.ends_with("query is not validated ");
}

TEST_P(MatchFaults, AtEveryCallOfAMatch) {
  const auto [index, objects] = GetParam();
  const std::string& filter = kFaultFilters.at(index);
  for (const QORSmrPtr<IQoriObject>& indication : world.indications(kFaultIndications)) {
    FaultyPlatform::setObjects(objects);
    const QORSmrPtr<IQoriObject> proxy(FaultyPlatform::proxyOf(indication));
    const FaultOutcome expected = world.match(filter, proxy);
    EXPECT_EQ(expected.rows, world.match(filter, indication).rows) << "the proxies alone change nothing";
    for (const FaultPlan::Kind kind : kKinds) {
      bool hasStruck = true;
      for (unsigned long k = 1; hasStruck; ++k) {
        FaultPlan::arm(k, kind);
        const FaultOutcome outcome = world.match(filter, proxy);
        hasStruck = FaultPlan::hasStruck();
        FaultPlan::disarm();
        for (std::size_t i = 0; i < outcome.rows.size(); ++i) {
          ASSERT_TRUE(isStatedStep(outcome.rows[i], expected.rows.size() > i ? expected.rows[i] : ""))
              << "kind " << kind << ", call " << k << ": " << outcome.rows[i];
        }
        ASSERT_EQ(world.match(filter, proxy), expected) << "the match after kind " << kind << ", call " << k;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Each, MatchFaults,
                         testing::Combine(testing::Range<std::size_t>(0, kFaultFilters.size()),
                                          testing::Values(Objects::kWithLayout, Objects::kWithoutLayout)));

// The class repository is sound here: what goes wrong is the instance alone.
TEST_P(MatchFaults, OfTheInstanceMakeItNotMatch) {
  const auto [index, objects] = GetParam();
  const QORString nameSpace("root/cimv2");
  CQLQueryStatement filter("CQL", kFaultFilters.at(index).c_str(), nameSpace, "");
  if (filter.validate() != QUERY_VALIDATE_SUCCESS) return;
  for (const QORSmrPtr<IQoriObject>& indication : world.indications(kFaultIndications)) {
    const QORSmrPtr<IQoriObject> proxy(faulty::wrap(indication, objects == Objects::kWithLayout));
    const bool expected = filter.isMatch(indication, nameSpace);
    for (const FaultPlan::Kind kind : kKinds) {
      bool hasStruck = true;
      for (unsigned long k = 1; hasStruck; ++k) {
        FaultPlan::arm(k, kind);
        bool isMatch = false;
        EXPECT_NO_THROW(isMatch = filter.isMatch(proxy, nameSpace)) << "kind " << kind << ", call " << k;
        hasStruck = FaultPlan::hasStruck();
        FaultPlan::disarm();
        const bool isThrown = hasStruck && kind != FaultPlan::kNull && kind != FaultPlan::kGarbage;
        EXPECT_TRUE(hasStruck && !isThrown ? true : isMatch == (expected && !isThrown))
            << "kind " << kind << ", call " << k;
      }
    }
  }
}

}  // namespace
