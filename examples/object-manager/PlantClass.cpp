// Names are found by looking through the list: a class here has few properties.
// SPDX-License-Identifier: Apache-2.0
#include "PlantClass.h"

namespace {

// The engine asks whether a qualifier is there, and no more.
const IQoriQualifier kAssociation;

}  // namespace

PlantClass::PlantClass(const char* name, Kind kind, std::initializer_list<Column> columns) : _name(name), _kind(kind) {
  for (const Column& column : columns) {
    _properties.emplace_back(QORString(column.name), column.type, QORSmrPtr<IQoriValue>());
  }
}

const IQoriQualifier* PlantClass::getQualifier(const QORString& name, bool /*includeInherited*/) const noexcept {
  return _kind == Kind::Association && name.isEqualCaseInsensitive("Association") ? &kAssociation : nullptr;
}

const IQoriProperty* PlantClass::getProperty(const QORString& name, bool /*includeInherited*/) const noexcept {
  const QORsint32 position = getPosition(name);
  return position < 0 ? nullptr : &_properties[static_cast<QORuint32>(position)];
}

QORsint32 PlantClass::getPosition(const QORString& name) const noexcept {
  for (QORuint32 i = 0; i < getPropertyCount(); ++i) {
    if (getName(i).isEqualCaseInsensitive(name)) return static_cast<QORsint32>(i);
  }
  return -1;
}
