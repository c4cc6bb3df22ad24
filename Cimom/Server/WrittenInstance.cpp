// A value is taken as it is, read from its text, or made anew where it is an object.
// Tested by tests/unit/Server/InstanceOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/WrittenInstance.h"

#include <string>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlValues.h"
#include "Cimom/Embedded/RepositoryError.h"
#include "Cimom/Model/ModelClassObject.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

using Value = QORSmrPtr<IQoriValue>;
using Code = CQoriType::Code;
using embedded::CimStatus;

[[noreturn]] void raise(CimStatus status, const QORString& className, const QORString& property,
                        const std::string& message) {
  throw CimStatusException(static_cast<QORuint32>(status), "instance of " + std::string(className.view()) +
                                                               ": property " + std::string(property.view()) + message);
}

// Brings the values of one property into its declared type.
class PropertyReader {
 public:
  PropertyReader(EmbeddedObjectManager& manager, const ServerClasses& space, const QORString& className,
                 const QORString& property, const IQoriType& type)
      : _manager(manager), _space(space), _className(className), _property(property), _type(type) {}

  Value read(const Value& value, Code given) const {
    if (value.IsNull()) return value;
    if (value->isArray() != _type.isArray()) raiseMismatch(*value->getType());
    if (!value->isArray()) return readScalar(value, given);
    QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List);
    QORValSlistIterator<Value> it(*value->getArray());
    while (++it) elements->append(it.key().IsNull() ? it.key() : readScalar(it.key(), given));
    return Value(new CQoriValue(elements, CQoriType::arrayOf(cimxml::scalarType(code()))));
  }

 private:
  Code code() const { return CQoriType::codeOf(_type); }

  Value readScalar(const Value& value, Code given) const {
    if (given == Code::Unknown && code() < Code::Reference) return readText(value);
    if (CQoriType::codeOf(*value->getType()) != code()) raiseMismatch(*value->getType());
    return code() == Code::Object ? readObject(value) : value;
  }

  Value readText(const Value& value) const {
    Value read;
    if (cimxml::readValue(value->toString().view(), code(), read)) return read;
    raise(CimStatus::TypeMismatch, _className, _property,
          " is " + std::string(_type.getName().view()) + ", the given value is \"" +
              std::string(value->toString().view()) + '"');
  }

  Value readObject(const Value& value) const {
    const QORSmrPtr<IQoriObject> object = value->getObject();
    if (dynamic_cast<const ModelClassObject*>(object.Get()) != nullptr) return value;
    CimXmlInstance parts;
    parts.className = object->getClassName();
    for (QORuint32 i = 0; i < object->getPropertyCount(); ++i) {
      const QORSmrPtr<IQoriProperty> property(object->getPropertyAt(i));
      CimXmlProperty& part = parts.add(property->getName().view());
      part.value = property->getValue();
      part.isArray = property->getType()->isArray();
      part.type = CQoriType::codeOf(*property->getType());
    }
    const ServerClasses::Class handle = _space.require(parts.className);
    const CimInstanceDeclaration declaration{
        parts.className, writtenProperties(_manager, _space, ServerClasses::modelOf(handle), parts)};
    return Value(new CQoriValue(_manager.sink().makeObject(_space.nameSpace(), declaration)));
  }

  [[noreturn]] void raiseMismatch(const IQoriType& given) const {
    const auto named = [](const IQoriType& type) {
      return std::string(type.getName().view()) + (type.isArray() ? "[]" : "");
    };
    raise(CimStatus::TypeMismatch, _className, _property,
          " is " + named(_type) + ", the given value is " + named(given));
  }

  EmbeddedObjectManager& _manager;
  const ServerClasses& _space;
  const QORString& _className;
  const QORString& _property;
  const IQoriType& _type;
};

}  // namespace

std::vector<CimInstanceProperty> writtenProperties(EmbeddedObjectManager& manager, const ServerClasses& space,
                                                   const CQoriClass& model, const CimXmlInstance& instance) {
  std::vector<CimInstanceProperty> properties;
  std::vector<bool> isGiven(model.properties().size(), false);
  for (const CimXmlProperty& property : instance.properties()) {
    const QORsint32 found = model.position(property.name);
    if (found < 0) {
      throw CimStatusException(static_cast<QORuint32>(CimStatus::NoSuchProperty),
                               "class " + std::string(model.getClassName().view()) + " has no property " +
                                   std::string(property.name.view()));
    }
    const QORuint32 position = static_cast<QORuint32>(found);
    if (isGiven[position]) raise(CimStatus::InvalidParameter, model.getClassName(), property.name, " is given twice");
    isGiven[position] = true;
    const QORString& name = model.shape()->layout->getName(position);
    const PropertyReader reader(manager, space, model.getClassName(), name, *model.type(position));
    properties.push_back({name, reader.read(property.value, property.type)});
  }
  return properties;
}
