// An object of the plant as the engine sees it: a view of a record, read in place.
// SPDX-License-Identifier: Apache-2.0
#ifndef PLANTOBJECT_H
#define PLANTOBJECT_H

#include "Plant.h"
#include "PlantClass.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// The schema, in the order in which its classes are listed below.
struct PlantSchema {
  QORSmrPtr<PlantClass> room;
  QORSmrPtr<PlantClass> sensor;
  QORSmrPtr<PlantClass> placement;  // the association of a sensor with its room

  // The one of the process. Any thread may call.
  static const PlantSchema& instance();
  // Ignoring case; null when there is none.
  QORSmrPtr<PlantClass> find(const QORString& className) const;
};

extern const char* const kPlantNameSpace;

// What all objects of the plant share: everything goes by the position of a property.
// Immutable, as what it shows; threads may share one.
class PlantObject : public IQoriObject {
 public:
  explicit PlantObject(const PlantClass& declaration) : _class(declaration) {}

  const QORString& getClassName() const noexcept override { return _class.getClassName(); }
  QORSmrPtr<IQoriInstanceName> getInstanceName() const override;
  QORuint32 getPropertyCount() const noexcept override { return _class.getPropertyCount(); }
  QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const override;
  QORSmrPtr<IQoriProperty> getProperty(const QORString& name, bool includeInherited) const override;
  const IQoriLayout* getLayout() const noexcept override { return &_class; }
  QORSmrPtr<IQoriValue> getValueAt(QORuint32 position) const override;
  // Left to each record: getScalarAt, which is what a query reads most.

 private:
  const PlantClass& _class;
};

// BORROW the record, which must live as long as the object.
QORSmrPtr<IQoriObject> showRoom(const Room& room);
QORSmrPtr<IQoriObject> showSensor(const Sensor& sensor);
QORSmrPtr<IQoriObject> showPlacement(const Sensor& sensor);

#endif
