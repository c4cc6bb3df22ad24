// An object manager with a class and its subclass, with datetimes, arrays and NULLs, and associations.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_MIXEDWORLD_H
#define QORQL_BENCH_MIXEDWORLD_H

#include "bench/World.h"

namespace bench {

inline constexpr const char* kDeviceClass = "EX_Device";
inline constexpr const char* kSolidStateClass = "EX_SolidState";  // its subclass: one in three
inline constexpr const char* kTrayClass = "EX_Tray";              // a hundredth of the devices
inline constexpr const char* kInTrayClass = "EX_InTray";          // one for each device

// The properties' positions, of a subclass too.
enum DevicePosition : QORuint32 { kDeviceKey, kDeviceName, kDeviceSize, kInstallDate, kState, kTemperature };
enum TrayPosition : QORuint32 { kTrayKey, kTrayName };

class MixedWorld final : public World {
 public:
  explicit MixedWorld(std::uint64_t devices);
  std::vector<const char*> classes() const override { return {kDeviceClass, kTrayClass, kInTrayClass}; }

 private:
  void declareClasses();
  void addTray(std::uint64_t index);
  void addDevice(std::uint64_t index, std::uint64_t trays);
};

}  // namespace bench

#endif
