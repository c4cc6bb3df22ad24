// First, under one lock, the stored associations that the index gives for the
// source and the stored objects at their ends; then, without the lock, what
// providers serve: live associations, and live objects at the ends of either.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/AssociationWalk.h"

#include "Cimom/Embedded/RepositoryError.h"
#include "cimom/CQoriProviderException.h"

namespace embedded {

namespace {

// Instances of the outer source that are asked for one by one.
constexpr std::size_t kFewEnds = 3;

bool isAnyOr(const QORString& wanted, const QORString& name) noexcept {
  return wanted.isEmpty() || wanted.isEqualCaseInsensitive(name);
}

QORSmrPtr<IQoriInstanceName> referenceAt(const IQoriObject& object, QORuint32 position) {
  const QORSmrPtr<IQoriValue> value = object.getValueAt(position);
  return value.IsNull() ? QORSmrPtr<IQoriInstanceName>() : value->getReference();
}

}  // namespace

CIMApi::Instances AssociationWalk::run() {
  {
    const std::shared_lock<std::shared_mutex> lock = _store.lockInstances();
    if (!resolveClasses()) return {};
    walkStored();
    resolveStored();
  }
  walkLive();
  walkOuter();
  if (_resolved < _ends.size()) {
    const std::shared_lock<std::shared_mutex> lock = _store.lockInstances();
    resolveStored();
  }
  return collect();
}

bool AssociationWalk::resolveClass(const QORString& name, const ClassEntry*& entry) const {
  if (name.isEmpty()) return true;
  entry = ObjectStore::findClass(*_space, name, View::Committed);
  return entry != nullptr;
}

bool AssociationWalk::resolveClasses() {
  _space = _store.findNameSpace(_request.nameSpace, View::Committed);
  if (_space == nullptr) return false;
  if (!resolveClass(_request.associationClass, _associationEntry)) return false;
  if (!resolveClass(_request.resultClass, _resultEntry)) return false;
  for (const LiveSource& source : _space->sources) {
    const bool isWanted = _associationEntry == nullptr || source.entry->isA(*_associationEntry);
    if (isWanted && source.entry->model().isAssociation()) _liveAssociations.push_back(source);
  }
  return true;
}

void AssociationWalk::walkStored() {
  _sourcePath = _request.source->toString();
  // An object of others keeps the name that it came with, which begins with its host.
  if (!_sourcePath.beginsWith("//") && _space->instances.find(_sourcePath.view()) == nullptr) {
    const QORSmrPtr<IQoriInstanceName> canonical =
        _store.canonicalName(_space->name, *_request.source, View::Committed);
    if (!canonical.IsNull()) _sourcePath = canonical->toString();
  }
  const Extent* const associations = _space->instances.referringTo(_sourcePath.view());
  if (associations == nullptr) return;
  associations->forEach([this](const StoredInstance& association) {
    if (association.isPending) return;
    if (_associationEntry != nullptr && !association.entry->isA(*_associationEntry)) return;
    meetEnds(association.entry->model(), *association.object);
  });
}

void AssociationWalk::walkLive() {
  for (const LiveSource& source : _liveAssociations) {
    const auto* const associations =
        _live.referringTo(_store, source, _sourcePath.view(), source.entry != _associationEntry);
    if (associations == nullptr) continue;
    for (const QORSmrPtr<IQoriObject>& association : *associations) meetEnds(source.entry->model(), *association);
  }
}

void AssociationWalk::walkOuter() {
  const OuterSnapshot::Objects* const associations =
      _outer.referringTo(_state, _request.nameSpace, _request.associationClass, *_request.source, _sourcePath.view());
  _firstOuter = _ends.size();
  if (associations == nullptr) return;
  OuterModels models(_state);
  const bool areWhole = _request.associationClass.isEmpty();
  for (const QORSmrPtr<IQoriObject>& association : *associations) {
    meetEnds(models.of(*association), *association, areWhole ? association : QORSmrPtr<IQoriObject>());
  }
}

void AssociationWalk::meetEnds(const CQoriClass& association, const IQoriObject& object,
                               const QORSmrPtr<IQoriObject>& whole) {
  _steps.step();
  for (const QORuint32 position : association.referencePositions()) {
    if (!isAnyOr(_request.role, association.shape()->layout->getName(position))) continue;
    const QORSmrPtr<IQoriInstanceName> name = referenceAt(object, position);
    if (name.IsNull() || !(name->toString() == _sourcePath)) continue;
    if (_request.wantsAssociations) return meet(object.getInstanceName(), whole);
    meetOtherEnds(association, object, position);
  }
}

void AssociationWalk::meetOtherEnds(const CQoriClass& association, const IQoriObject& object,
                                    QORuint32 sourcePosition) {
  for (const QORuint32 position : association.referencePositions()) {
    if (position == sourcePosition) continue;
    if (!isAnyOr(_request.resultRole, association.shape()->layout->getName(position))) continue;
    meet(referenceAt(object, position));
  }
}

void AssociationWalk::meet(const QORSmrPtr<IQoriInstanceName>& name, const QORSmrPtr<IQoriObject>& object) {
  if (name.IsNull()) return;
  const QORString path = name->toString();
  if (_met.emplace(path.view()).second) _ends.push_back({name, path, nullptr, object});
}

void AssociationWalk::resolveStored() {
  for (; _resolved < _ends.size(); ++_resolved) {
    _steps.step();
    End& end = _ends[_resolved];
    const NameSpace* const space = _store.findNameSpace(end.name->getNameSpacePath()->getNameSpace(), View::Committed);
    if (space == nullptr) continue;
    const StoredInstance* const stored = space->instances.find(end.path.view());
    if (stored == nullptr || stored->isPending) continue;
    end.entry = stored->entry;
    end.object = stored->object;
  }
}

bool AssociationWalk::isResult(const ClassEntry& entry) const {
  for (const ClassEntry* at = &entry; at != nullptr; at = at->superClass()) {
    if (_resultEntry == nullptr || at->name().isEqualCaseInsensitive(_resultEntry->name())) return true;
  }
  return false;
}

QORSmrPtr<IQoriObject> AssociationWalk::findLive(const End& end) {
  LiveSource source;
  {
    const std::shared_lock<std::shared_mutex> lock = _store.lockInstances();
    const NameSpace* const space = _store.findNameSpace(end.name->getNameSpacePath()->getNameSpace(), View::Committed);
    if (space == nullptr) return {};
    const ClassEntry* const entry = ObjectStore::findClass(*space, end.name->getClassName(), View::Committed);
    for (const LiveSource& candidate : space->sources) {
      if (candidate.entry == entry) source = candidate;
    }
  }
  if (source.provider == nullptr || !isResult(*source.entry)) return {};
  const QORSmrPtr<IQoriObject> object = _live.find(_store, source, _request.names, end.path.view());
  return object.IsNull() ? object : _restrictor.apply(source.entry->model(), object);
}

QORSmrPtr<IQoriObject> AssociationWalk::findOuter(const End& end) {
  if (_state.outer == nullptr) return {};
  const QORSmrPtr<IQoriObject> object = end.object.IsNull() ? askOuter(end) : end.object;
  return object.IsNull() ? object : _restrictor.apply(OuterModels(_state).of(*object), object);
}

// The result class is asked for as a whole, unless the ends are few: those of other sources will be among the same
// instances. An end in another namespace whose class cannot be had there is told, for nobody would miss it.
QORSmrPtr<IQoriObject> AssociationWalk::askOuter(const End& end) {
  const QORString own = localNameSpace(end.name->getNameSpacePath()->getNameSpace());
  const QORString& nameSpace = own.isEmpty() ? _request.nameSpace : own;
  const QORString& className = end.name->getClassName();
  provideClass(_state, nameSpace, className);
  if (_state.sink.findClass(nameSpace, className).IsNull() && !nameSpace.isEqualCaseInsensitive(_request.nameSpace)) {
    throw CQoriProviderException(
        className, "an association refers to " + end.path + ", whose class is not to be had in " + nameSpace,
        static_cast<QORuint32>(CimStatus::Failed));
  }
  if (isAskedAlone(end)) {
    const QORSmrPtr<IQoriObject> object = outerObject(_state, {nameSpace, className, _request.names}, *end.name);
    return object.IsNull() || isResult(nameSpace, *object) ? object : QORSmrPtr<IQoriObject>();
  }
  const QORString& asked = _request.resultClass.isEmpty() ? className : _request.resultClass;
  provideClass(_state, nameSpace, asked);
  return _outer.find(_state, {nameSpace, asked, _request.names}, end.path.view());
}

// Whoever asks for any association has one source. The names that the outer source tells are of its own instances.
bool AssociationWalk::isAskedAlone(const End& end) const {
  const bool isOuter = &end >= _ends.data() + _firstOuter;
  return isOuter && _request.associationClass.isEmpty() && _ends.size() - _firstOuter <= kFewEnds;
}

bool AssociationWalk::isResult(const QORString& nameSpace, const IQoriObject& object) const {
  if (_request.resultClass.isEmpty()) return true;
  QORString at = object.getClassName();
  while (!at.isEmpty() && !at.isEqualCaseInsensitive(_request.resultClass)) {
    const QORSmrPtr<IQoriClass> declared = _state.sink.findClass(nameSpace, at);
    at = declared.IsNull() ? QORString::emptyString() : declared->getSuperClassName();
  }
  return !at.isEmpty();
}

CIMApi::Instances AssociationWalk::collect() {
  CIMApi::Instances found(new QORValSlist<QORSmrPtr<IQoriObject>>);
  for (const End& end : _ends) {
    _steps.step();
    if (end.entry == nullptr) {
      QORSmrPtr<IQoriObject> live = findLive(end);
      if (live.IsNull()) live = findOuter(end);
      if (!live.IsNull()) found->append(live);
    } else if (isResult(*end.entry)) {
      found->append(_restrictor.apply(end.entry->model(), end.object));
    }
  }
  return found;
}

}  // namespace embedded
