// The rows of the mixed world: devices of a class and its subclass, and the trays that hold them.
// Row i depends on i and the number of trays alone.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_MIXEDDATA_H
#define QORQL_BENCH_MIXEDDATA_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

// The temperature that about a quarter of the devices exceed; half have none.
inline constexpr std::int32_t kWarm = 40;
// The state that about a third of the devices are in, among others.
inline constexpr std::uint16_t kWantedState = 2;

struct DeviceRow {
  bool isSolidState;  // one in three: of the subclass
  std::string deviceId;
  std::string name;
  std::uint64_t size;
  std::string installDate;           // a timestamp in UTC
  std::vector<std::uint16_t> state;  // one to three elements
  bool hasTemperature;               // half have none
  std::int32_t temperature;
  std::uint64_t tray;
};

DeviceRow deviceRow(std::uint64_t index, std::uint64_t trays);
std::string trayId(std::uint64_t index);
std::uint64_t trayCount(std::uint64_t devices);

// The microseconds since 1970 that a timestamp in full stands for.
std::int64_t microsecondsOf(std::string_view timestamp);

}  // namespace bench

#endif
