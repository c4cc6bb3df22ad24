// Made through the object manager's sink, or by hand where there is no layout.
// SPDX-License-Identifier: Apache-2.0
#include "EngineThings.h"

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

using namespace filter_model;

namespace {

using Object = QORSmrPtr<IQoriObject>;

QORSmrPtr<IQoriValue> makeValue(const Value& value);

CimInstanceDeclaration declarationOf(const Thing& thing) {
  CimInstanceDeclaration declaration;
  declaration.className = QORString(thing.className);
  for (const auto& [name, value] : thing.properties)
    declaration.properties.push_back({QORString(name), makeValue(value)});
  return declaration;
}

// To the instance that the path names by its key Id.
QORSmrPtr<IQoriValue> makeReference(const Value& value) {
  const std::size_t colon = value.text.find(':');
  const std::size_t dot = value.text.find('.');
  const std::size_t quote = value.text.find('"');
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList());
  const QORString key(value.text.substr(quote + 1, value.text.size() - quote - 2));
  keys->append(new CQoriProperty("Id", QORSmrPtr<IQoriValue>(new CQoriValue(key)), false));
  const QORSmrPtr<IQoriNameSpacePath> path(new CQoriNameSpacePath("", QORString(value.text.substr(0, colon))));
  const QORString className(value.text.substr(colon + 1, dot - colon - 1));
  return new CQoriValue(QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(className, keys, path)));
}

QORSmrPtr<IQoriValue> makeArray(const Value& value) {
  const QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List());
  for (const Value& element : value.elements) elements->append(makeValue(element));
  return new CQoriValue(elements, CQoriType::find(QORString(value.type), false));
}

QORSmrPtr<IQoriValue> makeInteger(const Value& value) {
  const QORSmrPtr<IQoriType> type(CQoriType::find(QORString(value.type), false));
  if (value.isUnsigned()) return new CQoriValue(static_cast<unsigned long long>(value.integer), type);
  return new CQoriValue(static_cast<long long>(value.integer), type);
}

QORSmrPtr<IQoriValue> makeValue(const Value& value) {
  switch (value.kind) {
    case Kind::None:
      return {};
    case Kind::Integer:
      return makeInteger(value);
    case Kind::Real:
      return new CQoriValue(value.real, CQoriType::find(QORString(value.type), false));
    case Kind::Boolean:
      return new CQoriValue(value.truth, CQoriType::boolean);
    case Kind::Char:
      return new CQoriValue(static_cast<char16_t>(value.text[0]), CQoriType::char16);
    case Kind::Object:
      return new CQoriValue(value.object->properties.size() % 2 == 0 ? laidOutObject(*value.object)
                                                                     : loneObject(*value.object));
    case Kind::Reference:
      return makeReference(value);
    case Kind::Array:
      return makeArray(value);
    default:
      return new CQoriValue(QORString(value.text), CQoriType::find(QORString(value.type), false));
  }
}

CimPropertyDeclaration declarationOf(const PropertyType& property) {
  CimPropertyDeclaration declaration;
  declaration.name = QORString(property.name);
  declaration.type = CQoriType::find(QORString(property.type), property.isArray);
  if (property.type == "reference") declaration.referenceClass = "D_Lone";
  return declaration;
}

}  // namespace

Object laidOutObject(const Thing& thing) {
  return EmbeddedObjectManager::current()->sink().makeObject(kNameSpace, declarationOf(thing));
}

Object loneObject(const Thing& thing) {
  const QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList());
  for (const CimInstanceProperty& property : declarationOf(thing).properties) {
    const QORSmrPtr<IQoriType> type(property.value.IsNull() ? CQoriType::string : property.value->getType());
    properties->append(new CQoriProperty(property.name, type, property.value));
  }
  return new CQoriBaseObject(kNameSpace, QORString(thing.className), "", properties);
}

void declare(const Schema& schema) {
  CimDeclarationSink& sink = EmbeddedObjectManager::current()->sink();
  sink.begin();
  sink.createNamespace(kNameSpace);
  sink.createNamespace(kOther);
  for (const ClassType& type : schema.classes) {
    CimClassDeclaration declaration;
    declaration.name = QORString(type.name);
    declaration.superClass = QORString(type.superName);
    if (type.name == "D_Tie") {
      declaration.qualifiers.push_back({"Association", new CQoriValue(true, CQoriType::boolean)});
    }
    const ClassType* const parent = schema.find(type.superName);
    for (const PropertyType& property : type.properties) {
      if (parent == nullptr || !parent->has(property.name)) declaration.properties.push_back(declarationOf(property));
    }
    sink.declareClass(kNameSpace, declaration);
  }
  sink.commit();
}
