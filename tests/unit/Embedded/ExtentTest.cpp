// Creation order through removals and late insertions.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "Cimom/Embedded/Extent.h"

using embedded::Extent;
using embedded::StoredInstance;
using testing::ElementsAre;

namespace {

std::vector<QORuint64> sequences(const Extent& extent) {
  std::vector<QORuint64> result;
  extent.forEach([&](const StoredInstance& instance) { result.push_back(instance.sequence); });
  return result;
}

class Extents : public ::testing::Test {
 protected:
  Extents() : instances(200) {
    for (std::size_t i = 0; i < instances.size(); ++i) instances[i].sequence = i;
  }
  std::vector<StoredInstance> instances;
  Extent extent;
};

TEST_F(Extents, LateInsertionsFindTheirPlace) {
  for (const std::size_t i : {5u, 9u, 7u, 1u}) extent.insert(instances[i]);
  EXPECT_THAT(sequences(extent), ElementsAre(1, 5, 7, 9));
}

TEST_F(Extents, AnInstanceStandsThereOnce) {
  for (const std::size_t i : {5u, 9u, 5u, 9u}) extent.insert(instances[i]);
  EXPECT_THAT(sequences(extent), ElementsAre(5, 9));
  EXPECT_EQ(2u, extent.size());
}

TEST_F(Extents, RemovedInstancesMayReturnToTheirPlace) {
  for (const std::size_t i : {1u, 2u, 3u}) extent.insert(instances[i]);
  extent.remove(instances[2]);
  extent.remove(instances[2]);
  EXPECT_THAT(sequences(extent), ElementsAre(1, 3));
  extent.insert(instances[2]);
  EXPECT_THAT(sequences(extent), ElementsAre(1, 2, 3));
  EXPECT_EQ(3u, extent.size());
}

TEST_F(Extents, ManyRemovalsCloseTheGaps) {
  for (StoredInstance& instance : instances) extent.insert(instance);
  for (std::size_t i = 0; i < 197; ++i) extent.remove(instances[i]);
  EXPECT_THAT(sequences(extent), ElementsAre(197, 198, 199));
  extent.insert(instances[0]);
  EXPECT_THAT(sequences(extent), ElementsAre(0, 197, 198, 199));
}

}  // namespace
