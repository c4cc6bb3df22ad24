// A value is taken as it is, read from its text, or made anew where it is an object.
// Tested by tests/unit/Server/WrittenInstanceTest.cpp, tests/unit/Server/InstanceOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/WrittenInstance.h"

#include <algorithm>
#include <string>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlValues.h"
#include "Cimom/Embedded/DeclarationHelpers.h"
#include "Cimom/Embedded/RepositoryError.h"
#include "Cimom/Model/ModelClassObject.h"
#include "Cimom/Server/DeclaredKeys.h"
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
                 const CimPropertyDeclaration& declared, const IQoriType& type)
      : _manager(manager),
        _space(space),
        _className(className),
        _declared(declared),
        _property(declared.name),
        _type(type) {}

  Value read(const CimXmlProperty& property) const {
    const Value& value = property.value;
    const Code given = property.type;
    if (value.IsNull()) {
      requireNullFits(property);
      return value;
    }
    if (value->isArray() != _type.isArray()) raiseMismatch(*value->getType());
    if (!value->isArray()) return readScalar(value, given);
    requireSize(value->getArray()->entries());
    QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List);
    QORValSlistIterator<Value> it(*value->getArray());
    while (++it) elements->append(it.key().IsNull() ? it.key() : readScalar(it.key(), given));
    return Value(new CQoriValue(elements, CQoriType::arrayOf(cimxml::scalarType(code()))));
  }

 private:
  Code code() const { return CQoriType::codeOf(_type); }

  // NULL has the type that its element tells; clients tell that of a text where it stands for an object.
  void requireNullFits(const CimXmlProperty& property) const {
    const Code given = property.type;
    if (given == Code::Unknown) return;
    const bool isFit = given == code() || (given == Code::String && code() == Code::Object);
    if (isFit && property.isArray == _type.isArray()) return;
    const QORSmrPtr<IQoriType>& scalar = cimxml::scalarType(given);
    raiseMismatch(property.isArray ? *CQoriType::arrayOf(scalar) : *scalar);
  }

  Value readScalar(const Value& value, Code given) const {
    if (given == Code::Unknown && code() < Code::Reference) return readText(value);
    if (CQoriType::codeOf(*value->getType()) != code()) raiseMismatch(*value->getType());
    if (code() == Code::Reference) return readReference(value);
    return code() == Code::Object ? readObject(value) : value;
  }

  void requireSize(std::size_t count) const {
    if (_declared.arraySize < 0 || count <= static_cast<std::size_t>(_declared.arraySize)) return;
    raise(CimStatus::TypeMismatch, _className, _property,
          " has " + std::to_string(_declared.arraySize) + " elements, " + std::to_string(count) + " are given");
  }

  Value readReference(const Value& value) const {
    const QORSmrPtr<IQoriInstanceName> path = withDeclaredKeys(_manager, _space.nameSpace(), value->getReference());
    const std::string shown = '"' + std::string(path->toString().view()) + '"';
    if (path->getKeys()->isEmpty()) {
      raise(CimStatus::InvalidParameter, _className, _property, " refers to an instance, and " + shown + " is none");
    }
    if (isOfThisSpace(*path->getNameSpacePath())) requireKnown(*path, shown);
    return Value(new CQoriValue(path));
  }

  // Whether the path means an instance of the space that is written to; what others have is not looked at.
  bool isOfThisSpace(const IQoriNameSpacePath& path) const {
    return path.getHost().isEmpty() &&
           (path.getNameSpace().isEmpty() || path.getNameSpace().isEqualCaseInsensitive(_space.nameSpace()));
  }

  void requireKnown(const IQoriInstanceName& path, const std::string& shown) const {
    if (_space.find(path.getClassName()).IsNull()) {
      raise(CimStatus::InvalidParameter, _className, _property, " refers to " + shown + ", whose class is not there");
    }
    if (_declared.referenceClass.isEmpty() || _space.isA(path.getClassName(), _declared.referenceClass)) return;
    raise(CimStatus::InvalidParameter, _className, _property,
          " refers to a " + std::string(_declared.referenceClass.view()) + ", the given value to " + shown);
  }

  // The class that instances in the property must have; empty: any, and classes, too.
  QORString embeddedClass() const {
    const CimQualifier* const qualifier = _declared.findQualifier("EmbeddedInstance");
    return qualifier == nullptr || qualifier->value.IsNull() ? QORString::emptyString() : qualifier->value->toString();
  }

  void requireEmbedded(const IQoriObject& object, bool isClass) const {
    const QORString wanted = embeddedClass();
    if (wanted.isEmpty() || (!isClass && _space.isA(object.getClassName(), wanted))) return;
    raise(CimStatus::TypeMismatch, _className, _property,
          " holds a " + std::string(wanted.view()) + ", the given value is " + (isClass ? "the class " : "a ") +
              std::string(object.getClassName().view()));
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
    const bool isClass = dynamic_cast<const ModelClassObject*>(object.Get()) != nullptr;
    if (!isClass) _space.require(object->getClassName());
    requireEmbedded(*object, isClass);
    if (isClass) return value;
    CimXmlInstance parts;
    parts.className = object->getClassName();
    for (QORuint32 i = 0; i < object->getPropertyCount(); ++i) {
      const QORSmrPtr<IQoriProperty> property(object->getPropertyAt(i));
      CimXmlProperty& part = parts.add(property->getName().view());
      part.value = property->getValue();
      part.isArray = property->getType()->isArray();
      part.type = CQoriType::codeOf(*property->getType());
    }
    const ServerClasses::Class handle = _space.find(parts.className);
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
  const CimPropertyDeclaration& _declared;
  const QORString& _property;
  const IQoriType& _type;
};

const CimPropertyDeclaration& declarationOf(const CQoriClass& model, const CimInstanceProperty& property) {
  return model.properties()[static_cast<std::size_t>(model.position(property.name))];
}

bool isRequired(const CQoriClass& model, QORuint32 position) {
  return model.properties()[position].hasFlag("Required") && !model.isKey(position);
}

// In the standard that is so of what has no such qualifier, too; schemas are not that strict.
bool isNotWritten(const CimPropertyDeclaration& declared) {
  return declared.findQualifier("Write") != nullptr && !declared.hasFlag("Write");
}

[[noreturn]] void raiseRequired(const CQoriClass& model, const QORString& property) {
  raise(CimStatus::InvalidParameter, model.getClassName(), property, " is required and has no value");
}

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
    const CimPropertyDeclaration& declared = model.properties()[position];
    const PropertyReader reader(manager, space, model.getClassName(), declared, *model.type(position));
    properties.push_back({declared.name, reader.read(property)});
  }
  return properties;
}

void requireValues(const CQoriClass& model, const std::vector<CimInstanceProperty>& instance) {
  for (QORuint32 position = 0; position < model.properties().size(); ++position) {
    if (!isRequired(model, position)) continue;
    const CimPropertyDeclaration& declared = model.properties()[position];
    const auto given = std::find_if(instance.begin(), instance.end(), [&](const CimInstanceProperty& each) {
      return each.name.isEqualCaseInsensitive(declared.name);
    });
    const Value& value = given == instance.end() ? declared.defaultValue : given->value;
    if (value.IsNull()) raiseRequired(model, declared.name);
  }
}

void requireChangedValues(const CQoriClass& model, const std::vector<CimInstanceProperty>& changes) {
  for (const CimInstanceProperty& each : changes) {
    if (!each.value.IsNull() || !isRequired(model, static_cast<QORuint32>(model.position(each.name)))) continue;
    raiseRequired(model, each.name);
  }
}

std::vector<CimInstanceProperty> allowedChanges(const CQoriClass& model, const IQoriObject& now,
                                                std::vector<CimInstanceProperty> changes) {
  std::erase_if(changes, [&](const CimInstanceProperty& each) {
    if (!isNotWritten(declarationOf(model, each))) return false;
    if (embedded::sameValue(now.getProperty(each.name, true)->getValue(), each.value)) return true;
    raise(CimStatus::InvalidParameter, model.getClassName(), each.name,
          " is not written: its class declares Write(false)");
  });
  return changes;
}
