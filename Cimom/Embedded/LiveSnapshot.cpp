// Each class is read from its provider once, and indexed by path.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/LiveSnapshot.h"

#include "Cimom/Embedded/Restrictor.h"

namespace embedded {

namespace {

QORString pathReferredTo(const IQoriObject& object, QORuint32 position) {
  const QORSmrPtr<IQoriValue> value = object.getValueAt(position);
  const QORSmrPtr<IQoriInstanceName> name = value.IsNull() ? QORSmrPtr<IQoriInstanceName>() : value->getReference();
  return name.IsNull() ? QORString() : name->toString();
}

}  // namespace

const std::vector<QORSmrPtr<IQoriObject>>* LiveSnapshot::referringTo(const ObjectStore& store, const LiveSource& source,
                                                                     std::string_view path, bool isOneOfMany) {
  auto known = _associations.find(source.entry);
  if (known == _associations.end()) {
    const CQoriClass& model = source.entry->model();
    PathMap<std::vector<QORSmrPtr<IQoriObject>>> index;
    for (const QORSmrPtr<IQoriObject>& association :
         readLive(store, source, {referenceNames(model), {}, {}, isOneOfMany})) {
      for (const QORuint32 position : model.referencePositions()) {
        const QORString referenced = pathReferredTo(*association, position);
        if (referenced.isNull()) continue;
        std::vector<QORSmrPtr<IQoriObject>>& referring = index[std::string(referenced.view())];
        if (referring.empty() || !(referring.back() == association)) referring.push_back(association);
      }
    }
    known = _associations.emplace(source.entry, std::move(index)).first;
  }
  const auto found = known->second.find(path);
  return found == known->second.end() ? nullptr : &found->second;
}

QORSmrPtr<IQoriObject> LiveSnapshot::find(const ObjectStore& store, const LiveSource& source,
                                          const CIMApi::PropertyNames& names, std::string_view path) {
  const std::pair<const ClassEntry*, std::string> key(source.entry, propertyNamesKey(names));
  auto known = _instances.find(key);
  if (known == _instances.end()) {
    PathMap<QORSmrPtr<IQoriObject>> index;
    for (const QORSmrPtr<IQoriObject>& object : readLive(store, source, {names, {}, {}, true})) {
      index.emplace(object->getInstanceName()->toString().view(), object);
    }
    known = _instances.emplace(key, std::move(index)).first;
  }
  const auto found = known->second.find(path);
  return found == known->second.end() ? QORSmrPtr<IQoriObject>() : found->second;
}

}  // namespace embedded
