// Instances that come as rows: at once, or when somebody needs them.
// Tested by tests/unit/Embedded/InstanceRowTest.cpp, tests/unit/Embedded/LaterRowsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <utility>

#include "Cimom/Embedded/ObjectStore.h"

namespace embedded {

StoredInstance* ObjectStore::store(NameSpace& space, ClassEntry& entry, const QORSmrPtr<IQoriObject>& object,
                                   std::string_view path, QORuint64 sequence, bool isPending) const {
  if (isPending) _pending->instances.emplace_back(&space, nullptr);
  StoredInstance* stored = nullptr;
  try {
    stored = space.instances.insert(entry, object, path, sequence, isPending);
  } catch (...) {
    if (isPending) _pending->instances.pop_back();
    throw;
  }
  if (isPending && stored == nullptr) _pending->instances.pop_back();
  if (isPending && stored != nullptr) _pending->instances.back().second = stored;
  return stored;
}

std::unique_ptr<RowPlan> ObjectStore::planRows(const QORString& nameSpace, const QORString& className,
                                               const std::vector<QORString>& propertyNames, View view) const {
  NameSpace* const space = findNameSpace(nameSpace, view);
  ClassEntry* const entry = space == nullptr ? nullptr : findClass(*space, className, view);
  if (entry == nullptr || entry->model().isAbstract()) return nullptr;
  auto plan = std::make_unique<RowPlan>(*space, *entry);
  return plan->readColumns(propertyNames) ? std::move(plan) : nullptr;
}

bool ObjectStore::createInstance(RowPlan& plan, std::string_view row, View view) {
  readLaterRows();
  const QORSmrPtr<IQoriObject> object = plan.makeObject(row, identityOf(_nextSequence));
  if (object.IsNull()) return false;
  std::string& path = plan.emptyText();
  object->appendPath(path);
  return store(plan.nameSpace(), plan.entry(), object, path, _nextSequence++, becomesPending(view)) != nullptr;
}

// Rows of loads before this one, whose paths are taken.
bool ObjectStore::hasCommittedRows(const NameSpace& space) noexcept {
  return std::any_of(space.laterRows.begin(), space.laterRows.end(),
                     [](const LaterRows& later) { return !later.isPending; });
}

bool ObjectStore::createLater(std::unique_ptr<RowPlan> plan, std::string_view rows, QORuint32 count,
                              const std::shared_ptr<const void>& owner, View view) {
  NameSpace& space = plan->nameSpace();
  if (hasCommittedRows(space)) readLaterRows();
  const bool isFirst = space.instances.isEmpty();  // of all, so that no path is taken
  std::string_view rest = rows;
  std::string_view row;
  for (QORuint32 i = 0; i < count; ++i) {
    if (!takeCimRow(rest, row)) return false;
    if (!(isFirst ? plan->isSound(row) : createInstance(*plan, row, view))) return false;
  }
  if (!isFirst) return true;
  ClassEntry& entry = plan->entry();
  const bool isPending = becomesPending(view);
  const auto source = std::make_shared<RowSource>(std::move(plan), owner);
  space.laterRows.push_back({source, rows.substr(0, rows.size() - rest.size()), count, _nextSequence, isPending});
  _nextSequence += count;
  _hasLaterRows = true;
  if (!isPending) InstanceTable::touch(&entry);
  return true;
}

std::shared_lock<std::shared_mutex> ObjectStore::lockInstances() const {
  std::shared_lock<std::shared_mutex> lock(_mutex);
  while (_hasLaterRows) {
    lock.unlock();
    {
      const std::unique_lock<std::shared_mutex> change(_mutex);
      readLaterRows();
    }
    lock.lock();
  }
  return lock;
}

void ObjectStore::readLaterRows() const {
  if (!_hasLaterRows) return;
  for (const std::unique_ptr<NameSpace>& space : _nameSpaces) {
    for (LaterRows& later : space->laterRows) readRows(*space, later);
    space->laterRows.clear();
  }
  _hasLaterRows = false;
}

// Where it ends early, what has been read is no longer among the rows.
void ObjectStore::readRows(NameSpace& space, LaterRows& later) const {
  RowPlan& plan = *later.source->plan;
  const std::lock_guard<std::mutex> lock(later.source->mutex);
  while (later.count != 0) {
    std::string_view rest = later.rows;
    std::string_view row;
    takeCimRow(rest, row);
    const QORSmrPtr<IQoriObject> object = plan.makeObject(row, identityOf(later.sequence));
    std::string& path = plan.emptyText();
    object->appendPath(path);
    store(space, plan.entry(), object, path, later.sequence, later.isPending);
    later.rows = rest;
    ++later.sequence;
    --later.count;
  }
}

}  // namespace embedded
