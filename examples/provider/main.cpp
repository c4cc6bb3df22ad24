// A provider of live instances, and a query over them: the temperature sensors of a house.
// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Mof/MofLoader.h"
#include "cimom/CQoriProviderException.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"
#include "qorql.h"

namespace {

constexpr const char* kNameSpace = "root/house";

constexpr const char* kModel = R"(
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
class House_Sensor { [Key] string Room; real64 Degrees; boolean IsWarm; };
)";

// Stands for a bus, a file or a library that knows the sensors.
struct Sensor {
  std::string room;
  bool isWorking;
  double degrees;
};

class SensorProvider : public InstanceProvider {
 public:
  explicit SensorProvider(std::vector<Sensor> sensors) : _sensors(std::move(sensors)) {}

  QORString getClassName() const override { return "House_Sensor"; }

  void enumerate(const Request& request, const Emit& emit) override {
    if (_sensors.empty()) throw CQoriProviderException(getClassName(), "The house has no sensors", 1);
    for (const Sensor& sensor : _sensors) {
      std::vector<QORSmrPtr<IQoriValue>> values;
      for (const QORString& name : request.propertyNames) values.push_back(read(sensor, name));
      emit(std::move(values));
    }
  }

 private:
  static QORSmrPtr<IQoriValue> read(const Sensor& sensor, const QORString& name) {
    if (name == "Room") return QORSmrPtr<IQoriValue>(new CQoriValue(QORString(sensor.room)));
    if (!sensor.isWorking) return {};
    if (name == "Degrees") return QORSmrPtr<IQoriValue>(new CQoriValue(sensor.degrees, CQoriType::real64));
    if (name == "IsWarm") return QORSmrPtr<IQoriValue>(new CQoriValue(sensor.degrees > 20, CQoriType::boolean));
    return {};
  }

  const std::vector<Sensor> _sensors;
};

void ask(const char* text) {
  QORQL_Result rows = QORQL_Statement(text, kNameSpace).run();
  while (rows.next()) {
    std::cout << rows.text(0) << ": " << (rows.value(1).IsNull() ? QORString("-") : rows.text(1)) << '\n';
  }
}

}  // namespace

int main() {
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  MofLoader(manager.sink(), kNameSpace).loadText(kModel, "model");
  manager.registerProvider(kNameSpace, std::make_shared<SensorProvider>(std::vector<Sensor>{
                                           {"kitchen", true, 22.5}, {"cellar", true, 11.0}, {"attic", false, 0}}));

  ask("SELECT Room, Degrees FROM House_Sensor");
  std::cout << '\n';
  ask("SELECT Room, Degrees FROM House_Sensor WHERE IsWarm = TRUE");
}
