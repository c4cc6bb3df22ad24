// Short ways to make values, objects and error texts.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_UNIT_MODEL_MODELTESTSUPPORT_H
#define QORQL_UNIT_MODEL_MODELTESTSUPPORT_H

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "Cimom/Model/ModelInstance.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"
#include "cmpbase.h"

namespace model_test {

using Value = QORSmrPtr<IQoriValue>;
using Object = QORSmrPtr<IQoriObject>;
using Name = QORSmrPtr<IQoriInstanceName>;

template <class Scalar>
Value make(Scalar scalar, const QORSmrPtr<IQoriType>& type) {
  return {new CQoriValue(scalar, type)};
}
inline Value text(const char* value) { return {new CQoriValue(QORString(value))}; }
inline Value datetime(const char* value) { return {new CQoriValue(QORString(value), CQoriType::datetime)}; }
inline Value boolean(bool value) { return make(value, CQoriType::boolean); }
inline Value uint64(unsigned long long value) { return make(value, CQoriType::uint64); }
inline Value uint32(unsigned value) { return make(value, CQoriType::uint32); }
inline Value uint16(unsigned value) { return make(value, CQoriType::uint16); }
inline Value uint8(unsigned value) { return make(value, CQoriType::uint8); }
inline Value sint64(long long value) { return make(value, CQoriType::sint64); }
inline Value sint32(int value) { return make(value, CQoriType::sint32); }
inline Value sint8(int value) { return make(value, CQoriType::sint8); }
inline Value real64(double value) { return make(value, CQoriType::real64); }
inline Value real32(double value) { return make(value, CQoriType::real32); }
inline Value char16(char16_t value) { return make(value, CQoriType::char16); }

inline Value array(const QORSmrPtr<IQoriType>& type, std::initializer_list<Value> elements) {
  const QORSmrPtr<IQoriValue::List> list(new IQoriValue::List);
  for (const Value& element : elements) list->append(element);
  return {new CQoriValue(list, type)};
}

using NamedValues = std::vector<std::pair<const char*, Value>>;

inline Name name(const char* nameSpace, const char* className, const NamedValues& keys) {
  const QORSmrPtr<IQoriInstanceName::KeyList> list(new IQoriInstanceName::KeyList);
  for (const auto& [key, value] : keys) {
    list->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(key, value, false)));
  }
  return {new CQoriInstanceName(className, list, QORSmrPtr<IQoriNameSpacePath>(new CQoriNameSpacePath("", nameSpace)))};
}
inline Value reference(const Name& target) { return {new CQoriValue(target)}; }

// A stored instance in root/cimv2 whose columns have the values' types; the first `keyCount` are keys.
inline Object object(const char* className, const NamedValues& properties, QORuint32 keyCount = 1) {
  std::vector<ModelLayout::Column> columns;
  std::vector<Value> values;
  std::vector<QORuint32> keys;
  for (const auto& [property, value] : properties) {
    if (columns.size() < keyCount) keys.push_back(static_cast<QORuint32>(columns.size()));
    columns.push_back({property, value.IsNull() ? CQoriType::string : value->getType()});
    values.push_back(value);
  }
  const QORSmrPtr<ModelLayout> layout(new ModelLayout(columns));
  return ModelInstance::create(QORSmrPtr<ModelShape>(new ModelShape{"root/cimv2", className, layout, keys}), values);
}
inline Value embedded(const Object& value) { return {new CQoriValue(value)}; }

inline QORSmrPtr<QORValSlist<QORString>> names(std::initializer_list<const char*> texts) {
  const QORSmrPtr<QORValSlist<QORString>> list(new QORValSlist<QORString>);
  for (const char* const entry : texts) list->append(QORString(entry));
  return list;
}

// "type name:text", "null" for a null pointer.
inline std::string show(const Value& value) {
  if (value.IsNull()) return "null";
  return std::string(value->getType()->getName().c_str()) + ":" + std::string(value->toString().view());
}

// The message of the CIM_Value error that the action raises.
template <class Action>
std::string valueError(const Action& action) {
  try {
    action();
  } catch (const QoriBaseException& error) {
    if (!(error.getType() == "CIM_Value")) return std::string("wrong type: ") + error.getType().c_str();
    return error.getMessage().c_str();
  }
  return "no error";
}

}  // namespace model_test

#endif
