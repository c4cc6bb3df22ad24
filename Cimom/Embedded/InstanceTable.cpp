// Every instance stands in the extent of its class and of each superclass, so
// that an enumeration walks one list; associations stand, in addition, in the
// list of each path that they refer to, so that finding them needs no scan.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/InstanceTable.h"

#include <string>
#include <vector>

namespace embedded {

namespace {

// The path that a reference property holds; a null string when it is NULL.
QORString referencedPath(const IQoriObject& object, QORuint32 position) {
  const QORSmrPtr<IQoriValue> value = object.getValueAt(position);
  if (value.IsNull()) return QORString();
  const QORSmrPtr<IQoriInstanceName> name = value->getReference();
  return name.IsNull() ? QORString() : name->toString();
}

}  // namespace

StoredInstance* InstanceTable::find(std::string_view path) const { return _byPath.find(path, hashOfPath(path)); }

StoredInstance& InstanceTable::takePlace() {
  if (_free.empty()) {
    // There is room for all of them, so that removing throws nothing.
    if (_free.capacity() <= _instances.size()) _free.reserve(2 * _instances.size() + 1);
    return _instances.emplace_back();
  }
  StoredInstance& instance = *_free.back();
  _free.pop_back();
  return instance;
}

StoredInstance* InstanceTable::insert(ClassEntry& entry, const QORSmrPtr<IQoriObject>& object, std::string_view path,
                                      QORuint64 sequence, bool isPending) {
  const QORuint32 hash = hashOfPath(path);
  if (_byPath.find(path, hash) != nullptr) return nullptr;
  _byPath.reserveOne();
  StoredInstance& instance = takePlace();
  instance = {object, &entry, sequence, hash, isPending};
  _byPath.insert(instance);
  try {
    for (ClassEntry* at = &entry; at != nullptr; at = at->superClass()) at->extent.insert(instance);
    addReferences(instance);
  } catch (...) {
    remove(instance);
    throw;
  }
  if (!isPending) touch(&entry);
  return &instance;
}

void InstanceTable::replace(StoredInstance& instance, const QORSmrPtr<IQoriObject>& object) {
  const QORSmrPtr<IQoriObject> old = instance.object;
  removeReferences(instance);
  instance.object = object;
  try {
    addReferences(instance);
  } catch (...) {
    removeReferences(instance);
    instance.object = old;
    addReferences(instance);
    throw;
  }
  touch(instance.entry);
}

void InstanceTable::remove(StoredInstance& instance) noexcept {
  removeReferences(instance);
  for (ClassEntry* at = instance.entry; at != nullptr; at = at->superClass()) at->extent.remove(instance);
  if (!instance.isPending) touch(instance.entry);
  _byPath.remove(instance);
  instance = {};
  _free.push_back(&instance);
}

void InstanceTable::publish(StoredInstance& instance) noexcept {
  instance.isPending = false;
  touch(instance.entry);
}

const Extent* InstanceTable::referringTo(std::string_view path) const noexcept {
  const auto found = _referring.find(path);
  return found == _referring.end() ? nullptr : &found->second;
}

void InstanceTable::addReferences(StoredInstance& instance) {
  for (const QORuint32 position : instance.entry->model().referencePositions()) {
    const QORString path = referencedPath(*instance.object, position);
    if (!path.isNull()) _referring[std::string(path.view())].insert(instance);
  }
}

void InstanceTable::removeReferences(const StoredInstance& instance) noexcept {
  for (const QORuint32 position : instance.entry->model().referencePositions()) {
    const auto found = _referring.find(referencedPath(*instance.object, position).view());
    if (found == _referring.end()) continue;
    found->second.remove(instance);
    if (found->second.size() == 0) _referring.erase(found);
  }
}

void InstanceTable::touch(ClassEntry* entry) noexcept {
  for (; entry != nullptr; entry = entry->superClass()) ++entry->version;
}

}  // namespace embedded
