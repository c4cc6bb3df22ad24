// Objects of the outer source have the layouts of declared classes, by which their classes are found.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/OuterCalls.h"

#include <iterator>
#include <set>

#include "Cimom/Embedded/LiveReader.h"

namespace embedded {

namespace {

using State = EmbeddedObjectManager::State;

CimDeclarationSink& sinkOf(const State& state) { return const_cast<State&>(state).sink; }

const CQoriClass& modelOf(const QORSmrPtr<IQoriClass>& declared) { return static_cast<const CQoriClass&>(*declared); }

std::string pathOf(const IQoriObject& object) {
  std::string path;
  object.appendPath(path);
  return path;
}

std::string keyOf(const QORString& className) { return std::string(QORString::toUpperCase(className).view()); }

}  // namespace

QORString localNameSpace(const QORString& nameSpace) {
  const std::string_view text = nameSpace.view();
  if (!text.starts_with("//")) return nameSpace;
  const std::size_t slash = text.find('/', 2);
  return slash == std::string_view::npos ? QORString::emptyString() : QORString(text.substr(slash + 1));
}

void addOuterNames(std::vector<QORString>& names, const std::vector<QORString>& outer) {
  std::set<std::string> known;
  for (const QORString& name : names) known.insert(keyOf(name));
  for (const QORString& name : outer) {
    if (known.insert(keyOf(name)).second) names.push_back(name);
  }
}

void provideClass(const State& state, const QORString& nameSpace, const QORString& className) {
  if (state.outer == nullptr || nameSpace.isEmpty() || className.isEmpty()) return;
  state.outer->provideClass(sinkOf(state), localNameSpace(nameSpace), className);
}

CIMApi::Instances withOuterInstances(const State& state, const CIMApi::Instances& own,
                                     const OuterSource::Request& request, OuterPart part) {
  if (state.outer == nullptr || own.IsNull()) return own;
  const OuterSource::Objects objects = state.outer->instances(sinkOf(state), request);
  if (objects.empty()) return own;
  CIMApi::Instances all(new QORValSlist<QORSmrPtr<IQoriObject>>(*own));
  Restrictor restrictor(request.names);
  OuterModels models(state);
  for (const QORSmrPtr<IQoriObject>& object : objects) {
    if (part == OuterPart::OfTheClassItself && !object->getClassName().isEqualCaseInsensitive(request.className)) {
      continue;
    }
    all->append(restrictor.apply(models.of(*object), object));
  }
  return all;
}

QORSmrPtr<IQoriObject> outerObject(const State& state, const OuterSource::Request& request,
                                   const IQoriInstanceName& name) {
  return state.outer == nullptr ? QORSmrPtr<IQoriObject>() : state.outer->instance(sinkOf(state), request, name);
}

QORSmrPtr<IQoriObject> outerInstance(const State& state, const OuterSource::Request& request,
                                     const IQoriInstanceName& name) {
  const QORSmrPtr<IQoriObject> found = outerObject(state, request, name);
  return found.IsNull() ? found : Restrictor(request.names).apply(OuterModels(state).of(*found), found);
}

const CQoriClass& OuterModels::of(const IQoriObject& object) {
  QORSmrPtr<IQoriClass>& found = _byLayout[object.getLayout()];
  if (found.IsNull()) {
    found = sinkOf(_state).findClass(localNameSpace(object.getNameSpace()), object.getClassName());
  }
  return modelOf(found);
}

OuterSnapshot::Index OuterSnapshot::indexOf(const State& state, const QORString& nameSpace,
                                            const QORString& associationClass) {
  Index index;
  // Not to list every association class of the servers, they are asked for those of each source.
  index.isComplete = !associationClass.isEmpty();
  if (!index.isComplete) return index;
  const QORSmrPtr<IQoriClass> declared = sinkOf(state).findClass(nameSpace, associationClass);
  if (declared.IsNull()) return index;
  OuterModels models(state);
  index.names = referenceNames(modelOf(declared));
  const OuterSource::Associations listed =
      state.outer->associations(sinkOf(state), {nameSpace, declared->getClassName(), index.names});
  index.isComplete = listed.isComplete;
  for (const QORSmrPtr<IQoriObject>& association : listed.objects) {
    for (const QORuint32 position : models.of(*association).referencePositions()) {
      const QORSmrPtr<IQoriValue> value = association->getValueAt(position);
      const QORSmrPtr<IQoriInstanceName> name = value.IsNull() ? QORSmrPtr<IQoriInstanceName>() : value->getReference();
      if (name.IsNull()) continue;
      Objects& referring = index.byPath[std::string(name->toString().view())];
      if (referring.empty() || !(referring.back() == association)) referring.push_back(association);
    }
  }
  return index;
}

const OuterSnapshot::Objects* OuterSnapshot::referringTo(const State& state, const QORString& nameSpace,
                                                         const QORString& associationClass,
                                                         const IQoriInstanceName& source, std::string_view path) {
  if (state.outer == nullptr) return nullptr;
  const std::string key = keyOf(associationClass);
  auto known = _associations.find(key);
  if (known == _associations.end()) {
    known = _associations.emplace(key, indexOf(state, nameSpace, associationClass)).first;
  }
  Index& index = known->second;
  if (!index.isComplete && index.asked.emplace(path).second) {
    Objects more = state.outer->references(sinkOf(state), {nameSpace, associationClass, index.names}, source);
    Objects& referring = index.byPath[std::string(path)];
    referring.insert(referring.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
  }
  const auto found = index.byPath.find(path);
  return found == index.byPath.end() ? nullptr : &found->second;
}

QORSmrPtr<IQoriObject> OuterSnapshot::find(const State& state, const OuterSource::Request& request,
                                           std::string_view path) {
  if (state.outer == nullptr) return {};
  const std::string key =
      keyOf(request.nameSpace) + ':' + keyOf(request.className) + '\n' + propertyNamesKey(request.names);
  auto known = _instances.find(key);
  if (known == _instances.end()) {
    PathMap<QORSmrPtr<IQoriObject>> index;
    for (const QORSmrPtr<IQoriObject>& object : state.outer->instances(sinkOf(state), request)) {
      index.emplace(pathOf(*object), object);
    }
    known = _instances.emplace(key, std::move(index)).first;
  }
  const auto found = known->second.find(path);
  return found == known->second.end() ? QORSmrPtr<IQoriObject>() : found->second;
}

}  // namespace embedded
