// The filters, listeners and subscriptions that are in force, and which of them an indication is for.
// Tested by tests/unit/Server/IndicationServiceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SUBSCRIPTIONTABLE_H
#define QORQL_SERVER_SUBSCRIPTIONTABLE_H

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "Cimom/Server/FilterLog.h"
#include "Cimom/Server/Subscription.h"

// The properties of indications that a statement selects.
class IndicationSelection {
 public:
  explicit IndicationSelection(const CQLQueryStatement& statement);
  bool has(const QORString& name) const;

 private:
  bool _isAll = false;
  std::vector<QORString> _names;
};

// By paths. One thread at a time.
class SubscriptionTable {
 public:
  // An indication is for that subscription. BORROWS from the table, until it changes.
  struct Match {
    const Subscription& subscription;
    const ListenerDestination& handler;
    const SubscriptionFilter& filter;
    const IndicationSelection& selection;
  };

  SubscriptionTable();
  SubscriptionTable(const SubscriptionTable&) = delete;
  SubscriptionTable& operator=(const SubscriptionTable&) = delete;
  ~SubscriptionTable();

  // Repetitions are counted on where a subscription has the same rule for them in the other table, which is left.
  void continueFrom(SubscriptionTable& other) noexcept;
  // In the place of the one with the same path.
  void put(SubscriptionFilter filter);
  void put(ListenerDestination destination);
  void put(Subscription subscription);
  // Whatever has that path.
  void remove(const std::string& path);

  bool hasFilter(const std::string& path) const { return _filters.contains(path); }
  // Null when there is none.
  const ListenerDestination* findHandler(const std::string& path) const;
  const Subscription* findSubscription(const std::string& path) const;
  // The first subscription that refers to it; null when there is none.
  const Subscription* firstReferring(const std::string& path) const;
  std::vector<QORSmrPtr<IQoriInstanceName>> subscriptionsOf(const std::string& handler) const;
  std::size_t handlerCount() const noexcept { return _handlers.size(); }
  bool hasSubscriptions() const noexcept { return !_subscriptions.empty(); }
  // Of filters that an enabled subscription has.
  std::vector<FilterStatement> statements() const;
  // What became of these since the last time.
  std::vector<FilterChange> takeChanges() noexcept;

  // What is matched while it lives counts as a repetition only once it is kept: others have got nothing of it before.
  class Counting {
   public:
    // BORROWS.
    explicit Counting(SubscriptionTable& table) : _table(table) {}
    Counting(const Counting&) = delete;
    Counting& operator=(const Counting&) = delete;
    ~Counting() { _table.undoCounts(); }
    void keep() noexcept { _table.keepCounts(); }

   private:
    SubscriptionTable& _table;
  };

  // Those that get the indication, subscriptions of one filter in the order of their paths. Repetitions that a
  // subscription does not want are left out. THROWS CQLQueryException as CQLFilterSet::match. REQUIRES a Counting.
  std::vector<Match> match(const QORSmrPtr<IQoriObject>& indication, const QORString& nameSpace);
  // The subscription does not get it after all: of the indication that was matched last.
  void undoCount(const Match& match) noexcept;

 private:
  struct Statement;
  struct Filter;
  struct Subscribed;
  // The subscriptions that refer to a filter or a handler, by path.
  struct Referring {
    std::map<std::string, Subscribed*> subscriptions{};
    std::size_t enabled = 0;
  };

  void refer(const std::string& end, Subscribed& subscribed);
  void forget(const std::string& end, const Subscription& subscription);
  bool isAsked(const std::string& filter) const;
  void noteFilter(const std::string& path, bool isAsked);
  void removeFilter(const std::string& path);
  bool isWanted(Subscribed& subscribed, const IQoriObject& indication);
  void keepCounts() noexcept;
  void undoCounts() noexcept;

  CQLFilterSet _set;
  CQLFilterSet::Handle _next = 0;
  std::unordered_map<CQLFilterSet::Handle, std::unique_ptr<Statement>> _statements;
  std::map<std::string, std::unique_ptr<Filter>> _filters;
  std::map<std::string, ListenerDestination> _handlers;
  std::map<std::string, std::unique_ptr<Subscribed>> _subscriptions;
  std::map<std::string, Referring> _referring;  // by filter and by handler
  std::vector<FilterChange> _changes;
  std::vector<Subscribed*> _counted;  // while something is counted; perhaps more than once
};

#endif
