// Declarations and changes of instances, with the reasons to refuse them.
// Tested by tests/unit/Embedded/InstanceStoreTest.cpp, tests/unit/Embedded/LoadTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <string>

#include "Cimom/Embedded/DeclarationHelpers.h"
#include "Cimom/Embedded/MofText.h"
#include "Cimom/Embedded/ObjectStore.h"
#include "Cimom/Embedded/RepositoryError.h"
#include "Cimom/Model/ModelClassObject.h"

namespace embedded {

namespace {

// A path holds the paths of its reference keys, with quotes and backslashes
// escaped again: its length doubles with each reference to a reference.
constexpr std::size_t kLongestKeyReference = 16384;

void checkKeyReferences(const CQoriClass& model, const std::vector<QORSmrPtr<IQoriValue>>& values) {
  for (const QORuint32 position : model.keyPositions()) {
    const QORSmrPtr<IQoriInstanceName> name =
        values[position].IsNull() ? QORSmrPtr<IQoriInstanceName>() : values[position]->getReference();
    if (name.IsNull() || name->toString().length() <= kLongestKeyReference) continue;
    refuse(CimStatus::InvalidParameter, {"instance of ", model.getClassName().view(), ": the path in key ",
                                         model.shape()->layout->getName(position).view(), " is longer than ",
                                         std::to_string(kLongestKeyReference), " bytes"});
  }
}

}  // namespace

void ObjectStore::createNameSpace(const QORString& name, View view) {
  if (name.isEmpty()) refuse(CimStatus::InvalidNamespace, {"a namespace needs a name"});
  if (findNameSpace(name, view) != nullptr) return;
  if (_nameSpaceIndex.contains(name.view())) {
    refuse(CimStatus::AlreadyExists, {"namespace ", name.view(), " is being created by a load"});
  }
  auto space = std::make_unique<NameSpace>();
  space->name = name;
  space->isPending = becomesPending(view);
  _nameSpaces.push_back(std::move(space));
  NameSpace* const added = _nameSpaces.back().get();
  if (added->isPending) _pending->nameSpaces.push_back(added);
  _nameSpaceIndex.emplace(name.view(), added);
}

void ObjectStore::declareQualifier(const QORString& nameSpace, const CimQualifierDeclaration& declaration, View view) {
  NameSpace& space = requireNameSpace(nameSpace, view);
  const auto found = space.qualifiers.find(declaration.name.view());
  if (found != space.qualifiers.end()) {
    if (sameDeclaration(found->second, declaration)) return;
    refuse(CimStatus::AlreadyExists,
           {"qualifier ", found->second.name.view(), " is declared already, with another declaration"});
  }
  if (becomesPending(view)) _pending->qualifiers.emplace_back(&space, declaration.name.view());
  space.qualifiers.emplace(declaration.name.view(), declaration);
}

// Null at the root.
ClassEntry* ObjectStore::requireSuperClass(const NameSpace& space, const CimClassDeclaration& declaration, View view) {
  if (declaration.superClass.isEmpty()) return nullptr;
  ClassEntry* const superClass = findClass(space, declaration.superClass, view);
  if (superClass == nullptr) {
    refuse(CimStatus::InvalidSuperclass,
           {"class ", declaration.name.view(), ": superclass ", declaration.superClass.view(), " is not declared"});
  }
  return superClass;
}

void ObjectStore::declareClass(const QORString& nameSpace, const CimClassDeclaration& declaration, View view) {
  NameSpace& space = requireNameSpace(nameSpace, view);
  if (declaration.name.isEmpty()) refuse(CimStatus::InvalidParameter, {"a class needs a name"});
  const auto found = space.classIndex.find(declaration.name.view());
  if (found != space.classIndex.end()) {
    if (sameDeclaration(found->second->model().declaration(), declaration)) return;
    refuse(CimStatus::AlreadyExists,
           {"class ", found->second->name().view(), " is declared already, with another declaration"});
  }
  ClassEntry* const superClass = requireSuperClass(space, declaration, view);
  const QORSmrPtr<IQoriClass> handle(
      new CQoriClass(space.name, declaration, superClass == nullptr ? nullptr : &superClass->model()));
  addClass(space, std::make_unique<ClassEntry>(handle, superClass), view);
  if (!becomesPending(view)) noteClassChange();
}

// Of a name that no class has.
ClassEntry& ObjectStore::addClass(NameSpace& space, std::unique_ptr<ClassEntry> entry, View view) {
  entry->isPending = becomesPending(view);
  space.classes.push_back(std::move(entry));
  ClassEntry& added = *space.classes.back();
  if (added.isPending) _pending->classes.emplace_back(&space, &added);
  space.classIndex.emplace(added.name().view(), &added);
  return added;
}

void ObjectStore::addSource(const QORString& nameSpace, const QORString& className,
                            std::shared_ptr<InstanceProvider> provider) {
  NameSpace& space = requireNameSpace(nameSpace, View::Committed);
  const ClassEntry* const entry = findClass(space, className, View::Committed);
  if (entry == nullptr) {
    refuse(CimStatus::InvalidClass, {"provider for ", className.view(), ": the class is not declared"});
  }
  for (const LiveSource& source : space.sources) {
    if (source.entry != entry) continue;
    refuse(CimStatus::AlreadyExists, {"class ", entry->name().view(), " has a provider already"});
  }
  space.sources.push_back({entry, std::move(provider)});
}

ClassEntry& ObjectStore::requireConcreteClass(const NameSpace& space, const QORString& className, View view) const {
  ClassEntry* const entry = findClass(space, className, view);
  if (entry == nullptr) {
    refuse(CimStatus::InvalidClass, {"instance of ", className.view(), ": the class is not declared"});
  }
  if (entry->model().isAbstract()) {
    refuse(CimStatus::InvalidClass, {"instance of ", entry->name().view(), ": the class is abstract"});
  }
  return *entry;
}

void ObjectStore::setValues(const NameSpace& space, const CQoriClass& model,
                            const std::vector<CimInstanceProperty>& properties,
                            std::vector<QORSmrPtr<IQoriValue>>& values, View view) const {
  std::vector<bool> isGiven(values.size(), false);
  for (const CimInstanceProperty& property : properties) {
    const QORsint32 found = model.position(property.name);
    if (found < 0) {
      refuse(CimStatus::NoSuchProperty,
             {"instance of ", model.getClassName().view(), ": the class has no property ", property.name.view()});
    }
    const QORuint32 position = static_cast<QORuint32>(found);
    if (isGiven[position]) {
      refuse(CimStatus::InvalidParameter,
             {"instance of ", model.getClassName().view(), ": property ", property.name.view(), " is given twice"});
    }
    isGiven[position] = true;
    if (!property.value.IsNull() && !sameType(*property.value->getType(), *model.type(position))) {
      refuse(CimStatus::TypeMismatch, {"instance of ", model.getClassName().view(), ": property ", property.name.view(),
                                       " is ", typeText(*model.type(position)).view(), ", the given value is ",
                                       typeText(*property.value->getType()).view()});
    }
    values[position] = canonicalReference(space.name, property.value, view);
  }
}

std::vector<QORSmrPtr<IQoriValue>> ObjectStore::valuesFor(const NameSpace& space, const ClassEntry& entry,
                                                          const CimInstanceDeclaration& declaration, View view) const {
  std::vector<QORSmrPtr<IQoriValue>> values;
  values.reserve(entry.model().properties().size());
  for (const CimPropertyDeclaration& property : entry.model().properties()) values.push_back(property.defaultValue);
  setValues(space, entry.model(), declaration.properties, values, view);
  checkKeyReferences(entry.model(), values);
  return values;
}

StoredInstance& ObjectStore::createInstance(const QORString& nameSpace, const CimInstanceDeclaration& declaration,
                                            View view) {
  readLaterRows();
  NameSpace& space = requireNameSpace(nameSpace, view);
  ClassEntry& entry = requireConcreteClass(space, declaration.className, view);
  const CQoriClass& model = entry.model();
  const std::vector<QORSmrPtr<IQoriValue>> values = valuesFor(space, entry, declaration, view);
  if (model.keyPositions().empty()) {
    refuse(CimStatus::InvalidClass,
           {"instance of ", entry.name().view(), ": the class has no key property, so its instances have no path"});
  }
  for (const QORuint32 position : model.keyPositions()) {
    if (!values[position].IsNull()) continue;
    refuse(CimStatus::InvalidParameter, {"instance of ", entry.name().view(), ": key ",
                                         model.shape()->layout->getName(position).view(), " has no value"});
  }
  const QORSmrPtr<IQoriObject> object = ModelInstance::create(model.shape(), values, {}, identityOf(_nextSequence));
  std::string path;
  object->appendPath(path);
  StoredInstance* const stored = store(space, entry, object, path, _nextSequence++, becomesPending(view));
  if (stored == nullptr) refuse(CimStatus::AlreadyExists, {"instance ", path, " exists already"});
  return *stored;
}

QORSmrPtr<IQoriObject> ObjectStore::makeObject(const QORString& nameSpace, const CimInstanceDeclaration& declaration,
                                               View view) const {
  const NameSpace& space = requireNameSpace(nameSpace, view);
  const ClassEntry& entry = requireConcreteClass(space, declaration.className, view);
  return ModelInstance::create(entry.model().shape(), valuesFor(space, entry, declaration, view));
}

QORSmrPtr<IQoriObject> ObjectStore::makeClassObject(const QORString& nameSpace, const CimClassDeclaration& declaration,
                                                    View view) const {
  const NameSpace& space = requireNameSpace(nameSpace, view);
  if (declaration.name.isEmpty()) refuse(CimStatus::InvalidParameter, {"a class needs a name"});
  const ClassEntry* const superClass = requireSuperClass(space, declaration, view);
  const CQoriClass declared(space.name, declaration, superClass == nullptr ? nullptr : &superClass->model());
  std::vector<QORSmrPtr<IQoriValue>> defaults;
  for (const CimPropertyDeclaration& property : declared.properties()) defaults.push_back(property.defaultValue);
  const QORString text = classMofText(declared.declaration(), space.qualifiers);
  return QORSmrPtr<IQoriObject>(new ModelClassObject(ModelInstance::create(declared.shape(), defaults), text));
}

void ObjectStore::modifyInstance(const IQoriInstanceName& name, const std::vector<CimInstanceProperty>& properties) {
  readLaterRows();
  const QORString& nameSpace = name.getNameSpacePath()->getNameSpace();
  NameSpace& space = requireNameSpace(nameSpace, View::Committed);
  StoredInstance* const instance = findInstance(nameSpace, name, View::Committed);
  if (instance == nullptr) refuse(CimStatus::NotFound, {"instance ", name.toString().view(), " does not exist"});
  const CQoriClass& model = instance->entry->model();
  std::vector<QORSmrPtr<IQoriValue>> values;
  const QORuint32 count = instance->object->getPropertyCount();
  values.reserve(count);
  for (QORuint32 i = 0; i < count; ++i) values.push_back(instance->object->getValueAt(i));
  setValues(space, model, properties, values, View::Committed);
  const QORSmrPtr<IQoriObject> changed =
      ModelInstance::create(model.shape(), values, {}, identityOf(instance->sequence));
  const QORSmrPtr<IQoriInstanceName> changedName = changed->getInstanceName();
  if (changedName.IsNull() || changedName->toString().view() != instance->path()) {
    refuse(CimStatus::InvalidParameter, {"instance ", instance->path(), ": keys cannot change"});
  }
  space.instances.replace(*instance, changed);
}

bool ObjectStore::deleteInstance(const IQoriInstanceName& name) {
  readLaterRows();
  const QORString& nameSpace = name.getNameSpacePath()->getNameSpace();
  StoredInstance* const instance = findInstance(nameSpace, name, View::Committed);
  if (instance == nullptr) return false;
  findNameSpace(nameSpace, View::Committed)->instances.remove(*instance);
  return true;
}

}  // namespace embedded
