// Subscriptions as they are written, indications as they come, deliveries as they end.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/IndicationState.h"

#include <utility>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Embedded/ManagerScope.h"
#include "Cimom/Server/ExportMessages.h"
#include "Cimom/Server/IndicationClasses.h"
#include "Cimom/Server/InstanceDocument.h"
#include "Cimom/Server/StatusCodes.h"
#include "Cimom/Server/SubscriptionRules.h"
#include "cimom/CQoriValue.h"

namespace {

bool isOfClass(const IQoriObject& object, const char* className) {
  return object.getClassName().isEqualCaseInsensitive(className);
}

const IQoriObject& oneOf(const InstanceChange& change) {
  return *(change.after.IsNull() ? change.before : change.after);
}

bool isOfSubscriptions(const IQoriObject& object) {
  return isSubscriptionClass(object.getNameSpace(), object.getClassName());
}

}  // namespace

void tellOfIndications(const std::string& line, QoriTraceLog::Severity severity) {
  QORLog::log("Indications", QORString(line), severity, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
}

void tellOfIndications(const QoriBaseException& fault) noexcept {
  try {
    tellOfIndications(std::string(fault.getMessage().view()));
  } catch (const std::exception&) {
    // There is no memory to tell with.
    return;
  }
}

IndicationService::State::State(ServerStore& store, IndicationOptions options)
    : _store(store), _options(std::move(options)), _writer(store, this) {}

IndicationService::State::~State() { stop(); }

void IndicationService::State::stop() noexcept {
  _janitor.stop();
  Channels channels;
  {
    const std::lock_guard lock(_mutex);
    channels.swap(_channels);
    for (auto& [path, channel] : channels) channel.listener->stop();
  }
  endRetired();
}

void IndicationService::State::prepareCreate(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                             const CimInstanceDeclaration& declaration) {
  SubscriptionRules::tryFilter(manager, nameSpace, declaration);
}

void IndicationService::State::prepareModify(EmbeddedObjectManager& manager, const IQoriObject& before,
                                             const std::vector<CimInstanceProperty>& properties) {
  if (!isOfClass(before, kFilterClass)) return;
  SubscriptionRules::tryFilter(manager, before.getNameSpace(), SubscriptionRules::changed(before, properties));
}

void IndicationService::State::beforeCreate(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                            CimInstanceDeclaration& declaration) {
  SubscriptionRules::checkNumber(nameSpace, declaration.className);
  if (!isSubscriptionClass(nameSpace, declaration.className)) {
    return SubscriptionRules::checkOther(manager, nameSpace, declaration.className);
  }
  const std::lock_guard lock(_mutex);
  SubscriptionRules(manager, *_table, _options.origin).complete(declaration);
  const bool isHandler = declaration.className.isEqualCaseInsensitive(kHandlerClass);
  if (isHandler && _table->handlerCount() >= _options.listenerLimit) {
    throw CimStatusException(cimstatus::kServerLimitsExceeded,
                             "there are " + std::to_string(_options.listenerLimit) + " listeners, which is the limit");
  }
}

void IndicationService::State::beforeModify(EmbeddedObjectManager& manager, const IQoriObject& before,
                                            const std::vector<CimInstanceProperty>& properties) {
  SubscriptionRules::checkSettings(before, properties);
  if (!isOfSubscriptions(before)) return;
  const std::lock_guard lock(_mutex);
  SubscriptionRules(manager, *_table, _options.origin).check(before, properties);
}

void IndicationService::State::beforeRemove(EmbeddedObjectManager& manager, const IQoriObject& before) {
  SubscriptionRules::checkNumber(before.getNameSpace(), before.getClassName());
  if (!isOfSubscriptions(before)) return;
  const std::lock_guard lock(_mutex);
  SubscriptionRules(manager, *_table, _options.origin).checkRemoval(before);
}

void IndicationService::State::setWatcher(std::function<void()> watcher) {
  const std::unique_lock lock(_watcherMutex);
  _watcher = std::move(watcher);
}

void IndicationService::State::waitForWatcher() {
  const std::shared_lock lock(_watcherMutex);
  if (_watcher) _watcher();
}

void IndicationService::State::change(EmbeddedObjectManager& manager, const InstanceChange& change,
                                      const std::function<void(ServerStore::Change&)>& write) {
  const std::lock_guard lock(_mutex);
  Advances advances;
  Discarded discarded;
  SubscriptionTable::Counting counting(*_table);
  Prepared prepared = prepare(change);
  {
    ServerStore::Change kept(_store);
    write(kept);
    if (_table->hasSubscriptions()) {
      const Object indication(indicationOf(manager, change));
      if (!indication.IsNull()) queue(kept, indication, oneOf(change).getNameSpace(), advances);
    }
    keep(kept, advances);
    discarded = keepQueues(kept, change);
    kept.commit();
  }
  counting.keep();
  settle(advances);
  if (discarded.channel != nullptr) discarded.channel->listener->forget(discarded.count);
  apply(change, std::move(prepared));
  _filters.note(_table->takeChanges());
}

// A listener that is gone needs no queue, and a subscription that is gone or disabled gets no more.
IndicationService::State::Discarded IndicationService::State::keepQueues(ServerStore::Change& kept,
                                                                         const InstanceChange& change) {
  const IQoriObject& object = oneOf(change);
  if (!isOfSubscriptions(object) || change.before.IsNull()) return {};
  const std::string path = pathOf(object);
  if (isOfClass(object, kHandlerClass)) {
    const auto channel = _channels.find(path);
    if (change.after.IsNull() && channel != _channels.end()) kept.forget(channel->second.listener->id());
    return {};
  }
  const Subscription* const subscription = _table->findSubscription(path);
  if (subscription == nullptr) return {};
  if (!change.after.IsNull() && readSubscription(*change.after).isEnabled) return {};
  const auto channel = _channels.find(subscription->handler);
  if (channel == _channels.end()) return {};
  return {&channel->second, kept.removeOf(channel->second.listener->id(), path)};
}

// Null when the namespace has no such class, or nobody can see it.
IndicationService::State::Object IndicationService::State::indicationOf(EmbeddedObjectManager& manager,
                                                                        const InstanceChange& change) {
  const QORString nameSpace = oneOf(change).getNameSpace();
  if (manager.sink().findClass(nameSpace, Indications::classOf(change)).IsNull()) return {};
  auto& known = _indications[std::string(nameSpace.view())];
  if (known == nullptr) known = std::make_unique<Indications>(manager, nameSpace, _options.origin);
  return known->make(change);
}

void IndicationService::State::publish(const std::vector<Object>& indications, const QORString& nameSpace) {
  const std::lock_guard lock(_mutex);
  if (!_table->hasSubscriptions()) return;
  Advances advances;
  SubscriptionTable::Counting counting(*_table);
  ServerStore::Change kept(_store);
  for (const Object& indication : indications) queue(kept, indication, nameSpace, advances);
  keep(kept, advances);
  kept.commit();
  counting.keep();
  settle(advances);
}

void IndicationService::State::queue(ServerStore::Change& kept, const Object& indication, const QORString& nameSpace,
                                     Advances& advances) {
  std::vector<SubscriptionTable::Match> matches;
  try {
    matches = _table->match(indication, nameSpace);
  } catch (const QoriBaseException& fault) {
    return tellOfIndications("an indication cannot be matched: " + std::string(fault.getMessage().view()));
  }
  for (const SubscriptionTable::Match& match : matches) {
    const auto found = _channels.find(match.handler.path);
    if (found == _channels.end()) continue;
    Channel& channel = found->second;
    Advance& advance = advances.try_emplace(&channel, Advance{channel.next, 0, 0}).first->second;
    const std::int64_t number = advance.next++;
    const std::int64_t waiting = channel.listener->waiting() + advance.queued;
    if (waiting >= static_cast<std::int64_t>(_options.queueLimit)) {
      ++advance.dropped;
      _table->undoCount(match);
    } else {
      const DeliveryMark mark{match.filter.name, QORString(channel.context), number};
      const auto selects = [&](const QORString& name) { return match.selection.has(name); };
      kept.queue(channel.listener->id(),
                 {number, match.subscription.path, indicationDocument(*indication, selects, mark)});
      ++advance.queued;
    }
  }
}

// Once for each change, however many indications it has.
void IndicationService::State::keep(ServerStore::Change& kept, const Advances& advances) {
  for (const auto& [channel, advance] : advances) kept.count(channel->listener->id(), advance.next, advance.dropped);
}

// A queue that stays nearly full is told of once, not with each indication that leaves it.
void IndicationService::State::settle(const Advances& advances) {
  for (const auto& [channel, advance] : advances) {
    const bool hasRoom = channel->listener->waiting() <= static_cast<std::int64_t>(_options.queueLimit / 2);
    channel->next = advance.next;
    if (advance.queued > 0) channel->listener->wake(advance.queued);
    if (advance.dropped > 0 && channel->dropped == 0) {
      tellOfIndications("the queue of " + channel->listener->handler() + " is full (" +
                        std::to_string(_options.queueLimit) + " indications): what comes now is dropped");
    } else if (advance.dropped == 0 && channel->dropped > 0 && hasRoom) {
      tellOfIndications("the queue of " + channel->listener->handler() +
                        " has room again: " + std::to_string(channel->dropped) + " indications were dropped");
      channel->dropped = 0;
    }
    channel->dropped += advance.dropped;
  }
}

ServerEvents::FilterNews IndicationService::State::filtersSince(QORuint64 version) const {
  const std::lock_guard lock(_mutex);
  std::optional<std::vector<FilterChange>> changes = _filters.since(version);
  FilterNews news{_filters.version(), !changes, {}};
  if (changes) news.changes = std::move(*changes);
  if (news.areAll) {
    for (const FilterStatement& each : _table->statements()) news.changes.push_back({each, true});
  }
  return news;
}

RetrySettings IndicationService::State::retrySettings() const noexcept {
  return {_retryAttempts, _retryInterval.load() * _options.intervalUnit};
}

void IndicationService::State::delivered(const std::string& subscription) noexcept {
  if (_failingCount == 0) return;
  const std::lock_guard lock(_mutex);
  forgetFailures(subscription);
}

void IndicationService::State::forgetFailures(const std::string& subscription) noexcept {
  _failing.erase(subscription);
  _failingCount = _failing.size();
}

void IndicationService::State::failed(const std::string& handler, const std::string& subscription,
                                      const std::string& reason) noexcept {
  try {
    const std::lock_guard lock(_mutex);
    const Subscription* const known = _table->findSubscription(subscription);
    const ListenerDestination* const destination = _table->findHandler(handler);
    if (known == nullptr || destination == nullptr) return;
    tellOfIndications("an indication for " + urlWithoutPassword(destination->url) + " is dropped after " +
                      std::to_string(_retryAttempts + 1) + " attempts: " + reason);
    const Time now = std::chrono::steady_clock::now();
    const Time since = _failing.try_emplace(subscription, now).first->second;
    _failingCount = _failing.size();
    const bool isTransient = destination->isTransient;
    if (!isTransient && known->onFailure == Subscription::OnFailure::Ignore) return;
    if (!isTransient && now - since < known->failureInterval) return;
    act(*known, isTransient);
  } catch (const std::bad_alloc&) {
    // The next failure will be noted.
  }
}

// The thread of a listener cannot wait for its own end.
void IndicationService::State::act(const Subscription& subscription, bool isTransient) {
  _janitor.add([this, path = subscription.path, handler = subscription.handler, isTransient] {
    const std::lock_guard lock(_managerMutex);
    if (_manager == nullptr) return;
    const ManagerScope scope(*_manager);
    try {
      isTransient ? removeAll(*_manager, handler) : actOnFailure(*_manager, path);
    } catch (const QoriBaseException& fault) {
      tellOfIndications("that is not done: " + std::string(fault.getMessage().view()));
    }
  });
}

// Others may have changed it meanwhile, or another failure may have come first.
void IndicationService::State::actOnFailure(EmbeddedObjectManager& manager, const std::string& path) {
  std::optional<Subscription> failing;
  {
    const std::lock_guard lock(_mutex);
    const Subscription* const known = _table->findSubscription(path);
    if (known == nullptr || !known->isEnabled || !_failing.contains(path)) return;
    failing = *known;
  }
  if (failing->onFailure == Subscription::OnFailure::Ignore) return;
  const bool isRemoval = failing->onFailure == Subscription::OnFailure::Remove;
  tellOfIndications("the subscription " + path + (isRemoval ? " is removed" : " is disabled") +
                    ", since its listener fails");
  if (isRemoval) return _writer.remove(manager, failing->name);
  constexpr unsigned short kDisabled = 4;
  _writer.modify(manager, failing->name, {{"SubscriptionState", new CQoriValue(kDisabled, CQoriType::uint16)}});
}

void IndicationService::State::removeAll(EmbeddedObjectManager& manager, const std::string& handler) {
  std::vector<QORSmrPtr<IQoriInstanceName>> names;
  {
    const std::lock_guard lock(_mutex);
    const ListenerDestination* const destination = _table->findHandler(handler);
    if (destination == nullptr) return;
    names = _table->subscriptionsOf(handler);
    names.push_back(destination->name);
  }
  tellOfIndications("the transient listener " + handler + " and its subscriptions are removed, since it fails");
  for (const QORSmrPtr<IQoriInstanceName>& name : names) _writer.remove(manager, name);
}
