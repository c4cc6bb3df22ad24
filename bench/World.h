// An object manager full of disks and pools, which all peers read.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_WORLD_H
#define QORQL_BENCH_WORLD_H

#include <cstdint>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "cimom/CIMApi.h"
#include "cmpbase.h"

namespace bench {

inline constexpr const char* kNameSpace = "root/cimv2";
inline constexpr const char* kDiskClass = "EX_Disk";
inline constexpr const char* kPoolClass = "EX_Pool";    // a hundredth of the disks, at least 100
inline constexpr const char* kQuotaClass = "EX_Quota";  // 1,000 rows shaped like pools

// The properties' positions in the instances of each class.
enum DiskPosition : QORuint32 { kDeviceId, kDiskName, kSize, kBlockSize, kStatus, kEnabled, kLoad, kDiskPoolId };
enum PoolPosition : QORuint32 { kPoolId, kPoolName, kCapacity };

class World {
 public:
  explicit World(std::uint64_t disks);

  std::uint64_t diskCount() const noexcept { return _disks; }
  // Peers ask the process's object manager; this makes it this one.
  void makeCurrent() { _manager.makeCurrent(); }

 private:
  void declareClasses();
  void addDisk(std::uint64_t index, std::uint64_t pools);
  void addPool(const char* className, std::uint64_t index);

  const std::uint64_t _disks;
  EmbeddedObjectManager _manager;
};

// All instances of a class of the current world with all their properties, as the
// object manager's clients get them.
CIMApi::Instances instancesOf(const char* className);

}  // namespace bench

#endif
