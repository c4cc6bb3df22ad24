// Lists by index, while they change.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "cmpbase/QORValSlist.h"

namespace {

using List = QORValSlist<int>;
using Values = std::vector<int>;

// Long walks by index leave a note of the items' places; nothing that changes the list may make it lie.
TEST(ListByIndex, IsRightWhateverChangesInBetween) {
  std::mt19937 random(20);
  const auto below = [&](std::size_t bound) { return static_cast<QORuint32>(random() % bound); };
  List list;
  Values values;
  for (int i = 0; i < 200; ++i) {
    list.append(i);
    values.push_back(i);
  }
  for (int round = 0; round < 3000; ++round) {
    const QORuint32 index = below(values.size());
    switch (below(8)) {
      case 0:
        list.append(round);
        values.push_back(round);
        break;
      case 1:
        list.insertAt(index, round);
        values.insert(values.begin() + index, round);
        break;
      case 2:
        EXPECT_EQ(list.removeAt(index), values[index]);
        values.erase(values.begin() + index);
        break;
      case 3:
        if (below(20) == 0) {
          list.sort(List::Ascending);
          std::sort(values.begin(), values.end());
        }
        break;
      default:
        break;
    }
    for (int i = 0; i < 40; ++i) {
      const QORuint32 place = below(values.size());
      ASSERT_EQ(list.at(place), values[place]) << "round " << round;
    }
    if (below(50) == 0) {
      List moved(std::move(list));
      list = moved;
      ASSERT_EQ(moved.at(moved.entries() / 2), values[values.size() / 2]);
    }
  }
  for (QORuint32 i = 0; i < list.entries(); ++i) EXPECT_EQ(list[i], values[i]);
  EXPECT_EQ(list.entries(), values.size());
}

}  // namespace
