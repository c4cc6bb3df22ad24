// Whatever a condition lets through is found at one of the places where its filter stands.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "Cimom/QORQL/Filter/CQLFilterKeys.h"

namespace {

constexpr QORuint64 kPath = 12345;

QoriScalar real(double value) {
  QoriScalar scalar;
  scalar.kind = QoriScalarKind::Real;
  scalar.r = value;
  return scalar;
}
QoriScalar unsignedNumber(QORuint64 value) {
  QoriScalar scalar;
  scalar.kind = QoriScalarKind::Unsigned;
  scalar.u = value;
  return scalar;
}

bool meet(const std::vector<QORuint64>& keys, const cqlkeys::Probes& probes) {
  return std::any_of(probes.keys().begin(), probes.keys().end(),
                     [&](QORuint64 probe) { return std::find(keys.begin(), keys.end(), probe) != keys.end(); });
}

TEST(CQLFilterKeys, NamesHaveNoCase) {
  EXPECT_EQ(cqlkeys::foldedHash(1, "CIM_Disk"), cqlkeys::foldedHash(1, "cim_dISK"));
  EXPECT_NE(cqlkeys::foldedHash(1, "CIM_Disk"), cqlkeys::foldedHash(2, "CIM_Disk"));
  EXPECT_NE(cqlkeys::foldedHash(1, "CIM_Disk"), cqlkeys::foldedHash(1, "CIM_Dis"));
  EXPECT_EQ(cqlkeys::classHash("ROOT/cimv2", "cim_disk"), cqlkeys::classHash("root/cimv2", "CIM_Disk"));
  EXPECT_NE(cqlkeys::directoryHash(7), cqlkeys::restHash(7));
}

TEST(CQLFilterKeys, EqualNumbersMeetWhateverTheirTypes) {
  std::vector<QORuint64> keys;
  cqlkeys::addEqualKeys(kPath, unsignedNumber(42), keys);
  ASSERT_FALSE(keys.empty());
  EXPECT_TRUE(meet(keys, cqlkeys::Probes(kPath, unsignedNumber(42), true, 0)));
  EXPECT_TRUE(meet(keys, cqlkeys::Probes(kPath, real(42), true, 0)));
  EXPECT_FALSE(meet(keys, cqlkeys::Probes(kPath, unsignedNumber(43), true, 0)));
  EXPECT_FALSE(meet(keys, cqlkeys::Probes(kPath + 1, unsignedNumber(42), true, 0)));
}

TEST(CQLFilterKeys, NumbersOfARangeMeetIt) {
  cqlkeys::Range range;
  EXPECT_FALSE(range.isNarrowed());
  cqlkeys::narrow(range, QoriRelation::GreaterEqual, unsignedNumber(100));
  EXPECT_FALSE(range.isBounded());
  cqlkeys::narrow(range, QoriRelation::Less, unsignedNumber(1000));
  EXPECT_TRUE(range.isNarrowed());
  EXPECT_TRUE(range.isBounded());
  std::vector<QORuint64> keys;
  QORuint64 levels = 0;
  cqlkeys::addRangeKeys(kPath, range, keys, levels);
  EXPECT_LT(keys.size(), 64U);
  for (QORuint64 value = 100; value < 1000; ++value) {
    EXPECT_TRUE(meet(keys, cqlkeys::Probes(kPath, unsignedNumber(value), false, levels))) << value;
  }
  EXPECT_TRUE(meet(keys, cqlkeys::Probes(kPath, real(999.5), false, levels)));
  for (const QORuint64 value : {0ULL, 5000ULL, 1000000ULL}) {
    EXPECT_FALSE(meet(keys, cqlkeys::Probes(kPath, unsignedNumber(value), false, levels))) << value;
  }
}

TEST(CQLFilterKeys, RangesOfEveryMagnitudeAreCovered) {
  for (double least = -1e300; least < 1e300; least = least < -1e-3 ? least / 977 : least < 1e-3 ? 1e-3 : least * 977) {
    cqlkeys::Range range{least, least + std::abs(least)};
    std::vector<QORuint64> keys;
    QORuint64 levels = 0;
    cqlkeys::addRangeKeys(kPath, range, keys, levels);
    for (const double value : {range.least, (range.least + range.greatest) / 2, range.greatest}) {
      EXPECT_TRUE(meet(keys, cqlkeys::Probes(kPath, real(value), false, levels))) << least << " has not " << value;
    }
  }
}

}  // namespace
