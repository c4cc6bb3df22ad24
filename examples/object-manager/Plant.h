// What the object manager serves: the rooms and sensors of a plant, as a program keeps them
// anyway. Nothing in this file knows of CIM.
// SPDX-License-Identifier: Apache-2.0
#ifndef PLANT_H
#define PLANT_H

#include <deque>

#include "cmpbase.h"

struct Room {
  QORString name;
  QORuint16 floor = 0;
};

struct Sensor {
  QORString name;
  const Room* room = nullptr;
  QORreal64 celsius = 0;
  QORString alarm;  // a null string while there is none
};

// Filled before the first query and unchanged from then on, so that threads may read it.
struct Plant {
  std::deque<Room> rooms;
  std::deque<Sensor> sensors;
};

#endif
