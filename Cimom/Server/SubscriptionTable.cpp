// Keeps them, and asks the set of filters.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/SubscriptionTable.h"

#include <algorithm>
#include <utility>

IndicationSelection::IndicationSelection(const CQLQueryStatement& statement) {
  const CQLQueryStatement::ClassList classes(statement.getClassList());
  QORValSlistIterator<QORSmrPtr<IQoriInstanceName>> each(*classes);
  while (++each) {
    const IQueryStatement::PropertyNames names(statement.getSelectPropertyList(each.key()));
    if (names.IsNull()) _isAll = true;
    if (_isAll) return;
    QORValSlistIterator<QORString> name(*names);
    while (++name) _names.push_back(name.key());
  }
}

bool IndicationSelection::has(const QORString& name) const {
  return _isAll || std::any_of(_names.begin(), _names.end(),
                               [&](const QORString& selected) { return selected.isEqualCaseInsensitive(name); });
}

struct SubscriptionTable::Filter {
  SubscriptionFilter filter;
  std::vector<CQLFilterSet::Handle> handles;
};

struct SubscriptionTable::Statement {
  Filter* filter;  // BORROWS
  IndicationSelection selection;
};

struct SubscriptionTable::Subscribed {
  explicit Subscribed(Subscription given) : subscription(std::move(given)), memory(subscription.repeat) {}

  Subscription subscription;
  RepeatMemory memory;
};

SubscriptionTable::SubscriptionTable() = default;
SubscriptionTable::~SubscriptionTable() = default;

void SubscriptionTable::continueFrom(SubscriptionTable& other) noexcept {
  for (const auto& [path, subscribed] : _subscriptions) {
    const auto before = other._subscriptions.find(path);
    if (before == other._subscriptions.end()) continue;
    RepeatMemory& memory = before->second->memory;
    if (memory.rule() == subscribed->memory.rule()) subscribed->memory.continueFrom(memory);
  }
}

void SubscriptionTable::put(SubscriptionFilter filter) {
  const std::string path = filter.path;
  removeFilter(path);
  auto kept = std::make_unique<Filter>(Filter{std::move(filter), {}});
  for (const FilterStatement& statement : kept->filter.statements) {
    const CQLFilterSet::Handle handle = ++_next;
    _statements[handle] = std::make_unique<Statement>(Statement{kept.get(), IndicationSelection(*statement)});
    kept->handles.push_back(handle);
    _set.add(handle, statement);
  }
  _filters[path] = std::move(kept);
  if (isAsked(path)) noteFilter(path, true);
}

void SubscriptionTable::put(ListenerDestination destination) {
  const std::string path = destination.path;
  _handlers.insert_or_assign(path, std::move(destination));
}

void SubscriptionTable::put(Subscription subscription) {
  const std::string path = subscription.path;
  auto kept = std::make_unique<Subscribed>(std::move(subscription));
  const auto before = _subscriptions.find(path);
  if (before != _subscriptions.end() && before->second->memory.rule() == kept->memory.rule()) {
    kept->memory.continueFrom(before->second->memory);
  }
  remove(path);
  for (const std::string& end : {kept->subscription.filter, kept->subscription.handler}) refer(end, *kept);
  _subscriptions[path] = std::move(kept);
}

void SubscriptionTable::refer(const std::string& end, Subscribed& subscribed) {
  Referring& referring = _referring[end];
  referring.subscriptions[subscribed.subscription.path] = &subscribed;
  if (subscribed.subscription.isEnabled && ++referring.enabled == 1) noteFilter(end, true);
}

void SubscriptionTable::forget(const std::string& end, const Subscription& subscription) {
  Referring& referring = _referring[end];
  referring.subscriptions.erase(subscription.path);
  if (subscription.isEnabled && --referring.enabled == 0) noteFilter(end, false);
  if (referring.subscriptions.empty()) _referring.erase(end);
}

bool SubscriptionTable::isAsked(const std::string& filter) const {
  const auto referring = _referring.find(filter);
  return referring != _referring.end() && referring->second.enabled > 0;
}

void SubscriptionTable::noteFilter(const std::string& path, bool isAsked) {
  const auto known = _filters.find(path);
  if (known == _filters.end()) return;
  for (const FilterStatement& statement : known->second->filter.statements) _changes.push_back({statement, isAsked});
}

std::vector<FilterChange> SubscriptionTable::takeChanges() noexcept { return std::exchange(_changes, {}); }

void SubscriptionTable::removeFilter(const std::string& path) {
  const auto found = _filters.find(path);
  if (found == _filters.end()) return;
  if (isAsked(path)) noteFilter(path, false);
  for (const CQLFilterSet::Handle handle : found->second->handles) {
    _set.remove(handle);
    _statements.erase(handle);
  }
  _filters.erase(found);
}

void SubscriptionTable::remove(const std::string& path) {
  removeFilter(path);
  _handlers.erase(path);
  const auto found = _subscriptions.find(path);
  if (found == _subscriptions.end()) return;
  const Subscription& subscription = found->second->subscription;
  for (const std::string& end : {subscription.filter, subscription.handler}) forget(end, subscription);
  _subscriptions.erase(found);
}

const ListenerDestination* SubscriptionTable::findHandler(const std::string& path) const {
  const auto found = _handlers.find(path);
  return found == _handlers.end() ? nullptr : &found->second;
}

const Subscription* SubscriptionTable::findSubscription(const std::string& path) const {
  const auto found = _subscriptions.find(path);
  return found == _subscriptions.end() ? nullptr : &found->second->subscription;
}

const Subscription* SubscriptionTable::firstReferring(const std::string& path) const {
  const auto found = _referring.find(path);
  return found == _referring.end() ? nullptr : &found->second.subscriptions.begin()->second->subscription;
}

std::vector<QORSmrPtr<IQoriInstanceName>> SubscriptionTable::subscriptionsOf(const std::string& handler) const {
  std::vector<QORSmrPtr<IQoriInstanceName>> names;
  const auto found = _referring.find(handler);
  if (found == _referring.end()) return names;
  for (const auto& [path, subscribed] : found->second.subscriptions) names.push_back(subscribed->subscription.name);
  return names;
}

std::vector<FilterStatement> SubscriptionTable::statements() const {
  std::vector<FilterStatement> found;
  for (const auto& [path, filter] : _filters) {
    if (!isAsked(path)) continue;
    found.insert(found.end(), filter->filter.statements.begin(), filter->filter.statements.end());
  }
  return found;
}

// What tells the events of one kind from each other.
bool SubscriptionTable::isWanted(Subscribed& subscribed, const IQoriObject& indication) {
  if (!subscribed.subscription.isEnabled) return false;
  if (subscribed.subscription.repeat.policy == RepeatRule::Policy::None) return true;
  std::string event(indication.getClassName().view());
  for (const char* property : {"SourceInstanceModelPath", "AlertingManagedElement", "EventID", "AlertType",
                               "ProbableCause", "OwningEntity", "MessageID"}) {
    const QORSmrPtr<IQoriValue> value(valueOf(indication, property));
    event += '\n';
    if (!value.IsNull()) event += value->toString().view();
  }
  _counted.push_back(&subscribed);
  return subscribed.memory.lets(event, std::chrono::steady_clock::now());
}

void SubscriptionTable::keepCounts() noexcept {
  for (Subscribed* const subscribed : _counted) subscribed->memory.keep();
  _counted.clear();
}

void SubscriptionTable::undoCounts() noexcept {
  for (Subscribed* const subscribed : _counted) subscribed->memory.undo();
  _counted.clear();
}

void SubscriptionTable::undoCount(const Match& match) noexcept {
  const auto found = _subscriptions.find(match.subscription.path);
  if (found != _subscriptions.end()) found->second->memory.undoLast();
}

std::vector<SubscriptionTable::Match> SubscriptionTable::match(const QORSmrPtr<IQoriObject>& indication,
                                                               const QORString& nameSpace) {
  std::vector<CQLFilterSet::Handle> handles;
  _set.match(indication, nameSpace, handles);
  std::vector<Match> matches;
  for (const CQLFilterSet::Handle handle : handles) {
    const Statement& statement = *_statements.at(handle);
    const auto referring = _referring.find(statement.filter->filter.path);
    if (referring == _referring.end()) continue;
    for (const auto& [path, subscribed] : referring->second.subscriptions) {
      const ListenerDestination* const handler = findHandler(subscribed->subscription.handler);
      if (handler == nullptr || !isWanted(*subscribed, *indication)) continue;
      matches.push_back({subscribed->subscription, *handler, statement.filter->filter, statement.selection});
    }
  }
  return matches;
}
