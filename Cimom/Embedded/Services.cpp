// The services that the engine calls, answered by the current object manager.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/AssociationWalk.h"
#include "Cimom/Embedded/ClientCalls.h"
#include "Cimom/Embedded/EmbeddedState.h"
#include "Cimom/Embedded/OuterCalls.h"
#include "cimom/CIMApi.h"
#include "cimom/QoriProviderPluginManager.h"
#include "cimom/ZEMOConfigManager.h"

using State = EmbeddedObjectManager::State;

struct CIMApi::Live {
  std::shared_ptr<State> state;  // the object manager's state that the instances belong to
  embedded::LiveSnapshot snapshot;
  embedded::OuterSnapshot outer;
};

const int CIMApi::DefaultTimeout = 60;

CIMApi::CIMApi() = default;

CIMApi::~CIMApi() { delete _live; }

CIMApi::Instances CIMApi::enumerateInstances(const QORString& nameSpace, const QORString& className,
                                             const PropertyNames& properties, int /*timeout*/, const char* /*user*/,
                                             const char* /*password*/, const char* /*host*/,
                                             const QORSmrPtr<QoriTransactionInfo>& transaction) {
  const std::shared_ptr<State> state = embedded::currentState();
  if (state == nullptr) return {};
  ++state->counters.enumerateCalls;
  embedded::provideClass(*state, nameSpace, className);
  Instances found = embedded::enumerateInstances(*state->store, state->lists, nameSpace, className,
                                                 {properties, transaction, {}, state->outer != nullptr});
  found = embedded::withOuterInstances(*state, found, {nameSpace, className, properties});
  if (!found.IsNull()) state->counters.instancesReturned += found->entries();
  return found;
}

CIMApi::Instances CIMApi::associators(const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& source,
                                      const QORString& associationClass, const QORString& resultClass,
                                      const PropertyNames& properties, int /*timeout*/, const QORString& role,
                                      const QORString& resultRole, const QORString& /*host*/) {
  const std::shared_ptr<State> state = embedded::currentState();
  if (state == nullptr) return {};
  ++state->counters.associatorCalls;
  if (source.IsNull()) return {};
  if (_live == nullptr) _live = new Live;
  if (_live->state != state) *_live = {state, {}, {}};
  embedded::provideClass(*state, nameSpace, associationClass);
  embedded::provideClass(*state, nameSpace, resultClass);
  const embedded::AssociationRequest request{nameSpace,  source, associationClass, resultClass,
                                             properties, role,   resultRole};
  Instances found = embedded::AssociationWalk(*state, _live->snapshot, _live->outer, request).run();
  if (!found.IsNull()) state->counters.instancesReturned += found->entries();
  return found;
}

QORSmrPtr<IQoriObject> CIMApi::getInstance(const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& name,
                                           const PropertyNames& properties, int /*timeout*/, const char* /*user*/,
                                           const char* /*password*/, const char* /*host*/) {
  const std::shared_ptr<State> state = embedded::currentState();
  if (state == nullptr) return {};
  ++state->counters.getInstanceCalls;
  if (name.IsNull()) return {};
  const QORString space =
      embedded::localNameSpace(nameSpace.isEmpty() ? name->getNameSpacePath()->getNameSpace() : nameSpace);
  embedded::provideClass(*state, space, name->getClassName());
  QORSmrPtr<IQoriObject> found = embedded::getInstance(*state->store, nameSpace, name, properties);
  if (found.IsNull()) found = embedded::outerInstance(*state, {space, name->getClassName(), properties}, *name);
  if (!found.IsNull()) ++state->counters.instancesReturned;
  return found;
}

QoriProviderPluginManager* QoriProviderPluginManager::getQoriProviderPluginManager() {
  static QoriProviderPluginManager manager;
  return &manager;
}

QORSmrPtr<IQoriRepository> QoriProviderPluginManager::getRepository() const {
  const std::shared_ptr<State> state = embedded::currentState();
  return state == nullptr ? QORSmrPtr<IQoriRepository>() : state->repository;
}

QORSmrPtr<QORValSlist<QORString>> QoriProviderPluginManager::getNamespaceList() const {
  QORSmrPtr<QORValSlist<QORString>> names(new QORValSlist<QORString>);
  const std::shared_ptr<State> state = embedded::currentState();
  if (state == nullptr) return names;
  const std::shared_lock<std::shared_mutex> lock(state->store->mutex());
  for (const auto& space : state->store->nameSpaces()) {
    if (!space->isPending) names->append(space->name);
  }
  return names;
}

ZEMOConfigManager* ZEMOConfigManager::getInstance() {
  static ZEMOConfigManager manager;
  return &manager;
}

void ZEMOConfigManager::getString(const QORString& section, const QORString& key, QORString& value) const {
  const std::shared_ptr<State> state = embedded::currentState();
  value = state == nullptr ? QORString::emptyString() : state->configuration.get(section, key);
}

QORuint32 QORLog::CIMOMLOG = 1;

void QORLog::log(const QORString& who, const QORString& message, QoriTraceLog::Severity severity,
                 QoriTraceLog::Verbosity /*verbosity*/, QORuint32 /*number*/, QORuint32 /*channel*/) noexcept {
  const std::shared_ptr<State> state = embedded::currentState();
  if (state != nullptr) state->log.write(who, message, severity);
}
