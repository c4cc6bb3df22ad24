// Starts the plant's object manager and asks it: rows of a query, a join over an association,
// what is wrong with a text, and which subscriptions an object concerns.
// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <vector>

#include "PlantManager.h"
#include "PlantObject.h"
#include "qorql.h"

namespace {

const char* const kLanguage = "DMTF:CQL";

// One line a row: the columns' texts, "-" for a NULL.
void printRows(QORQL_Result& rows) {
  while (rows.next()) {
    for (std::size_t i = 0; i < rows.columns().size(); ++i) {
      const QORString text(rows.text(i));
      std::cout << (i == 0 ? "  " : ", ") << (text.isNull() ? QORString("-") : text);
    }
    std::cout << '\n';
  }
}

void ask(const char* text) {
  std::cout << text << '\n';
  try {
    QORQL_Result rows = QORQL_Statement(text, kPlantNameSpace, kLanguage).run();
    printRows(rows);
  } catch (const QoriBaseException& error) {
    std::cout << "  " << error.getMessage() << '\n';
  }
}

// Puts a filter into the set under a number, or tells why not.
void subscribe(CQLFilterSet& filters, CQLFilterSet::Handle number, const char* text) {
  const QORSmrPtr<CQLQueryStatement> filter(new CQLQueryStatement(kLanguage, text, kPlantNameSpace, kPlantNameSpace));
  if (filter->validate() == QUERY_VALIDATE_SUCCESS) {
    filters.add(number, filter);
  } else {
    std::cout << "filter " << number << " is refused: " << filter->getFault().message << '\n';
  }
}

// What an object manager does with each indication; here the sensors themselves.
void deliver(const CQLFilterSet& filters, const QORSmrPtr<IQoriObject>& object) {
  std::vector<CQLFilterSet::Handle> matching;
  filters.match(object, kPlantNameSpace, matching);
  std::cout << object->getInstanceName()->toString() << ':';
  for (const CQLFilterSet::Handle number : matching) std::cout << " filter " << number;
  std::cout << '\n';
}

}  // namespace

int main() {
  Plant plant;
  plant.rooms = {{"boiler house", 0}, {"laboratory", 2}};
  plant.sensors = {{"T1", &plant.rooms[0], 81.5, "pressure"},
                   {"T2", &plant.rooms[1], 21.25, QORString()},
                   {"T3", &plant.rooms[1], 22, "door open"}};
  const PlantManager manager(plant);

  ask("SELECT Name, Celsius, Alarm FROM Plant_Sensor WHERE Celsius < 50 ORDER BY Celsius DESC");
  ask("SELECT r.Name, r.Floor, s.Name FROM Plant_Room AS r, Plant_Sensor AS s"
      " WHERE Plant_SensorInRoom = r AND Plant_SensorInRoom = s AND Alarm IS NOT NULL");
  ask("SELECT AVG(Celsius) AS Mean FROM Plant_Sensor");
  ask("SELECT Sensor FROM Plant_SensorInRoom");
  ask("SELECT Kelvin FROM Plant_Sensor");

  CQLFilterSet filters;
  subscribe(filters, 1, "SELECT * FROM Plant_Sensor WHERE Alarm = 'door open'");
  subscribe(filters, 2, "SELECT * FROM Plant_Sensor WHERE Celsius > 80.0");
  subscribe(filters, 3, "SELECT * FROM Plant_Sensor WHERE Kelvin > 300");
  for (const Sensor& sensor : plant.sensors) deliver(filters, showSensor(sensor));
}
