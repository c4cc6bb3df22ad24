// Declarations of instances, property by property, and embedded objects.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofValues.h"

#include <utility>

#include "Cimom/Mof/MofParser.h"
#include "cimom/CQoriValue.h"

namespace {

// What a property holds, whose class may be any.
std::string describeObjects(const QORString& className, const char* ofClass, const char* ofAny) {
  return className.isEmpty() ? ofAny : ofClass + textOf(className);
}

}  // namespace

const MofClassShape& MofValues::shapeOf(const MofInstanceSyntax& instance) {
  return requireShape(instance.nameSpace, instance.className);
}

const MofClassShape& MofValues::requireShape(const QORString& nameSpace, const MofName& className) {
  try {
    const MofClassShape* const shape = _shapes.find(nameSpace, className.text);
    if (shape != nullptr) return *shape;
  } catch (const QoriBaseException& refusal) {
    throw MofFault{className.at, refusal.what()};
  }
  const std::string subject = subjectOfMofClass(nameSpace, className.text);
  const std::string what = "class " + textOf(className.text);
  if (_document.hasRefusedClass(className.text)) {
    refuseConsequence({className.at, what + " is left out, and what needs it", subject});
  }
  const MofFault fault{className.at, what + " is not declared in namespace " + textOf(nameSpace), subject};
  if (_document.isIncomplete) refuseConsequence(fault);
  throw MofFault(fault);
}

void MofValues::refuseConsequence(const MofFault& fault) const {
  throw _report.isLenient() ? MofFault(fault) : MofFault{};
}

// What is at fault in the keys is told where the instance itself is read.
std::string MofValues::pathOf(const MofInstanceSyntax& instance) {
  try {
    const MofPropertyShape none;
    const Place place{none, instance.nameSpace, instance.scope, 0};
    return textOf(nameFromKeys(shapeOf(instance), instance.properties, place, instance.at)->toString());
  } catch (const MofFault&) {
    return {};
  }
}

void MofValues::requireDerived(const QORString& nameSpace, const QORString& className, const QORString& ancestor,
                               const MofLocation& at) const {
  if (_shapes.isA(nameSpace, className, ancestor)) return;
  throw MofFault{at, "found an instance of " + textOf(className) + ", expected one of " + textOf(ancestor) +
                         " or of a class derived from it"};
}

bool MofValues::declare(const MofInstanceSyntax& instance, const MofClassShape& shape, QORuint32 depth,
                        CimInstanceDeclaration& out) {
  out.className = shape.className;
  out.properties.reserve(instance.properties.size());
  bool isSound = true;
  std::vector<const MofPropertySyntax*> given(shape.properties.size(), nullptr);
  for (const MofPropertySyntax& property : instance.properties) {
    if (_report.isFull()) return false;
    try {
      const MofPropertyShape& declared = requireProperty(property.name, shape);
      if (std::exchange(given[declared.position], &property) != nullptr) {
        throw MofFault{property.name.at, "property " + textOf(declared.name) + " is given twice"};
      }
      out.properties.push_back(
          {declared.name, make(property.value, declared, instance.nameSpace, instance.scope, depth)});
    } catch (const MofFault& fault) {
      isSound = false;
      _report.add(fault);
    }
  }
  return isSound;
}

const MofPropertyShape& MofValues::requireProperty(const MofName& name, const MofClassShape& shape) {
  const MofPropertyShape* const property = shape.find(name.text);
  if (property != nullptr) return *property;
  const std::string similar = shape.similarName(name.text);
  throw MofFault{name.at, "class " + textOf(shape.className) + " has no property " + textOf(name.text) +
                              (similar.empty() ? "" : "; did you mean " + similar + '?')};
}

bool MofValues::checkKeys(const MofInstanceSyntax& instance, const CimInstanceDeclaration& declaration,
                          const MofClassShape& shape) {
  bool isSound = true;
  for (const MofPropertyShape& property : shape.properties) {
    if (!property.isKey) continue;
    bool hasValue = !property.defaultValue.IsNull();
    for (const CimInstanceProperty& given : declaration.properties) {
      if (given.name == property.name) hasValue = !given.value.IsNull();
    }
    if (hasValue) continue;
    isSound = false;
    _report.add(instance.className.at,
                "the instance of " + textOf(shape.className) + " has no value for its key " + textOf(property.name));
  }
  return isSound;
}

IQoriValue::Pointer MofValues::make(const MofValueSyntax& value, const MofPropertyShape& property,
                                    const QORString& nameSpace, QORuint32 scope, QORuint32 depth) {
  const Place place{property, nameSpace, scope, depth};
  if (value.kind == MofValueSyntax::Kind::Null) return {};
  if (!property.isArray) return makeElement(value, place);
  const bool isArray = value.kind == MofValueSyntax::Kind::Array;
  if (!isArray && property.type->kind == MofType::Kind::Object) {
    throw MofFault{value.at, std::string("found ") + describeMofValue(value) + ", expected an array of " +
                                 describeObjects(property.embeddedClass, "embedded instances of ", "embedded objects") +
                                 ", in braces"};
  }
  return makeMofValue(value, *property.type, true, property.arraySize,
                      [this, &place](const MofValueSyntax& element) { return makeElement(element, place); });
}

IQoriValue::Pointer MofValues::makeElement(const MofValueSyntax& value, const Place& place) {
  using Kind = MofValueSyntax::Kind;
  const MofType& type = *place.property.type;
  if (type.kind == MofType::Kind::Reference) return makeReference(value, place);
  if (type.kind != MofType::Kind::Object) return makeMofScalar(value, type);
  if (value.kind == Kind::Instance) return makeObject(*value.instance, place);
  if (value.kind == Kind::Text) return makeObjectFromText(value, place);
  throw MofFault{value.at,
                 std::string("found ") + describeMofValue(value) + ", expected an " +
                     describeObjects(place.property.embeddedClass, "embedded instance of ", "embedded object") +
                     ": a string or \"instance of\""};
}

IQoriValue::Pointer MofValues::makeObject(const MofInstanceSyntax& instance, const Place& place) {
  const MofClassShape& shape = shapeOf(instance);
  requireDerived(instance.nameSpace, shape.className, place.property.embeddedClass, instance.className.at);
  CimInstanceDeclaration declaration;
  if (!declare(instance, shape, place.depth + 1, declaration)) throw MofFault{};
  try {
    return IQoriValue::Pointer::Make<CQoriValue>(_sink.makeObject(instance.nameSpace, declaration));
  } catch (const QoriBaseException& refusal) {
    throw MofFault{instance.className.at, refusal.what()};
  }
}

IQoriValue::Pointer MofValues::makeObjectFromText(const MofValueSyntax& value, const Place& place) {
  const MofSource source(textOf(value.text), value.at);
  try {
    MofParser::Context context;
    context.nameSpace = place.nameSpace;
    context.scope = place.scope;
    MofParser parser(source, _document, _report, context);
    const MofParser::EmbeddedObject object = parser.readEmbeddedObject(place.depth + 1);
    if (object.definition != nullptr) return makeClassObject(*object.definition, place);
    return makeObject(*object.instance, place);
  } catch (const MofFault& fault) {
    // Recorded here, while the text of the fault's place lives.
    _report.add(fault);
    throw MofFault{};
  }
}

IQoriValue::Pointer MofValues::makeClassObject(const MofClassSyntax& definition, const Place& place) const {
  if (!place.property.embeddedClass.isEmpty()) {
    throw MofFault{definition.name.at,
                   "found a class, expected an instance of " + textOf(place.property.embeddedClass)};
  }
  return IQoriValue::Pointer::Make<CQoriValue>(_makeClass(definition));
}
