// What bounds the batches of an enumeration.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "Cimom/Remote/RemoteBatches.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

QORSmrPtr<IQoriInstanceName> nameOf(int id) {
  const QORSmrPtr<IQoriValue> value(new CQoriValue(QORString(std::to_string(id))));
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty("Id", CQoriType::string, value)));
  const QORSmrPtr<IQoriNameSpacePath> path(new CQoriNameSpacePath(QORString::emptyString(), QORString("root")));
  return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName("A", keys, path));
}

// The number of batches that are taken, at most 5000. `idOf` tells the id of an instance by its batch and its place.
template <class IdOf>
int taken(int instances, std::uint64_t bytes, std::uint64_t most, std::string& complaint, const IdOf& idOf) {
  RemoteBatches batches(most);
  for (int batch = 0; batch < 5000; ++batch) {
    for (int i = 0; i < instances; ++i) {
      const int id = idOf(batch, i);
      batches.addInstance(id < 0 ? QORSmrPtr<IQoriInstanceName>() : nameOf(id));
    }
    try {
      batches.note(bytes);
    } catch (const RemoteEndlessBatches& endless) {
      complaint = endless.what();
      return batch;
    }
  }
  complaint.clear();
  return 5000;
}

TEST(RemoteBatches, ThousandEmptyOnes) {
  std::string complaint;
  EXPECT_EQ(999, taken(0, 10, 1U << 30, complaint, [](int, int) { return 0; }));
  EXPECT_EQ("the server sends empty replies without end", complaint);
}

TEST(RemoteBatches, TheSameAgainAndAgain) {
  std::string complaint;
  EXPECT_EQ(10, taken(3, 10, 1U << 30, complaint, [](int, int i) { return i; }));
  EXPECT_EQ("the server sends the same instances again and again", complaint);
  // In a circle of seven batches.
  EXPECT_EQ(16, taken(3, 10, 1U << 30, complaint, [](int batch, int i) { return batch % 7 * 3 + i; }));
  EXPECT_EQ(10, taken(1, 10, 1U << 30, complaint, [](int, int) { return 1; }));
}

TEST(RemoteBatches, OthersAreTaken) {
  std::string complaint;
  EXPECT_EQ(5000, taken(2, 10, 1U << 30, complaint, [](int batch, int i) { return batch * 2 + i; }));
  // Now and then one that was there.
  EXPECT_EQ(5000, taken(1, 10, 1U << 30, complaint, [](int batch, int) { return batch % 10 == 0 ? batch : 1; }));
  // Without names nobody knows.
  EXPECT_EQ(5000, taken(2, 10, 1U << 30, complaint, [](int, int) { return -1; }));
}

TEST(RemoteBatches, BytesOfAllTogether) {
  std::string complaint;
  EXPECT_EQ(10, taken(1, 100, 1000, complaint, [](int batch, int) { return batch; }));
  EXPECT_EQ("the server has sent more than 1000 bytes, and there is no end of them", complaint);
}

}  // namespace
