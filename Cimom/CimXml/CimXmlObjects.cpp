// A layout is found by comparing an instance with earlier ones: within one class
// they nearly always have the same properties.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlObjects.h"

#include <string_view>
#include <unordered_set>

#include "Cimom/CimXml/CimXmlValues.h"
#include "Cimom/Model/ModelInstance.h"
#include "cimom/CQoriValue.h"

namespace {

using Code = CQoriType::Code;

QORSmrPtr<IQoriType> columnType(const CimXmlProperty& property) {
  const QORSmrPtr<IQoriType>& scalar =
      property.type == Code::Unknown ? CQoriType::string : cimxml::scalarType(property.type);
  return property.isArray ? CQoriType::arrayOf(scalar) : scalar;
}

std::string fold(const QORString& name) { return std::string(QORString::toUpperCase(name).view()); }

// The positions of an instance's keys: its properties that the path names.
std::vector<QORuint32> keyPositions(const CimXmlInstance& instance, const ModelLayout& layout) {
  std::vector<QORuint32> positions;
  if (instance.name.IsNull()) return positions;
  QORValSlistIterator<QORSmrPtr<IQoriProperty>> it(*instance.name->getKeys());
  while (++it) {
    const QORsint32 position = layout.getPosition(it.key()->getName());
    if (position >= 0) positions.push_back(static_cast<QORuint32>(position));
  }
  return positions;
}

// Whether each property that is not kept has the name of a kept one before it.
bool repeatOthers(std::span<const CimXmlProperty> properties, const std::vector<std::size_t>& kept,
                  const ModelLayout& layout) noexcept {
  std::size_t passed = 0;  // kept properties before this one
  for (std::size_t i = 0; !kept.empty() && i < properties.size(); ++i) {
    if (passed < kept.size() && kept[passed] == i) {
      ++passed;
      continue;
    }
    const QORsint32 position = layout.getPosition(properties[i].name);
    if (position < 0 || static_cast<std::size_t>(position) >= passed) return false;
  }
  return true;
}

[[noreturn]] void raiseWrongValue(const CimXmlInstance& instance, const CimXmlProperty& property,
                                  const IQoriType& type) {
  throw QoriBaseException("CIM_Value", "CimXml", "CimXmlObjects::make",
                          "found \"" + property.value->toString() + "\" for property " + property.name + " of class " +
                              instance.className + ", expected a " + type.getName(),
                          0);
}

// An element of a text of unknown type, read as the declared type.
IQoriValue::Pointer typed(const CimXmlInstance& instance, const CimXmlProperty& property,
                          const IQoriValue::Pointer& text, const IQoriType& type) {
  IQoriValue::Pointer value;
  const Code code = CQoriType::codeOf(type);
  if (text.IsNull()) return value;
  if (code >= Code::Reference || !cimxml::readValue(text->toString().view(), code, value)) {
    raiseWrongValue(instance, property, type);
  }
  return value;
}

[[noreturn]] void raiseWrongType(const CimXmlInstance& instance, const CimXmlProperty& property, Code given,
                                 const IQoriType& type) {
  throw QoriBaseException("CIM_Value", "CimXml", "CimXmlObjects::make",
                          "found a " + QORString(cimxml::typeName(given)) + (property.isArray ? "[]" : "") +
                              " for property " + property.name + " of class " + instance.className + ", expected a " +
                              type.getName() + (type.isArray() ? "[]" : ""),
                          0);
}

bool isNumber(Code code) noexcept { return code <= Code::Real64; }

// Whether what arrived as the one type can be said in the other. Objects and references are settled where they are
// stored.
bool canStandFor(Code given, Code declared) noexcept {
  if (given == declared || given >= Code::Reference || declared >= Code::Reference || declared == Code::String) {
    return true;
  }
  return (isNumber(given) && isNumber(declared)) || (given == Code::String && declared == Code::DateTime);
}

// A number must stay the same number, but for one that is rounded to the declared real.
IQoriValue::Pointer sameNumber(const CimXmlInstance& instance, const CimXmlProperty& property,
                               const IQoriValue::Pointer& value, Code given, const QORSmrPtr<IQoriType>& type) {
  const Code code = CQoriType::codeOf(*type);
  if (given >= Code::Real32 && code >= Code::Real32) return value;
  const CQoriValue converted(*value, cimxml::scalarType(code));
  if (converted.relate(QoriRelation::Equal, *value) != QoriTruth::True) raiseWrongValue(instance, property, *type);
  return value;
}

// A value that arrived as another type than the declared one, null for NULL.
IQoriValue::Pointer adapted(const CimXmlInstance& instance, const CimXmlProperty& property,
                            const IQoriValue::Pointer& value, const QORSmrPtr<IQoriType>& type) {
  if (value.IsNull()) return value;
  const Code code = CQoriType::codeOf(*type);
  const Code given = CQoriType::codeOf(*value->getType());
  if (!canStandFor(given, code)) raiseWrongType(instance, property, given, *type);
  if (given == Code::String && code == Code::DateTime) return typed(instance, property, value, *type);
  return isNumber(given) && isNumber(code) ? sameNumber(instance, property, value, given, type) : value;
}

// An array's elements are changed one by one.
template <class Change>
IQoriValue::Pointer changed(const IQoriValue::Pointer& value, const QORSmrPtr<IQoriType>& type, const Change& change) {
  if (!value->isArray()) return change(value);
  QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List);
  QORValSlistIterator<IQoriValue::Pointer> it(*value->getArray());
  while (++it) elements->append(change(it.key()));
  return IQoriValue::Pointer(new CQoriValue(elements, type));
}

// Of the declared type, or of one whose values the declared type can say.
IQoriValue::Pointer typedValue(const CimXmlInstance& instance, const CimXmlProperty& property,
                               const QORSmrPtr<IQoriType>& type) {
  const Code code = CQoriType::codeOf(*type);
  const IQoriValue::Pointer& value = property.value;
  if (value.IsNull() || (property.type == code && property.isArray == type->isArray())) return value;
  const bool isText = property.type == Code::Unknown;
  if (property.isArray != type->isArray()) {
    raiseWrongType(instance, property, isText ? Code::String : property.type, *type);
  }
  if (isText) {
    return changed(value, type, [&](const auto& one) { return typed(instance, property, one, *type); });
  }
  const QORSmrPtr<IQoriType> kept = code == Code::DateTime ? type : value->getType();
  return changed(value, kept, [&](const auto& one) { return adapted(instance, property, one, type); });
}

}  // namespace

CimXmlObjects::CimXmlObjects(const QORString& nameSpace) : _nameSpace(nameSpace) {}

bool CimXmlObjects::hasColumns(const Known& known, const CimXmlInstance& instance) noexcept {
  const std::span<const CimXmlProperty> properties = instance.properties();
  if (known.count != properties.size()) return false;
  const ModelLayout& layout = *known.shape->layout;
  if (!repeatOthers(properties, known.kept, layout)) return false;
  const std::size_t columns = layout.getPropertyCount();
  for (std::size_t i = 0; i < columns; ++i) {
    const CimXmlProperty& property = properties[known.kept.empty() ? i : known.kept[i]];
    const QORuint32 position = static_cast<QORuint32>(i);
    const IQoriType& type = *layout.getType(position);
    const Code code = property.type == Code::Unknown ? Code::String : property.type;
    if (!(layout.getName(position) == property.name) || CQoriType::codeOf(type) != code ||
        type.isArray() != property.isArray) {
      return false;
    }
  }
  return true;
}

// Instances of one class may come from several namespaces, with and without names.
bool CimXmlObjects::fits(const Known& known, const CimXmlInstance& instance) const {
  const ModelShape& shape = *known.shape;
  if (!hasColumns(known, instance) || !(shape.nameSpace == nameSpaceOf(instance))) return false;
  if (shape.keyPositions.empty()) return keyPositions(instance, *shape.layout).empty();
  return !instance.name.IsNull();
}

QORString CimXmlObjects::nameSpaceOf(const CimXmlInstance& instance) const {
  return instance.name.IsNull() ? _nameSpace : instance.name->getNameSpacePath()->getNameSpace();
}

CimXmlObjects::Known CimXmlObjects::makeShape(const CimXmlInstance& instance) const {
  const std::span<const CimXmlProperty> properties = instance.properties();
  Known known;
  known.count = properties.size();
  std::vector<ModelLayout::Column> columns;
  std::unordered_set<std::string> names;
  for (std::size_t i = 0; i < properties.size(); ++i) {
    if (!names.insert(fold(properties[i].name)).second) continue;
    columns.push_back({properties[i].name, columnType(properties[i])});
    known.kept.push_back(i);
  }
  if (known.kept.size() == properties.size()) known.kept.clear();
  const QORSmrPtr<ModelLayout> layout(new ModelLayout(columns));
  known.shape = QORSmrPtr<ModelShape>(
      new ModelShape(nameSpaceOf(instance), instance.className, layout, keyPositions(instance, *layout)));
  return known;
}

const CimXmlObjects::Known& CimXmlObjects::shapeOf(const CimXmlInstance& instance) {
  std::vector<Known>& known = _known[std::string(instance.className.view())];
  for (const Known& candidate : known) {
    if (fits(candidate, instance)) return candidate;
  }
  if (known.size() == kLayouts) known.erase(known.begin());
  return known.emplace_back(makeShape(instance));
}

QORSmrPtr<IQoriObject> CimXmlObjects::make(const CimXmlInstance& instance) {
  const Known& known = shapeOf(instance);
  const std::span<const CimXmlProperty> properties = instance.properties();
  std::vector<IQoriValue::Pointer> values;
  const std::size_t columns = known.shape->layout->getPropertyCount();
  values.reserve(columns);
  for (std::size_t i = 0; i < columns; ++i) {
    values.push_back(properties[known.kept.empty() ? i : known.kept[i]].value);
  }
  return ModelInstance::create(known.shape, values, instance.name);
}

QORSmrPtr<IQoriObject> CimXmlObjects::make(const CimXmlInstance& instance, const QORSmrPtr<ModelShape>& shape,
                                           QORuint64 identity) {
  const ModelLayout& layout = *shape->layout;
  std::vector<IQoriValue::Pointer> values(layout.getPropertyCount());
  std::vector<bool> given(values.size(), false);
  for (const CimXmlProperty& property : instance.properties()) {
    const QORsint32 position = layout.getPosition(property.name);
    if (position < 0) continue;
    const std::size_t at = static_cast<std::size_t>(position);
    if (given[at]) continue;
    given[at] = true;
    values[at] = typedValue(instance, property, layout.getType(static_cast<QORuint32>(position)));
  }
  return ModelInstance::create(shape, values, instance.name, identity);
}
