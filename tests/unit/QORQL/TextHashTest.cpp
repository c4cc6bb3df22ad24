// The hash of texts: equal for equal texts wherever they lie, and rarely for others.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "Cimom/QORQL/QORQL_TextHash.h"

namespace {

TEST(TextHash, IsTheSameWhereverTheTextLies) {
  const std::string text = "a text of more than two words";
  for (std::size_t shift = 0; shift < 9; ++shift) {
    const std::string copy = std::string(shift, 'x') + text + "behind";
    EXPECT_EQ(QORQL_hashText(std::string_view(copy).substr(shift, text.size())), QORQL_hashText(text)) << shift;
  }
}

TEST(TextHash, TellsTextsApartThatDifferInOneByte) {
  for (std::size_t length = 1; length < 40; ++length) {
    const std::string text(length, 'a');
    std::set<QORuint64> hashes{QORQL_hashText(text)};
    for (std::size_t at = 0; at < length; ++at) {
      std::string other = text;
      other[at] = 'b';
      EXPECT_TRUE(hashes.insert(QORQL_hashText(other)).second) << length << " at " << at;
    }
  }
}

TEST(TextHash, CountsZeroBytesAndTheLength) {
  std::set<QORuint64> hashes;
  for (std::size_t length = 0; length < 40; ++length) {
    EXPECT_TRUE(hashes.insert(QORQL_hashText(std::string(length, '\0'))).second) << length;
  }
}

// An index takes the low bits of a hash: numbers that count up must not meet there.
TEST(TextHash, SpreadsItsLowBits) {
  std::set<QORuint64> places;
  for (int i = 0; i < 4096; ++i) places.insert(QORQL_hashText("Disk" + std::to_string(i)) % 4096);
  EXPECT_GT(places.size(), 2300U);  // chance alone gives 2,589
}

}  // namespace
