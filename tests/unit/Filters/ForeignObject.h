// Objects of somebody else's making, and filters that are asked about them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_UNIT_FILTERS_FOREIGNOBJECT_H
#define QORQL_UNIT_FILTERS_FOREIGNOBJECT_H

#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <utility>

#include "FilterWorld.h"
#include "cimom/CQoriProperty.h"

// An object of somebody else's making, read by name.
class ForeignObject : public IQoriObject {
 public:
  explicit ForeignObject(const char* className) : _className(className) {}

  std::map<std::string, std::function<QORSmrPtr<IQoriValue>()>> properties{};

  const QORString& getClassName() const noexcept override { return _className; }
  QORSmrPtr<IQoriInstanceName> getInstanceName() const override { return {}; }
  QORString getNameSpace() const override { return kNameSpace; }
  QORuint32 getPropertyCount() const noexcept override { return static_cast<QORuint32>(properties.size()); }
  QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const override {
    auto found = properties.begin();
    std::advance(found, position);
    return propertyOf(*found);
  }
  QORSmrPtr<IQoriProperty> getProperty(const QORString& name, bool /*includeInherited*/) const override {
    for (const auto& property : properties) {
      if (name.isEqualCaseInsensitive(property.first.c_str())) return propertyOf(property);
    }
    return {};
  }

 private:
  static QORSmrPtr<IQoriProperty> propertyOf(
      const std::pair<const std::string, std::function<QORSmrPtr<IQoriValue>()>>& property) {
    return new CQoriProperty(QORString(property.first), CQoriType::object, property.second());
  }

  QORString _className;
};

// Filters of modifications.
struct ModificationFilter : Filter {
  static constexpr char kFrom[] = "SELECT * FROM CIM_InstModification WHERE ";
  bool modificationMatches(const std::string& condition, const QORSmrPtr<IQoriObject>& instance) {
    return world.matches(kFrom + condition, instance);
  }
};

#endif
