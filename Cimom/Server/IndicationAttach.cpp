// The service takes over what an object manager and a store hold, and follows what changes of it.
// Tested by tests/unit/Server/IndicationServiceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <set>
#include <utility>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Embedded/ManagerScope.h"
#include "Cimom/Server/IndicationClasses.h"
#include "Cimom/Server/IndicationState.h"
#include "Cimom/Server/QueueProvider.h"
#include "Cimom/Server/ServerClasses.h"
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

void tellOfShortage(const IQoriObject& object, const std::exception& fault) noexcept {
  try {
    tellOfIndications("what was written of " + pathOf(object) +
                      " is in force once the configuration is read anew: " + fault.what());
  } catch (const std::exception&) {
    // There is no memory to tell with.
    return;
  }
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

// What is read stands beside what is served until it is taken.
class IndicationService::State::Reading final : public ServerEvents::Attachment {
 public:
  Reading(std::shared_ptr<State> state, std::shared_ptr<EmbeddedObjectManager> manager)
      : _state(std::move(state)), _turn(_state->_managerMutex), _manager(std::move(manager)) {}

  void read() {
    const ManagerScope scope(*_manager);
    _state->_writer.restore(*_manager, [](const std::string& path, const std::string& reason) {
      tellOfIndications("the stored instance " + path + " does not fit any more: " + reason);
    });
    for (const char* className : {kFilterClass, kHandlerClass, kSubscriptionClass}) {
      for (const Object& object : instancesOf(*_manager, className)) readOne(*object);
    }
    tellOfThoseBelow();
    for (const Object& service : instancesOf(*_manager, kIndicationServiceClass)) _retries = retriesOf(*service);
  }

  void take() noexcept override {
    const std::lock_guard lock(_state->_mutex);
    _state->_manager = _manager;
    _state->_indications.clear();
    _table->continueFrom(*_state->_table);
    _table.swap(_state->_table);
    _state->use(_retries);
    takeChannels();
    _state->forgetQueues(*_manager);
    _state->_table->takeChanges();
    _state->_filters.reset();
  }

 private:
  // What was refused when a client wrote it is not here; what a MOF text declares, or does not fit a new one, may be
  // wrong.
  void readOne(const IQoriObject& object) {
    try {
      if (isSubscriptionOf(object, kFilterClass)) return _table->put(readFilter(object));
      if (isSubscriptionOf(object, kSubscriptionClass)) return putSubscription(readSubscription(object));
      _table->put(readDestination(object));
    } catch (const QoriBaseException& refusal) {
      return tellOfIndications(pathOf(object) + " is not in force: " + refusal.what());
    }
    const ListenerDestination& destination = *_table->findHandler(pathOf(object));
    if (!_state->hasChannel(destination.path)) _channels.insert(_state->makeChannel(destination));
    _urls.emplace(destination.path, destination.url);
  }

  // Its ends have been read before; a client may still bring in what is missing.
  void putSubscription(Subscription subscription) {
    const bool hasFilter = _table->hasFilter(subscription.filter);
    if (!hasFilter || _table->findHandler(subscription.handler) == nullptr) {
      tellOfIndications(subscription.path + " is not in force: there is no " +
                        (hasFilter ? "listener destination " + subscription.handler : "filter " + subscription.filter) +
                        " in force");
    }
    _table->put(std::move(subscription));
  }

  // MOF may declare what clients cannot create.
  void tellOfThoseBelow() const {
    const ServerClasses classes(*_manager, kSubscriptionSpace);
    for (const QORString& name : _manager->declaredClassNames(kSubscriptionSpace)) {
      for (const char* known : {kFilterClass, kHandlerClass, kSubscriptionClass}) {
        if (name.isEqualCaseInsensitive(known) || !classes.isA(name, known)) continue;
        for (const Object& object : instancesOf(*_manager, name.c_str())) {
          tellOfIndications(pathOf(*object) + " is not in force: only instances of " + known + " itself are");
        }
      }
    }
  }

  // A sequence goes on where it was.
  void takeChannels() noexcept {
    for (auto channel = _state->_channels.begin(); channel != _state->_channels.end();) {
      const std::string& path = (channel++)->first;
      if (_state->_table->findHandler(path) == nullptr) _state->retire(path);
    }
    for (auto& [path, url] : _urls) {
      const auto known = _state->_channels.find(path);
      if (known != _state->_channels.end()) known->second.listener->redirect(std::move(url));
    }
    while (!_channels.empty()) _state->open(_channels.extract(_channels.begin()));
  }

  const std::shared_ptr<State> _state;
  const std::unique_lock<std::mutex> _turn;
  const std::shared_ptr<EmbeddedObjectManager> _manager;
  std::unique_ptr<SubscriptionTable> _table = std::make_unique<SubscriptionTable>();
  Channels _channels;
  std::map<std::string, std::string> _urls;  // by the handler's path
  Retries _retries;
};

std::unique_ptr<ServerEvents::Attachment> IndicationService::State::read(
    const std::shared_ptr<EmbeddedObjectManager>& manager) {
  auto reading = std::make_unique<Reading>(shared_from_this(), manager);
  reading->read();
  return reading;
}

// THROWS QoriBaseException when the store cannot take a new listener.
IndicationService::State::Prepared IndicationService::State::prepare(const InstanceChange& change) {
  Prepared prepared;
  if (change.after.IsNull()) return prepared;
  const IQoriObject& after = *change.after;
  if (isSubscriptionOf(after, kIndicationServiceClass)) prepared.retries = retriesOf(after);
  if (isSubscriptionOf(after, kFilterClass)) prepared.filter = readFilter(after);
  if (isSubscriptionOf(after, kSubscriptionClass)) prepared.subscription = readSubscription(after);
  if (isSubscriptionOf(after, kHandlerClass)) {
    prepared.destination = readDestination(after);
    if (!_channels.contains(prepared.destination->path)) prepared.channel = makeChannel(*prepared.destination);
  }
  return prepared;
}

// The store has the change already.
void IndicationService::State::apply(const InstanceChange& change, Prepared prepared) noexcept {
  try {
    if (change.after.IsNull()) {
      applyRemoval(*change.before);
    } else {
      applyObject(std::move(prepared));
    }
  } catch (const std::exception& fault) {
    tellOfShortage(change.after.IsNull() ? *change.before : *change.after, fault);
  }
}

void IndicationService::State::applyRemoval(const IQoriObject& before) {
  if (!isSubscriptionClass(before.getNameSpace(), before.getClassName())) return;
  const std::string path = pathOf(before);
  if (isSubscriptionOf(before, kHandlerClass)) retire(path);
  _table->remove(path);
  forgetFailures(path);
}

void IndicationService::State::applyObject(Prepared prepared) {
  use(prepared.retries);
  if (prepared.filter) return _table->put(std::move(*prepared.filter));
  if (prepared.subscription) {
    // Who enables it again gives its listener as much time as at first.
    forgetFailures(prepared.subscription->path);
    return _table->put(std::move(*prepared.subscription));
  }
  if (!prepared.destination) return;
  const auto known = _channels.find(prepared.destination->path);
  if (known == _channels.end()) {
    open(std::move(prepared.channel));
  } else {
    known->second.listener->redirect(prepared.destination->url);
  }
  _table->put(std::move(*prepared.destination));
}

IndicationService::State::Retries IndicationService::State::retriesOf(const IQoriObject& service) {
  const QORSmrPtr<IQoriValue> attempts(valueOf(service, "DeliveryRetryAttempts"));
  const QORSmrPtr<IQoriValue> interval(valueOf(service, "DeliveryRetryInterval"));
  Retries retries;
  if (!attempts.IsNull()) retries.attempts = attempts->getUint32();
  if (!interval.IsNull()) retries.interval = interval->getUint32();
  return retries;
}

void IndicationService::State::use(const Retries& retries) noexcept {
  _retryAttempts = retries.attempts.value_or(_retryAttempts);
  _retryInterval = retries.interval.value_or(_retryInterval);
}

bool IndicationService::State::hasChannel(const std::string& handler) const {
  const std::lock_guard lock(_mutex);
  return _channels.contains(handler);
}

// A sequence goes on where it was, also in the next process.
IndicationService::State::Channels::node_type IndicationService::State::makeChannel(
    const ListenerDestination& destination) {
  const ServerStore::Listener kept =
      _store.listener(destination.path, _options.origin.series + "listener-" + std::to_string(++_contexts));
  Channel channel;
  channel.context = kept.context;
  channel.next = kept.next;
  channel.listener = std::make_unique<IndicationListener>(_store, _options.makeTransport, *this, destination.path,
                                                          destination.url, kept.id);
  channel.kept = kept.queued;
  Channels made;
  made.emplace(destination.path, std::move(channel));
  return made.extract(made.begin());
}

// The one that is there stays.
void IndicationService::State::open(Channels::node_type channel) noexcept {
  const auto opened = _channels.insert(std::move(channel));
  if (opened.inserted && opened.position->second.kept > 0) {
    opened.position->second.listener->wake(opened.position->second.kept);
  }
}

// Of listeners that nothing declares any more. Those that are declared wrongly, and those of stored instances that do
// not fit, are kept for when they are mended.
void IndicationService::State::forgetQueues(const EmbeddedObjectManager& manager) noexcept {
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
    tellOfIndications(fault);
  } catch (const std::exception&) {
    // They are forgotten the next time.
    return;
  }
}

// Somebody else waits for its thread, which may want the lock that is held here; when there is nobody, the next who
// comes.
void IndicationService::State::retire(const std::string& handler) noexcept {
  const auto found = _channels.find(handler);
  if (found == _channels.end()) return;
  found->second.listener->stop();
  _retired.insert(_channels.extract(found));
  try {
    _janitor.add([this] { endRetired(); });
  } catch (const std::exception&) {
    return;
  }
}

void IndicationService::State::endRetired() noexcept {
  std::multimap<std::string, Channel> ended;
  const std::lock_guard lock(_mutex);
  ended.swap(_retired);
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
