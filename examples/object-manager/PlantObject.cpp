// Records become objects without a copy: getScalarAt shows a number or a text where it lies,
// and a value object is made only for a caller who wants one.
// SPDX-License-Identifier: Apache-2.0
#include "PlantObject.h"

#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriType.h"
#include "cimom/IQoriValue.h"

const char* const kPlantNameSpace = "root/plant";

namespace {

QoriScalar showText(const QORString& text) noexcept {
  QoriScalar shown;
  if (text.isNull()) return shown;  // of kind Null
  shown.kind = QoriScalarKind::Text;
  shown.text = &text;
  return shown;
}

QoriScalar showUnsigned(QORuint64 number) noexcept {
  QoriScalar shown;
  shown.kind = QoriScalarKind::Unsigned;
  shown.u = number;
  return shown;
}

QoriScalar showReal(QORreal64 number) noexcept {
  QoriScalar shown;
  shown.kind = QoriScalarKind::Real;
  shown.r = number;
  return shown;
}

class RoomObject final : public PlantObject {
 public:
  explicit RoomObject(const Room& room) : PlantObject(*PlantSchema::instance().room), _room(room) {}
  QoriScalar getScalarAt(QORuint32 position) const noexcept override {
    return position == 0 ? showText(_room.name) : showUnsigned(_room.floor);
  }

 private:
  const Room& _room;
};

class SensorObject final : public PlantObject {
 public:
  explicit SensorObject(const Sensor& sensor) : PlantObject(*PlantSchema::instance().sensor), _sensor(sensor) {}
  QoriScalar getScalarAt(QORuint32 position) const noexcept override {
    if (position == 1) return showReal(_sensor.celsius);
    return showText(position == 0 ? _sensor.name : _sensor.alarm);
  }

 private:
  const Sensor& _sensor;
};

// The association has no record: it keeps the two references, which are values.
class PlacementObject final : public PlantObject {
 public:
  explicit PlacementObject(const Sensor& sensor)
      : PlantObject(*PlantSchema::instance().placement),
        _sensor(showSensor(sensor)->getInstanceName()),
        _room(showRoom(*sensor.room)->getInstanceName()) {}
  QoriScalar getScalarAt(QORuint32 position) const noexcept override {
    QoriScalar shown;
    shown.kind = QoriScalarKind::Complex;
    shown.value = position == 0 ? &_sensor : &_room;
    return shown;
  }

 private:
  CQoriValue _sensor;
  CQoriValue _room;
};

}  // namespace

const PlantSchema& PlantSchema::instance() {
  using Kind = PlantClass::Kind;
  static const PlantSchema only{
      new PlantClass("Plant_Room", Kind::Plain, {{"Name", CQoriType::string}, {"Floor", CQoriType::uint16}}),
      new PlantClass("Plant_Sensor", Kind::Plain,
                     {{"Name", CQoriType::string}, {"Celsius", CQoriType::real64}, {"Alarm", CQoriType::string}}),
      new PlantClass("Plant_SensorInRoom", Kind::Association,
                     {{"Sensor", CQoriType::reference}, {"Room", CQoriType::reference}})};
  return only;
}

QORSmrPtr<PlantClass> PlantSchema::find(const QORString& className) const {
  for (const QORSmrPtr<PlantClass>& known : {room, sensor, placement}) {
    if (known->getClassName().isEqualCaseInsensitive(className)) return known;
  }
  return {};
}

QORSmrPtr<IQoriInstanceName> PlantObject::getInstanceName() const {
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  for (QORuint32 i = 0; i < getPropertyCount(); ++i) {
    if (_class.isKey(i)) keys->append(getPropertyAt(i));
  }
  static const QORSmrPtr<IQoriNameSpacePath> nameSpacePath(
      new CQoriNameSpacePath(QORString::emptyString(), kPlantNameSpace));
  return new CQoriInstanceName(getClassName(), keys, nameSpacePath);
}

QORSmrPtr<IQoriProperty> PlantObject::getPropertyAt(QORuint32 position) const {
  return new CQoriProperty(_class.getName(position), _class.getType(position), getValueAt(position));
}

QORSmrPtr<IQoriProperty> PlantObject::getProperty(const QORString& name, bool /*includeInherited*/) const {
  const QORsint32 position = _class.getPosition(name);
  return position < 0 ? QORSmrPtr<IQoriProperty>() : getPropertyAt(static_cast<QORuint32>(position));
}

QORSmrPtr<IQoriValue> PlantObject::getValueAt(QORuint32 position) const {
  const QoriScalar shown = getScalarAt(position);
  const QORSmrPtr<IQoriType>& type = _class.getType(position);
  switch (shown.kind) {
    case QoriScalarKind::Unsigned:
      return new CQoriValue(shown.u, type);
    case QoriScalarKind::Real:
      return new CQoriValue(shown.r, type);
    case QoriScalarKind::Text:
      return new CQoriValue(*shown.text);
    case QoriScalarKind::Complex:
      return new CQoriValue(shown.value->getReference());
    default:
      return {};
  }
}

QORSmrPtr<IQoriObject> showRoom(const Room& room) { return new RoomObject(room); }
QORSmrPtr<IQoriObject> showSensor(const Sensor& sensor) { return new SensorObject(sensor); }
QORSmrPtr<IQoriObject> showPlacement(const Sensor& sensor) { return new PlacementObject(sensor); }
