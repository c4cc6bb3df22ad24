// Finding stored instances by paths that nobody keeps.
// SPDX-License-Identifier: Apache-2.0
#include <deque>

#include "Cimom/Embedded/PathIndex.h"
#include "EmbeddedFixture.h"

using namespace embeddedtest;
using embedded::hashOfPath;
using embedded::PathIndex;
using embedded::StoredInstance;

namespace {

class PathIndexes : public EmbeddedTest {
 protected:
  StoredInstance& add(const std::string& id, QORuint32 hash) {
    const CimInstanceDeclaration declared = instanceOf("CIM_Disk", {{"DeviceID", text(id.c_str())}});
    instances.push_back({manager.sink().makeObject("root/cimv2", declared), nullptr, 0, hash, false});
    index.reserveOne();
    index.insert(instances.back());
    return instances.back();
  }
  static std::string pathOf(const std::string& id) { return "root/cimv2:CIM_Disk.DeviceID=\"" + id + '"'; }

  std::deque<StoredInstance> instances;
  PathIndex index;
};

TEST_F(PathIndexes, AnEmptyOneFindsNothing) { EXPECT_EQ(nullptr, index.find("x", hashOfPath("x"))); }

TEST_F(PathIndexes, PathsOfOneHashAreToldApart) {
  StoredInstance& a = add("a", 7);
  StoredInstance& b = add("b", 7);
  EXPECT_EQ(&a, index.find(pathOf("a"), 7));
  EXPECT_EQ(&b, index.find(pathOf("b"), 7));
  EXPECT_EQ(nullptr, index.find(pathOf("c"), 7));
}

TEST_F(PathIndexes, RemovingLeavesTheOthersWhereTheyAreFound) {
  // Neighbours that push one another on, also over the end of the table.
  const QORuint32 hashes[] = {15, 15, 14, 0, 15, 31, 1, 14, 2, 0};
  std::vector<StoredInstance*> added;
  for (std::size_t i = 0; i < std::size(hashes); ++i) added.push_back(&add(std::to_string(i), hashes[i]));
  for (const std::size_t gone : {1U, 0U, 7U, 3U, 9U, 2U, 4U, 5U, 6U, 8U}) {
    index.remove(*added[gone]);
    added[gone] = nullptr;
    for (std::size_t i = 0; i < added.size(); ++i) {
      EXPECT_EQ(added[i], index.find(pathOf(std::to_string(i)), hashes[i])) << i << " after " << gone;
    }
  }
}

TEST_F(PathIndexes, ManyAreFound) {
  std::vector<StoredInstance*> added;
  for (int i = 0; i < 1000; ++i) {
    const std::string path = pathOf(std::to_string(i));
    added.push_back(&add(std::to_string(i), hashOfPath(path)));
  }
  for (int i = 0; i < 1000; ++i) {
    const std::string path = pathOf(std::to_string(i));
    ASSERT_EQ(added[static_cast<std::size_t>(i)], index.find(path, hashOfPath(path)));
  }
}

}  // namespace
