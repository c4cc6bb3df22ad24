// The object manager's own interface, and which one is current.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/EmbeddedObjectManager.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "Cimom/Embedded/AssociationWalk.h"
#include "Cimom/Embedded/ClientCalls.h"
#include "Cimom/Embedded/EmbeddedState.h"
#include "Cimom/Embedded/ManagerScope.h"
#include "Cimom/Embedded/MofText.h"
#include "Cimom/Embedded/OuterCalls.h"
#include "Cimom/Embedded/RepositoryError.h"

using embedded::CimStatus;
using embedded::ClassEntry;
using embedded::NameSpace;
using embedded::View;

namespace {

using ReadLock = std::shared_lock<std::shared_mutex>;
using WriteLock = std::unique_lock<std::shared_mutex>;

struct Current {
  std::mutex mutex;
  EmbeddedObjectManager* manager = nullptr;  // BORROWS
  std::shared_ptr<EmbeddedObjectManager::State> state;
};

// Never destroyed: services may still be asked while the process ends.
Current& currentManager() {
  static Current* const current = new Current;
  return *current;
}

// Hands out committed classes; keeps the classes, not the object manager, alive.
class Repository final : public IQoriRepository {
 public:
  explicit Repository(std::shared_ptr<embedded::ObjectStore> store,
                      std::weak_ptr<EmbeddedObjectManager::State> state = {})
      : _store(std::move(store)), _state(std::move(state)) {}
  QORSmrPtr<IQoriClass> getClass(const QORString& nameSpace, const QORString& className) const override {
    QORSmrPtr<IQoriClass> found = find(nameSpace, className);
    if (found.IsNull() && provide(nameSpace, className)) found = find(nameSpace, className);
    return found;
  }
  QORuint64 getVersion() const override { return _store->classVersion(); }

 private:
  QORSmrPtr<IQoriClass> find(const QORString& nameSpace, const QORString& className) const {
    const ReadLock lock(_store->mutex());
    const ClassEntry* const entry = _store->findClass(nameSpace, className, View::Committed);
    return entry == nullptr ? QORSmrPtr<IQoriClass>() : entry->handle();
  }
  // The outer source, if the object manager lives and has one.
  bool provide(const QORString& nameSpace, const QORString& className) const {
    const std::shared_ptr<EmbeddedObjectManager::State> state = _state.lock();
    if (state == nullptr || state->outer == nullptr) return false;
    embedded::provideClass(*state, nameSpace, className);
    return true;
  }

  std::shared_ptr<embedded::ObjectStore> _store;
  std::weak_ptr<EmbeddedObjectManager::State> _state;  // whose outer source is asked
};

}  // namespace

const char* const EmbeddedObjectManager::kDefaultNamespace = "root/cimv2";

EmbeddedObjectManager::State::State()
    : store(std::make_shared<embedded::ObjectStore>()), sink(store), repository(new Repository(store)) {
  store->createNameSpace(kDefaultNamespace, View::Committed);
}

EmbeddedObjectManager::EmbeddedObjectManager() : _state(std::make_shared<State>()) {}

EmbeddedObjectManager::~EmbeddedObjectManager() {
  Current& current = currentManager();
  const std::lock_guard<std::mutex> lock(current.mutex);
  if (current.manager != this) return;
  current.manager = nullptr;
  current.state.reset();
}

void EmbeddedObjectManager::makeCurrent() {
  Current& current = currentManager();
  std::shared_ptr<State> state = _state;
  const std::lock_guard<std::mutex> lock(current.mutex);
  current.manager = this;
  current.state.swap(state);
}

EmbeddedObjectManager* EmbeddedObjectManager::current() noexcept {
  Current& current = currentManager();
  const std::lock_guard<std::mutex> lock(current.mutex);
  return current.manager;
}

std::shared_ptr<EmbeddedObjectManager::State> embedded::currentState() {
  if (const ManagerScope* const scope = ManagerScope::innermost()) return scope->state();
  Current& current = currentManager();
  const std::lock_guard<std::mutex> lock(current.mutex);
  return current.state;
}

CimDeclarationSink& EmbeddedObjectManager::sink() { return _state->sink; }

QORSmrPtr<IQoriRepository> EmbeddedObjectManager::repository() const { return _state->repository; }

std::vector<QORString> EmbeddedObjectManager::namespaces() const {
  const ReadLock lock(_state->store->mutex());
  std::vector<QORString> names;
  for (const auto& space : _state->store->nameSpaces()) {
    if (!space->isPending) names.push_back(space->name);
  }
  return names;
}

std::vector<QORString> EmbeddedObjectManager::classNames(const QORString& nameSpace) const {
  std::vector<QORString> names = declaredClassNames(nameSpace);
  if (_state->outer != nullptr) embedded::addOuterNames(names, _state->outer->classNames(nameSpace));
  return names;
}

std::vector<QORString> EmbeddedObjectManager::declaredClassNames(const QORString& nameSpace) const {
  const ReadLock lock(_state->store->mutex());
  std::vector<QORString> names;
  const NameSpace* const space = _state->store->findNameSpace(nameSpace, View::Committed);
  if (space == nullptr) return names;
  for (const auto& entry : space->classes) {
    if (!entry->isPending) names.push_back(entry->name());
  }
  return names;
}

QORString EmbeddedObjectManager::superClassName(const QORString& nameSpace, const QORString& className) const {
  embedded::provideClass(*_state, nameSpace, className);
  const ReadLock lock(_state->store->mutex());
  const ClassEntry* const entry = _state->store->findClass(nameSpace, className, View::Committed);
  if (entry == nullptr) return {};
  return entry->superClass() == nullptr ? QORString::emptyString() : entry->superClass()->name();
}

bool EmbeddedObjectManager::describeClass(const QORString& nameSpace, const QORString& className,
                                          CimClassDeclaration& out) const {
  embedded::provideClass(*_state, nameSpace, className);
  const ReadLock lock(_state->store->mutex());
  const ClassEntry* const entry = _state->store->findClass(nameSpace, className, View::Committed);
  if (entry == nullptr) return false;
  out = entry->model().declaration();
  return true;
}

bool EmbeddedObjectManager::isAssociation(const QORString& nameSpace, const QORString& className) const {
  embedded::provideClass(*_state, nameSpace, className);
  const ReadLock lock(_state->store->mutex());
  const ClassEntry* const entry = _state->store->findClass(nameSpace, className, View::Committed);
  return entry != nullptr && entry->model().isAssociation();
}

std::vector<CimPropertyDeclaration> EmbeddedObjectManager::allProperties(const QORString& nameSpace,
                                                                         const QORString& className) const {
  embedded::provideClass(*_state, nameSpace, className);
  const ReadLock lock(_state->store->mutex());
  const ClassEntry* const entry = _state->store->findClass(nameSpace, className, View::Committed);
  return entry == nullptr ? std::vector<CimPropertyDeclaration>() : entry->model().properties();
}

std::vector<CimQualifierDeclaration> EmbeddedObjectManager::qualifiers(const QORString& nameSpace) const {
  if (_state->outer != nullptr) _state->outer->provideQualifiers(_state->sink, nameSpace);
  std::vector<CimQualifierDeclaration> declared;
  const ReadLock lock(_state->store->mutex());
  const NameSpace* const space = _state->store->findNameSpace(nameSpace, View::Committed);
  if (space == nullptr) return declared;
  for (const auto& [name, declaration] : space->qualifiers) declared.push_back(declaration);
  std::sort(declared.begin(), declared.end(), [](const auto& a, const auto& b) {
    return QORString::toUpperCase(a.name).view() < QORString::toUpperCase(b.name).view();
  });
  return declared;
}

QORString EmbeddedObjectManager::classMof(const QORString& nameSpace, const QORString& className,
                                          bool isComplete) const {
  embedded::provideClass(*_state, nameSpace, className);
  if (_state->outer != nullptr) _state->outer->provideQualifiers(_state->sink, nameSpace);
  const ReadLock lock(_state->store->mutex());
  const NameSpace* const space = _state->store->findNameSpace(nameSpace, View::Committed);
  const ClassEntry* entry =
      space == nullptr ? nullptr : embedded::ObjectStore::findClass(*space, className, View::Committed);
  if (entry == nullptr) return {};
  std::vector<CimClassDeclaration> line;
  for (; entry != nullptr; entry = isComplete ? entry->superClass() : nullptr) {
    line.insert(line.begin(), entry->model().declaration());
  }
  QORString text = isComplete ? embedded::qualifiersMofText(line, space->qualifiers) : QORString::emptyString();
  for (const CimClassDeclaration& declaration : line) {
    if (!text.isEmpty()) text += "\n";
    text += embedded::classMofText(declaration, space->qualifiers);
  }
  return text;
}

QORString EmbeddedObjectManager::instanceMof(const IQoriObject& instance) {
  return embedded::instanceMofText(instance);
}

void EmbeddedObjectManager::registerProvider(const QORString& nameSpace, std::shared_ptr<InstanceProvider> provider) {
  if (provider == nullptr) embedded::refuse(CimStatus::InvalidParameter, {"there is no provider to register"});
  const QORString className = provider->getClassName();
  const WriteLock lock(_state->store->mutex());
  _state->store->addSource(nameSpace, className, std::move(provider));
}

void EmbeddedObjectManager::setOuterSource(std::shared_ptr<OuterSource> source) {
  _state->outer = std::move(source);
  _state->repository = QORSmrPtr<IQoriRepository>(new Repository(_state->store, _state));
}

std::vector<QORString> EmbeddedObjectManager::liveClassNames(const QORString& nameSpace) const {
  const ReadLock lock(_state->store->mutex());
  std::vector<QORString> names;
  const NameSpace* const space = _state->store->findNameSpace(nameSpace, View::Committed);
  if (space == nullptr) return names;
  for (const embedded::LiveSource& source : space->sources) names.push_back(source.entry->name());
  return names;
}

QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>> EmbeddedObjectManager::ownInstances(
    const QORString& nameSpace, const QORString& className,
    const QORSmrPtr<QORValSlist<QORString>>& propertyNames) const {
  embedded::provideClass(*_state, nameSpace, className);
  const auto own = embedded::ownInstances(*_state->store, nameSpace, className, propertyNames);
  return embedded::withOuterInstances(*_state, own, {nameSpace, className, propertyNames},
                                      embedded::OuterPart::OfTheClassItself);
}

QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>> EmbeddedObjectManager::references(
    const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& source, const QORString& associationClass,
    const QORSmrPtr<QORValSlist<QORString>>& propertyNames, const QORString& role) const {
  if (source.IsNull()) return {};
  embedded::provideClass(*_state, nameSpace, associationClass);
  embedded::LiveSnapshot live;
  embedded::OuterSnapshot outer;
  const embedded::AssociationRequest request{nameSpace, source, associationClass, associationClass, propertyNames, role,
                                             {},        true};
  return embedded::AssociationWalk(*_state, live, outer, request).run();
}

QORSmrPtr<IQoriInstanceName> EmbeddedObjectManager::createInstance(const QORString& nameSpace,
                                                                   const CimInstanceDeclaration& declaration) {
  const WriteLock lock(_state->store->mutex());
  return _state->store->createInstance(nameSpace, declaration, View::Committed).object->getInstanceName();
}

void EmbeddedObjectManager::modifyInstance(const QORSmrPtr<IQoriInstanceName>& name,
                                           const std::vector<CimInstanceProperty>& properties) {
  if (name.IsNull()) embedded::refuse(CimStatus::InvalidParameter, {"there is no instance to modify"});
  const WriteLock lock(_state->store->mutex());
  _state->store->modifyInstance(*name, properties);
}

bool EmbeddedObjectManager::deleteInstance(const QORSmrPtr<IQoriInstanceName>& name) {
  if (name.IsNull()) return false;
  const WriteLock lock(_state->store->mutex());
  return _state->store->deleteInstance(*name);
}

void EmbeddedObjectManager::loadConfiguration(const std::string& path) { _state->configuration.load(path); }

void EmbeddedObjectManager::setConfiguration(const QORString& section, const QORString& key, const QORString& value) {
  _state->configuration.set(section, key, value);
}

void EmbeddedObjectManager::setLogSink(LogSink sink, QORuint32 maximumSeverity) {
  _state->log.connect(std::move(sink), maximumSeverity);
}

EmbeddedObjectManager::Statistics EmbeddedObjectManager::statistics() const {
  const State::Counters& counters = _state->counters;
  return {counters.enumerateCalls, counters.associatorCalls, counters.getInstanceCalls, counters.instancesReturned};
}

void EmbeddedObjectManager::resetStatistics() {
  State::Counters& counters = _state->counters;
  counters.enumerateCalls = 0;
  counters.associatorCalls = 0;
  counters.getInstanceCalls = 0;
  counters.instancesReturned = 0;
}
