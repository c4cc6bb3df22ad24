// The object manager: what stands behind the platform's services in PlantServices.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef PLANTMANAGER_H
#define PLANTMANAGER_H

#include "Plant.h"
#include "cimom/CIMApi.h"
#include "cmpbase.h"

// One is current in a process, since the engine reaches it through services that have no
// object of their own. Reading may happen on any number of threads.
class PlantManager {
 public:
  using Instances = CIMApi::Instances;

  // BORROWS the plant, which must outlive every object that was handed out.
  explicit PlantManager(const Plant& plant) noexcept : _plant(plant) { _current = this; }
  PlantManager(const PlantManager&) = delete;
  PlantManager& operator=(const PlantManager&) = delete;
  ~PlantManager() { _current = nullptr; }

  // Null while no object manager runs.
  static const PlantManager* current() noexcept { return _current; }

  // The objects of a class; null for a class or a namespace that there is not.
  Instances objectsOf(const QORString& nameSpace, const QORString& className) const;
  // The sensors of a room, or the room of a sensor; empty for any other object.
  Instances associatesOf(const QORString& path) const;

 private:
  const Plant& _plant;
  static const PlantManager* _current;
};

#endif
