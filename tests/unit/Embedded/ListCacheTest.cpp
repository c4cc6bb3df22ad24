// Which lists the cache keeps, and for how long.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/ListCache.h"
#include "EmbeddedFixture.h"

using embedded::ClassEntry;
using embedded::ListCache;

namespace {

// The entry of a class that is there from the start.
struct PlainEntry : ClassEntry {
  PlainEntry() : ClassEntry(QORSmrPtr<IQoriClass>(new CQoriClass("root/cimv2", declaration(), nullptr)), nullptr) {}
  static CimClassDeclaration declaration() {
    CimClassDeclaration plain;
    plain.name = "T_Plain";
    return plain;
  }
};

CIMApi::Instances listOf(QORuint32 entries) {
  const CIMApi::Instances list(new QORValSlist<QORSmrPtr<IQoriObject>>);
  for (QORuint32 i = 0; i < entries; ++i) list->append(QORSmrPtr<IQoriObject>());
  return list;
}

TEST(ListCaches, AListIsFoundByClassNamesAndVersion) {
  ListCache cache;
  PlainEntry one;
  PlainEntry two;
  const CIMApi::Instances list = listOf(1);
  cache.put(one, "*", 7, list);
  EXPECT_TRUE(cache.find(two, "*", 7).IsNull());
  EXPECT_TRUE(cache.find(one, "", 7).IsNull());
  EXPECT_TRUE(cache.find(one, "*", 7) == list);
  EXPECT_TRUE(cache.find(one, "*", 8).IsNull());
  EXPECT_TRUE(cache.find(one, "*", 7).IsNull()) << "a stale list is dropped when it is met";
}

TEST(ListCaches, TheListUsedLongestAgoLeaves) {
  ListCache cache;
  PlainEntry entry;
  for (std::size_t i = 0; i < ListCache::kMaximumLists; ++i) cache.put(entry, std::to_string(i), 1, listOf(1));
  EXPECT_FALSE(cache.find(entry, "0", 1).IsNull());
  cache.put(entry, "one more", 1, listOf(1));
  EXPECT_FALSE(cache.find(entry, "0", 1).IsNull());
  EXPECT_TRUE(cache.find(entry, "1", 1).IsNull());
  EXPECT_FALSE(cache.find(entry, "2", 1).IsNull());
}

TEST(ListCaches, InstancesAreBoundedInTotal) {
  ListCache cache;
  PlainEntry entry;
  const CIMApi::Instances half = listOf(ListCache::kMaximumInstances / 2);
  cache.put(entry, "a", 1, half);
  cache.put(entry, "b", 1, half);
  EXPECT_FALSE(cache.find(entry, "a", 1).IsNull());
  cache.put(entry, "c", 1, listOf(1));
  EXPECT_TRUE(cache.find(entry, "b", 1).IsNull());
  EXPECT_FALSE(cache.find(entry, "a", 1).IsNull());
  EXPECT_FALSE(cache.find(entry, "c", 1).IsNull());
  cache.put(entry, "d", 1, listOf(ListCache::kMaximumInstances + 1));
  EXPECT_TRUE(cache.find(entry, "d", 1).IsNull());
  EXPECT_FALSE(cache.find(entry, "a", 1).IsNull());
}

TEST(ListCaches, PuttingAgainReplaces) {
  ListCache cache;
  PlainEntry entry;
  cache.put(entry, "a", 1, listOf(1));
  const CIMApi::Instances fresh = listOf(2);
  cache.put(entry, "a", 2, fresh);
  EXPECT_TRUE(cache.find(entry, "a", 2) == fresh);
  EXPECT_TRUE(cache.find(entry, "a", 1).IsNull());
  EXPECT_TRUE(cache.find(entry, "a", 1).IsNull()) << "the list that was replaced is gone";
}

TEST(ListCaches, AListThatLeavesMakesRoom) {
  ListCache cache;
  PlainEntry entry;
  const CIMApi::Instances most = listOf(ListCache::kMaximumInstances - 2);
  cache.put(entry, "stale", 1, most);
  EXPECT_TRUE(cache.find(entry, "stale", 2).IsNull());
  cache.put(entry, "a", 1, listOf(2));
  cache.put(entry, "b", 1, most);
  EXPECT_FALSE(cache.find(entry, "a", 1).IsNull());
  cache.put(entry, "b", 2, most);
  EXPECT_FALSE(cache.find(entry, "a", 1).IsNull());
  EXPECT_FALSE(cache.find(entry, "b", 2).IsNull());
}

}  // namespace
