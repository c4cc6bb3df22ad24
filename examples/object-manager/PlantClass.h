// A class of the plant's schema: for the engine's names (the repository asks for it) and,
// as a layout, for the positions of properties in its objects.
// SPDX-License-Identifier: Apache-2.0
#ifndef PLANTCLASS_H
#define PLANTCLASS_H

#include <initializer_list>
#include <vector>

#include "cimom/CQoriProperty.h"
#include "cimom/IQoriClass.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// Immutable; lives as long as the process, and so longer than any object.
class PlantClass final : public IQoriClass, public IQoriLayout {
 public:
  enum class Kind { Plain, Association };
  struct Column {
    const char* name;
    QORSmrPtr<IQoriType> type;
  };

  // The first column of a plain class is its key; of an association all columns are.
  PlantClass(const char* name, Kind kind, std::initializer_list<Column> columns);

  bool isKey(QORuint32 position) const noexcept { return _kind == Kind::Association || position == 0; }

  // As a class. There is no inheritance here, and one qualifier.
  const QORString& getClassName() const noexcept override { return _name; }
  const QORString& getSuperClassName() const noexcept override { return QORString::emptyString(); }
  const IQoriQualifier* getQualifier(const QORString& name, bool includeInherited) const noexcept override;
  const IQoriProperty* getProperty(const QORString& name, bool includeInherited) const noexcept override;

  // As a layout.
  QORuint32 getPropertyCount() const noexcept override { return static_cast<QORuint32>(_properties.size()); }
  QORsint32 getPosition(const QORString& name) const noexcept override;
  const QORString& getName(QORuint32 position) const noexcept override { return _properties[position].getName(); }
  const QORSmrPtr<IQoriType>& getType(QORuint32 position) const noexcept override {
    return _properties[position].getType();
  }

 private:
  QORString _name;
  Kind _kind;
  std::vector<CQoriProperty> _properties;  // without values: the schema has no defaults
};

#endif
