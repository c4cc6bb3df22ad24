// Filters, listeners and subscriptions, as their instances tell them.
// Tested by tests/unit/Server/SubscriptionRulesTest.cpp, tests/unit/Server/IndicationServiceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SUBSCRIPTION_H
#define QORQL_SERVER_SUBSCRIPTION_H

#include <chrono>
#include <string>
#include <vector>

#include "Cimom/Server/RepeatPolicy.h"
#include "cimom/IQoriObject.h"
#include "qorql.h"

// One statement of a filter, for one of its source namespaces.
using FilterStatement = CQLFilterSet::Statement;

struct SubscriptionFilter {
  std::string path;
  QORString name;
  std::vector<FilterStatement> statements;  // validated
};

struct ListenerDestination {
  std::string path;
  QORSmrPtr<IQoriInstanceName> name;
  std::string url;
  bool isTransient = false;  // gone with the first indication that cannot be delivered
};

struct Subscription {
  enum class OnFailure { Ignore = 2, Disable = 3, Remove = 4 };

  std::string path;
  QORSmrPtr<IQoriInstanceName> name;
  std::string filter;   // its path
  std::string handler;  // its path
  bool isEnabled = true;
  OnFailure onFailure = OnFailure::Ignore;
  std::chrono::seconds failureInterval{0};
  RepeatRule repeat;
};

// The value of a property; null when the object has none.
QORSmrPtr<IQoriValue> valueOf(const IQoriObject& object, const char* property);

// The URL as messages and logs show it: a user and a password in it are left out.
std::string urlWithoutPassword(const std::string& url);

// THROW CimStatusException for what the rules forbid: 4 for a value, 14 for a language, 15 for a query.
SubscriptionFilter readFilter(const IQoriObject& object);
ListenerDestination readDestination(const IQoriObject& object);
Subscription readSubscription(const IQoriObject& object);

#endif
