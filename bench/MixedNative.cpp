// Properties of subclasses' instances stand at the same positions. What the language says with a call of the object
// manager for each row, INSTANCEOF and an association, is written with the same calls.
// SPDX-License-Identifier: Apache-2.0
#include "bench/MixedNative.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "bench/CellReading.h"
#include "bench/MixedWorld.h"

namespace bench {

namespace {

using Object = QORSmrPtr<IQoriObject>;
using Objects = QORValSlist<Object>;

template <class Visit>
void forEach(const Objects& objects, const Visit& visit) {
  QORValSlistIterator<Object> each(objects);
  while (++each) visit(*each.key().Get());
}

std::string_view textOf(const IQoriObject& object, QORuint32 position) {
  return object.getScalarAt(position).text->view();
}

// The devices by a key, each with it.
template <class KeyOf>
auto sortedBy(const Objects& devices, const KeyOf& keyOf) {
  std::vector<std::pair<decltype(keyOf(*devices.first())), const IQoriObject*>> keys;
  keys.reserve(devices.entries());
  forEach(devices, [&](const IQoriObject& device) { keys.emplace_back(keyOf(device), &device); });
  std::sort(keys.begin(), keys.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  return keys;
}

void orderByNumber(const Objects& devices, Answer& answer) {
  for (const auto& [size, device] :
       sortedBy(devices, [](const IQoriObject& each) { return each.getScalarAt(kDeviceSize).u; })) {
    answer.text(textOf(*device, kDeviceKey));
    answer.number(size);
    answer.sortKey(size);
    answer.endRow();
  }
}

void orderByDateTime(const Objects& devices, Answer& answer) {
  for (const auto& [instant, device] :
       sortedBy(devices, [](const IQoriObject& each) { return microsecondsOf(textOf(each, kInstallDate)); })) {
    answer.text(textOf(*device, kDeviceKey));
    readTimestamp(textOf(*device, kInstallDate), true, answer);
    answer.endRow();
  }
}

void filterHalfNull(const Objects& devices, Answer& answer) {
  forEach(devices, [&](const IQoriObject& device) {
    const QoriScalar temperature = device.getScalarAt(kTemperature);
    if (temperature.isNull() || temperature.s <= kWarm) return;
    answer.text(textOf(device, kDeviceKey));
    answer.number(temperature.u);
    answer.endRow();
  });
}

void showPaths(const Objects& devices, Answer& answer) {
  std::string path;
  forEach(devices, [&](const IQoriObject& device) {
    path.clear();
    device.appendPath(path);
    answer.text(path);
    answer.endRow();
  });
}

void showInstances(const Objects& devices, Answer& answer) {
  CIMApi client;
  forEach(devices, [&](const IQoriObject& device) {
    const Object whole =
        client.getInstance(kNameSpace, device.getInstanceName(), {}, CIMApi::DefaultTimeout, nullptr, nullptr, "");
    readInstance(*whole, answer);
    answer.endRow();
  });
}

void keepSolidState(const Objects& devices, Answer& answer) {
  forEach(devices, [&](const IQoriObject& device) {
    if (device.getClassName().view() != kSolidStateClass) return;
    answer.text(textOf(device, kDeviceKey));
    answer.endRow();
  });
}

bool hasState(const IQoriObject& device) {
  const QORSmrPtr<IQoriValue::List> states = device.getScalarAt(kState).value->getArray();
  QORValSlistIterator<QORSmrPtr<IQoriValue>> each(*states);
  while (++each) {
    if (each.key()->scalar().u == kWantedState) return true;
  }
  return false;
}

void keepState(const Objects& devices, Answer& answer) {
  forEach(devices, [&](const IQoriObject& device) {
    if (!hasState(device)) return;
    answer.text(textOf(device, kDeviceKey));
    answer.endRow();
  });
}

void joinTrays(Answer& answer) {
  CIMApi client;
  const QORString none;
  const CIMApi::PropertyNames names(new QORValSlist<QORString>);
  names->append("DeviceID");
  forEach(*instancesOf(kTrayClass), [&](const IQoriObject& tray) {
    const CIMApi::Instances devices = client.associators(kNameSpace, tray.getInstanceName(), kInTrayClass, kDeviceClass,
                                                         names, CIMApi::DefaultTimeout, none, none, none);
    forEach(*devices, [&](const IQoriObject& device) {
      answer.text(textOf(tray, kTrayName));
      answer.text(device.getScalarAt(0).text->view());
      answer.endRow();
    });
  });
}

}  // namespace

void runMixedByHand(Task task, Answer& answer) {
  if (task == Task::Association) return joinTrays(answer);
  const CIMApi::Instances devices = instancesOf(kDeviceClass);
  switch (task) {
    case Task::NumberOrder:
      return orderByNumber(*devices, answer);
    case Task::DateTimeOrder:
      return orderByDateTime(*devices, answer);
    case Task::HalfNull:
      return filterHalfNull(*devices, answer);
    case Task::ObjectPath:
      return showPaths(*devices, answer);
    case Task::InstanceOf:
      return showInstances(*devices, answer);
    case Task::IsA:
      return keepSolidState(*devices, answer);
    case Task::Any:
      return keepState(*devices, answer);
    default:
      return;
  }
}

}  // namespace bench
