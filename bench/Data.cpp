// Values come from a mixing function over index and field, so that rows need no state.
// SPDX-License-Identifier: Apache-2.0
#include "bench/Data.h"

#include <array>
#include <cinttypes>
#include <cstdio>

namespace bench {

std::uint64_t mixed(std::uint64_t index, std::uint64_t field) {
  std::uint64_t bits = index * 0x9E3779B97F4A7C15u + field * 0xD1B54A32D192ED03u + 0x2545F4914F6CDD1Du;
  bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9u;
  bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
  return bits ^ (bits >> 31);
}

std::string numbered(const char* format, std::uint64_t number) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), format, number);
  return text.data();
}

namespace {

std::string diskName(std::uint64_t index) {
  static constexpr std::array<const char*, 10> kMakes = {"Alder", "Birch",   "Cedar",     "Dogwood",    "Elm",
                                                         "Fir",   "Juniper", "R&D <lab>", "Bay \"15\"", "Hazel"};
  const std::uint64_t which = mixed(index, 1);
  if (which % 64 == 0) return "abc";
  return kMakes[(which >> 8) % kMakes.size()] + numbered("-%012" PRIx64, mixed(index, 2) >> 16) +
         numbered("-%05" PRIu64, index % 100000);
}

}  // namespace

DiskRow diskRow(std::uint64_t index, std::uint64_t pools) {
  DiskRow row;
  row.deviceId = numbered("disk%08" PRIu64, index);
  row.name = diskName(index);
  row.size = mixed(index, 3) % kSizeRange;
  row.blockSize = (mixed(index, 4) & 1) != 0 ? 4096 : 512;
  row.status = static_cast<std::uint16_t>(mixed(index, 5) % 5);
  row.isEnabled = mixed(index, 6) % 10 != 0;
  row.load = static_cast<double>(mixed(index, 7) % 4096) / 4096;
  const std::uint64_t pool = mixed(index, 8);
  row.hasPool = pool % 100 >= 2;
  row.poolId = pool % 100 < 5 ? "pool-gone" : numbered("pool%06" PRIu64, (pool >> 8) % pools);
  const std::uint64_t status = mixed(index, 9);
  for (std::uint64_t i = 0; i <= status % 3; ++i) {
    row.operationalStatus.push_back(static_cast<std::uint16_t>((status >> (8 * (i + 1))) % 20));
  }
  return row;
}

PoolRow poolRow(std::uint64_t index) {
  PoolRow row;
  row.poolId = numbered("pool%06" PRIu64, index);
  row.name = numbered("Pool #%" PRIu64, index) + ((mixed(index, 21) & 1) != 0 ? " <fast & hot>" : " archive tier");
  row.capacity = mixed(index, 22) % (10 * kSizeRange);
  return row;
}

}  // namespace bench
