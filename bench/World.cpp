// Instances are created one by one, as any client of the object manager would.
// SPDX-License-Identifier: Apache-2.0
#include "bench/World.h"

#include <algorithm>

#include "bench/Data.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace bench {

namespace {

using Value = QORSmrPtr<IQoriValue>;

CimPropertyDeclaration property(const char* name, const QORSmrPtr<IQoriType>& type) {
  CimPropertyDeclaration declaration;
  declaration.name = name;
  declaration.type = type;
  return declaration;
}

CimPropertyDeclaration key(const char* name) {
  CimPropertyDeclaration declaration = property(name, CQoriType::string);
  CimQualifier qualifier;
  qualifier.name = "Key";
  qualifier.value = new CQoriValue(true, CQoriType::boolean);
  declaration.qualifiers.push_back(qualifier);
  return declaration;
}

Value textValue(const std::string& text) { return {new CQoriValue(QORString(text))}; }

Value arrayValue(const std::vector<std::uint16_t>& elements) {
  const QORSmrPtr<IQoriValue::List> list(new IQoriValue::List);
  for (const std::uint16_t element : elements) list->append(Value(new CQoriValue(element, CQoriType::uint16)));
  return {new CQoriValue(list, CQoriType::uint16)};
}

}  // namespace

World::World(std::uint64_t disks) : _disks(disks) {
  constexpr std::uint64_t kQuotas = 1000;
  const std::uint64_t pools = std::max<std::uint64_t>(disks / 100, 100);
  declareClasses();
  for (std::uint64_t i = 0; i < pools; ++i) addPool(kPoolClass, i);
  for (std::uint64_t i = 0; i < kQuotas; ++i) addPool(kQuotaClass, i);
  for (std::uint64_t i = 0; i < disks; ++i) addDisk(i, pools);
}

void World::declareClasses() {
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
  _manager.sink().begin();
  _manager.sink().declareClass(kNameSpace, disk);
  for (const char* const name : {kPoolClass, kQuotaClass}) {
    CimClassDeclaration pool;
    pool.name = name;
    pool.properties = {key("PoolID"), property("Name", CQoriType::string), property("Capacity", CQoriType::uint64)};
    _manager.sink().declareClass(kNameSpace, pool);
  }
  _manager.sink().commit();
}

void World::addDisk(std::uint64_t index, std::uint64_t pools) {
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
  _manager.createInstance(kNameSpace, disk);
}

void World::addPool(const char* className, std::uint64_t index) {
  const PoolRow row = poolRow(index);
  CimInstanceDeclaration pool;
  pool.className = className;
  pool.properties = {{"PoolID", textValue(row.poolId)},
                     {"Name", textValue(row.name)},
                     {"Capacity", new CQoriValue(row.capacity, CQoriType::uint64)}};
  _manager.createInstance(kNameSpace, pool);
}

CIMApi::Instances instancesOf(const char* className) {
  CIMApi api;
  return api.enumerateInstances(kNameSpace, className, {}, CIMApi::DefaultTimeout, nullptr, nullptr, nullptr, {});
}

}  // namespace bench
