// An instance as a document gives it, before anybody knows its class.
// Tested by tests/unit/CimXml/CimXmlReplyTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLINSTANCE_H
#define QORQL_CIMXML_CIMXMLINSTANCE_H

#include <span>
#include <string_view>
#include <vector>

#include "cimom/CQoriType.h"
#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

struct CimXmlProperty {
  QORString name;
  // Unknown when the document does not say it; the value is text then.
  CQoriType::Code type = CQoriType::Code::Unknown;
  bool isArray = false;
  IQoriValue::Pointer value;  // null: NULL
};

// One object is filled again and again while a document is read, so that names that
// stay the same from instance to instance are made once.
class CimXmlInstance {
 public:
  QORString className;
  QORSmrPtr<IQoriInstanceName> name;  // null: the document gives no path

  // In the document's order; a name may come twice.
  std::span<const CimXmlProperty> properties() const noexcept { return {_properties.data(), _count}; }

  std::span<CimXmlProperty> changeableProperties() noexcept { return {_properties.data(), _count}; }

  void clear() noexcept {
    name = QORSmrPtr<IQoriInstanceName>();
    _count = 0;
  }
  // A property without value. Valid until the next one is added.
  CimXmlProperty& add(std::string_view propertyName) {
    if (_count == _properties.size()) _properties.emplace_back();
    CimXmlProperty& property = _properties[_count++];
    if (property.name.view() != propertyName) property.name = QORString(propertyName);
    property.isArray = false;
    property.value = IQoriValue::Pointer();
    return property;
  }

 private:
  std::vector<CimXmlProperty> _properties;
  std::size_t _count = 0;
};

#endif
