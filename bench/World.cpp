// Instances are created one by one, as any client of the object manager would.
// SPDX-License-Identifier: Apache-2.0
#include "bench/World.h"

#include <algorithm>

#include "bench/Data.h"
#include "bench/Declarations.h"
#include "bench/MixedWorld.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace bench {

DiskWorld::DiskWorld(std::uint64_t disks) {
  constexpr std::uint64_t kQuotas = 1000;
  const std::uint64_t pools = std::max<std::uint64_t>(disks / 100, 100);
  declareClasses();
  for (std::uint64_t i = 0; i < pools; ++i) addPool(kPoolClass, i);
  for (std::uint64_t i = 0; i < kQuotas; ++i) addPool(kQuotaClass, i);
  for (std::uint64_t i = 0; i < disks; ++i) addDisk(i, pools);
}

void DiskWorld::declareClasses() {
  CimClassDeclaration disk;
  disk.name = kDiskClass;
  disk.properties = {key("DeviceID"),
                     property("Name", CQoriType::string),
                     property("Size", CQoriType::uint64),
                     property("BlockSize", CQoriType::uint32),
                     property("Status", CQoriType::uint16),
                     property("Enabled", CQoriType::boolean),
                     property("Load", CQoriType::real64),
                     property("PoolID", CQoriType::string),
                     property("OperationalStatus", CQoriType::arrayOf(CQoriType::uint16))};
  beginClasses();
  declare(disk);
  for (const char* const name : {kPoolClass, kQuotaClass}) {
    CimClassDeclaration pool;
    pool.name = name;
    pool.properties = {key("PoolID"), property("Name", CQoriType::string), property("Capacity", CQoriType::uint64)};
    declare(pool);
  }
  endClasses();
}

void DiskWorld::addDisk(std::uint64_t index, std::uint64_t pools) {
  const DiskRow row = diskRow(index, pools);
  CimInstanceDeclaration disk;
  disk.className = kDiskClass;
  disk.properties = {{"DeviceID", textValue(row.deviceId)},
                     {"Name", textValue(row.name)},
                     {"Size", new CQoriValue(row.size, CQoriType::uint64)},
                     {"BlockSize", new CQoriValue(row.blockSize, CQoriType::uint32)},
                     {"Status", new CQoriValue(row.status, CQoriType::uint16)},
                     {"Enabled", new CQoriValue(row.isEnabled, CQoriType::boolean)},
                     {"Load", new CQoriValue(row.load, CQoriType::real64)},
                     {"PoolID", row.hasPool ? textValue(row.poolId) : Value()},
                     {"OperationalStatus", arrayValue(row.operationalStatus)}};
  add(disk);
}

void DiskWorld::addPool(const char* className, std::uint64_t index) {
  const PoolRow row = poolRow(index);
  CimInstanceDeclaration pool;
  pool.className = className;
  pool.properties = {{"PoolID", textValue(row.poolId)},
                     {"Name", textValue(row.name)},
                     {"Capacity", new CQoriValue(row.capacity, CQoriType::uint64)}};
  add(pool);
}

std::unique_ptr<World> makeWorld(Field field, std::uint64_t size) {
  if (field == Field::Mixed) return std::make_unique<MixedWorld>(size);
  return std::make_unique<DiskWorld>(size);
}

CIMApi::Instances instancesOf(const char* className) {
  CIMApi api;
  return api.enumerateInstances(kNameSpace, className, {}, CIMApi::DefaultTimeout, nullptr, nullptr, nullptr, {});
}

}  // namespace bench
