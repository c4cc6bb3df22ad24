// A class definition as the value of an embedded object.
// Tested by tests/unit/Model/ModelMofTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELCLASSOBJECT_H
#define QORQL_MODEL_MODELCLASSOBJECT_H

#include <utility>

#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// Shows the class's name and its properties, which hold their default values;
// has no path. Its text is the class's MOF text, not an instance's. Immutable;
// threads may share one.
class ModelClassObject final : public IQoriObject {
 public:
  // `defaults`: an object of the class with the default values. `mofText`: `class C { ... };`.
  ModelClassObject(QORSmrPtr<IQoriObject> defaults, QORString mofText)
      : _defaults(std::move(defaults)), _mofText(std::move(mofText)) {}
  ~ModelClassObject() override;

  const QORString& getMofText() const noexcept { return _mofText; }

  const QORString& getClassName() const noexcept override { return _defaults->getClassName(); }
  QORSmrPtr<IQoriInstanceName> getInstanceName() const override { return {}; }
  QORString getNameSpace() const override { return _defaults->getNameSpace(); }
  QORuint32 getPropertyCount() const noexcept override { return _defaults->getPropertyCount(); }
  QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const override {
    return _defaults->getPropertyAt(position);
  }
  QORSmrPtr<IQoriProperty> getProperty(const QORString& name, bool includeInherited) const override {
    return _defaults->getProperty(name, includeInherited);
  }
  const IQoriLayout* getLayout() const noexcept override { return _defaults->getLayout(); }
  QoriScalar getScalarAt(QORuint32 position) const noexcept override { return _defaults->getScalarAt(position); }
  QORSmrPtr<IQoriValue> getValueAt(QORuint32 position) const override { return _defaults->getValueAt(position); }

 private:
  QORSmrPtr<IQoriObject> _defaults;
  QORString _mofText;
};

#endif
