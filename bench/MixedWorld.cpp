// Each device lies in one tray, which an instance of the association says.
// SPDX-License-Identifier: Apache-2.0
#include "bench/MixedWorld.h"

#include "bench/Declarations.h"
#include "bench/MixedData.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"

namespace bench {

namespace {

CimPropertyDeclaration reference(const char* name, const char* className) {
  CimPropertyDeclaration declaration = key(name);
  declaration.type = CQoriType::reference;
  declaration.referenceClass = className;
  return declaration;
}

CimQualifier flag(const char* name) {
  CimQualifier qualifier;
  qualifier.name = name;
  qualifier.value = new CQoriValue(true, CQoriType::boolean);
  return qualifier;
}

Value pathValue(const char* className, const char* keyName, const std::string& id) {
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(keyName, textValue(id), true)));
  const QORSmrPtr<IQoriNameSpacePath> space(new CQoriNameSpacePath("", kNameSpace));
  return {new CQoriValue(QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(className, keys, space)))};
}

}  // namespace

MixedWorld::MixedWorld(std::uint64_t devices) {
  const std::uint64_t trays = trayCount(devices);
  declareClasses();
  for (std::uint64_t i = 0; i < trays; ++i) addTray(i);
  for (std::uint64_t i = 0; i < devices; ++i) addDevice(i, trays);
}

void MixedWorld::declareClasses() {
  CimClassDeclaration device;
  device.name = kDeviceClass;
  device.properties = {key("DeviceID"),
                       property("Name", CQoriType::string),
                       property("Size", CQoriType::uint64),
                       property("InstallDate", CQoriType::datetime),
                       property("State", CQoriType::arrayOf(CQoriType::uint16)),
                       property("Temperature", CQoriType::sint32)};
  CimClassDeclaration solidState;
  solidState.name = kSolidStateClass;
  solidState.superClass = kDeviceClass;
  solidState.properties = {property("Wear", CQoriType::uint8), property("Model", CQoriType::string)};
  CimClassDeclaration tray;
  tray.name = kTrayClass;
  tray.properties = {key("TrayID"), property("Name", CQoriType::string)};
  CimClassDeclaration inTray;
  inTray.name = kInTrayClass;
  inTray.qualifiers = {flag("Association")};
  inTray.properties = {reference("GroupComponent", kTrayClass), reference("PartComponent", kDeviceClass)};
  beginClasses();
  for (const CimClassDeclaration& declaration : {device, solidState, tray, inTray}) declare(declaration);
  endClasses();
}

void MixedWorld::addTray(std::uint64_t index) {
  CimInstanceDeclaration tray;
  tray.className = kTrayClass;
  tray.properties = {{"TrayID", textValue(trayId(index))}, {"Name", textValue("Tray no. " + std::to_string(index))}};
  add(tray);
}

void MixedWorld::addDevice(std::uint64_t index, std::uint64_t trays) {
  const DeviceRow row = deviceRow(index, trays);
  const char* const className = row.isSolidState ? kSolidStateClass : kDeviceClass;
  CimInstanceDeclaration device;
  device.className = className;
  device.properties = {
      {"DeviceID", textValue(row.deviceId)},
      {"Name", textValue(row.name)},
      {"Size", new CQoriValue(row.size, CQoriType::uint64)},
      {"InstallDate", new CQoriValue(QORString(row.installDate), CQoriType::datetime)},
      {"State", arrayValue(row.state)},
      {"Temperature", row.hasTemperature ? Value(new CQoriValue(row.temperature, CQoriType::sint32)) : Value()}};
  add(device);
  CimInstanceDeclaration inTray;
  inTray.className = kInTrayClass;
  inTray.properties = {{"GroupComponent", pathValue(kTrayClass, "TrayID", trayId(row.tray))},
                       {"PartComponent", pathValue(className, "DeviceID", row.deviceId)}};
  add(inTray);
}

}  // namespace bench
