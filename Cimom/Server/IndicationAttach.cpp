// The service takes over what an object manager and a store hold, and follows what changes of it.
// Tested by tests/unit/Server/IndicationServiceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <set>
#include <utility>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/IndicationClasses.h"
#include "Cimom/Server/IndicationState.h"
#include "Cimom/Server/QueueProvider.h"
#include "Cimom/Server/SubscriptionRules.h"
#include "cimom/CQoriValue.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;

bool isSubscriptionOf(const IQoriObject& object, const char* className) {
  return object.getClassName().isEqualCaseInsensitive(className) &&
         object.getNameSpace().isEqualCaseInsensitive(kSubscriptionSpace);
}

std::vector<Object> instancesOf(const EmbeddedObjectManager& manager, const char* className) {
  std::vector<Object> found;
  const auto instances = manager.ownInstances(kSubscriptionSpace, className, {});
  if (instances.IsNull()) return found;
  QORValSlistIterator<Object> each(*instances);
  while (++each) found.push_back(each.key());
  return found;
}

QORSmrPtr<IQoriValue> text(const std::string& value) { return new CQoriValue(QORString(value)); }

}  // namespace

void IndicationService::State::prepare(EmbeddedObjectManager& manager) {
  declareIndicationClasses(manager);
  manager.registerProvider(kSubscriptionSpace,
                           std::make_shared<QueueProvider>([weak = weak_from_this()]() -> std::vector<QueueRow> {
                             const std::shared_ptr<State> state = weak.lock();
                             return state == nullptr ? std::vector<QueueRow>() : state->queueRows();
                           }));
  createService(manager);
}

void IndicationService::State::createService(EmbeddedObjectManager& manager) const {
  if (!instancesOf(manager, kIndicationServiceClass).empty()) return;
  CimInstanceDeclaration service;
  service.className = kIndicationServiceClass;
  service.properties = {
      {"SystemCreationClassName", text("CIM_ComputerSystem")},
      {"SystemName", text(_options.origin.host)},
      {"CreationClassName", text(kIndicationServiceClass)},
      {"Name", text("QORQL")},
      {"ElementName", text("Indications")},
      {"Started", new CQoriValue(true, CQoriType::boolean)},
      {"FilterCreationEnabled", new CQoriValue(true, CQoriType::boolean)},
      {"DeliveryRetryAttempts", new CQoriValue(_retryAttempts.load(), CQoriType::uint16)},
      {"DeliveryRetryInterval", new CQoriValue(_retryInterval.load(), CQoriType::uint32)},
  };
  manager.createInstance(kSubscriptionSpace, service);
}

void IndicationService::State::attach(const std::shared_ptr<EmbeddedObjectManager>& manager) {
  const std::lock_guard turn(_managerMutex);
  try {
    _writer.restore(*manager, [](const std::string& path, const std::string& reason) {
      tellOfIndications("the stored instance " + path + " does not fit any more: " + reason);
    });
  } catch (const QoriBaseException& fault) {
    tellOfIndications(std::string(fault.getMessage().view()));
  }
  const std::lock_guard lock(_mutex);
  _manager = manager;
  _indications.clear();
  const std::unique_ptr<SubscriptionTable> before = std::exchange(_table, std::make_unique<SubscriptionTable>());
  for (const char* className : {kFilterClass, kHandlerClass, kSubscriptionClass, kIndicationServiceClass}) {
    for (const Object& object : instancesOf(*manager, className)) apply({{}, object});
  }
  _table->continueFrom(*before);
  std::vector<std::string> gone;
  for (const auto& [path, channel] : _channels) {
    if (_table->findHandler(path) == nullptr) gone.push_back(path);
  }
  for (const std::string& path : gone) retire(path);
  forgetQueues(*manager);
  _table->takeChanges();
  _filters.reset();
}

// What was refused when it was written is not here; what a MOF text declares, or does not fit a new one, may be wrong.
void IndicationService::State::apply(const InstanceChange& change) {
  const IQoriObject& object = *(change.after.IsNull() ? change.before : change.after);
  try {
    if (change.after.IsNull()) {
      applyRemoval(object);
    } else {
      applyObject(object);
    }
  } catch (const std::exception& fault) {
    tellOfIndications(pathOf(object) + " is not in force: " + fault.what());
  }
}

void IndicationService::State::applyRemoval(const IQoriObject& before) {
  if (!isSubscriptionClass(before.getNameSpace(), before.getClassName())) return;
  const std::string path = pathOf(before);
  if (isSubscriptionOf(before, kHandlerClass)) retire(path);
  _table->remove(path);
  _failing.erase(path);
  _failingCount = _failing.size();
}

void IndicationService::State::applyObject(const IQoriObject& after) {
  if (isSubscriptionOf(after, kIndicationServiceClass)) return readService(after);
  if (!isSubscriptionClass(after.getNameSpace(), after.getClassName())) return;
  if (isSubscriptionOf(after, kFilterClass)) return _table->put(readFilter(after));
  if (isSubscriptionOf(after, kSubscriptionClass)) return _table->put(readSubscription(after));
  const ListenerDestination destination = readDestination(after);
  open(destination);
  _table->put(destination);
}

void IndicationService::State::readService(const IQoriObject& service) {
  const QORSmrPtr<IQoriValue> attempts(valueOf(service, "DeliveryRetryAttempts"));
  const QORSmrPtr<IQoriValue> interval(valueOf(service, "DeliveryRetryInterval"));
  if (!attempts.IsNull()) _retryAttempts = attempts->getUint32();
  if (!interval.IsNull()) _retryInterval = interval->getUint32();
}

// A sequence goes on where it was, also in the next process.
void IndicationService::State::open(const ListenerDestination& destination) {
  const auto found = _channels.find(destination.path);
  if (found != _channels.end()) return found->second.listener->redirect(destination.url);
  const ServerStore::Listener kept =
      _store.listener(destination.path, _options.origin.series + "listener-" + std::to_string(++_contexts));
  Channel channel;
  channel.context = kept.context;
  channel.next = kept.next;
  channel.listener = std::make_unique<IndicationListener>(_store, _options.makeTransport, *this, destination.path,
                                                          destination.url, kept.id);
  if (kept.queued > 0) channel.listener->wake(kept.queued);
  _channels.emplace(destination.path, std::move(channel));
}

// Of listeners that nothing declares any more. Those that are declared wrongly, and those of stored instances that do
// not fit, are kept for when they are mended.
void IndicationService::State::forgetQueues(const EmbeddedObjectManager& manager) {
  try {
    std::set<std::string> kept;
    for (const Object& handler : instancesOf(manager, kHandlerClass)) kept.insert(pathOf(*handler));
    for (const ServerStore::Instance& instance : _store.instances()) {
      if (!instance.isGone) kept.insert(instance.path);
    }
    for (const auto& [path, id] : _store.listeners()) {
      if (_channels.contains(path) || kept.contains(path)) continue;
      ServerStore::Change change(_store);
      change.forget(id);
      change.commit();
      tellOfIndications("the listener " + path + " is declared no more: its queue is forgotten");
    }
  } catch (const QoriBaseException& fault) {
    tellOfIndications(std::string(fault.getMessage().view()));
  }
}

// Somebody else waits for its thread.
void IndicationService::State::retire(const std::string& handler) {
  const auto found = _channels.find(handler);
  if (found == _channels.end()) return;
  std::shared_ptr<IndicationListener> listener = std::move(found->second.listener);
  listener->stop();
  _channels.erase(found);
  // The job holds it alone: whoever ends it last waits for its thread, which may want the lock that is held here.
  _janitor.add([kept = std::move(listener)] {});
}

std::vector<QueueRow> IndicationService::State::queueRows() {
  std::vector<QueueRow> rows;
  const std::lock_guard lock(_mutex);
  for (const auto& [path, channel] : _channels) {
    const ListenerDestination* const destination = _table->findHandler(path);
    if (destination == nullptr) continue;
    rows.push_back({*destination, _store.listener(path, channel.context), channel.listener->numbers()});
  }
  return rows;
}
