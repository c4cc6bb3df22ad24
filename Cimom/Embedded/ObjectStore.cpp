// Look-ups, canonical names and loads as one unit.
//
// A load marks what it makes as pending. Queries skip pending things;
// commit removes the marks, rollback removes what is marked, so that both
// cost what the load itself cost, whatever the store holds already.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/ObjectStore.h"

#include <algorithm>
#include <utility>

#include "Cimom/Embedded/RepositoryError.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace embedded {

namespace {

// Names within names: references that are keys of referenced associations.
constexpr int kMaximumNameDepth = 8;

// BORROWS: the key of that name, ignoring case; null when absent.
const QORSmrPtr<IQoriProperty>* findKey(const IQoriInstanceName& name, const QORString& key) {
  QORValSlistIterator<QORSmrPtr<IQoriProperty>> keys(*name.getKeys());
  while (++keys) {
    if (keys.key()->getName().isEqualCaseInsensitive(key)) return &keys.key();
  }
  return nullptr;
}

// Objects of others tell their namespace with the host in front, "//host/root/cimv2".
std::string_view localPart(std::string_view nameSpace) noexcept {
  if (!nameSpace.starts_with("//")) return nameSpace;
  const std::size_t slash = nameSpace.find('/', 2);
  return slash == std::string_view::npos ? std::string_view() : nameSpace.substr(slash + 1);
}

QORSmrPtr<IQoriNameSpacePath> nameSpacePath(const QORString& nameSpace) {
  return QORSmrPtr<IQoriNameSpacePath>(new CQoriNameSpacePath(QORString::emptyString(), nameSpace));
}

}  // namespace

NameSpace* ObjectStore::findNameSpace(const QORString& name, View view) const noexcept {
  const auto found = _nameSpaceIndex.find(localPart(name.view()));
  if (found == _nameSpaceIndex.end() || (found->second->isPending && view == View::Committed)) return nullptr;
  return found->second;
}

ClassEntry* ObjectStore::findClass(const NameSpace& space, const QORString& className, View view) noexcept {
  const auto found = space.classIndex.find(className.view());
  if (found == space.classIndex.end() || (found->second->isPending && view == View::Committed)) return nullptr;
  return found->second;
}

ClassEntry* ObjectStore::findClass(const QORString& nameSpace, const QORString& className, View view) const noexcept {
  const NameSpace* const space = findNameSpace(nameSpace, view);
  return space == nullptr ? nullptr : findClass(*space, className, view);
}

StoredInstance* ObjectStore::findInstance(const QORString& nameSpace, const IQoriInstanceName& name, View view) const {
  const NameSpace* const space = findNameSpace(nameSpace, view);
  if (space == nullptr) return nullptr;
  StoredInstance* found = space->instances.find(name.toString().view());
  if (found == nullptr) {
    const QORSmrPtr<IQoriInstanceName> canonical = canonicalName(nameSpace, name, view);
    if (!canonical.IsNull()) found = space->instances.find(canonical->toString().view());
  }
  return found != nullptr && found->isPending && view == View::Committed ? nullptr : found;
}

QORSmrPtr<IQoriInstanceName> ObjectStore::canonicalName(const QORString& nameSpace, const IQoriInstanceName& name,
                                                        View view) const {
  return canonicalName(nameSpace, name, view, 0);
}

QORSmrPtr<IQoriInstanceName> ObjectStore::canonicalName(const QORString& nameSpace, const IQoriInstanceName& name,
                                                        View view, int depth) const {
  const QORString& own = name.getNameSpacePath()->getNameSpace();
  const NameSpace* const space = findNameSpace(own.isEmpty() ? nameSpace : own, view);
  const ClassEntry* const entry = space == nullptr ? nullptr : findClass(*space, name.getClassName(), view);
  if (entry == nullptr) return {};
  const CQoriClass& model = entry->model();
  if (name.getKeys()->entries() != model.keyPositions().size()) return {};
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  for (const QORuint32 position : model.keyPositions()) {
    const QORString& keyName = model.shape()->layout->getName(position);
    const QORSmrPtr<IQoriProperty>* const key = findKey(name, keyName);
    if (key == nullptr) return {};
    const QORSmrPtr<IQoriValue> value = canonicalReference(space->name, (*key)->getValue(), view, depth + 1);
    keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(keyName, model.type(position), value)));
  }
  return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(model.getClassName(), keys, nameSpacePath(space->name)));
}

QORSmrPtr<IQoriValue> ObjectStore::canonicalReference(const QORString& nameSpace, const QORSmrPtr<IQoriValue>& value,
                                                      View view) const {
  return canonicalReference(nameSpace, value, view, 0);
}

QORSmrPtr<IQoriValue> ObjectStore::canonicalReference(const QORString& nameSpace, const QORSmrPtr<IQoriValue>& value,
                                                      View view, int depth) const {
  const QORSmrPtr<IQoriInstanceName> name =
      value.IsNull() || depth > kMaximumNameDepth ? QORSmrPtr<IQoriInstanceName>() : value->getReference();
  if (name.IsNull()) return value;
  const QORString& own = name->getNameSpacePath()->getNameSpace();
  const NameSpace* const space = findNameSpace(own.isEmpty() ? nameSpace : own, view);
  if (space != nullptr && space->instances.find(name->toString().view()) != nullptr) return value;
  QORSmrPtr<IQoriInstanceName> canonical = canonicalName(nameSpace, *name, view, depth);
  if (canonical.IsNull() && !own.isEmpty()) return value;
  if (canonical.IsNull()) {
    canonical = QORSmrPtr<IQoriInstanceName>(
        new CQoriInstanceName(name->getClassName(), name->getKeys(), nameSpacePath(nameSpace)));
  }
  return QORSmrPtr<IQoriValue>(new CQoriValue(canonical));
}

QORSmrPtr<IQoriValue> ObjectStore::providedReference(const QORString& nameSpace,
                                                     const QORSmrPtr<IQoriValue>& value) const {
  const QORSmrPtr<IQoriInstanceName> name = value.IsNull() ? QORSmrPtr<IQoriInstanceName>() : value->getReference();
  if (name.IsNull()) return value;
  const QORString& own = name->getNameSpacePath()->getNameSpace();
  const ClassEntry* const entry = findClass(own.isEmpty() ? nameSpace : own, name->getClassName(), View::Committed);
  if (entry == nullptr || name->getKeys()->entries() <= entry->model().keyPositions().size()) {
    return canonicalReference(nameSpace, value, View::Committed);
  }
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  QORValSlistIterator<QORSmrPtr<IQoriProperty>> given(*name->getKeys());
  while (++given) {
    const QORsint32 position = entry->model().position(given.key()->getName());
    if (position >= 0 && entry->model().isKey(static_cast<QORuint32>(position))) keys->append(given.key());
  }
  const QORSmrPtr<IQoriInstanceName> reduced(
      new CQoriInstanceName(name->getClassName(), keys, name->getNameSpacePath()));
  return canonicalReference(nameSpace, QORSmrPtr<IQoriValue>(new CQoriValue(reduced)), View::Committed);
}

NameSpace& ObjectStore::requireNameSpace(const QORString& name, View view) const {
  NameSpace* const space = findNameSpace(name, view);
  if (space == nullptr) refuse(CimStatus::InvalidNamespace, {"namespace ", name.view(), " does not exist"});
  return *space;
}

void ObjectStore::begin() {
  if (_pending != nullptr) refuse(CimStatus::Failed, {"another load is open"});
  _pending = std::make_unique<Pending>();
}

QORuint64 ObjectStore::nextClassVersion() noexcept {
  static std::atomic<QORuint64> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

void ObjectStore::commit() {
  if (_pending == nullptr) refuse(CimStatus::Failed, {"no load is open"});
  if (!_pending->classes.empty()) noteClassChange();
  for (NameSpace* const space : _pending->nameSpaces) space->isPending = false;
  for (const auto& [space, entry] : _pending->classes) entry->isPending = false;
  for (const auto& [space, instance] : _pending->instances) InstanceTable::publish(*instance);
  for (const std::unique_ptr<NameSpace>& space : _nameSpaces) {
    for (LaterRows& later : space->laterRows) {
      if (std::exchange(later.isPending, false)) InstanceTable::touch(&later.source->plan->entry());
    }
  }
  _pending.reset();
}

void ObjectStore::rollback() noexcept {
  if (_pending == nullptr) return;
  const std::unique_ptr<Pending> pending = std::move(_pending);
  for (const auto& [space, instance] : pending->instances) space->instances.remove(*instance);
  for (const std::unique_ptr<NameSpace>& space : _nameSpaces) {
    std::erase_if(space->laterRows, [](const LaterRows& later) { return later.isPending; });
  }
  for (const auto& [space, entry] : pending->classes) {
    const auto found = space->classIndex.find(entry->name().view());
    if (found != space->classIndex.end()) space->classIndex.erase(found);
  }
  for (const std::unique_ptr<NameSpace>& space : _nameSpaces) {
    std::erase_if(space->classes, [](const std::unique_ptr<ClassEntry>& entry) { return entry->isPending; });
    if (space->classes.empty()) space->laterClasses.reset();
  }
  for (const auto& [space, name] : pending->qualifiers) space->qualifiers.erase(name);
  for (NameSpace* const space : pending->nameSpaces) {
    const auto found = _nameSpaceIndex.find(space->name.view());
    if (found != _nameSpaceIndex.end()) _nameSpaceIndex.erase(found);
  }
  std::erase_if(_nameSpaces, [](const std::unique_ptr<NameSpace>& space) { return space->isPending; });
}

}  // namespace embedded
