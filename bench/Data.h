// The rows that the benchmarks work on; row i depends on i and the number of pools alone.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_DATA_H
#define QORQL_BENCH_DATA_H

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

// Sizes are spread evenly below this, so `Size > kMiddleSize` keeps half of the disks.
inline constexpr std::uint64_t kSizeRange = std::uint64_t{1} << 40;
inline constexpr std::uint64_t kMiddleSize = kSizeRange / 2;
// The part of a name that one disk in ten has.
inline constexpr const char* kNeedle = "unip";

struct DiskRow {
  std::string deviceId;
  std::string name;
  std::uint64_t size;
  std::uint32_t blockSize;
  std::uint16_t status;  // 0 to 4, evenly
  bool isEnabled;
  double load;         // k/4096, so that sums are exact in any order
  bool hasPool;        // two in a hundred have none
  std::string poolId;  // three in a hundred name a pool that does not exist
  std::vector<std::uint16_t> operationalStatus;
};

struct PoolRow {
  std::string poolId;
  std::string name;
  std::uint64_t capacity;  // `Size > Capacity` holds for one pair in twenty
};

// Even bits, the same for the same two numbers.
std::uint64_t mixed(std::uint64_t index, std::uint64_t field);
// A text of a printf format with one number.
std::string numbered(const char* format, std::uint64_t number);

DiskRow diskRow(std::uint64_t index, std::uint64_t pools);
PoolRow poolRow(std::uint64_t index);

}  // namespace bench

#endif
