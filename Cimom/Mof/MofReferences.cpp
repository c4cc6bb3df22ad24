// References by alias and by path text. Both end in a name with the
// repository's spelling and typed keys, so that equal paths have equal texts.
// Tested by tests/unit/Mof/MofInstanceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <string>
#include <utility>

#include "Cimom/Mof/MofValues.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

namespace {

// A key that is a reference holds a path in quotes, which doubles the
// backslashes of the paths inside: a chain of a few dozen references would fill any memory.
constexpr std::size_t kMaximumPathLength = 16384;

QORSmrPtr<IQoriInstanceName> makeName(const QORString& nameSpace, const QORString& className,
                                      const QORSmrPtr<IQoriInstanceName::KeyList>& keys) {
  const QORSmrPtr<IQoriNameSpacePath> path(new CQoriNameSpacePath(QORString::emptyString(), nameSpace));
  return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(className, keys, path));
}

const MofPropertySyntax* findProperty(const std::vector<MofPropertySyntax>& properties, const QORString& name) {
  for (const MofPropertySyntax& property : properties) {
    if (property.name.text.isEqualCaseInsensitive(name)) return &property;
  }
  return nullptr;
}

// The type that a key's value has by itself.
const MofType& naturalType(const MofValueSyntax& value) {
  switch (value.kind) {
    case MofValueSyntax::Kind::Boolean:
      return *findMofType("boolean");
    case MofValueSyntax::Kind::Integer:
      return *findMofType(value.flag ? "sint64" : "uint64");
    case MofValueSyntax::Kind::Real:
      return *findMofType("real64");
    case MofValueSyntax::Kind::Char16:
      return *findMofType("char16");
    default:
      return *findMofType("string");
  }
}

}  // namespace

// --- aliases -------------------------------------------------------------------

MofValues::Scope& MofValues::scopeAt(QORuint32 index) {
  if (index >= _scopes.size()) _scopes.resize(index + 1);
  return _scopes[index];
}

void MofValues::importScope(QORuint32 into, QORuint32 from) {
  if (into != from) scopeAt(into).imports.push_back(from);
}

void MofValues::defineAlias(const MofInstanceSyntax& instance) {
  if (instance.alias.text.isEmpty()) return;
  const auto [entry, isNew] = scopeAt(instance.scope).aliases.try_emplace(foldMofName(instance.alias.text));
  if (isNew) {
    entry->second.instance = &instance;
    return;
  }
  for (Alias* alias = &entry->second; alias != nullptr; alias = alias->elsewhere.get()) {
    if (!alias->instance->nameSpace.isEqualCaseInsensitive(instance.nameSpace)) continue;
    if (alias->rival == nullptr) alias->rival = &instance;
    return;
  }
  auto added = std::make_unique<Alias>();
  added->instance = &instance;
  added->elsewhere = std::move(entry->second.elsewhere);
  entry->second.elsewhere = std::move(added);
}

void MofValues::resolveAlias(const MofInstanceSyntax& instance, const QORSmrPtr<IQoriInstanceName>& name) {
  if (instance.alias.text.isEmpty()) return;
  Alias* alias = findAlias(instance.alias.text, instance.scope);
  while (alias != nullptr && alias->instance != &instance) alias = alias->elsewhere.get();
  if (alias != nullptr) alias->name = name;
}

MofValues::Alias* MofValues::findAlias(const QORString& name, QORuint32 scope) {
  const std::string folded = foldMofName(name);
  Scope& own = scopeAt(scope);
  if (const auto found = own.aliases.find(folded); found != own.aliases.end()) return &found->second;
  for (const QORuint32 import : own.imports) {
    Scope& lent = _scopes[import];
    if (const auto found = lent.aliases.find(folded); found != lent.aliases.end()) return &found->second;
  }
  return nullptr;
}

// --- references ----------------------------------------------------------------

IQoriValue::Pointer MofValues::makeReference(const MofValueSyntax& value, const Place& place) {
  QORSmrPtr<IQoriInstanceName> name;
  if (value.kind == MofValueSyntax::Kind::Alias) {
    name = nameOfAlias(value, place);
  } else if (value.kind == MofValueSyntax::Kind::Text) {
    name = nameOfPath(value, place);
  } else {
    throw MofFault{value.at, std::string("found ") + describeMofValue(value) +
                                 ", expected a reference: an alias or the text of an instance path"};
  }
  if (place.property.isKey && name->toString().length() > kMaximumPathLength) {
    throw MofFault{value.at, "the path in key " + textOf(place.property.name) + " is longer than " +
                                 std::to_string(kMaximumPathLength) + " bytes"};
  }
  requireDerived(name->getNameSpacePath()->getNameSpace(), name->getClassName(), place.property.referenceClass,
                 value.at);
  return IQoriValue::Pointer::Make<CQoriValue>(name);
}

QORSmrPtr<IQoriInstanceName> MofValues::nameOfAlias(const MofValueSyntax& value, const Place& place) {
  Alias* const first = findAlias(value.text, place.scope);
  const std::string name = textOf(value.text);
  if (first == nullptr) {
    if (_document.hasRefusedAlias(value.text)) {
      refuseConsequence({value.at, "the instance of alias " + name + " is left out, and what refers to it"});
    }
    const MofFault fault{value.at, "unknown alias " + name};
    if (_document.isIncomplete) refuseConsequence(fault);
    throw MofFault(fault);
  }
  Alias& alias = chooseAlias(*first, value, place);
  if (!alias.name.IsNull()) return alias.name;
  if (alias.isRefused) refuseConsequence({value.at, "the path of " + name + " has a fault"});
  if (alias.isOpen) throw MofFault{value.at, "the path of " + name + " depends on itself"};
  return nameOfInstance(alias, value, place);
}

// Of several instances with one alias the one in the namespace of the use is meant.
MofValues::Alias& MofValues::chooseAlias(Alias& first, const MofValueSyntax& value, const Place& place) const {
  Alias* chosen = &first;
  while (chosen != nullptr && !chosen->instance->nameSpace.isEqualCaseInsensitive(place.nameSpace)) {
    chosen = chosen->elsewhere.get();
  }
  if (chosen == nullptr && first.elsewhere != nullptr) {
    refuseAmbiguous(value, place, *first.instance, *first.elsewhere->instance);
  }
  if (chosen == nullptr) chosen = &first;
  if (chosen->rival != nullptr) refuseAmbiguous(value, place, *chosen->instance, *chosen->rival);
  return *chosen;
}

void MofValues::refuseAmbiguous(const MofValueSyntax& value, const Place& place, const MofInstanceSyntax& first,
                                const MofInstanceSyntax& second) const {
  throw MofFault{value.at,
                 "alias " + textOf(value.text) + " is defined twice, at " + describeMofPlace(first.alias.at) +
                     " and at " + describeMofPlace(second.alias.at),
                 "alias " + std::to_string(place.scope) + foldMofName(value.text)};
}

QORSmrPtr<IQoriInstanceName> MofValues::nameOfInstance(Alias& alias, const MofValueSyntax& value, const Place& place) {
  const MofInstanceSyntax& instance = *alias.instance;
  alias.isOpen = true;
  try {
    const Place inside{place.property, instance.nameSpace, instance.scope, place.depth + 1};
    alias.name = nameFromKeys(shapeOf(instance), instance.properties, inside, value.at);
    alias.isOpen = false;
  } catch (const MofFault& fault) {
    alias.isRefused = true;
    if (!_report.isLenient() || fault.at.offset == value.at.offset) throw;
    // What is told of the other instance does not tell that this one is left out, too.
    _report.add(fault);
    throw MofFault{value.at, "the path of " + textOf(value.text) + " has a fault"};
  }
  return alias.name;
}

QORSmrPtr<IQoriInstanceName> MofValues::nameOfPath(const MofValueSyntax& value, const Place& place) {
  const MofObjectPath path = readMofObjectPath(value.text, value.at);
  const bool isElsewhere = !path.nameSpace.isEmpty() && !path.nameSpace.isEqualCaseInsensitive(place.nameSpace);
  const QORString& nameSpace = isElsewhere ? path.nameSpace : place.nameSpace;
  // Another namespace may belong to another object manager.
  if (isElsewhere && _sink.findClass(nameSpace, path.className).IsNull()) return nameAsWritten(path);
  const MofClassShape& shape = requireShape(nameSpace, {path.className, value.at});
  for (const MofPropertySyntax& key : path.keys) {
    const MofPropertyShape* const property = shape.find(key.name.text);
    if (property != nullptr && property->isKey) continue;
    throw MofFault{value.at, "class " + textOf(shape.className) + " has no key " + textOf(key.name.text)};
  }
  return nameFromKeys(shape, path.keys, {place.property, nameSpace, place.scope, place.depth + 1}, value.at);
}

QORSmrPtr<IQoriInstanceName> MofValues::nameAsWritten(const MofObjectPath& path) const {
  QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList());
  for (const MofPropertySyntax& key : path.keys) {
    const IQoriValue::Pointer value = makeMofScalar(key.value, naturalType(key.value));
    keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(key.name.text, value, false)));
  }
  return makeName(path.nameSpace, path.className, keys);
}

QORSmrPtr<IQoriInstanceName> MofValues::nameFromKeys(const MofClassShape& shape,
                                                     const std::vector<MofPropertySyntax>& values, const Place& place,
                                                     const MofLocation& at) {
  if (place.depth > kMofMaximumNesting) throw MofFault{at, "references in keys are nested too deeply"};
  QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList());
  for (const MofPropertyShape& property : shape.properties) {
    if (!property.isKey) continue;
    const MofPropertySyntax* const given = findProperty(values, property.name);
    const IQoriValue::Pointer value = given == nullptr
                                          ? property.defaultValue
                                          : make(given->value, property, place.nameSpace, place.scope, place.depth);
    if (value.IsNull()) {
      throw MofFault{at, "the referenced instance of " + textOf(shape.className) + " has no value for its key " +
                             textOf(property.name)};
    }
    keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(property.name, value, false)));
  }
  if (keys->entries() == 0) throw MofFault{at, "class " + textOf(shape.className) + " has no key"};
  return makeName(shape.nameSpace, shape.className, keys);
}
