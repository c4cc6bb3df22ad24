// The object manager's data by class and by path.
// SPDX-License-Identifier: Apache-2.0
#include "PlantManager.h"

#include "PlantObject.h"

const PlantManager* PlantManager::_current = nullptr;

namespace {

bool isPath(const IQoriObject& object, const QORString& path) { return object.getInstanceName()->toString() == path; }

}  // namespace

PlantManager::Instances PlantManager::objectsOf(const QORString& nameSpace, const QORString& className) const {
  const PlantSchema& schema = PlantSchema::instance();
  const QORSmrPtr<PlantClass> wanted(schema.find(className));
  if (wanted.IsNull() || !nameSpace.isEqualCaseInsensitive(kPlantNameSpace)) return {};
  const Instances list = Instances::Make();
  if (wanted == schema.room) {
    for (const Room& room : _plant.rooms) list->append(showRoom(room));
  }
  for (const Sensor& sensor : _plant.sensors) {
    if (wanted == schema.sensor) list->append(showSensor(sensor));
    if (wanted == schema.placement) list->append(showPlacement(sensor));
  }
  return list;
}

PlantManager::Instances PlantManager::associatesOf(const QORString& path) const {
  const Instances list = Instances::Make();
  for (const Sensor& sensor : _plant.sensors) {
    const QORSmrPtr<IQoriObject> here(showSensor(sensor));
    const QORSmrPtr<IQoriObject> there(showRoom(*sensor.room));
    if (isPath(*here, path)) list->append(there);
    if (isPath(*there, path)) list->append(here);
  }
  return list;
}
