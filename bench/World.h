// Object managers full of instances, which all peers read.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_WORLD_H
#define QORQL_BENCH_WORLD_H

#include <cstdint>
#include <memory>
#include <vector>

#include "Cimom/Embedded/CimDeclarations.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "bench/Workloads.h"
#include "cimom/CIMApi.h"
#include "cmpbase.h"

namespace bench {

inline constexpr const char* kNameSpace = "root/cimv2";
inline constexpr const char* kDiskClass = "EX_Disk";
inline constexpr const char* kPoolClass = "EX_Pool";    // a hundredth of the disks, at least 100
inline constexpr const char* kQuotaClass = "EX_Quota";  // 1,000 rows shaped like pools

// The mixed world is made with no more devices than this, whatever size is asked for.
inline constexpr std::uint64_t kGreatestMixedWorld = 50000;

// The properties' positions in the instances of each class.
enum DiskPosition : QORuint32 { kDeviceId, kDiskName, kSize, kBlockSize, kStatus, kEnabled, kLoad, kDiskPoolId };
enum PoolPosition : QORuint32 { kPoolId, kPoolName, kCapacity };

class World {
 public:
  World(const World&) = delete;
  World& operator=(const World&) = delete;
  virtual ~World() = default;

  // Those that SQLite gets as tables.
  virtual std::vector<const char*> classes() const = 0;
  // Peers ask the process's object manager; this makes it this one.
  void makeCurrent() { _manager.makeCurrent(); }

 protected:
  World() = default;
  void declare(const CimClassDeclaration& declaration) { _manager.sink().declareClass(kNameSpace, declaration); }
  void add(const CimInstanceDeclaration& instance) { _manager.createInstance(kNameSpace, instance); }
  void beginClasses() { _manager.sink().begin(); }
  void endClasses() { _manager.sink().commit(); }

 private:
  EmbeddedObjectManager _manager;
};

// Disks that are all of one class, and pools.
class DiskWorld final : public World {
 public:
  explicit DiskWorld(std::uint64_t disks);
  std::vector<const char*> classes() const override { return {kDiskClass, kPoolClass, kQuotaClass}; }

 private:
  void declareClasses();
  void addDisk(std::uint64_t index, std::uint64_t pools);
  void addPool(const char* className, std::uint64_t index);
};

// The world in which the workloads of a field run.
std::unique_ptr<World> makeWorld(Field field, std::uint64_t size);

// All instances of a class of the current world with all their properties, as the
// object manager's clients get them.
CIMApi::Instances instancesOf(const char* className);

}  // namespace bench

#endif
