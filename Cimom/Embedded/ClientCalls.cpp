// Stored instances are read under the shared lock, so that a list is one state;
// providers are called after it is released.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/ClientCalls.h"

#include "Cimom/Embedded/Restrictor.h"

namespace embedded {

namespace {

using InstanceList = QORValSlist<QORSmrPtr<IQoriObject>>;

CIMApi::Instances makeList(const ClassEntry& entry, const CIMApi::PropertyNames& names) {
  CIMApi::Instances list(new InstanceList);
  Restrictor restrictor(names);
  InstanceList& target = *list;
  entry.extent.forEach([&](const StoredInstance& stored) {
    if (!stored.isPending) target.append(restrictor.apply(stored.entry->model(), stored.object));
  });
  return list;
}

void appendRows(const LaterRows& later, const CIMApi::PropertyNames& names, InstanceList& list) {
  const ModelLayout& layout = *later.source->plan->shape()->layout;
  const QORSmrPtr<RowView> view(new RowView(later.source, layout.restrictTo(*names)));
  const std::lock_guard<std::mutex> lock(later.source->mutex);
  std::string_view rest = later.rows;
  std::string_view row;
  for (QORuint32 i = 0; i < later.count && takeCimRow(rest, row); ++i) {
    list.append(RowObject::create(view, row, identityOf(later.sequence + i)));
  }
}

// Of the rows that are left for later: no instance is needed for a few of their properties. Null when it takes all, or
// some rows have become instances already, which is so where making the others ended for want of memory.
CIMApi::Instances makeListOfRows(const NameSpace& space, const ClassEntry& entry, const CIMApi::PropertyNames& names) {
  if (!space.instances.isEmpty()) return {};
  CIMApi::Instances list(new InstanceList);
  for (const LaterRows& later : space.laterRows) {
    if (later.isPending || !later.source->plan->entry().isA(entry)) continue;
    if (names.IsNull()) return {};
    appendRows(later, names, *list);
  }
  return list;
}

// Null when rows must become instances first.
CIMApi::Instances storedInstances(ListCache& cache, const NameSpace& space, const ClassEntry& entry,
                                  const CIMApi::PropertyNames& names) {
  const std::string key = propertyNamesKey(names);
  CIMApi::Instances list = cache.find(entry, key, entry.version);
  if (list.IsNull()) {
    list = space.laterRows.empty() ? makeList(entry, names) : makeListOfRows(space, entry, names);
    if (!list.IsNull()) cache.put(entry, key, entry.version, list);
  }
  return list;
}

std::vector<LiveSource> sourcesOf(const NameSpace& space, const ClassEntry& entry) {
  std::vector<LiveSource> sources;
  for (const LiveSource& source : space.sources) {
    if (source.entry->isA(entry)) sources.push_back(source);
  }
  return sources;
}

const LiveSource* sourceFor(const NameSpace& space, const ClassEntry* entry) {
  for (const LiveSource& source : space.sources) {
    if (source.entry == entry) return &source;
  }
  return nullptr;
}

QORSmrPtr<IQoriObject> findLive(const ObjectStore& store, const LiveSource& source, const LiveRequest& request) {
  const QORString path = request.only->toString();
  for (const QORSmrPtr<IQoriObject>& object : readLive(store, source, request)) {
    if (object->getInstanceName()->toString() == path)
      return Restrictor(request.names).apply(source.entry->model(), object);
  }
  return {};
}

}  // namespace

CIMApi::Instances enumerateInstances(const ObjectStore& store, ListCache& cache, const QORString& nameSpace,
                                     const QORString& className, const LiveRequest& request) {
  CIMApi::Instances stored;
  std::vector<LiveSource> sources;
  for (bool isFirst = true; stored.IsNull(); isFirst = false) {
    const std::shared_lock<std::shared_mutex> lock =
        isFirst ? std::shared_lock<std::shared_mutex>(store.mutex()) : store.lockInstances();
    const NameSpace* const space = store.findNameSpace(nameSpace, View::Committed);
    const ClassEntry* const entry =
        space == nullptr ? nullptr : ObjectStore::findClass(*space, className, View::Committed);
    if (entry == nullptr) return {};
    sources = sourcesOf(*space, *entry);
    stored = storedInstances(cache, *space, *entry, request.names);
  }
  if (sources.empty()) return stored;
  CIMApi::Instances all(new InstanceList(*stored));
  Restrictor restrictor(request.names);
  std::vector<CQoriProviderException> absences;
  for (const LiveSource& source : sources) {
    LiveRequest own = request;
    own.isOneOfMany = !source.entry->model().getClassName().isEqualCaseInsensitive(className);
    own.absences = &absences;
    for (const QORSmrPtr<IQoriObject>& object : readLive(store, source, own)) {
      all->append(restrictor.apply(source.entry->model(), object));
    }
  }
  // Where nothing else has been asked, an empty list would hide that the sources are not there.
  const bool isAnswered = request.isOneOfMany || absences.size() < sources.size() || all->entries() > 0;
  if (!isAnswered) throw CQoriProviderException(absences.front());
  for (const CQoriProviderException& absence : absences) tellOfAbsence(absence);
  return all;
}

CIMApi::Instances ownInstances(const ObjectStore& store, const QORString& nameSpace, const QORString& className,
                               const CIMApi::PropertyNames& names) {
  CIMApi::Instances all(new InstanceList);
  Restrictor restrictor(names);
  LiveSource source;
  {
    const std::shared_lock<std::shared_mutex> lock = store.lockInstances();
    const NameSpace* const space = store.findNameSpace(nameSpace, View::Committed);
    const ClassEntry* const entry =
        space == nullptr ? nullptr : ObjectStore::findClass(*space, className, View::Committed);
    if (entry == nullptr) return {};
    entry->extent.forEach([&](const StoredInstance& stored) {
      if (!stored.isPending && stored.entry == entry) {
        all->append(restrictor.apply(stored.entry->model(), stored.object));
      }
    });
    const LiveSource* const own = sourceFor(*space, entry);
    if (own == nullptr) return all;
    source = *own;
  }
  for (const QORSmrPtr<IQoriObject>& object : readLive(store, source, {names, {}, {}, false})) {
    all->append(restrictor.apply(source.entry->model(), object));
  }
  return all;
}

QORSmrPtr<IQoriObject> getInstance(const ObjectStore& store, const QORString& nameSpace,
                                   const QORSmrPtr<IQoriInstanceName>& name, const CIMApi::PropertyNames& names) {
  const QORString& own = name->getNameSpacePath()->getNameSpace();
  if (!own.isEmpty() && !nameSpace.isEmpty() && !own.isEqualCaseInsensitive(nameSpace)) return {};
  LiveRequest request{names, {}, {}, false};
  LiveSource source;
  {
    const std::shared_lock<std::shared_mutex> lock = store.lockInstances();
    const QORString& wanted = nameSpace.isEmpty() ? own : nameSpace;
    const StoredInstance* const stored = store.findInstance(wanted, *name, View::Committed);
    if (stored != nullptr) return Restrictor(names).apply(stored->entry->model(), stored->object);
    request.only = store.canonicalName(wanted, *name, View::Committed);
    if (request.only.IsNull()) return {};
    const NameSpace& space = *store.findNameSpace(wanted, View::Committed);
    const LiveSource* const found =
        sourceFor(space, ObjectStore::findClass(space, name->getClassName(), View::Committed));
    if (found == nullptr) return {};
    source = *found;
  }
  return findLive(store, source, request);
}

}  // namespace embedded
